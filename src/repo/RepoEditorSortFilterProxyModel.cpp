// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorSortFilterProxyModel.h"

#include "repo/RepoEditorModel.h"

namespace RepoEditor
{

SortFilterProxyModel::SortFilterProxyModel(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    // A row stays where the user sees it, whatever becomes of its identifier, until he sorts again.
    setDynamicSortFilter(false);
}

/// Where the run of digits, or of other characters, that begins at `from` ends.
static int endOfRun(const QString& text, int from, bool digits)
{
    while (from < text.size() && text.at(from).isDigit() == digits)
        ++from;
    return from;
}

bool SortFilterProxyModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    if (!left.model() || !right.model())
        return false;
    if (left.column() != ColumnId && left.column() != ColumnName)
        return QSortFilterProxyModel::lessThan(left, right);
    const QVariant leftValue = left.data();
    const QVariant rightValue = right.data();
    if (leftValue.userType() != QMetaType::QString || rightValue.userType() != QMetaType::QString)
        return QSortFilterProxyModel::lessThan(left, right);

    const QString leftText = leftValue.toString();
    const QString rightText = rightValue.toString();
    for (int lp = 0, rp = 0;;) {
        const int li = endOfRun(leftText, lp, false);
        const int ri = endOfRun(rightText, rp, false);
        const int order =
            QStringRef::compare(leftText.midRef(lp, li - lp), rightText.midRef(rp, ri - rp));
        if (order != 0)
            return order < 0;
        if (li == leftText.size() && ri == rightText.size())
            return false;

        lp = endOfRun(leftText, li, true);
        rp = endOfRun(rightText, ri, true);
        const qulonglong leftNumber = leftText.midRef(li, lp - li).toULongLong();
        const qulonglong rightNumber = rightText.midRef(ri, rp - ri).toULongLong();
        if (leftNumber != rightNumber)
            return leftNumber < rightNumber;
        if (lp == leftText.size() && rp == rightText.size())
            return false;
    }
}

} // namespace RepoEditor
