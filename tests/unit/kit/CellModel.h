// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HAbstractTableModel.h"

#include <QHash>
#include <QPair>
#include <QVector>

/// A table whose cells hold whatever a test puts into them.
class CellModel : public HAbstractTableModel
{
public:
    CellModel(int rows, int columns)
        : m_rows(rows)
        , m_columns(columns)
        , m_cells(rows * columns)
    {
    }

    /// One row for each value, in the first column.
    explicit CellModel(const QVariantList& values)
        : CellModel(values.size(), 1)
    {
        for (int row = 0; row < m_rows; ++row)
            set(row, 0, values[row]);
    }

    void set(int row, int column, const QVariant& value, int role = Qt::DisplayRole)
    {
        m_cells[row * m_columns + column][role] = value;
        Q_EMIT dataChanged(index(row, column), index(row, column), {role});
    }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : m_rows;
    }

    int columnCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : m_columns;
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        return m_cells[index.row() * m_columns + index.column()].value(role);
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        const Qt::ItemFlags flags = HAbstractTableModel::flags(index);
        return fixedRows.contains(index.row()) ? flags & ~Qt::ItemIsSelectable : flags;
    }

    QVector<int> fixedRows; ///< rows that can't be selected

private:
    const int m_rows;
    const int m_columns;
    QVector<QHash<int, QVariant>> m_cells;
};
