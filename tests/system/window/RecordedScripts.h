// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A share directory like the one in use, but for a browser and a viewer that only write down how
/// they were called. In use while this exists; to be made before the window.
class RecordedScripts
{
public:
    RecordedScripts();
    ~RecordedScripts();
    RecordedScripts(const RecordedScripts&) = delete;
    RecordedScripts& operator=(const RecordedScripts&) = delete;

    /// Waits for the next call and gives its arguments, each whole. Empty where none comes.
    QStringList call(const QString& script = QStringLiteral("webbrowser"));
    /// Whether there were more calls than have been asked for.
    bool calledOnceMore(const QString& script = QStringLiteral("webbrowser")) const;

private:
    QString record(const QString& script, int number) const;

    QTemporaryDir share;
    QByteArray original;
    QHash<QString, int> calls;
};
