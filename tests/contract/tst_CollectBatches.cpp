// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ProgressStage.h"

#include <QtTest>

#include <limits>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

/// Something whose address stands for a meter.
int meters[8];

} // namespace

/// Parallel downloads.
class TestCollectBatches : public ProgressStage
{
    Q_OBJECT

private Q_SLOTS:
    void aBatchOfKnownSizeHasItsBandOfActs_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<Steps>("end");
        // Two repositories, 12 acts over 1200 steps: the item ends before the last act of its band.
        QTest::newRow("known") << 900 << Steps(500);
        QTest::newRow("unknown") << 0 << Steps(700);
    }

    void aBatchOfKnownSizeHasItsBandOfActs()
    {
        QFETCH(int, size);
        open(2, {{"multi", true}});
        run(QString("yumIOC.collectGrabMultiMeterStart(2, %1)").arg(size));
        QVERIFY(state().multiActive && !state().multiStarted);
        QCOMPARE(itemStarts->count(), 0);
        run(start("m", "/c/base/primary", "400"));
        QVERIFY(state().multiStarted);
        QCOMPARE(items(), QStringList({"Downloading repository contents for 2 repositories"}));
        QCOMPARE(itemStarts->last().at(2).value<Steps>(), static_cast<Steps>(size));
        engine().progress->startItem("next", 1, 1);
        QFETCH(Steps, end);
        QCOMPARE(itemStarts->last().at(1).value<Steps>(), end);
    }

    void aBatchSharesItsFilesAmongSlots()
    {
        open(2, {{"multi", true}});
        startBatch(2, 900);
        engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
        engine().collectStart(&meters[1], "b", YumIO::ActContents, 50, 500);
        QCOMPARE(slotCount(), 2U);
        QCOMPARE(slot(0).activity, QString("Downloading repository contents for a"));
        QCOMPARE(slot(0).maximum, Steps(400));
        QCOMPARE(slot(1).value, Steps(50));
        QCOMPARE(slot(1).state, Progress::ThreadState::InProgress);
        engine().collectUpdate(&meters[0], 100);
        QCOMPARE(slot(0).value, Steps(100));
        engine().collectEnd(&meters[0], 400);
        QCOMPARE(slot(0).value, Steps(400));
        QCOMPARE(slot(0).state, Progress::ThreadState::Complete);
        QVERIFY(!state().meterThreads.contains(&meters[0]));
        QCOMPARE(state().idThreads.size(), 1);
        run("yumIOC.collectGrabMultiMeterEnd()");
        QCOMPARE(slotCount(), 0U);
        QVERIFY(!state().multiActive && !state().multiStarted);
        QVERIFY(state().meterThreads.isEmpty() && state().idThreads.isEmpty());
        QVERIFY(state().threadIds.empty());
    }

    void aRetriedFileMovesBackAndReusesItsSlot()
    {
        open(2, {{"multi", true}});
        startBatch(2, 900);
        engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
        engine().collectStart(&meters[1], "b", YumIO::ActContents, 0, 500);
        engine().collectUpdate(&meters[0], 300);
        engine().collectFailure(&meters[0]);
        QCOMPARE(slot(0).state, Progress::ThreadState::Retrying);
        QCOMPARE(slot(0).value, Steps(0));
        QVERIFY(!state().meterThreads.contains(&meters[0]));
        engine().collectStart(&meters[2], "a", YumIO::ActContents, 0, 400);
        QCOMPARE(slot(0).state, Progress::ThreadState::InProgress);
        QCOMPARE(state().meterThreads.value(&meters[2], 9), 0U);
        QCOMPARE(state().nextThread, 2U);
    }

    void anEndedFileGetsAnotherSlotWhenItComesAgain()
    {
        open(2, {{"multi", true}});
        startBatch(2, 900);
        engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
        engine().collectEnd(&meters[0], 400);
        engine().collectStart(&meters[1], "a", YumIO::ActContents, 0, 400);
        QCOMPARE(state().meterThreads.value(&meters[1], 9), 1U);
    }

    void idsOfTheSameSumAreTheSameDownload()
    {
        const YumIO::ThreadId id("a", YumIO::ActContents);
        QCOMPARE(static_cast<long>(id), static_cast<long>(qHash(QString("a"))) + 3);
        QVERIFY(id == YumIO::ThreadId("a", YumIO::ActContents));
        QVERIFY(id != YumIO::ThreadId("a", YumIO::ActGroups));
    }

    void moreFilesThanAnnouncedAreReported()
    {
        open(2, {{"multi", true}});
        startBatch(1, 900);
        engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
        driver->expect(yumError)
            .text("Internal error: Start: unexpected thread 1 > total files 1\n")
            .press("OK");
        engine().collectStart(&meters[1], "b", YumIO::ActContents, 0, 400);
        QVERIFY(!state().meterThreads.contains(&meters[1]));
        QCOMPARE(slot(0).state, Progress::ThreadState::InProgress);
        driver->expect(yumError)
            .text("Internal error: Start: unexpected thread 2 > total files 1\n")
            .press("OK");
        engine().collectStart(&meters[2], "c", YumIO::ActContents, 0, 400);
    }

    void callsBeforeTheFirstFileOfABatchAreReported()
    {
        open(2, {{"multi", true}});
        startBatch(2, 900);
        for (const char* what : {"Update", "End", "Failure"})
            driver->expect(yumError)
                .text(
                    QString("Internal error: %1: unexpected thread 0 > total files 2\n").arg(what))
                .press("OK");
        engine().collectUpdate(&meters[0], 1);
        engine().collectEnd(&meters[0], 1);
        engine().collectFailure(&meters[0]);
        QCOMPARE(driver->driven(), 3);
    }

    void aSlotThatABatchHasNotIsReported()
    {
        open(2, {{"multi", true}});
        startBatch(1, 900);
        engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
        for (const char* what : {"Update", "End", "Failure"}) {
            state().meterThreads.insert(&meters[1], 5);
            driver->expect(yumError)
                .text(
                    QString("Internal error: %1: unexpected thread 5 > total files 1\n").arg(what))
                .press("OK");
            if (QLatin1String(what) == QLatin1String("Update"))
                engine().collectUpdate(&meters[1], 1);
            else if (QLatin1String(what) == QLatin1String("End"))
                engine().collectEnd(&meters[1], 1);
            else
                engine().collectFailure(&meters[1]);
        }
        QCOMPARE(driver->driven(), 3);
        QCOMPARE(slot(0).state, Progress::ThreadState::InProgress);
    }

    void aBatchWithoutParallelSupportIsReportedAndRuns()
    {
        open(2, {{"multi", false}});
        startBatch(1, 900);
        driver->expect(yumError)
            .text("Internal error: Unexpected parallel grab with no parallel support:\na")
            .press("OK");
        engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
        QCOMPARE(items().first(), QString("Unknown"));
        QCOMPARE(slot(0).state, Progress::ThreadState::InProgress);
    }

    void aBatchThatBeginsWithAnotherKindIsReportedAndRuns()
    {
        open(2, {{"multi", true}});
        startBatch(2, 900);
        driver->expect(yumError)
            .text("Internal error: Unexpected parallel grab type:\na")
            .press("OK");
        engine().collectStart(&meters[0], "a", YumIO::ActRepomd, 0, 400);
        QCOMPARE(items().first(), QString("Unknown"));
        engine().collectStart(&meters[1], "b", YumIO::ActRepomd, 0, 400);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(slot(1).state, Progress::ThreadState::InProgress);
    }

    void aBatchMayBeginWithGroups()
    {
        open(2, {{"multi", true}});
        startBatch(1, 900);
        engine().collectStart(&meters[0], "a", YumIO::ActGroups, 0, 400);
        QCOMPARE(items().first(), QString("Downloading repository contents for 1 repositories"));
    }

    void aBatchOfNoFilesIsSurvived()
    {
        open(2, {{"multi", true}});
        // Nor is there one of so many.
        for (int files : {0, -1, std::numeric_limits<int>::max()}) {
            startBatch(files, 900);
            driver->expect(yumError)
                .text(QString("Internal error: Start: unexpected thread 0 > total files %1\n")
                          .arg(files))
                .press("OK");
            engine().collectStart(&meters[0], "a", YumIO::ActContents, 0, 400);
            run("yumIOC.collectGrabMultiMeterEnd()");
        }
        QCOMPARE(driver->driven(), 3);
    }

    void metersOfACollectionReachTheBars()
    {
        const QJsonArray played{
            QJsonArray{"collectGrabMultiMeterStart", 2, 100},
            QJsonArray{"collectGrabMultiMeterNew", "meter:a"},
            QJsonArray{"collectGrabMeterStart", "meter:a", "/c/base/primary.xml", "", "", 50, ""},
            QJsonArray{"collectGrabMeterStart", "meter:b", "/c/more/primary.xml", "", "", 50, ""},
            QJsonArray{"collectGrabMeterUpdate", "meter:a", 20},
            QJsonArray{"collectGrabMeterEnd", "meter:b", 50},
            QJsonArray{"collectGrabMultiMeterRemove", "meter:b"},
        };
        contract->play({{"multi", true},
                        {"repos", QJsonObject{{"base", QJsonObject{{"enabled", 1}}},
                                              {"more", QJsonObject{{"enabled", 1}}}}},
                        {"meters", QJsonObject{{"setupRepos", played}}},
                        {"raise", QJsonObject{{"setupRepos", QJsonObject{{"type", "RepoError"},
                                                                         {"text", "x"}}}}}});
        QString item;
        int maximum = 0;
        driver->expect(yumError)
            .act([&](QWidget*) {
                item = contract->itemBar.text();
                maximum = contract->itemBar.maximum();
            })
            .press("Close");
        QVERIFY(!contract->collect());
        QVERIFY2(item.contains("Downloading repository contents for 2 repositories"),
                 qPrintable(item));
        QCOMPARE(maximum, 100);
        QVERIFY(state().multiActive);

        QVERIFY2(contract->collect(), "the next collection begins without the open batch");
        QCOMPARE(contract->callCount("setupRepos"), 2);
    }
};

QTEST_MAIN(TestCollectBatches)
#include "tst_CollectBatches.moc"
