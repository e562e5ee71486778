// SPDX-License-Identifier: GPL-2.0-or-later
#include "Hand.h"

#include "Sandbox.h"

#include <QWidget>
#include <QtTest>

namespace
{

void move(const QStringList& arguments)
{
    QCOMPARE(SandboxRoot::run(QStringLiteral("xdotool"), arguments), 0);
}

} // namespace

void Hand::click(const QWidget* widget, const QPoint& position, Qt::MouseButton button, int times)
{
    // A window that grows, as it does for a message, moves its buttons.
    QPoint point;
    do {
        point = widget->mapToGlobal(position);
        QTest::qWait(50);
    } while (widget->mapToGlobal(position) != point);
    move({QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y()),
          QStringLiteral("click"), QStringLiteral("--repeat"), QString::number(times),
          QStringLiteral("--delay"), QStringLiteral("20"),
          button == Qt::RightButton ? QStringLiteral("3") : QStringLiteral("1")});
}

void Hand::click(const QWidget* widget)
{
    click(widget, widget->rect().center());
}

void Hand::press(const QStringList& keys)
{
    move(QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("20")} +
         keys);
}

void Hand::type(const QString& text)
{
    move({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("5"), text});
}
