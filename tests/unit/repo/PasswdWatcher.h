// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QAccessible>
#include <QApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>

/// Notes what a field would show each time it is painted.
class PasswdWatcher : public QObject
{
public:
    /// `canvas` is what paints the field, `text` gives what it would paint now.
    PasswdWatcher(QWidget* canvas, std::function<QString()> text)
        : text(std::move(text))
    {
        canvas->installEventFilter(this);
    }

    QStringList painted;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted.append(text());
        return false;
    }

private:
    std::function<QString()> text;
};

/// Draws the mouse over a field with its left button down.
inline void sweep(QWidget* canvas, QPoint from, QPoint to)
{
    const auto send = [canvas](QEvent::Type type, QPoint at, Qt::MouseButton button,
                               Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, canvas->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(canvas, &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

/// What assistive tools get from a field.
inline QString accessibleText(QWidget* field)
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(field);
    if (!interface || !interface->textInterface())
        return QStringLiteral("(no text)");
    QAccessibleTextInterface* text = interface->textInterface();
    return text->text(0, text->characterCount()) + QLatin1Char('|') +
           interface->text(QAccessible::Value);
}

/// Whether no widget but the one that is on the screen gives a text with `secret` in it to
/// assistive tools, or could tell them of a change of it: that needs a text interface.
inline bool isKeptFromAssistiveTools(const QString& secret)
{
    int hidden = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        const QVariant text = widget->property("text").isValid() ? widget->property("text")
                                                                 : widget->property("plainText");
        if (!text.toString().contains(secret))
            continue;
        ++hidden;
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
        if (!interface || interface->textInterface() || interface->editableTextInterface() ||
            interface->text(QAccessible::Value).contains(secret) ||
            interface->text(QAccessible::Name).contains(secret))
            return false;
    }
    return hidden == 1; // the twin
}
