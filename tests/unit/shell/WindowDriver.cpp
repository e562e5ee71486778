// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowDriver.h"

#include "kit/Application.h"
#include "log/LogWindow.h"
#include "table/PackageTable.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <QtTest>

namespace
{

char programName[] = "vok";

} // namespace

WindowDriver::WindowDriver()
{
    application = qApp;
    program = programName;
    QApplication::setQuitOnLastWindowClosed(false);
}

WindowDriver::~WindowDriver()
{
    delete made;
    takeBusyCursors();
}

MainWindow& WindowDriver::window()
{
    if (!made)
        made = new MainWindow(nullptr);
    return *made;
}

bool WindowDriver::start()
{
    window().show();
    return QTest::qWaitFor([this] { return ready(); }, 10000);
}

bool WindowDriver::ready()
{
    const auto* area = find<QWidget>("mainArea");
    return area->isVisible() && area->isEnabled();
}

QAction* WindowDriver::action(const QString& text)
{
    const auto actions = window().findChildren<QAction*>();
    for (QAction* action : actions) {
        if (action->text().remove(QLatin1Char('&')) == text)
            return action;
    }
    return nullptr;
}

void WindowDriver::click(const char* button)
{
    QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
}

void WindowDriver::filter(const QString& pattern)
{
    auto* edit = find<QLineEdit>("regexp");
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, pattern);
    QTest::keyClick(edit, Qt::Key_Return);
}

void WindowDriver::select(const char* comboBox, int index)
{
    find<QComboBox>(comboBox)->setCurrentIndex(index);
}

void WindowDriver::check(const char* checkBox, bool on)
{
    find<QCheckBox>(checkBox)->setChecked(on);
}

QTableView* WindowDriver::table()
{
    return find<QTableView>("packages");
}

QAbstractItemModel* WindowDriver::model()
{
    return qobject_cast<QSortFilterProxyModel*>(table()->model())->sourceModel();
}

QStringList WindowDriver::listed()
{
    QStringList names;
    const QAbstractItemModel* rows = table()->model();
    for (int row = 0; row < rows->rowCount(); ++row)
        names << rows->index(row, PackageTable::ColumnName).data().toString();
    names.sort();
    return names;
}

Package::Entry* WindowDriver::entry(const QString& name)
{
    const QAbstractItemModel* rows = model();
    for (int row = 0; row < rows->rowCount(); ++row) {
        const QModelIndex index = rows->index(row, PackageTable::ColumnName);
        if (index.data().toString() == name)
            return index.data(Qt::UserRole).value<Package::Entry*>();
    }
    return nullptr;
}

QModelIndex WindowDriver::cell(const QString& name, int column)
{
    const QAbstractItemModel* rows = table()->model();
    for (int row = 0; row < rows->rowCount(); ++row) {
        if (rows->index(row, PackageTable::ColumnName).data().toString() == name)
            return rows->index(row, column);
    }
    return QModelIndex();
}

bool WindowDriver::clickAction(const QString& name)
{
    const QModelIndex index = cell(name, PackageTable::ColumnAction);
    if (!index.isValid())
        return false;
    table()->scrollTo(index);
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      table()->visualRect(index).center());
    return true;
}

QStringList WindowDriver::chooseFromMenu(const QModelIndex& cell, const QString& choice)
{
    QStringList enabled;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        look.stop();
        const auto actions = menu->actions();
        for (QAction* action : actions) {
            if (!action->isEnabled() || !action->isVisible())
                continue;
            enabled << action->text().remove(QLatin1Char('&'));
            if (enabled.last() == choice)
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                  menu->actionGeometry(action).center());
        }
        menu->close();
    });
    look.start(20);
    table()->scrollTo(cell);
    const QPoint position = table()->visualRect(cell).center();
    QTest::mousePress(table()->viewport(), Qt::RightButton, Qt::NoModifier, position);
    QContextMenuEvent event(QContextMenuEvent::Mouse, position,
                            table()->viewport()->mapToGlobal(position));
    QApplication::sendEvent(table()->viewport(), &event);
    QTest::mouseRelease(table()->viewport(), Qt::RightButton, Qt::NoModifier, position);
    return enabled;
}

QWidget* WindowDriver::logWindow()
{
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget* widget : widgets) {
        if (qobject_cast<Log::Window*>(widget) && widget->isVisible())
            return widget;
    }
    return nullptr;
}

QString WindowDriver::logText()
{
    return logWindow()->findChild<QTextEdit*>()->toPlainText();
}

int WindowDriver::takeBusyCursors()
{
    int count = 0;
    for (; QApplication::overrideCursor(); ++count)
        QApplication::restoreOverrideCursor();
    return count;
}
