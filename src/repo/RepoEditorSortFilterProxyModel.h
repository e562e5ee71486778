// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QSortFilterProxyModel>

namespace RepoEditor
{

/// Sorts identifiers and names by text and number: "repo9" is before "repo10".
class SortFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SortFilterProxyModel(QObject* parent);

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
};

} // namespace RepoEditor
