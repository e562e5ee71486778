// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// The real program; ends it, however the test ends.
class Program
{
public:
    explicit Program(
        const QStringList& arguments = {},
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment(),
        const QString& executable = QStringLiteral(VOK_EXECUTABLE));
    ~Program();

    /// Waits for a visible window of this program with this title and presses keys there until the
    /// window is gone. False where it doesn't come or go.
    bool press(const QString& title, const QString& key);
    /// The process has ended by itself, with status 0. Otherwise the text tells.
    QString end(int status = 0);

    QProcess process;

private:
    QString windowId(const QString& title);
};
