// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HDialog.h"

class HFrameLabel;
class QPushButton;
class YumConfIO;

namespace Repo
{
struct Entry;
}

namespace RepoEditor
{

class Config;

/// The dialog for one repository entry. It can be used again: setEntry() and exec(). The result is
/// 1 where the entry was changed, else 0.
class ConfigDialog : public HDialog
{
    Q_OBJECT

public:
    /// Keeps `conf`, whose used repositories follow the entries that are changed here.
    ConfigDialog(YumConfIO* conf, QWidget* parent);

    /// The entry to edit, borrowed until the dialog is closed. It is read again at each reset and
    /// written only by ok().
    void setEntry(Repo::Entry* entry);

    void setVisible(bool visible) override;

public Q_SLOTS:
    void changed();
    void reset();
    void cancel();
    void ok();

private:
    void setHasChanged(bool changed);
    void updateStatusLabel();

    Config* config;
    HFrameLabel* statusLabel;
    QPushButton* resetButton;
    YumConfIO* conf;
    Repo::Entry* entry = nullptr; ///< not owned
    bool hasChanged = false;
};

} // namespace RepoEditor
