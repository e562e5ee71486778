// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/ColumnWidth.h"

#include "CellModel.h"
#include "NastyTexts.h"
#include "kit/HItemDelegate.h"
#include "kit/HSortFilterProxyModel.h"
#include "kit/HTableView.h"

#include <QColor>
#include <QDateTime>
#include <QHeaderView>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QTest>

#include <limits>

class TestColumnWidth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isTheDelegatesMaximum_data();
    void isTheDelegatesMaximum();
    void isTheDelegatesMaximumForEachCellAlone();
    void beginsAnewAfterEachColumn();
    void keepsColumnsApart();
    void measuresFewOfManyTexts();
    void asksADerivedDelegateForEachCell();
    void asksTheDelegatesOfARowAndOfAColumn();
    void countsOnlyTheRowsThatAProxyLists();
    void aResizeFitsEachColumnToItsCells();

private:
    static void fill(CellModel& model, int row, QRandomGenerator& random);
    static int bruteForce(const HTableView& view, int column);
};

void TestColumnWidth::fill(CellModel& model, int row, QRandomGenerator& random)
{
    static const QVector<QFont> fonts = Nasty::fonts();
    static const QIcon icons[] = {QIcon(), QIcon(QPixmap(16, 16)), QIcon(QPixmap(40, 20))};
    const auto chance = [&random](int percent) { return random.bounded(100) < percent; };

    switch (random.bounded(14)) {
    case 0:
        model.set(row, 0, random.bounded(1000000));
        break;
    case 1:
        model.set(row, 0, qint64(random.generate64()));
        break;
    case 2:
        model.set(row, 0, random.generate64());
        break;
    case 3:
        model.set(row, 0, random.generateDouble());
        break;
    case 4:
        model.set(row, 0, QDateTime::fromSecsSinceEpoch(random.generate()));
        break;
    case 5:
        model.set(row, 0, chance(50) ? QVariant() : QVariant(QString()));
        break;
    case 6:
        model.set(row, 0, icons[random.bounded(3)]);
        break;
    default:
        model.set(row, 0, Nasty::randomText(random));
    }
    if (chance(30)) {
        const QVariant decorations[] = {icons[0],
                                        icons[1],
                                        icons[2],
                                        QPixmap(25, 25),
                                        QImage(30, 30, QImage::Format_RGB32),
                                        QColor(Qt::red),
                                        QVariant(QVariant::Icon),
                                        QVariant(QVariant::Pixmap),
                                        QString("a text for a decoration")};
        model.set(row, 0, decorations[random.bounded(9)], Qt::DecorationRole);
    }
    if (chance(20))
        model.set(row, 0, fonts[random.bounded(fonts.size())], Qt::FontRole);
    if (chance(20))
        model.set(row, 0, chance(50) ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
    if (chance(3))
        model.set(row, 0, QSize(random.bounded(200), 10), Qt::SizeHintRole);
}

int TestColumnWidth::bruteForce(const HTableView& view, int column)
{
    int width = 0;
    for (int row = 0; row < view.model()->rowCount(); ++row) {
        const QModelIndex index = view.model()->index(row, column);
        width = qMax(width, view.itemDelegate(index)->sizeHint(view.viewOptions(), index).width());
    }
    return view.showGrid() ? width + 1 : width;
}

void TestColumnWidth::isTheDelegatesMaximum_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QFont>("font");
    int row = 0;
    for (const QFont& font : Nasty::fonts()) {
        QTest::addRow("left %d %s", row, qPrintable(font.family()))
            << int(QStyleOptionViewItem::Left) << font;
        ++row;
    }
    for (const auto position :
         {QStyleOptionViewItem::Right, QStyleOptionViewItem::Top, QStyleOptionViewItem::Bottom})
        QTest::addRow("position %d", position) << int(position) << QFont();
}

void TestColumnWidth::isTheDelegatesMaximum()
{
    QFETCH(int, position);
    QFETCH(QFont, font);
    QRandomGenerator random(position + font.pointSize());
    for (int round = 0; round < 3; ++round) {
        CellModel model(1 + random.bounded(60), 1);
        for (int row = 0; row < model.rowCount(); ++row)
            fill(model, row, random);
        HTableView view(static_cast<QStyleOptionViewItem::Position>(position), 1,
                        std::numeric_limits<int>::max(), nullptr);
        view.setFont(font);
        view.setModel(&model);
        for (const bool wrap : {true, false}) {
            view.setWordWrap(wrap);
            QCOMPARE(view.sizeHintForColumn(0), bruteForce(view, 0));
        }
    }
}

void TestColumnWidth::isTheDelegatesMaximumForEachCellAlone()
{
    // In a column of one, no wider cell hides a wrong answer.
    QRandomGenerator random(5);
    for (int round = 0; round < 400; ++round) {
        CellModel model(1, 1);
        fill(model, 0, random);
        HTableView view(QStyleOptionViewItem::Left, 1, std::numeric_limits<int>::max(), nullptr);
        view.setModel(&model);
        QCOMPARE(view.sizeHintForColumn(0), bruteForce(view, 0));
    }
}

void TestColumnWidth::beginsAnewAfterEachColumn()
{
    CellModel model({"a long text", "x"});
    const HItemDelegate delegate(nullptr);
    const QStyleOptionViewItem option;
    ColumnWidth width(&delegate, option);
    QCOMPARE(width.take(), 0);
    width.add(model.index(0, 0));
    QCOMPARE(width.take(), delegate.sizeHint(option, model.index(0, 0)).width());
    width.add(model.index(1, 0));
    QCOMPARE(width.take(), delegate.sizeHint(option, model.index(1, 0)).width());
}

void TestColumnWidth::keepsColumnsApart()
{
    CellModel model({"a long text", "x", "text"});
    const HItemDelegate delegate(nullptr);
    const QStyleOptionViewItem option;
    const auto hint = [&](int row) {
        return delegate.sizeHint(option, model.index(row, 0)).width();
    };
    ColumnWidth width(&delegate, option);
    width.add(model.index(1, 0), 2);
    width.add(model.index(0, 0), 1);
    width.add(model.index(2, 0), 2);
    QCOMPARE(width.take(0), 0);
    QCOMPARE(width.take(2), hint(2));
    width.add(model.index(1, 0), 2);
    QCOMPARE(width.take(1), hint(0));
    QCOMPARE(width.take(1), 0);
    QCOMPARE(width.take(2), hint(1));
    QCOMPARE(width.take(3), 0);
}

void TestColumnWidth::measuresFewOfManyTexts()
{
    QRandomGenerator random(3);
    CellModel model(5000, 1);
    for (int row = 0; row < 5000; ++row) {
        QString text("lib");
        for (int length = random.bounded(40); length > 0; --length)
            text += QChar(static_cast<ushort>(random.bounded('a', 'z' + 1)));
        model.set(row, 0, text + QString("-%1.x86_64").arg(random.bounded(1000)));
    }
    const HItemDelegate delegate(nullptr);
    QStyleOptionViewItem option;
    for (const QFont& font : Nasty::fonts()) {
        if (font.capitalization() != QFont::MixedCase || font.wordSpacing() > 0)
            continue;
        option.font = font;
        ColumnWidth width(&delegate, option);
        for (int row = 0; row < 5000; ++row)
            width.add(model.index(row, 0));
        QVERIFY(width.take() > 0);
        QVERIFY2(
            width.measured() < 400,
            qPrintable(QString("%1 measured with %2").arg(width.measured()).arg(font.toString())));
    }
}

void TestColumnWidth::asksADerivedDelegateForEachCell()
{
    class Odd : public HItemDelegate
    {
    public:
        using HItemDelegate::HItemDelegate;
        QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override
        {
            return QSize(100 + (index.row() == 1 ? 50 : 0), 10);
        }
    };
    CellModel model({"a very long text that counts for nothing here", "b", "c"});
    HTableView view(QStyleOptionViewItem::Left, 1, 10, nullptr);
    view.setModel(&model);
    view.setShowGrid(false);
    Odd odd(nullptr);
    view.setItemDelegate(&odd);
    QCOMPARE(view.sizeHintForColumn(0), 150);
    view.resizeColumnsToContents();
    QCOMPARE(view.columnWidth(0), 150);
}

void TestColumnWidth::asksTheDelegatesOfARowAndOfAColumn()
{
    class Wide : public QItemDelegate
    {
    public:
        explicit Wide(int width)
            : m_width(width)
        {
        }
        QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
        {
            return QSize(m_width, 10);
        }

    private:
        const int m_width;
    };
    CellModel model(3, 2);
    HTableView view(QStyleOptionViewItem::Left, 1, 10, nullptr);
    view.setModel(&model);
    view.setShowGrid(false);
    Wide row(300);
    Wide column(400);
    view.setItemDelegateForRow(1, &row);
    QCOMPARE(view.sizeHintForColumn(0), 300);
    view.resizeColumnsToContents();
    QCOMPARE(view.columnWidth(0), 300);
    view.setItemDelegateForColumn(0, &column);
    QCOMPARE(view.sizeHintForColumn(0), 400);
    QCOMPARE(view.sizeHintForColumn(1), 300);
    view.resizeColumnsToContents();
    QCOMPARE(view.columnWidth(0), 400);
    QCOMPARE(view.columnWidth(1), 300);
    view.setItemDelegateForRow(1, nullptr);
    view.resizeColumnsToContents();
    QCOMPARE(view.columnWidth(0), 400);
    QVERIFY(view.columnWidth(1) < 300);
}

void TestColumnWidth::countsOnlyTheRowsThatAProxyLists()
{
    CellModel model(3, 2);
    model.set(0, 0, "short");
    model.set(1, 0, "a much longer text than the others");
    model.set(2, 0, "shorter still");
    HSortFilterProxyModel proxy(0, nullptr);
    proxy.setSourceModel(&model);
    HTableView view(QStyleOptionViewItem::Left, 1, 10, nullptr);
    view.setModel(&proxy);
    const int all = view.sizeHintForColumn(0);
    QCOMPARE(all, bruteForce(view, 0));
    proxy.setFilterRegExp(QString("^short"));
    QVERIFY(view.sizeHintForColumn(0) < all);
    QCOMPARE(view.sizeHintForColumn(0), bruteForce(view, 0));
}

void TestColumnWidth::aResizeFitsEachColumnToItsCells()
{
    CellModel model(20, 4);
    QRandomGenerator random(3);
    for (int row = 0; row < 20; ++row) {
        for (int column = 1; column < 4; ++column)
            model.set(row, column, QString("word ").repeated(5 * column + random.bounded(20)));
    }
    model.set(7, 2, QString("word ").repeated(60));
    HSortFilterProxyModel proxy(1, nullptr);
    proxy.setSourceModel(&model);
    HTableView view(QStyleOptionViewItem::Left, 1, 10, nullptr);
    view.setModel(&proxy);
    const auto isFit = [&](int column) {
        return view.columnWidth(column) ==
               qMax(bruteForce(view, column), view.horizontalHeader()->sectionSizeHint(column));
    };
    proxy.sort(1, Qt::DescendingOrder);
    view.horizontalHeader()->moveSection(0, 3);
    view.resizeColumnsToContents();
    const int all = view.columnWidth(2);
    for (int column = 0; column < 4; ++column)
        QVERIFY2(isFit(column), "all rows listed");

    proxy.setFilterKeyColumn(2);
    proxy.setFilterRegExp(QString("^(word ){1,40}$"));
    QVERIFY(proxy.rowCount() > 1);
    QVERIFY(proxy.rowCount() < 20);
    view.resizeColumnsToContents();
    QVERIFY(view.columnWidth(2) < all);
    for (int column = 0; column < 4; ++column)
        QVERIFY2(isFit(column), "some rows listed");

    // What was found must not outlive the resize.
    proxy.setFilterRegExp(QString());
    QCOMPARE(view.sizeHintForColumn(2), bruteForce(view, 2));
    proxy.setFilterRegExp(QString("nowhere"));
    QCOMPARE(view.sizeHintForColumn(2), bruteForce(view, 2));
    view.resizeColumnsToContents();
    QVERIFY2(isFit(2), "no rows listed");

    view.setModel(&model);
    view.resizeColumnsToContents();
    for (int column = 0; column < 4; ++column)
        QVERIFY2(isFit(column), "no proxy");
}

QTEST_MAIN(TestColumnWidth)
#include "tst_ColumnWidth.moc"
