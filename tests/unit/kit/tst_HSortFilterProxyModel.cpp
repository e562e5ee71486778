// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HSortFilterProxyModel.h"

#include "CellModel.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

namespace
{

/// Counts how often rows are compared and how deep.
class CountingProxy : public HSortFilterProxyModel
{
public:
    using HSortFilterProxyModel::createSecondarySortIndex;
    using HSortFilterProxyModel::HSortFilterProxyModel;

    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override
    {
        ++calls;
        deepest = qMax(deepest, ++depth);
        const bool less = HSortFilterProxyModel::lessThan(left, right);
        --depth;
        return less;
    }

    mutable int calls = 0;
    mutable int depth = 0;
    mutable int deepest = 0;
};

QStringList column(const QAbstractItemModel& model, int column)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts << model.index(row, column).data().toString();
    return texts;
}

} // namespace

class TestHSortFilterProxyModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparesByTheTypeOfTheLeftValue_data();
    void comparesByTheTypeOfTheLeftValue();
    void equalValuesInTheSecondaryColumnAreFalseBothWaysWithoutRecursion();
    void aTieGoesOnceToTheSecondaryColumn();
    void aTieWithoutASecondaryColumnEnds();
    void invalidIndexesCompareAsEqual();
    void sortsTiesByTheSecondaryColumn();
    void rowsStayWhereTheyAreWhenTheirValuesChange();
    void changesOfTheFilterSortFromScratch_data();
    void changesOfTheFilterSortFromScratch();
    void filtersWithoutAModel();
    void forcesAReset();
};

void TestHSortFilterProxyModel::comparesByTheTypeOfTheLeftValue_data()
{
    QTest::addColumn<QVariant>("left");
    QTest::addColumn<QVariant>("right");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");

    const auto row = [](const char* name, const QVariant& left, const QVariant& right, bool less,
                        bool greater) { QTest::newRow(name) << left << right << less << greater; };
    row("int", -1, 2, true, false);
    row("int, not as text", 9, 10, true, false);
    row("unsigned", 1u, 0xffffffffu, true, false);
    row("long long", Q_INT64_C(-5000000000), Q_INT64_C(5000000000), true, false);
    row("unsigned long long", Q_UINT64_C(1), Q_UINT64_C(0xffffffffffffffff), true, false);
    row("double", 0.1, 0.25, true, false);
    row("double, without tolerance", 1.0, 1.0 + 1e-15, true, false);
    row("character", QChar('Z'), QChar('a'), true, false);
    row("capitals first", "Zebra", "ant", true, false);
    row("digits as text", "10", "9", true, false);
    row("no locale", "z", QString::fromUtf8("\xc3\xa4"), true, false);
    row("date", QDate(1999, 12, 31), QDate(2000, 1, 1), true, false);
    row("time", QTime(9, 0), QTime(10, 0), true, false);
    row("date and time", QDateTime(QDate(1999, 12, 31), QTime(23, 0)),
        QDateTime(QDate(2000, 1, 1), QTime(1, 0)), true, false);
    row("another type as text", QUrl("http://a"), QUrl("http://b"), true, false);
    row("invalid before text", QVariant(), "a", true, false);
    row("invalid and invalid", QVariant(), QVariant(), false, false);
    row("text against number, by the left", "10", 9, true, true);
    row("nothing is below not-a-number", 1.0, qQNaN(), false, false);
}

void TestHSortFilterProxyModel::comparesByTheTypeOfTheLeftValue()
{
    QFETCH(QVariant, left);
    QFETCH(QVariant, right);
    QFETCH(bool, less);
    QFETCH(bool, greater);
    const CellModel model({left, right});
    const HSortFilterProxyModel proxy(0, nullptr);
    if (QTest::currentDataTag() == QLatin1String("text against number, by the left")) {
        // "10" is below "9" as texts, and 9 is below 10 as numbers.
        QVERIFY(proxy.lessThan(model.index(0, 0), model.index(1, 0)));
        QVERIFY(proxy.lessThan(model.index(1, 0), model.index(0, 0)));
        return;
    }
    QCOMPARE(proxy.lessThan(model.index(0, 0), model.index(1, 0)), less);
    QCOMPARE(proxy.lessThan(model.index(1, 0), model.index(0, 0)), greater);
}

void TestHSortFilterProxyModel::equalValuesInTheSecondaryColumnAreFalseBothWaysWithoutRecursion()
{
    const CellModel model({"same", "same"});
    const CountingProxy proxy(0, nullptr);
    QVERIFY(!proxy.lessThan(model.index(0, 0), model.index(1, 0)));
    QVERIFY(!proxy.lessThan(model.index(1, 0), model.index(0, 0)));
    QCOMPARE(proxy.calls, 2);
}

void TestHSortFilterProxyModel::aTieGoesOnceToTheSecondaryColumn()
{
    CellModel model(2, 2);
    for (int row = 0; row < 2; ++row) {
        model.set(row, 0, "same");
        model.set(row, 1, row);
    }
    const CountingProxy proxy(1, nullptr);
    QVERIFY(proxy.lessThan(model.index(0, 0), model.index(1, 0)));
    QCOMPARE(proxy.deepest, 2);
    QVERIFY(!proxy.lessThan(model.index(1, 0), model.index(0, 0)));
    model.set(1, 1, 0);
    QVERIFY(!proxy.lessThan(model.index(0, 0), model.index(1, 0)));
    QCOMPARE(proxy.deepest, 2);
    QCOMPARE(proxy.createSecondarySortIndex(model.index(1, 0)), model.index(1, 1));
}

void TestHSortFilterProxyModel::aTieWithoutASecondaryColumnEnds()
{
    const CellModel model({"same", "same"});
    const CountingProxy proxy(7, nullptr);
    QVERIFY(!proxy.lessThan(model.index(0, 0), model.index(1, 0)));
}

void TestHSortFilterProxyModel::invalidIndexesCompareAsEqual()
{
    const CellModel model({"text"});
    const CountingProxy proxy(0, nullptr);
    QVERIFY(!proxy.lessThan(QModelIndex(), QModelIndex()));
    QVERIFY(proxy.lessThan(QModelIndex(), model.index(0, 0)));
    QVERIFY(!proxy.lessThan(model.index(0, 0), QModelIndex()));
    QVERIFY(!proxy.createSecondarySortIndex(QModelIndex()).isValid());
}

void TestHSortFilterProxyModel::sortsTiesByTheSecondaryColumn()
{
    CellModel model(4, 2);
    const char* const rows[][2] = {{"b", "2"}, {"a", "2"}, {"b", "1"}, {"a", "1"}};
    for (int row = 0; row < 4; ++row) {
        model.set(row, 0, rows[row][0]);
        model.set(row, 1, rows[row][1]);
    }
    HSortFilterProxyModel proxy(1, nullptr);
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(&model);
    proxy.sort(0);
    QCOMPARE(column(proxy, 0), QStringList({"a", "a", "b", "b"}));
    QCOMPARE(column(proxy, 1), QStringList({"1", "2", "1", "2"}));
    proxy.sort(0, Qt::DescendingOrder);
    QCOMPARE(column(proxy, 0), QStringList({"b", "b", "a", "a"}));
    QCOMPARE(column(proxy, 1), QStringList({"2", "1", "2", "1"}));
}

void TestHSortFilterProxyModel::rowsStayWhereTheyAreWhenTheirValuesChange()
{
    CellModel model({"a", "b", "c"});
    HSortFilterProxyModel proxy(0, nullptr);
    proxy.setSourceModel(&model);
    proxy.sort(0);
    model.set(0, 0, "z");
    QCOMPARE(column(proxy, 0), QStringList({"z", "b", "c"}));
}

void TestHSortFilterProxyModel::changesOfTheFilterSortFromScratch_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("filterChanged") << "filterChanged" << QStringList({"z", "c", "b"});
    QTest::newRow("clear") << "clear" << QStringList({"z", "c", "b"});
    QTest::newRow("setFilterRegExp, text") << "text" << QStringList({"z", "b"});
    QTest::newRow("setFilterRegExp, expression") << "expression" << QStringList({"z", "b"});
}

void TestHSortFilterProxyModel::changesOfTheFilterSortFromScratch()
{
    QFETCH(QString, change);
    QFETCH(QStringList, expected);
    CellModel model({"b", "a", "c"});
    HSortFilterProxyModel proxy(0, nullptr);
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setSourceModel(&model);
    proxy.sort(0, Qt::DescendingOrder);
    QCOMPARE(column(proxy, 0), QStringList({"c", "b", "a"}));

    // The row of "a" has moved by now, but nobody has sorted again.
    model.set(1, 0, "z");
    QCOMPARE(column(proxy, 0), QStringList({"c", "b", "z"}));

    QSignalSpy sourceReset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy proxyReset(&proxy, &QAbstractItemModel::modelReset);
    if (change == "filterChanged")
        proxy.filterChanged();
    else if (change == "clear")
        proxy.clear();
    else if (change == "text")
        proxy.setFilterRegExp(QString("z|b"));
    else
        proxy.setFilterRegExp(QRegExp("z|b"));

    QCOMPARE(column(proxy, 0), expected);
    QCOMPARE(sourceReset.count(), 1);
    QCOMPARE(proxyReset.count(), 1);
    QCOMPARE(proxy.sortColumn(), 0);
    QCOMPARE(proxy.sortOrder(), Qt::DescendingOrder);
}

void TestHSortFilterProxyModel::filtersWithoutAModel()
{
    HSortFilterProxyModel proxy(0, nullptr);
    proxy.filterChanged();
    proxy.clear();
    proxy.setFilterRegExp(QString("a"));
    QCOMPARE(proxy.rowCount(), 0);
    QCOMPARE(proxy.filterRegExp().pattern(), QString("a"));
}

void TestHSortFilterProxyModel::forcesAReset()
{
    CellModel model({"a", "b"});
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy about(&model, &QAbstractItemModel::modelAboutToBeReset);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    model.forceSortColumnRediscovery();
    QCOMPARE(about.count(), 1);
    QCOMPARE(reset.count(), 1);
    QCOMPARE(model.rowCount(), 2);

    // A proxy set through its base class is sorted and reset all the same.
    HSortFilterProxyModel proxy(0, nullptr);
    static_cast<QSortFilterProxyModel&>(proxy).setSourceModel(&model);
    proxy.filterChanged();
    QCOMPARE(reset.count(), 2);
}

QTEST_MAIN(TestHSortFilterProxyModel)
#include "tst_HSortFilterProxyModel.moc"
