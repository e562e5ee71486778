// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableOtherContextMenu.h"

#include "table/PackageTable.h"
#include "table/PackageTableModel.h"

namespace PackageTable
{

OtherContextMenu::OtherContextMenu(Model* model, QWidget* view)
    : describeAction(addAction(tr("&Describe")))
    , browseAction(addAction(tr("Browse Repository")))
    , model(model)
    , view(view)
{
    connect(describeAction, &QAction::triggered, this, &OtherContextMenu::handleDescribeAction);
    connect(browseAction, &QAction::triggered, this, &OtherContextMenu::handleBrowseAction);
}

void OtherContextMenu::exec(QModelIndex index, const QPoint& position)
{
    this->index = index;
    browseAction->setVisible(index.column() == ColumnRepository);
    QMenu::exec(position);
}

void OtherContextMenu::handleDescribeAction()
{
    model->describe(index, view);
}

void OtherContextMenu::handleBrowseAction()
{
    model->browse(index, view);
}

} // namespace PackageTable
