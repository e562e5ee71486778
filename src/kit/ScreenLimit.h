// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QSize>

class QWidget;

namespace ScreenLimit
{

/// The largest size that a window of `widget` plans for by itself, in pixels: nine tenths of the
/// width and of the height of the screen that the widget is on.
QSize of(const QWidget* widget);

/// The size that suits a window: its hint, within the limit, but never less than it needs.
QSize windowSize(const QWidget* window);

} // namespace ScreenLimit
