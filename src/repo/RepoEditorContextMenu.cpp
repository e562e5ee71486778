// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorContextMenu.h"

#include "repo/RepoEditorModel.h"

namespace RepoEditor
{

ContextMenu::ContextMenu(Model* model, QWidget* view)
    : editAction(addAction(tr("Edit")))
    , browseAction(addAction(tr("Browse Repository")))
    , model(model)
    , view(view)
{
    connect(editAction, &QAction::triggered, this, [this] {
        if (index.isValid())
            Q_EMIT edit(index);
    });
    connect(browseAction, &QAction::triggered, this,
            [this] { this->model->browse(index, this->view); });
}

void ContextMenu::exec(QModelIndex index, const QPoint& position)
{
    this->index = index;
    editAction->setEnabled(index.isValid());
    browseAction->setEnabled(index.isValid());
    QMenu::exec(position);
}

} // namespace RepoEditor
