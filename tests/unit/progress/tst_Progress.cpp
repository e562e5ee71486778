// SPDX-License-Identifier: GPL-2.0-or-later
#include "ProgressTest.h"

#include <QSignalSpy>
#include <QTest>

using Progress::ThreadState;

namespace
{

Steps stepsOf(const QSignalSpy& spy, int emission, int argument)
{
    return spy.at(emission).at(argument).value<Steps>();
}

ThreadsState lastState(const QSignalSpy& spy)
{
    return spy.last().at(0).value<ThreadsState>();
}

} // namespace

class TestProgress : public ProgressTest
{
    Q_OBJECT

private Q_SLOTS:
    void registersTheTypesOfItsSignals();
    void copiesOfTheSlotsAreIndependent();
    void startsATotalAndLeavesTheItem();
    void startsAnItemWhereTheOneBeforeEnds();
    void movesTheTotalInProportion();
    void dropsTheLastItemValueWithinTenMilliseconds();
    void signalsTheLastTotalValueWithinTenMillisecondsOnce();
    void forgetsATotalValueThatComesTooSoon();
    void holdsTotalValuesBackBeforeTheFirstItem();
    void clampsAnItemValueAboveTheMaximum();
    void anItemWithoutMaximumIsAtItsEnd();
    void startsAnItemOfNoStepsWhereThereAreNoActs();
    void clampsTheActToTheCount();
    void actsTileTheStretch();
    void moreActsMoveTheTotalBackward();
    void endingTheActsJumpsToTheEndOfTheStretch();
    void parallelDownloadsAddUp();
    void aValueThatGoesDownIsTakenOff();
    void doesNotClampTheLastActOfParallelDownloads();
    void retryTakesOffWhatTheSlotHadDelivered();
    void showsASingleDownloadOnTheItemBar();
    void leavesTheItemActivityAloneWithManySlots();
    void endedSlotKeepsItsNumbers();
    void endingTheThreadsLeavesNoSlots();
    void resetLeavesNoSlotsAndMaximaOfOne();
};

void TestProgress::registersTheTypesOfItsSignals()
{
    Probe object(total.get(), item.get());
    QCOMPARE(QMetaType::type("Steps"), qMetaTypeId<Steps>());
    QCOMPARE(QMetaType::type("ThreadsState"), qMetaTypeId<ThreadsState>());

    QSignalSpy spy(&object, &Probe::updateThreadsStateSig);
    object.setupItemActsThreads(QString(), 0, 1, 3, 100);
    QCOMPARE(lastState(spy).count(), 3U);
}

void TestProgress::copiesOfTheSlotsAreIndependent()
{
    QCOMPARE(ThreadsState().count(), 0U);

    ThreadsState first(2);
    QCOMPARE(first.count(), 2U);
    QCOMPARE(first[1].activity, QString());
    QCOMPARE(first[1].value, Steps(0));
    QCOMPARE(first[1].maximum, Steps(1));
    QCOMPARE(first[1].state, ThreadState::NotStarted);

    ThreadsState copy(first);
    ThreadsState assigned(5);
    assigned = first;
    first[1].value = 7;
    QCOMPARE(copy[1].value, Steps(0));
    QCOMPARE(assigned.count(), 2U);
    QCOMPARE(assigned[1].value, Steps(0));
    copy[0].activity = QStringLiteral("a");
    QCOMPARE(first[0].activity, QString());
}

void TestProgress::startsATotalAndLeavesTheItem()
{
    Probe object(total.get(), item.get());
    object.startItem(QStringLiteral("item"), 300, 10);
    object.startItem(QStringLiteral("item"), 100, 20);
    QSignalSpy spy(&object, &Probe::startTotalSig);
    object.startTotal(QStringLiteral("all"), 1000);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("all"));
    QCOMPARE(stepsOf(spy, 0, 1), Steps(1000));
    QCOMPARE(object.totalValue, Steps(0));
    QCOMPARE(object.totalMaximum, Steps(1000));
    QCOMPARE(object.itemStart, Steps(300));
    QCOMPARE(object.itemEnd, Steps(400));
    QCOMPARE(object.itemMaximum, Steps(20));
}

void TestProgress::startsAnItemWhereTheOneBeforeEnds()
{
    Probe object(total.get(), item.get());
    object.startTotal(QStringLiteral("all"), 1000);
    object.startItem(QStringLiteral("first"), 300, 10);
    object.passThrottle();
    object.setItemValue(5);
    QSignalSpy spy(&object, &Probe::startItemSig);
    object.startItem(QStringLiteral("second"), 200, 40);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("second"));
    QCOMPARE(stepsOf(spy, 0, 1), Steps(300));
    QCOMPARE(stepsOf(spy, 0, 2), Steps(40));
    QCOMPARE(object.itemStart, Steps(300));
    QCOMPARE(object.itemEnd, Steps(500));
    QCOMPARE(object.itemValue, Steps(0));
}

void TestProgress::movesTheTotalInProportion()
{
    Probe object(total.get(), item.get());
    object.startTotal(QString(), 1000);
    object.startItem(QString(), 100, 1);
    object.startItem(QString(), 100, 3);
    QSignalSpy spy(&object, &Probe::setItemValueSig);
    object.passThrottle();
    object.setItemValue(2);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 0), Steps(166)); // 100 + 2 * 100 / 3
    QCOMPARE(stepsOf(spy, 0, 1), Steps(2));
    QCOMPARE(total->value(), 166);
    QCOMPARE(item->value(), 2);
}

void TestProgress::dropsTheLastItemValueWithinTenMilliseconds()
{
    Probe object(total.get(), item.get());
    QSignalSpy spy(&object, &Probe::setItemValueSig);
    QVERIFY(runsWithinThrottle([&] {
        object.reset();
        object.startItem(QString(), 200, 100);
        object.setItemValue(99);
        object.setItemValue(100);
    }));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(object.itemValue, Steps(100));
    QCOMPARE(object.totalValue, Steps(200));
    QCOMPARE(item->value(), 0);
    spy.clear();

    // An earlier value that got through holds the last one back just the same.
    bool held = false;
    for (int attempt = 0; attempt < 50 && !held; ++attempt) {
        object.reset();
        object.startItem(QString(), 200, 100);
        object.passThrottle();
        spy.clear();
        QElapsedTimer clock;
        clock.start();
        object.setItemValue(99);
        object.setItemValue(100);
        held = clock.elapsed() <= 9;
    }
    QVERIFY(held);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 1), Steps(99));
    QCOMPARE(object.itemValue, Steps(100));
    QCOMPARE(object.totalValue, Steps(200));
    QCOMPARE(item->value(), 99);
}

void TestProgress::signalsTheLastTotalValueWithinTenMillisecondsOnce()
{
    Probe object(total.get(), item.get());
    QSignalSpy spy(&object, &Probe::setTotalValueSig);
    QVERIFY(runsWithinThrottle([&] {
        object.startTotal(QString(), 500);
        object.valueTime.start();
        spy.clear();
        object.setTotalValue(500);
        object.setTotalValue(500);
        object.setTotalValue(501);
    }));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 0), Steps(500));
    QCOMPARE(object.totalValue, Steps(500));
    QCOMPARE(total->value(), 500);
}

void TestProgress::forgetsATotalValueThatComesTooSoon()
{
    Probe object(total.get(), item.get());
    QSignalSpy spy(&object, &Probe::setTotalValueSig);
    QVERIFY(runsWithinThrottle([&] {
        object.startTotal(QString(), 500);
        object.valueTime.start();
        spy.clear();
        object.setTotalValue(123);
    }));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(object.totalValue, Steps(0));

    object.passThrottle();
    object.setTotalValue(124);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(object.totalValue, Steps(124));
}

void TestProgress::holdsTotalValuesBackBeforeTheFirstItem()
{
    Probe object(total.get(), item.get());
    QVERIFY(!object.valueTime.isValid());
    object.startTotal(QString(), 500);
    QSignalSpy spy(&object, &Probe::setTotalValueSig);
    object.setTotalValue(1);
    QCOMPARE(spy.count(), 0);
    object.setTotalValue(500);
    QCOMPARE(spy.count(), 1);
}

void TestProgress::clampsAnItemValueAboveTheMaximum()
{
    Probe object(total.get(), item.get());
    object.startItem(QString(), 70, 1);
    object.startItem(QString(), 333, 7);
    QSignalSpy spy(&object, &Probe::setItemValueSig);
    object.passThrottle();
    object.setItemValue(1000);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 0), Steps(403));
    QCOMPARE(stepsOf(spy, 0, 1), Steps(7));
    QCOMPARE(object.totalValue, object.itemEnd);
    QCOMPARE(object.itemValue, Steps(7));
}

void TestProgress::anItemWithoutMaximumIsAtItsEnd()
{
    Probe object(total.get(), item.get());
    object.startItem(QString(), 50, 0);
    object.setItemValue(0);
    QCOMPARE(object.totalValue, Steps(50));
    QCOMPARE(object.itemValue, Steps(0));
}

void TestProgress::startsAnItemOfNoStepsWhereThereAreNoActs()
{
    Probe object(total.get(), item.get());
    object.startItem(QString(), 40, 1);
    object.setupItemActs(1000, 0);
    QCOMPARE(object.position(0), Steps(1000));
    QCOMPARE(object.position(5), Steps(1000));

    QSignalSpy spy(&object, &Probe::startItemSig);
    object.startItemAct(QStringLiteral("act"), 77, 3);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 1), Steps(40));
    QCOMPARE(stepsOf(spy, 0, 2), Steps(77));
    QCOMPARE(object.itemStart, Steps(40));
    QCOMPARE(object.itemEnd, Steps(40));
    QCOMPARE(object.itemMaximum, Steps(77));
    QCOMPARE(item->maximum(), 77);
}

void TestProgress::clampsTheActToTheCount()
{
    Probe object(total.get(), item.get());
    object.setupItemActs(900, 3);
    object.startItemAct(QString(), 10, 1);
    object.startItemAct(QString(), 10, 9);
    QCOMPARE(object.itemStart, Steps(300));
    QCOMPARE(object.itemEnd, Steps(900));
    QCOMPARE(object.actIndex, Steps(3));
}

void TestProgress::actsTileTheStretch()
{
    Probe object(total.get(), item.get());
    object.startItem(QString(), 11, 1);
    object.setupItemActs(1000, 7);
    Steps end = object.itemEnd;
    for (const Steps act : {1, 2, 5, 6, 7}) {
        object.startItemAct(QString(), 10, act);
        QCOMPARE(object.itemStart, end);
        QCOMPARE(object.itemEnd, 11 + 1000 * act / 7);
        end = object.itemEnd;
    }
    QCOMPARE(end, Steps(1011));
}

void TestProgress::moreActsMoveTheTotalBackward()
{
    Probe object(total.get(), item.get());
    object.startTotal(QString(), 2000);
    object.startItem(QString(), 100, 1);
    object.setupItemActs(1000, 4);
    object.startItemAct(QString(), 10, 2);
    object.startItemAct(QString(), 10, 3);
    QCOMPARE(object.totalValue, Steps(600));

    QSignalSpy spy(&object, &Probe::changeItemActsSig);
    object.changeItemActs(10);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 0), Steps(400));
    QCOMPARE(object.totalValue, Steps(400));
    QCOMPARE(object.itemEnd, Steps(400));
    QCOMPARE(total->value(), 400);

    object.startItemAct(QString(), 10, 10);
    QCOMPARE(object.itemEnd, Steps(1100));
}

void TestProgress::endingTheActsJumpsToTheEndOfTheStretch()
{
    Probe object(total.get(), item.get());
    object.startTotal(QString(), 2000);
    object.startItem(QString(), 100, 1);
    object.setupItemActs(1000, 4);
    object.startItemAct(QString(), 10, 1);
    QSignalSpy spy(&object, &Probe::endItemActsSig);
    object.endItemActs();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(stepsOf(spy, 0, 0), Steps(1100));
    QCOMPARE(object.itemStart, Steps(1100));
    QCOMPARE(object.itemEnd, Steps(1100));
    QCOMPARE(object.totalValue, Steps(1100));
    QCOMPARE(total->value(), 1100);
}

void TestProgress::parallelDownloadsAddUp()
{
    Probe object(total.get(), item.get());
    object.startTotal(QString(), 2000);
    object.setupItemActs(1000, 10);
    object.startItemAct(QString(), 1, 2);
    QSignalSpy states(&object, &Probe::updateThreadsStateSig);
    object.setupItemActsThreads(QStringLiteral("downloads"), 3, 8, 3, 900);
    QCOMPARE(states.count(), 1);
    QCOMPARE(lastState(states).count(), 3U);
    QCOMPARE(object.itemStart, Steps(200));
    QCOMPARE(object.itemEnd, Steps(700));
    QCOMPARE(object.actIndex, Steps(7));

    object.startItemActThread(QStringLiteral("a"), 0, 400);
    object.startItemActThread(QStringLiteral("b"), 2, 500);
    QCOMPARE(lastState(states)[2].activity, QStringLiteral("b"));
    QCOMPARE(lastState(states)[2].maximum, Steps(500));
    QCOMPARE(lastState(states)[2].state, ThreadState::InProgress);
    QCOMPARE(lastState(states)[1].state, ThreadState::NotStarted);

    object.setItemActsThreadValue(0, 100);
    object.setItemActsThreadValue(2, 250);
    object.setItemActsThreadValue(0, 200);
    QCOMPARE(object.itemValue, Steps(450));
    QCOMPARE(object.totalValue, Steps(450)); // half of the way from 200 to 700
    QCOMPARE(states.count(), 6);
    QCOMPARE(lastState(states)[0].value, Steps(200));
    QCOMPARE(lastState(states)[2].value, Steps(250));
}

void TestProgress::aValueThatGoesDownIsTakenOff()
{
    Probe object(total.get(), item.get());
    object.setupItemActsThreads(QString(), 0, 1, 2, 900);
    object.setItemActsThreadValue(0, 300);
    object.setItemActsThreadValue(1, 200);
    object.setItemActsThreadValue(0, 50);
    QCOMPARE(object.itemValue, Steps(250));
}

void TestProgress::doesNotClampTheLastActOfParallelDownloads()
{
    Probe object(total.get(), item.get());
    object.setupItemActs(100, 4);
    object.setupItemActsThreads(QString(), 1, 7, 2, 10);
    QCOMPARE(object.itemEnd, Steps(150));
    QCOMPARE(object.actIndex, Steps(6));
}

void TestProgress::retryTakesOffWhatTheSlotHadDelivered()
{
    Probe object(total.get(), item.get());
    object.setupItemActsThreads(QString(), 0, 1, 2, 1000);
    object.startItemActThread(QStringLiteral("a"), 0, 600);
    object.setItemActsThreadValue(0, 500);
    object.setItemActsThreadValue(1, 300);
    QCOMPARE(object.itemValue, Steps(800));

    QSignalSpy states(&object, &Probe::updateThreadsStateSig);
    object.retryItemActThread(0);
    QCOMPARE(object.itemValue, Steps(300));
    QCOMPARE(object.threads[0].value, Steps(0));
    QCOMPARE(states.count(), 1);
    QCOMPARE(lastState(states)[0].value, Steps(0));
    QCOMPARE(lastState(states)[0].maximum, Steps(600));
    QCOMPARE(lastState(states)[0].state, ThreadState::Retrying);
}

void TestProgress::showsASingleDownloadOnTheItemBar()
{
    Probe object(total.get(), item.get());
    object.setupItemActsThreads(QStringLiteral("downloads"), 0, 1, 1, 1000);
    QVERIFY(item->text().startsWith(QStringLiteral("downloads")));
    object.startItemActThread(QStringLiteral("only one"), 0, 1000);
    QVERIFY(item->text().startsWith(QStringLiteral("only one")));
}

void TestProgress::leavesTheItemActivityAloneWithManySlots()
{
    Probe object(total.get(), item.get());
    object.setupItemActsThreads(QStringLiteral("downloads"), 0, 1, 2, 1000);
    QSignalSpy spy(&object, &Probe::changeItemActivitySig);
    object.startItemActThread(QStringLiteral("a"), 0, 500);
    object.startItemActThread(QStringLiteral("b"), 1, 500);
    QCOMPARE(spy.count(), 0);
    QVERIFY(item->text().startsWith(QStringLiteral("downloads")));
}

void TestProgress::endedSlotKeepsItsNumbers()
{
    Probe object(total.get(), item.get());
    object.setupItemActsThreads(QString(), 0, 1, 2, 1000);
    object.startItemActThread(QStringLiteral("a"), 1, 500);
    object.setItemActsThreadValue(1, 499);
    QSignalSpy states(&object, &Probe::updateThreadsStateSig);
    object.endItemActThread(1);
    QCOMPARE(states.count(), 1);
    QCOMPARE(lastState(states)[1].state, ThreadState::Complete);
    QCOMPARE(lastState(states)[1].value, Steps(499));
    QCOMPARE(lastState(states)[1].maximum, Steps(500));
    QCOMPARE(object.itemValue, Steps(499));
}

void TestProgress::endingTheThreadsLeavesNoSlots()
{
    Probe object(total.get(), item.get());
    object.setupItemActsThreads(QString(), 0, 1, 2, 1000);
    QSignalSpy states(&object, &Probe::updateThreadsStateSig);
    object.endItemActsThreads();
    QCOMPARE(states.count(), 1);
    QCOMPARE(lastState(states).count(), 0U);
}

void TestProgress::resetLeavesNoSlotsAndMaximaOfOne()
{
    Probe object(total.get(), item.get());
    object.startTotal(QStringLiteral("all"), 1000);
    object.startItem(QStringLiteral("item"), 100, 10);
    object.setupItemActsThreads(QString(), 0, 1, 2, 1000);
    object.setItemValue(500);
    QSignalSpy states(&object, &Probe::updateThreadsStateSig);
    QSignalSpy resets(&object, &Probe::resetSig);
    object.reset();
    QCOMPARE(resets.count(), 1);
    QCOMPARE(states.count(), 1);
    QCOMPARE(lastState(states).count(), 0U);
    QCOMPARE(object.threads.count(), 0U);
    QCOMPARE(object.totalMaximum, Steps(1));
    QCOMPARE(object.itemMaximum, Steps(1));
    QCOMPARE(object.itemStart, Steps(0));
    QCOMPARE(object.itemEnd, Steps(0));
    QCOMPARE(object.itemValue, Steps(500));
    for (const HProgressBar* bar : {total.get(), item.get()}) {
        QCOMPARE(bar->maximum(), 1);
        QVERIFY(!bar->isEnabled());
        QCOMPARE(bar->text(), QString());
    }
}

QTEST_MAIN(TestProgress)
#include "tst_Progress.moc"
