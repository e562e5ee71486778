// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QAbstractTableModel>

/// A table model that can make its proxies look at everything anew.
class HAbstractTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit HAbstractTableModel(QObject* parent = nullptr);

    /// Resets the model without any change in it: proxies forget their mapping and what they know
    /// of the column that they sort by.
    void forceSortColumnRediscovery();
};
