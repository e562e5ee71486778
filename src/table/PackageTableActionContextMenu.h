// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"

#include <QIcon>
#include <QMenu>
#include <QModelIndex>

namespace PackageTable
{

class Model;
class View;

/// Sets the action of the selected rows, or of the row under the pointer where none is selected.
class ActionContextMenu : public QMenu
{
    Q_OBJECT

public:
    ActionContextMenu(Model* model, View* view);

    /// Pops up at a global position; returns when the menu is gone. The index is one of the
    /// model's.
    void exec(QModelIndex index, const QPoint& position);

private Q_SLOTS:
    void handleUpdateAction();
    void handleInstallAction();
    void handleRemoveAction();
    void handleNoneAction();

private:
    void handleAction(Package::Action action);

    QIcon emptyIcon;
    QIcon updateIcon, installIcon, removeIcon;
    QAction* updateAction;
    QAction* installAction;
    QAction* removeAction;
    QAction* noneAction;
    Model* model;
    View* view;
    QModelIndex index;
};

} // namespace PackageTable
