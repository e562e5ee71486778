// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/ScreenLimit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

QSize ScreenLimit::of(const QWidget* widget)
{
    // A widget that was never shown belongs to no screen yet on some platforms.
    const QScreen* screen = widget->screen();
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    const QSize size = screen->geometry().size();
    return QSize(size.width() * 9 / 10, size.height() * 9 / 10);
}

QSize ScreenLimit::windowSize(const QWidget* window)
{
    const QSize size =
        window->sizeHint().boundedTo(of(window)).expandedTo(window->minimumSizeHint());
    // Where a point isn't a whole number of pixels, rounding may cost a window a point of what it
    // asks for, and that is enough to bring up scroll bars.
    const qreal scale = window->devicePixelRatioF();
    return qFuzzyCompare(scale, std::round(scale)) ? size : size + QSize(1, 1);
}
