// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/HProgressBar.h"

#include <QHelpEvent>
#include <QTimerEvent>

namespace
{

constexpr int paintPauseMsecs = 30;

} // namespace

HProgressBar::HProgressBar(QWidget* parent)
    : QProgressBar(parent)
{
}

void HProgressBar::setActivity(const QString& activity)
{
    if (this->activity == activity)
        return;
    this->activity = activity;
    paintSoon();
}

QString HProgressBar::text() const
{
    QString base = QProgressBar::text();
    if (activity.isEmpty())
        return base;
    if (base.isEmpty())
        return activity;
    // In one go, since the activity may hold a percent sign and a digit.
    return tr("%1 (%2)").arg(activity, base);
}

void HProgressBar::reset()
{
    activity.clear();
    QProgressBar::reset();
}

void HProgressBar::setMaximum(int maximum)
{
    if (maximum != this->maximum())
        quietly([&] { QProgressBar::setMaximum(maximum); });
}

void HProgressBar::setValue(int value)
{
    if (value != this->value())
        quietly([&] { QProgressBar::setValue(value); });
}

template<typename Change> void HProgressBar::quietly(Change change)
{
    const bool wasQuiet = testAttribute(Qt::WA_UpdatesDisabled);
    setAttribute(Qt::WA_UpdatesDisabled);
    change();
    setAttribute(Qt::WA_UpdatesDisabled, wasQuiet);
    paintSoon();
}

void HProgressBar::paintSoon()
{
    if (sincePaint.isActive()) {
        unpainted = true;
        return;
    }
    update();
    sincePaint.start(paintPauseMsecs, this);
}

void HProgressBar::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != sincePaint.timerId()) {
        QProgressBar::timerEvent(event);
        return;
    }
    sincePaint.stop();
    if (unpainted) {
        unpainted = false;
        paintSoon();
    }
}

bool HProgressBar::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip &&
        (window()->testAttribute(Qt::WA_AlwaysShowToolTips) || window()->isActiveWindow())) {
        Q_EMIT toolTip(static_cast<QHelpEvent*>(event)->pos());
        event->accept();
        return true;
    }
    return QWidget::event(event);
}
