// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/TransactionStage.h"

#include <csignal>

/// The two stages of a transaction, and rpm's own callback.
class TestTransactionCallback : public TransactionStage
{
    Q_OBJECT

    void callback(long what, int amount = 0, int total = 0, const QString& key = "None")
    {
        QCOMPARE(
            call("tsCallback",
                 QString("%1, %2, %3, %4, object()").arg(what).arg(amount).arg(total).arg(key)),
            QString("None"));
    }

    void install(const char* name, int total = 500, const char* arch = "x86_64")
    {
        callback(2, 0, total, QString("({'name': '%1', 'arch': '%2'}, None)").arg(name, arch));
    }

    void removal(const char* name, int total = 100)
    {
        callback(256, 0, total, QString("'%1'").arg(name));
    }

private Q_SLOTS:
    // ---- The stages

    void theRunHasItsOwnStretch()
    {
        openTransaction();
        state().progressAct = 99;
        QCOMPARE(call("tsInitCallback", "1"), QString("None"));
        QCOMPARE(items, QStringList({"Preparing to Run Transaction"}));
        QVERIFY2(progress->itemStart == 10000000, "the stretch before has been ended");
        QCOMPARE(progress->itemEnd, Steps(10001000));
        QCOMPARE(progress->itemMaximum, Steps(1));
        QCOMPARE(progress->actsSpan, Steps(8000));
        QCOMPARE(progress->actsEnd, Steps(10009000));
        QCOMPARE(progress->actCount, Steps(20019 + 1000));
        QCOMPARE(act(), 0U);
    }

    void anyNumberButNoneIsTheRun()
    {
        openTransaction();
        call("tsInitCallback", "-3");
        QCOMPARE(items, QStringList({"Preparing to Run Transaction"}));
    }

    void theTestEndsTheDownloads_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("presto");
        QTest::addColumn<bool>("rebuilt");
        QTest::addColumn<QStringList>("begun");
        QTest::addColumn<Steps>("start");
        const QString deltas = "Finishing RPM rebuild from deltas";
        const QString test = "Preparing to Test Transaction";
        const Steps end = 10000000;
        QTest::newRow("test") << "3.2.2" << false << false << QStringList{test} << end;
        QTest::newRow("test and deltas")
            << "3.2.2" << true << false << QStringList{deltas, test} << end + 2000;
        QTest::newRow("test behind a rebuild")
            << "3.2.2" << true << true << QStringList{test} << Steps(0);
        QTest::newRow("nothing") << "4.14.0" << false << false << QStringList{} << end;
        QTest::newRow("deltas") << "4.14.0" << true << false << QStringList{deltas} << end;
        QTest::newRow("a rebuild") << "4.14.0" << true << true << QStringList{} << Steps(0);
    }

    void theTestEndsTheDownloads()
    {
        QFETCH(QString, version);
        QFETCH(bool, presto);
        QFETCH(bool, rebuilt);
        QFETCH(QStringList, begun);
        QFETCH(Steps, start);
        openTransaction({{"version", version}, {"presto", presto}});
        state().deltaRebuilt = rebuilt;
        state().progressAct = 99;
        QCOMPARE(call("tsInitCallback", "0"), QString("None"));
        QCOMPARE(items, begun);
        QCOMPARE(progress->itemStart, start);
        QCOMPARE(act(), 0U);
        if (version == "3.2.2") {
            QCOMPARE(progress->itemEnd, start + 1000);
            QCOMPARE(progress->actsSpan, Steps(1000));
            QCOMPARE(progress->actCount, Steps(1000));
        } else if (presto && !rebuilt) {
            QVERIFY2(progress->totalValue == start + 2000, "the step for deltas is full");
            QVERIFY(progress->actsSpan != 1000);
        }
    }

    void aTransactionIsGuardedFromItsFirstWord()
    {
        openTransaction();
        QVERIFY(!engine().transactionGuard);
        QCOMPARE(call("tsInitCallback", "'x'"), QString("TypeError"));
        QVERIFY2(!engine().transactionGuard, "nothing has begun");
        struct sigaction before = {};
        sigaction(SIGTERM, nullptr, &before);
        call("tsInitCallback", "0");
        const TransactionGuard* guard = engine().transactionGuard.get();
        QVERIFY(guard);
        struct sigaction during = {};
        sigaction(SIGTERM, nullptr, &during);
        QVERIFY(during.sa_handler != before.sa_handler);
        call("tsInitCallback", "1");
        QVERIFY2(engine().transactionGuard.get() == guard, "the guard isn't made anew");
        engine().transactionGuard.reset();
        struct sigaction after = {};
        sigaction(SIGTERM, nullptr, &after);
        QVERIFY(after.sa_handler == before.sa_handler);
    }

    void aSignalThatIsIgnoredStaysIgnored()
    {
        openTransaction();
        const auto before = std::signal(SIGHUP, SIG_IGN);
        call("tsInitCallback", "1");
        struct sigaction during = {};
        sigaction(SIGHUP, nullptr, &during);
        engine().transactionGuard.reset();
        struct sigaction after = {};
        sigaction(SIGHUP, nullptr, &after);
        std::signal(SIGHUP, before);
        QVERIFY2(during.sa_handler == SIG_IGN, "programs under nohup have nothing to fear");
        QVERIFY(after.sa_handler == SIG_IGN);
    }

    void aTransactionThatIsNotAnnouncedIsGuardedToo_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("arguments");
        QTest::newRow("rpm's callback") << "tsCallback"
                                        << "4, 0, 0, None, None";
        QTest::newRow("event") << "tsEvent"
                               << "None, 70, 0, 0, 1, 1";
    }

    void aTransactionThatIsNotAnnouncedIsGuardedToo()
    {
        QFETCH(QString, function);
        QFETCH(QString, arguments);
        openTransaction();
        QCOMPARE(call(function, "'x'"), QString("TypeError"));
        QVERIFY(!engine().transactionGuard);
        QCOMPARE(call(function, arguments), QString("None"));
        QVERIFY(engine().transactionGuard);
    }

    // ---- The bits

    void filesThatOpenAndCloseChangeNothing_data()
    {
        QTest::addColumn<long>("what");
        QTest::newRow("open") << 4L;
        QTest::newRow("close") << 8L;
        QTest::newRow("both") << 12L;
    }

    void filesThatOpenAndCloseChangeNothing()
    {
        openTransaction();
        QFETCH(long, what);
        install("fresh");
        const quint32 before = act();
        callback(what, 300, 400, "'fresh'");
        QCOMPARE(act(), before);
        QCOMPARE(progress->itemValue, Steps(0));
        QCOMPARE(items.size(), 1);
    }

    void aWhatThatIsNotUnderstoodIsReported_data()
    {
        QTest::addColumn<long>("what");
        QTest::newRow("none") << 0L;
        QTest::newRow("another bit") << 1024L;
        QTest::newRow("other bits") << (1L << 40 | 1L << 16);
    }

    void aWhatThatIsNotUnderstoodIsReported()
    {
        openTransaction();
        QFETCH(long, what);
        expectWarning(QString("Internal error: YumIO::tsCallback what=%1 not understood; ignoring")
                          .arg(what));
        callback(what, 3, 4);
        QCOMPARE(driver->driven(), 1);
        QVERIFY(items.isEmpty());
        QCOMPARE(act(), 0U);
    }

    void anUnknownBitBesideAKnownOneIsIgnored()
    {
        openTransaction();
        install("fresh", 500);
        callback(1024 | 1, 250, 500);
        QCOMPARE(progress->itemValue, Steps(250));
    }

    void theTestIsAnItem()
    {
        openTransaction();
        state().progressAct = 5;
        callback(32, 0, 40);
        QCOMPARE(items, QStringList({"Transaction Test"}));
        QCOMPARE(progress->itemMaximum, Steps(40));
        QCOMPARE(act(), 1005U);
        QCOMPARE(progress->actIndex, Steps(1005));
        callback(16, 13, 40);
        QCOMPARE(progress->itemValue, Steps(13));
        callback(64, 13, 30);
        QCOMPARE(progress->itemValue, Steps(30));
    }

    void eachBitMovesTheItem_data()
    {
        QTest::addColumn<long>("what");
        QTest::addColumn<Steps>("value");
        QTest::newRow("transaction progress") << 16L << Steps(120);
        QTest::newRow("transaction stop") << 64L << Steps(450);
        QTest::newRow("install progress") << 1L << Steps(120);
        QTest::newRow("removal progress") << 128L << Steps(120);
        QTest::newRow("removal stop") << 512L << Steps(450);
    }

    void eachBitMovesTheItem()
    {
        openTransaction();
        install("fresh", 500);
        const quint32 before = act();
        QFETCH(long, what);
        QFETCH(Steps, value);
        callback(what, 120, 450);
        QCOMPARE(progress->itemValue, value);
        QCOMPARE(act(), before);
        QCOMPARE(items.size(), 1);
    }

    void bitsThatComeTogetherAreTakenInTheirOrder_data()
    {
        QTest::addColumn<long>("what");
        QTest::addColumn<QString>("key");
        QTest::addColumn<Steps>("value");
        const QString header = "({'name': 'fresh', 'arch': 'x86_64'},)";
        const QString name = "'gone'";
        const QString none = "None";
        QTest::newRow("test starts, then moves") << (32L | 16) << none << Steps(120);
        QTest::newRow("test moves, then stops") << (16L | 64) << none << Steps(450);
        QTest::newRow("test starts, moves, stops") << (32L | 16 | 64) << none << Steps(450);
        QTest::newRow("test stops, then install starts") << (64L | 2) << header << Steps(0);
        QTest::newRow("install starts, then moves") << (2L | 1) << header << Steps(120);
        QTest::newRow("install moves, then removal starts") << (1L | 256) << name << Steps(0);
        QTest::newRow("removal starts, then moves") << (256L | 128) << name << Steps(120);
        QTest::newRow("removal moves, then stops") << (128L | 512) << name << Steps(450);
        QTest::newRow("removal starts, moves, stops") << (256L | 128 | 512) << name << Steps(450);
    }

    void bitsThatComeTogetherAreTakenInTheirOrder()
    {
        openTransaction();
        mark("gone", Package::ActionRemove);
        progress->startItem("before", 0, 500);
        QFETCH(long, what);
        QFETCH(QString, key);
        QFETCH(Steps, value);
        callback(what, 120, 450, key);
        QCOMPARE(progress->itemValue, value);
    }

    // ---- Installs

    void anInstallIsAnItem()
    {
        openTransaction();
        mark("fresh", Package::ActionInstall);
        QCOMPARE(actsOf([&] { install("fresh", 700); }), 300000U);
        QCOMPARE(items, QStringList({"Installing fresh"}));
        QCOMPARE(progress->itemMaximum, Steps(700));
        QCOMPARE(progress->itemEnd, Steps(300000));
        QCOMPARE(started("fresh"), QStringList({"1-1"}));
        const Log::Entry& last = engine().getLogEntries().entries.last();
        QCOMPARE(last.text, QString("Installing fresh"));
        QCOMPARE(last.kind, Log::Plain);
        QCOMPARE(last.level, 1U);
    }

    void theRowSaysWhetherItIsAnUpdate()
    {
        openTransaction();
        mark("kernel", Package::ActionUpdate);
        QCOMPARE(actsOf([&] { install("kernel"); }), 150000U);
        install("triple");
        QCOMPARE(items, QStringList({"Updating kernel", "Installing triple"}));
        QCOMPARE(contract->logTexts().last(), QString("Installing triple"));
        QCOMPARE(started("kernel"), QStringList({"9-1"}));
    }

    void aSmallPackageMovesTheActsAllTheSame()
    {
        openTransaction();
        QCOMPARE(actsOf([&] { install("tiny"); }), 10240U);
    }

    void theFamilyOfTheArchitectureCounts()
    {
        openTransaction({{"biArch", QJsonObject{{"athlon", "x86_64"}}}});
        install("fresh", 500, "athlon");
        QCOMPARE(items, QStringList({"Installing fresh"}));
    }

    void aHeaderMayHoldBytes()
    {
        openTransaction();
        callback(2, 0, 9, "({'name': b'fresh', 'arch': b'x86_64'},)");
        QCOMPARE(items, QStringList({"Installing fresh"}));
    }

    void anInstallThatNoRowKnowsIsReported()
    {
        openTransaction();
        install("fresh", 500);
        const int known = engine().entryHash.size();
        expectError("Internal error: Unable to find package for install/update of fresh.noarch");
        QCOMPARE(actsOf([&] { install("fresh", 300, "noarch"); }), 0U);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items.size(), 1);
        QVERIFY2(engine().entryHash.size() == known, "looking makes no rows");
        callback(1, 120, 300);
        QVERIFY2(progress->itemValue == 120, "its progress moves the item before it");
    }

    void aKeyThatIsNoHeaderIsReported_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("warnings");
        QTest::newRow("none") << "None" << 0;
        QTest::newRow("empty tuple") << "()" << 0;
        QTest::newRow("no mapping") << "(7,)" << 2;
        QTest::newRow("nothing in it") << "({},)" << 2;
    }

    void aKeyThatIsNoHeaderIsReported()
    {
        openTransaction();
        QFETCH(QString, key);
        QFETCH(int, warnings);
        for (int i = 0; i < warnings; ++i)
            expectWarning("Internal error: YumIO::pyString called with NULL");
        expectError("Internal error: Unable to find package for install/update of .");
        callback(2, 0, 5, key);
        QCOMPARE(driver->driven(), warnings + 1);
        QVERIFY(items.isEmpty());
    }

    // ---- Removals

    void aRemovalIsAnItem()
    {
        openTransaction();
        mark("gone", Package::ActionRemove);
        const int lines = contract->logTexts().size();
        QCOMPARE(actsOf([&] { removal("gone", 70); }), 30000U);
        QCOMPARE(items, QStringList({"Removing gone"}));
        QCOMPARE(progress->itemMaximum, Steps(70));
        QCOMPARE(started("gone"), QStringList({"1-1"}));
        QVERIFY2(contract->logTexts().size() == lines, "rpm's own line says it");
    }

    void removalsOfOneNameTakeItsVersionsInOrder()
    {
        openTransaction();
        mark("twice", Package::ActionRemove);
        QCOMPARE(actsOf([&] { removal("twice"); }), 30000U);
        QCOMPARE(started("twice"), QStringList({"2-1"}));
        QCOMPARE(actsOf([&] { removal("twice"); }), 10240U);
        QCOMPARE(started("twice"), QStringList({"2-1", "1-1"}));
        QCOMPARE(items, QStringList({"Removing twice", "Removing twice"}));
    }

    void anUpdateCompletesItsOldVersionsInOrder()
    {
        openTransaction();
        mark("kernel", Package::ActionUpdate);
        install("kernel");
        QCOMPARE(actsOf([&] { removal("kernel"); }), 120000U);
        QCOMPARE(started("kernel"), QStringList({"9-1", "2-1"}));
        QCOMPARE(actsOf([&] { removal("kernel"); }), 10240U);
        QCOMPARE(started("kernel"), QStringList({"9-1", "2-1", "1-1"}));
        const QString completing = "Completing update for: kernel";
        QCOMPARE(items, QStringList({"Updating kernel", completing, completing}));
    }

    void oneRemovalTooManyIsReportedTwice()
    {
        openTransaction();
        mark("kernel", Package::ActionUpdate);
        install("kernel");
        removal("kernel");
        removal("kernel");
        expectWarning("Internal error: YumIO::tsCallback UNINST of kernel not expected");
        expectWarning("Internal error: YumIO::tsCallback UNINST of kernel too many times");
        QVERIFY2(actsOf([&] { removal("kernel"); }) == 50000, "it counts for the head");
        QCOMPARE(driver->driven(), 2);
        QCOMPARE(items.last(), QString("Removing kernel"));
    }

    void anUpdateWithThreeOldVersionsCompletesThree()
    {
        openTransaction();
        mark("triple", Package::ActionUpdate);
        install("triple");
        for (const char* version : {"3-1", "2-1", "1-1"}) {
            QCOMPARE(actsOf([&] { removal("triple"); }), 10240U);
            QCOMPARE(started("triple").last(), QString(version));
        }
        QCOMPARE(items.count("Completing update for: triple"), 3);
    }

    void oldVersionsOfAnUpdateThatHasNotBegunGoTooManyTimes()
    {
        openTransaction();
        mark("kernel", Package::ActionUpdate);
        removal("kernel");
        removal("kernel");
        expectWarning("Internal error: YumIO::tsCallback UNINST of kernel too many times");
        QCOMPARE(actsOf([&] { removal("kernel"); }), 10240U);
        QCOMPARE(items.count("Completing update for: kernel"), 3);
        QCOMPARE(started("kernel").size(), 3);
    }

    void anUpdatableRowThatIsRemovedLosesWhatIsInstalled()
    {
        openTransaction();
        mark("kernel", Package::ActionRemove);
        QCOMPARE(actsOf([&] { removal("kernel"); }), 600000U);
        QCOMPARE(started("kernel"), QStringList({"2-1"}));
        removal("kernel");
        QCOMPARE(started("kernel"), QStringList({"2-1", "1-1"}));
        QCOMPARE(items, QStringList({"Removing kernel", "Removing kernel"}));
    }

    void aRemovalThatNobodyAskedForIsReportedAndShown()
    {
        openTransaction();
        expectWarning("Internal error: YumIO::tsCallback UNINST of gone not expected");
        QCOMPARE(actsOf([&] { removal("gone"); }), 30000U);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items, QStringList({"Removing gone"}));
        QCOMPARE(started("gone"), QStringList({"1-1"}));
    }

    void aRemovalThatNoRowKnowsIsReportedAndLeftAlone()
    {
        openTransaction();
        install("fresh", 500);
        expectWarning("Internal error: YumIO::tsCallback UNINST of stranger not expected");
        QCOMPARE(actsOf([&] { removal("stranger"); }), 0U);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items.size(), 1);
    }

    // ---- Arguments

    void argumentsThatDoNotFitAreATypeError_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("arguments");
        const auto row = [](const char* function, const char* arguments) {
            QTest::newRow(qPrintable(QString("%1(%2)").arg(function, arguments)))
                << QString(function) << QString(arguments);
        };
        row("tsInitCallback", "*()");
        row("tsInitCallback", "None");
        row("tsInitCallback", "1, 2");
        row("tsCallback", "32, 0, 0, 'x'");
        row("tsCallback", "32, 0, 0, 'x', None, None");
        row("tsCallback", "'32', 0, 0, 'x', None");
        row("tsCallback", "32, None, 0, 'x', None");
        row("tsCallback", "32, 0, 'x', 'x', None");
    }

    void argumentsThatDoNotFitAreATypeError()
    {
        openTransaction();
        QFETCH(QString, function);
        QFETCH(QString, arguments);
        QCOMPARE(call(function, arguments), QString("TypeError"));
        QVERIFY(items.isEmpty());
        QCOMPARE(act(), 0U);
    }

    void amountsAre64BitsWide()
    {
        openTransaction();
        call("tsCallback", "34, 0, 5 << 32, ({'name': 'fresh', 'arch': 'x86_64'},), None");
        QCOMPARE(progress->itemMaximum, Steps(5) << 32);
        call("tsCallback", "1, 3 << 32, 5 << 32, 'fresh', None");
        QCOMPARE(progress->itemValue, Steps(3) << 32);
    }

    void theSignatureCheckEmptiesTheText()
    {
        openTransaction();
        state().transactionText = "lines that the log has collected\n";
        state().transactionListed = true;
        QCOMPARE(call("gpgsigcheck", "'whatever', 2"), QString("None"));
        QVERIFY(state().transactionText.isEmpty());
        QVERIFY2(state().transactionListed, "the flag is left alone");
    }

    void callsOutsideAnApplyAreSurvived()
    {
        openTransaction();
        mark("gone", Package::ActionRemove);
        engine().progress = nullptr;
        call("tsInitCallback", "0");
        call("tsInitCallback", "1");
        callback(32 | 16 | 64, 1, 2);
        install("fresh");
        removal("gone");
        QVERIFY(items.isEmpty());
        QCOMPARE(started("gone"), QStringList({"1-1"}));
    }
};

QTEST_MAIN(TestTransactionCallback)
#include "tst_TransactionCallback.moc"
