// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HTableView.h"

#include <memory>

class QSortFilterProxyModel;

namespace RepoEditor
{

class ContextMenu;
class Model;

/// The table of repositories. Rows that it speaks of are rows of the model, never of the proxy.
class View : public HTableView
{
    Q_OBJECT

public:
    /// Owns neither model; the proxy must have the model as its source.
    View(Model* model, QSortFilterProxyModel* proxy, QWidget* parent);
    ~View() override;

    /// -1 for none.
    int currentRow() const;
    /// Makes the row the current and the only selected one.
    void setCurrentRow(int row);
    /// Indexes of the model, one for each selected row.
    QModelIndexList selectedRows() const;

    ContextMenu* getContextMenu();

Q_SIGNALS:
    /// Rows of the model, -1 for none.
    void currentChanged(int current, int previous);
    /// The user double-clicked the row; an index of the model.
    void activated(const QModelIndex& index);

public Q_SLOTS:
    /// Nothing is current after a reset, which is told like any other change of the current row.
    void reset() override;

protected Q_SLOTS:
    void handleHorizontalHeaderClicked(int section);
    void handleClicked(const QModelIndex& index);
    void handleActivated(const QModelIndex& index);
    void handleCustomContextMenuRequested(const QPoint& pos);
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void describeCurrent();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Model* repositories;
    QSortFilterProxyModel* proxy;
    int toldRow = -1;                         ///< the current row as the last signal told it
    std::unique_ptr<ContextMenu> contextMenu; ///< made when first needed
};

} // namespace RepoEditor
