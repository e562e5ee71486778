// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"
#include "kit/HSortFilterProxyModel.h"
#include "table/PackageTable.h"
#include "table/PackageTablePattern.h"
#include "table/PackageTableRows.h"

#include <optional>
#include <vector>

class YumIO;

namespace PackageTable
{

class Model;

/// Decides which packages are listed, and in what order. A row passes four tests in turn: state,
/// duplicates, groups and the regular expression.
///
/// Each change of a setting resets the source model: views lose their selection, the sort column
/// and order stay. In Search mode filtering may load extra data, and then spins a local event loop.
class SortFilterProxyModel : public HSortFilterProxyModel
{
    Q_OBJECT

public:
    /// Doesn't own the engine.
    SortFilterProxyModel(StateFilter stateFilter, bool duplicates, bool groups, YumIO* yumIO,
                         QObject* parent = nullptr);

    void setSourceModel(HAbstractTableModel* model);

    void setMode(Mode mode);
    void setStateFilter(StateFilter filter);
    void setDupsFilter(bool included);
    void setGroupsFilter(bool included);

    /// Off: every row is listed, and nothing is computed.
    void setFilter(bool on);
    bool getFilter() const { return filtering; }

    /// A POSIX extended regular expression, case-sensitive, matched anywhere in a text. One that
    /// doesn't compile lets every row pass.
    void setFilterRegExp(const QString& text);

    /// Marks the listed rows that can be updated. Emits this proxy's dataChanged only.
    void setUpdateListed();

    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

public Q_SLOTS:
    /// Forgets all verdicts, filters and sorts anew.
    void clear();
    /// Only forgets the verdicts.
    void clearCache();

private:
    /// Stores a new value and lists anew; does nothing where the value is the old one.
    template<typename Setting> void change(Setting& setting, Setting value);
    class OwnReset;

    struct Verdict {
        Package::Entry* entry = nullptr; ///< whom it is about; null where there is none yet
        bool accepted = false;
    };

    bool acceptRow(Package::Entry* entry, int sourceRow, const QModelIndex& sourceParent) const;
    bool matches(const QString& text) const;
    bool matchesRow(int sourceRow, const QModelIndex& sourceParent) const;
    bool matchesGroupFields(const Package::Entry& entry) const;
    bool matchesPackageFields(const Package::Entry& entry) const;
    bool isDirect(const QModelIndex& index) const;
    bool hasExpression() const;
    Package::Entry* entryAt(int sourceRow, const QModelIndex& sourceParent) const;
    void sourceAboutToBeReset();

    Mode mode = ModeFilter;
    bool filtering = true;
    StateFilter stateFilter;
    bool duplicates;
    bool groups;
    YumIO* yumIO;
    HAbstractTableModel* source = nullptr;
    const Model* direct = nullptr;      ///< the source, if it shows the very rows of our engine
    mutable std::vector<Verdict> cache; ///< by source row
    mutable std::optional<bool> expressionSet; ///< goes with the cache
    Pattern pattern;

    mutable Rows rows;
    /// What the base was last told of each row.
    mutable std::vector<char> told;
    bool holding = false;  ///< the base is told again what it was last told
    bool ownReset = false; ///< the coming reset of the source brings no new entries
};

} // namespace PackageTable
