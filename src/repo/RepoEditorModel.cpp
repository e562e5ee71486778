// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorModel.h"

#include "engine/YumIO.h"
#include "kit/Share.h"
#include "repo/ConfigText.h"
#include "repo/RepoBrowse.h"
#include "repo/YumConfIO.h"

namespace RepoEditor
{

Model::Model(YumIO* yumIO, YumConfIO* conf, QObject* parent)
    : HAbstractTableModel(parent)
    , yumIO(yumIO)
    , conf(conf)
    , noneIcon(Share::absolute(QStringLiteral("icons/noneBox.png")))
    , checkIcon(Share::absolute(QStringLiteral("icons/checkBox.png")))
{
    setViewFont(QFont());
}

int Model::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : conf->entries.count();
}

int Model::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

bool Model::isRow(const QModelIndex& index) const
{
    return index.isValid() && index.row() < conf->entries.count();
}

bool Model::isUsed(const Repo::Entry& entry) const
{
    return conf->usedRepos.value(entry.id);
}

bool Model::isEnabled(const Repo::Entry& entry) const
{
    return entry.enabled == 2 || (entry.enabled == 1 && conf->mainEnabled);
}

QVariant Model::data(const QModelIndex& index, int role) const
{
    if (!isRow(index))
        return QVariant();
    const Repo::Entry& entry = conf->entries.at(index.row());

    switch (role) {
    case Qt::DisplayRole:
        if (index.column() == ColumnId)
            return entry.id.isEmpty() ? tr("(new)") : ConfigText::toShown(entry.id);
        if (index.column() == ColumnName)
            return ConfigText::toShown(entry.name);
        break;
    case Qt::DecorationRole:
        if (index.column() == ColumnUse)
            return isUsed(entry) ? checkIcon : noneIcon;
        if (index.column() == ColumnEnabled)
            return isEnabled(entry) ? checkIcon : noneIcon;
        break;
    case Qt::ToolTipRole:
        if (index.column() == ColumnUse)
            return isUsed(entry) ? tr("Repository is enabled for this session")
                                 : tr("Repository is not enabled for this session");
        // Unlike the icon, this speaks of the session's value.
        if (index.column() == ColumnEnabled)
            return isUsed(entry) ? tr("Repository is configured to be enabled")
                                 : tr("Repository is not configured to be enabled");
        break;
    case Qt::FontRole:
        if (index.column() == ColumnId && entry.id.isEmpty())
            return viewFont;
        break;
    default:
        break;
    }
    return QVariant();
}

QString Model::checks(const QModelIndex& index) const
{
    if (!isRow(index))
        return QString();
    const Repo::Entry& entry = conf->entries.at(index.row());
    if (isUsed(entry))
        return isEnabled(entry) ? tr("Used in this session, enabled in the configuration")
                                : tr("Used in this session, not enabled in the configuration");
    return isEnabled(entry) ? tr("Not used in this session, enabled in the configuration")
                            : tr("Not used in this session, not enabled in the configuration");
}

QVariant Model::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return QVariant();
    if (role == Qt::DisplayRole) {
        switch (section) {
        case ColumnUse:
            return tr("Sess");
        case ColumnEnabled:
            return tr("Perm");
        case ColumnId:
            return tr("Identifier");
        case ColumnName:
            return tr("Name");
        default:
            break;
        }
    } else if (role == Qt::ToolTipRole) {
        switch (section) {
        case ColumnUse:
            return tr("Whether or not the repository is used during this session.\n"
                      "It overrides the persistent Enabled flag in the repository configuration.");
        case ColumnEnabled:
            return tr("Whether or not the repository is configured to be enabled by default.\n"
                      "It can be overridden for a particular session.");
        case ColumnId:
            return tr("Unique identifier for the repository");
        case ColumnName:
            return tr("Description of the repository");
        default:
            break;
        }
    }
    return QVariant();
}

void Model::setViewFont(const QFont& font)
{
    viewFont = font;
    viewFont.setItalic(true);
}

QModelIndex Model::createIndex(int row) const
{
    return index(row, 0);
}

int Model::addRow(const Repo::Entry& entry)
{
    const int row = conf->entries.count();
    beginInsertRows(QModelIndex(), row, row);
    conf->entries.append(entry);
    endInsertRows();
    return row;
}

bool Model::removeRow(int row, const QModelIndex& parent)
{
    if (row < 0 || row >= rowCount(parent))
        return false;
    beginRemoveRows(parent, row, row);
    conf->entries.removeAt(row);
    endRemoveRows();
    return true;
}

void Model::reset()
{
    forceSortColumnRediscovery();
}

void Model::dataChanged(int row)
{
    Q_EMIT HAbstractTableModel::dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void Model::toggleUse(const QModelIndex& index)
{
    if (!isRow(index))
        return;
    const QString id = conf->entries.at(index.row()).id;
    bool& used = conf->usedRepos[id];
    used = !used;
    // A repository that has the same identifier by mistake shows the same.
    for (int row = 0; row < conf->entries.count(); ++row) {
        if (conf->entries.at(row).id == id) {
            const QModelIndex cell = this->index(row, ColumnUse);
            Q_EMIT HAbstractTableModel::dataChanged(cell, cell);
        }
    }
    Q_EMIT useChanged();
}

void Model::toggleEnabled(const QModelIndex& index)
{
    if (!isRow(index))
        return;
    Repo::Entry& entry = conf->entries[index.row()];
    entry.enabled = isEnabled(entry) ? 0 : 2;
    const QModelIndex cell = this->index(index.row(), ColumnEnabled);
    Q_EMIT HAbstractTableModel::dataChanged(cell, cell);
    Q_EMIT configChanged();
}

void Model::browse(const QModelIndex& index, QWidget* parent)
{
    if (isRow(index) && index.row() < yumIO->count())
        RepoBrowse::browse(parent, conf->entries.at(index.row()), yumIO);
}

} // namespace RepoEditor
