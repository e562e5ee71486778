// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableView.h"

#include "table/PackageTable.h"
#include "table/PackageTableActionContextMenu.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableOtherContextMenu.h"
#include "table/PackageTableSortFilterProxyModel.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>

#include <limits>
#include <utility>

namespace PackageTable
{

View::View(Model* model, SortFilterProxyModel* proxy, QWidget* parent)
    : HTableView(QStyleOptionViewItem::Left, 10, std::numeric_limits<int>::max(), parent)
    , packages(model)
    , proxy(proxy)
{
    setAccessibleName(tr("Packages"));
    setModel(proxy);
    setShowGrid(false);
    setGridStyle(Qt::NoPen);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAlternatingRowColors(true);
    // The arrows go from cell to cell, and Tab to the buttons behind the table.
    setTabKeyNavigation(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    verticalHeader()->hide();

    auto* header = new QHeaderView(Qt::Horizontal, this);
    header->setSelectionBehavior(QAbstractItemView::SelectColumns);
    header->setSectionsMovable(true);
    header->setSectionsClickable(true);
    setHorizontalHeader(header);

    HTableView::sortByColumn(ColumnKind, Qt::AscendingOrder);
    proxy->setFilterKeyColumn(ColumnKind);

    connect(header, &QHeaderView::sectionClicked, this, &View::handleHorizontalHeaderClicked);
    connect(this, &QAbstractItemView::clicked, this, &View::handleActivated);
    connect(proxy, &QAbstractItemModel::dataChanged, this, &View::describeCurrent);
    connect(this, &QWidget::customContextMenuRequested, this,
            &View::handleCustomContextMenuRequested);
}

View::~View() = default;

void View::handleHorizontalHeaderClicked(int column)
{
    HTableView::sortByColumn(column);
    proxy->setFilterKeyColumn(column);
}

void View::handleActivated(QModelIndex ix)
{
    if (!ix.isValid() || ix.column() != ColumnAction)
        return;
    const QModelIndex sourceIndex = proxy->mapToSource(ix);
    packages->toggleAction(sourceIndex);
    Q_EMIT stateChanged(sourceIndex.row());
}

void View::handleCustomContextMenuRequested(QPoint pos)
{
    const QModelIndex sourceIndex = proxy->mapToSource(indexAt(pos));
    const QPoint globalPos = viewport()->mapToGlobal(pos);
    if (sourceIndex.column() == ColumnAction) {
        if (!actionMenu)
            actionMenu = std::make_unique<ActionContextMenu>(packages, this);
        actionMenu->exec(sourceIndex, globalPos);
        Q_EMIT stateChanged(-1);
    } else {
        if (!otherMenu)
            otherMenu = std::make_unique<OtherContextMenu>(packages, this);
        otherMenu->exec(sourceIndex, globalPos);
    }
}

void View::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    describeCurrent();
    followCurrent(current, previous);

    const int currentRow = proxy->mapToSource(current).row();
    const int previousRow = proxy->mapToSource(previous).row();
    if (currentRow == previousRow)
        return;
    toldRow = currentRow;
    Q_EMIT currentChanged(currentRow, previousRow);
}

void View::describeCurrent()
{
    // These cells are pictures, which a screen reader can't tell.
    QStringList words;
    for (int column : {ColumnAction, ColumnState, ColumnKind})
        words << currentIndex()
                     .sibling(currentIndex().row(), column)
                     .data(Qt::ToolTipRole)
                     .toString();
    words.removeAll(QString());
    setAccessibleDescription(words.join(QStringLiteral(", ")));
}

void View::reset()
{
    HTableView::reset();
    describeCurrent();
    const int previousRow = std::exchange(toldRow, -1);
    if (previousRow != -1)
        Q_EMIT currentChanged(-1, previousRow);
}

QModelIndexList View::selectedRows() const
{
    QModelIndexList indexes = HTableView::selectedRows();
    for (QModelIndex& index : indexes)
        index = proxy->mapToSource(index);
    return indexes;
}

void View::changeEvent(QEvent* event)
{
    HTableView::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        packages->setEnabled(isEnabled());
}

void View::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex current = currentIndex();
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier &&
        current.isValid()) {
        handleActivated(current.sibling(current.row(), ColumnAction));
        event->accept();
        return;
    }
    HTableView::keyPressEvent(event);
}

void View::resizeColumnsToContents()
{
    const bool filtering = proxy->getFilter();
    proxy->setFilter(false);
    HTableView::resizeColumnsToContents();
    proxy->setFilter(filtering);
}

void View::describe()
{
    packages->describe(proxy->mapToSource(currentIndex()), this);
}

} // namespace PackageTable
