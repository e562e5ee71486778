// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/MeterStage.h"

#include <QtTest>

using Progress::ThreadState;

/// Parallel downloads of an Apply.
class TestApplyDownloadBatches : public MeterStage
{
    Q_OBJECT

    void startBatch(const QString& files, const QString& bytes = "1000")
    {
        QCOMPARE(call("applyGrabMultiMeterStart", files + ", " + bytes), QString("None"));
    }

    void announce(const QString& meter)
    {
        QCOMPARE(call("applyGrabMultiMeterNew", QString("meter('%1')").arg(meter)),
                 QString("None"));
    }

    void start(const QString& meter, const QString& name, int size)
    {
        QCOMPARE(call("applyGrabMeterStart",
                      QString("meter('%1'), '%2', '', '', %3, ''").arg(meter, name).arg(size)),
                 QString("None"));
    }

    void update(const QString& meter, int amount)
    {
        QCOMPARE(call("applyGrabMeterUpdate", QString("meter('%1'), %2").arg(meter).arg(amount)),
                 QString("None"));
    }

    void end(const QString& meter, int amount)
    {
        QCOMPARE(call("applyGrabMeterEnd", QString("meter('%1'), %2").arg(meter).arg(amount)),
                 QString("None"));
    }

    void fail(const QString& meter)
    {
        QCOMPARE(call("applyGrabMeterFailure", QString("meter('%1'), 'reset by peer'").arg(meter)),
                 QString("None"));
    }

    const ThreadState& slot(unsigned int number)
    {
        return static_cast<const Progress::ThreadsState&>(progress->threads)[number];
    }

    /// Slot of a meter; 99 for one that isn't known.
    quint32 thread(const QString& meter)
    {
        const QString address = contract->eval(QString("str(id(meter('%1')))").arg(meter));
        return state().multi.meterThreads.value(reinterpret_cast<void*>(address.toULongLong()), 99);
    }

private Q_SLOTS:
    void aBatchIsOneItemWithASlotForEachFile()
    {
        open({{"multi", true}}, 2000);
        state().applyConfirmed = true;
        state().progressAct = 100;
        startBatch("3");
        QCOMPARE(items, QStringList({"Downloading 3 packages"}));
        QCOMPARE(progress->itemMaximum, Steps(1000));
        QCOMPARE(progress->threads.count(), 3U);
        QCOMPARE(slot(2).state, ThreadState::NotStarted);
        QCOMPARE(act(), 1100U);
        QCOMPARE(progress->itemEnd, Steps(1099));
        QVERIFY(state().multi.multiActive);
        QCOMPARE(state().multi.multiFiles, qint64(3));
        QCOMPARE(state().multi.multiSize, qint64(1000));
    }

    void aBatchGrowsTheActsLikeAFile_data()
    {
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<quint32>("acts");
        QTest::newRow("packages") << true << true << 1000U;
        QTest::newRow("packages of one that can't") << true << false << 10240U;
        QTest::newRow("headers") << false << true << 10U;
    }

    void aBatchGrowsTheActsLikeAFile()
    {
        QFETCH(bool, confirmed);
        QFETCH(bool, multi);
        QFETCH(quint32, acts);
        open({{"multi", multi}});
        state().applyConfirmed = confirmed;
        startBatch("2");
        QCOMPARE(act(), acts);
        start("a", "a.rpm", 400);
        QVERIFY2(act() == acts, "the files of a batch don't count once more");
    }

    void slotsAreHandedOutInTheOrderOfTheMeters()
    {
        open({{"multi", true}});
        state().applyConfirmed = true;
        startBatch("3");
        announce("a");
        announce("b");
        start("b", "/x/b.rpm", 300);
        start("a", "/x/a.rpm", 200);
        QCOMPARE(slot(0).activity, QString("Downloading a"));
        QCOMPARE(slot(0).maximum, Steps(200));
        QCOMPARE(slot(1).activity, QString("Downloading b"));
        QCOMPARE(slot(1).state, ThreadState::InProgress);
        QVERIFY2(items.size() == 1, "files of a batch begin no items");
        call("applyGrabMultiMeterRemove", "meter('a')");
        announce("c");
        QVERIFY2(thread("c") == 2, "a slot is given out once");
        QVERIFY(thread("a") == 99);
        QCOMPARE(thread("b"), 1U);
    }

    void valuesOfTheSlotsAreSummedUp()
    {
        open({{"multi", true}});
        startBatch("2");
        announce("a");
        announce("b");
        start("a", "a.rpm", 400);
        start("b", "b.rpm", 600);
        QCOMPARE(slot(0).activity, QString("Downloading a header"));
        update("a", 100);
        update("b", 250);
        update("a", 150);
        QCOMPARE(slot(0).value, Steps(150));
        QCOMPARE(progress->itemValue, Steps(400));
        end("b", 600);
        QCOMPARE(slot(1).value, Steps(600));
        QCOMPARE(slot(1).state, ThreadState::Complete);
        QCOMPARE(slot(0).state, ThreadState::InProgress);
        QCOMPARE(progress->itemValue, Steps(750));
    }

    void aFailedFileTakesItsBytesBackAndStartsAgainInItsSlot()
    {
        open({{"multi", true}});
        state().applyConfirmed = true;
        startBatch("2");
        announce("a");
        announce("b");
        start("a", "a.rpm", 400);
        start("b", "b.rpm", 600);
        update("a", 300);
        update("b", 100);
        for (int tries = 0; tries < 3; ++tries) {
            fail("a");
            QCOMPARE(slot(0).state, ThreadState::Retrying);
            QCOMPARE(slot(0).value, Steps(0));
            QCOMPARE(progress->itemValue, Steps(100));
            start("a", "a.rpm", 400);
            QCOMPARE(slot(0).state, ThreadState::InProgress);
            update("a", 300);
            QCOMPARE(progress->itemValue, Steps(400));
        }
        end("a", 400);
        end("b", 600);
        QCOMPARE(progress->itemValue, Steps(1000));
        QCOMPARE(state().multi.nextThread, 2U);
        QVERIFY(contract->logTexts().filter("reset by peer").isEmpty());
    }

    void anUnknownMeterGetsTheFirstSlot()
    {
        open({{"multi", true}});
        startBatch("2");
        announce("a");
        announce("b");
        start("stranger", "s.rpm", 400);
        QCOMPARE(slot(0).activity, QString("Downloading s header"));
        QCOMPARE(thread("stranger"), 0U);
        QCOMPARE(state().multi.meterThreads.size(), 3);
        update("other", 50);
        QCOMPARE(slot(0).value, Steps(50));
        fail("third");
        QCOMPARE(slot(0).state, ThreadState::Retrying);
        end("fourth", 60);
        QCOMPARE(slot(0).state, ThreadState::Complete);
        QCOMPARE(slot(1).state, ThreadState::NotStarted);
        QCOMPARE(state().multi.meterThreads.size(), 6);
    }

    void theEndOfABatchForgetsItsMeters()
    {
        open({{"multi", true}});
        state().applyConfirmed = true;
        startBatch("2");
        announce("a");
        QCOMPARE(call("applyGrabMultiMeterEnd", "*()"), QString("None"));
        QCOMPARE(progress->threads.count(), 0U);
        QVERIFY(!state().multi.multiActive);
        QCOMPARE(state().multi.nextThread, 0U);
        QVERIFY(state().multi.meterThreads.isEmpty());
        start("a", "a.rpm", 400);
        QVERIFY2(items.last() == "Downloading a", "files come one after another again");
        QCOMPARE(act(), 1400U);
    }

    void aSecondBatchBeginsAnew()
    {
        open({{"multi", true}});
        state().applyConfirmed = true;
        startBatch("2");
        announce("a");
        announce("b");
        startBatch("1", "70");
        QVERIFY(state().multi.meterThreads.isEmpty());
        announce("c");
        QCOMPARE(thread("c"), 0U);
        QCOMPARE(progress->threads.count(), 1U);
        QCOMPARE(act(), 1070U);
    }

    void aSlotThatABatchHasNotIsLeftAlone_data()
    {
        QTest::addColumn<QString>("files");
        QTest::addColumn<int>("announced");
        QTest::newRow("more meters than files") << "1" << 2;
        QTest::newRow("no files") << "0" << 1;
        QTest::newRow("less than no files") << "-1" << 1;
        QTest::newRow("none announced") << "0" << 0;
    }

    void aSlotThatABatchHasNotIsLeftAlone()
    {
        open({{"multi", true}});
        QFETCH(QString, files);
        QFETCH(int, announced);
        startBatch(files);
        QCOMPARE(items, QStringList({QString("Downloading %1 packages").arg(files)}));
        for (int i = 0; i < announced; ++i)
            announce(QString::number(i));
        const QString last = QString::number(announced - 1);
        start(last, "a.rpm", 400);
        update(last, 100);
        fail(last);
        end(last, 400);
        QCOMPARE(progress->itemValue, Steps(0));
        if (progress->threads.count() > 0)
            QCOMPARE(slot(0).state, ThreadState::NotStarted);
    }

    void theNumberOfSlotsIs32BitsWide()
    {
        open({{"multi", true}});
        startBatch("(1 << 32) + 2");
        QCOMPARE(progress->threads.count(), 2U);
        QCOMPARE(items, QStringList({"Downloading 4294967298 packages"}));
    }

    void aBatchOfMoreFilesThanThereCanBeHasNoSlots_data()
    {
        QTest::addColumn<QString>("files");
        QTest::newRow("more than an int") << "(1 << 31) + 5";
        QTest::newRow("an int's most") << "(1 << 31) - 1";
    }

    void aBatchOfMoreFilesThanThereCanBeHasNoSlots()
    {
        open({{"multi", true}});
        QFETCH(QString, files);
        startBatch(files);
        QCOMPARE(progress->threads.count(), 0U);
        announce("a");
        start("a", "a.rpm", 400);
        end("a", 400);
        startBatch("100000");
        QCOMPARE(progress->threads.count(), 100000U);
    }

    void aBatchOfNoBytesTakesNoRoom()
    {
        open({{"multi", true}}, 2000);
        state().applyConfirmed = true;
        startBatch("2", "0");
        QCOMPARE(act(), 0U);
        QCOMPARE(progress->itemEnd, Steps(0));
    }

    void aBatchWhoseBarsWereResetIsSurvived()
    {
        open({{"multi", true}});
        startBatch("2");
        announce("a");
        progress->reset();
        start("a", "a.rpm", 400);
        update("a", 100);
        fail("a");
        end("a", 400);
        QCOMPARE(progress->threads.count(), 0U);
    }

    void aBatchOfOneShowsItsFileOnTheBar()
    {
        open({{"multi", true}});
        state().applyConfirmed = true;
        startBatch("1");
        announce("a");
        start("a", "a.rpm", 400);
        QVERIFY2(contract->itemBar.text().startsWith("Downloading a"),
                 qPrintable(contract->itemBar.text()));
    }
};

QTEST_MAIN(TestApplyDownloadBatches)
#include "tst_ApplyDownloadBatches.moc"
