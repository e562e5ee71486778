// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HSortFilterProxyModel.h"

#include "kit/HAbstractTableModel.h"

#include <QDateTime>

namespace
{

enum class Order { Less, Equal, Other };

template<typename T> Order compare(const T& left, const T& right)
{
    return left < right ? Order::Less : left == right ? Order::Equal : Order::Other;
}

Order compareValues(const QVariant& left, const QVariant& right)
{
    switch (left.userType()) {
    case QMetaType::Int:
        return compare(left.toInt(), right.toInt());
    case QMetaType::UInt:
        return compare(left.toUInt(), right.toUInt());
    case QMetaType::LongLong:
        return compare(left.toLongLong(), right.toLongLong());
    case QMetaType::ULongLong:
        return compare(left.toULongLong(), right.toULongLong());
    case QMetaType::Double:
        return compare(left.toDouble(), right.toDouble());
    case QMetaType::QChar:
        return compare(left.toChar(), right.toChar());
    case QMetaType::QDate:
        return compare(left.toDate(), right.toDate());
    case QMetaType::QTime:
        return compare(left.toTime(), right.toTime());
    case QMetaType::QDateTime:
        return compare(left.toDateTime(), right.toDateTime());
    default:
        return compare(left.toString(), right.toString());
    }
}

} // namespace

HSortFilterProxyModel::HSortFilterProxyModel(int secondaryColumn, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_secondaryColumn(secondaryColumn)
{
    // A row must not jump away under the pointer because a click in it changed a value that it is
    // sorted by; rows move only when the user sorts or filters.
    setDynamicSortFilter(false);
}

void HSortFilterProxyModel::setSourceModel(HAbstractTableModel* model)
{
    m_source = model;
    QSortFilterProxyModel::setSourceModel(model);
}

void HSortFilterProxyModel::setSourceModel(QAbstractItemModel* model)
{
    // Reached through a pointer to the base class only.
    m_source = qobject_cast<HAbstractTableModel*>(model);
    QSortFilterProxyModel::setSourceModel(model);
}

bool HSortFilterProxyModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    switch (compareValues(left.data(), right.data())) {
    case Order::Less:
        return true;
    case Order::Other:
        return false;
    case Order::Equal:
        break;
    }
    if (left.column() == m_secondaryColumn)
        return false;
    const QModelIndex secondary = createSecondarySortIndex(left);
    // Without such a column there is nothing left to compare, and asking again would never end.
    return secondary.isValid() && lessThan(secondary, createSecondarySortIndex(right));
}

QModelIndex HSortFilterProxyModel::createSecondarySortIndex(const QModelIndex& index) const
{
    return index.isValid() ? index.model()->index(index.row(), m_secondaryColumn) : QModelIndex();
}

void HSortFilterProxyModel::filterChanged()
{
    invalidateFilter();
    sortAnew();
}

void HSortFilterProxyModel::clear()
{
    invalidate();
    sortAnew();
}

void HSortFilterProxyModel::setFilterRegExp(const QString& pattern)
{
    QSortFilterProxyModel::setFilterRegExp(pattern);
    sortAnew();
}

void HSortFilterProxyModel::setFilterRegExp(const QRegExp& regExp)
{
    QSortFilterProxyModel::setFilterRegExp(regExp);
    sortAnew();
}

void HSortFilterProxyModel::sortAnew()
{
    if (m_source)
        m_source->forceSortColumnRediscovery();
    sort(sortColumn(), sortOrder());
}
