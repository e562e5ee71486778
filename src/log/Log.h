// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>

namespace Log
{

/// What a line of the log is; it decides the line's colour.
enum Kind : int {
    Plain = 0,   ///< what the script's loggers say, with a level; the engine's own progress lines
    Output = 1,  ///< captured standard output
    Warning = 2, ///< warnings
    Error = 3,   ///< errors, captured standard error, the script's error logger
    Action = 4,  ///< a heading that announces a step, always level 0
};

/// One line: no newline in it, no markup.
struct Entry {
    Entry(Kind kind, unsigned int level, const QString& text)
        : kind(kind)
        , level(level)
        , text(text)
    {
    }

    Kind kind;
    unsigned int level; ///< the detail level from which on the line shows; 0 shows always
    QString text;
};

/// The log of one run. It only grows. Writers, on any thread, append to `entries` under `mutex` and
/// call emitAppended() once after unlocking; readers take the mutex too.
class EntryList : public QObject
{
    Q_OBJECT

public:
    /// Tells the readers that there is more. Not to be called with the mutex held.
    void emitAppended() { Q_EMIT appended(); }

    QList<Entry> entries;
    QMutex mutex;

Q_SIGNALS:
    void appended();
};

} // namespace Log
