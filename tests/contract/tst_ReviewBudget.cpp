// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ReviewStage.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

} // namespace

/// What the review notes of the packages: the budget of the bars, and the marks of rows.
class TestReviewBudget : public ReviewStage
{
    Q_OBJECT

    void openPackage(const QString& word, const QJsonObject& package, bool multi = false)
    {
        open({{"multi", multi}, {word, QJsonArray{package}}});
    }

    void list(const QString& members)
    {
        run(QString("yumIOC.listTransaction(base(%1))").arg(members));
    }

    QList<quint64> budget()
    {
        return {state().downloadTotal, state().downloadLeft, state().transactionActs};
    }

private Q_SLOTS:
    // ---- What comes

    void whatAnInstallCosts_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<quint64>("download");
        QTest::addColumn<quint64>("acts");
        QTest::newRow("small") << 100 << false << quint64(10240) << quint64(10240);
        QTest::newRow("small, parallel") << 100 << true << quint64(100) << quint64(10240);
        QTest::newRow("empty, parallel") << 0 << true << quint64(0) << quint64(10240);
        QTest::newRow("third of the least") << 3414 << true << quint64(3414) << quint64(10242);
        QTest::newRow("large") << 20000 << false << quint64(20000) << quint64(60000);
        QTest::newRow("large, parallel") << 20000 << true << quint64(20000) << quint64(60000);
    }

    void whatAnInstallCosts()
    {
        QFETCH(int, size);
        QFETCH(bool, multi);
        QFETCH(quint64, download);
        QFETCH(quint64, acts);
        openPackage("available", package("foo", "1.0-1", "x86_64", {{"size", size}}), multi);
        list("installed=[member('foo')]");
        QCOMPARE(budget(), QList<quint64>({download, download, acts}));
    }

    void aPackageInTheCacheIsNotDownloaded()
    {
        open({{"available", QJsonArray{package("here", "1.0-1", "x86_64",
                                               {{"size", 20000}, {"localPkg", presentFile()}}),
                                       package("away", "1.0-1", "x86_64",
                                               {{"size", 30000}, {"localPkg", absentFile()}}),
                                       package("nowhere", "1.0-1", "x86_64", {{"size", 40000}})}}});
        list("installed=[member('here')]");
        QCOMPARE(budget(), QList<quint64>({20000, 0, 60000}));
        list("installed=[member('away'), member('nowhere')]");
        QCOMPARE(budget(), QList<quint64>({90000, 70000, 270000}));
    }

    void anUpdateAlsoCostsItsOldVersions()
    {
        open({{"updates", QJsonArray{package("foo", "3-1", "x86_64", {{"size", 20000}})}},
              {"installed", QJsonArray{installed("foo", "2-1", "x86_64", 100000),
                                       installed("foo", "1-1", "x86_64", 100)}}});
        list("updated=[member('foo', version='3')]");
        QCOMPARE(budget(), QList<quint64>({20000, 20000, 60000 + 20000 + 10240}));
    }

    void anInstallOfAnUpdateLeavesItsOldVersions()
    {
        open({{"updates", QJsonArray{package("foo", "3-1", "x86_64", {{"size", 20000}})}},
              {"installed", QJsonArray{installed("foo", "2-1", "x86_64", 100000)}}});
        list("installed=[member('foo', version='3')]");
        QCOMPARE(budget(), QList<quint64>({20000, 20000, 60000}));
    }

    void membersOfAllListsAreCounted_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<quint64>("acts");
        for (const char* word : {"installed", "updated", "depinstalled", "depupdated"})
            QTest::newRow(word) << word << quint64(60000);
        for (const char* word : {"removed", "depremoved", "obsoleted"})
            QTest::newRow(word) << word << quint64(20000);
    }

    void membersOfAllListsAreCounted()
    {
        QFETCH(QString, word);
        QFETCH(quint64, acts);
        openPackage("available", package("foo", "1.0-1", "x86_64", {{"size", 20000}}));
        list(word + "=[member('foo', ver='1.0', rel='1', relatedto=[(member('foo'), "
                    "'obsoletedby')])]");
        QCOMPARE(state().transactionActs, acts);
        QCOMPARE(state().downloadTotal, quint64(acts == 60000 ? 20000 : 0));
    }

    // ---- What goes

    void theVersionThatGoesIsFound_data()
    {
        QTest::addColumn<QString>("more");
        QTest::addColumn<quint64>("acts");
        const auto row = [](const char* more, int acts) {
            QTest::newRow(more) << more << quint64(acts);
        };
        row("po=Holder(printVer=lambda: '2:2-1')", 20000);
        row("po=Holder(printVer=lambda: '1-1')", 10240);
        row("po=Holder(printVer=lambda: '1-1'), epoch='2', ver='2', rel='1'", 10240);
        row("po=None, epoch='2', ver='2', rel='1'", 20000);
        row("epoch='0', ver='1', rel='1'", 10240);
        row("epoch='', ver='1', rel='1'", 10240);
        row("ver='1', rel='1'", 10240);
        row("ver='3', rel=''", 30000);
        row("ver='3'", 30000);
        row("epoch='0', ver='2', rel='1'", 0);
        row("ver='9', rel='9'", 0);
        row("rel='1'", 0);
        row("relatedto=None", 0);
    }

    void theVersionThatGoesIsFound()
    {
        QFETCH(QString, more);
        QFETCH(quint64, acts);
        open({{"installed", QJsonArray{installed("foo", "2:2-1", "x86_64", 20000),
                                       installed("foo", "1-1", "x86_64", 100),
                                       installed("foo", "3", "x86_64", 30000)}}});
        run(QString("gone = member('foo')\ngone.__dict__.update(dict(%1))").arg(more));
        list("removed=[gone]");
        QCOMPARE(budget(), QList<quint64>({0, 0, acts}));
    }

    void attributesMayBeMissingAltogether()
    {
        open({{"installed", QJsonArray{installed("foo", "1-1", "x86_64", 20000)}}});
        run("bare = member('foo', ver='1', rel='1')\ndel bare.po");
        list("removed=[bare]");
        QCOMPARE(state().transactionActs, quint64(20000));
    }

    void anUpdateIsNotWhatGoes()
    {
        // The same text as that of the version behind it, so that only the place tells them apart.
        open({{"updates", QJsonArray{package("foo", "1-1", "x86_64", {{"size", 50000}})}},
              {"installed", QJsonArray{installed("foo", "1-1", "x86_64", 20000)}}});
        QCOMPARE(contract->row("foo")->state, Package::StateUpdatable);
        list("removed=[member('foo', ver='1', rel='1')]");
        QCOMPARE(state().transactionActs, quint64(20000));
    }

    void anObsoletedPackageIsListedAndNotedAsRemoved()
    {
        open({{"installed", QJsonArray{installed("old", "1-1", "x86_64", 20000)}}});
        list("obsoleted=[member('old', ver='1', rel='1', version='1', "
             "relatedto=[(member('new'), 'obsoletedby')])]");
        QCOMPARE(state().transactionText,
                 QString("Transaction to be performed:\nOther Transactions:\n"
                         "\tObsoleting: old 1-1 (x86_64) with new 1.0-1 (x86_64)\n"));
        QCOMPARE(contract->row("old")->applyAction, Package::ActionRemove);
        QCOMPARE(state().transactionActs, quint64(20000));
    }

    // ---- Rows

    void aRowWithoutAMarkGetsWhatTheTransactionDoes_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("action");
        QTest::newRow("install") << "depinstalled" << int(Package::ActionInstall);
        QTest::newRow("update") << "depupdated" << int(Package::ActionUpdate);
        QTest::newRow("removal") << "depremoved" << int(Package::ActionRemove);
    }

    void aRowWithoutAMarkGetsWhatTheTransactionDoes()
    {
        QFETCH(QString, word);
        openPackage("available", package("foo", "1.0-1", "x86_64"));
        list(word + "=[member('foo')]");
        QTEST(int(contract->row("foo")->applyAction), "action");
        QCOMPARE(contract->row("foo")->action, Package::ActionNone);
    }

    void aMarkStays()
    {
        openPackage("available", package("foo", "1.0-1", "x86_64"));
        Package::Entry* row = contract->row("foo");
        for (const Package::Action action :
             {Package::ActionUpdate, Package::ActionInstall, Package::ActionRemove}) {
            row->applyAction = action;
            list("installed=[member('foo')], updated=[member('foo')], removed=[member('foo')]");
            QCOMPARE(row->applyAction, action);
        }
    }

    void theFirstOfTwoListsMarksARow()
    {
        openPackage("available", package("foo", "1.0-1", "x86_64"));
        list("depinstalled=[member('foo')], removed=[member('foo')]");
        QCOMPARE(contract->row("foo")->applyAction, Package::ActionRemove);
    }

    void aPackageIsFoundByItsFamily()
    {
        open({{"available", QJsonArray{package("foo", "1.0-1", "i686", {{"size", 20000}}),
                                       package("foo", "1.0-1", "x86_64")}}});
        list("installed=[member('foo', 'athlon')]");
        QCOMPARE(row("foo", "i386")->applyAction, Package::ActionInstall);
        QCOMPARE(row("foo", "x86_64")->applyAction, Package::ActionNone);
        QCOMPARE(state().downloadTotal, quint64(20000));
    }

    void anUnknownPackageIsReportedAndSkipped_data()
    {
        QTest::addColumn<QString>("word");
        for (const char* word : {"installed", "updated", "removed"})
            QTest::newRow(word) << word;
    }

    void anUnknownPackageIsReportedAndSkipped()
    {
        QFETCH(QString, word);
        openPackage("available", package("foo", "1.0-1", "x86_64", {{"size", 20000}}));
        const int slots = engine().entryHash.size();
        driver->expect(yumError)
            .text("Internal error: Unable to find package for install/update/remove of "
                  "nosuch.i686")
            .press("OK");
        QCOMPARE(outcome(QString("yumIOC.listTransaction(base(%1=[member('nosuch', 'i686'), "
                                 "member('foo', ver='1.0', rel='1')]))")
                             .arg(word)),
                 QString("None"));
        QVERIFY(contract->row("foo")->applyAction != Package::ActionNone);
        QVERIFY(state().transactionActs > 0);
        // Looking for it made no slot.
        QCOMPARE(engine().entryHash.size(), slots);
    }

    void nothingIsNotedBehindAListThatBreaksOff()
    {
        openPackage("available", package("foo", "1.0-1", "x86_64"));
        run("class OnceWhole(list):\n"
            "    walks = 0\n"
            "    def __iter__(self):\n"
            "        self.walks += 1\n"
            "        return list.__iter__(self) if self.walks == 1 else broken(())\n");
        QCOMPARE(outcome("yumIOC.listTransaction(base(installed=OnceWhole(), "
                         "updated=[member('foo')]))"),
                 QString("ValueError"));
        QCOMPARE(contract->row("foo")->applyAction, Package::ActionNone);
        QCOMPARE(state().transactionActs, quint64(0));
    }
};

QTEST_MAIN(TestReviewBudget)
#include "tst_ReviewBudget.moc"
