// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HTableView.h"

#include <memory>

namespace PackageTable
{

class ActionContextMenu;
class Model;
class OtherContextMenu;
class SortFilterProxyModel;

/// The table of packages. Turns clicks into actions, and offers the context menus. Rows that it
/// speaks of are rows of the model, never of the proxy.
class View : public HTableView
{
    Q_OBJECT

public:
    /// Owns neither model; the proxy must have the model as its source.
    View(Model* model, SortFilterProxyModel* proxy, QWidget* parent = nullptr);
    ~View() override;

    /// Indexes of the model, one for each selected row.
    QModelIndexList selectedRows() const;

Q_SIGNALS:
    /// Rows of the model, -1 for none.
    void currentChanged(int currentRow, int previousRow);
    /// An action may have changed: on one row of the model, or anywhere if -1.
    void stateChanged(int row);

public Q_SLOTS:
    /// Makes the columns wide enough for all rows, listed or not.
    void resizeColumnsToContents();
    /// Describes the current row.
    void describe();
    /// Nothing is current after a reset, which is told like any other change of the current row.
    void reset() override;

protected Q_SLOTS:
    void handleHorizontalHeaderClicked(int column);
    void handleActivated(QModelIndex ix);
    void handleCustomContextMenuRequested(QPoint pos);
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void describeCurrent();

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Model* packages;
    SortFilterProxyModel* proxy;
    int toldRow = -1;                              ///< the current row as the last signal told it
    std::unique_ptr<ActionContextMenu> actionMenu; ///< made when first needed
    std::unique_ptr<OtherContextMenu> otherMenu;   ///< made when first needed
};

} // namespace PackageTable
