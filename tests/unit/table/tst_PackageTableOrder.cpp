// SPDX-License-Identifier: GPL-2.0-or-later
#include "ProxyTest.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Package;
using namespace PackageTable;

class TestPackageTableOrder : public ProxyTest
{
    Q_OBJECT

private Q_SLOTS:
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
};

void TestPackageTableOrder::ordersByColumn_data()
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

void TestPackageTableOrder::ordersByColumn()
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

void TestPackageTableOrder::ordersSizesAsWrappedNumbers()
{
    TableEngine::setSize(engine->add("1 KiB", StateInstallable), 1ULL << 10);
    TableEngine::setSize(engine->add("3 GiB", StateInstallable), 3ULL << 30);
    TableEngine::setSize(engine->add("4 GiB", StateInstallable), 4ULL << 30);
    model->reset();
    proxy->sort(ColumnSize);
    QCOMPARE(listed(), QStringList({"3 GiB", "4 GiB", "1 KiB"}));
}

void TestPackageTableOrder::ordersTextsByCodeUnits()
{
    engine->add("a", StateInstallable);
    engine->add("Z", StateInstallable);
    engine->add("a10", StateInstallable);
    engine->add("a9", StateInstallable);
    model->reset();
    proxy->sort(ColumnName);
    QCOMPARE(listed(), QStringList({"Z", "a", "a10", "a9"}));
}

void TestPackageTableOrder::ordersTextsThatBeginAlike()
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

void TestPackageTableOrder::ordersTheSameWayThroughTheModel()
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

void TestPackageTableOrder::ordersByNewActionsWhenSortedAgain()
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

void TestPackageTableOrder::anIndexWithoutAModelIsNotLess()
{
    engine->add("a", StateInstallable);
    model->reset();
    const QModelIndex cell = model->index(0, ColumnSize);
    QVERIFY(!proxy->lessThan(cell, QModelIndex()));
    QVERIFY(!proxy->lessThan(QModelIndex(), cell));
    QVERIFY(!proxy->lessThan(QModelIndex(), QModelIndex()));
}

void TestPackageTableOrder::setUpdateListedMarksListedUpdatesOnly()
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

void TestPackageTableOrder::setUpdateListedDoesNothingOnAnEmptyList()
{
    engine->add("a", StateUpdatable);
    model->reset();
    proxy->setFilterRegExp("nowhere");
    QSignalSpy own(proxy, &SortFilterProxyModel::dataChanged);
    proxy->setUpdateListed();
    QCOMPARE(own.count(), 0);
    QCOMPARE((*engine)[0]->action, ActionNone);
}

QTEST_MAIN(TestPackageTableOrder)
#include "tst_PackageTableOrder.moc"
