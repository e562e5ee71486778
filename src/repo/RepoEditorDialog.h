// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HDialog.h"

#include <QHash>
#include <QString>

#include <functional>

class HFrameLabel;
class QModelIndex;
class QPushButton;
class YumConfIO;
class YumIO;

namespace Repo
{
struct Entry;
}

namespace RepoEditor
{

class ConfigDialog;
class Model;
class View;

/// The modal window in which the user sees and changes all repositories. It works on the entries
/// and the session's table of the configuration directly, and reads the files anew whenever it is
/// shown.
class Dialog : public HDialog
{
    Q_OBJECT

public:
    /// Owns none of them. `parent` is the parent of what reading has to say, too.
    Dialog(YumIO* yumIO, YumConfIO* conf, QWidget* parent);

    /// Showing fails, after a report, where the files can't be read.
    void setVisible(bool visible) override;

    /// Whether the next leave signals reposChanged() even if nothing changed.
    bool forceReposChanged = false;

Q_SIGNALS:
    /// The dialog is gone, and the package manager is to be told of other repositories.
    void reposChanged();

public Q_SLOTS:
    /// Comes back at once, with Rejected, where showing failed.
    int exec() override;

    /// Rows of the model, -1 for none.
    void currentChanged(int current, int previous);
    void useChanged();
    void configChanged();
    void browse();
    void edit();
    /// An index of the model; an invalid one does nothing.
    void edit(const QModelIndex& index);
    void add();
    void copy();
    void remove();
    void reset();
    /// Back to what the files say, and to the session's values from when the dialog was opened.
    void resetAll();
    void cancel();
    /// False where the files weren't written.
    bool apply();
    void ok();

    /// However the dialog is dismissed, it takes the changes back.
    void reject() override;

private:
    QPushButton* addButton(const QString& text, const QString& toolTip,
                           std::function<void()> action);
    void editRow(int row);
    void addEntry(Repo::Entry entry);
    void setEntryToOldId(const QString& id);
    void setEntryHasChanged(bool changed);
    void setConfigHasChanged(bool changed);
    void updateApplyButtons();
    void updateStatusLabel();
    bool hasEmptyId() const;
    /// The first id in the list that a later entry has, too; empty where there is none.
    QString getDuplicateId() const;

    QWidget* parent;
    Model* model;
    View* view;
    QPushButton* browseButton;
    QPushButton* editButton;
    QPushButton* copyButton;
    QPushButton* removeButton;
    HFrameLabel* statusLabel;
    QPushButton* resetAllButton;
    QPushButton* applyButton;
    ConfigDialog* configDialog;
    YumIO* yumIO;
    YumConfIO* conf;
    QHash<QString, bool> savedUsed; ///< the session's values from when the dialog was opened
    bool useHasChanged = false;
    bool entryHasChanged = false;
    bool configHasChanged = false;
    bool applied = false; ///< since the dialog was opened
};

} // namespace RepoEditor
