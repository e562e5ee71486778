// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "WindowLife.h"

#include <functional>

class QAction;
class QMenu;
class QTableView;

/// Leads a person through every window, dialog and menu of the program, in the language that is
/// installed.
class EveryWindow
{
public:
    /// Sees a window as it stands open; the name says in English which it is.
    using Visit = std::function<void(QWidget* window, const QString& name)>;

    explicit EveryWindow(Visit visit);
    /// The whole round. False after a failure was reported.
    bool walk();
    /// The names in the order of the visits.
    QStringList visited;

private:
    void visit(QWidget* window, const QString& name);
    static QString text(const char* context, const char* english);
    QAction* menuItem(int menu, int item);
    /// Expects a dialog, visits it, works in it, and leaves it by Escape.
    void meet(const char* context, const char* title, const QString& name,
              std::function<void(QWidget*)> work = nullptr);
    void meetTitled(const QString& title, const QString& name,
                    std::function<void(QWidget*)> work = nullptr);
    void visitMenu(QTableView* table, const QModelIndex& cell, const QString& name);
    static void press(QWidget* window, const QString& button, int which = 0);
    void start();
    void description();
    void repositories();
    void messages();

    WindowLife life;
    Visit visitor;
};
