// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QMenu>
#include <QPersistentModelIndex>

namespace RepoEditor
{

class Model;

/// Edits or browses the repository under the pointer.
class ContextMenu : public QMenu
{
    Q_OBJECT

public:
    /// `view` is the parent of what the menu shows.
    ContextMenu(Model* model, QWidget* view);

    /// Pops up at a global position; returns when the menu is gone. The index is one of the
    /// model's, or invalid where the pointer is over no repository.
    void exec(QModelIndex index, const QPoint& position);

Q_SIGNALS:
    /// The user wants to edit the row, which exists.
    void edit(QModelIndex index);

private:
    QAction* editAction;
    QAction* browseAction;
    Model* model;
    QWidget* view;
    QPersistentModelIndex index;
};

} // namespace RepoEditor
