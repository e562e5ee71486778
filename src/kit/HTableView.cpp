// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HTableView.h"

#include "kit/ColumnWidth.h"
#include "kit/HItemDelegate.h"
#include "kit/HSortFilterProxyModel.h"
#include "kit/ScreenLimit.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScrollBar>

#include <typeinfo>

HTableView::HTableView(QStyleOptionViewItem::Position decorationPosition, int minimumRows,
                       int maximumRows, QWidget* parent)
    : QTableView(parent)
    , m_decorationPosition(decorationPosition)
    , m_minimumRows(minimumRows)
    , m_maximumRows(maximumRows)
{
    setItemDelegate(new HItemDelegate(parent));
}

HTableView::~HTableView() = default;

QStyleOptionViewItem HTableView::viewOptions() const
{
    QStyleOptionViewItem option = QTableView::viewOptions();
    option.decorationPosition = m_decorationPosition;
    option.showDecorationSelected = false;
    return option;
}

QSize HTableView::sizeHint() const
{
    // The first answer stands, so that the window doesn't follow the number of packages.
    if (m_minimumRows != m_maximumRows) {
        const int rows = model() ? model()->rowCount(rootIndex()) : 0;
        m_minimumRows = m_maximumRows = qMin(qMax(rows, m_minimumRows), m_maximumRows);
    }

    const int lastColumn = horizontalHeader()->logicalIndex(horizontalHeader()->count() - 1);
    const int verticalHeaderWidth =
        verticalHeader()->isHidden() ? 0 : verticalHeader()->sizeHint().width();
    const int horizontalHeaderHeight =
        horizontalHeader()->isHidden() ? 0 : horizontalHeader()->sizeHint().height();
    const int width = verticalHeaderWidth + columnViewportPosition(lastColumn) +
                      columnWidth(lastColumn) + frameOnlyAroundContentsPixels() +
                      verticalScrollBar()->sizeHint().width();
    // An empty table has no row to measure by, and wants room for the rows planned all the same.
    const bool hasRows = verticalHeader()->count() > 0;
    const int rowHeight = hasRows ? this->rowHeight(0) : verticalHeader()->defaultSectionSize();
    const int firstRow = hasRows ? rowViewportPosition(0) : 0;
    const int height = horizontalHeaderHeight + firstRow + rowHeight * m_minimumRows;
    return QSize(width + 2 * frameWidth(), height + 2 * frameWidth());
}

int HTableView::sizeHintForColumn(int column) const
{
    if (!model())
        return -1;
    const int width = widestHint(column, viewOptions());
    return showGrid() ? width + 1 : width;
}

int HTableView::widestHint(int column, const QStyleOptionViewItem& option) const
{
    // Another delegate, be it derived from ours, may have hints of another kind, and must be asked
    // for each cell. So must ours where it wraps texts.
    const QAbstractItemDelegate* columnDelegate = itemDelegateForColumn(column);
    const QAbstractItemDelegate* delegate = columnDelegate ? columnDelegate : itemDelegate();
    const bool wraps =
        option.features.testFlag(QStyleOptionViewItem::WrapText) &&
        (option.rect.isValid() || (option.decorationPosition != QStyleOptionViewItem::Left &&
                                   option.decorationPosition != QStyleOptionViewItem::Right));
    std::unique_ptr<ColumnWidth> own;
    ColumnWidth* cells = nullptr;
    if (!wraps && typeid(*delegate) == typeid(HItemDelegate)) {
        if (delegate == itemDelegate())
            cells = m_columnWidth.get();
        if (!cells) {
            own =
                std::make_unique<ColumnWidth>(static_cast<const HItemDelegate*>(delegate), option);
            cells = own.get();
        }
    }

    const auto* proxy = qobject_cast<const HSortFilterProxyModel*>(model());
    int width = 0;
    for (int row = 0, rows = model()->rowCount(rootIndex()); row < rows; ++row) {
        const QModelIndex index = model()->index(row, column, rootIndex());
        const QAbstractItemDelegate* rowDelegate = itemDelegateForRow(row);
        if (cells && !rowDelegate)
            cells->add(proxy ? proxy->mapToSource(index) : index);
        else
            width = qMax(width,
                         (rowDelegate ? rowDelegate : delegate)->sizeHint(option, index).width());
    }
    return cells ? qMax(width, cells->take()) : width;
}

void HTableView::sortByColumn(int column)
{
    const QHeaderView* header = horizontalHeader();
    sortByColumn(column, column == header->sortIndicatorSection() ? header->sortIndicatorOrder()
                                                                  : Qt::AscendingOrder);
}

void HTableView::sortByColumn(int column, Qt::SortOrder order)
{
    if (!model())
        return;
    horizontalHeader()->setSortIndicator(column, order);
    model()->sort(column, order);
}

void HTableView::resizeColumnsToContents()
{
    if (typeid(*itemDelegate()) == typeid(HItemDelegate)) {
        m_columnWidth = std::make_unique<ColumnWidth>(
            static_cast<const HItemDelegate*>(itemDelegate()), viewOptions());
    }
    QTableView::resizeColumnsToContents();
    m_columnWidth.reset();
    for (QWidget* widget = this; widget; widget = widget->parentWidget())
        widget->updateGeometry();

    QWidget* top = window();
    top->resize(top->sizeHint().boundedTo(ScreenLimit::of(this)).expandedTo(top->size()));
}

QModelIndexList HTableView::selectedRows() const
{
    QModelIndexList rows;
    if (!selectionModel())
        return rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const QModelIndex index = model()->index(row, range.left(), range.parent());
            if (model()->flags(index) & Qt::ItemIsSelectable)
                rows.append(index);
        }
    }
    return rows;
}

int HTableView::frameOnlyAroundContentsPixels() const
{
    if (!style()->styleHint(QStyle::SH_ScrollView_FrameOnlyAroundContents, nullptr, this))
        return 0;
    return 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
}
