// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/SearchTexts.h"
#include "engine/Unattended.h"
#include "engine/YumIOC.h"
#include "engine/YumIODialogs.h"
#include "kit/Application.h"
#include "kit/Share.h"

#include <QEventLoop>
#include <QFile>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <memory>

#include <pthread.h>

namespace
{

/// Runs one work function, then ends the local event loop that the GUI thread waits in. Lives on
/// the stack of the function that waits.
class WorkThread : public QThread
{
public:
    WorkThread(YumIO* engine, QEventLoop& loop, const QString& name)
        : engine(engine)
        , loop(loop)
    {
        setObjectName(name);
    }

    bool result = false;

protected:
    YumIO* const engine;
    QEventLoop& loop;
};

/// Whether the application has been told to quit: it has ended every event loop then, and none runs
/// any more.
bool applicationQuits()
{
    QEventLoop probe;
    QTimer::singleShot(0, &probe, &QEventLoop::quit);
    return probe.exec(QEventLoop::ExcludeUserInputEvents) < 0;
}

/// Delivers events until the thread has ended, where no event loop can.
void serve(QEventLoop& loop, QThread& thread)
{
    // What ends the wait for an event is one more event.
    QObject::connect(&thread, &QThread::finished, &loop, [] {});
    while (!thread.isFinished())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
}

} // namespace

class YumIO::CollectThread : public WorkThread
{
public:
    CollectThread(YumIO* engine, QEventLoop& loop, const QHash<QString, bool>& usedRepos)
        : WorkThread(engine, loop, QStringLiteral("Collect"))
        , usedRepos(usedRepos)
    {
    }

protected:
    void run() override
    {
        result = engine->collectReal(usedRepos);
        loop.exit(0);
    }

private:
    const QHash<QString, bool>& usedRepos;
};

class YumIO::CollectFileListsThread : public WorkThread
{
public:
    CollectFileListsThread(YumIO* engine, QEventLoop& loop)
        : WorkThread(engine, loop, QStringLiteral("CollectFileLists"))
    {
    }

protected:
    void run() override
    {
        result = engine->collectFileListsReal();
        loop.exit(0);
    }
};

class YumIO::CollectOtherDataThread : public WorkThread
{
public:
    CollectOtherDataThread(YumIO* engine, QEventLoop& loop)
        : WorkThread(engine, loop, QStringLiteral("CollectOtherData"))
    {
    }

protected:
    void run() override
    {
        result = engine->collectOtherDataReal();
        loop.exit(0);
    }
};

class YumIO::CollectSearchTextsThread : public WorkThread
{
public:
    CollectSearchTextsThread(YumIO* engine, QEventLoop& loop)
        : WorkThread(engine, loop, QStringLiteral("CollectSearchTexts"))
    {
    }

    std::unique_ptr<SearchTexts> texts;

protected:
    void run() override
    {
        texts = engine->collectSearchTextsReal();
        loop.exit(0);
    }
};

class YumIO::ClearEntriesThread : public WorkThread
{
public:
    ClearEntriesThread(YumIO* engine, QEventLoop& loop)
        : WorkThread(engine, loop, QStringLiteral("ClearEntries"))
    {
    }

protected:
    void run() override
    {
        engine->clearEntriesReal();
        loop.exit(0);
    }
};

class YumIO::ApplyThread : public WorkThread
{
public:
    ApplyThread(YumIO* engine, QEventLoop& loop)
        : WorkThread(engine, loop, QStringLiteral("Apply"))
    {
    }

protected:
    void run() override
    {
        result = engine->applyReal();
        loop.exit(0);
    }
};

YumIO::YumIO()
{
    setObjectName(QStringLiteral("YumIO"));
}

YumIO::~YumIO()
{
    // It may have something for the log.
    remover.finish();
    {
        PyGILStateWrapper lock(true);
        if (Python::initialized)
            py("import sys\nsys.stdout = sys.__stdout__\nsys.stderr = sys.__stderr__\n");
        unlockPackages();
    }
    YumIOC::finalize(this);
    delete guiDialogs;
}

void YumIO::unlockPackages()
{
    if (!yumLocked || !yumIO)
        return;
    pyExceptStart();
    pyExceptExpect(lockError);
    const PyRef result = pyMethodCall(yumIO, "unlock", "()");
    if (pyExceptMatches(result.get(), lockError))
        pythonException(tr("Unable to release yum lock"));
    pyExceptClear();
}

void YumIO::leaveUnattended()
{
    {
        const PyGILStateWrapper lock(true);
        unlockPackages();
    }
    const QMutexLocker locker(&logEntries.mutex);
    for (const Log::Entry& entry : qAsConst(logEntries.entries)) {
        if (entry.kind == Log::Error || entry.kind == Log::Warning)
            Unattended::tell(entry.text.toLocal8Bit().constData());
    }
}

void YumIO::setup(QWidget* parent, HProgressBar* total, HProgressBar* item)
{
    delete guiDialogs;
    guiDialogs = new YumIODialogs(parent);
    dialogs = guiDialogs;
    parentWidget = parent;
    totalBar = total;
    itemBar = item;
}

bool YumIO::initialize()
{
    // A failure there is reported there; without an interpreter there is nothing to go on with.
    if (!Python::initialize())
        return false;
    if (yumIO)
        return true;

    PyGILStateWrapper lock(true);
    if (!YumIOC::initialize(this))
        return initializeFailed(tr("Internal error: cannot make python yumIOC module"));
    {
        const PyRef arguments = PyRef::adopt(
            Py_BuildValue("[N,s]", PyUnicode_DecodeFSDefault(program ? program : "vok"), "info"));
        pyAssign("sys", "argv", arguments.get());
    }

    {
        // Borrowed from here on: the table of modules keeps it.
        const PyRef rpm = PyRef::adopt(PyImport_ImportModule("rpm"));
        if (!rpm)
            return initializeFailed(tr("Internal error: cannot find python rpm module"));
        rpmDict = PyModule_GetDict(rpm.get());
        if (!rpmDict)
            return initializeFailed(tr("Internal error: cannot find python rpm dict"));
    }
    setEnablePythonSIGINTHandler(false);

    if (!runScript(Share::absolute(QStringLiteral("python/YumIO.py"))))
        return false;
    yumIOClass = PyDict_GetItemString(main_dict, "YumIO");
    if (!yumIOClass)
        return initializeFailed(tr("Internal error: cannot find python YumIO"));

    // Never closed: an exit that the script asks for outside every other scope counts as expected
    // for the rest of the process.
    pyExceptStart();
    pyExceptExpect(PyExc_SystemExit);
    makeScriptObject();
    if (pyExceptMatches(yumIO, PyExc_SystemExit)) {
        pythonException(tr("Unable to initialize"));
        PyErr_Clear();
        return false;
    }
    if (!yumIO)
        return initializeFailed(tr("Internal error: cannot create python yumIO"));

    bdbQuit = pyLookup("bdb.BdbQuit", false);
    yumBaseError = pyLookup("yum.Errors.YumBaseError", false);
    lockError = pyLookup("yum.Errors.LockError", false);
    groupsError = pyLookup("yum.Errors.GroupsError", false);
    repoError = pyLookup("yum.Errors.RepoError", false);
    sqliteOperationalError = pyLookup("sqlite3.OperationalError", true);
    noMoreMirrorsRepoError = pyLookup("yum.Errors.NoMoreMirrorsRepoError", true);
    return true;
}

bool YumIO::initializeFailed(const QString& text)
{
    if (PyErr_Occurred())
        handleException();
    PyErr_Clear();
    error(text);
    return false;
}

bool YumIO::runScript(const QString& path)
{
    struct Closer {
        void operator()(FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<FILE, Closer> file(std::fopen(QFile::encodeName(path).constData(), "r"));
    if (!file)
        return initializeFailed(tr("Internal error: unable to open YumIO.py"));
    if (PyRun_SimpleFileExFlags(file.get(), "YumIO.py", 0, nullptr) == -1)
        return initializeFailed(tr("Internal error: unable to execute YumIO.py"));
    return true;
}

void YumIO::makeScriptObject()
{
    Py_CLEAR(yumIO);
    // What a word means is the script object's to say.
    biArchWords.clear();
    const PyRef none = PyRef::adopt(PyTuple_New(0));
    yumIO = PyObject_Call(yumIOClass, none.get(), nullptr);
}

void YumIO::clear()
{
    if (worker)
        return;
    if (yumIO) {
        PyGILStateWrapper lock(true);
        pyMethodCall(yumIO, "flush", "()");
        // Whatever became of it, the next object is made with nothing pending.
        PyErr_Clear();
    }
    clearEntries();
    if (yumIOClass) {
        PyGILStateWrapper lock(true);
        makeScriptObject();
        if (!yumIO) {
            handleException();
            PyErr_Clear();
        }
    }
}

void YumIO::clearEntries()
{
    if (worker)
        return;
    searchTexts.reset();
    // Set before the thread starts: the table sees no rows as soon as the local loop's events run.
    clearingEntries = true;
    QEventLoop loop;
    ClearEntriesThread thread(this, loop);
    execWorkThread(loop, thread);
}

void YumIO::clearEntriesReal()
{
    blocker.block();
    adoptUnpublishedEntries();
    {
        PyGILStateWrapper lock(true);
        for (Package::Entry* entry : qAsConst(entries)) {
            for (Package::Entry* link = entry; link; link = link->next)
                Py_CLEAR(link->pyObject);
        }
    }
    dropEntries();
    clearingEntries = false;
}

void YumIO::clearEntriesBeforeQuit()
{
    clearingEntries = true;
    searchTexts.reset();
    adoptUnpublishedEntries();
    for (Package::Entry* entry : qAsConst(entries)) {
        for (Package::Entry* link = entry; link; link = link->next)
            link->pyObject = nullptr;
    }
    dropEntries();
}

void YumIO::adoptUnpublishedEntries()
{
    // A collection that failed leaves what it had made in the hash alone. Dropping it from there
    // would do, but its objects are as many as a whole collection's, and the next one makes them
    // again.
    if (!entries.isEmpty())
        return;
    for (Package::Entry* entry : qAsConst(entryHash)) {
        if (entry)
            entries.append(entry);
    }
}

void YumIO::dropEntries()
{
    qDeleteAll(entries);
    entries.clear();
    entryHash.clear();
    bestByName.clear();
    biArchs.clear();
}

bool YumIO::collect(const QHash<QString, bool>& usedRepos)
{
    if (!worker) {
        searchTexts.reset();
        fileListsFailed = false;
        otherDataFailed = false;
    }
    QEventLoop loop;
    CollectThread thread(this, loop, usedRepos);
    execWorkThread(loop, thread);
    return thread.result;
}

bool YumIO::collectFileLists()
{
    if (fileListsCollected)
        return true;
    QEventLoop loop;
    CollectFileListsThread thread(this, loop);
    const bool refused = worker;
    execWorkThread(loop, thread);
    if (!refused)
        fileListsFailed = !thread.result;
    return thread.result;
}

bool YumIO::collectOtherData()
{
    if (otherDataCollected)
        return true;
    QEventLoop loop;
    CollectOtherDataThread thread(this, loop);
    const bool refused = worker;
    execWorkThread(loop, thread);
    if (!refused)
        otherDataFailed = !thread.result;
    return thread.result;
}

bool YumIO::collectSearchTexts()
{
    if (searchTexts)
        return true;
    if (!otherDataCollected)
        return false;
    QEventLoop loop;
    CollectSearchTextsThread thread(this, loop);
    execWorkThread(loop, thread);
    // Published here, where nobody can be asking.
    searchTexts = std::move(thread.texts);
    return searchTexts != nullptr;
}

bool YumIO::apply()
{
    QEventLoop loop;
    ApplyThread thread(this, loop);
    execWorkThread(loop, thread);
    return thread.result;
}

void YumIO::execWorkThread(QEventLoop& loop, QThread& thread)
{
    // A window that is open meanwhile may ask for something that takes work too.
    if (worker)
        return;
    worker = &thread;
    const Unattended::Work unattendable([this] { leaveUnattended(); });
    // The work function starts by passing the gate, so that it can't end the loop before the loop
    // runs.
    blocker.prepare();
    PyThreadStateWrapper unlocked;
    thread.start(QThread::HighPriority);

    // Blocked only here, after the start: the signal is the work thread's while that runs.
    sigset_t sigchld, saved;
    sigemptyset(&sigchld);
    sigaddset(&sigchld, SIGCHLD);
    pthread_sigmask(SIG_BLOCK, &sigchld, &saved);

    QTimer::singleShot(0, this, &YumIO::blockerRelease);
    loop.exec();
    // The end of a session quits the application, but work goes on to its own end, and may have to
    // ask this thread until then.
    if (!thread.isFinished() && applicationQuits())
        serve(loop, thread);
    thread.wait();
    // What the thread queued last, progress and log, is to be seen before the caller goes on.
    loop.processEvents(QEventLoop::ExcludeUserInputEvents);
    // A script may speak of a transaction in any work, and only an Apply ends it itself.
    transactionGuard.reset();

    if (Python::initialized) {
        PyGILStateWrapper lock(true);
        setEnablePythonSIGINTHandler(false);
    }
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
    worker = nullptr;
}

bool YumIO::callsScript() const
{
    const QThread* running = QThread::currentThread();
    return running == worker || running == thread();
}

void YumIO::blockerRelease()
{
    blocker.release();
}
