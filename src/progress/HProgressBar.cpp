// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/HProgressBar.h"

#include <QHelpEvent>

HProgressBar::HProgressBar(QWidget* parent)
    : QProgressBar(parent)
{
}

void HProgressBar::setActivity(const QString& activity)
{
    if (this->activity == activity)
        return;
    this->activity = activity;
    update();
}

QString HProgressBar::text() const
{
    const QString base = QProgressBar::text();
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
