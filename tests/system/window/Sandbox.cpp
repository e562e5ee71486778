// SPDX-License-Identifier: GPL-2.0-or-later
#include "Sandbox.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <cstdio>

namespace
{

const char served[] = "VOK_SANDBOX_SERVED";

} // namespace

SandboxServer::SandboxServer(const QString& directory, const QStringList& command)
    : directory(directory)
    , command(command)
    , inUse(directory + QStringLiteral(".lock"))
{
}

bool SandboxServer::start()
{
    if (qEnvironmentVariableIsSet(served))
        return true;
    // Stale only when its process has ended.
    inUse.setStaleLockTime(0);
    if (!inUse.tryLock(240000)) {
        std::fputs("another run uses the sandbox\n", stderr);
        return false;
    }
    qputenv("PYTHONPATH", VOK_SOURCE);
    const QString python = QStringLiteral(VOK_PYTHON);
    QDir().mkpath(directory);
    if (SandboxRoot::run(python, command + QStringList{"make", directory}) != 0)
        return false;
    const QString readyFile = scratch.filePath(QStringLiteral("url"));
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(python, command + QStringList{"serve", directory, "--ready-file", readyFile});
    qunsetenv("PYTHONPATH");
    if (!QTest::qWaitFor([&] { return QFile::exists(readyFile); }, 20000)) {
        std::fputs("the server of the repositories didn't start\n", stderr);
        return false;
    }
    qputenv(served, "1");
    return true;
}

SandboxServer::~SandboxServer()
{
    if (server.state() == QProcess::NotRunning)
        return;
    server.terminate();
    if (!server.waitForFinished(10000))
        server.kill();
}

SandboxRoot::SandboxRoot(const QString& sandbox)
{
    run("cp", {"-a", sandbox + "/root", directory.path()});
    QDir(directory.path()).mkdir(QStringLiteral("tmp"));
    qputenv("VOKROOT", QFile::encodeName(directory.filePath(QStringLiteral("root"))));
    qputenv("TMPDIR", QFile::encodeName(directory.filePath(QStringLiteral("tmp"))));
}

QString SandboxRoot::repository(const QString& id)
{
    return QStringLiteral(VOK_SANDBOX "/repos/") + id;
}

QStringList SandboxRoot::leftovers() const
{
    return QDir(directory.filePath(QStringLiteral("tmp")))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

bool SandboxRoot::locked() const
{
    return QFile::exists(path(QStringLiteral("var/lib/dnf/rpmdb_lock.pid")));
}

int SandboxRoot::run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool finished = process.waitForFinished(120000);
    const bool good =
        finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!good)
        std::fprintf(stderr, "%s: %s\n%s\n", qPrintable(program), qPrintable(process.errorString()),
                     process.readAll().constData());
    return finished ? process.exitCode() : -1;
}
