// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

/// A share directory like the one in use, but for a browser that only writes down how it was
/// called. In use while this exists; to be made before the window.
class RecordedBrowser
{
public:
    RecordedBrowser();
    ~RecordedBrowser();
    RecordedBrowser(const RecordedBrowser&) = delete;
    RecordedBrowser& operator=(const RecordedBrowser&) = delete;

    /// Waits for the next call and gives its arguments, each whole. Empty where none comes.
    QStringList call();
    /// Whether there were more calls than have been asked for.
    bool calledOnceMore() const;

private:
    QString record(int number) const;

    QTemporaryDir share;
    QByteArray original;
    int calls = 0;
};
