// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"
#include "shell/MainWindow.h"
#include "support/DialogDriver.h"

#include <QAbstractItemModel>
#include <QJsonObject>
#include <QPointer>
#include <QStringList>
#include <QTemporaryDir>

class QAction;
class QTableView;

/// A main window over the double of the script, from its construction to its end, with a share
/// directory and a system root of its own. A modal window that the test doesn't expect fails the
/// test.
class WindowLife
{
public:
    WindowLife();
    ~WindowLife();

    /// What the double plays from its next start or collection on. A first system is there already.
    QJsonObject system;
    void play();

    QString sharePath(const QString& path) const { return share.filePath(path); }
    QString rootPath(const QString& path) const { return root.filePath(path); }
    /// Makes the folders that it needs.
    static void writeFile(const QString& path, const QByteArray& text, bool executable = false);
    /// The script is this text instead of the double.
    void useScript(const QByteArray& text);

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
    /// Clicks the Action cell of a listed package.
    bool clickAction(const QString& name);

    /// Names of the methods that the program has called on the double since the last call of this.
    QStringList calls();
    /// Takes all busy cursors off and counts them.
    static int takeBusyCursors();

    DialogDriver dialogs;

private:
    QTemporaryDir share;
    QTemporaryDir root;
    QPointer<MainWindow> made;
};
