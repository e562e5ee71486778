// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QSortFilterProxyModel>

class HAbstractTableModel;

/// Sorts by a column, ties by a second one, and sorts from scratch whenever the filter changes.
/// Values are compared by type and code units: neither the locale nor case folding plays a part.
class HSortFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    HSortFilterProxyModel(int secondaryColumn, QObject* parent);

    /// `model` is not owned.
    void setSourceModel(HAbstractTableModel* model);

    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

    /// Final: callers may go to the source model's data directly.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const final
    {
        return QSortFilterProxyModel::data(index, role);
    }

    /// Each of these filters anew, resets the source model and sorts by the column and order in
    /// force.
    void filterChanged();
    void clear();
    void setFilterRegExp(const QString& pattern);
    void setFilterRegExp(const QRegExp& regExp);

protected:
    /// The index in the secondary column of the same row and model; invalid where `index` has no
    /// model.
    QModelIndex createSecondarySortIndex(const QModelIndex& index) const;

    int secondaryColumn() const { return m_secondaryColumn; }

    /// Resets the source model and sorts by the column and order in force.
    void sortAnew();

private:
    void setSourceModel(QAbstractItemModel* model) override;

    const int m_secondaryColumn;
    HAbstractTableModel* m_source = nullptr;
};
