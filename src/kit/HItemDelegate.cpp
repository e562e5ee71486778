// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HItemDelegate.h"

HItemDelegate::HItemDelegate(QObject* parent)
    : QItemDelegate(parent)
{
}

void HItemDelegate::drawDisplay(QPainter* painter, const QStyleOptionViewItem& option,
                                const QRect& rect, const QString& text) const
{
    QStyleOptionViewItem unwrapped(option);
    unwrapped.features &= ~QStyleOptionViewItem::WrapText;
    QItemDelegate::drawDisplay(painter, unwrapped, rect, text);
}
