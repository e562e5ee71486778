// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

inline void report(const char* name, double value, const char* unit)
{
    std::printf("%s\t%.3f\t%s\n", name, value, unit);
    std::fflush(stdout);
}

inline double millisecondsOf(const QElapsedTimer& clock)
{
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// The longest time in which the GUI thread handled no timer, in milliseconds.
class Heartbeat
{
public:
    Heartbeat()
    {
        QObject::connect(&timer, &QTimer::timeout, [this] { beat(); });
        timer.setTimerType(Qt::PreciseTimer);
        timer.start(1);
        last.start();
    }

    /// Counts from the last beat on, too; to be called when it is over.
    double longestGap()
    {
        timer.stop();
        beat();
        return static_cast<double>(longest) / 1e6;
    }

private:
    void beat()
    {
        longest = qMax(longest, last.nsecsElapsed());
        last.restart();
    }

    QTimer timer;
    QElapsedTimer last;
    qint64 longest = 0;
};
