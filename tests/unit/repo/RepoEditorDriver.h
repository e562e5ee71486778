// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/RepoEditorDialog.h"
#include "repo/RepoEditorModel.h"
#include "repo/RepoEditorView.h"

#include <QPushButton>
#include <QTest>
#include <QWindow>

/// Works the repository editor as a user does, by what is on the screen: rows are named by their
/// identifiers.
class RepoEditorDriver
{
public:
    explicit RepoEditorDriver(RepoEditor::Dialog* dialog)
        : dialog(dialog)
        , view(dialog->findChild<RepoEditor::View*>())
    {
    }

    QPushButton* button(const QString& text) const
    {
        for (QPushButton* button :
             dialog->findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (button->text() == text)
                return button;
        }
        QTest::qFail(qPrintable("no button " + text), __FILE__, __LINE__);
        return nullptr;
    }
    bool isEnabled(const QString& text) const { return button(text)->isEnabled(); }
    void press(const QString& text) const
    {
        if (!isEnabled(text))
            QTest::qFail(qPrintable(text + " is disabled"), __FILE__, __LINE__);
        QTest::mouseClick(button(text), Qt::LeftButton);
    }

    QModelIndex cell(const QString& id, int column) const
    {
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            if (view->model()->index(row, RepoEditor::ColumnId).data() == id)
                return view->model()->index(row, column);
        }
        QTest::qFail(qPrintable("no row " + id), __FILE__, __LINE__);
        return QModelIndex();
    }
    QPoint at(const QString& id, int column) const
    {
        view->scrollTo(cell(id, column));
        return view->visualRect(cell(id, column)).center();
    }
    void click(const QString& id, int column = RepoEditor::ColumnId,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, at(id, column));
    }
    /// Through the window system, which tells a double click from two.
    void doubleClick(const QString& id, int column = RepoEditor::ColumnId) const
    {
        QTest::mouseDClick(dialog->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                           view->viewport()->mapTo(dialog, at(id, column)));
    }

    /// The identifiers from top to bottom.
    QStringList listed() const
    {
        QStringList ids;
        for (int row = 0; row < view->model()->rowCount(); ++row)
            ids += view->model()->index(row, RepoEditor::ColumnId).data().toString();
        return ids;
    }
    /// The identifiers of the selected rows, sorted.
    QStringList selected() const
    {
        QStringList ids;
        for (const QModelIndex& index : view->selectionModel()->selectedRows(RepoEditor::ColumnId))
            ids += index.data().toString();
        ids.sort();
        return ids;
    }

    RepoEditor::Dialog* const dialog;
    RepoEditor::View* const view;
};
