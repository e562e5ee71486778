// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QLockFile>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A sandbox system for tests that run one process each: the first process makes it and serves its
/// repositories, the others find it in their environment.
class SandboxServer
{
public:
    /// The demo's system by default; `command` is what Python runs to make and to serve it.
    explicit SandboxServer(const QString& directory = QStringLiteral(VOK_SANDBOX),
                           const QStringList& command = {"-m", "demo"});
    /// Makes and serves the system, unless a parent process does. False after a message.
    bool start();
    ~SandboxServer();

private:
    QString directory;
    QStringList command;
    /// One run at a time: each makes the system anew.
    QLockFile inUse;
    QProcess server;
    QTemporaryDir scratch;
};

/// One test's own copy of the sandbox's root, which VOKROOT names while this exists. Temporary
/// files of the process go to a folder of its own, too.
class SandboxRoot
{
public:
    /// A copy of the root of this sandbox, by default the demo's.
    explicit SandboxRoot(const QString& sandbox = QStringLiteral(VOK_SANDBOX));

    QString path(const QString& path) const { return directory.filePath("root/" + path); }
    /// The repository, which all tests share.
    static QString repository(const QString& id);
    /// What lies in the folder for temporary files.
    QStringList leftovers() const;
    /// Whether a process holds the lock on the packages.
    bool locked() const;

    /// Status of a program that runs to its end; its output is shown where it fails.
    static int run(const QString& program, const QStringList& arguments);

private:
    QTemporaryDir directory;
};
