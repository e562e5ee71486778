// SPDX-License-Identifier: GPL-2.0-or-later
#include "EngineProbe.h"

#include "support/DialogDriver.h"
#include "support/ProcessPerTest.h"

#include <QDeadlineTimer>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <memory>

#include <pthread.h>

namespace
{

const QByteArray script = ScriptShare::preamble() + R"(
import signal
class YumIO:
    def flush(self): pass
)";

class Work : public QThread
{
public:
    Work(EngineProbe& engine, QEventLoop& loop, std::function<void()> function)
        : engine(engine)
        , loop(loop)
        , function(std::move(function))
    {
    }

protected:
    void run() override
    {
        engine.gate().block();
        function();
        loop.exit(0);
    }

private:
    EngineProbe& engine;
    QEventLoop& loop;
    std::function<void()> function;
};

void runWork(EngineProbe& engine, std::function<void()> function)
{
    QEventLoop loop;
    Work work(engine, loop, std::move(function));
    engine.execWorkThread(loop, work);
}

} // namespace

/// How the GUI thread waits for a work thread.
class TestYumIOWork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void shortWorkNeverEndsTheLoopTooEarly();
    void workStartsWhenTheLoopRuns();
    void workMayLockTheInterpreter();
    void lastSignalsOfAThreadAreDelivered();
    void workOutlivesTheApplicationsQuit();
    void childSignalIsBlockedWhileWorkRuns();
    void interruptHandlerIsTheSystemsAfterWork();

private:
    QWidget parent;
    std::unique_ptr<ScriptShare> share;
    std::unique_ptr<EngineProbe> engine;
};

void TestYumIOWork::init()
{
    share = std::make_unique<ScriptShare>(script);
    engine = std::make_unique<EngineProbe>();
    engine->setup(&parent, nullptr, nullptr);
    QVERIFY(engine->initialize());
}

void TestYumIOWork::cleanup()
{
    engine.reset();
    share.reset();
}

void TestYumIOWork::shortWorkNeverEndsTheLoopTooEarly()
{
    for (int round = 0; round < 300; ++round)
        engine->clearEntries();
    QVERIFY(!engine->clearingEntries);
}

void TestYumIOWork::workStartsWhenTheLoopRuns()
{
    bool looping = false;
    QMetaObject::invokeMethod(
        this, [&] { looping = true; }, Qt::QueuedConnection);
    bool seen = false;
    runWork(*engine, [&] { seen = looping; });
    QVERIFY(seen);
}

void TestYumIOWork::workMayLockTheInterpreter()
{
    long product = 0;
    bool guiLocked = true;
    QMetaObject::invokeMethod(
        this, [&] { guiLocked = PyGILState_Check(); }, Qt::QueuedConnection);
    runWork(*engine, [&] {
        Python::PyGILStateWrapper lock(true);
        product = PyLong_AsLong(engine->pyr("6 * 7").get());
    });
    QCOMPARE(product, 42L);
    QVERIFY(!guiLocked);
    QVERIFY(PyGILState_Check());
}

void TestYumIOWork::lastSignalsOfAThreadAreDelivered()
{
    std::atomic<int> sent{0};
    std::atomic<int> delivered{0};
    QEventLoop loop;
    Work work(*engine, loop, [&] {
        loop.exit(0);
        // Goes on until one isn't delivered any more: the local loop has ended then.
        do {
            ++sent;
            QMetaObject::invokeMethod(
                this, [&] { ++delivered; }, Qt::QueuedConnection);
            QDeadlineTimer patience(200);
            while (delivered < sent && !patience.hasExpired())
                QThread::yieldCurrentThread();
        } while (delivered == sent);
    });
    engine->execWorkThread(loop, work);
    QCOMPARE(delivered.load(), sent.load());
}

void TestYumIOWork::workOutlivesTheApplicationsQuit()
{
    QStringList done;
    QTimer::singleShot(0, engine.get(), [&] {
        runWork(*engine, [&] {
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [] { QCoreApplication::quit(); },
                Qt::BlockingQueuedConnection);
            // Needs the GUI thread, which has no event loop any more.
            engine->error(QStringLiteral("first"));
            done.append(QStringLiteral("first"));
        });
        // Nor has it got one for the next work.
        runWork(*engine, [&] {
            engine->error(QStringLiteral("second"));
            done.append(QStringLiteral("second"));
        });
    });
    QCoreApplication::exec();
    QCOMPARE(done, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
    engine->takeLog();
}

void TestYumIOWork::childSignalIsBlockedWhileWorkRuns()
{
    const auto blocked = [] {
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        return sigismember(&mask, SIGCHLD) == 1;
    };
    QVERIFY(!blocked());
    bool onGui = false;
    bool onWork = true;
    QMetaObject::invokeMethod(
        this, [&] { onGui = blocked(); }, Qt::QueuedConnection);
    runWork(*engine, [&] { onWork = blocked(); });
    QVERIFY(onGui);
    QVERIFY(!onWork);
    QVERIFY(!blocked());
}

void TestYumIOWork::interruptHandlerIsTheSystemsAfterWork()
{
    const auto handler = [] {
        struct sigaction action = {};
        sigaction(SIGINT, nullptr, &action);
        return action.sa_handler;
    };
    engine->py("signal.signal(signal.SIGINT, lambda *x: None)");
    QVERIFY(handler() != SIG_DFL);
    runWork(*engine, [] {});
    QVERIFY(handler() == SIG_DFL);
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestYumIOWork tests;
    // Newer rpm modules can be loaded into one interpreter of a process only.
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_YumIOWork.moc"
