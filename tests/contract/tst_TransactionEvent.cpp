// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/TransactionStage.h"

/// The events of the package manager's display.
class TestTransactionEvent : public TransactionStage
{
    Q_OBJECT

    enum Action {
        Update = 10,
        Install = 20,
        TrueInstall = 30,
        Erase = 40,
        Obsoleted = 50,
        Obsoleting = 60,
        Available = 70,
        Updated = 90,
    };

    void event(const QString& package, int action, int teCurrent, int teTotal, int tsCurrent)
    {
        QCOMPARE(call("tsEvent", QString("%1, %2, %3, %4, %5, 9")
                                     .arg(package)
                                     .arg(action)
                                     .arg(teCurrent)
                                     .arg(teTotal)
                                     .arg(tsCurrent)),
                 QString("None"));
    }

    void arrival(const char* name, int action, int tsCurrent, int teCurrent = 0, int teTotal = 500,
                 const char* arch = "x86_64")
    {
        event(QString("Holder(name='%1', arch='%2')").arg(name, arch), action, teCurrent, teTotal,
              tsCurrent);
    }

    void removal(const char* name, int action, int tsCurrent, int teCurrent = 0, int teTotal = 100)
    {
        event(QString("'%1'").arg(name), action, teCurrent, teTotal, tsCurrent);
    }

    /// A transaction whose first event has been.
    void openRunning()
    {
        openTransaction();
        state().tsEventSeen = true;
    }

private Q_SLOTS:
    void theFirstEventCountsForThePreparation_data()
    {
        QTest::addColumn<int>("action");
        QTest::newRow("available") << int(Available);
        QTest::newRow("unknown") << 35;
    }

    void theFirstEventCountsForThePreparation()
    {
        openTransaction();
        QFETCH(int, action);
        if (action == 35) {
            for (int i = 0; i < 2; ++i)
                expectWarning("Internal error: YumIO::tsEvent action=35 not understood; ignoring");
        }
        state().progressAct = 5;
        removal("gone", action, 1, 3);
        QCOMPARE(act(), 1005U);
        QVERIFY(state().tsEventSeen);
        removal("gone", action, 2, 3);
        QCOMPARE(act(), 1005U);
        QVERIFY(items.isEmpty());
        QCOMPARE(state().lastTsCurrent, qint64(0));
        QCOMPARE(progress->itemValue, Steps(0));
    }

    void thePreparationComesBeforeTheFirstPackage()
    {
        openTransaction();
        arrival("fresh", Install, 1);
        QCOMPARE(act(), 301000U);
        QCOMPARE(progress->itemEnd, Steps(301000));
    }

    void anAvailablePackageChangesNothing()
    {
        openRunning();
        arrival("fresh", Install, 1, 100);
        const quint32 before = act();
        arrival("tiny", Available, 2, 300);
        QCOMPARE(act(), before);
        QCOMPARE(progress->itemValue, Steps(100));
        QCOMPARE(items.size(), 1);
        QCOMPARE(state().lastTsCurrent, qint64(1));
    }

    void anActionThatIsNotUnderstoodIsReported_data()
    {
        QTest::addColumn<int>("action");
        for (int action : {0, 80, 100, -1})
            QTest::newRow(qPrintable(QString::number(action))) << action;
    }

    void anActionThatIsNotUnderstoodIsReported()
    {
        openRunning();
        QFETCH(int, action);
        arrival("fresh", Install, 1, 100);
        expectWarning(QString("Internal error: YumIO::tsEvent action=%1 not understood; ignoring")
                          .arg(action));
        arrival("tiny", action, 2, 300);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(progress->itemValue, Steps(100));
        QCOMPARE(state().lastTsCurrent, qint64(1));
    }

    // ---- Installs

    void labelsOfInstallsFollowTheAction_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("label");
        QTest::newRow("update") << int(Update) << "Updating fresh";
        QTest::newRow("obsoleting") << int(Obsoleting) << "Updating fresh";
        QTest::newRow("install") << int(Install) << "Installing fresh";
        QTest::newRow("true install") << int(TrueInstall) << "Installing fresh";
    }

    void labelsOfInstallsFollowTheAction()
    {
        openRunning();
        QFETCH(int, action);
        QFETCH(QString, label);
        // Not the mark of the row.
        mark("fresh", action == Update ? Package::ActionInstall : Package::ActionUpdate);
        arrival("fresh", action, 1, 50, 700);
        QCOMPARE(items, QStringList({label}));
        QCOMPARE(progress->itemMaximum, Steps(700));
        QCOMPARE(progress->itemValue, Steps(50));
        QCOMPARE(act(), 300000U);
        QCOMPARE(started("fresh"), QStringList({"1-1"}));
        QCOMPARE(state().lastTsCurrent, qint64(1));
        const Log::Entry& last = engine().getLogEntries().entries.last();
        QCOMPARE(last.text, label);
        QCOMPARE(last.kind, Log::Plain);
        QCOMPARE(last.level, 1U);
    }

    void eventsOfTheSamePackageMoveItsItem()
    {
        openRunning();
        arrival("fresh", Install, 1, 100);
        arrival("fresh", Install, 1, 300);
        QCOMPARE(items.size(), 1);
        QCOMPARE(act(), 300000U);
        QCOMPARE(progress->itemValue, Steps(300));
        QCOMPARE(contract->logTexts().filter("Installing fresh").size(), 1);
        // The package isn't looked at any more.
        event("None", Install, 400, 500, 1);
        QCOMPARE(progress->itemValue, Steps(400));
        arrival("tiny", Install, 2, 20);
        QCOMPARE(items, QStringList({"Installing fresh", "Installing tiny"}));
        QCOMPARE(act(), 310240U);
        QCOMPARE(progress->itemValue, Steps(20));
    }

    void theFamilyOfTheArchitectureCounts()
    {
        openTransaction({{"biArch", QJsonObject{{"athlon", "x86_64"}}}});
        arrival("fresh", Install, 1, 0, 500, "athlon");
        QCOMPARE(items, QStringList({"Installing fresh"}));
    }

    void anInstallThatNoRowKnowsIsReportedWithEachEvent_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("word");
        QTest::newRow("update") << int(Update) << "update";
        QTest::newRow("obsoleting") << int(Obsoleting) << "update";
        QTest::newRow("install") << int(Install) << "install";
        QTest::newRow("true install") << int(TrueInstall) << "install";
    }

    void anInstallThatNoRowKnowsIsReportedWithEachEvent()
    {
        openRunning();
        QFETCH(int, action);
        QFETCH(QString, word);
        arrival("fresh", Install, 1, 100);
        const int known = engine().entryHash.size();
        for (int i = 0; i < 2; ++i)
            expectError(
                QString("Internal error: Unable to find package for %1 of other.noarch").arg(word));
        arrival("other", action, 2, 200, 300, "noarch");
        QCOMPARE(state().lastTsCurrent, qint64(1));
        QVERIFY2(progress->itemValue == 200, "its progress moves the item before it");
        arrival("other", action, 2, 300, 300, "noarch");
        QCOMPARE(driver->driven(), 2);
        QCOMPARE(progress->itemValue, Steps(300));
        QCOMPARE(items.size(), 1);
        QCOMPARE(act(), 300000U);
        QCOMPARE(engine().entryHash.size(), known);
    }

    void anObjectWithoutANameIsReported()
    {
        openRunning();
        for (int i = 0; i < 2; ++i)
            expectWarning("Internal error: YumIO::pyString called with NULL");
        expectError("Internal error: Unable to find package for install of .");
        event("'fresh'", Install, 1, 2, 1);
        QCOMPARE(driver->driven(), 3);
    }

    // ---- Removals

    void anErasedPackageIsRemoved()
    {
        openRunning();
        mark("gone", Package::ActionRemove);
        const int lines = contract->logTexts().size();
        removal("gone", Erase, 1, 30, 70);
        QCOMPARE(items, QStringList({"Removing gone"}));
        QCOMPARE(progress->itemMaximum, Steps(70));
        QCOMPARE(progress->itemValue, Steps(30));
        QCOMPARE(act(), 30000U);
        QCOMPARE(started("gone"), QStringList({"1-1"}));
        QCOMPARE(state().lastTsCurrent, qint64(1));
        QCOMPARE(contract->logTexts().size(), lines);
        removal("gone", Erase, 1, 60, 70);
        QCOMPARE(progress->itemValue, Steps(60));
        QCOMPARE(items.size(), 1);
        QCOMPARE(act(), 30000U);
    }

    void oldVersionsOfAnUpdateGoInOrder_data()
    {
        QTest::addColumn<int>("action");
        QTest::newRow("updated") << int(Updated);
        QTest::newRow("obsoleted") << int(Obsoleted);
    }

    void oldVersionsOfAnUpdateGoInOrder()
    {
        openRunning();
        QFETCH(int, action);
        mark("kernel", Package::ActionUpdate);
        arrival("kernel", Update, 1);
        QCOMPARE(actsOf([&] { removal("kernel", action, 2, 40); }), 120000U);
        QCOMPARE(progress->itemValue, Steps(40));
        QCOMPARE(started("kernel"), QStringList({"9-1", "2-1"}));
        QCOMPARE(actsOf([&] { removal("kernel", action, 2, 100); }), 0U);
        QCOMPARE(actsOf([&] { removal("kernel", action, 3); }), 10240U);
        QCOMPARE(started("kernel"), QStringList({"9-1", "2-1", "1-1"}));
        QCOMPARE(items.count("Completing update for: kernel"), 2);

        expectWarning("Internal error: YumIO::tsCallback REMOVE/COMPLETE of kernel not expected");
        expectWarning("Internal error: YumIO::tsCallback UNINST of kernel too many times");
        QCOMPARE(actsOf([&] { removal("kernel", action, 4); }), 50000U);
        QCOMPARE(driver->driven(), 2);
        QCOMPARE(items.last(), QString("Removing kernel"));
        QCOMPARE(state().lastTsCurrent, qint64(4));
        removal("kernel", action, 4, 80);
        QVERIFY2(progress->itemValue == 80 && items.size() == 4, "it is reported once");
    }

    void anUpdateWithThreeOldVersionsCompletesThree()
    {
        openRunning();
        mark("triple", Package::ActionUpdate);
        arrival("triple", Update, 1);
        int ts = 1;
        for (const char* version : {"3-1", "2-1", "1-1"}) {
            QCOMPARE(actsOf([&] { removal("triple", Updated, ++ts); }), 10240U);
            QCOMPARE(started("triple").last(), QString(version));
        }
        QCOMPARE(items.count("Completing update for: triple"), 3);
    }

    void whatIsNoUpdateIsRemovedAllTheSame_data()
    {
        QTest::addColumn<int>("action");
        QTest::newRow("updated") << int(Updated);
        QTest::newRow("obsoleted") << int(Obsoleted);
    }

    void whatIsNoUpdateIsRemovedAllTheSame()
    {
        openRunning();
        QFETCH(int, action);
        mark("twice", Package::ActionRemove);
        QCOMPARE(actsOf([&] { removal("twice", action, 1); }), 30000U);
        QCOMPARE(actsOf([&] { removal("twice", action, 2); }), 10240U);
        QCOMPARE(items, QStringList({"Removing twice", "Removing twice"}));
        QCOMPARE(started("twice"), QStringList({"2-1", "1-1"}));
    }

    void anErasedPackageIsNeverTakenForAnUpdate()
    {
        openRunning();
        mark("kernel", Package::ActionUpdate);
        expectWarning("Internal error: YumIO::tsCallback REMOVE/COMPLETE of kernel not expected");
        QCOMPARE(actsOf([&] { removal("kernel", Erase, 1); }), 600000U);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items, QStringList({"Removing kernel"}));
        QCOMPARE(started("kernel"), QStringList({"2-1"}));
    }

    void aRemovalThatNoRowKnowsIsReportedAndLeftAlone_data()
    {
        QTest::addColumn<int>("action");
        for (int action : {Erase, Updated, Obsoleted})
            QTest::newRow(qPrintable(QString::number(action))) << action;
    }

    void aRemovalThatNoRowKnowsIsReportedAndLeftAlone()
    {
        openRunning();
        QFETCH(int, action);
        arrival("fresh", Install, 1, 100);
        expectWarning("Internal error: YumIO::tsCallback REMOVE/COMPLETE of other not expected");
        removal("other", action, 2, 60);
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items.size(), 1);
        QCOMPARE(act(), 300000U);
        QCOMPARE(progress->itemValue, Steps(100));
    }

    void aNameMayBeBytes()
    {
        openRunning();
        mark("gone", Package::ActionRemove);
        event("b'gone'", Erase, 0, 1, 1);
        QCOMPARE(items, QStringList({"Removing gone"}));
    }

    // ---- Arguments

    void argumentsThatDoNotFitAreATypeError_data()
    {
        QTest::addColumn<QString>("arguments");
        for (const char* arguments :
             {"'gone', 40, 0, 1, 1", "'gone', 40, 0, 1, 1, 2, 3", "'gone', '40', 0, 1, 1, 2",
              "'gone', 40, None, 1, 1, 2", "'gone', 40, 0, 'x', 1, 2", "'gone', 40, 0, 1, 'x', 2",
              "'gone', 40, 0, 1, 1, 'x'"})
            QTest::newRow(arguments) << QString(arguments);
    }

    void argumentsThatDoNotFitAreATypeError()
    {
        openTransaction();
        QFETCH(QString, arguments);
        QCOMPARE(call("tsEvent", arguments), QString("TypeError"));
        QVERIFY(items.isEmpty());
        QVERIFY(!state().tsEventSeen);
    }

    void theWholeTransactionFitsItsBudget()
    {
        openTransaction();
        // What the review adds up for an install, an update over two old versions and a removal.
        const auto sum = [this](const char* name) {
            const Package::Entry* row = contract->row(name);
            quint64 acts = OpenEngine::installActs(*row);
            for (const Package::Entry* old = row->next; old; old = old->next)
                acts += OpenEngine::updatedActs(*old);
            return acts;
        };
        mark("fresh", Package::ActionInstall);
        mark("kernel", Package::ActionUpdate);
        mark("gone", Package::ActionRemove);
        state().transactionActs =
            sum("fresh") + sum("kernel") + OpenEngine::removeActs(*contract->row("gone"));
        call("tsInitCallback", "0");
        call("tsInitCallback", "1");
        arrival("fresh", TrueInstall, 1, 500);
        arrival("kernel", Update, 2, 500);
        removal("kernel", Updated, 3, 100);
        removal("kernel", Updated, 4, 100);
        QVERIFY(progress->itemEnd < progress->actsEnd);
        removal("gone", Erase, 5, 100);
        QCOMPARE(static_cast<Steps>(act()), progress->actCount);
        QVERIFY2(progress->itemEnd == progress->actsEnd, "the last item ends the stretch");
    }
};

QTEST_MAIN(TestTransactionEvent)
#include "tst_TransactionEvent.moc"
