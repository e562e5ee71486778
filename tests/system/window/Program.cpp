// SPDX-License-Identifier: GPL-2.0-or-later
#include "Program.h"

#include <QtTest>

Program::Program(const QStringList& arguments, const QProcessEnvironment& environment,
                 const QString& executable)
{
    process.setProcessEnvironment(environment);
    process.start(executable, arguments);
    process.waitForStarted();
}

Program::~Program()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.kill();
    process.waitForFinished();
}

QString Program::windowId(const QString& title)
{
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {"search", "--all", "--onlyvisible", "--pid", QString::number(process.processId()),
                  "--name", title});
    search.waitForFinished();
    return QString::fromLatin1(search.readAllStandardOutput()).section(QLatin1Char('\n'), 0, 0);
}

bool Program::press(const QString& title, const QString& key)
{
    if (!QTest::qWaitFor([&] { return !windowId(title).isEmpty(); }, 20000))
        return false;
    // Keys are refused while the program is busy, and lost before the window has its focus.
    for (int tries = 0; tries < 40; ++tries) {
        const QString window = windowId(title);
        if (window.isEmpty())
            return true;
        QProcess::execute(QStringLiteral("xdotool"), {"windowactivate", "--sync", window});
        QProcess::execute(QStringLiteral("xdotool"), {"key", key});
        // A search fails as a whole when any window goes away under it, so one is not believed.
        const auto gone = [&] { return windowId(title) != window && windowId(title) != window; };
        if (QTest::qWaitFor(gone, 500))
            return true;
    }
    return false;
}

QString Program::end(int status)
{
    if (!process.waitForFinished(10000) && process.state() != QProcess::NotRunning)
        return QStringLiteral("it still runs, %1 its window")
            .arg(windowId(QStringLiteral("^VOK - ")).isEmpty() ? QStringLiteral("without")
                                                               : QStringLiteral("with"));
    if (process.exitStatus() != QProcess::NormalExit)
        return QStringLiteral("it crashed");
    if (process.exitCode() != status)
        return QStringLiteral("it ended with status %1").arg(process.exitCode());
    return QString();
}
