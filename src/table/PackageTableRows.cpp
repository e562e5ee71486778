// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableRows.h"

#include "engine/YumIO.h"
#include "table/PackageTableModel.h"

#include <algorithm>
#include <utility>

namespace PackageTable
{

void Rows::drop()
{
    texts.clear();
    for (std::vector<int>& column : ranks)
        column.clear();
}

/// Writes the text as UTF-8, and returns the end of what was written. There must be room for three
/// bytes a character.
static char* appendUtf8(char* to, const QString& text)
{
    const ushort* const from = text.utf16();
    const int length = text.size();
    ushort all = 0;
    for (int i = 0; i < length; ++i) {
        all |= from[i];
        to[i] = static_cast<char>(from[i]);
    }
    if (all < 0x80)
        return to + length;
    const QByteArray utf8 = text.toUtf8();
    return std::copy(utf8.begin(), utf8.end(), to);
}

const QByteArray& Rows::text(int row)
{
    const auto at = static_cast<size_t>(row);
    if (texts.size() <= at)
        texts.resize(static_cast<size_t>(yumIO->count()));

    QByteArray& text = texts[at];
    if (text.isNull()) {
        const Package::Entry& entry = *(*yumIO)[row];
        std::array<QString, ColumnCount - ColumnName> pieces;
        size_t room = 0;
        for (int column = ColumnName; column < ColumnCount; ++column) {
            QString& piece = pieces[static_cast<size_t>(column - ColumnName)];
            piece = Model::text(entry, column);
            room += 1 + 3 * static_cast<size_t>(piece.size());
        }
        if (scratch.size() < room)
            scratch.resize(room);

        char* const begin = scratch.data();
        char* end = begin;
        for (const QString& piece : pieces) {
            if (end != begin)
                *end++ = ' ';
            end = appendUtf8(end, piece);
        }
        text = QByteArray(begin, static_cast<int>(end - begin));
    }
    return text;
}

/// The raw value that a column is ordered by, as 32 bits: sizes of 2 GiB and times past 2038 wrap.
static int orderNumber(const Package::Entry& entry, Column column)
{
    switch (column) {
    case ColumnState:
        return entry.state;
    case ColumnKind:
        return entry.kind;
    case ColumnSize:
        return static_cast<int>(static_cast<quint32>(entry.sizeBytes));
    case ColumnBuildTime:
        return static_cast<int>(static_cast<quint32>(entry.buildTime));
    default:
        return 0;
    }
}

namespace
{

/// A text in the order of its code units, its beginning at hand: most comparisons end there,
/// without a look at the text, which lies anywhere in memory.
class TextKey
{
public:
    /// The text must outlive the key.
    explicit TextKey(const QString& text)
        : text(&text)
    {
        for (int i = 0; i < 8; ++i) {
            const ushort unit = i < text.size() ? text[i].unicode() : 0;
            start = start << 8 | qMin<ushort>(unit, 0xff);
            if (unit >= 0xff) {
                // One byte doesn't tell such characters apart, so nothing behind them may count.
                start <<= 8 * (7 - i);
                break;
            }
        }
    }

    bool operator<(const TextKey& other) const
    {
        return start != other.start ? start < other.start : *text < *other.text;
    }

private:
    quint64 start = 0;
    const QString* text;
};

} // namespace

/// Writes to `ranks` the places of the rows in the order of their keys. Equal keys share a place.
template<typename Key> static void rankKeys(const std::vector<Key>& keys, std::vector<int>& ranks)
{
    std::vector<std::pair<Key, size_t>> ordered;
    ordered.reserve(keys.size());
    for (const Key& key : keys)
        ordered.emplace_back(key, ordered.size());
    std::sort(ordered.begin(), ordered.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });

    ranks.resize(keys.size());
    int rank = 0;
    for (size_t i = 0; i < ordered.size(); ++i) {
        if (i > 0 && ordered[i - 1].first < ordered[i].first)
            ++rank;
        ranks[ordered[i].second] = rank;
    }
}

void Rows::makeRanks(Column column)
{
    std::vector<int>& columnRanks = ranks[column];
    const auto count = static_cast<size_t>(yumIO->count());

    if (column >= ColumnName && column <= ColumnArchitecture) {
        std::vector<QString> columnTexts;
        columnTexts.reserve(count);
        for (const Package::Entry* entry : *yumIO)
            columnTexts.push_back(Model::text(*entry, column));
        const std::vector<TextKey> keys(columnTexts.begin(), columnTexts.end());
        rankKeys(keys, columnRanks);
        if (column == ColumnName)
            return;
    } else {
        columnRanks.clear();
        columnRanks.reserve(count);
        for (const Package::Entry* entry : *yumIO)
            columnRanks.push_back(orderNumber(*entry, column));
    }

    std::vector<std::pair<int, int>> keys;
    keys.reserve(count);
    for (size_t row = 0; row < count; ++row)
        keys.emplace_back(columnRanks[row], rank(static_cast<int>(row), ColumnName));
    rankKeys(keys, columnRanks);
}

} // namespace PackageTable
