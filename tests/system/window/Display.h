// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// An X server with a window manager that a test may kill. DISPLAY names it from start() on.
class Display
{
public:
    ~Display();

    /// False where they don't come up.
    bool start();
    /// Without a chance to say good-bye, as a crash does.
    void kill();

private:
    QTemporaryDir home;
    QProcess server;
    QProcess manager;
};
