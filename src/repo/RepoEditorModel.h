// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HAbstractTableModel.h"

#include <QFont>
#include <QIcon>

class QWidget;
class YumConfIO;
class YumIO;

namespace Repo
{
struct Entry;
}

namespace RepoEditor
{

/// Values are positions in the table.
enum Column : int {
    ColumnUse = 0,     ///< whether this run of the program uses the repository; in no file
    ColumnEnabled = 1, ///< whether it is configured to be enabled
    ColumnId = 2,
    ColumnName = 3,
    ColumnCount = 4,
};

/// The configuration's entries as a flat table: row r is entry r, nothing is stored here. Every
/// index given to it is one of its own, never a proxy's.
///
/// Who changes the entries otherwise than through this model announces it by reset(). Until then
/// rows that are gone have no data.
class Model : public HAbstractTableModel
{
    Q_OBJECT

public:
    /// Owns neither the engine nor the configuration.
    Model(YumIO* yumIO, YumConfIO* conf, QObject* parent);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// The view's font; an identifier that is missing is shown in its italics.
    void setViewFont(const QFont& font);

    /// Both checks of a row in words; empty where there is no such row.
    QString checks(const QModelIndex& index) const;

    /// The index of the row in the first column.
    QModelIndex createIndex(int row) const;

    /// Appends the entry; returns its row.
    int addRow(const Repo::Entry& entry);
    /// False where there is no such row.
    bool removeRow(int row, const QModelIndex& parent = QModelIndex());
    /// Announces that the entries were replaced.
    void reset();
    /// Announces that the row's entry changed.
    void dataChanged(int row);

    void toggleUse(const QModelIndex& index);
    /// Switches between 0 and 2: once toggled, the configuration states the option.
    void toggleEnabled(const QModelIndex& index);
    /// Opens the repository in a browser, if the engine holds more packages than the row's number.
    void browse(const QModelIndex& index, QWidget* parent);

Q_SIGNALS:
    /// The user toggled the use for this session.
    void useChanged();
    /// The user toggled a configured value.
    void configChanged();

private:
    bool isRow(const QModelIndex& index) const;
    bool isUsed(const Repo::Entry& entry) const;
    bool isEnabled(const Repo::Entry& entry) const;

    YumIO* yumIO;
    YumConfIO* conf;
    QFont viewFont;
    QIcon noneIcon;
    QIcon checkIcon;
};

} // namespace RepoEditor
