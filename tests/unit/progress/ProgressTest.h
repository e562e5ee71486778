// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "progress/HProgressBar.h"
#include "progress/Progress.h"

#include <QCoreApplication>
#include <QThread>

#include <functional>
#include <memory>

/// Shows what an object holds.
class Probe : public Progress::Object
{
public:
    using Object::actIndex;
    using Object::itemEnd;
    using Object::itemMaximum;
    using Object::itemStart;
    using Object::itemValue;
    using Object::minion;
    using Object::Object;
    using Object::position;
    using Object::sameThread;
    using Object::threads;
    using Object::totalMaximum;
    using Object::totalValue;
    using Object::valueTime;

    /// The next value isn't held back.
    void passThrottle()
    {
        while (valueTime.elapsed() <= 9)
            QThread::yieldCurrentThread();
    }
};

/// Runs `scenario` until it has once taken less time than values are held back for, which a busy
/// machine may spoil. A scenario sets up all that it looks at.
inline bool runsWithinThrottle(const std::function<void()>& scenario)
{
    for (int attempt = 0; attempt < 50; ++attempt) {
        QElapsedTimer clock;
        clock.start();
        scenario();
        if (clock.elapsed() <= 9)
            return true;
    }
    return false;
}

/// A test class with two bars for each test function.
class ProgressTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<HProgressBar> total;
    std::unique_ptr<HProgressBar> item;

private Q_SLOTS:
    void init()
    {
        total = std::make_unique<HProgressBar>();
        item = std::make_unique<HProgressBar>();
    }

    void cleanup()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        total.reset();
        item.reset();
    }
};
