// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QPoint>
#include <QStringList>
#include <Qt>

class QWidget;

/// A hand on the mouse and the keyboard of the display. What it does comes to the process by the X
/// server and the window manager, in its order, when events are processed next.
namespace Hand
{

void click(const QWidget* widget, const QPoint& position, Qt::MouseButton button = Qt::LeftButton,
           int times = 1);
/// In the middle.
void click(const QWidget* widget);
/// Keys by their names on X, such as "ctrl+e" and "Tab".
void press(const QStringList& keys);
void type(const QString& text);

} // namespace Hand
