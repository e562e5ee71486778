// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QtTest>

#include <memory>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

/// An updatable, an installed and an available package, and the groups given.
QJsonObject systemWith(const QString& version, const QJsonArray& groups)
{
    return {{"version", version},
            {"updates", QJsonArray{Contract::package("old", {{"ver", "2-1"}})}},
            {"installed",
             QJsonArray{Contract::package("old", {{"ver", "1-1"}}), Contract::package("good")}},
            {"available", QJsonArray{Contract::package("new")}},
            {"groups", groups}};
}

} // namespace

class TestGroups : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void stateFollowsInstalledAndMandatoryPackages_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QJsonObject>("group");
        QTest::addColumn<int>("state");
        for (const char* version : {"2.4.3", "2.5.0", "4.14.0"}) {
            const auto row = [&](const char* what, const QJsonObject& group, int state) {
                QTest::newRow(qPrintable(QString("%1 %2").arg(version, what)))
                    << version << group << state;
            };
            row("not installed", {{"installed", false}, {"mandatory", QJsonArray{"old"}}},
                Package::StateInstallable);
            row("up to date", {{"installed", true}, {"mandatory", QJsonArray{"good", "new"}}},
                Package::StateInstalled);
            row("mandatory update", {{"installed", true}, {"mandatory", QJsonArray{"good", "old"}}},
                Package::StateUpdatable);
            row("optional update", {{"installed", true}, {"optional", QJsonArray{"old"}}},
                Package::StateInstalled);
            row("default update", {{"installed", true}, {"default", QJsonArray{"old"}}},
                Package::StateInstalled);
            row("unknown package", {{"installed", true}, {"mandatory", QJsonArray{"nosuch"}}},
                Package::StateInstalled);
        }
    }

    void stateFollowsInstalledAndMandatoryPackages()
    {
        QFETCH(QString, version);
        QFETCH(QJsonObject, group);
        QFETCH(int, state);
        contract->play(systemWith(version, {Contract::group("g", group)}));
        QVERIFY(contract->collect());
        const Package::Entry* entry = contract->row("g");
        QVERIFY(entry);
        QCOMPARE(static_cast<int>(entry->state), state);
        QCOMPARE(entry->kind, Package::KindGroup);
        QCOMPARE(entry->action, Package::ActionNone);
        QVERIFY(entry->summary.isEmpty() && entry->arch.isEmpty());
        QVERIFY(entry->pyObject);
        QCOMPARE(contract->engine().entryHash.value(YumIO::EntryKey(true, "g", "")), entry);
    }

    void anInvisibleGroupHasNoRow_data()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("2.4.3") << "2.4.3";
        QTest::newRow("2.5.0") << "2.5.0";
    }

    void anInvisibleGroupHasNoRow()
    {
        QFETCH(QString, version);
        contract->play({{"version", version},
                        {"groups", QJsonArray{Contract::group("hidden", {{"visible", false}}),
                                              Contract::group("shown")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->rowNames(), QStringList({"shown"}));
    }

    void aGroupWithoutVisibilityHasNoRow()
    {
        contract->play({{"groups", QJsonArray{Contract::group(
                                       "odd", {{"without", QJsonArray{"user_visible"}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 0);
    }

    void aSecondGroupOfANameIsIgnored()
    {
        contract->play({{"groups", QJsonArray{Contract::group("g", {{"installed", true}}),
                                              Contract::group("g")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 1);
        QCOMPARE(contract->row("g")->state, Package::StateInstalled);
    }

    void aGroupAndAPackageMayShareAName()
    {
        contract->play({{"available", QJsonArray{Contract::package("x")}},
                        {"groups", QJsonArray{Contract::group("x")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().count(), 2);
    }

    void oldGroupsShareOneObjectWithAReferenceEach()
    {
        contract->play({{"version", "2.4.3"},
                        {"groups", QJsonArray{Contract::group("a"), Contract::group("b")}}});
        QVERIFY(contract->collect());
        PyObject* object = contract->row("a")->pyObject;
        QCOMPARE(object, contract->row("b")->pyObject);
        OpenEngine::PyGILStateWrapper lock(true);
        QCOMPARE(static_cast<int>(Py_REFCNT(object)), 2);
    }

    void newGroupsHaveAnObjectEach()
    {
        contract->play({{"groups", QJsonArray{Contract::group("a"), Contract::group("b")}}});
        QVERIFY(contract->collect());
        QVERIFY(contract->row("a")->pyObject != contract->row("b")->pyObject);
        OpenEngine::PyGILStateWrapper lock(true);
        QCOMPARE(static_cast<int>(Py_REFCNT(contract->row("a")->pyObject)), 1);
    }

    void aSubGroupThatIsOutOfDateMakesItsParentSo()
    {
        contract->play(systemWith(
            "2.4.3",
            {Contract::group("sub", {{"installed", true}, {"mandatory", QJsonArray{"old"}}}),
             Contract::group("parent", {{"installed", true}, {"groups", QJsonArray{"sub"}}})}));
        QVERIFY(contract->collect());
        QCOMPARE(contract->row("parent")->state, Package::StateUpdatable);
    }

    void aSubGroupThatIsNotYetCollectedIsPassedOver()
    {
        contract->play(systemWith(
            "2.4.3",
            {Contract::group("parent", {{"installed", true}, {"groups", QJsonArray{"sub"}}}),
             Contract::group("sub", {{"installed", true}, {"mandatory", QJsonArray{"old"}}})}));
        QVERIFY(contract->collect());
        QCOMPARE(contract->row("parent")->state, Package::StateInstalled);
    }

    void groupsThatContainEachOtherEnd()
    {
        contract->play(
            {{"version", "2.4.3"},
             {"groups",
              QJsonArray{
                  Contract::group("a", {{"installed", true}, {"groups", QJsonArray{"b"}}}),
                  Contract::group("b", {{"installed", true}, {"groups", QJsonArray{"a", "b"}}})}}});
        QVERIFY(contract->collect());
        QVERIFY(contract->engine().upToDateGroup(*contract->row("a")));
        QCOMPARE(contract->row("b")->state, Package::StateInstalled);
    }

    void membersAreListedSorted()
    {
        contract->play({{"groups", QJsonArray{Contract::group(
                                       "g", {{"mandatory", QJsonArray{"b", "a"}},
                                             {"default", QJsonArray{"d", "c"}},
                                             {"optional", QJsonArray{"f", "e"}},
                                             {"conditional", QJsonArray{"h", "g"}}})}}});
        QVERIFY(contract->collect());
        const Package::Entry& entry = *contract->row("g");
        QCOMPARE(contract->engine().getMandatoryPkgs(entry), QString("a\nb"));
        QCOMPARE(contract->engine().getDefaultPkgs(entry), QString("c\nd"));
        QCOMPARE(contract->engine().getOptionalPkgs(entry), QString("e\nf"));
        QCOMPARE(contract->engine().getConditionalPkgs(entry), QString("g\nh"));
    }

    void subGroupsOfNewGroupsAreEmptyWithoutAWord()
    {
        contract->play({{"version", "2.5.0"}, {"groups", QJsonArray{Contract::group("g")}}});
        QVERIFY(contract->collect());
        const Package::Entry& entry = *contract->row("g");
        QCOMPARE(contract->engine().getRequiredGroups(entry), QString());
        QCOMPARE(contract->engine().getDefaultMetaPkgs(entry), QString());
        QCOMPARE(contract->engine().getOptionalMetaPkgs(entry), QString());
    }

    void membersOfOldGroupsComeFromTheSharedObject()
    {
        contract->play({{"version", "2.4.3"},
                        {"groups", QJsonArray{Contract::group(
                                       "g", {{"mandatory", QJsonArray{"b", "a"}},
                                             {"default", QJsonArray{"c"}},
                                             {"optional", QJsonArray{"d"}},
                                             {"conditional", QJsonArray{"e"}},
                                             {"groups", QJsonArray{"z", "y"}},
                                             {"metapkgs", QJsonArray{"x"}},
                                             {"optionalmetapkgs", QJsonArray{"w", "v"}}})}}});
        QVERIFY(contract->collect());
        const Package::Entry& entry = *contract->row("g");
        QCOMPARE(contract->engine().getMandatoryPkgs(entry), QString("a\nb"));
        QCOMPARE(contract->engine().getDefaultPkgs(entry), QString("c"));
        QCOMPARE(contract->engine().getOptionalPkgs(entry), QString("d"));
        QCOMPARE(contract->engine().getRequiredGroups(entry), QString("y\nz"));
        QCOMPARE(contract->engine().getDefaultMetaPkgs(entry), QString("x"));
        QCOMPARE(contract->engine().getOptionalMetaPkgs(entry), QString("v\nw"));
        QCOMPARE(contract->engine().getConditionalPkgs(entry), QString());
    }

    void aNewGroupWithoutANameFailsTheCollection()
    {
        contract->play(
            {{"groups", QJsonArray{Contract::group("g", {{"without", QJsonArray{"name"}}})}}});
        driver->expect(yumError).text("Internal error: group without name").press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->callCount("collectDone"), 0);
    }

    void aNewGroupWithoutAnInstalledFlagFailsTheCollection()
    {
        contract->play(
            {{"groups", QJsonArray{Contract::group("g", {{"without", QJsonArray{"installed"}}})}}});
        driver->expect(yumError)
            .text("Internal error: cannot find group's installed flag")
            .press("OK");
        QVERIFY(!contract->collect());
    }

    void anOldGroupMissingFromTheInstalledTableFailsTheCollection()
    {
        contract->play(
            {{"version", "2.4.3"},
             {"groups", QJsonArray{Contract::group("g", {{"installed", QJsonValue()}})}}});
        driver->expect(yumError)
            .text("Internal error: cannot find groupInfo.group_installed['%s']")
            .press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(contract->engine().count(), 0);
    }

    void oldGroupsNeedTheListOfVisibleOnes()
    {
        contract->play({{"version", "2.4.3"}, {"groupInfoWithout", QJsonArray{"visible_groups"}}});
        driver->expect(yumError)
            .text("Internal error: groupInfo.visible_groups not evaluable")
            .press("OK");
        QVERIFY(!contract->collect());
    }

    void anUnreadableTableOfAnOldGroupIsReportedAndCountsAsUpToDate()
    {
        contract->play({{"version", "2.4.3"},
                        {"groupInfoWithout", QJsonArray{"sub_groups"}},
                        {"groups", QJsonArray{Contract::group("g", {{"installed", true}})}}});
        driver->expect(yumError)
            .text("Internal error: groupInfo.sub_groups not evaluable")
            .press("OK");
        QVERIFY(contract->collect());
        QCOMPARE(contract->row("g")->state, Package::StateInstalled);
    }

    void aTableWithoutTheGroupIsNamed()
    {
        contract->play({{"version", "2.4.3"}, {"groups", QJsonArray{Contract::group("g")}}});
        QVERIFY(contract->collect());
        contract->engine().py("import gc\n"
                              "for info in gc.get_objects():\n"
                              "    if isinstance(info, GroupInfo): info.default_pkgs.clear()\n"
                              "del info");
        driver->expect(yumError)
            .text("Internal error: groupInfo.default_pkgs[g] not evaluable")
            .press("OK");
        QCOMPARE(contract->engine().getDefaultPkgs(*contract->row("g")), QString());
    }

    void anUnreadableListOfANewGroupIsNamedFieldFirst()
    {
        contract->play({{"groups", QJsonArray{Contract::group(
                                       "g", {{"without", QJsonArray{"default_packages"}}})}}});
        QVERIFY(contract->collect());
        driver->expect(yumError)
            .text("Internal error: group default_packages.g not evaluable")
            .press("OK");
        QCOMPARE(contract->engine().getDefaultPkgs(*contract->row("g")), QString());
    }

    void eachAccessorRefusesTheOtherForm()
    {
        OpenEngine::PyGILStateWrapper lock(true);
        contract->play({{"version", "2.5.0"}, {"groups", QJsonArray{Contract::group("g")}}});
        QVERIFY(contract->collect());
        driver->expect(yumError)
            .text("getGroupItem_22 called for incorrect version of yum")
            .press("OK");
        QVERIFY(!contract->engine().getGroupItem_22(*contract->row("g"), "default_pkgs"));
        QCOMPARE(driver->driven(), 1);

        contract->play({{"version", "2.4.9"}, {"groups", QJsonArray{Contract::group("g")}}});
        QVERIFY(contract->collect());
        driver->expect(yumError)
            .text("getGroupItem_25 called for incorrect version of yum")
            .press("OK");
        QVERIFY(!contract->engine().getGroupItem_25(*contract->row("g"), "default_packages"));
        QCOMPARE(driver->driven(), 2);
    }
};

QTEST_MAIN(TestGroups)
#include "tst_Groups.moc"
