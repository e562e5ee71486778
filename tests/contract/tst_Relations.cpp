// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QtTest>

#include <memory>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

} // namespace

class TestRelations : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void relationsOfARepositoryPackage_data()
    {
        QTest::addColumn<QJsonArray>("relation");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QJsonValue& flag, const QJsonValue& evr,
                            const char* text) {
            QTest::newRow(name) << QJsonArray{"lib", flag, evr} << text;
        };
        const QJsonValue none;
        row("name only", none, none, "lib");
        row("no flag", none, QJsonArray{"0", "1", "2"}, "lib");
        row("no version tuple", "EQ", none, "lib");
        row("no version", "EQ", QJsonArray{none, none, none}, "lib");
        row("epoch zero", "EQ", QJsonArray{"0", "1", "2"}, "lib = 1-2");
        row("epoch two", "EQ", QJsonArray{"2", "1", "2"}, "lib = 2:1-2");
        row("no epoch", "GE", QJsonArray{none, "1", "2"}, "lib >= 1-2");
        row("no release", "LE", QJsonArray{"0", "1", none}, "lib <= 1");
        row("greater", "GT", QJsonArray{"0", "1", none}, "lib > 1");
        row("less", "LT", QJsonArray{"0", "1", none}, "lib < 1");
        row("another word", "NE", QJsonArray{"0", "1", none}, "lib NE 1");
    }

    void relationsOfARepositoryPackage()
    {
        QFETCH(QJsonArray, relation);
        QFETCH(QString, text);
        for (const char* version : {"2.4.0", "4.14.0"}) {
            contract->play(
                {{"version", version},
                 {"available",
                  QJsonArray{Contract::package(
                      "a", {{"prco", QJsonObject{{"requires", QJsonArray{relation}}}}})}}});
            QVERIFY(contract->collect());
            QCOMPARE(contract->engine().getRequires(*contract->row("a")), text);
        }
    }

    void relationsComeFromTheMethodOrTheDictionary_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("calls");
        QTest::newRow("dictionary") << "2.4.0" << 0;
        QTest::newRow("method") << "4.14.0" << 4;
    }

    void relationsComeFromTheMethodOrTheDictionary()
    {
        QFETCH(QString, version);
        QFETCH(int, calls);
        const auto one = [](const char* name) {
            return QJsonArray{QJsonArray{name, QJsonValue(), QJsonValue()}};
        };
        contract->play(
            {{"version", version},
             {"available", QJsonArray{Contract::package(
                               "a", {{"prco", QJsonObject{{"provides", one("p")},
                                                          {"requires", one("r")},
                                                          {"conflicts", one("c")},
                                                          {"obsoletes", one("o")}}}})}}});
        QVERIFY(contract->collect());
        YumIO& engine = contract->engine();
        const Package::Entry& entry = *contract->row("a");
        QCOMPARE(QStringList({engine.getProvides(entry), engine.getRequires(entry),
                              engine.getConflicts(entry), engine.getObsoletes(entry)}),
                 QStringList({"p", "r", "c", "o"}));
        QCOMPARE(contract->callCount("returnPrco"), calls);
    }

    void aRelationListedTwiceAppearsTwiceAndSorted()
    {
        const QJsonArray b{"b", QJsonValue(), QJsonValue()};
        const QJsonArray a{"a", QJsonValue(), QJsonValue()};
        contract->play(
            {{"available", QJsonArray{Contract::package(
                               "p", {{"prco", QJsonObject{{"provides", QJsonArray{b, a, b}}}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getProvides(*contract->row("p")), QString("a\nb\nb"));
    }

    void missingRelationsAreAnInternalError_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("raises");
        QTest::newRow("dictionary") << "2.4.0" << false;
        QTest::newRow("method") << "4.14.0" << true;
    }

    void missingRelationsAreAnInternalError()
    {
        QFETCH(QString, version);
        QFETCH(bool, raises);
        contract->play(
            {{"version", version},
             {"available", QJsonArray{Contract::package(
                               "a", {{"prco", QJsonObject{{"obsoletes", QJsonValue()}}}})}}});
        QVERIFY(contract->collect());
        if (raises)
            driver->expect(yumError).textContains("Internal error: python exception").press("OK");
        driver->expect(yumError)
            .text("Internal error: cannot find package's prco.obsoletes")
            .press("OK");
        QCOMPARE(contract->engine().getObsoletes(*contract->row("a")), QString());
    }

    void aPackageWithoutRelationsHasNone()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"without", QJsonArray{"prco"}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getRequires(*contract->row("a")), QString());
    }

    void relationsOfAnInstalledPackage_data()
    {
        QTest::addColumn<QJsonValue>("flags");
        QTest::addColumn<QJsonValue>("versions");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QJsonValue& flags, const QJsonValue& versions,
                            const char* text) { QTest::newRow(name) << flags << versions << text; };
        row("no sense bit", QJsonArray{0}, QJsonArray{"1.0"}, "lib  1.0");
        row("less", QJsonArray{2}, QJsonArray{"1.0"}, "lib < 1.0");
        row("greater", QJsonArray{4}, QJsonArray{"1.0"}, "lib > 1.0");
        row("equal", QJsonArray{8}, QJsonArray{"0:1.0"}, "lib = 0:1.0");
        row("less or equal", QJsonArray{2 | 8}, QJsonArray{"1.0"}, "lib <= 1.0");
        row("greater or equal", QJsonArray{4 | 8}, QJsonArray{"1.0"}, "lib >= 1.0");
        row("other bits", QJsonArray{16777216 | 4 | 8}, QJsonArray{"1.0"}, "lib >= 1.0");
        row("no flags", QJsonValue(), QJsonArray{"1.0"}, "lib");
        row("no versions", QJsonArray{8}, QJsonValue(), "lib");
        row("no flag in the list", QJsonArray{QJsonValue()}, QJsonArray{"1.0"}, "lib");
        row("bare values", 8, "1.0", "lib = 1.0");
    }

    void relationsOfAnInstalledPackage()
    {
        QFETCH(QJsonValue, flags);
        QFETCH(QJsonValue, versions);
        QFETCH(QString, text);
        contract->play(
            {{"installed", QJsonArray{Contract::installed("a", {{"CONFLICTNAME", QJsonArray{"lib"}},
                                                                {"CONFLICTFLAGS", flags},
                                                                {"CONFLICTVERSION", versions}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getConflicts(*contract->row("a")), text);
        QCOMPARE(contract->callCount("returnPrco"), 0);
    }

    void eachRelationOfAnInstalledPackageHasItsTags()
    {
        QJsonObject header;
        for (const char* stem : {"PROVIDE", "REQUIRE", "CONFLICT", "OBSOLETE"}) {
            header.insert(QString("%1NAME").arg(stem), QJsonArray{stem, "a"});
            header.insert(QString("%1FLAGS").arg(stem), QJsonArray{8, 2});
            header.insert(QString("%1VERSION").arg(stem), QJsonArray{"1", "2"});
        }
        contract->play({{"installed", QJsonArray{Contract::installed("a", header)}}});
        QVERIFY(contract->collect());
        YumIO& engine = contract->engine();
        const Package::Entry& entry = *contract->row("a");
        QCOMPARE(engine.getProvides(entry), QString("PROVIDE = 1\na < 2"));
        QCOMPARE(engine.getRequires(entry), QString("REQUIRE = 1\na < 2"));
        QCOMPARE(engine.getConflicts(entry), QString("CONFLICT = 1\na < 2"));
        QCOMPARE(engine.getObsoletes(entry), QString("OBSOLETE = 1\na < 2"));
    }

    void anInstalledPackageWithoutRelationsHasNone()
    {
        contract->play({{"installed", QJsonArray{Contract::installed("a")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getProvides(*contract->row("a")), QString());
    }

    void headerValuesNeedAHeader()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        driver->expect(yumError)
            .text("getRpmHdrValue called for package with no hdr (i.e. not installed)")
            .press("OK");
        QVERIFY(!contract->engine().getRpmHdrValue(contract->row("a")->pyObject, "BASENAMES"));
        QVERIFY(!PyErr_Occurred());
    }

    void anUnknownTagIsNamed()
    {
        contract->play({{"installed", QJsonArray{Contract::installed("a")}}});
        QVERIFY(contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        driver->expect(yumError).text("Internal error: cannot find rpm.RPMTAG_NOSUCH").press("OK");
        QVERIFY(!contract->engine().getRpmHdrValue(contract->row("a")->pyObject, "NOSUCH"));
    }
};

QTEST_MAIN(TestRelations)
#include "tst_Relations.moc"
