// SPDX-License-Identifier: GPL-2.0-or-later
#include "TableEngine.h"

#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include <algorithm>

using namespace Package;
using namespace PackageTable;

/// Counts how often the base or the proxy itself asks for a verdict.
class CountingProxy : public SortFilterProxyModel
{
public:
    using SortFilterProxyModel::SortFilterProxyModel;

    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        asked.append(row);
        return SortFilterProxyModel::filterAcceptsRow(row, parent);
    }

    mutable QList<int> asked;
};

/// Takes the way through virtual operations and variants, as any derived class does.
class DerivedProxy : public SortFilterProxyModel
{
public:
    using SortFilterProxyModel::SortFilterProxyModel;
};

/// Hands out the entries by the model's interface only, and counts the texts that it builds.
class IndirectModel : public Model
{
public:
    using Model::Model;

    QVariant data(const QModelIndex& index, int role) const override
    {
        displayed += role == Qt::DisplayRole;
        return Model::data(index, role);
    }

    mutable int displayed = 0;
};

class TestPackageTableSortFilterProxyModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

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

    void ordersByColumn_data();
    void ordersByColumn();
    void ordersSizesAsWrappedNumbers();
    void ordersTextsByCodeUnits();
    void ordersTextsThatBeginAlike();
    void ordersTheSameWayThroughTheModel();
    void ordersByNewActionsWhenSortedAgain();
    void anIndexWithoutAModelIsNotLess();

    void setUpdateListedMarksListedUpdatesOnly();
    void setUpdateListedDoesNothingOnAnEmptyList();

private:
    QStringList listed(const QAbstractItemModel& of) const
    {
        QStringList names;
        for (int row = 0; row < of.rowCount(); ++row)
            names += of.index(row, ColumnName).data().toString();
        return names;
    }
    QStringList listed() const { return listed(*proxy); }
    void fillAtRandom(int count);

    TableEngine* engine = nullptr;
    Model* model = nullptr;
    SortFilterProxyModel* proxy = nullptr;
};

void TestPackageTableSortFilterProxyModel::init()
{
    engine = new TableEngine;
    model = new Model(engine);
    proxy = new SortFilterProxyModel(ViewAll, true, true, engine);
    proxy->setSourceModel(model);
    proxy->sort(ColumnName);
}

void TestPackageTableSortFilterProxyModel::cleanup()
{
    delete proxy;
    delete model;
    delete engine;
}

void TestPackageTableSortFilterProxyModel::fillAtRandom(int count)
{
    QRandomGenerator random(1);
    for (int i = 0; i < count; ++i) {
        Entry* entry = engine->add(
            QString(QChar('a' + random.bounded(5))) + QString::number(random.bounded(20)),
            static_cast<State>(random.bounded(3)), static_cast<Kind>(random.bounded(3)));
        entry->action = static_cast<Action>(random.bounded(4));
        entry->verRel = QString("%1-%2").arg(random.bounded(12)).arg(random.bounded(3));
        entry->repo = random.bounded(2) ? "base" : "Updates";
        entry->arch = random.bounded(2) ? "noarch" : "x86_64";
        entry->duplicate = random.bounded(4) == 0;
        TableEngine::setSize(entry, quint64(random.bounded(6)) << 30);
        TableEngine::setBuildTime(entry, random.bounded(4) * 1500000000L);
        if (random.bounded(3) == 0) {
            entry->next = TableEngine::make(entry->name, StateInstalled);
            if (random.bounded(2))
                entry->next->next = TableEngine::make(entry->name, StateInstalled);
        }
    }
    model->reset();
}

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

void TestPackageTableSortFilterProxyModel::ordersByColumn_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QStringList>("names");

    QTest::newRow("action") << int(ColumnAction) << QStringList{"d", "c", "e", "a", "b"};
    QTest::newRow("state") << int(ColumnState) << QStringList{"d", "b", "c", "a", "e"};
    QTest::newRow("kind") << int(ColumnKind) << QStringList{"e", "b", "a", "c", "d"};
    QTest::newRow("name") << int(ColumnName) << QStringList{"a", "b", "c", "d", "e"};
    QTest::newRow("version") << int(ColumnVersion) << QStringList{"c", "e", "a", "b", "d"};
    QTest::newRow("repository") << int(ColumnRepository) << QStringList{"b", "c", "d", "a", "e"};
    QTest::newRow("architecture") << int(ColumnArchitecture)
                                  << QStringList{"d", "a", "b", "c", "e"};
    QTest::newRow("size") << int(ColumnSize) << QStringList{"c", "d", "a", "b", "e"};
    QTest::newRow("build time") << int(ColumnBuildTime) << QStringList{"e", "a", "b", "c", "d"};
}

void TestPackageTableSortFilterProxyModel::ordersByColumn()
{
    QFETCH(int, column);
    QFETCH(QStringList, names);

    Entry* e = engine->add("e", StateInstalled, KindSuite);
    Entry* d = engine->add("d", StateUpdatable);
    Entry* c = engine->add("c", StateInstallable);
    Entry* b = engine->add("b", StateInstallable, KindGroup);
    Entry* a = engine->add("a", StateInstalled);
    d->action = ActionUpdate;
    c->action = ActionInstall;
    e->action = ActionRemove;
    a->verRel = b->verRel = "9-1"; // no version awareness: 9 comes after 10
    c->verRel = e->verRel = "10-1";
    d->verRel = "9-1";
    d->next = TableEngine::make("d", StateInstalled);
    d->next->next = TableEngine::make("d", StateInstalled); // "9-1 *"
    d->arch = "noarch";
    TableEngine::setSize(c, 999);
    TableEngine::setSize(d, 1000);
    TableEngine::setBuildTime(e, -1);
    model->reset();

    proxy->sort(column, Qt::AscendingOrder);
    QCOMPARE(listed(), names);

    DerivedProxy derived(ViewAll, true, true, engine);
    derived.setSourceModel(model);
    derived.sort(column, Qt::AscendingOrder);
    QCOMPARE(listed(derived), names);

    std::reverse(names.begin(), names.end());
    proxy->sort(column, Qt::DescendingOrder);
    QCOMPARE(listed(), names);
}

void TestPackageTableSortFilterProxyModel::ordersSizesAsWrappedNumbers()
{
    TableEngine::setSize(engine->add("1 KiB", StateInstallable), 1ULL << 10);
    TableEngine::setSize(engine->add("3 GiB", StateInstallable), 3ULL << 30);
    TableEngine::setSize(engine->add("4 GiB", StateInstallable), 4ULL << 30);
    model->reset();
    proxy->sort(ColumnSize);
    QCOMPARE(listed(), QStringList({"3 GiB", "4 GiB", "1 KiB"}));
}

void TestPackageTableSortFilterProxyModel::ordersTextsByCodeUnits()
{
    engine->add("a", StateInstallable);
    engine->add("Z", StateInstallable);
    engine->add("a10", StateInstallable);
    engine->add("a9", StateInstallable);
    model->reset();
    proxy->sort(ColumnName);
    QCOMPARE(listed(), QStringList({"Z", "a", "a10", "a9"}));
}

void TestPackageTableSortFilterProxyModel::ordersTextsThatBeginAlike()
{
    QStringList names{"",
                      "a",
                      "libreoffice",
                      "libreoff",
                      "libreoffi",
                      "libreofg",
                      QString::fromUtf8("a\0b", 3),
                      QString::fromUtf8("a\0", 2),
                      QString::fromUtf8("a\u00fez"),
                      QString::fromUtf8("a\u00ffz"),
                      QString::fromUtf8("a\u0100a"),
                      QString::fromUtf8("a\u0101"),
                      QString::fromUtf8("a\u4e00"),
                      QString::fromUtf8("a\u00ff"),
                      QString::fromUtf8("a\U0001f600")};
    for (const QString& name : qAsConst(names))
        engine->add(name, StateInstallable);
    model->reset();
    proxy->sort(ColumnName);
    std::sort(names.begin(), names.end());
    QCOMPARE(listed(), names);
}

void TestPackageTableSortFilterProxyModel::ordersTheSameWayThroughTheModel()
{
    fillAtRandom(200);
    DerivedProxy derived(ViewAll, true, true, engine);
    derived.setSourceModel(model);
    for (int column = 0; column < ColumnCount; ++column) {
        for (Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            proxy->sort(column, order);
            derived.sort(column, order);
            for (int row = 0; row < 200; ++row)
                QCOMPARE(proxy->mapToSource(proxy->index(row, 0)).row(),
                         derived.mapToSource(derived.index(row, 0)).row());
        }
        for (int i = 0; i < 500; ++i) {
            const QModelIndex left = model->index(i % 200, column);
            const QModelIndex right = model->index((i * 7 + i / 200) % 200, column);
            QCOMPARE(proxy->lessThan(left, right), derived.lessThan(left, right));
        }
    }
}

void TestPackageTableSortFilterProxyModel::ordersByNewActionsWhenSortedAgain()
{
    engine->add("a", StateInstallable);
    engine->add("b", StateInstallable);
    model->reset();
    proxy->sort(ColumnAction);
    QCOMPARE(listed(), QStringList({"a", "b"}));
    model->setAction(model->index(1, 0), ActionInstall);
    // A row doesn't run away from the pointer that marked it.
    QCOMPARE(listed(), QStringList({"a", "b"}));
    proxy->sort(ColumnAction);
    QCOMPARE(listed(), QStringList({"b", "a"}));
}

void TestPackageTableSortFilterProxyModel::anIndexWithoutAModelIsNotLess()
{
    engine->add("a", StateInstallable);
    model->reset();
    const QModelIndex cell = model->index(0, ColumnSize);
    QVERIFY(!proxy->lessThan(cell, QModelIndex()));
    QVERIFY(!proxy->lessThan(QModelIndex(), cell));
    QVERIFY(!proxy->lessThan(QModelIndex(), QModelIndex()));
}

void TestPackageTableSortFilterProxyModel::setUpdateListedMarksListedUpdatesOnly()
{
    engine->add("a", StateUpdatable);
    engine->add("b", StateInstalled)->action = ActionRemove;
    engine->add("hidden", StateUpdatable);
    engine->add("a2", StateUpdatable)->action = ActionRemove;
    model->reset();
    proxy->setFilterRegExp("^[ab]");
    QCOMPARE(listed(), QStringList({"a", "a2", "b"}));
    QSignalSpy source(model, &Model::dataChanged);
    QSignalSpy own(proxy, &SortFilterProxyModel::dataChanged);
    proxy->setUpdateListed();
    QCOMPARE(source.count(), 0);
    QCOMPARE(own.count(), 2);
    QCOMPARE(own[0][0].toModelIndex(), proxy->index(0, ColumnAction));
    QCOMPARE(own[1][1].toModelIndex(), proxy->index(1, ColumnAction));
    QCOMPARE((*engine)[0]->action, ActionUpdate);
    QCOMPARE((*engine)[1]->action, ActionRemove);
    QCOMPARE((*engine)[2]->action, ActionNone);
    QCOMPARE((*engine)[3]->action, ActionUpdate);
}

void TestPackageTableSortFilterProxyModel::setUpdateListedDoesNothingOnAnEmptyList()
{
    engine->add("a", StateUpdatable);
    model->reset();
    proxy->setFilterRegExp("nowhere");
    QSignalSpy own(proxy, &SortFilterProxyModel::dataChanged);
    proxy->setUpdateListed();
    QCOMPARE(own.count(), 0);
    QCOMPARE((*engine)[0]->action, ActionNone);
}

QTEST_MAIN(TestPackageTableSortFilterProxyModel)
#include "tst_PackageTableSortFilterProxyModel.moc"
