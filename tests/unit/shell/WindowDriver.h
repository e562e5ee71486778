// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"
#include "shell/MainWindow.h"
#include "support/DialogDriver.h"

#include <QAbstractItemModel>
#include <QPointer>
#include <QStringList>

class QAction;
class QTableView;

/// Plays the user in front of a main window, from its construction to its end. A modal window that
/// the test doesn't expect fails the test.
class WindowDriver
{
public:
    WindowDriver();
    virtual ~WindowDriver();

    /// The window, made at the first call.
    MainWindow& window();
    /// Shows the window and waits until its controls can be used; false if that takes too long.
    bool start();
    /// Whether table and buttons are there and can be used.
    bool ready();

    template<typename Widget> Widget* find(const char* name)
    {
        return window().findChild<Widget*>(QLatin1String(name));
    }
    /// An action of the menus, by its text without "&".
    QAction* action(const QString& text);
    /// Presses a button of the main area with the mouse.
    void click(const char* button);
    /// Types a pattern and Return.
    void filter(const QString& pattern);
    void select(const char* comboBox, int index);
    void check(const char* checkBox, bool on);

    QTableView* table();
    QAbstractItemModel* model();
    /// Names of the listed packages, sorted.
    QStringList listed();
    Package::Entry* entry(const QString& name);
    /// A cell of a listed package, an index of the table's own model.
    QModelIndex cell(const QString& name, int column);
    /// Clicks the Action cell of a listed package.
    bool clickAction(const QString& name);

    /// Clicks a cell with the right button. Gives the texts of the enabled entries of the menu that
    /// pops up, without "&", and clicks `choice` there; closes the menu where that isn't offered.
    QStringList chooseFromMenu(const QModelIndex& cell, const QString& choice);

    /// The log window that is open, or null, and what it shows.
    QWidget* logWindow();
    QString logText();

    /// Takes all busy cursors off and counts them.
    static int takeBusyCursors();

    DialogDriver dialogs;

private:
    QPointer<MainWindow> made;
};
