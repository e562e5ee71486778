// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/YumIO.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// The engine with what is protected in the open.
class EngineProbe : public YumIO
{
public:
    using Python::py;
    using Python::pyCall;
    using Python::pyExceptMatches;
    using Python::pyExceptStart;
    using Python::pyLookup;
    using Python::pyMethodCall;
    using Python::pyr;
    using YumIO::applyState;
    using YumIO::bestByName;
    using YumIO::biArchs;
    using YumIO::buildTimeOf;
    using YumIO::capturers;
    using YumIO::clearingEntries;
    using YumIO::commExceptRaised;
    using YumIO::commExceptSetup;
    using YumIO::dialogs;
    using YumIO::entries;
    using YumIO::EntryHash;
    using YumIO::entryHash;
    using YumIO::exceptLogStart;
    using YumIO::execWorkThread;
    using YumIO::fileListsCollected;
    using YumIO::getBiArch;
    using YumIO::lockError;
    using YumIO::noMoreMirrorsRepoError;
    using YumIO::otherDataCollected;
    using YumIO::pyDescribe;
    using YumIO::pyDictGetItem;
    using YumIO::pyExceptClear;
    using YumIO::pyExceptExpect;
    using YumIO::pyMappingString;
    using YumIO::pyString;
    using YumIO::pyStringDec;
    using YumIO::pyStringX;
    using YumIO::pyStringXDec;
    using YumIO::pythonException;
    using YumIO::pythonExceptionV;
    using YumIO::pyTime;
    using YumIO::pyTimeDec;
    using YumIO::reapChildren;
    using YumIO::repoError;
    using YumIO::rpmDict;
    using YumIO::sigchldDisable;
    using YumIO::sigchldRestore;
    using YumIO::simpleString;
    using YumIO::sizeOf;
    using YumIO::sqliteOperationalError;
    using YumIO::stderrKind;
    using YumIO::stderrLevel;
    using YumIO::stderrPartial;
    using YumIO::stdoutPartial;
    using YumIO::write;
    using YumIO::yumBaseError;
    using YumIO::yumIO;
    using YumIO::yumLocked;
    using Blocker = YumIO::Blocker;

    Blocker& gate() { return blocker; }

    bool startInterpreter() { return Python::initialize(); }
    static bool interpreterRuns() { return Python::initialized; }

    /// The log as "KIND LEVEL TEXT" lines, from line `from` on.
    QStringList logLines(int from = 0)
    {
        const QMutexLocker locker(&logEntries.mutex);
        QStringList lines;
        for (const Log::Entry& entry : logEntries.entries.mid(from))
            lines.append(
                QStringLiteral("%1 %2 %3").arg(entry.kind).arg(entry.level).arg(entry.text));
        return lines;
    }

    /// The same, and the log is empty afterwards.
    QStringList takeLog()
    {
        const QStringList lines = logLines();
        const QMutexLocker locker(&logEntries.mutex);
        logEntries.entries.clear();
        return lines;
    }
};

/// A share directory of its own with a script in it, which VOKSHARE names as long as this lives.
class ScriptShare
{
public:
    ScriptShare()
        : saved(qgetenv("VOKSHARE"))
    {
        qputenv("VOKSHARE", QFile::encodeName(directory.path()));
    }

    explicit ScriptShare(const QByteArray& script)
        : ScriptShare()
    {
        write(script);
    }

    ~ScriptShare() { qputenv("VOKSHARE", saved); }
    ScriptShare(const ScriptShare&) = delete;
    ScriptShare& operator=(const ScriptShare&) = delete;

    void write(const QByteArray& script)
    {
        QDir(directory.path()).mkpath(QStringLiteral("python"));
        QFile file(directory.filePath(QStringLiteral("python/YumIO.py")));
        if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size())
            qFatal("cannot write the script");
    }

    void remove() { QFile::remove(directory.filePath(QStringLiteral("python/YumIO.py"))); }

    /// What every script has: the exception classes and streams that lead to the log.
    static QByteArray preamble()
    {
        return R"(
import sys, types, bdb
import yumIOC

class Stream:
    def __init__(self, write): self.write = write
    def flush(self): pass

sys.stdout = Stream(yumIOC.stdoutWrite)
sys.stderr = Stream(yumIOC.stderrWrite)

yum = types.ModuleType('yum')
yum.Errors = types.ModuleType('yum.Errors')
class YumBaseError(Exception):
    def __init__(self, value=None):
        Exception.__init__(self)
        self.value = value
    def __str__(self): return str(self.value)
class RepoError(YumBaseError): pass
class LockError(YumBaseError): pass
class GroupsError(YumBaseError): pass
class NoMoreMirrorsRepoError(RepoError): pass
for each in (YumBaseError, RepoError, LockError, GroupsError, NoMoreMirrorsRepoError):
    setattr(yum.Errors, each.__name__, each)
)";
    }

private:
    QTemporaryDir directory;
    QByteArray saved;
};
