// SPDX-License-Identifier: GPL-2.0-or-later
#include "ProgressTest.h"
#include "progress/ProgressMinion.h"

#include <QPointer>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace
{

/// Runs `body` on a thread of its own while this thread's event loop turns.
void runOnWorkThread(const std::function<void()>& body)
{
    const std::unique_ptr<QThread> thread(QThread::create(body));
    thread->setObjectName(QStringLiteral("work"));
    QSignalSpy finished(thread.get(), &QThread::finished);
    thread->start();
    QVERIFY(finished.wait());
    thread->wait();
}

} // namespace

/// What happens on the GUI thread and what on the work thread.
class TestProgressThreads : public ProgressTest
{
    Q_OBJECT

private Q_SLOTS:
    void letsTheGuiMoveOnOnTheGuiThread();
    void leavesTheWorkThreadsEventsAlone();
    void setsTheBarsFromAWorkThread();
    void userKeepsTheObjectForAScope();
    void deletesTheMinionBehindTheLastSignals();
};

void TestProgressThreads::letsTheGuiMoveOnOnTheGuiThread()
{
    Probe object(total.get(), item.get());
    QVERIFY(object.sameThread);
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, [&turns] { ++turns; });
    timer.start(0);

    object.startItem(QString(), 100, 1000);
    object.passThrottle();
    object.setItemValue(1);
    QCOMPARE(turns, 0); // no total has been started

    QVERIFY(runsWithinThrottle([&] {
        turns = 0;
        object.startTotal(QString(), 100);
        object.setItemValue(2);
    }));
    QCOMPARE(turns, 0); // too soon

    object.startTotal(QString(), 100);
    object.valueTime.start();
    object.passThrottle();
    object.passThrottle();
    object.setItemValue(3);
    QVERIFY(turns > 0);
}

void TestProgressThreads::leavesTheWorkThreadsEventsAlone()
{
    bool sameThread = true;
    int turns = 0;
    runOnWorkThread([&] {
        Probe object(total.get(), item.get());
        sameThread = object.sameThread;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&turns] { ++turns; });
        timer.start(0);
        object.startTotal(QString(), 100);
        object.startItem(QString(), 100, 1000);
        for (Steps value = 1; value <= 3; ++value) {
            object.passThrottle();
            object.setItemValue(value);
        }
    });
    QVERIFY(!sameThread);
    QCOMPARE(turns, 0);
}

void TestProgressThreads::setsTheBarsFromAWorkThread()
{
    QSemaphore seen;
    QThread* minionThread = nullptr;
    QThread* changedOn = nullptr;
    connect(
        item.get(), &HProgressBar::valueChanged, item.get(),
        [&changedOn] { changedOn = QThread::currentThread(); }, Qt::DirectConnection);

    const std::unique_ptr<QThread> thread(QThread::create([&] {
        Probe object(total.get(), item.get());
        minionThread = object.minion->thread();
        object.startTotal(QStringLiteral("all"), 1000);
        object.startItem(QStringLiteral("item"), 500, 50);
        object.passThrottle();
        object.setItemValue(25);
        seen.acquire();
    }));
    thread->start();
    const auto joined = qScopeGuard([&] {
        seen.release();
        thread->wait();
    });

    QTRY_COMPARE(item->value(), 25);
    QCOMPARE(total->value(), 250);
    QCOMPARE(total->maximum(), 1000);
    QVERIFY(total->isEnabled());
    QVERIFY(item->isEnabled());
    QCOMPARE(total->text(), QStringLiteral("all (25%)"));
    QCOMPARE(item->text(), QStringLiteral("item (50%)"));
    QCOMPARE(minionThread, QThread::currentThread());
    QCOMPARE(changedOn, QThread::currentThread());

    seen.release();
    QVERIFY(thread->wait());
    QTRY_COMPARE(item->maximum(), 1);
    QVERIFY(!item->isEnabled());
    QCOMPARE(item->text(), QString());
    QCOMPARE(total->text(), QString());
}

void TestProgressThreads::userKeepsTheObjectForAScope()
{
    Progress::Object* slot = nullptr;
    QThread* lives = nullptr;
    QThread* worked = nullptr;
    bool ended = false;
    runOnWorkThread([&] {
        {
            const Progress::User user(slot, total.get(), item.get());
            lives = slot ? slot->thread() : nullptr;
            worked = QThread::currentThread();
        }
        ended = slot == nullptr;
    });
    QVERIFY(lives);
    QCOMPARE(lives, worked);
    QVERIFY(ended);

    // The body may have deleted it itself.
    {
        const Progress::User user(slot, total.get(), item.get());
        delete slot;
        slot = nullptr;
    }
    QVERIFY(!slot);
}

void TestProgressThreads::deletesTheMinionBehindTheLastSignals()
{
    QPointer<Progress::Minion> minion;
    QString textAtEnd = QStringLiteral("unset");
    QThread* deletedOn = nullptr;

    const std::unique_ptr<QThread> thread(QThread::create([&] {
        Probe object(total.get(), item.get());
        minion = object.minion;
        connect(
            object.minion, &QObject::destroyed, object.minion,
            [&] {
                textAtEnd = item->text();
                deletedOn = QThread::currentThread();
            },
            Qt::DirectConnection);
        object.startTotal(QStringLiteral("all"), 1000);
        object.startItem(QStringLiteral("item"), 500, 50);
    }));
    thread->start();
    // Nothing reaches this thread until it turns its loop, so all signals are on their way at once.
    QVERIFY(thread->wait());
    QVERIFY(minion);
    QTRY_VERIFY(!minion);
    QCOMPARE(deletedOn, QThread::currentThread());
    QCOMPARE(textAtEnd, QString());
    QVERIFY(!item->isEnabled());
    QVERIFY(!total->isEnabled());
}

QTEST_MAIN(TestProgressThreads)
#include "tst_ProgressThreads.moc"
