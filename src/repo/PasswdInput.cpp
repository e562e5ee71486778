// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/PasswdInput.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QRegularExpressionMatch>
#include <QStyle>
#include <QWidget>

PasswdInput::Change PasswdInput::change(const QString& before, const QString& after, int cursor)
{
    const int shorter = qMin(before.size(), after.size());
    int head = 0;
    while (head < shorter && before.at(head) == after.at(head))
        ++head;
    int tail = 0;
    while (tail < shorter &&
           before.at(before.size() - 1 - tail) == after.at(after.size() - 1 - tail))
        ++tail;
    if (head + tail > shorter) {
        tail = qBound(shorter - head, after.size() - cursor, tail);
        head = shorter - tail;
    }
    return {head, before.size() - head - tail, after.mid(head, after.size() - head - tail)};
}

void PasswdInput::mask(QString& text, const QRegularExpressionMatch& match, const QWidget* widget)
{
    const QChar hidden(
        widget->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, widget));
    for (int i = 1; i <= match.lastCapturedIndex(); ++i) {
        const int length = match.capturedLength(i);
        if (length > 0)
            text.replace(match.capturedStart(i), length, QString(length, hidden));
    }
}

bool PasswdInput::isTyped(const QKeyEvent* key)
{
    // Alt with Ctrl is how some keyboards reach a third character; Alt alone is up to the widget.
    const Qt::KeyboardModifiers modifiers = key->modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::ControlModifier || modifiers == (Qt::ControlModifier | Qt::ShiftModifier))
        return false;
    const QString text = key->text();
    return !text.isEmpty() && (text.at(0).isPrint() || text.at(0).isSurrogate() ||
                               text.at(0).category() == QChar::Other_Format);
}

bool PasswdInput::isOfHistory(const QKeyEvent* key)
{
    return key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo);
}

bool PasswdInput::isForTheVisible(const QKeyEvent* key)
{
    for (const QKeySequence::StandardKey standard :
         {QKeySequence::Copy, QKeySequence::Cut, QKeySequence::DeleteEndOfLine,
          QKeySequence::DeleteCompleteLine, QKeySequence::DeleteStartOfWord,
          QKeySequence::DeleteEndOfWord})
        if (key->matches(standard))
            return true;
    return false;
}

void PasswdInput::hideFromAssistiveTools(QWidget* twin)
{
    // Kept, and deleted with the widget, by Qt.
    QAccessible::registerAccessibleInterface(new QAccessibleWidget(twin, QAccessible::NoRole));
}
