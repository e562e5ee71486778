// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QMutex>

/// Start gate of a work thread: closed until the GUI thread's local event loop runs. The thread
/// that prepares it is the one to release it.
class Blocker
{
public:
    void prepare() { mutex.lock(); }
    void release() { mutex.unlock(); }
    void block()
    {
        mutex.lock();
        mutex.unlock();
    }

private:
    QMutex mutex;
};
