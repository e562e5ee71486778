// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HTextEdit.h"

#include "kit/ScreenLimit.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QTextCursor>

HTextEdit::HTextEdit(QWidget* parent)
    : QTextEdit(parent)
{
}

HTextEdit::HTextEdit(int columns, int rows, QWidget* parent)
    : QTextEdit(parent)
    , m_columns(columns)
    , m_rows(rows)
{
}

QSize HTextEdit::sizeHint() const
{
    QSize size = QTextEdit::sizeHint();
    const QFontMetrics metrics = fontMetrics();
    if (m_columns != -1)
        size.setWidth(2 * frameWidth() + m_columns * metrics.horizontalAdvance(QLatin1Char('n')));
    if (m_rows != -1)
        size.setHeight(2 * frameWidth() + m_rows * metrics.lineSpacing());
    return size.boundedTo(ScreenLimit::of(this));
}

void HTextEdit::focusOutEvent(QFocusEvent* event)
{
    // The context menu's parent is the viewport, not the edit itself.
    const QWidget* popup = QApplication::activePopupWidget();
    const bool own =
        popup && (popup->parentWidget() == this || popup->parentWidget() == viewport());
    if (event->reason() != Qt::PopupFocusReason && !own)
        Q_EMIT editingFinished();
    QTextEdit::focusOutEvent(event);
}

void HTextEdit::appendCompact(const QString& text)
{
    append(text);
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    cursor.movePosition(QTextCursor::End);
    QTextBlockFormat format = cursor.blockFormat();
    format.setTopMargin(0.0);
    format.setBottomMargin(0.0);
    cursor.setBlockFormat(format);
    cursor.endEditBlock();
}
