// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableModel.h"

#include "engine/YumIO.h"
#include "kit/Colors.h"
#include "kit/Share.h"
#include "repo/RepoBrowse.h"
#include "table/PackageTableDescribeDialog.h"

namespace PackageTable
{

static QIcon sharedIcon(const char* file)
{
    return QIcon(Share::absolute(QStringLiteral("icons/") + QLatin1String(file)));
}

Model::Model(YumIO* yumIO, QObject* parent)
    : HAbstractTableModel(parent)
    , yumIO(yumIO)
    , updateIcon(sharedIcon("updateBox.png"))
    , installIcon(sharedIcon("installBox.png"))
    , removeIcon(sharedIcon("removeBox.png"))
    , noneIcon(sharedIcon("noneBox.png"))
    , outOfDateIcon(sharedIcon("out-of-date.png"))
    , upToDateIcon(sharedIcon("up-to-date.png"))
    , suiteIcon(sharedIcon("suite.png"))
    , groupIcon(sharedIcon("group.png"))
    , packageIcon(sharedIcon("package.png"))
    , updatable{QColor(Colors::error()), QColor(Colors::errorDisabled())}
    , installable{QColor(Colors::minor()), QColor(Colors::minorDisabled())}
{
    qRegisterMetaType<Package::Entry*>();
}

int Model::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : yumIO->count();
}

int Model::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QModelIndex Model::index(int row, int column, const QModelIndex& parent) const
{
    // Sorting asks for two of these a comparison, so there is no round trip through the bounds that
    // the base asks for.
    const bool exists = row >= 0 && column >= 0 && column < ColumnCount && !parent.isValid() &&
                        row < yumIO->count();
    return exists ? createIndex(row, column) : QModelIndex();
}

bool Model::isRow(const QModelIndex& index) const
{
    return index.isValid() && index.row() < yumIO->count();
}

QVariant Model::data(const QModelIndex& index, int role) const
{
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        if (column < ColumnName)
            return QVariant();
        break;
    case Qt::DecorationRole:
        if (column > ColumnKind)
            return QVariant();
        break;
    case Qt::ToolTipRole:
    case Qt::ForegroundRole:
    case Qt::UserRole:
        break;
    default:
        // Measuring a column asks for many roles that there are no answers to.
        return QVariant();
    }
    if (!isRow(index) || column >= ColumnCount)
        return QVariant();

    Package::Entry* entry = (*yumIO)[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return text(*entry, column);
    case Qt::DecorationRole:
        return icon(*entry, column);
    case Qt::ToolTipRole:
        return toolTip(*entry, column);
    case Qt::ForegroundRole:
        return foreground(*entry, column);
    case Qt::UserRole:
        switch (column) {
        case ColumnAction:
            return static_cast<int>(entry->action);
        case ColumnState:
            return static_cast<int>(entry->state);
        case ColumnKind:
            return static_cast<int>(entry->kind);
        case ColumnSize:
            return entry->sizeBytes;
        case ColumnBuildTime:
            return static_cast<qint64>(entry->buildTime);
        default:
            return QVariant::fromValue(entry);
        }
    default:
        return QVariant();
    }
}

/// Whether more than one version of the package is installed. The first link behind an updatable
/// package is its installed version.
static bool hasSeveralInstalled(const Package::Entry& entry)
{
    switch (entry.state) {
    case Package::StateUpdatable:
        return entry.next && entry.next->next;
    case Package::StateInstallable:
    case Package::StateInstalled:
        return entry.next;
    }
    return false;
}

QString Model::text(const Package::Entry& entry, int column)
{
    switch (column) {
    case ColumnName:
        return entry.name;
    case ColumnVersion:
        return hasSeveralInstalled(entry) ? entry.verRel + QLatin1String(" *") : entry.verRel;
    case ColumnRepository:
        return entry.repo;
    case ColumnArchitecture:
        return entry.arch;
    case ColumnSize:
        return entry.sizeText;
    case ColumnBuildTime:
        return entry.buildTimeText;
    default:
        return QString();
    }
}

QVariant Model::icon(const Package::Entry& entry, int column) const
{
    switch (column) {
    case ColumnAction:
        switch (entry.action) {
        case Package::ActionUpdate:
            return updateIcon;
        case Package::ActionInstall:
            return installIcon;
        case Package::ActionRemove:
            return removeIcon;
        case Package::ActionNone:
            return noneIcon;
        }
        break;
    case ColumnState:
        switch (entry.state) {
        case Package::StateUpdatable:
            return outOfDateIcon;
        case Package::StateInstallable:
            return emptyIcon;
        case Package::StateInstalled:
            return upToDateIcon;
        }
        break;
    case ColumnKind:
        switch (entry.kind) {
        case Package::KindSuite:
            return suiteIcon;
        case Package::KindGroup:
            return groupIcon;
        case Package::KindOrdinary:
            return packageIcon;
        }
        break;
    default:
        break;
    }
    return QVariant();
}

QVariant Model::toolTip(const Package::Entry& entry, int column) const
{
    switch (column) {
    case ColumnAction:
        switch (entry.action) {
        case Package::ActionUpdate:
            return tr("Update package");
        case Package::ActionInstall:
            return tr("Install package");
        case Package::ActionRemove:
            return tr("Remove package");
        case Package::ActionNone:
            break;
        }
        break;
    case ColumnState:
        switch (entry.state) {
        case Package::StateUpdatable:
            return tr("Package is available to update an out-of-date version");
        case Package::StateInstallable:
            return tr("Package is available for installation");
        case Package::StateInstalled:
            return tr("Package is installed and up-to-date");
        }
        break;
    case ColumnKind:
        switch (entry.kind) {
        case Package::KindSuite:
            return tr("Suite of packages");
        case Package::KindGroup:
            return tr("Group of packages");
        case Package::KindOrdinary:
            return tr("Ordinary package");
        }
        break;
    case ColumnVersion:
        return versionList(entry);
    default:
        break;
    }
    return QVariant();
}

QString Model::versionList(const Package::Entry& entry)
{
    QString list;
    for (const Package::Entry* version = &entry; version; version = version->next) {
        switch (version->state) {
        case Package::StateUpdatable:
        case Package::StateInstallable:
            list += tr("Available: %1\n").arg(version->verRel);
            break;
        case Package::StateInstalled:
            list += tr("Installed: %1\n").arg(version->verRel);
            break;
        }
    }
    return list.trimmed();
}

QVariant Model::foreground(const Package::Entry& entry, int column) const
{
    if (column < ColumnKind)
        return QVariant();
    const Foreground* colours = nullptr;
    switch (entry.state) {
    case Package::StateUpdatable:
        colours = &updatable;
        break;
    case Package::StateInstallable:
        colours = &installable;
        break;
    case Package::StateInstalled:
        colours = &installed;
        break;
    }
    if (!colours)
        return QVariant();
    const QColor& colour = enabled ? colours->enabled : colours->disabled;
    // Delegates paint an invalid colour in black, not in the palette's.
    return colour.isValid() ? QVariant(colour) : QVariant();
}

QVariant Model::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return QVariant();

    if (role == Qt::DisplayRole) {
        switch (section) {
        case ColumnAction:
            return tr("Action");
        case ColumnState:
            return tr("State");
        case ColumnKind:
            return tr("Kind");
        case ColumnName:
            return tr("Name");
        case ColumnVersion:
            return tr("Version");
        case ColumnRepository:
            return tr("Repository");
        case ColumnArchitecture:
            return tr("Architecture");
        case ColumnSize:
            return tr("Size");
        case ColumnBuildTime:
            return tr("Build Time");
        default:
            return QVariant();
        }
    }
    if (role == Qt::ToolTipRole) {
        switch (section) {
        case ColumnAction:
            return tr("Action to be performed on the package, if any: Update, Install, Remove");
        case ColumnState:
            return tr(
                "Indicates whether the package is Installed or not and, if installed, whether "
                "it is Up-to-date or not");
        case ColumnKind:
            return tr("Whether the package is an ordinary package, a suite of packages, or a group "
                      "of packages");
        case ColumnName:
            return tr("Name of the package");
        case ColumnVersion:
            return tr("Version and release of the package as version-release;\n"
                      "If the Epoch is non-zero, includes it as epoch:version-release");
        case ColumnRepository:
            return tr("Repository from which the most recent version of the package is available");
        case ColumnArchitecture:
            return tr("Architecture for which the package is applicable, or \"noarch\" for "
                      "general-purpose packages");
        case ColumnSize:
            return tr("Size of the package");
        case ColumnBuildTime:
            return tr("Date and time at which the package was created");
        default:
            return QVariant();
        }
    }
    return QVariant();
}

void Model::setYumConfIO(YumConfIO* conf)
{
    yumConfIO = conf;
}

Package::State Model::getState(int row) const
{
    return (*yumIO)[row]->state;
}

void Model::changeAction(int row, Package::Action action)
{
    (*yumIO)[row]->action = action;
    const QModelIndex cell = index(row, ColumnAction);
    Q_EMIT dataChanged(cell, cell);
}

void Model::setAction(const QModelIndex& index, Package::Action action)
{
    if (isRow(index) && index.column() < ColumnCount)
        changeAction(index.row(), action);
}

void Model::toggleAction(const QModelIndex& index)
{
    if (!isRow(index))
        return;

    const Package::Entry& entry = *(*yumIO)[index.row()];
    Package::Action next = Package::ActionNone;
    switch (entry.state) {
    case Package::StateUpdatable:
        if (entry.action == Package::ActionNone)
            next = Package::ActionUpdate;
        else if (entry.action == Package::ActionUpdate)
            next = Package::ActionRemove;
        break;
    case Package::StateInstallable:
        if (entry.action == Package::ActionNone)
            next = Package::ActionInstall;
        break;
    case Package::StateInstalled:
        if (entry.action == Package::ActionNone)
            next = Package::ActionRemove;
        break;
    }
    changeAction(index.row(), next);
}

void Model::setSelected(QModelIndexList indices)
{
    for (const QModelIndex& index : qAsConst(indices)) {
        switch (getState(index.row())) {
        case Package::StateUpdatable:
            changeAction(index.row(), Package::ActionUpdate);
            break;
        case Package::StateInstallable:
            changeAction(index.row(), Package::ActionInstall);
            break;
        case Package::StateInstalled:
            break;
        }
    }
}

void Model::clearActions()
{
    int row = 0;
    for (const Package::Entry* entry : *yumIO) {
        if (entry->action != Package::ActionNone)
            changeAction(row, Package::ActionNone);
        ++row;
    }
}

void Model::reset()
{
    beginResetModel();
    endResetModel();
}

void Model::describe(const QModelIndex& index, QWidget* parent)
{
    if (!isRow(index))
        return;
    if (!description)
        description = new Describe::Dialog(parent);
    description->config(yumIO, *(*yumIO)[index.row()], yumConfIO);
    description->exec();
}

void Model::browse(const QModelIndex& index, QWidget* parent)
{
    if (isRow(index))
        RepoBrowse::browse(parent, (*yumIO)[index.row()]->repo, yumIO, yumConfIO);
}

void Model::setEnabled(bool enabled)
{
    this->enabled = enabled;
}

} // namespace PackageTable
