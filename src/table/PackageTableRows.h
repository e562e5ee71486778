// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "table/PackageTable.h"

#include <QByteArray>

#include <array>
#include <vector>

class YumIO;

namespace PackageTable
{

/// What filtering and sorting ask of the engine's rows again and again, worked out at the first
/// need and kept until drop(). Entries don't change between two collections but for their action,
/// which is not kept here.
class Rows
{
public:
    explicit Rows(const YumIO* yumIO)
        : yumIO(yumIO)
    {
    }

    /// To be called before the engine's rows are shown anew.
    void drop();

    /// The texts that the table shows of a row, joined by blanks, as UTF-8.
    const QByteArray& text(int row);
    /// Place of the row in the ascending order of a column, ties by name; rows that tie in both
    /// share a place. Not for the action, which changes.
    int rank(int row, Column column)
    {
        const auto at = static_cast<size_t>(row);
        if (ranks[column].size() <= at)
            makeRanks(column);
        return ranks[column][at];
    }

private:
    void makeRanks(Column column);

    const YumIO* yumIO;
    std::vector<QByteArray> texts; ///< a null one isn't made yet
    std::vector<char> scratch;     ///< where a text is put together
    std::array<std::vector<int>, ColumnCount> ranks;
};

} // namespace PackageTable
