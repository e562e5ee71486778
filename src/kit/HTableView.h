// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QTableView>

#include <vector>

/// A table that sizes its columns and its window from its contents.
class HTableView : public QTableView
{
    Q_OBJECT

public:
    /// The view plans for as many rows as its model has when the size hint is first taken, but at
    /// least `minimumRows` and at most `maximumRows`.
    HTableView(QStyleOptionViewItem::Position decorationPosition, int minimumRows, int maximumRows,
               QWidget* parent);

    QStyleOptionViewItem viewOptions() const override;
    QSize sizeHint() const override;

    /// The width that the widest cell of all rows wants, on screen or not; -1 without a model.
    int sizeHintForColumn(int column) const override;

    /// Sorts by `column` in the order of the header's indicator where that stands on it, else
    /// ascending.
    void sortByColumn(int column);
    void sortByColumn(int column, Qt::SortOrder order);

    /// Fits the columns to all rows, then lets the window grow, but never shrink, to show them.
    void resizeColumnsToContents();

    /// One index of the view's own model for each selected row.
    QModelIndexList selectedRows() const;

    /// Width of the frame that some styles draw around the contents alone, both sides together.
    int frameOnlyAroundContentsPixels() const;

protected:
    /// Shows a new current cell and tells screen readers of it, as the base does. For views that
    /// don't call the base's currentChanged().
    void followCurrent(const QModelIndex& current, const QModelIndex& previous);

private:
    std::vector<int> widestHints(const QStyleOptionViewItem& option) const;
    int widestHint(int column, const QStyleOptionViewItem& option) const;

    const QStyleOptionViewItem::Position m_decorationPosition;
    mutable int m_minimumRows;
    mutable int m_maximumRows;
    std::vector<int> m_widest; ///< by column, for the time of a resize of all columns
};
