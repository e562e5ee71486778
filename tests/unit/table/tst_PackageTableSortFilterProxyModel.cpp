// SPDX-License-Identifier: GPL-2.0-or-later
#include "ProxyTest.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include <algorithm>

using namespace Package;
using namespace PackageTable;

class TestPackageTableSortFilterProxyModel : public ProxyTest
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheRulesOfModels();
    void keepsTheRulesOfModelsUnderAView();
    void listsByState_data();
    void listsByState();
    void hidesDuplicatesIfTold();
    void hidesGroupsIfTold();
    void listsAnActionOfAnotherStateNot();
    void anyTextPatternsLeaveAnEmptyExpression_data();
    void anyTextPatternsLeaveAnEmptyExpression();
    void buildsNoTextForAnEmptyExpression();
    void aPatternThatDoesNotCompileListsAllRows();
    void matchesCaseSensitively();
    void matchesAcrossNeighbouringColumnsInFilterMode();
    void matchesTheVersionMarker();
    void joinsTheTextsTheSameWayAsTheirModel();
    void matchesTextsBeyondAscii();
    void matchesNewTextsAfterACollection();
    void searchesFieldsThatTheTableDoesNotShow();
    void rejectsUnknownKindsInSearchMode();
    void anUnknownModeAcceptsWhatTheOtherTestsLetPass();
    void resetsTheSourceOnEveryChangeOfASetting();
    void resetsTheSourceAlsoIfThePatternStaysTheSame();
    void doesNothingIfASettingStaysTheSame();
    void keepsColumnAndOrderOverAChange();
    void resetsRatherThanMovingRowsOneByOne();
    void listsAnewOnceAChange();
    void worksOutEachVerdictOnceAPattern();
    void asksForEveryRowAfterANewPattern();
    void keepsVerdictsUntilTheyAreCleared();
    void givesNoOtherEntryTheVerdictOfItsRow();
    void forgetsVerdictsBeforeNewEntriesCome();
    void stopsListeningToAModelThatItLeaves();
    void listsAllRowsWithFilteringOff();
};

void TestPackageTableSortFilterProxyModel::keepsTheRulesOfModels()
{
    fillAtRandom(50);
    QAbstractItemModelTester tester(proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy->setStateFilter(ViewUpdatable);
    proxy->setFilterRegExp("a|b");
    proxy->setUpdateListed();
    proxy->setFilter(false);
    proxy->setFilter(true);
    proxy->setStateFilter(ViewAll);
    proxy->setGroupsFilter(false);
    proxy->setDupsFilter(false);
    proxy->setFilterRegExp("");
    proxy->sort(ColumnSize, Qt::DescendingOrder);
    model->clearActions();
    engine->removeAll();
    model->reset();
    QCOMPARE(proxy->rowCount(), 0);
    fillAtRandom(10);
    QVERIFY(proxy->rowCount() > 0);
}

void TestPackageTableSortFilterProxyModel::keepsTheRulesOfModelsUnderAView()
{
    fillAtRandom(50);
    QAbstractItemModelTester tester(proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QTableView view;
    view.setModel(proxy);
    view.show();
    for (int round = 0; round < 3; ++round) {
        view.selectRow(1);
        proxy->setFilterRegExp(QString::number(round));
        QVERIFY(!view.selectionModel()->hasSelection());
        QVERIFY(!view.currentIndex().isValid());
        view.selectRow(0);
        proxy->setStateFilter(static_cast<StateFilter>(round));
        QVERIFY(!view.selectionModel()->hasSelection());
        QCoreApplication::processEvents();
    }
}

void TestPackageTableSortFilterProxyModel::listsByState_data()
{
    QTest::addColumn<int>("filter");
    QTest::addColumn<QStringList>("names");

    QTest::newRow("updatable") << int(ViewUpdatable) << QStringList{"old"};
    QTest::newRow("installable") << int(ViewInstallable) << QStringList{"absent"};
    QTest::newRow("removable") << int(ViewRemovable) << QStringList{"old", "present"};
    QTest::newRow("all") << int(ViewAll) << QStringList{"absent", "old", "present"};
    QTest::newRow("unknown") << 4 << QStringList{"absent", "old", "present"};
}

void TestPackageTableSortFilterProxyModel::listsByState()
{
    QFETCH(int, filter);
    QFETCH(QStringList, names);

    engine->add("old", StateUpdatable);
    engine->add("absent", StateInstallable);
    engine->add("present", StateInstalled);
    model->reset();
    proxy->setStateFilter(static_cast<StateFilter>(filter));
    QCOMPARE(listed(), names);
}

void TestPackageTableSortFilterProxyModel::hidesDuplicatesIfTold()
{
    engine->add("best", StateInstallable);
    engine->add("other", StateInstallable)->duplicate = true;
    model->reset();
    QCOMPARE(listed(), QStringList({"best", "other"}));
    proxy->setDupsFilter(false);
    QCOMPARE(listed(), QStringList({"best"}));
    proxy->setDupsFilter(true);
    QCOMPARE(listed(), QStringList({"best", "other"}));
}

void TestPackageTableSortFilterProxyModel::hidesGroupsIfTold()
{
    engine->add("group", StateInstallable, KindGroup);
    engine->add("package", StateInstallable);
    engine->add("suite", StateInstallable, KindSuite);
    model->reset();
    proxy->setGroupsFilter(false);
    QCOMPARE(listed(), QStringList({"package", "suite"}));
    proxy->setGroupsFilter(true);
    QCOMPARE(listed(), QStringList({"group", "package", "suite"}));
}

void TestPackageTableSortFilterProxyModel::listsAnActionOfAnotherStateNot()
{
    engine->add("installed", StateInstalled)->action = ActionRemove;
    engine->add("updatable", StateUpdatable);
    model->reset();
    proxy->setStateFilter(ViewUpdatable);
    QCOMPARE(listed(), QStringList({"updatable"}));
    QVERIFY(!proxy->mapFromSource(model->index(0, ColumnAction)).isValid());
}

void TestPackageTableSortFilterProxyModel::anyTextPatternsLeaveAnEmptyExpression_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expression");

    QTest::newRow("once") << ".*"
                          << "";
    QTest::newRow("repeated") << ".*.*.*"
                              << "";
    QTest::newRow("both ends") << ".*.*a.*b.*"
                               << "a.*b";
    QTest::newRow("empty") << ""
                           << "";
}

void TestPackageTableSortFilterProxyModel::anyTextPatternsLeaveAnEmptyExpression()
{
    QFETCH(QString, text);
    QFETCH(QString, expression);

    engine->add("aabb", StateInstallable);
    engine->add("bbaa", StateInstallable)->arch = "noarch";
    model->reset();
    proxy->setFilterRegExp(text);
    QCOMPARE(proxy->filterRegExp().pattern(), expression);
    QCOMPARE(proxy->filterRegExp().patternSyntax(), QRegExp::RegExp);
    if (expression.isEmpty())
        QCOMPARE(listed(), QStringList({"aabb", "bbaa"}));
}

void TestPackageTableSortFilterProxyModel::buildsNoTextForAnEmptyExpression()
{
    engine->add("a", StateInstallable);
    IndirectModel counting(engine);
    SortFilterProxyModel own(ViewAll, true, true, engine);
    own.setSourceModel(&counting);
    own.setFilterRegExp(".*.*");
    QCOMPARE(own.rowCount(), 1);
    QCOMPARE(counting.displayed, 0);
    own.setFilterRegExp("a");
    QCOMPARE(counting.displayed, 6);
}

void TestPackageTableSortFilterProxyModel::aPatternThatDoesNotCompileListsAllRows()
{
    engine->add("a", StateInstallable);
    engine->add("b", StateInstalled);
    engine->add("c", StateInstallable);
    model->reset();
    for (Mode mode : {ModeFilter, ModeSearch}) {
        proxy->setMode(mode);
        proxy->setStateFilter(ViewAll);
        proxy->setFilterRegExp("(");
        QCOMPARE(listed(), QStringList({"a", "b", "c"}));
        proxy->setStateFilter(ViewInstallable);
        QCOMPARE(listed(), QStringList({"a", "c"}));
    }
}

void TestPackageTableSortFilterProxyModel::matchesCaseSensitively()
{
    engine->add("Apple", StateInstallable);
    model->reset();
    proxy->setFilterRegExp("Apple");
    QCOMPARE(proxy->rowCount(), 1);
    proxy->setFilterRegExp("apple");
    QCOMPARE(proxy->rowCount(), 0);
    proxy->setFilterRegExp("appl[e]");
    QCOMPARE(proxy->rowCount(), 0);
}

void TestPackageTableSortFilterProxyModel::matchesAcrossNeighbouringColumnsInFilterMode()
{
    engine->add("bash", StateInstallable)->verRel = "5.0-1";
    engine->add("dash", StateInstallable)->verRel = "4.0-1";
    model->reset();
    proxy->setFilterRegExp("ash 5\\.");
    QCOMPARE(listed(), QStringList({"bash"}));
    proxy->setFilterRegExp("^bash 5.0-1 base x86_64 ");
    QCOMPARE(listed(), QStringList({"bash"}));
    proxy->setFilterRegExp("bash  5");
    QCOMPARE(listed(), QStringList());
}

void TestPackageTableSortFilterProxyModel::matchesTheVersionMarker()
{
    engine->add("one", StateInstalled);
    engine->add("two", StateInstalled)->next = TableEngine::make("two", StateInstalled);
    model->reset();
    proxy->setFilterRegExp("-1 \\* ");
    QCOMPARE(listed(), QStringList({"two"}));
}

void TestPackageTableSortFilterProxyModel::joinsTheTextsTheSameWayAsTheirModel()
{
    // Empty texts, as groups have them: no blank stands before the first text that there is.
    Entry* nameless = engine->add("", StateInstallable);
    nameless->verRel = "1-1";
    nameless->repo.clear();
    engine->add("group", StateInstallable, KindGroup)->verRel.clear();
    fillAtRandom(100);
    IndirectModel indirect(engine);
    SortFilterProxyModel other(ViewAll, true, true, engine);
    other.setSourceModel(&indirect);
    other.sort(ColumnName);
    for (const char* pattern : {"^1-1  x86", "^group  base", "a1 1", " \\* ", "noarch [^ ]+$", "^$",
                                "Updates", "(b|c)[0-9] .*-0 base"}) {
        proxy->setFilterRegExp(pattern);
        other.setFilterRegExp(pattern);
        QCOMPARE(listed(), listed(other));
    }
    proxy->setFilterRegExp("^1-1  x86");
    QCOMPARE(listed(), QStringList({""}));
}

void TestPackageTableSortFilterProxyModel::matchesTextsBeyondAscii()
{
    const QString name = QString::fromUtf8("na\u00efve-\u4e00\U0001f600");
    engine->add(name, StateInstallable)->repo = QString::fromUtf8("\u00fcbung");
    engine->add("naive", StateInstallable);
    model->reset();
    for (const char* pattern :
         {"^na\u00efve-\u4e00\U0001f600 1.0-1 \u00fcbung x86_64 ", "\u4e00", "bung x"}) {
        proxy->setFilterRegExp(QString::fromUtf8(pattern));
        QCOMPARE(listed(), QStringList({name}));
    }
}

void TestPackageTableSortFilterProxyModel::matchesNewTextsAfterACollection()
{
    engine->add("first", StateInstallable);
    engine->add("second", StateInstallable);
    model->reset();
    proxy->setFilterRegExp("i");
    QCOMPARE(listed(), QStringList({"first"}));
    // Rows go before a collection, and a change of filter may come meanwhile.
    engine->removeAll();
    proxy->setFilterRegExp("d");
    proxy->setStateFilter(ViewInstallable);
    proxy->sort(ColumnVersion);
    QCOMPARE(listed(), QStringList());
    engine->add("third", StateInstallable);
    engine->add("fourth", StateInstallable);
    engine->add("fifth", StateInstallable)->verRel = "0-1";
    model->reset();
    QCOMPARE(listed(), QStringList({"third"}));
    proxy->setFilterRegExp("fi|th");
    QCOMPARE(listed(), QStringList({"fifth", "fourth", "third"}));
}

void TestPackageTableSortFilterProxyModel::searchesFieldsThatTheTableDoesNotShow()
{
    engine->add("bash", StateInstallable)->summary = "A shell";
    model->reset();
    proxy->setFilterRegExp("A shell");
    QCOMPARE(listed(), QStringList());
    proxy->setMode(ModeSearch);
    QCOMPARE(listed(), QStringList({"bash"}));
}

void TestPackageTableSortFilterProxyModel::rejectsUnknownKindsInSearchMode()
{
    engine->add("bash", StateInstallable, static_cast<Kind>(3));
    model->reset();
    proxy->setMode(ModeSearch);
    QCOMPARE(listed(), QStringList({"bash"}));
    proxy->setFilterRegExp("bash");
    QCOMPARE(listed(), QStringList());
}

void TestPackageTableSortFilterProxyModel::anUnknownModeAcceptsWhatTheOtherTestsLetPass()
{
    engine->add("a", StateInstallable);
    engine->add("b", StateInstalled);
    model->reset();
    proxy->setStateFilter(ViewInstallable);
    proxy->setFilterRegExp("x");
    proxy->setMode(static_cast<Mode>(2));
    QCOMPARE(listed(), QStringList({"a"}));
}

void TestPackageTableSortFilterProxyModel::resetsTheSourceOnEveryChangeOfASetting()
{
    QSignalSpy spy(model, &Model::modelReset);
    proxy->setMode(ModeSearch);
    QCOMPARE(spy.count(), 1);
    proxy->setStateFilter(ViewUpdatable);
    QCOMPARE(spy.count(), 2);
    proxy->setDupsFilter(false);
    QCOMPARE(spy.count(), 3);
    proxy->setGroupsFilter(false);
    QCOMPARE(spy.count(), 4);
    proxy->setFilter(false);
    QVERIFY(!proxy->getFilter());
    QCOMPARE(spy.count(), 5);
    proxy->clear();
    QCOMPARE(spy.count(), 6);
    proxy->clearCache();
    QCOMPARE(spy.count(), 6);
}

void TestPackageTableSortFilterProxyModel::resetsTheSourceAlsoIfThePatternStaysTheSame()
{
    QSignalSpy spy(model, &Model::modelReset);
    proxy->setFilterRegExp("a");
    proxy->setFilterRegExp("a");
    QCOMPARE(spy.count(), 2);
}

void TestPackageTableSortFilterProxyModel::doesNothingIfASettingStaysTheSame()
{
    QSignalSpy spy(model, &Model::modelReset);
    proxy->setMode(ModeFilter);
    proxy->setStateFilter(ViewAll);
    proxy->setDupsFilter(true);
    proxy->setGroupsFilter(true);
    proxy->setFilter(true);
    QCOMPARE(spy.count(), 0);
}

void TestPackageTableSortFilterProxyModel::keepsColumnAndOrderOverAChange()
{
    fillAtRandom(40);
    QTableView view;
    view.setModel(proxy);
    for (Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
        proxy->sort(ColumnVersion, order);
        proxy->setFilterRegExp("");
        const QStringList all = listed();
        proxy->setFilterRegExp("^[ab]");
        QCOMPARE(proxy->sortColumn(), int(ColumnVersion));
        QCOMPARE(proxy->sortOrder(), order);
        QStringList versions;
        for (int row = 0; row < proxy->rowCount(); ++row)
            versions += proxy->index(row, ColumnVersion).data().toString();
        QVERIFY(versions.size() > 5);
        QVERIFY(order == Qt::AscendingOrder ? std::is_sorted(versions.begin(), versions.end())
                                            : std::is_sorted(versions.rbegin(), versions.rend()));
        proxy->setStateFilter(ViewInstallable);
        proxy->setStateFilter(ViewAll);
        proxy->setFilterRegExp("");
        QCOMPARE(listed(), all);
    }
}

void TestPackageTableSortFilterProxyModel::resetsRatherThanMovingRowsOneByOne()
{
    fillAtRandom(40);
    QCOMPARE(proxy->rowCount(), 40);
    QSignalSpy removed(proxy, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(proxy, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(proxy, &QAbstractItemModel::modelReset);
    proxy->setFilterRegExp("^a");
    QVERIFY(proxy->rowCount() < 40);
    proxy->setFilterRegExp("");
    QCOMPARE(proxy->rowCount(), 40);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(inserted.count(), 0);
    QCOMPARE(reset.count(), 2);
}

void TestPackageTableSortFilterProxyModel::listsAnewOnceAChange()
{
    fillAtRandom(30);
    CountingProxy own(ViewAll, true, true, engine);
    own.setSourceModel(model);
    QTableView view; // takes a new listing as soon as it is told of one
    view.setModel(&own);
    view.show();
    own.asked.clear();
    own.setStateFilter(ViewInstallable);
    own.rowCount();
    QCOMPARE(own.asked.size(), 30);
    own.setFilter(false);
    own.rowCount();
    QCOMPARE(own.asked.size(), 60);
}

void TestPackageTableSortFilterProxyModel::worksOutEachVerdictOnceAPattern()
{
    fillAtRandom(30);
    IndirectModel counting(engine);
    SortFilterProxyModel own(ViewAll, true, true, engine);
    own.setSourceModel(&counting);
    QTableView view; // asks for the rows again and again
    view.setModel(&own);
    view.show();
    counting.displayed = 0;
    own.setFilterRegExp("nowhere");
    QCOMPARE(own.rowCount(), 0);
    QCOMPARE(counting.displayed, 30 * 6);
    own.setStateFilter(ViewInstallable);
    const int installable = static_cast<int>(std::count_if(
        engine->begin(), engine->end(), [](Entry* e) { return e->state == StateInstallable; }));
    QCOMPARE(counting.displayed, (30 + installable) * 6);
}

void TestPackageTableSortFilterProxyModel::asksForEveryRowAfterANewPattern()
{
    fillAtRandom(5);
    CountingProxy own(ViewAll, true, true, engine);
    own.setSourceModel(model);
    own.setFilterRegExp("a");
    QVERIFY(own.asked.size() >= 5);
    QCOMPARE(own.asked.mid(own.asked.size() - 5), QList<int>({0, 1, 2, 3, 4}));
}

void TestPackageTableSortFilterProxyModel::keepsVerdictsUntilTheyAreCleared()
{
    Entry* entry = engine->add("a", StateInstallable);
    model->reset();
    proxy->setFilterRegExp("a");
    QVERIFY(proxy->filterAcceptsRow(0, QModelIndex()));
    entry->duplicate = true;
    proxy->setDupsFilter(false);
    QVERIFY(!proxy->filterAcceptsRow(0, QModelIndex()));
    entry->duplicate = false;
    QVERIFY(!proxy->filterAcceptsRow(0, QModelIndex()));
    proxy->clearCache();
    QVERIFY(proxy->filterAcceptsRow(0, QModelIndex()));
}

void TestPackageTableSortFilterProxyModel::givesNoOtherEntryTheVerdictOfItsRow()
{
    engine->add("a", StateInstallable);
    model->reset();
    proxy->setDupsFilter(false);
    QVERIFY(proxy->filterAcceptsRow(0, QModelIndex()));
    Entry* other = TableEngine::make("b", StateInstallable);
    other->duplicate = true;
    engine->removeAll();
    QVERIFY(!proxy->filterAcceptsRow(0, QModelIndex()));
    engine->add(other);
    QVERIFY(!proxy->filterAcceptsRow(0, QModelIndex()));
}

void TestPackageTableSortFilterProxyModel::forgetsVerdictsBeforeNewEntriesCome()
{
    Entry* entry = engine->add("a", StateInstallable);
    model->reset();
    proxy->setFilterRegExp("a");
    QCOMPARE(listed(), QStringList({"a"}));
    // The same address, as an allocator may well give it.
    entry->name = "x";
    entry->repo = "r";
    entry->arch = "r";
    entry->sizeText.clear();
    entry->buildTimeText.clear();
    model->reset();
    QCOMPARE(listed(), QStringList());
}

void TestPackageTableSortFilterProxyModel::stopsListeningToAModelThatItLeaves()
{
    Entry* entry = engine->add("a", StateInstallable);
    Model other(engine);
    proxy->setSourceModel(&other);
    proxy->setDupsFilter(false);
    QVERIFY(proxy->filterAcceptsRow(0, QModelIndex()));
    entry->duplicate = true;
    model->reset();
    QVERIFY(proxy->filterAcceptsRow(0, QModelIndex()));
    other.reset();
    QVERIFY(!proxy->filterAcceptsRow(0, QModelIndex()));
    proxy->setSourceModel(nullptr);
    QCOMPARE(proxy->rowCount(), 0);
    proxy->setFilterRegExp("b");
    proxy->setUpdateListed();
}

void TestPackageTableSortFilterProxyModel::listsAllRowsWithFilteringOff()
{
    Entry* entry = engine->add("a", StateInstallable);
    engine->add("b", StateInstalled, KindGroup)->duplicate = true;
    model->reset();
    proxy->setStateFilter(ViewUpdatable);
    proxy->setDupsFilter(false);
    proxy->setGroupsFilter(false);
    proxy->setFilterRegExp("x");
    QCOMPARE(listed(), QStringList());
    proxy->setFilter(false);
    QCOMPARE(listed(), QStringList({"a", "b"}));
    entry->state = StateUpdatable;
    entry->repo = "x";
    proxy->setFilter(true);
    QCOMPARE(listed(), QStringList({"a"}));
}

QTEST_MAIN(TestPackageTableSortFilterProxyModel)
#include "tst_PackageTableSortFilterProxyModel.moc"
