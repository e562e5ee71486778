// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QItemDelegate>

/// An item delegate that never wraps a cell's text.
class HItemDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    explicit HItemDelegate(QObject* parent);

    void drawDisplay(QPainter* painter, const QStyleOptionViewItem& option, const QRect& rect,
                     const QString& text) const override;

    /// The width of `text` in pixels as the size hints count it, margins left out.
    int textWidth(const QFont& font, const QString& text) const;
};
