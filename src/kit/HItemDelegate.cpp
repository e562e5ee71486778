// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HItemDelegate.h"

#include "kit/Colors.h"

#include <limits>

namespace
{

/// What size hints take for an unbounded line: the most that text layout counts to.
constexpr int unbounded = std::numeric_limits<int>::max() / 256;

} // namespace

HItemDelegate::HItemDelegate(QObject* parent)
    : QItemDelegate(parent)
{
}

void HItemDelegate::drawDisplay(QPainter* painter, const QStyleOptionViewItem& option,
                                const QRect& rect, const QString& text) const
{
    QStyleOptionViewItem unwrapped(option);
    unwrapped.features &= ~QStyleOptionViewItem::WrapText;
    // A disabled text is meant to fade.
    if (option.state & QStyle::State_Enabled) {
        const auto group =
            option.state & QStyle::State_Active ? QPalette::Normal : QPalette::Inactive;
        const QColor given = option.palette.color(group, QPalette::Text);
        const QColor shown = Colors::readable(given, option.palette.color(group, QPalette::Base));
        if (shown != given)
            unwrapped.palette.setColor(group, QPalette::Text, shown);
    }
    QItemDelegate::drawDisplay(painter, unwrapped, rect, text);
}

int HItemDelegate::textWidth(const QFont& font, const QString& text) const
{
    const QRect line(0, 0, unbounded, 0);
    return textRectangle(nullptr, line, font, text).width() -
           textRectangle(nullptr, line, font, QString()).width();
}
