// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QEventLoop>
#include <QThread>

#include <functional>

/// Runs a function on a thread of its own while the calling thread's event loop runs.
class WorkRunner : public QThread
{
public:
    explicit WorkRunner(std::function<void()> work)
        : work(std::move(work))
    {
    }

    void runToEnd()
    {
        QEventLoop loop;
        connect(this, &QThread::finished, &loop, &QEventLoop::quit);
        start();
        loop.exec();
        wait();
    }

protected:
    void run() override { work(); }

private:
    std::function<void()> work;
};
