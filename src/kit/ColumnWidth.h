// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/TextWidth.h"

#include <QModelIndex>
#include <QSet>
#include <QStyleOptionViewItem>

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class HItemDelegate;

/// Finds the widest size hint that an HItemDelegate gives for the cells of a column, without asking
/// it for each of them.
///
/// The hint of a cell depends on its decoration, check box, font and text alone, and for cells that
/// are alike in the first three it grows with the width of the text. So there is one question to
/// the delegate for each kind of cell, about the one with the widest text; and that one is found by
/// bounds of the texts' widths, with a true measurement only where these don't decide.
class ColumnWidth
{
public:
    /// `delegate` is not owned. What was learnt of fonts is kept for further columns; the object is
    /// not to outlive a change of font, style or screen.
    ColumnWidth(const HItemDelegate* delegate, const QStyleOptionViewItem& option);

    /// Adds a cell to a column. Several columns may be measured at a time, each with a number from
    /// 0 up, so that a row's cells can be added while its data are at hand.
    void add(const QModelIndex& index, int column = 0);

    /// The width that the widest cell of the column wants, in pixels; 0 without any. Begins a new
    /// column of that number.
    int take(int column = 0);

    /// How many texts were laid out to find the answers so far, in the delegate or for it.
    int measured() const { return m_measured; }

private:
    /// A font, with the one trait that its comparison leaves out.
    using FontKey = std::pair<QFont, QFont::SpacingType>;

    /// All that the delegate's hint depends on but the text itself.
    struct Kind {
        bool hasText = false;
        bool hasCheckBox = false;
        int decorationType = 0;
        bool decorationIsNull = true;
        qint64 decorationKey = 0;
        std::optional<FontKey> font; ///< none for the view's own

        bool operator<(const Kind& other) const;
        bool operator==(const Kind& other) const;
    };

    struct Candidate {
        qreal upper;
        QString text;
        QModelIndex index;
    };

    /// The cells of a kind, reduced to those that may be the widest.
    struct Group {
        QFont font;
        TextWidth* widths = nullptr;
        qreal lower = -1; ///< the widest text is at least as wide as this
        std::vector<Candidate> candidates;
        QSet<QString> unbounded; ///< texts without bounds among the candidates
        QModelIndex first;
    };

    struct Column {
        std::map<Kind, Group> groups;
        std::pair<const Kind, Group>* last = nullptr; ///< of the cell added last
        int widest = 0;
    };

    int ask(const QModelIndex& index);
    Group& group(Column& column, const Kind& kind);
    TextWidth& textWidth(const QFont& font);
    void addText(Group& group, const QString& text, const QModelIndex& index);
    QModelIndex widest(Group& group);

    const HItemDelegate* const m_delegate;
    const QStyleOptionViewItem m_option;
    std::vector<Column> m_columns;
    std::map<FontKey, std::unique_ptr<TextWidth>> m_textWidths;
    int m_measured = 0;
};
