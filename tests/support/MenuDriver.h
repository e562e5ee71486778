// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QStringList>
#include <QTest>
#include <QTimer>

/// Plays the user in front of the next popup menu; fails the test if none comes.
class MenuDriver
{
public:
    /// Chooses the item of this text with the mouse, or sends the menu away if there is none.
    explicit MenuDriver(const QString& choice = QString())
        : choice(choice)
    {
        QObject::connect(&timer, &QTimer::timeout, [this] { meet(); });
        timer.start(5);
    }
    ~MenuDriver()
    {
        if (!met)
            QTest::qFail("no menu came up", __FILE__, __LINE__);
    }
    MenuDriver(const MenuDriver&) = delete;
    MenuDriver& operator=(const MenuDriver&) = delete;

    /// The visible items; those that can't be chosen are in parentheses.
    QStringList items;
    QPoint position; ///< of the menu, global

private:
    void meet()
    {
        const QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu || met)
            return;
        met = true;
        timer.stop();
        position = menu->pos();
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions()) {
            if (!action->isVisible())
                continue;
            items += action->isEnabled() ? action->text() : '(' + action->text() + ')';
            if (action->text() == choice)
                chosen = action;
        }
        if (chosen && chosen->isEnabled())
            QTest::mouseClick(menu.data(), Qt::LeftButton, Qt::NoModifier,
                              menu->actionGeometry(chosen).center());
        else
            QTest::keyClick(menu.data(), Qt::Key_Escape);
        if (menu && menu->isVisible()) {
            QTest::qFail("the menu stays", __FILE__, __LINE__);
            menu->close();
        }
    }

    QTimer timer;
    QString choice;
    bool met = false;
};
