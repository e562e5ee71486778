// SPDX-License-Identifier: GPL-2.0-or-later
#include "EngineProbe.h"
#include "WorkRunner.h"

#include "engine/YumIODialogs.h"
#include "support/DialogDriver.h"

#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

const QByteArray script = ScriptShare::preamble() + R"(
import sqlite3
class YumIO:
    def ioError(self): raise IOError(5, 'disk broke')
    def interrupt(self): raise KeyboardInterrupt()
    def assertion(self): assert False, 'never so'
    def mirrors(self): raise NoMoreMirrorsRepoError('all tried')
    def locked(self): raise RepoError('cannot: database is locked now')
    def sqliteLocked(self): raise sqlite3.OperationalError('database is locked')
    def otherRepo(self): raise RepoError('odd repository')
    def bdb(self): raise bdb.BdbQuit('debugger gone')
    def apply(self):
        yumIOC.errorlog(0, 'first line')
        yumIOC.errorlog(5, 'detail of no interest')
        raise YumBaseError('no such package')
    def unknown(self): raise RuntimeError('nobody expects this')
    def flush(self): pass
)";

} // namespace

class TestYumIOReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void errorNumberBehindAColonOpensALine();
    void errorNumberElsewhereStaysInItsLine();
    void emptyTextIsOneEmptyLine();
    void finalNewlineLeavesAnEmptyLine();
    void tellsReadersOnceAndWithoutTheMutex();
    void scriptLogsWithItsLevel();
    void scriptLogTakesStringsAndBytesOnly();
    void transactionTextGrowsUntilTheListingWasShown();
    void errorLogIsNoTransactionInfo();
    void errorShowsOneButton();
    void warningShowsOneButton();
    void angleBracketsAreShownAsTheyAre();
    void errorFromAnyThreadIsShown();
    void openDialogLeavesTheInterpreterToTheGui();
    void expectingMarksTheLog();
    void aFieldReadWithinAScopeKeepsItsMark();
    void understandsWhatTheScriptRaises_data();
    void understandsWhatTheScriptRaises();
    void baseErrorShowsTheErrorLinesOfTheScope();
    void withoutAScopeOnlyTheMessageIsShown();
    void nothingRaisedMeansFalse();
    void otherRepositoryErrorsAreInternalErrors();
    void unexpectedExceptionIsNoCommunicationError();
    void reapsChildrenAndSaysSo();
    void noChildToReapIsFine();
    void childSignalIsRestored();

private:
    QStringList failed(const char* method, const char* title, const QString& shown);

    QWidget parent;
    std::unique_ptr<ScriptShare> share;
    EngineProbe engine;
};

void TestYumIOReport::initTestCase()
{
    share = std::make_unique<ScriptShare>(script);
    engine.setup(&parent, nullptr, nullptr);
    QVERIFY(engine.initialize());
    QVERIFY(engine.sqliteOperationalError);
    QVERIFY(engine.noMoreMirrorsRepoError);
}

void TestYumIOReport::cleanup()
{
    engine.takeLog();
    engine.applyState.transactionText.clear();
    engine.applyState.transactionListed = false;
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOReport::errorNumberBehindAColonOpensALine()
{
    engine.log(Log::Plain, 2, QStringLiteral("http://host/file: [Errno 5] broken"));
    QCOMPARE(engine.takeLog(), QStringList({QStringLiteral("0 2 http://host/file:"),
                                            QStringLiteral("0 2 [Errno 5] broken")}));
    // A copy is rewritten each time; the number may be missing, the blank behind may not.
    engine.log(Log::Plain, 2, QStringLiteral("a: [Errno ] b: [Errno 14] c: [Errno 5]d"));
    QCOMPARE(engine.takeLog(),
             QStringList({QStringLiteral("0 2 a:"), QStringLiteral("0 2 [Errno ] b:"),
                          QStringLiteral("0 2 [Errno 14] c: [Errno 5]d")}));
}

void TestYumIOReport::errorNumberElsewhereStaysInItsLine()
{
    engine.log(Log::Error, 0, QStringLiteral("broken [Errno 5] here"));
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("3 0 broken [Errno 5] here")));
    engine.log(Log::Error, 0, QStringLiteral("a: [errno 5] here"));
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("3 0 a: [errno 5] here")));
}

void TestYumIOReport::emptyTextIsOneEmptyLine()
{
    engine.log(Log::Action, 0, QString());
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("4 0 ")));
}

void TestYumIOReport::finalNewlineLeavesAnEmptyLine()
{
    engine.log(Log::Error, 1, QStringLiteral("a\nb\n"));
    QCOMPARE(engine.takeLog(), QStringList({QStringLiteral("3 1 a"), QStringLiteral("3 1 b"),
                                            QStringLiteral("3 1 ")}));
}

void TestYumIOReport::tellsReadersOnceAndWithoutTheMutex()
{
    int lines = -1;
    int times = 0;
    const auto connection = connect(&engine.getLogEntries(), &Log::EntryList::appended, this, [&] {
        ++times;
        lines = engine.logLines().size();
    });
    engine.log(Log::Plain, 0, QStringLiteral("a\nb\nc"));
    disconnect(connection);
    QCOMPARE(times, 1);
    QCOMPARE(lines, 3);
}

void TestYumIOReport::scriptLogsWithItsLevel()
{
    engine.py("yumIOC.log(3, 'some\\nlines')\n"
              "yumIOC.errorlog(1, 'gr\\u00fcn: [Errno 2] x')\n"
              "yumIOC.log(-1, b'bytes')");
    QCOMPARE(engine.takeLog(),
             QStringList({QStringLiteral("0 3 some"), QStringLiteral("0 3 lines"),
                          QString::fromUtf8("3 1 gr\xc3\xbcn:"), QStringLiteral("3 1 [Errno 2] x"),
                          QStringLiteral("0 0 bytes")}));
}

void TestYumIOReport::scriptLogTakesStringsAndBytesOnly()
{
    engine.py("refused = []\n"
              "for call in (lambda: yumIOC.log(1, 5), lambda: yumIOC.log('x', 'y'),\n"
              "             lambda: yumIOC.log(1), lambda: yumIOC.errorlog(1, None)):\n"
              "    try: call()\n"
              "    except TypeError: refused.append(1)\n");
    QCOMPARE(PyList_Size(engine.pyLookup("refused", false)), Py_ssize_t(4));
    QCOMPARE(engine.takeLog(), QStringList());
}

void TestYumIOReport::transactionTextGrowsUntilTheListingWasShown()
{
    engine.py("yumIOC.log(3, 'one')\nyumIOC.errorlog(3, 'two')");
    QCOMPARE(engine.applyState.transactionText, QStringLiteral("one\ntwo\n"));
    engine.applyState.transactionListed = true;
    engine.py("yumIOC.log(3, 'three')\nyumIOC.errorlog(3, 'four')");
    QCOMPARE(engine.applyState.transactionText, QStringLiteral("one\ntwo\n"));
    QCOMPARE(engine.takeLog().size(), 4);
}

void TestYumIOReport::errorLogIsNoTransactionInfo()
{
    engine.py("yumIOC.errorlog(2, 'TSINFO: Marking x as install')");
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("3 2 TSINFO: Marking x as install")));
}

void TestYumIOReport::errorShowsOneButton()
{
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .text(QStringLiteral("went wrong"))
        .act([](QWidget* box) {
            QCOMPARE(box->findChildren<QPushButton*>().size(), 1);
            QCOMPARE(qobject_cast<QMessageBox*>(box)->icon(), QMessageBox::Critical);
        })
        .press(QStringLiteral("OK"));
    engine.error(QStringLiteral("went wrong"));
    QCOMPARE(driver.driven(), 1);
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("3 0 went wrong")));
}

void TestYumIOReport::warningShowsOneButton()
{
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Warning"))
        .text(QStringLiteral("looks odd"))
        .act([](QWidget* box) {
            QCOMPARE(qobject_cast<QMessageBox*>(box)->icon(), QMessageBox::Warning);
        })
        .pressKey(Qt::Key_Escape);
    engine.warning("looks odd");
    QCOMPARE(driver.driven(), 1);
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("2 0 looks odd")));
}

void TestYumIOReport::angleBracketsAreShownAsTheyAre()
{
    DialogDriver driver;
    const QString text = QStringLiteral("<b>no</b> <urlopen error>");
    driver.expect(QStringLiteral("VOK Yum Error"))
        .act([](QWidget* box) {
            QCOMPARE(qobject_cast<QMessageBox*>(box)->textFormat(), Qt::PlainText);
        })
        .press(QStringLiteral("OK"));
    engine.error(text);
    QCOMPARE(driver.driven(), 1);
}

void TestYumIOReport::errorFromAnyThreadIsShown()
{
    // As while a work thread runs: `dialogs` is that thread's, yet others have something to say.
    DialogDriver driver;
    WorkRunner worker([&] {
        YumIODialogsUser user(engine.dialogs, &parent);
        engine.error(QStringLiteral("of the worker"));
        std::thread other([&] { engine.error(QStringLiteral("of another thread")); });
        other.join();
        QMetaObject::invokeMethod(
            &engine, [&] { engine.error(QStringLiteral("of the GUI thread")); },
            Qt::BlockingQueuedConnection);
    });
    for (const char* text : {"of the worker", "of another thread", "of the GUI thread"})
        driver.expect(QStringLiteral("VOK Yum Error"))
            .text(QString::fromLatin1(text))
            .press(QStringLiteral("OK"));
    worker.runToEnd();
    QVERIFY(driver.waitUntilDone());
    QCOMPARE(driver.driven(), 3);
    QCOMPARE(engine.takeLog().size(), 3);
}

void TestYumIOReport::openDialogLeavesTheInterpreterToTheGui()
{
    DialogDriver driver;
    long product = 0;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .act([&](QWidget*) {
            Python::PyGILStateWrapper lock(true);
            product = PyLong_AsLong(engine.pyr("6 * 7").get());
        })
        .press(QStringLiteral("OK"));
    Python::PyThreadStateWrapper away;
    bool lockedAgain = false;
    WorkRunner worker([&] {
        Python::PyGILStateWrapper lock(true);
        YumIODialogsUser user(engine.dialogs, &parent);
        engine.error(QStringLiteral("of the worker"));
        lockedAgain = PyGILState_Check();
    });
    worker.runToEnd();
    QCOMPARE(product, 42L);
    QVERIFY(lockedAgain);
    away.restore();
}

void TestYumIOReport::expectingMarksTheLog()
{
    engine.pyExceptStart();
    engine.log(Log::Plain, 0, QStringLiteral("a\nb"));
    engine.commExceptSetup();
    QCOMPARE(engine.exceptLogStart, 2);
    engine.pyExceptClear();
    QCOMPARE(engine.exceptLogStart, -1);
}

void TestYumIOReport::aFieldReadWithinAScopeKeepsItsMark()
{
    const PyRef package =
        engine.pyr("type('Package', (), {'returnSimple': lambda self, field: field})()");
    engine.pyExceptStart();
    engine.log(Log::Plain, 0, QStringLiteral("a\nb"));
    engine.commExceptSetup();
    engine.log(Log::Plain, 0, QStringLiteral("c"));
    QCOMPARE(engine.simpleString(package.get(), "url"), QStringLiteral("url"));
    QCOMPARE(engine.exceptLogStart, 2);
    engine.pyExceptClear();
    QCOMPARE(engine.exceptLogStart, -1);
}

/// What the log has after `method` was called in a communication scope with action "test things"
/// and one dialog was answered.
QStringList TestYumIOReport::failed(const char* method, const char* title, const QString& shown)
{
    DialogDriver driver;
    driver.expect(QString::fromLatin1(title))
        .text(shown)
        .press(shown.contains(QLatin1String("locked unexpectedly")) ||
                       shown.contains(QLatin1String("debugger"))
                   ? QStringLiteral("Close")
                   : QStringLiteral("OK"));
    engine.pyExceptStart();
    engine.commExceptSetup();
    const PyRef result = engine.pyMethodCall(engine.yumIO, method, "()");
    const bool raised = engine.commExceptRaised(result.get(), QStringLiteral("test things"));
    engine.pyExceptClear();
    if (!raised || driver.driven() != 1)
        return {QStringLiteral("not reported")};
    return engine.takeLog();
}

void TestYumIOReport::understandsWhatTheScriptRaises_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("walkbackEnd");
    QTest::newRow("I/O") << QByteArray("ioError")
                         << QStringLiteral(
                                "Unable to test things: I/O Error: [Errno 5] disk broke\n\n"
                                "Emitting a walkback to the Log window.")
                         << QStringLiteral("3 0 OSError: [Errno 5] disk broke");
    QTest::newRow("signal")
        << QByteArray("interrupt")
        << QStringLiteral("Unable to test things: KeyboardInterrupt\n\n"
                          "This usually means VOK was sent signal SIGINT, SIGTERM, or similar.\n\n"
                          "But urlgrabber also can raise this error for several situations where "
                          "it is just guessing.\nSo, emitting a walkback to the Log window.")
        << QStringLiteral("3 0 KeyboardInterrupt");
    QTest::newRow("assertion")
        << QByteArray("assertion")
        << QStringLiteral("Internal error: python assertion failed\n"
                          "When reporting this issue, please include the contents of the\n"
                          "Log window, which should contain a walkback.")
        << QStringLiteral("3 0 AssertionError: never so");
    QTest::newRow("mirrors") << QByteArray("mirrors")
                             << QStringLiteral("Unable to test things: metadata unavailable from "
                                               "all repo mirrors:\nall tried")
                             << QString();
    const QString locked =
        QStringLiteral("Unable to test things: a repository's sqlite database was locked "
                       "unexpectedly\nOn some distributions, PackageKit has been known to cause "
                       "this.");
    QTest::newRow("locked") << QByteArray("locked") << locked << QString();
    QTest::newRow("sqlite locked") << QByteArray("sqliteLocked") << locked << QString();
    QTest::newRow("debugger") << QByteArray("bdb")
                              << QStringLiteral("debugger gone\nUnable to test things")
                              << QString();
}

void TestYumIOReport::understandsWhatTheScriptRaises()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, shown);
    QFETCH(QString, walkbackEnd);
    const QStringList lines = failed(method.constData(), "VOK Yum Error", shown);
    QCOMPARE(lines.contains(QStringLiteral("3 0 Traceback (most recent call last):")),
             !walkbackEnd.isEmpty());
    if (!walkbackEnd.isEmpty())
        QVERIFY2(lines.contains(walkbackEnd), qPrintable(lines.join(QLatin1Char('\n'))));
}

void TestYumIOReport::baseErrorShowsTheErrorLinesOfTheScope()
{
    engine.log(Log::Error, 0, QStringLiteral("of an earlier scope"));
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .text(QStringLiteral("first line\nno such package\nUnable to apply changes"))
        .press(QStringLiteral("Close"));
    engine.pyExceptStart();
    engine.commExceptSetup();
    const PyRef result = engine.pyMethodCall(engine.yumIO, "apply", "()");
    QVERIFY(engine.commExceptRaised(result.get(), QStringLiteral("apply changes")));
    engine.pyExceptClear();
    QCOMPARE(driver.driven(), 1);
    QCOMPARE(engine.takeLog(), QStringList({QStringLiteral("3 0 of an earlier scope"),
                                            QStringLiteral("3 0 first line"),
                                            QStringLiteral("3 5 detail of no interest"),
                                            QStringLiteral("3 0 no such package"),
                                            QStringLiteral("3 0 Unable to apply changes")}));
}

void TestYumIOReport::withoutAScopeOnlyTheMessageIsShown()
{
    engine.log(Log::Error, 0, QStringLiteral("long ago"));
    QCOMPARE(engine.exceptLogStart, -1);
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .text(QStringLiteral("just this"))
        .press(QStringLiteral("Close"));
    engine.pythonException(QStringLiteral("just this"));
    QCOMPARE(driver.driven(), 1);
}

void TestYumIOReport::nothingRaisedMeansFalse()
{
    DialogDriver guard;
    engine.pyExceptStart();
    engine.commExceptSetup();
    QVERIFY(!engine.commExceptRaised(nullptr, QStringLiteral("test things")));
    PyErr_SetString(PyExc_OSError, "pending");
    QVERIFY(!engine.commExceptRaised(Py_None, QStringLiteral("test things")));
    QVERIFY(PyErr_Occurred());
    engine.pyExceptClear();
    QVERIFY(!PyErr_Occurred());
    QCOMPARE(engine.takeLog(), QStringList());
}

void TestYumIOReport::otherRepositoryErrorsAreInternalErrors()
{
    const QStringList lines =
        failed("otherRepo", "VOK Yum Error",
               QStringLiteral("Internal error: python exception occurred from C code.\n"
                              "When reporting this issue, please include the contents of the\n"
                              "Log window, which should contain a walkback."));
    QVERIFY2(lines.contains(QStringLiteral("3 0 RepoError: odd repository")) ||
                 lines.contains(QStringLiteral("3 0 __main__.RepoError: odd repository")),
             qPrintable(lines.join(QLatin1Char('\n'))));
}

void TestYumIOReport::unexpectedExceptionIsNoCommunicationError()
{
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .textContains(QStringLiteral("Internal error: python exception occurred from C code."))
        .press(QStringLiteral("OK"));
    engine.pyExceptStart();
    engine.commExceptSetup();
    const PyRef result = engine.pyMethodCall(engine.yumIO, "unknown", "()");
    QVERIFY(!engine.commExceptRaised(result.get(), QStringLiteral("test things")));
    engine.pyExceptClear();
    QCOMPARE(driver.driven(), 1);
}

void TestYumIOReport::reapsChildrenAndSaysSo()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    QVERIFY(child > 0);
    siginfo_t info;
    // Waits for the end without reaping.
    QCOMPARE(waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    QVERIFY(engine.reapChildren());
    QCOMPARE(engine.takeLog(),
             QStringList(QStringLiteral("2 0 Reaped zombie child %1").arg(child)));
}

void TestYumIOReport::noChildToReapIsFine()
{
    DialogDriver guard;
    QVERIFY(engine.reapChildren());
    QCOMPARE(engine.takeLog(), QStringList());
}

void TestYumIOReport::childSignalIsRestored()
{
    const auto handler = [] {
        struct sigaction action = {};
        sigaction(SIGCHLD, nullptr, &action);
        return action.sa_handler;
    };
    std::signal(SIGCHLD, [](int) {});
    const auto before = handler();
    engine.sigchldDisable();
    QVERIFY(handler() == SIG_DFL);
    engine.sigchldRestore();
    QVERIFY(handler() == before);
    std::signal(SIGCHLD, SIG_DFL);
}

QTEST_MAIN(TestYumIOReport)
#include "tst_YumIOReport.moc"
