// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorView.h"

#include "repo/RepoEditorContextMenu.h"
#include "repo/RepoEditorModel.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QSortFilterProxyModel>

#include <limits>
#include <utility>

namespace RepoEditor
{

View::View(Model* model, QSortFilterProxyModel* proxy, QWidget* parent)
    : HTableView(QStyleOptionViewItem::Left, 1, std::numeric_limits<int>::max(), parent)
    , repositories(model)
    , proxy(proxy)
{
    setAccessibleName(tr("Repositories"));
    setModel(proxy);
    setShowGrid(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAlternatingRowColors(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setTabKeyNavigation(false);
    verticalHeader()->hide();

    auto* header = new QHeaderView(Qt::Horizontal, this);
    header->setStretchLastSection(true);
    header->setSectionsMovable(true);
    header->setSectionsClickable(true);
    setHorizontalHeader(header);

    connect(header, &QHeaderView::sectionClicked, this, &View::handleHorizontalHeaderClicked);
    connect(this, &QAbstractItemView::clicked, this, &View::handleClicked);
    connect(this, &QAbstractItemView::doubleClicked, this, &View::handleActivated);
    connect(proxy, &QAbstractItemModel::dataChanged, this, &View::describeCurrent);
    connect(this, &QWidget::customContextMenuRequested, this,
            &View::handleCustomContextMenuRequested);
}

View::~View() = default;

int View::currentRow() const
{
    return proxy->mapToSource(currentIndex()).row();
}

void View::setCurrentRow(int row)
{
    setCurrentIndex(proxy->mapFromSource(repositories->createIndex(row)));
}

QModelIndexList View::selectedRows() const
{
    QModelIndexList indexes = HTableView::selectedRows();
    for (QModelIndex& index : indexes)
        index = proxy->mapToSource(index);
    return indexes;
}

ContextMenu* View::getContextMenu()
{
    if (!contextMenu)
        contextMenu = std::make_unique<ContextMenu>(repositories, this);
    return contextMenu.get();
}

void View::handleHorizontalHeaderClicked(int section)
{
    HTableView::sortByColumn(section);
    proxy->setFilterKeyColumn(section);
}

void View::handleClicked(const QModelIndex& index)
{
    const QModelIndex sourceIndex = proxy->mapToSource(index);
    if (sourceIndex.column() == ColumnUse)
        repositories->toggleUse(sourceIndex);
    else if (sourceIndex.column() == ColumnEnabled)
        repositories->toggleEnabled(sourceIndex);
}

void View::handleActivated(const QModelIndex& index)
{
    Q_EMIT activated(proxy->mapToSource(index));
}

void View::handleCustomContextMenuRequested(const QPoint& pos)
{
    const QModelIndex sourceIndex = proxy->mapToSource(indexAt(pos));
    if (sourceIndex.column() != ColumnUse && sourceIndex.column() != ColumnEnabled)
        getContextMenu()->exec(sourceIndex, viewport()->mapToGlobal(pos));
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
    // The checks are pictures, which a screen reader can't tell.
    setAccessibleDescription(repositories->checks(proxy->mapToSource(currentIndex())));
}

void View::reset()
{
    HTableView::reset();
    describeCurrent();
    const int previousRow = std::exchange(toldRow, -1);
    if (previousRow != -1)
        Q_EMIT currentChanged(-1, previousRow);
}

void View::focusInEvent(QFocusEvent* event)
{
    const bool hadCurrent = currentIndex().isValid();
    HTableView::focusInEvent(event);
    // The base makes the first row current, which looks as if none were: it isn't selected.
    if (!hadCurrent && !selectionModel()->hasSelection())
        selectionModel()->clearCurrentIndex();
}

void View::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex current = currentIndex();
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier &&
        (current.column() == ColumnUse || current.column() == ColumnEnabled)) {
        handleClicked(current);
        event->accept();
        return;
    }
    HTableView::keyPressEvent(event);
}

} // namespace RepoEditor
