// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorConfigDialog.h"
#include "kit/HFrameLabel.h"
#include "kit/ScreenLimit.h"
#include "repo/RepoEditorConfig.h"
#include "repo/YumConfIO.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

RepoEditor::ConfigDialog::ConfigDialog(YumConfIO* conf, QWidget* parent)
    : HDialog(parent)
    , conf(conf)
{
    setWindowTitle(tr("VOK Repository Configuration"));
    setAttribute(Qt::WA_ShowModal);

    auto* grid = new QGridLayout;
    config = new Config(grid);
    config->setParent(this);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    auto* row = new QHBoxLayout;
    layout->addLayout(row);

    statusLabel = new HFrameLabel(this);
    row->addWidget(statusLabel);
    row->addStretch();
    resetButton = new QPushButton(tr("Reset"), this);
    resetButton->setToolTip(tr("Undo changes to this repository configuration"));
    row->addWidget(resetButton);
    auto* cancelButton = new QPushButton(tr("Cancel"), this);
    cancelButton->setToolTip(
        tr("Undo changes to this repository configuration and close the window"));
    row->addWidget(cancelButton);
    auto* okButton = new QPushButton(tr("OK"), this);
    okButton->setToolTip(
        tr("Apply changes to all repository configurations, and close the window"));
    okButton->setDefault(true);
    row->addWidget(okButton);

    config->disable();

    connect(config, &Config::changed, this, &ConfigDialog::changed);
    connect(resetButton, &QPushButton::clicked, this, &ConfigDialog::reset);
    connect(cancelButton, &QPushButton::clicked, this, &ConfigDialog::cancel);
    connect(okButton, &QPushButton::clicked, this, &ConfigDialog::ok);
}

void RepoEditor::ConfigDialog::setEntry(Repo::Entry* newEntry)
{
    entry = newEntry;
    config->setEntry(*entry);
    updateStatusLabel();
}

void RepoEditor::ConfigDialog::setVisible(bool visible)
{
    if (visible) {
        config->setDefaults(conf->mainEnabled, conf->mainGpgcheck);
        setHasChanged(false);
        config->setFocusOnIdentifier();
        // By itself a dialog is content with two thirds of the screen, too little for the form on
        // a small one.
        if (!testAttribute(Qt::WA_Resized))
            resize(ScreenLimit::windowSize(this));
    }
    QDialog::setVisible(visible);
}

void RepoEditor::ConfigDialog::changed()
{
    setHasChanged(true);
}

void RepoEditor::ConfigDialog::reset()
{
    config->setEntry(*entry);
    setHasChanged(false);
}

void RepoEditor::ConfigDialog::cancel()
{
    reject();
}

void RepoEditor::ConfigDialog::ok()
{
    if (!hasChanged) {
        reject();
        return;
    }
    const Repo::Entry changedEntry = config->toEntry();
    conf->usedRepos[changedEntry.id] =
        changedEntry.enabled == 1 ? conf->mainEnabled : changedEntry.enabled == 2;
    *entry = changedEntry;
    accept();
}

void RepoEditor::ConfigDialog::setHasChanged(bool changed)
{
    hasChanged = changed;
    resetButton->setEnabled(changed);
    updateStatusLabel();
}

void RepoEditor::ConfigDialog::updateStatusLabel()
{
    if (!config->setStatus(conf, statusLabel))
        statusLabel->setText(QString());
}
