// SPDX-License-Identifier: GPL-2.0-or-later
#include "EngineProbe.h"

#include "engine/YumIODialogs.h"
#include "kit/Application.h"
#include "support/DialogDriver.h"
#include "support/ProcessPerTest.h"

#include <QtTest>

#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// Counts what is done with it, in a file too, since the interpreter is gone when it is looked at.
const QByteArray script = ScriptShare::preamble() + R"(
import os, signal
seen = {
    'argv': list(sys.argv),
    'rpm': 'rpm' in sys.modules,
    'file': __file__,
    'sigint': signal.getsignal(signal.SIGINT) is signal.SIG_DFL,
}
made = []
calls = []
class YumIO:
    def __init__(self):
        made.append(id(self))
        self.number = len(made)
    def flush(self): calls.append(('flush', self.number))
    def unlock(self):
        with open(os.path.join(os.environ['VOKTESTDIR'], 'unlocked'), 'a') as told:
            told.write('%d\n' % self.number)
        if os.path.exists(os.path.join(os.environ['VOKTESTDIR'], 'refuse')):
            raise LockError('somebody else has it')
)";

/// A row without an interpreter object.
Package::Entry* row(const QString& name, PyObject* object = nullptr)
{
    auto* entry = new Package::Entry;
    entry->name = name;
    entry->pyObject = object;
    return entry;
}

/// What is written to descriptor 2 while it lives.
class StandardError
{
public:
    StandardError()
        : saved(dup(STDERR_FILENO))
    {
        file.open();
        dup2(file.handle(), STDERR_FILENO);
    }
    ~StandardError() { restore(); }

    QByteArray end()
    {
        restore();
        file.seek(0);
        return file.readAll();
    }

private:
    void restore()
    {
        if (saved < 0)
            return;
        fflush(stderr);
        dup2(saved, STDERR_FILENO);
        close(std::exchange(saved, -1));
    }

    QTemporaryFile file;
    int saved;
};

} // namespace

class TestYumIOLife : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void missingScriptIsReported();
    void brokenScriptIsReported();
    void scriptWithoutTheClassIsReported();
    void exitingConstructorIsReported();
    void raisingConstructorIsAnInternalError();
    void failedStartCanBeRepeated();
    void scriptFindsWhatItNeeds();
    void secondStartDoesNothing();
    void optionalExceptionClassesMayBeMissing();
    void moduleHasTheFunctions();
    void secondEngineGetsTheCallbacks();
    void clearMakesANewObject();
    void clearSurvivesAnObjectThatCannotBeMade();
    void clearingReleasesEveryObjectOfAChain();
    void tableIsEmptyWhileEntriesAreCleared();
    void quittingDropsEntriesSilently();
    void loadedExtraDataIsNotLoadedAgain();
    void endUnlocksTheNewestObject();
    void endWithoutALockUnlocksNothing();
    void endSaysWhyItCannotUnlock();
    void endIsSilent();
    void engineNeverStartedEndsToo();

private:
    /// Starts and expects success.
    void start()
    {
        engine->setup(&parent, nullptr, nullptr);
        QVERIFY(engine->initialize());
        QCOMPARE(engine->takeLog(), QStringList());
    }

    long number(const char* expression)
    {
        const PyRef value = engine->pyr(expression);
        return value ? PyLong_AsLong(value.get()) : -1;
    }

    /// initialize() with one dialog that says `text`.
    void failToStart(const QString& text, const QString& button = QStringLiteral("OK"));

    QByteArray unlocked() const
    {
        QFile file(directory->filePath(QStringLiteral("unlocked")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QWidget parent;
    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<ScriptShare> share;
    std::unique_ptr<EngineProbe> engine;
};

void TestYumIOLife::init()
{
    directory = std::make_unique<QTemporaryDir>();
    qputenv("VOKTESTDIR", QFile::encodeName(directory->path()));
    share = std::make_unique<ScriptShare>(script);
    engine = std::make_unique<EngineProbe>();
}

void TestYumIOLife::cleanup()
{
    engine.reset();
    QVERIFY(!EngineProbe::interpreterRuns());
    share.reset();
    qunsetenv("VOKTESTDIR");
}

void TestYumIOLife::failToStart(const QString& text, const QString& button)
{
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error")).text(text).press(button);
    engine->setup(&parent, nullptr, nullptr);
    QVERIFY(!engine->initialize());
    QCOMPARE(driver.driven(), 1);
    QVERIFY(!engine->yumIO);
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOLife::missingScriptIsReported()
{
    share->remove();
    failToStart(QStringLiteral("Internal error: unable to open YumIO.py"));
    QCOMPARE(engine->takeLog(),
             QStringList(QStringLiteral("3 0 Internal error: unable to open YumIO.py")));
}

void TestYumIOLife::brokenScriptIsReported()
{
    share->write(ScriptShare::preamble() + "raise RuntimeError('broken')\n");
    failToStart(QStringLiteral("Internal error: unable to execute YumIO.py"));
    QVERIFY(engine->takeLog().contains(QStringLiteral("3 0 RuntimeError: broken")));
}

void TestYumIOLife::scriptWithoutTheClassIsReported()
{
    share->write("class Other: pass\n");
    failToStart(QStringLiteral("Internal error: cannot find python YumIO"));
}

void TestYumIOLife::exitingConstructorIsReported()
{
    share->write(ScriptShare::preamble() +
                 "class YumIO:\n"
                 "    def __init__(self):\n"
                 "        yumIOC.errorlog(0, 'the configuration is bad')\n"
                 "        sys.exit(1)\n");
    failToStart(QStringLiteral("the configuration is bad\nUnable to initialize"),
                QStringLiteral("Close"));
}

void TestYumIOLife::raisingConstructorIsAnInternalError()
{
    share->write(ScriptShare::preamble() +
                 "class YumIO:\n    def __init__(self): raise ValueError('no')\n");
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .textContains(QStringLiteral("python exception occurred from C code"))
        .press(QStringLiteral("OK"));
    driver.expect(QStringLiteral("VOK Yum Error"))
        .text(QStringLiteral("Internal error: cannot create python yumIO"))
        .press(QStringLiteral("OK"));
    engine->setup(&parent, nullptr, nullptr);
    QVERIFY(!engine->initialize());
    QCOMPARE(driver.driven(), 2);
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOLife::failedStartCanBeRepeated()
{
    share->remove();
    failToStart(QStringLiteral("Internal error: unable to open YumIO.py"));
    engine->takeLog();
    share->write(script);
    start();
}

void TestYumIOLife::scriptFindsWhatItNeeds()
{
    char name[] = "vok-test";
    program = name;
    start();
    program = nullptr;
    QCOMPARE(number("seen['argv'] == ['vok-test', 'info']"), 1L);
    QCOMPARE(number("seen['rpm']"), 1L);
    QCOMPARE(number("seen['file'] == 'YumIO.py'"), 1L);
    QCOMPARE(number("seen['sigint']"), 1L);
    QCOMPARE(number("__name__ == '__main__'"), 1L);
    QVERIFY(PyDict_Check(engine->rpmDict));
    QVERIFY(PyDict_GetItemString(engine->rpmDict, "RPMTAG_NAME"));
}

void TestYumIOLife::secondStartDoesNothing()
{
    start();
    PyObject* const object = engine->yumIO;
    share->remove();
    QVERIFY(engine->initialize());
    QCOMPARE(engine->yumIO, object);
    QCOMPARE(number("len(made)"), 1L);
    QCOMPARE(engine->takeLog(), QStringList());
}

void TestYumIOLife::optionalExceptionClassesMayBeMissing()
{
    share->write(script + "sys.modules['sqlite3'] = None\n"
                          "del yum.Errors.NoMoreMirrorsRepoError\n");
    start();
    QVERIFY(!engine->sqliteOperationalError);
    QVERIFY(!engine->noMoreMirrorsRepoError);
    QVERIFY(engine->lockError);
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOLife::moduleHasTheFunctions()
{
    start();
    for (const char* name :
         {"stdoutWrite", "stderrWrite", "log", "errorlog", "collectProgress",
          "collectGrabMeterStart", "collectGrabMeterUpdate", "collectGrabMeterEnd",
          "collectGrabMeterFailure", "collectGrabMultiMeterStart", "collectGrabMultiMeterNew",
          "collectGrabMultiMeterRemove", "collectGrabMultiMeterEnd"}) {
        PyObject* function = engine->pyLookup((QByteArray("yumIOC.") + name).constData(), true);
        QVERIFY2(function && PyCFunction_Check(function), name);
    }
}

void TestYumIOLife::secondEngineGetsTheCallbacks()
{
    start();
    engine->py("yumIOC.stdoutWrite('first\\n')");
    QCOMPARE(engine->takeLog(), QStringList(QStringLiteral("1 0 first")));
    engine.reset();
    engine = std::make_unique<EngineProbe>();
    QVERIFY(engine->startInterpreter());
    if (!PyRef::adopt(PyImport_ImportModule("rpm")) && PyErr_Occurred()) {
        PyErr_Clear();
        QSKIP("this rpm module can be loaded into one interpreter of a process only");
    }
    start();
    engine->py("yumIOC.stdoutWrite('second\\n')");
    QCOMPARE(engine->takeLog(), QStringList(QStringLiteral("1 0 second")));
}

void TestYumIOLife::clearMakesANewObject()
{
    start();
    engine->py("import weakref");
    PyObject* old = engine->yumIO;
    const PyRef alive = engine->pyCall("weakref.ref", "(O)", old);
    engine->clear();
    QCOMPARE(number("calls == [('flush', 1)] and len(made) == 2"), 1L);
    QVERIFY(engine->yumIO);
    const PyRef referred = PyRef::adopt(PyObject_CallObject(alive.get(), nullptr));
    QVERIFY2(referred.get() == Py_None, "the old object is still referred to");
}

void TestYumIOLife::clearSurvivesAnObjectThatCannotBeMade()
{
    start();
    engine->py("good = YumIO.__init__\n"
               "def refuse(self): sys.exit(3)\n"
               "YumIO.__init__ = refuse");
    engine->clear();
    QVERIFY(!engine->yumIO);
    QVERIFY(!PyErr_Occurred());
    engine->py("YumIO.__init__ = good");
    engine->clear();
    QVERIFY(engine->yumIO);
}

void TestYumIOLife::clearingReleasesEveryObjectOfAChain()
{
    start();
    const PyRef objects[] = {engine->pyr("[1]"), engine->pyr("[2]"), engine->pyr("[3]")};
    for (const PyRef& object : objects)
        Py_INCREF(object.get());
    Package::Entry* first = row(QStringLiteral("a"), objects[0].get());
    first->next = row(QStringLiteral("a"), objects[1].get());
    engine->entries.append(first);
    engine->entries.append(row(QStringLiteral("b"), objects[2].get()));
    engine->entryHash.insert({false, QStringLiteral("a"), QStringLiteral("noarch")}, first);
    engine->bestByName.insert(QStringLiteral("a"), first);
    engine->biArchs.insert(QStringLiteral("noarch"));
    QCOMPARE(engine->count(), 2);

    StandardError terminal;
    engine->clearEntries();
    QCOMPARE(terminal.end(), QByteArray());
    for (const PyRef& object : objects)
        QCOMPARE(Py_REFCNT(object.get()), Py_ssize_t(1));
    QVERIFY(engine->entries.isEmpty() && engine->entryHash.isEmpty());
    QVERIFY(engine->bestByName.isEmpty() && engine->biArchs.isEmpty());
    QVERIFY(!engine->clearingEntries);
}

void TestYumIOLife::tableIsEmptyWhileEntriesAreCleared()
{
    start();
    engine->entries.append(row(QStringLiteral("a")));
    QCOMPARE(engine->count(), 1);
    QList<int> counts;
    bool flagged = false;
    QMetaObject::invokeMethod(
        this,
        [&] {
            flagged = engine->clearingEntries;
            counts.append(engine->count());
            if (engine->begin() == engine->end())
                counts.append(0);
        },
        Qt::QueuedConnection);
    engine->clearEntries();
    QVERIFY(flagged);
    QCOMPARE(counts, QList<int>({0, 0}));
}

void TestYumIOLife::quittingDropsEntriesSilently()
{
    start();
    const PyRef object = engine->pyr("[1]");
    Py_INCREF(object.get());
    Package::Entry* first = row(QStringLiteral("a"), object.get());
    Py_INCREF(object.get());
    first->next = row(QStringLiteral("a"), object.get());
    engine->entries.append(first);
    StandardError terminal;
    engine->clearEntriesBeforeQuit();
    QCOMPARE(terminal.end(), QByteArray());
    // Forgotten, not released.
    QCOMPARE(Py_REFCNT(object.get()), Py_ssize_t(3));
    QCOMPARE(engine->count(), 0);
    QVERIFY(engine->clearingEntries);
    Py_DECREF(object.get());
    Py_DECREF(object.get());

    // One that still holds an object is told, once a process.
    StandardError warned;
    delete row(QStringLiteral("a"), object.get());
    delete row(QStringLiteral("b"), object.get());
    QCOMPARE(warned.end().count("extant python obj"), 1);
}

void TestYumIOLife::loadedExtraDataIsNotLoadedAgain()
{
    start();
    engine->fileListsCollected = engine->otherDataCollected = true;
    // A load would fail: the script's object can't.
    DialogDriver guard;
    QVERIFY(engine->collectFileLists());
    QVERIFY(engine->collectOtherData());
    QVERIFY(engine->areFileListsCollected() && engine->areOtherDataCollected());
    QCOMPARE(engine->takeLog(), QStringList());
}

void TestYumIOLife::endUnlocksTheNewestObject()
{
    start();
    engine->yumLocked = true;
    engine->clear();
    QVERIFY(engine->yumLocked);
    engine.reset();
    QCOMPARE(unlocked(), QByteArray("2\n"));
}

void TestYumIOLife::endWithoutALockUnlocksNothing()
{
    start();
    engine.reset();
    QCOMPARE(unlocked(), QByteArray());
}

void TestYumIOLife::endSaysWhyItCannotUnlock()
{
    start();
    QFile refuse(directory->filePath(QStringLiteral("refuse")));
    QVERIFY(refuse.open(QIODevice::WriteOnly));
    engine->yumLocked = true;
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .text(QStringLiteral("Unable to release yum lock"))
        .press(QStringLiteral("Close"));
    engine.reset();
    QCOMPARE(driver.driven(), 1);
}

void TestYumIOLife::endIsSilent()
{
    start();
    engine->py("import atexit\n"
               "atexit.register(lambda: sys.stdout.write(''))\n"
               "atexit.register(lambda: yumIOC.stderrWrite('too late\\n'))");
    StandardError terminal;
    engine.reset();
    QCOMPARE(terminal.end(), QByteArray());
}

void TestYumIOLife::engineNeverStartedEndsToo()
{
    engine->setup(&parent, nullptr, nullptr);
    engine->entries.append(row(QStringLiteral("a")));
    engine->clearEntries();
    QCOMPARE(engine->count(), 0);
    engine.reset();
    QVERIFY(!EngineProbe::interpreterRuns());
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestYumIOLife tests;
    // Newer rpm modules can be loaded into one interpreter of a process only.
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_YumIOLife.moc"
