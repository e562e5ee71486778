// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QMenu>
#include <QModelIndex>

namespace PackageTable
{

class Model;

/// Describes the row under the pointer, or browses its repository.
class OtherContextMenu : public QMenu
{
    Q_OBJECT

public:
    OtherContextMenu(Model* model, QWidget* view);

    /// Pops up at a global position; returns when the menu is gone. The index is one of the
    /// model's.
    void exec(QModelIndex index, const QPoint& position);

private Q_SLOTS:
    void handleDescribeAction();
    void handleBrowseAction();

private:
    QAction* describeAction;
    QAction* browseAction;
    Model* model;
    QWidget* view;
    QModelIndex index;
};

} // namespace PackageTable
