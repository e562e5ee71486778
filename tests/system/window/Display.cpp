// SPDX-License-Identifier: GPL-2.0-or-later
#include "Display.h"

#include <QtTest>

Display::~Display()
{
    manager.kill();
    manager.waitForFinished();
    kill();
}

bool Display::start()
{
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(QStringLiteral("Xvfb"), {"-displayfd", "1", "-screen", "0", "1280x1024x24",
                                          "-nolisten", "tcp", "-noreset"});
    if (!QTest::qWaitFor([&] { return server.canReadLine(); }, 30000))
        return false;
    qputenv("DISPLAY", ':' + server.readLine().trimmed());

    // A home of its own: no menus, themes or key bindings of the user's.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        environment.insert(QString::fromLatin1(name), home.path());
    manager.setProcessEnvironment(environment);
    manager.setStandardErrorFile(QProcess::nullDevice());
    manager.start(QStringLiteral("openbox"), {"--sm-disable"});
    return QTest::qWaitFor(
        [] {
            QProcess property;
            property.start(QStringLiteral("xprop"), {"-root", "_NET_SUPPORTING_WM_CHECK"});
            property.waitForFinished();
            return property.readAllStandardOutput().contains("window id");
        },
        30000);
}

void Display::kill()
{
    server.kill();
    server.waitForFinished();
}
