// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace
{

const QString noRepositories =
    QStringLiteral("No repositories are configured.\nUnder the Repositories menu, Edit "
                   "Configuration can be used to configure repositories.");
const QString noneEnabled =
    QStringLiteral("No repositories are enabled.\nUnder the Repositories menu, Edit "
                   "Configuration can be used to configure repositories.");
const QString yumError = QStringLiteral("VOK Yum Error");
const QString yumWarning = QStringLiteral("VOK Yum Warning");
const QString walkback =
    QStringLiteral("Internal error: python exception occurred from C code.\nWhen reporting this "
                   "issue, please include the contents of the\nLog window, which should contain a "
                   "walkback.");

QJsonObject raised(const char* method, const char* type, const char* text = "told to fail")
{
    return {{"raise", QJsonObject{{method, QJsonObject{{"type", type}, {"text", text}}}}}};
}

} // namespace

class TestCollection : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void callsTheScriptInOrder()
    {
        contract->play({{"repos", QJsonObject{{"base", QJsonObject{{"enabled", 1}}}}}});
        QVERIFY(contract->collect({{"base", true}}));
        QCOMPARE(contract->mainCalls(),
                 QStringList({"lock()", "enableRepo(base)", "setupRepos()", "setupTs()",
                              "collectUpdates()", "collectAll()", "setupTsGroup()",
                              "collectGroupInfo()", "collectDone()"}));
        QVERIFY2(!contract->calledHere("setupRepos"), "a collection runs on a work thread");
        QCOMPARE(contract->logTexts().first(), QString("Initialization"));
        QCOMPARE(contract->engine().basearch, QString("x86_64"));
    }

    void aSecondCollectionDoesNotLockAgain()
    {
        contract->play({});
        QVERIFY(contract->collect());
        contract->engine().clear();
        QVERIFY(contract->collect());
        QCOMPARE(contract->callCount("lock"), 1);
        QCOMPARE(contract->callCount("setupRepos"), 2);
    }

    void aRefusedLockEndsTheCollection()
    {
        contract->play(raised("lock", "LockError", "somebody else has it"));
        QString total;
        QString item;
        driver->expect(yumError)
            .textContains("Unable to obtain yum lock")
            .act([&](QWidget*) {
                total = contract->totalBar.text();
                item = contract->itemBar.text();
            })
            .press("Close");
        QVERIFY(!contract->collect());
        QVERIFY2(total.contains("Initializing: Total Progress"), qPrintable(total));
        QVERIFY2(item.contains("Preparing"), qPrintable(item));
        QVERIFY(!contract->engine().yumLocked);
        QCOMPARE(contract->callCount("setupRepos"), 0);

        QVERIFY2(contract->collect(), "the next try locks");
        QCOMPARE(contract->callCount("lock"), 2);
    }

    void missingRepositoryTableIsAnInternalError()
    {
        contract->play({{"repos", QJsonValue()}});
        driver->expect(yumError)
            .text("Internal error: yumIO.repos.repos not evaluable")
            .press("OK");
        QVERIFY(!contract->collect());
    }

    void repositoryTableMustBeADictionary()
    {
        contract->play({{"repos", QJsonArray{"base"}}});
        driver->expect(yumError)
            .text("Internal error: yumIO.repos.repos not a dictionary")
            .press("OK");
        QVERIFY(!contract->collect());
    }

    void withoutRepositoriesNothingIsSetUp()
    {
        contract->play({{"repos", QJsonObject{}}});
        driver->expect(yumError).text(noRepositories).press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->callCount("setupRepos"), 0);
    }

    void withoutEnabledRepositoriesNothingIsSetUp()
    {
        contract->play({{"repos", QJsonObject{{"base", QJsonObject{{"enabled", 0}}},
                                              {"odd", QJsonObject{}}}}});
        driver->expect(yumError).text(noneEnabled).press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->callCount("setupRepos"), 0);
    }

    void switchesTheRepositoriesOfTheSession()
    {
        contract->play({{"repos", QJsonObject{{"a", QJsonObject{{"enabled", 0}}},
                                              {"b", QJsonObject{{"enabled", 1}}},
                                              {"c", QJsonObject{{"enabled", 1}}}}}});
        QVERIFY(contract->collect({{"a", true}, {"b", false}}));
        QCOMPARE(contract->engine().collectState.repos, QStringList({"a", "c"}));
        QCOMPARE(contract->callCount("enableRepo"), 1);
        QCOMPARE(contract->callCount("disableRepo"), 1);
    }

    void unknownRepositoryOfTheSessionIsIgnored()
    {
        contract->play({});
        QVERIFY(contract->collect({{"nosuch", true}, {"neither", false}}));
        QCOMPARE(contract->callCount("enableRepo"), 0);
        QCOMPARE(contract->callCount("disableRepo"), 0);
    }

    void aRefusedRepositoryIsAWarningAndTheRestGoesOn()
    {
        contract->play(
            {{"repos",
              QJsonObject{{"a", QJsonObject{{"enabled", 1}}}, {"b", QJsonObject{{"enabled", 0}}}}},
             {"raise",
              QJsonObject{{"enableRepo",
                           QJsonObject{{"type", "RepoError"}, {"text", "no way"}, {"on", "a"}}}}}});
        driver->expect(yumWarning).text("unable to setup repository a:\nno way").press("OK");
        QVERIFY(contract->collect({{"a", true}, {"b", true}}));
        QCOMPARE(contract->engine().collectState.repos, QStringList({"a", "b"}));
    }

    void aFailedSetupOfRepositoriesEndsTheCollection_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("repository") << "RepoError";
        QTest::newRow("its subclass") << "NoMoreMirrorsRepoError";
        QTest::newRow("quit") << "BdbQuit";
    }

    void aFailedSetupOfRepositoriesEndsTheCollection()
    {
        QFETCH(QString, type);
        contract->play(raised("setupRepos", type.toUtf8().constData(), "cannot fetch it"));
        driver->expect(yumError).text("cannot fetch it\nUnable to initialize").press("Close");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->callCount("setupTs"), 0);
        QCOMPARE(contract->engine().count(), 0);
    }

    void anUnexpectedExceptionOfSetupIsReportedAndTheCollectionGoesOn()
    {
        contract->play(raised("setupRepos", "ValueError"));
        driver->expect(yumError).text(walkback).press("OK");
        QVERIFY(contract->collect());
        QCOMPARE(contract->callCount("collectDone"), 1);
        QVERIFY2(!contract->logTexts().filter("ValueError: told to fail").isEmpty(),
                 "the walkback is in the log");
    }

    void communicationFailuresNameTheStep_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("action");
        QTest::newRow("setupTs") << "setupTs"
                                 << "setup transaction";
        QTest::newRow("collectUpdates") << "collectUpdates"
                                        << "collect updatable packages";
        QTest::newRow("collectAll") << "collectAll"
                                    << "collect installed and available packages";
        QTest::newRow("setupTsGroup") << "setupTsGroup"
                                      << "collect groups";
    }

    void communicationFailuresNameTheStep()
    {
        QFETCH(QString, method);
        QFETCH(QString, action);
        contract->play(raised(method.toUtf8().constData(), "YumBaseError", "it broke"));
        driver->expect(yumError).text("it broke\nUnable to " + action).press("Close");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->engine().count(), 0);
        QCOMPARE(contract->callCount("collectDone"), 0);
    }

    void anUnexpectedExceptionOfAListEndsTheCollection_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("collectUpdates") << "collectUpdates";
        QTest::newRow("collectAll") << "collectAll";
        QTest::newRow("collectGroupInfo") << "collectGroupInfo";
    }

    void anUnexpectedExceptionOfAListEndsTheCollection()
    {
        QFETCH(QString, method);
        contract->play(raised(method.toUtf8().constData(), "ValueError"));
        driver->expect(yumError).text(walkback).press("OK");
        driver->expect(yumError)
            .text(QString("Internal error: execution of yumIO.%1 failed").arg(method))
            .press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->callCount("collectDone"), 0);
    }

    void aMissingListIsAnInternalError_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("installed") << "installed";
        QTest::newRow("available") << "available";
    }

    void aMissingListIsAnInternalError()
    {
        QFETCH(QString, field);
        contract->play({{field, QJsonValue()}});
        driver->expect(yumError)
            .text(QString("Internal error: yumIO.collectAll.%1 not found").arg(field))
            .press("OK");
        QVERIFY(!contract->collect());
    }

    void aListThatBreaksOffEndsTheCollection()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}},
                        {"broken", QJsonArray{"available"}}});
        driver->expect(yumError).text(walkback).press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->engine().count(), 0);
    }

    void entriesOfAFailedCollectionAreNotShownAndGoWithTheNextClear()
    {
        contract->play({{"updates", QJsonArray{Contract::package("a")}},
                        {"raise", QJsonObject{{"collectAll", QJsonObject{{"type", "YumBaseError"},
                                                                         {"text", "x"}}}}}});
        driver->expect(yumError).press("Close");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->engine().count(), 0);
        QCOMPARE(contract->engine().entryHash.size(), 1);
        contract->engine().clear();
        QCOMPARE(contract->engine().entryHash.size(), 0);
        contract->play({{"updates", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->rowNames(), QStringList({"a"}));
    }

    void aSystemWithoutGroupsIsNormal()
    {
        contract->play(raised("setupTsGroup", "GroupsError", "No Groups Available in any repo"));
        QVERIFY(contract->collect());
        QCOMPARE(contract->callCount("collectGroupInfo"), 1);
        QCOMPARE(contract->callCount("collectDone"), 1);
    }

    void anotherFailureOfGroupsEndsTheCollection()
    {
        contract->play(raised("setupTsGroup", "GroupsError", "no groups available"));
        driver->expect(yumError)
            .text("Internal error: execution of yumIO.setupTsGroup failed")
            .press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->callCount("collectGroupInfo"), 0);
    }

    void groupsThatAreNothingAtAllAreNone()
    {
        contract->play({{"returns", QJsonObject{{"collectGroupInfo", QJsonValue()}}},
                        {"installed", QJsonArray{Contract::installed("a")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->rowNames(), QStringList({"a"}));
    }

    void fillsTheFieldsOfARow()
    {
        contract->play(
            {{"available",
              QJsonArray{Contract::package("foo", {{"ver", "1:2.0-3"},
                                                   {"arch", "i686"},
                                                   {"repoid", "base"},
                                                   {"size", 10240},
                                                   {"summary", "A foo\nfor all\n\n"},
                                                   {"group", "Suite"},
                                                   {"buildtime", "86400"}}),
                         Contract::package("bar", {{"group", "Suite "},
                                                   {"size", QJsonObject{{"method", "999"}}}})}}});
        QVERIFY(contract->collect());
        const Package::Entry* entry = contract->row("foo");
        QVERIFY(entry);
        QCOMPARE(entry->action, Package::ActionNone);
        QCOMPARE(entry->state, Package::StateInstallable);
        QCOMPARE(entry->kind, Package::KindSuite);
        QCOMPARE(entry->verRel, QString("1:2.0-3"));
        QCOMPARE(entry->repo, QString("base"));
        QCOMPARE(entry->arch, QString("i686"));
        QCOMPARE(entry->biArch, QString("i386"));
        QCOMPARE(entry->sizeBytes, quint64(10240));
        QCOMPARE(entry->sizeText, QString("10Kb"));
        QCOMPARE(entry->summary, QString("A foo\nfor all"));
        QCOMPARE(entry->buildTime, 86400L);
        QCOMPARE(entry->buildTimeText, YumIO::timeFormat(86400));
        QVERIFY(entry->pyObject);
        QVERIFY(!entry->duplicate && !entry->next);

        const Package::Entry* other = contract->row("bar");
        QVERIFY(other);
        QCOMPARE(other->kind, Package::KindOrdinary);
        QCOMPARE(other->sizeText, QString("999b"));
        QCOMPARE(other->repo, QString());
        QCOMPARE(contract->engine().biArchs, QSet<QString>({"i386", "x86_64"}));
    }

    void aSizeAboveFourGigabytesIsKept()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("big", {{"size", 5368709120.0}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->row("big")->sizeBytes, quint64(5368709120));
        QCOMPARE(contract->row("big")->sizeText, QString("5.0Gb"));
    }

    void aRowHoldsOneReferenceOfItsOwn()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        QCOMPARE(static_cast<int>(Py_REFCNT(contract->row("a")->pyObject)), 1);
    }

    void anUpdatablePackageIsOneRowWithItsInstalledVersionBehind()
    {
        contract->play({{"updates", QJsonArray{Contract::package("a", {{"ver", "2-1"}})}},
                        {"installed", QJsonArray{Contract::package("a", {{"ver", "1-1"}})}},
                        {"available", QJsonArray{Contract::package("a", {{"ver", "2-1"}}),
                                                 Contract::package("a", {{"ver", "1-5"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 1);
        const Package::Entry* entry = contract->row("a");
        QCOMPARE(entry->state, Package::StateUpdatable);
        QCOMPARE(entry->verRel, QString("2-1"));
        QVERIFY(entry->next);
        QCOMPARE(entry->next->verRel, QString("1-1"));
        QCOMPARE(entry->next->state, Package::StateInstalled);
        QVERIFY(!entry->next->next);
        QCOMPARE(contract->callCount("isBetterThan"), 0);
    }

    void severalInstalledVersionsAreOneRowAndAChain()
    {
        contract->play({{"installed", QJsonArray{Contract::package("kernel", {{"ver", "1-1"}}),
                                                 Contract::package("kernel", {{"ver", "2-1"}}),
                                                 Contract::package("kernel", {{"ver", "3-1"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 1);
        const Package::Entry* entry = contract->row("kernel");
        QCOMPARE(entry->verRel, QString("1-1"));
        QVERIFY(entry->next && entry->next->next);
        QCOMPARE(entry->next->verRel, QString("2-1"));
        QCOMPARE(entry->next->next->verRel, QString("3-1"));
        QVERIFY(!entry->next->next->next);
        QCOMPARE(contract->callCount("isBetterThan"), 0);
    }

    void installedComesBeforeAvailableWhateverTheScriptsOrder()
    {
        contract->play({{"installed", QJsonArray{Contract::package("a", {{"ver", "1-1"}})}},
                        {"available", QJsonArray{Contract::package("a", {{"ver", "0-1"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->row("a")->state, Package::StateInstalled);
        QCOMPARE(contract->row("a")->verRel, QString("1-1"));
    }

    void aPackageMeetsAnEarlierNoarchOne()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "noarch"}}),
                                                 Contract::package("a", {{"arch", "i386"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 1);
        QCOMPARE(contract->row("a")->arch, QString("noarch"));
    }

    void aNoarchPackageDoesNotMeetAnEarlierOtherOne()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "i386"}}),
                                                 Contract::package("a", {{"arch", "noarch"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 2);
    }

    void architecturesOfOneFamilyShareARow()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "i386"}}),
                                                 Contract::package("a", {{"arch", "i686"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 1);
        QCOMPARE(contract->row("a")->arch, QString("i386"));
    }

    void theWorseOfTwoFamiliesIsADuplicate_data()
    {
        QTest::addColumn<bool>("firstStays");
        QTest::newRow("the first is better") << true;
        QTest::newRow("the second is better") << false;
    }

    void theWorseOfTwoFamiliesIsADuplicate()
    {
        QFETCH(bool, firstStays);
        QJsonObject told{
            {"available", QJsonArray{Contract::package("a", {{"arch", "x86_64"}, {"ver", "1-1"}}),
                                     Contract::package("a", {{"arch", "i686"}, {"ver", "2-1"}})}}};
        if (firstStays)
            told.insert("better", QJsonArray{QJsonArray{"1-1", "2-1"}});
        contract->play(told);
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 2);
        const YumIO::EntryHash& hash = contract->engine().entryHash;
        const Package::Entry* first = hash.value(YumIO::EntryKey(false, "a", "x86_64"));
        const Package::Entry* second = hash.value(YumIO::EntryKey(false, "a", "i386"));
        QVERIFY(first && second);
        QCOMPARE(first->duplicate, !firstStays);
        QCOMPARE(second->duplicate, firstStays);
        QCOMPARE(contract->engine().bestByName.value("a"), firstStays ? first : second);
        QVERIFY(contract->calls().contains("isBetterThan(1-1,2-1)"));
    }

    void theBestOfThreeIsComparedOnlyWithTheBestSoFar()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"arch", "x"}, {"ver", "1"}}),
                                      Contract::package("a", {{"arch", "y"}, {"ver", "2"}}),
                                      Contract::package("a", {{"arch", "z"}, {"ver", "3"}})}},
             {"better", QJsonArray{QJsonArray{"2", "3"}}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->callCount("isBetterThan"), 2);
        QVERIFY(contract->calls().contains("isBetterThan(2,3)"));
        QCOMPARE(contract->engine().bestByName.value("a")->verRel, QString("2"));
    }

    void anythingButTrueMakesTheSecondTheBest()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "x"}}),
                                                 Contract::package("a", {{"arch", "y"}})}},
                        {"betterAnswer", 1}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().bestByName.value("a")->arch, QString("y"));
    }

    void aFailedComparisonMakesTheSecondTheBest()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"arch", "x"}}),
                                      Contract::package("a", {{"arch", "y"}})}},
             {"raise", QJsonObject{{"isBetterThan", QJsonObject{{"type", "ValueError"}}}}}});
        driver->expect(yumError).text(walkback).press("OK");
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().bestByName.value("a")->arch, QString("y"));
    }

    void asksForTheFamilyOfAnArchitectureOnce()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "i686"}}),
                                                 Contract::package("b", {{"arch", "i686"}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->calls().filter("getBiArch(i686)").size(), 1);
    }

    void aRowTupleMakesTheSameRowAsTheSingleCalls()
    {
        const QJsonArray packages{
            Contract::package("suite", {{"group", "Suite"}, {"summary", "s\n\n"}}),
            Contract::package("full", {{"ver", "3:1-1"},
                                       {"arch", "athlon"},
                                       {"repoid", "base"},
                                       {"size", 123456789},
                                       {"summary", "one"},
                                       {"group", "Suites"},
                                       {"buildtime", 1234567890}}),
            Contract::package("texts", {{"size", "1000"}, {"buildtime", "77"}, {"repoid", 7}}),
            Contract::package("method", {{"size", QJsonObject{{"method", 2000}}}}),
            Contract::package("twice", {{"arch", "x86_64"}}),
            Contract::package("twice", {{"arch", "noarch"}}),
        };
        const auto describe = [this] {
            QStringList rows;
            for (const Package::Entry* entry : contract->engine())
                rows.append(
                    QStringList({entry->name, entry->verRel, entry->repo, entry->arch,
                                 entry->biArch, QString::number(entry->sizeBytes), entry->sizeText,
                                 entry->summary, QString::number(entry->buildTime),
                                 entry->buildTimeText, QString::number(entry->kind),
                                 QString::number(entry->state), QString::number(entry->duplicate)})
                        .join('|'));
            rows.sort();
            return rows;
        };
        contract->play({{"available", packages}});
        QVERIFY(contract->collect());
        const QStringList single = describe();
        QCOMPARE(single.size(), packages.size());
        contract->play({{"available", packages}, {"rows", true}});
        QVERIFY(contract->collect());
        QCOMPARE(describe(), single);
        QVERIFY(single.join('\n').contains("full|3:1-1|base|athlon|i386|123456789|118Mb|one|"));
    }

    void aRowTupleIsWhatTheRowIsMadeOf()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}, {"rows", true}});
        contract->engine().py("Row.collectRow, kept = lambda self: ('row', '9-9', 'r', "
                              "'noarch', 5, 's', 6, 'Suite'), Row.collectRow");
        const bool collected = contract->collect();
        contract->engine().py("Row.collectRow = kept");
        QVERIFY(collected);
        const Package::Entry* entry = contract->row("row");
        QVERIFY(entry);
        QCOMPARE(entry->verRel, QString("9-9"));
        QCOMPARE(entry->kind, Package::KindSuite);
        QCOMPARE(entry->sizeBytes, quint64(5));
        QCOMPARE(entry->buildTime, 6L);
    }

    void aRowOfAnotherShapeIsReadByTheSingleCalls()
    {
        contract->play({{"available", QJsonArray{Contract::package(
                                          "a", {{"row", QJsonArray{1, 2}}, {"repoid", "base"}})}},
                        {"rows", true}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->row("a")->repo, QString("base"));
    }

    void theStepsOfACollectionFollowThePlan()
    {
        QJsonObject meters{
            {"setupRepos", QJsonArray{QJsonArray{"collectProgress", -1, -1, "base"}}}};
        contract->play(
            {{"repos", QJsonObject{{"base", QJsonObject{{"enabled", 1}}}}}, {"meters", meters}});
        QStringList items;
        contract->probe([&](const QString& method) {
            if (method != "setupRepos")
                return;
            QObject::connect(contract->engine().progress, &Progress::Object::startItemSig,
                             [&](const QString& activity, Steps total, Steps maximum) {
                                 items.append(
                                     QString("%1 %2 %3").arg(activity).arg(total).arg(maximum));
                             });
            QObject::connect(contract->engine().progress, &Progress::Object::endItemActsSig,
                             [&](Steps total) { items.append(QString("end %1").arg(total)); });
        });
        QVERIFY(contract->collect());
        QCOMPARE(items, QStringList({"Reading repository contents for base 1000 1", "end 15000",
                                     "Collecting updatable packages 15000 1",
                                     "Collecting installed and available packages 19000 1",
                                     "Collecting groups 23000 1"}));
    }
};

QTEST_MAIN(TestCollection)
#include "tst_Collection.moc"
