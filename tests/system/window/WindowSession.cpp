// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowSession.h"

#include "table/PackageTable.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QtTest>

#include <unistd.h>

WindowSession::WindowSession(const QString& sandbox)
    : SandboxRoot(sandbox)
    , sandbox(sandbox)
{
    errorOutput.open();
    savedErrorOutput = dup(STDERR_FILENO);
    dup2(errorOutput.handle(), STDERR_FILENO);
}

WindowSession::~WindowSession()
{
    dup2(savedErrorOutput, STDERR_FILENO);
    close(savedErrorOutput);
    if (failing)
        recover();
    if (slow)
        slowDown(0);
}

void WindowSession::control(const QStringList& arguments)
{
    QFile url(sandbox + QStringLiteral("/url"));
    QVERIFY(url.open(QIODevice::ReadOnly));
    qputenv("PYTHONPATH", VOK_SOURCE);
    QCOMPARE(run(QStringLiteral(VOK_PYTHON),
                 QStringList{"-m", "demo", "control", url.readAll()} + arguments),
             0);
    qunsetenv("PYTHONPATH");
}

void WindowSession::fail(const QString& pattern, const QString& action)
{
    failing = true;
    control({"--fail", pattern, action});
}

void WindowSession::recover()
{
    failing = false;
    control({"--recover"});
}

void WindowSession::slowDown(int rate)
{
    slow = rate > 0;
    control({"--rate", QString::number(rate)});
}

void WindowSession::write(const QString& path, const QByteArray& text) const
{
    QFile file(this->path(path));
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.fileName()));
    file.write(text);
}

void WindowSession::configure(const QString& path, const QByteArray& section,
                              const QByteArray& lines) const
{
    const QByteArray header = '[' + section + "]\n";
    replace(path, header, header + lines);
}

void WindowSession::replace(const QString& path, const QByteArray& before,
                            const QByteArray& after) const
{
    QFile file(this->path(path));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    QByteArray text = file.readAll();
    QVERIFY2(text.contains(before), before.constData());
    write(path, text.replace(before, after));
}

void WindowSession::useRepositories(const QByteArray& sections) const
{
    QDir folder(path(QStringLiteral("etc/yum.repos.d")));
    QVERIFY(folder.removeRecursively() && QDir().mkpath(folder.path()));
    write(QStringLiteral("etc/yum.conf"), "[main]\ncachedir=/var/cache/yum\nplugins=0\n");
    write(QStringLiteral("etc/yum.repos.d/only.repo"), sections);
}

void WindowSession::expectError(QString& text, const QString& button)
{
    dialogs.expect(QStringLiteral("VOK Yum Error"))
        .act([&text](QWidget* dialog) {
            text = DialogDriver::textsIn(dialog).join(QLatin1Char('\n'));
        })
        .press(button);
}

QStringList WindowSession::listedAll()
{
    select("state", PackageTable::ViewAll);
    return listed();
}

QString WindowSession::log()
{
    action(QStringLiteral("Log"))->trigger();
    return logText();
}

QString WindowSession::quit()
{
    QSignalSpy left(&window(), &MainWindow::left);
    action(QStringLiteral("Quit"))->trigger();
    if (left.size() != 1)
        return QStringLiteral("the window didn't leave");
    if (locked())
        return QStringLiteral("the lock is still held");
    QStringList rest = leftovers();
    rest.removeAll(QFileInfo(errorOutput.fileName()).fileName());
    if (!rest.isEmpty())
        return QStringLiteral("left behind: ") + rest.join(QLatin1Char(' '));
    if (!terminal().isEmpty())
        return QStringLiteral("on the terminal: ") + QString::fromLocal8Bit(terminal());
    return QString();
}

QByteArray WindowSession::terminal()
{
    errorOutput.seek(0);
    return errorOutput.readAll();
}
