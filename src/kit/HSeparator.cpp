// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HSeparator.h"

#include <QPainter>

#include <cmath>

HSeparator::HSeparator(QWidget* parent)
    : QFrame(parent)
{
    setFrameShape(QFrame::HLine);
    setFrameShadow(QFrame::Sunken);
}

void HSeparator::paintEvent(QPaintEvent* event)
{
    const qreal scale = devicePixelRatioF();
    if (qFuzzyCompare(scale, std::round(scale))) {
        QFrame::paintEvent(event);
        return;
    }
    // Where a point isn't a whole number of pixels, the light line is drawn over the dark one, and
    // nothing is left to see. Areas are rounded to whole pixels and keep to themselves.
    QPainter painter(this);
    const int middle = height() / 2;
    painter.fillRect(0, middle - 1, width(), 1, palette().dark());
    painter.fillRect(0, middle, width(), 1, palette().light());
}
