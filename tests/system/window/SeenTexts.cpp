// SPDX-License-Identifier: GPL-2.0-or-later
#include "SeenTexts.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTextEdit>

namespace
{

/// Longer ones aren't kept as a whole.
constexpr int longest = 2000;

/// Only what is painted of a table that can't be used: for more it may ask a script that is at
/// work.
QStringList cells(const QAbstractItemModel* model, bool all)
{
    const QVector<int> roles =
        all ? QVector<int>{Qt::DisplayRole,   Qt::ToolTipRole,        Qt::EditRole,
                           Qt::StatusTipRole, Qt::AccessibleTextRole, Qt::AccessibleDescriptionRole}
            : QVector<int>{Qt::DisplayRole};
    QStringList found;
    for (int row = 0; row < model->rowCount(); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            for (int role : roles)
                found << model->index(row, column).data(role).toString();
        }
    }
    return found;
}

/// `alive`: whether more may be asked than what the widget itself knows, which may be about to go.
QStringList textsOf(const QWidget* widget, bool alive)
{
    QStringList found{widget->windowTitle(),    widget->windowIconText(),
                      widget->toolTip(),        widget->statusTip(),
                      widget->whatsThis(),      widget->accessibleName(),
                      widget->windowFilePath(), widget->accessibleDescription()};
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        found << label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        found << button->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(widget))
        found << group->title();
    if (const auto* line = qobject_cast<const QLineEdit*>(widget))
        found << line->displayText() << line->placeholderText();
    if (const auto* edit = qobject_cast<const QTextEdit*>(widget))
        found << edit->toPlainText();
    if (const auto* edit = qobject_cast<const QPlainTextEdit*>(widget))
        found << edit->toPlainText();
    if (const auto* bar = qobject_cast<const QProgressBar*>(widget))
        found << bar->text();
    if (const auto* box = qobject_cast<const QComboBox*>(widget))
        found << cells(box->model(), true);
    if (const auto* view = qobject_cast<const QAbstractItemView*>(widget)) {
        if (view->model() && !qobject_cast<const QHeaderView*>(widget))
            found << cells(view->model(), view->isEnabled());
    }
    if (const auto* box = qobject_cast<const QMessageBox*>(widget))
        found << box->text() << box->informativeText() << box->detailedText();
    const auto actions = widget->actions();
    for (const QAction* action : actions)
        found << action->text() << action->toolTip() << action->statusTip();
    auto* told =
        alive ? QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget)) : nullptr;
    if (told) {
        for (QAccessible::Text text :
             {QAccessible::Name, QAccessible::Description, QAccessible::Value, QAccessible::Help})
            found << told->text(text);
    }
    return found;
}

} // namespace

SeenTexts::SeenTexts(const QStringList& words)
    : words(words)
{
    qApp->installEventFilter(this);
}

bool SeenTexts::eventFilter(QObject* watched, QEvent* event)
{
    if (!watched->isWidgetType())
        return false;
    const auto* widget = static_cast<const QWidget*>(watched);
    switch (event->type()) {
    case QEvent::Paint:
        look(widget);
        // What is painted there is often of the widget around it.
        if (widget->parentWidget())
            look(widget->parentWidget());
        break;
    case QEvent::Show:
    case QEvent::Hide: {
        const bool alive = event->type() == QEvent::Show;
        if (widget->isWindow()) {
            const auto children = widget->findChildren<QWidget*>();
            for (const QWidget* child : children)
                look(child, alive);
        }
        look(widget, alive);
        break;
    }
    case QEvent::ToolTipChange:
    case QEvent::ToolTip:
    case QEvent::WindowTitleChange:
    case QEvent::StatusTip:
        look(widget);
        break;
    default:
        break;
    }
    return false;
}

void SeenTexts::look(const QWidget* widget, bool alive)
{
    const QStringList found = textsOf(widget, alive);
    for (const QString& text : found) {
        if (text.size() <= longest) {
            if (texts.contains(text))
                continue;
            texts << text;
        }
        for (const QString& word : words) {
            if (text.contains(word))
                guilty << QLatin1String(widget->metaObject()->className()) + QStringLiteral(": ") +
                              text;
        }
    }
}
