// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/ColumnWidth.h"

#include "kit/HItemDelegate.h"

#include <QIcon>
#include <QImage>
#include <QPixmap>

#include <algorithm>
#include <tuple>

namespace
{

auto fontKey(const QFont& font)
{
    return std::make_pair(font, font.letterSpacingType());
}

} // namespace

bool ColumnWidth::Kind::operator<(const Kind& other) const
{
    return std::tie(hasText, hasCheckBox, decorationType, decorationIsNull, decorationKey, font) <
           std::tie(other.hasText, other.hasCheckBox, other.decorationType, other.decorationIsNull,
                    other.decorationKey, other.font);
}

bool ColumnWidth::Kind::operator==(const Kind& other) const
{
    return hasText == other.hasText && hasCheckBox == other.hasCheckBox &&
           decorationType == other.decorationType && decorationIsNull == other.decorationIsNull &&
           decorationKey == other.decorationKey && font == other.font;
}

ColumnWidth::ColumnWidth(const HItemDelegate* delegate, const QStyleOptionViewItem& option)
    : m_delegate(delegate)
    , m_option(option)
{
}

void ColumnWidth::add(const QModelIndex& index, int column)
{
    if (m_columns.size() <= static_cast<size_t>(column))
        m_columns.resize(static_cast<size_t>(column) + 1);
    Column& to = m_columns[static_cast<size_t>(column)];

    if (index.data(Qt::SizeHintRole).isValid()) {
        to.widest = qMax(to.widest, ask(index));
        return;
    }

    Kind kind;
    const QVariant decoration = index.data(Qt::DecorationRole);
    if (decoration.isValid()) {
        kind.decorationType = decoration.userType();
        kind.decorationIsNull = decoration.isNull();
        switch (kind.decorationType) {
        case QMetaType::QIcon:
            kind.decorationKey = qvariant_cast<QIcon>(decoration).cacheKey();
            break;
        case QMetaType::QPixmap:
            kind.decorationKey = qvariant_cast<QPixmap>(decoration).cacheKey();
            break;
        case QMetaType::QImage:
            kind.decorationKey = qvariant_cast<QImage>(decoration).cacheKey();
            break;
        case QMetaType::QColor:
            break;
        default:
            // The delegate takes anything else for a text.
            to.widest = qMax(to.widest, ask(index));
            return;
        }
    }
    kind.hasCheckBox = index.data(Qt::CheckStateRole).isValid();

    const QVariant display = index.data(Qt::DisplayRole);
    QString text;
    if (display.isValid() && !display.isNull()) {
        kind.hasText = true;
        switch (display.userType()) {
        case QMetaType::QString:
            text = display.toString();
            break;
        case QMetaType::Int:
        case QMetaType::LongLong:
            text = m_option.locale.toString(display.toLongLong());
            break;
        case QMetaType::UInt:
        case QMetaType::ULongLong:
            text = m_option.locale.toString(display.toULongLong());
            break;
        default:
            to.widest = qMax(to.widest, ask(index));
            return;
        }
    }
    if (kind.hasText) {
        const QVariant font = index.data(Qt::FontRole);
        if (font.isValid())
            kind.font = fontKey(qvariant_cast<QFont>(font).resolve(m_option.font));
    }

    Group& cells = group(to, kind);
    if (!cells.first.isValid())
        cells.first = index;
    if (kind.hasText)
        addText(cells, text, index);
}

int ColumnWidth::take(int column)
{
    if (m_columns.size() <= static_cast<size_t>(column))
        return 0;
    Column taken = std::exchange(m_columns[static_cast<size_t>(column)], Column());
    int width = taken.widest;
    for (auto& [kind, cells] : taken.groups)
        width = qMax(width, ask(kind.hasText ? widest(cells) : cells.first));
    return width;
}

int ColumnWidth::ask(const QModelIndex& index)
{
    ++m_measured;
    return m_delegate->sizeHint(m_option, index).width();
}

ColumnWidth::Group& ColumnWidth::group(Column& column, const Kind& kind)
{
    // Neighbours are mostly alike.
    if (column.last && column.last->first == kind)
        return column.last->second;
    const auto [position, isNew] = column.groups.try_emplace(kind);
    column.last = &*position;
    Group& cells = position->second;
    if (isNew && kind.hasText) {
        cells.font = kind.font ? kind.font->first : m_option.font;
        cells.widths = &textWidth(cells.font);
    }
    return cells;
}

TextWidth& ColumnWidth::textWidth(const QFont& font)
{
    std::unique_ptr<TextWidth>& widths = m_textWidths[fontKey(font)];
    if (!widths)
        widths = std::make_unique<TextWidth>(font);
    return *widths;
}

void ColumnWidth::addText(Group& group, const QString& text, const QModelIndex& index)
{
    const TextWidth::Bounds bounds = group.widths->bounds(text);
    if (bounds.upper <= group.lower)
        return;
    if (qIsInf(bounds.upper)) {
        if (group.unbounded.contains(text))
            return;
        group.unbounded.insert(text);
    }
    group.lower = qMax(group.lower, bounds.lower);
    group.candidates.push_back({bounds.upper, text, index});
}

/// The cell of the group with the widest text.
QModelIndex ColumnWidth::widest(Group& group)
{
    std::vector<Candidate>& candidates = group.candidates;
    std::sort(candidates.begin(), candidates.end(),
              [](const auto& left, const auto& right) { return left.upper > right.upper; });
    if (candidates.size() == 1 || candidates[1].upper < group.lower)
        return candidates[0].index;

    QModelIndex result;
    int width = -1;
    QSet<QString> seen;
    for (const Candidate& candidate : candidates) {
        if (candidate.upper < group.lower || candidate.upper <= width)
            break;
        if (seen.contains(candidate.text))
            continue;
        seen.insert(candidate.text);
        ++m_measured;
        const int exact = m_delegate->textWidth(group.font, candidate.text);
        if (exact > width) {
            width = exact;
            result = candidate.index;
        }
    }
    return result;
}
