// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HScrollArea.h"

#include "kit/ScreenLimit.h"

#include <QFontMetrics>
#include <QScrollBar>
#include <QStyle>

#include <limits>

namespace
{

constexpr int unbounded = std::numeric_limits<int>::max();

} // namespace

HScrollArea::HScrollArea(QWidget* parent)
    : HScrollArea(QSize(unbounded, unbounded), parent)
{
}

HScrollArea::HScrollArea(QSize maximum, QWidget* parent)
    : QScrollArea(parent)
    , m_maximum(maximum)
{
}

HScrollArea::HScrollArea(int columns, int rows, QWidget* parent)
    : QScrollArea(parent)
    , m_maximum(unbounded, unbounded)
{
    const QFontMetrics metrics = fontMetrics();
    if (columns != -1)
        m_maximum.setWidth(columns * metrics.horizontalAdvance(QLatin1Char('n')));
    if (rows != -1)
        m_maximum.setHeight(rows * metrics.height());
}

QSize HScrollArea::sizeHint() const
{
    if (!widget())
        return QScrollArea::sizeHint();
    const QSize hint = widget()->sizeHint();
    const int extra = 2 * frameWidth() + frameOnlyAroundContentsPixels();
    const QSize size(hint.width() + extra + verticalScrollBar()->sizeHint().width(),
                     hint.height() + extra + horizontalScrollBar()->sizeHint().height());
    return size.boundedTo(m_maximum).boundedTo(ScreenLimit::of(this));
}

void HScrollArea::forceResize()
{
    if (!widget())
        return;
    widget()->resize(widget()->sizeHint());
    updateGeometry();
    // The room that the area now gets may change what the widget wants.
    widget()->resize(widget()->sizeHint());
}

int HScrollArea::frameOnlyAroundContentsPixels() const
{
    if (!style()->styleHint(QStyle::SH_ScrollView_FrameOnlyAroundContents, nullptr, this))
        return 0;
    return 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
}
