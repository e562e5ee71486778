// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "Sandbox.h"
#include "WindowDriver.h"

#include <QByteArray>
#include <QTemporaryFile>

/// A person's session in front of the window, over a sandbox root of its own and a server that can
/// be told to fail. Watches what the process writes on its terminal's error output.
class WindowSession : public SandboxRoot, public WindowDriver
{
public:
    explicit WindowSession(const QString& sandbox = QStringLiteral(VOK_SANDBOX));
    ~WindowSession() override;

    /// The folder of the sandbox that the root is a copy of.
    const QString& sandboxPath() const { return sandbox; }

    /// Answers the next requests for paths that match the shell pattern with a status, or as the
    /// demo's server knows: refuse, hang, truncate, corrupt.
    void fail(const QString& pattern, const QString& action);
    /// Everything is served as it should be again.
    void recover();
    /// Bytes a second of each connection, 0 as fast as it goes; until the end of the session.
    void slowDown(int rate);

    /// Writes a file below the root.
    void write(const QString& path, const QByteArray& text) const;
    /// Adds lines behind the header of a section of a file below the root.
    void configure(const QString& path, const QByteArray& section, const QByteArray& lines) const;
    /// Replaces a text in a file below the root, everywhere.
    void replace(const QString& path, const QByteArray& before, const QByteArray& after) const;
    /// Leaves no repository but those of the text, which becomes the only repository file.
    void useRepositories(const QByteArray& sections) const;

    /// Expects an error dialog and keeps what it says in `text`, which must outlive it.
    void expectError(QString& text, const QString& button = QStringLiteral("Close"));

    /// Shows all packages, whatever their state.
    QStringList listedAll();
    /// The whole log, as its window shows it.
    QString log();

    /// Quits by the menu. Tells what isn't as it should be then: the lock, temporary files, words
    /// on the terminal. Empty where all is well.
    QString quit();
    /// What was written on the terminal since the start of the session.
    QByteArray terminal();

private:
    /// Tells the server something.
    void control(const QStringList& arguments);

    QString sandbox;
    QTemporaryFile errorOutput;
    int savedErrorOutput = -1;
    bool failing = false;
    bool slow = false;
};
