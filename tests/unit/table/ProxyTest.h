// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "TableEngine.h"

#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"

#include <QObject>
#include <QStringList>

/// Counts how often the base or the proxy itself asks for a verdict.
class CountingProxy : public PackageTable::SortFilterProxyModel
{
public:
    using SortFilterProxyModel::SortFilterProxyModel;

    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        asked.append(row);
        return SortFilterProxyModel::filterAcceptsRow(row, parent);
    }

    mutable QList<int> asked;
};

/// Takes the way through virtual operations and variants, as any derived class does.
class DerivedProxy : public PackageTable::SortFilterProxyModel
{
public:
    using SortFilterProxyModel::SortFilterProxyModel;
};

/// Hands out the entries by the model's interface only, and counts the texts that it builds.
class IndirectModel : public PackageTable::Model
{
public:
    using Model::Model;

    QVariant data(const QModelIndex& index, int role) const override
    {
        displayed += role == Qt::DisplayRole;
        return PackageTable::Model::data(index, role);
    }

    mutable int displayed = 0;
};

/// A test class with an empty engine, its model, and a proxy that lists all rows by name.
class ProxyTest : public QObject
{
    Q_OBJECT

protected:
    QStringList listed(const QAbstractItemModel& of) const
    {
        QStringList names;
        for (int row = 0; row < of.rowCount(); ++row)
            names += of.index(row, PackageTable::ColumnName).data().toString();
        return names;
    }
    QStringList listed() const { return listed(*proxy); }
    /// Rows that tie in every column, chains of versions among them.
    void fillAtRandom(int count);

    TableEngine* engine = nullptr;
    PackageTable::Model* model = nullptr;
    PackageTable::SortFilterProxyModel* proxy = nullptr;

private Q_SLOTS:
    void init();
    void cleanup();
};
