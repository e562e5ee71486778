// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableSortFilterProxyModel.h"

#include "engine/YumIO.h"
#include "table/PackageTableModel.h"

#include <typeinfo>

namespace PackageTable
{

/// For the scope of a call to the base that filters anew and then resets the source.
///
/// Filtering anew compares the listing with the verdicts and tells views of each difference, row
/// range by row range, which takes minutes where tens of thousands of rows come and go; the reset
/// then makes all of that void. So up to the reset the base is told what it was told before, and
/// verdicts are worked out once, after it.
class SortFilterProxyModel::OwnReset
{
public:
    explicit OwnReset(SortFilterProxyModel* proxy)
        : proxy(proxy)
    {
        proxy->holding = true;
        proxy->ownReset = true;
    }
    ~OwnReset()
    {
        proxy->holding = false;
        proxy->ownReset = false;
    }
    OwnReset(const OwnReset&) = delete;
    OwnReset& operator=(const OwnReset&) = delete;

private:
    SortFilterProxyModel* proxy;
};

SortFilterProxyModel::SortFilterProxyModel(StateFilter stateFilter, bool duplicates, bool groups,
                                           YumIO* yumIO, QObject* parent)
    : HSortFilterProxyModel(ColumnName, parent)
    , stateFilter(stateFilter)
    , duplicates(duplicates)
    , groups(groups)
    , yumIO(yumIO)
    , rows(yumIO)
{
}

void SortFilterProxyModel::setSourceModel(HAbstractTableModel* model)
{
    if (source) {
        disconnect(source, &QAbstractItemModel::modelAboutToBeReset, this,
                   &SortFilterProxyModel::clearCache);
        disconnect(source, &QAbstractItemModel::modelAboutToBeReset, this,
                   &SortFilterProxyModel::sourceAboutToBeReset);
    }
    const Model* packages = qobject_cast<const Model*>(model);
    direct = packages && typeid(*packages) == typeid(Model) && packages->engine() == yumIO
                 ? packages
                 : nullptr;
    HSortFilterProxyModel::setSourceModel(model);
    source = model;
    if (source) {
        connect(source, &QAbstractItemModel::modelAboutToBeReset, this,
                &SortFilterProxyModel::clearCache);
        connect(source, &QAbstractItemModel::modelAboutToBeReset, this,
                &SortFilterProxyModel::sourceAboutToBeReset);
    }
}

void SortFilterProxyModel::sourceAboutToBeReset()
{
    holding = false;
    if (!ownReset)
        rows.drop();
}

template<typename Setting> void SortFilterProxyModel::change(Setting& setting, Setting value)
{
    if (setting == value)
        return;
    setting = value;
    clear();
}

void SortFilterProxyModel::setMode(Mode mode)
{
    change(this->mode, mode);
}

void SortFilterProxyModel::setStateFilter(StateFilter filter)
{
    change(stateFilter, filter);
}

void SortFilterProxyModel::setDupsFilter(bool included)
{
    change(duplicates, included);
}

void SortFilterProxyModel::setGroupsFilter(bool included)
{
    change(groups, included);
}

void SortFilterProxyModel::setFilter(bool on)
{
    change(filtering, on);
}

void SortFilterProxyModel::setFilterRegExp(const QString& text)
{
    // The matcher looks for a match anywhere in the text, so these ends would only cost time.
    const QLatin1String anything(".*");
    QString rest = text;
    while (rest.startsWith(anything))
        rest.remove(0, anything.size());
    while (rest.endsWith(anything))
        rest.chop(anything.size());

    pattern.compile(rest);

    const QRegExp record(rest, Qt::CaseSensitive, QRegExp::RegExp);
    if (record != filterRegExp())
        clearCache();
    {
        OwnReset scope(this);
        HSortFilterProxyModel::setFilterRegExp(record);
    }

    const int count = source ? source->rowCount() : 0;
    for (int row = 0; row < count; ++row)
        filterAcceptsRow(row, QModelIndex());
}

void SortFilterProxyModel::clear()
{
    clearCache();
    OwnReset scope(this);
    // The reset makes the listing anew. To announce a new layout first, as the base does, would
    // have views make one that nobody gets to see.
    if (source)
        sortAnew();
    else
        HSortFilterProxyModel::clear();
}

void SortFilterProxyModel::clearCache()
{
    cache.clear();
    expressionSet.reset();
}

/// Asked for each row, whereas the base hands out a copy of its expression.
bool SortFilterProxyModel::hasExpression() const
{
    if (!expressionSet)
        expressionSet = !filterRegExp().isEmpty();
    return *expressionSet;
}

void SortFilterProxyModel::sort(int column, Qt::SortOrder order)
{
    // What is listed after a reset is made in its order: sorting it once more can't change it.
    if (ownReset && column == sortColumn() && order == sortOrder())
        return;
    HSortFilterProxyModel::sort(column, order);
}

Package::Entry* SortFilterProxyModel::entryAt(int sourceRow, const QModelIndex& sourceParent) const
{
    if (direct)
        return !sourceParent.isValid() && sourceRow < yumIO->count() ? (*yumIO)[sourceRow]
                                                                     : nullptr;
    if (!source)
        return nullptr;
    return source->index(sourceRow, ColumnName, sourceParent)
        .data(Qt::UserRole)
        .value<Package::Entry*>();
}

bool SortFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const auto row = static_cast<size_t>(sourceRow);
    if (holding)
        return row < told.size() && told[row];
    if (told.size() <= row)
        told.resize(row + 1);

    bool accepted = true;
    if (filtering) {
        Package::Entry* entry = entryAt(sourceRow, sourceParent);
        if (!entry)
            return false;
        if (row < cache.size() && cache[row].entry == entry) {
            accepted = cache[row].accepted;
        } else {
            // May spin an event loop in which the cache is emptied.
            accepted = acceptRow(entry, sourceRow, sourceParent);
            if (cache.size() <= row)
                cache.resize(qMax(row + 1, static_cast<size_t>(yumIO->count())));
            cache[row] = {entry, accepted};
        }
    }
    told[row] = accepted;
    return accepted;
}

bool SortFilterProxyModel::acceptRow(Package::Entry* entry, int sourceRow,
                                     const QModelIndex& sourceParent) const
{
    switch (stateFilter) {
    case ViewUpdatable:
        if (entry->state != Package::StateUpdatable)
            return false;
        break;
    case ViewInstallable:
        if (entry->state != Package::StateInstallable)
            return false;
        break;
    case ViewRemovable:
        if (entry->state == Package::StateInstallable)
            return false;
        break;
    case ViewAll:
        break;
    }
    if (!duplicates && entry->duplicate)
        return false;
    if (!groups && entry->kind == Package::KindGroup)
        return false;

    switch (mode) {
    case ModeFilter:
        return !hasExpression() || matchesRow(sourceRow, sourceParent);
    case ModeSearch:
        if (!hasExpression())
            return true;
        switch (entry->kind) {
        case Package::KindGroup:
            return matchesGroupFields(*entry);
        case Package::KindSuite:
        case Package::KindOrdinary:
            return matchesPackageFields(*entry);
        }
        return false;
    }
    return true;
}

bool SortFilterProxyModel::matches(const QString& text) const
{
    return pattern.matches(text.toUtf8());
}

bool SortFilterProxyModel::matchesRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (direct)
        return pattern.matches(rows.text(sourceRow));

    QString text;
    for (int column = ColumnName; column < ColumnCount; ++column) {
        if (!text.isEmpty())
            text += QLatin1Char(' ');
        text += source->index(sourceRow, column, sourceParent).data(Qt::DisplayRole).toString();
    }
    return matches(text);
}

bool SortFilterProxyModel::matchesGroupFields(const Package::Entry& entry) const
{
    // From left to right, and no further than the first match: each field is asked of the
    // interpreter.
    return matches(yumIO->getName(entry)) || matches(yumIO->getRequiredGroups(entry)) ||
           matches(yumIO->getDefaultMetaPkgs(entry)) ||
           matches(yumIO->getOptionalMetaPkgs(entry)) || matches(yumIO->getMandatoryPkgs(entry)) ||
           matches(yumIO->getDefaultPkgs(entry)) || matches(yumIO->getOptionalPkgs(entry)) ||
           matches(yumIO->getConditionalPkgs(entry));
}

bool SortFilterProxyModel::matchesPackageFields(const Package::Entry& entry) const
{
    // A load that failed has been reported once. Here it would be tried, and fail, for each row.
    const QByteArray texts = yumIO->getSearchTexts(entry);
    if (!texts.isNull())
        return pattern.matchesAny(texts) ||
               pattern.matches(yumIO->getFilesUtf8(entry, YumIO::NotAfterFailure));

    return matches(yumIO->getName(entry)) || matches(yumIO->getVerRel(entry)) ||
           matches(yumIO->getRepo(entry)) || matches(yumIO->getArch(entry)) ||
           matches(yumIO->getSize(entry)) || matches(yumIO->getSummary(entry)) ||
           matches(yumIO->getDescription(entry)) || matches(yumIO->getGroup(entry)) ||
           matches(yumIO->getVendor(entry)) || matches(yumIO->getBuildTime(entry)) ||
           matches(yumIO->getInstallTime(entry)) || matches(yumIO->getBinaryRpm(entry)) ||
           matches(yumIO->getSourceRpm(entry)) || matches(yumIO->getLicense(entry)) ||
           matches(yumIO->getPackager(entry)) || matches(yumIO->getUrl(entry)) ||
           matches(yumIO->getRelocations(entry)) || matches(yumIO->getProvides(entry)) ||
           matches(yumIO->getRequires(entry)) || matches(yumIO->getConflicts(entry)) ||
           matches(yumIO->getObsoletes(entry)) ||
           pattern.matches(yumIO->getFilesUtf8(entry, YumIO::NotAfterFailure)) ||
           matches(yumIO->getChangeLog(entry, YumIO::NotAfterFailure));
}

static bool isOrderedByNumber(int column)
{
    return column < ColumnName || column == ColumnSize || column == ColumnBuildTime;
}

bool SortFilterProxyModel::isDirect(const QModelIndex& index) const
{
    return index.model() == direct && index.row() < yumIO->count();
}

bool SortFilterProxyModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const int column = left.column();

    // Hundreds of thousands of comparisons a sort: straight from the entries. A class that derives
    // from this one has its own lessThan() asked about ties, so it takes the long way.
    if (direct && column == right.column() && isDirect(left) && isDirect(right) &&
        typeid(*this) == typeid(SortFilterProxyModel)) {
        if (column != ColumnAction)
            return rows.rank(left.row(), Column(column)) < rows.rank(right.row(), Column(column));
        const Package::Action leftAction = (*yumIO)[left.row()]->action;
        const Package::Action rightAction = (*yumIO)[right.row()]->action;
        if (leftAction != rightAction)
            return leftAction < rightAction;
        return rows.rank(left.row(), ColumnName) < rows.rank(right.row(), ColumnName);
    }

    if (!isOrderedByNumber(column))
        return HSortFilterProxyModel::lessThan(left, right);
    if (!left.model() || !right.model())
        return false;
    const int leftNumber = left.data(Qt::UserRole).toInt();
    const int rightNumber = right.data(Qt::UserRole).toInt();
    if (leftNumber != rightNumber)
        return leftNumber < rightNumber;
    return lessThan(createSecondarySortIndex(left), createSecondarySortIndex(right));
}

void SortFilterProxyModel::setUpdateListed()
{
    for (int row = 0; row < rowCount(); ++row) {
        const QModelIndex cell = index(row, ColumnAction);
        Package::Entry* entry = entryAt(mapToSource(cell).row(), QModelIndex());
        if (!entry || entry->state != Package::StateUpdatable)
            continue;
        entry->action = Package::ActionUpdate;
        Q_EMIT dataChanged(cell, cell);
    }
}

} // namespace PackageTable
