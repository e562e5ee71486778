// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HMenu.h"

#include <QAction>
#include <QHelpEvent>
#include <QMenuBar>
#include <QToolTip>

namespace
{

/// The action that the pointer or the keyboard is on, in `menu` or the deepest submenu open from
/// it.
const QAction* deepestActiveAction(const QMenu* menu)
{
    const QAction* deepest = nullptr;
    while (menu) {
        const QAction* action = menu->activeAction();
        if (!action)
            break;
        deepest = action;
        menu = action->menu();
    }
    return deepest;
}

} // namespace

HMenu::HMenu(const QString& title, QMenuBar* parent)
    : QMenu(title, parent)
{
    setTearOffEnabled(true);
}

bool HMenu::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const QAction* action = deepestActiveAction(this);
        if (action && !action->toolTip().isEmpty()) {
            // Qt makes up a tool tip from the text of an action that has none.
            QString text = action->text();
            text.remove(QLatin1String("..."));
            text.remove(QLatin1Char('&'));
            if (action->toolTip() != text)
                QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), action->toolTip());
        }
    }
    return QMenu::event(event);
}
