// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"
#include "kit/HAbstractTableModel.h"
#include "table/PackageTable.h"

#include <QColor>
#include <QIcon>
#include <QPointer>

class QWidget;
class YumConfIO;
class YumIO;

namespace PackageTable
{

namespace Describe
{
class Dialog;
}

/// The engine's entries as a flat table: row r is the engine's entry r, nothing is stored here.
/// Every index given to it is one of its own, never a proxy's.
///
/// The engine's rows change only while they are collected; reset() announces that.
class Model : public HAbstractTableModel
{
    Q_OBJECT

public:
    /// Doesn't own the engine.
    explicit Model(YumIO* yumIO, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex index(int row, int column,
                      const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// The configuration that describe() and browse() look repositories up in; not owned.
    void setYumConfIO(YumConfIO* conf);

    YumIO* engine() const { return yumIO; }

    /// The row must exist.
    Package::State getState(int row) const;
    /// Doesn't ask whether the action makes sense for the row's state.
    void setAction(const QModelIndex& index, Package::Action action);
    /// Steps to the next action that the row's state allows, round and round.
    void toggleAction(const QModelIndex& index);

    /// Announces a fresh collection.
    void reset();

    /// Shows all that is known about the row in a modal dialog, and returns when it is closed.
    void describe(const QModelIndex& index, QWidget* parent);
    /// Opens the row's repository in a browser.
    void browse(const QModelIndex& index, QWidget* parent);

    /// A disabled table is drawn in paler colours.
    void setEnabled(bool enabled);

    /// What a column from ColumnName on shows of an entry.
    static QString text(const Package::Entry& entry, int column);

public Q_SLOTS:
    /// Marks each row for update or installation; rows that are up to date stay as they are.
    void setSelected(QModelIndexList indices);
    void clearActions();

private:
    bool isRow(const QModelIndex& index) const;
    void changeAction(int row, Package::Action action);
    QVariant icon(const Package::Entry& entry, int column) const;
    QVariant toolTip(const Package::Entry& entry, int column) const;
    QVariant foreground(const Package::Entry& entry, int column) const;
    static QString versionList(const Package::Entry& entry);

    struct Foreground {
        QColor enabled;
        QColor disabled;
    };

    YumIO* yumIO;
    YumConfIO* yumConfIO = nullptr;
    QPointer<Describe::Dialog> description; ///< made at the first describe(); goes with its parent
    bool enabled = true;
    QIcon updateIcon, installIcon, removeIcon, noneIcon;
    QIcon outOfDateIcon, upToDateIcon;
    QIcon suiteIcon, groupIcon, packageIcon;
    QIcon emptyIcon;
    Foreground updatable, installed, installable;
};

} // namespace PackageTable
