// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HTableView.h"

#include "CellModel.h"
#include "kit/HItemDelegate.h"
#include "kit/HSortFilterProxyModel.h"
#include "kit/ScreenLimit.h"

#include <QHeaderView>
#include <QProxyStyle>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include <limits>

namespace
{

constexpr int anyRows = std::numeric_limits<int>::max();

class FrameStyle : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        if (hint == SH_ScrollView_FrameOnlyAroundContents)
            return around;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        return metric == PM_DefaultFrameWidth ? 7
                                              : QProxyStyle::pixelMetric(metric, option, widget);
    }
    int around = 1;
};

} // namespace

class TestHTableView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plansForTheRowsOfTheFirstHint();
    void plansForAtMostTheUpperBound();
    void plansForRowsOfTheDefaultHeightWithoutAny();
    void hintCountsHeadersFramesAndScrollBar();
    void countsAFrameThatIsAroundTheContentsOnly();
    void columnHintWithoutAModel();
    void columnHintCoversRowsOffScreen();
    void windowGrowsToNineTenthsOfTheScreen();
    void windowGrowsToItsHint();
    void windowNeverShrinks();
    void sortsAscendingFirstAndThenAsTheIndicatorSays();
    void aClickOnTheHeaderAlternatesTheOrder();
    void sortingWithoutAModelDoesNothing();
    void selectedRowsAreOneIndexEach();
    void decorationStandsWhereTheConstructorSays();
};

void TestHTableView::plansForTheRowsOfTheFirstHint()
{
    CellModel few(3, 2);
    HTableView view(QStyleOptionViewItem::Left, 10, anyRows, nullptr);
    view.setModel(&few);
    const int planned = view.sizeHint().height();
    QCOMPARE(planned, 2 * view.frameWidth() + view.horizontalHeader()->sizeHint().height() +
                          10 * view.rowHeight(0));
    CellModel many(5000, 2);
    view.setModel(&many);
    QCOMPARE(view.sizeHint().height(), planned);

    HTableView other(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    other.setModel(&few);
    QCOMPARE(other.sizeHint().height(), planned - 7 * view.rowHeight(0));
}

void TestHTableView::plansForAtMostTheUpperBound()
{
    CellModel many(5000, 2);
    HTableView view(QStyleOptionViewItem::Left, 1, 4, nullptr);
    view.setModel(&many);
    view.horizontalHeader()->hide();
    QCOMPARE(view.sizeHint().height(), 2 * view.frameWidth() + 4 * view.rowHeight(0));
}

void TestHTableView::plansForRowsOfTheDefaultHeightWithoutAny()
{
    CellModel none(0, 2);
    HTableView view(QStyleOptionViewItem::Left, 10, anyRows, nullptr);
    view.setModel(&none);
    view.verticalHeader()->setDefaultSectionSize(31);
    QCOMPARE(view.sizeHint().height(),
             2 * view.frameWidth() + view.horizontalHeader()->sizeHint().height() + 10 * 31);

    HTableView withoutModel(QStyleOptionViewItem::Left, 4, anyRows, nullptr);
    withoutModel.horizontalHeader()->hide();
    QCOMPARE(withoutModel.sizeHint().height(),
             2 * view.frameWidth() + 4 * withoutModel.verticalHeader()->defaultSectionSize());
}

void TestHTableView::hintCountsHeadersFramesAndScrollBar()
{
    CellModel model(3, 2);
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    view.setModel(&model);
    view.setColumnWidth(0, 50);
    view.setColumnWidth(1, 70);
    const int without = 2 * view.frameWidth() + 120 + view.verticalScrollBar()->sizeHint().width() +
                        view.frameOnlyAroundContentsPixels();
    QCOMPARE(view.sizeHint().width(), without + view.verticalHeader()->sizeHint().width());
    view.verticalHeader()->hide();
    QCOMPARE(view.sizeHint().width(), without);
    // The last column on screen counts, wherever it comes from.
    view.horizontalHeader()->moveSection(1, 0);
    QCOMPARE(view.sizeHint().width(), without);
}

void TestHTableView::countsAFrameThatIsAroundTheContentsOnly()
{
    FrameStyle style;
    CellModel model(3, 2);
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    view.setModel(&model);
    view.setStyle(&style);
    QCOMPARE(view.frameOnlyAroundContentsPixels(), 14);
    const QSize with = view.sizeHint();
    style.around = 0;
    QCOMPARE(view.frameOnlyAroundContentsPixels(), 0);
    QCOMPARE(view.sizeHint(), with - QSize(14, 0));
}

void TestHTableView::columnHintWithoutAModel()
{
    const HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    QCOMPARE(view.sizeHintForColumn(0), -1);
}

void TestHTableView::columnHintCoversRowsOffScreen()
{
    CellModel model(3000, 1);
    for (int row = 0; row < 3000; ++row)
        model.set(row, 0, "short");
    model.set(2500, 0, "a text that is much longer than all the others");
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    view.setModel(&model);
    view.show();
    const QModelIndex widest = model.index(2500, 0);
    const int width = view.itemDelegate()->sizeHint(view.viewOptions(), widest).width();
    QVERIFY(view.showGrid());
    QCOMPARE(view.sizeHintForColumn(0), width + 1);
    view.setShowGrid(false);
    QCOMPARE(view.sizeHintForColumn(0), width);
}

void TestHTableView::windowGrowsToNineTenthsOfTheScreen()
{
    CellModel model(500, 1);
    model.set(7, 0, QString("wide ").repeated(1000));
    QWidget window;
    auto* box = new QVBoxLayout(&window);
    auto* view = new HTableView(QStyleOptionViewItem::Left, 10, anyRows, &window);
    box->addWidget(view);
    view->setModel(&model);
    window.resize(200, 100);
    window.show();
    view->resizeColumnsToContents();
    const QSize screen = window.screen()->geometry().size();
    QCOMPARE(window.size(), QSize(screen.width() * 9 / 10, screen.height() * 9 / 10));
}

void TestHTableView::windowGrowsToItsHint()
{
    CellModel model(2, 1);
    model.set(0, 0, "some text");
    QWidget window;
    auto* box = new QVBoxLayout(&window);
    auto* view = new HTableView(QStyleOptionViewItem::Left, 5, anyRows, &window);
    box->addWidget(view);
    view->setModel(&model);
    window.resize(10, 10);
    view->resizeColumnsToContents();
    QCOMPARE(window.size(), window.sizeHint());
    QCOMPARE(view->columnWidth(0),
             qMax(view->sizeHintForColumn(0), view->horizontalHeader()->sectionSizeHint(0)));
}

void TestHTableView::windowNeverShrinks()
{
    CellModel model(2, 1);
    QWidget window;
    auto* box = new QVBoxLayout(&window);
    auto* view = new HTableView(QStyleOptionViewItem::Left, 1, anyRows, &window);
    box->addWidget(view);
    view->setModel(&model);
    const QSize large = ScreenLimit::of(&window) + QSize(20, -30);
    window.resize(large);
    window.show();
    view->resizeColumnsToContents();
    QCOMPARE(window.size(), large);
}

void TestHTableView::sortsAscendingFirstAndThenAsTheIndicatorSays()
{
    CellModel model(2, 2);
    HSortFilterProxyModel proxy(0, nullptr);
    proxy.setSourceModel(&model);
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    view.setModel(&proxy);
    view.sortByColumn(0, Qt::DescendingOrder);
    QCOMPARE(proxy.sortColumn(), 0);
    QCOMPARE(proxy.sortOrder(), Qt::DescendingOrder);
    QCOMPARE(view.horizontalHeader()->sortIndicatorSection(), 0);
    view.sortByColumn(0);
    QCOMPARE(proxy.sortOrder(), Qt::DescendingOrder);
    view.sortByColumn(1);
    QCOMPARE(proxy.sortColumn(), 1);
    QCOMPARE(proxy.sortOrder(), Qt::AscendingOrder);
    QCOMPARE(view.horizontalHeader()->sortIndicatorSection(), 1);
    QVERIFY2(!view.horizontalHeader()->isSortIndicatorShown(), "no arrow");
}

void TestHTableView::aClickOnTheHeaderAlternatesTheOrder()
{
    CellModel model(2, 2);
    HSortFilterProxyModel proxy(0, nullptr);
    proxy.setSourceModel(&model);
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    view.setModel(&proxy);
    connect(view.horizontalHeader(), &QHeaderView::sectionClicked, &view,
            [&view](int section) { view.sortByColumn(section); });
    view.sortByColumn(0, Qt::AscendingOrder);
    view.show();
    QHeaderView* header = view.horizontalHeader();
    const auto click = [header](int section) {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(header->sectionViewportPosition(section) + 20, 5));
    };
    click(0);
    QCOMPARE(proxy.sortOrder(), Qt::DescendingOrder);
    click(0);
    QCOMPARE(proxy.sortOrder(), Qt::AscendingOrder);
    click(1);
    QCOMPARE(proxy.sortColumn(), 1);
    const Qt::SortOrder first = proxy.sortOrder();
    click(1);
    QVERIFY(proxy.sortOrder() != first);
}

void TestHTableView::sortingWithoutAModelDoesNothing()
{
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    const int before = view.horizontalHeader()->sortIndicatorSection();
    view.sortByColumn(3);
    QCOMPARE(view.horizontalHeader()->sortIndicatorSection(), before);
}

void TestHTableView::selectedRowsAreOneIndexEach()
{
    CellModel model(6, 3);
    model.fixedRows = {3};
    HTableView view(QStyleOptionViewItem::Left, 1, anyRows, nullptr);
    QVERIFY(view.selectedRows().isEmpty());
    view.setModel(&model);
    QVERIFY(view.selectedRows().isEmpty());
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    const auto select = [&](int first, int last) {
        view.selectionModel()->select(QItemSelection(model.index(first, 0), model.index(last, 2)),
                                      QItemSelectionModel::Select);
    };
    select(4, 5);
    select(0, 1);
    select(3, 3);
    QCOMPARE(view.selectedRows(), QModelIndexList({model.index(4, 0), model.index(5, 0),
                                                   model.index(0, 0), model.index(1, 0)}));
    view.clearSelection();
    view.selectionModel()->select(QItemSelection(model.index(2, 1), model.index(2, 2)),
                                  QItemSelectionModel::Select);
    QCOMPARE(view.selectedRows(), QModelIndexList({model.index(2, 1)}));
}

void TestHTableView::decorationStandsWhereTheConstructorSays()
{
    QWidget parent;
    HTableView view(QStyleOptionViewItem::Right, 1, anyRows, &parent);
    QCOMPARE(view.viewOptions().decorationPosition, QStyleOptionViewItem::Right);
    QVERIFY(!view.viewOptions().showDecorationSelected);
    QVERIFY(qobject_cast<HItemDelegate*>(view.itemDelegate()));
    QCOMPARE(view.itemDelegate()->parent(), &parent);
}

QTEST_MAIN(TestHTableView)
#include "tst_HTableView.moc"
