// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HTableView.h"

#include "kit/ColumnWidth.h"
#include "kit/HItemDelegate.h"
#include "kit/HSortFilterProxyModel.h"
#include "kit/ScreenLimit.h"

#include <QAccessible>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScrollBar>

#include <optional>
#include <typeinfo>

HTableView::HTableView(QStyleOptionViewItem::Position decorationPosition, int minimumRows,
                       int maximumRows, QWidget* parent)
    : QTableView(parent)
    , m_decorationPosition(decorationPosition)
    , m_minimumRows(minimumRows)
    , m_maximumRows(maximumRows)
{
    setItemDelegate(new HItemDelegate(parent ? static_cast<QObject*>(parent) : this));
}

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
    const auto at = static_cast<size_t>(column);
    const int width = at < m_widest.size() ? m_widest[at] : widestHint(column, viewOptions());
    return showGrid() ? width + 1 : width;
}

/// Whether ColumnWidth can tell the delegate's hints. Another delegate, be it derived from ours,
/// may have hints of another kind, and must be asked for each cell. So must ours where it wraps
/// texts.
static bool isMeasurable(const QAbstractItemDelegate* delegate, const QStyleOptionViewItem& option)
{
    const bool wraps =
        option.features.testFlag(QStyleOptionViewItem::WrapText) &&
        (option.rect.isValid() || (option.decorationPosition != QStyleOptionViewItem::Left &&
                                   option.decorationPosition != QStyleOptionViewItem::Right));
    return !wraps && typeid(*delegate) == typeid(HItemDelegate);
}

/// The widest hints of all columns, worked out row by row: that brings each row's data into the
/// processor's cache once, rather than once a column. Empty where cells must be asked one by one.
std::vector<int> HTableView::widestHints(const QStyleOptionViewItem& option) const
{
    const int columns = model() ? model()->columnCount(rootIndex()) : 0;
    const int rows = columns > 0 ? model()->rowCount(rootIndex()) : 0;
    if (rows == 0 || !isMeasurable(itemDelegate(), option))
        return {};
    for (int column = 0; column < columns; ++column) {
        if (itemDelegateForColumn(column))
            return {};
    }
    for (int row = 0; row < rows; ++row) {
        if (itemDelegateForRow(row))
            return {};
    }

    ColumnWidth cells(static_cast<const HItemDelegate*>(itemDelegate()), option);
    const auto* proxy = qobject_cast<const HSortFilterProxyModel*>(model());
    if (proxy && !rootIndex().isValid() && rows == proxy->sourceModel()->rowCount()) {
        // All rows are listed, so that their order doesn't matter.
        const QAbstractItemModel* source = proxy->sourceModel();
        std::vector<int> sourceColumns;
        for (int column = 0; column < columns; ++column)
            sourceColumns.push_back(proxy->mapToSource(proxy->index(0, column)).column());
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                const int sourceColumn = sourceColumns[static_cast<size_t>(column)];
                cells.add(source->index(row, sourceColumn), column);
            }
        }
    } else {
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                const QModelIndex index = model()->index(row, column, rootIndex());
                cells.add(proxy ? proxy->mapToSource(index) : index, column);
            }
        }
    }

    std::vector<int> widest;
    for (int column = 0; column < columns; ++column)
        widest.push_back(cells.take(column));
    return widest;
}

int HTableView::widestHint(int column, const QStyleOptionViewItem& option) const
{
    const QAbstractItemDelegate* columnDelegate = itemDelegateForColumn(column);
    const QAbstractItemDelegate* delegate = columnDelegate ? columnDelegate : itemDelegate();
    std::optional<ColumnWidth> cells;
    if (isMeasurable(delegate, option))
        cells.emplace(static_cast<const HItemDelegate*>(delegate), option);

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
    m_widest = widestHints(viewOptions());
    QTableView::resizeColumnsToContents();
    m_widest.clear();
    for (QWidget* widget = this; widget; widget = widget->parentWidget())
        widget->updateGeometry();

    QWidget* top = window();
    top->resize(ScreenLimit::windowSize(top).expandedTo(top->size()));
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

void HTableView::followCurrent(const QModelIndex& current, const QModelIndex& previous)
{
    // A row that the mouse is on doesn't move.
    if (current.isValid() && isVisible() && hasAutoScroll())
        scrollTo(current);
    update(previous);
    update(current);
    if (!QAccessible::isActive() || !current.isValid())
        return;
    // Both headers count as cells, whether or not they are shown.
    const int columns = current.model()->columnCount() + 1;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild((current.row() + 1) * columns + current.column() + 1);
    QAccessible::updateAccessibility(&event);
}
