// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QThread;

/// Removes files on a thread of its own: on a disk that is busy with a transaction that takes a
/// while, and nobody has to wait for it but the next work on the same files. For one thread at a
/// time.
class FileRemover
{
public:
    /// Waits for the end of what was begun.
    ~FileRemover();

    /// Begins to remove files, when those of the call before are gone. One that doesn't exist is
    /// no failure; each that can't be removed is told to `complain` in a line, on the remover's
    /// thread.
    void begin(const QList<QByteArray>& paths,
               const std::function<void(const QString& line)>& complain);
    /// Comes back when nothing is being removed any more. The interpreter lock may be held.
    void finish();

private:
    std::unique_ptr<QThread> thread;
};
