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

const QByteArray& Rows::text(int row)
{
    const auto at = static_cast<size_t>(row);
    if (texts.size() <= at)
        texts.resize(static_cast<size_t>(yumIO->count()));

    QByteArray& text = texts[at];
    if (text.isNull()) {
        const Package::Entry& entry = *(*yumIO)[row];
        QString joined;
        for (int column = ColumnName; column < ColumnCount; ++column) {
            if (!joined.isEmpty())
                joined += QLatin1Char(' ');
            joined += Model::text(entry, column);
        }
        text = joined.isEmpty() ? QByteArray("") : joined.toUtf8();
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

int Rows::rank(int row, Column column)
{
    const auto at = static_cast<size_t>(row);
    std::vector<int>& columnRanks = ranks[column];
    if (columnRanks.size() <= at)
        makeRanks(column);
    return columnRanks[at];
}

void Rows::makeRanks(Column column)
{
    std::vector<int>& columnRanks = ranks[column];
    const auto count = static_cast<size_t>(yumIO->count());

    if (column >= ColumnName && column <= ColumnArchitecture) {
        std::vector<QString> keys;
        keys.reserve(count);
        for (const Package::Entry* entry : *yumIO)
            keys.push_back(Model::text(*entry, column));
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
