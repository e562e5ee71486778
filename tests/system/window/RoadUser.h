// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "WindowSession.h"

#include "unit/repo/RepoEditorDriver.h"

#include <QMap>

#include <functional>

/// A person who works on the repositories with the display's mouse and keyboard.
class RoadUser : public WindowSession
{
public:
    using WindowSession::WindowSession;

    /// Where the repositories are served.
    QByteArray url() const;
    /// The repository files and the main file: their texts behind their permissions, by their path
    /// in the root's /etc.
    QMap<QString, QByteArray> files() const;

    /// Waits until a window has the keyboard.
    static bool isActive(QWidget* window);
    /// Expects the repository editor, works there, and leaves it by a button.
    void expectEditor(std::function<void(const RepoEditorDriver&)> work,
                      const QString& leaveBy = QStringLiteral("OK"));
    /// Expects the editor of one repository, works there, and leaves it by a button.
    void expectEntry(std::function<void(QWidget*)> work,
                     const QString& leaveBy = QStringLiteral("OK"));
    /// Does what leads to one more dialog, out of a dialog, and waits until that has gone.
    bool meets(const std::function<void()>& action);
    /// Waits until the expected dialogs have come and what they led to is over.
    bool over();

    /// The rectangle of a cell of the packages is clicked.
    void clickCell(const QString& package, int column, Qt::MouseButton button = Qt::LeftButton);
    /// What the table's repository column has.
    QStringList repositories();
};
