// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

namespace PackageTable
{

/// What a regular expression is compared to; the values of the mode combo box.
enum Mode : int {
    ModeFilter = 0, ///< the texts that the table shows, joined by blanks
    ModeSearch = 1, ///< every field of a package, each by itself
};

/// Which rows are listed, by their state; the values of the state combo box.
enum StateFilter : int {
    ViewUpdatable = 0,
    ViewInstallable = 1,
    ViewRemovable = 2,
    ViewAll = 3,
};

enum Column : int {
    ColumnAction = 0,
    ColumnState = 1,
    ColumnKind = 2,
    ColumnName = 3,
    ColumnVersion = 4,
    ColumnRepository = 5,
    ColumnArchitecture = 6,
    ColumnSize = 7,
    ColumnBuildTime = 8,
    ColumnCount = 9,
};

} // namespace PackageTable
