// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableActionContextMenu.h"

#include "kit/Share.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableView.h"

#include <QItemSelectionModel>

namespace PackageTable
{

ActionContextMenu::ActionContextMenu(Model* model, View* view)
    : updateIcon(Share::absolute(QStringLiteral("icons/update.png")))
    , installIcon(Share::absolute(QStringLiteral("icons/install.png")))
    , removeIcon(Share::absolute(QStringLiteral("icons/remove.png")))
    , updateAction(addAction(updateIcon, tr("&Update")))
    , installAction(addAction(installIcon, tr("&Install")))
    , removeAction(addAction(removeIcon, tr("&Remove")))
    , noneAction(addAction(emptyIcon, tr("&No Action")))
    , model(model)
    , view(view)
{
    connect(updateAction, &QAction::triggered, this, &ActionContextMenu::handleUpdateAction);
    connect(installAction, &QAction::triggered, this, &ActionContextMenu::handleInstallAction);
    connect(removeAction, &QAction::triggered, this, &ActionContextMenu::handleRemoveAction);
    connect(noneAction, &QAction::triggered, this, &ActionContextMenu::handleNoneAction);
}

/// Whether a package in this state can be given the action.
static bool isAllowed(Package::State state, Package::Action action)
{
    if (action == Package::ActionNone)
        return true;
    switch (state) {
    case Package::StateUpdatable:
        return action == Package::ActionUpdate || action == Package::ActionRemove;
    case Package::StateInstallable:
        return action == Package::ActionInstall;
    case Package::StateInstalled:
        return action == Package::ActionRemove;
    }
    return false;
}

void ActionContextMenu::exec(QModelIndex index, const QPoint& position)
{
    this->index = index;

    QModelIndexList rows{index};
    if (view->selectionModel()->hasSelection())
        rows = view->selectedRows();

    bool update = false;
    bool install = false;
    bool remove = false;
    for (const QModelIndex& row : qAsConst(rows)) {
        const Package::State state = model->getState(row.row());
        update = update || isAllowed(state, Package::ActionUpdate);
        install = install || isAllowed(state, Package::ActionInstall);
        remove = remove || isAllowed(state, Package::ActionRemove);
    }
    updateAction->setEnabled(update);
    installAction->setEnabled(install);
    removeAction->setEnabled(remove);

    QMenu::exec(position);
}

void ActionContextMenu::handleUpdateAction()
{
    handleAction(Package::ActionUpdate);
}

void ActionContextMenu::handleInstallAction()
{
    handleAction(Package::ActionInstall);
}

void ActionContextMenu::handleRemoveAction()
{
    handleAction(Package::ActionRemove);
}

void ActionContextMenu::handleNoneAction()
{
    handleAction(Package::ActionNone);
}

void ActionContextMenu::handleAction(Package::Action action)
{
    if (!view->selectionModel()->hasSelection()) {
        model->setAction(index, action);
        return;
    }
    const QModelIndexList rows = view->selectedRows();
    for (const QModelIndex& row : rows) {
        if (isAllowed(model->getState(row.row()), action))
            model->setAction(row, action);
    }
}

} // namespace PackageTable
