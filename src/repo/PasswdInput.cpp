// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/PasswdInput.h"

#include <QAccessibleWidget>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QRegularExpressionMatch>
#include <QStyle>
#include <QWidget>

namespace
{

/// Whether a key inserts its own text.
bool isTyped(const QKeyEvent* key)
{
    // Alt with Ctrl is how some keyboards reach a third character; Alt alone is up to the widget.
    const Qt::KeyboardModifiers modifiers = key->modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::ControlModifier || modifiers == (Qt::ControlModifier | Qt::ShiftModifier))
        return false;
    const QString text = key->text();
    return !text.isEmpty() && (text.at(0).isPrint() || text.at(0).isSurrogate() ||
                               text.at(0).category() == QChar::Other_Format);
}

/// Whether a key brings back text of the past, which only the twin knows.
bool isOfHistory(const QKeyEvent* key)
{
    return key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo);
}

/// Whether a key does something that a widget must not do by itself if it has the real text or
/// isn't on the screen: put text into the clipboard, or remove words or lines as they are seen.
bool isForTheVisible(const QKeyEvent* key)
{
    for (const QKeySequence::StandardKey standard :
         {QKeySequence::Copy, QKeySequence::Cut, QKeySequence::DeleteEndOfLine,
          QKeySequence::DeleteCompleteLine, QKeySequence::DeleteStartOfWord,
          QKeySequence::DeleteEndOfWord})
        if (key->matches(standard))
            return true;
    return false;
}

} // namespace

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

int PasswdInput::boundary(const QString& text, int position, int from)
{
    if (position <= 0 || position >= text.size() || !text.at(position).isLowSurrogate() ||
        !text.at(position - 1).isHighSurrogate())
        return position;
    return position < from ? position - 1 : position + 1;
}

QString PasswdInput::matchable(QString text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
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

bool PasswdInput::deliver(
    QEvent* event, const std::function<bool(QEvent*)>& deal,
    const std::function<QString(const QString& text, int length)>& maskedInsertion)
{
    const auto dealInstead = [&](QEvent& hidden) {
        const bool result = deal(&hidden);
        event->setAccepted(hidden.isAccepted());
        return result;
    };
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!isTyped(key))
            return deal(event);
        QKeyEvent hidden(QEvent::KeyPress, key->key(), key->modifiers(), key->nativeScanCode(),
                         key->nativeVirtualKey(), key->nativeModifiers(),
                         maskedInsertion(key->text(), key->text().size()), key->isAutoRepeat(),
                         static_cast<ushort>(key->count()));
        hidden.setTimestamp(key->timestamp());
        return dealInstead(hidden);
    }
    if (event->type() == QEvent::InputMethod) {
        const auto* input = static_cast<QInputMethodEvent*>(event);
        const QString preedit = input->preeditString();
        QInputMethodEvent hidden(maskedInsertion(input->commitString() + preedit, preedit.size()),
                                 input->attributes());
        hidden.setCommitString(input->commitString(), input->replacementStart(),
                               input->replacementLength());
        return dealInstead(hidden);
    }
    return deal(event);
}

bool PasswdInput::isForTheTwin(const QEvent* event, bool accepts, bool changed)
{
    switch (event->type()) {
    case QEvent::KeyRelease:
    case QEvent::Move:
    case QEvent::Resize:
        return true;
    case QEvent::KeyPress: {
        const auto* key = static_cast<const QKeyEvent*>(event);
        return accepts && (isTyped(key) || isOfHistory(key) || (changed && !isForTheVisible(key)));
    }
    default:
        return false;
    }
}

void PasswdInput::hideFromAssistiveTools(QWidget* twin)
{
    // Kept, and deleted with the widget, by Qt.
    QAccessible::registerAccessibleInterface(new QAccessibleWidget(twin, QAccessible::NoRole));
}
