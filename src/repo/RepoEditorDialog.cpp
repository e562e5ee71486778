// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorDialog.h"

#include "kit/Colors.h"
#include "kit/HFrameLabel.h"
#include "kit/HSeparator.h"
#include "repo/RepoBrowse.h"
#include "repo/RepoEditorConfigDialog.h"
#include "repo/RepoEditorContextMenu.h"
#include "repo/RepoEditorModel.h"
#include "repo/RepoEditorSortFilterProxyModel.h"
#include "repo/RepoEditorView.h"
#include "repo/YumConfIO.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSet>
#include <QVBoxLayout>
#include <QVector>

#include <algorithm>
#include <cstdlib>

static int intReverseCompare(const void* left, const void* right)
{
    return *static_cast<const int*>(right) - *static_cast<const int*>(left);
}

namespace RepoEditor
{

Dialog::Dialog(YumIO* yumIO, YumConfIO* conf, QWidget* parent)
    : HDialog(parent)
    , parent(parent)
    , model(new Model(yumIO, conf, this))
    , configDialog(new ConfigDialog(conf, this))
    , yumIO(yumIO)
    , conf(conf)
{
    setWindowTitle(tr("VOK Repository Configuration Editor"));
    setAttribute(Qt::WA_ShowModal);

    auto* proxy = new SortFilterProxyModel(this);
    proxy->setSourceModel(model);
    view = new View(model, proxy, this);
    model->setViewFont(view->font());

    browseButton = addButton(tr("Browse Repository"),
                             tr("Browse the first URL specified for the selected repository using "
                                "an external web browser"),
                             [this] { browse(); });
    editButton =
        addButton(tr("Edit"), tr("Edit the selected repository configuration"), [this] { edit(); });
    QPushButton* addButton = this->addButton(
        tr("Add"), tr("Create a new repository configuration from scratch"), [this] { add(); });
    addButton->setDefault(false);
    copyButton = this->addButton(
        tr("Copy"), tr("Create a new repository configuration based on the selected repository"),
        [this] { copy(); });
    removeButton = this->addButton(tr("Remove"), tr("Remove the selected repository configuration"),
                                   [this] { remove(); });
    for (QPushButton* button : {browseButton, editButton, copyButton, removeButton})
        button->setEnabled(false);

    statusLabel = new HFrameLabel(this);
    resetAllButton = this->addButton(
        tr("Reset All"),
        tr("Undo changes to all repository configurations since the last Apply or opening of the "
           "dialog"),
        [this] { resetAll(); });
    QPushButton* cancelButton = this->addButton(
        tr("Cancel"),
        tr("Undo changes to all repository configurations since the last Apply or opening of the "
           "dialog, and close the window"),
        [this] { cancel(); });
    applyButton = this->addButton(
        tr("Apply"),
        tr("Apply changes to all repository configurations, but do not close the window"),
        [this] { apply(); });
    applyButton->setDefault(true);
    QPushButton* okButton = this->addButton(
        tr("OK"), tr("Apply changes to all repository configurations, and close the window"),
        [this] { ok(); });

    auto* rowButtons = new QHBoxLayout;
    rowButtons->addWidget(browseButton);
    rowButtons->addStretch();
    for (QPushButton* button : {editButton, addButton, copyButton, removeButton})
        rowButtons->addWidget(button);

    auto* dialogButtons = new QHBoxLayout;
    dialogButtons->addWidget(statusLabel);
    dialogButtons->addStretch();
    for (QPushButton* button : {resetAllButton, cancelButton, applyButton, okButton})
        dialogButtons->addWidget(button);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view);
    layout->addLayout(rowButtons);
    layout->addWidget(new HSeparator(this));
    layout->addLayout(dialogButtons);

    connect(model, &Model::useChanged, this, &Dialog::useChanged);
    connect(model, &Model::configChanged, this, &Dialog::configChanged);
    connect(view, QOverload<int, int>::of(&View::currentChanged), this, &Dialog::currentChanged);
    connect(view, &View::activated, this, QOverload<const QModelIndex&>::of(&Dialog::edit));
    connect(view->getContextMenu(), &ContextMenu::edit, this,
            QOverload<const QModelIndex&>::of(&Dialog::edit));
}

QPushButton* Dialog::addButton(const QString& text, const QString& toolTip,
                               std::function<void()> action)
{
    auto* button = new QPushButton(text, this);
    button->setToolTip(toolTip);
    connect(button, &QPushButton::clicked, this, std::move(action));
    return button;
}

int Dialog::exec()
{
    // The base waits for the end of the dialog even where it wasn't shown.
    show();
    return isVisible() ? HDialog::exec() : static_cast<int>(Rejected);
}

void Dialog::setVisible(bool visible)
{
    if (visible == isVisible()) {
        QDialog::setVisible(visible);
        return;
    }

    if (visible) {
        savedUsed = conf->usedRepos;
        const bool wasRead = conf->read(parent);
        model->reset();
        if (!wasRead)
            return;
        // The list opens in ascending order, whichever column it was sorted by.
        view->horizontalHeader()->setSortIndicator(ColumnName, Qt::DescendingOrder);
        view->sortByColumn(ColumnId);
        view->resizeColumnsToContents();
        useHasChanged = false;
        setConfigHasChanged(false);
        setEntryHasChanged(false);
        applied = false;
        currentChanged(-1, -1);
    }
    QDialog::setVisible(visible);
    if (!visible && (applied || useHasChanged || forceReposChanged))
        Q_EMIT reposChanged();
}

void Dialog::currentChanged(int current, int)
{
    for (QPushButton* button : {browseButton, editButton, copyButton, removeButton})
        button->setEnabled(current != -1);
    updateStatusLabel();
}

void Dialog::useChanged()
{
    useHasChanged = true;
}

void Dialog::configChanged()
{
    setConfigHasChanged(true);
}

void Dialog::browse()
{
    const int row = view->currentRow();
    if (row != -1)
        RepoBrowse::browse(this, conf->entries.at(row), yumIO);
}

void Dialog::edit()
{
    editRow(view->currentRow());
}

void Dialog::edit(const QModelIndex& index)
{
    editRow(index.row());
}

void Dialog::editRow(int row)
{
    if (row < 0 || row >= conf->entries.count())
        return;
    // Nobody adds or removes entries while the modal dialog is open, so that the entry stays where
    // it is.
    configDialog->setEntry(&conf->entries[row]);
    if (configDialog->exec() != Accepted)
        return;
    model->dataChanged(row);
    setConfigHasChanged(true);
}

void Dialog::add()
{
    addEntry(Repo::Entry());
}

void Dialog::copy()
{
    const int row = view->currentRow();
    if (row != -1)
        addEntry(conf->entries.at(row));
}

void Dialog::addEntry(Repo::Entry entry)
{
    configDialog->setEntry(&entry);
    if (configDialog->exec() != Accepted)
        return;
    view->setCurrentIndex(QModelIndex());
    const int row = model->addRow(entry);
    view->setCurrentRow(row);
    model->dataChanged(row);
    setConfigHasChanged(true);
}

void Dialog::remove()
{
    QVector<int> rows;
    for (const QModelIndex& index : view->selectedRows())
        rows.append(index.row());
    if (rows.isEmpty())
        return;
    view->setCurrentIndex(QModelIndex());
    // The last one first, so that the others keep their numbers.
    qsort(rows.data(), static_cast<size_t>(rows.size()), sizeof(int), intReverseCompare);
    for (int row : qAsConst(rows))
        model->removeRow(row);
    setConfigHasChanged(true);
}

void Dialog::reset() {}

void Dialog::resetAll()
{
    const int row = view->currentRow();
    const QString id = row != -1 ? conf->entries.at(row).id : QString();
    conf->usedRepos = savedUsed;
    conf->read(this);
    model->reset();
    if (row != -1)
        setEntryToOldId(id);
    useHasChanged = false;
    setConfigHasChanged(false);
    setEntryHasChanged(false);
}

void Dialog::setEntryToOldId(const QString& id)
{
    for (int row = 0; row < conf->entries.count(); ++row) {
        if (conf->entries.at(row).id == id)
            view->setCurrentRow(row);
    }
}

void Dialog::cancel()
{
    reject();
}

void Dialog::reject()
{
    if (isVisible())
        resetAll();
    HDialog::reject();
}

bool Dialog::apply()
{
    if (!conf->write(this))
        return false;
    // No row stays selected.
    model->reset();
    setConfigHasChanged(false);
    setEntryHasChanged(false);
    applied = true;
    return true;
}

void Dialog::ok()
{
    if ((!entryHasChanged && !configHasChanged) || apply())
        accept();
}

void Dialog::setEntryHasChanged(bool changed)
{
    entryHasChanged = changed;
    updateApplyButtons();
}

void Dialog::setConfigHasChanged(bool changed)
{
    configHasChanged = changed;
    updateApplyButtons();
}

void Dialog::updateApplyButtons()
{
    resetAllButton->setEnabled(entryHasChanged || configHasChanged);
    applyButton->setEnabled(entryHasChanged || configHasChanged);
    updateStatusLabel();
}

void Dialog::updateStatusLabel()
{
    const QString duplicateId = getDuplicateId();
    if (hasEmptyId()) {
        statusLabel->setPalette(Colors::makeError(statusLabel->palette()));
        statusLabel->setText(tr("A repository has no Identifier"));
    } else if (!duplicateId.isEmpty()) {
        statusLabel->setPalette(Colors::makeError(statusLabel->palette()));
        statusLabel->setText(
            tr("Two or more repositories have the Identifier, %1").arg(duplicateId));
    } else if (!entryHasChanged && !configHasChanged) {
        statusLabel->setText(QString());
    } else {
        statusLabel->setPalette(Colors::makeOK(statusLabel->palette()));
        statusLabel->setText(tr("Unapplied Configuration Changes"));
    }
}

bool Dialog::hasEmptyId() const
{
    return std::any_of(conf->entries.constBegin(), conf->entries.constEnd(),
                       [](const Repo::Entry& entry) { return entry.id.isEmpty(); });
}

QString Dialog::getDuplicateId() const
{
    // From the end, so that the last one found is the first of the list.
    QString duplicate;
    QSet<QString> later;
    for (auto entry = conf->entries.crbegin(); entry != conf->entries.crend(); ++entry) {
        if (later.contains(entry->id))
            duplicate = entry->id;
        later.insert(entry->id);
    }
    return duplicate;
}

} // namespace RepoEditor
