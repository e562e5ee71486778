// SPDX-License-Identifier: GPL-2.0-or-later
#include "EngineProbe.h"
#include "WorkRunner.h"

#include "engine/YumIOCapturers.h"
#include "engine/YumIODialogs.h"
#include "support/DialogDriver.h"

#include <QDir>
#include <QtTest>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

const QByteArray script = ScriptShare::preamble() + R"(
class YumIO:
    def flush(self): pass
)";

void put(int fd, const QByteArray& text)
{
    for (const char *at = text.constData(), *end = at + text.size(); at < end;) {
        const ssize_t written = write(fd, at, static_cast<size_t>(end - at));
        if (written <= 0)
            return;
        at += written;
    }
}

/// What a descriptor leads to, such as "pipe:[123]".
QString target(int fd)
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(fd));
}

int openDescriptors()
{
    return static_cast<int>(QDir(QStringLiteral("/proc/self/fd"))
                                .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                                .size());
}

} // namespace

class TestYumIOCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void textWithoutANewlineWaitsForIt();
    void loneNewlineIsAnEmptyLine();
    void twoLinesInOneWriteLeaveNothing();
    void whatFollowsANewlineBeginsTheNextLine();
    void bothStreamsHaveTheirOwnLines();
    void standardErrorKindIsTheEngines();
    void rewritesNothing();
    void takesStringsAndBytesOnly();
    void writersOnTwoThreadsLoseNothing();
    void outputOfASubprocessIsLogged();
    void outputArrivesWhileTheCaptureLasts();
    void outputStillInThePipesIsNotLost();
    void outputOfTheLibraryIsNotLost();
    void moreThanAPipeHoldsIsNotLost();
    void characterInTwoPiecesIsOne();
    void restOfALineWaitsForTheNextCapture();
    void descriptorsAreRestoredAndNoneIsLeft();
    void programsInheritNothingElse();
    void backgroundProcessDoesNotDelayTheEnd();
    void afterACapturePrintGoesToTheLog();
    void endOfACaptureLeavesTheInterpreterToTheGui();
    void capturesNest();
    void failureToOpenAPipeIsReported();
    void captureOnTheGuiThread();

private:
    /// Runs `work` on a work thread within a capture.
    void capture(const std::function<void()>& work);

    std::unique_ptr<ScriptShare> share;
    QWidget parent;
    EngineProbe engine;
};

void TestYumIOCapture::initTestCase()
{
    share = std::make_unique<ScriptShare>(script);
    engine.setup(&parent, nullptr, nullptr);
    QVERIFY(engine.initialize());
}

void TestYumIOCapture::cleanup()
{
    QVERIFY(!engine.capturers);
    QCOMPARE(engine.takeLog(), QStringList());
    QCOMPARE(engine.stdoutPartial, QString());
    QCOMPARE(engine.stderrPartial, QString());
}

void TestYumIOCapture::capture(const std::function<void()>& work)
{
    WorkRunner worker([&] {
        YumIOCapturersUser user(engine.capturers, &engine);
        work();
    });
    worker.runToEnd();
}

void TestYumIOCapture::textWithoutANewlineWaitsForIt()
{
    engine.py("yumIOC.stdoutWrite('half ')");
    QCOMPARE(engine.takeLog(), QStringList());
    engine.py("yumIOC.stdoutWrite('a line\\n')");
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 half a line")));
}

void TestYumIOCapture::loneNewlineIsAnEmptyLine()
{
    engine.writeStdout(QStringLiteral("\n"));
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 ")));
}

void TestYumIOCapture::twoLinesInOneWriteLeaveNothing()
{
    engine.writeStderr(QStringLiteral("one\ntwo\n"));
    QCOMPARE(engine.takeLog(), QStringList({QStringLiteral("3 0 one"), QStringLiteral("3 0 two")}));
    QCOMPARE(engine.stderrPartial, QString());
}

void TestYumIOCapture::whatFollowsANewlineBeginsTheNextLine()
{
    engine.writeStdout(QStringLiteral("one\ntw"));
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 one")));
    engine.writeStdout(QStringLiteral("o\n"));
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 two")));
}

void TestYumIOCapture::bothStreamsHaveTheirOwnLines()
{
    engine.py("yumIOC.stdoutWrite('out')\nyumIOC.stderrWrite('err')\n"
              "yumIOC.stdoutWrite('put\\n')\nyumIOC.stderrWrite('or\\n')");
    QCOMPARE(engine.takeLog(),
             QStringList({QStringLiteral("1 0 output"), QStringLiteral("3 0 error")}));
}

void TestYumIOCapture::standardErrorKindIsTheEngines()
{
    engine.stderrKind = Log::Plain;
    engine.stderrLevel = 3;
    engine.py("yumIOC.stderrWrite('told\\n')");
    engine.stderrKind = Log::Error;
    engine.stderrLevel = 0;
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("0 3 told")));
}

void TestYumIOCapture::rewritesNothing()
{
    engine.writeStdout(QStringLiteral("a: [Errno 5] b\nTSINFO: c\n"));
    QCOMPARE(engine.takeLog(),
             QStringList({QStringLiteral("1 0 a: [Errno 5] b"), QStringLiteral("1 0 TSINFO: c")}));
}

void TestYumIOCapture::takesStringsAndBytesOnly()
{
    engine.py("refused = 0\n"
              "for call in (yumIOC.stdoutWrite, yumIOC.stderrWrite):\n"
              "    try: call(5)\n"
              "    except TypeError: refused += 1\n"
              "yumIOC.stdoutWrite(b'bytes\\n')\n");
    QCOMPARE(PyLong_AsLong(engine.pyLookup("refused", false)), 2L);
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 bytes")));
}

void TestYumIOCapture::writersOnTwoThreadsLoseNothing()
{
    const auto writer = [&] {
        for (int line = 0; line < 5000; ++line)
            engine.writeStdout(QStringLiteral("x\n"));
    };
    std::thread other(writer);
    writer();
    other.join();
    const QStringList lines = engine.takeLog();
    QCOMPARE(lines.size(), 10000);
    QCOMPARE(lines.join(QString()).count(QLatin1Char('x')), 10000);
}

void TestYumIOCapture::outputOfASubprocessIsLogged()
{
    int status = -1;
    capture([&] { status = std::system("echo said; echo complained >&2"); });
    QCOMPARE(status, 0);
    QStringList lines = engine.takeLog();
    lines.sort();
    QCOMPARE(lines, QStringList({QStringLiteral("1 0 said"), QStringLiteral("3 0 complained")}));
}

void TestYumIOCapture::outputArrivesWhileTheCaptureLasts()
{
    bool arrived = false;
    capture([&] {
        put(STDOUT_FILENO, "early\n");
        for (int tries = 0; tries < 500 && !arrived; ++tries) {
            arrived = engine.logLines().contains(QStringLiteral("1 0 early"));
            if (!arrived)
                QThread::msleep(10);
        }
    });
    QVERIFY(arrived);
    engine.takeLog();
}

void TestYumIOCapture::outputStillInThePipesIsNotLost()
{
    // The GUI thread is kept away from the notifiers until the capture ends.
    for (int round = 0; round < 20; ++round) {
        capture([] {
            put(STDOUT_FILENO, "last words\n");
            put(STDERR_FILENO, "last groans\n");
        });
        QStringList lines = engine.takeLog();
        lines.sort();
        QCOMPARE(lines, QStringList(
                            {QStringLiteral("1 0 last words"), QStringLiteral("3 0 last groans")}));
    }
}

void TestYumIOCapture::outputOfTheLibraryIsNotLost()
{
    // Buffered by the C library, since a pipe is no terminal.
    capture([] { std::printf("printed\n"); });
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 printed")));
}

void TestYumIOCapture::moreThanAPipeHoldsIsNotLost()
{
    capture([] {
        for (int line = 0; line < 40000; ++line)
            put(STDOUT_FILENO, "a line of some length that fills the pipe\n");
    });
    QCOMPARE(engine.takeLog().size(), 40000);
}

void TestYumIOCapture::characterInTwoPiecesIsOne()
{
    capture([&] {
        put(STDOUT_FILENO, "gr\xc3");
        // Until the first piece was read.
        for (int tries = 0; tries < 500; ++tries) {
            if (engine.logLines().contains(QStringLiteral("3 0 go")))
                break;
            if (tries == 0)
                put(STDERR_FILENO, "go\n");
            QThread::msleep(10);
        }
        put(STDOUT_FILENO, "\xbcn\n");
    });
    QCOMPARE(engine.takeLog(),
             QStringList({QStringLiteral("3 0 go"), QString::fromUtf8("1 0 gr\xc3\xbcn")}));
}

void TestYumIOCapture::restOfALineWaitsForTheNextCapture()
{
    capture([] { put(STDOUT_FILENO, "begun "); });
    QCOMPARE(engine.takeLog(), QStringList());
    capture([] { put(STDOUT_FILENO, "and ended\n"); });
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 begun and ended")));
}

void TestYumIOCapture::descriptorsAreRestoredAndNoneIsLeft()
{
    capture([] {});
    const QString out = target(STDOUT_FILENO);
    const QString err = target(STDERR_FILENO);
    const int before = openDescriptors();
    QString during;
    for (int round = 0; round < 5; ++round)
        capture([&] { during = target(STDERR_FILENO); });
    QVERIFY2(during.contains(QStringLiteral("pipe:")), qPrintable(during));
    QVERIFY(during != err);
    QCOMPARE(target(STDOUT_FILENO), out);
    QCOMPARE(target(STDERR_FILENO), err);
    QCOMPARE(openDescriptors(), before);
}

void TestYumIOCapture::programsInheritNothingElse()
{
    int inherited = -1;
    capture([&] {
        for (int fd = 3; fd < 256; ++fd) {
            const int flags = fcntl(fd, F_GETFD);
            if (flags >= 0 && !(flags & FD_CLOEXEC) &&
                target(fd).contains(QStringLiteral("pipe:")) &&
                (target(fd) == target(STDOUT_FILENO) || target(fd) == target(STDERR_FILENO)))
                inherited = fd;
        }
    });
    QCOMPARE(inherited, -1);
}

void TestYumIOCapture::backgroundProcessDoesNotDelayTheEnd()
{
    QElapsedTimer timer;
    timer.start();
    int status = -1;
    capture([&] { status = std::system("echo started; sleep 20 & echo $! >&2"); });
    QCOMPARE(status, 0);
    QVERIFY2(timer.elapsed() < 10000, "the capture waited for a program that goes on");
    QStringList lines = engine.takeLog();
    lines.sort();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.first(), QStringLiteral("1 0 started"));
    ::kill(lines.last().section(QLatin1Char(' '), 2).toInt(), SIGTERM);
}

void TestYumIOCapture::afterACapturePrintGoesToTheLog()
{
    capture([] {});
    engine.py("print('from the script')");
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 from the script")));
}

void TestYumIOCapture::endOfACaptureLeavesTheInterpreterToTheGui()
{
    Python::PyThreadStateWrapper away;
    long product = 0;
    WorkRunner worker([&] {
        Python::PyGILStateWrapper lock(true);
        YumIOCapturersUser user(engine.capturers, &engine);
        // Comes before the end of the capture in the GUI thread's queue, and needs what is held
        // here.
        QMetaObject::invokeMethod(
            &engine,
            [&] {
                Python::PyGILStateWrapper guiLock(true);
                product = PyLong_AsLong(engine.pyr("6 * 7").get());
            },
            Qt::QueuedConnection);
    });
    worker.runToEnd();
    QCOMPARE(product, 42L);
}

void TestYumIOCapture::capturesNest()
{
    capture([&] {
        YumIOCapturers* const outer = engine.capturers;
        put(STDOUT_FILENO, "outer\n");
        {
            YumIOCapturersUser user(engine.capturers, &engine);
            put(STDOUT_FILENO, "inner\n");
        }
        if (engine.capturers == outer)
            put(STDOUT_FILENO, "outer again\n");
    });
    QStringList lines = engine.takeLog();
    lines.sort();
    QCOMPARE(lines, QStringList({QStringLiteral("1 0 inner"), QStringLiteral("1 0 outer"),
                                 QStringLiteral("1 0 outer again")}));
}

void TestYumIOCapture::failureToOpenAPipeIsReported()
{
    const QString out = target(STDOUT_FILENO);
    const int before = openDescriptors();
    DialogDriver driver;
    driver.expect(QStringLiteral("VOK Yum Error"))
        .text(QStringLiteral("Unable to open pipe to capture rpm transaction output"))
        .press(QStringLiteral("OK"));
    rlimit saved;
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &saved), 0);
    bool survived = false;
    WorkRunner worker([&] {
        YumIODialogsUser dialogs(engine.dialogs, &parent);
        QEventLoop{}.processEvents();
        // Room for the two duplicates and nothing more; the numbers below the limit may have gaps.
        std::vector<int> fillers;
        const rlimit low = {64, saved.rlim_max};
        setrlimit(RLIMIT_NOFILE, &low);
        for (int fd = dup(0); fd >= 0; fd = dup(0))
            fillers.push_back(fd);
        for (int free = 0; free < 2; ++free) {
            close(fillers.back());
            fillers.pop_back();
        }
        auto capturers = std::make_unique<YumIOCapturers>(&engine);
        for (int fd : fillers)
            close(fd);
        setrlimit(RLIMIT_NOFILE, &saved);
        capturers.reset();
        survived = true;
    });
    worker.runToEnd();
    QVERIFY(driver.waitUntilDone());
    QVERIFY(survived);
    QCOMPARE(target(STDOUT_FILENO), out);
    QCOMPARE(openDescriptors(), before);
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral(
                                   "3 0 Unable to open pipe to capture rpm transaction output")));
}

void TestYumIOCapture::captureOnTheGuiThread()
{
    {
        YumIOCapturersUser user(engine.capturers, &engine);
        put(STDOUT_FILENO, "direct\n");
    }
    QCOMPARE(engine.takeLog(), QStringList(QStringLiteral("1 0 direct")));
}

QTEST_MAIN(TestYumIOCapture)
#include "tst_YumIOCapture.moc"
