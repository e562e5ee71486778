// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableRows.h"

#include "engine/YumIO.h"
#include "table/PackageTableModel.h"

#include <algorithm>

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

int Rows::rank(int row, Column column)
{
    std::vector<int>& columnRanks = ranks[column];
    if (columnRanks.size() <= static_cast<size_t>(row))
        makeRanks(columnRanks, column);
    return columnRanks[static_cast<size_t>(row)];
}

void Rows::makeRanks(std::vector<int>& columnRanks, Column column) const
{
    struct Item {
        QString text;
        size_t row;
    };
    std::vector<Item> items;
    items.reserve(static_cast<size_t>(yumIO->count()));
    for (const Package::Entry* entry : *yumIO)
        items.push_back({Model::text(*entry, column), items.size()});
    std::sort(items.begin(), items.end(),
              [](const Item& left, const Item& right) { return left.text < right.text; });

    columnRanks.assign(items.size(), 0);
    int rank = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0 && items[i - 1].text != items[i].text)
            ++rank;
        columnRanks[items[i].row] = rank;
    }
}

} // namespace PackageTable
