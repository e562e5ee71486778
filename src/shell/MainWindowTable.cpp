// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/MainWindow.h"

#include "engine/YumIO.h"
#include "kit/HFrameLabel.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"
#include "table/PackageTableView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

void MainWindow::setMode(PackageTable::Mode mode)
{
    modeBox->setCurrentIndex(mode);
}

void MainWindow::setStateFilter(PackageTable::StateFilter filter)
{
    stateBox->setCurrentIndex(filter);
}

void MainWindow::setRegexp(const char* regexp)
{
    regexpEdit->setText(QString::fromLocal8Bit(regexp));
}

void MainWindow::setDups(bool include)
{
    dupsBox->setChecked(include);
}

void MainWindow::setGroups(bool include)
{
    groupsBox->setChecked(include);
}

void MainWindow::resize()
{
    fitToContents();
}

bool MainWindow::inSearchMode() const
{
    return modeBox->currentIndex() == PackageTable::ModeSearch;
}

void MainWindow::filtersearch()
{
    if (inSearchMode())
        setReady(false);
    prepareFilterSearch();
    proxy->setFilterRegExp(regexpEdit->text());
    if (inSearchMode())
        setReady(true);
    anyFilterChanged();
}

void MainWindow::prepareFilterSearch()
{
    const QString pattern = regexpEdit->text();
    if (!inSearchMode() || pattern.isEmpty() || pattern == QLatin1String(".*"))
        return;
    // The command line chooses the mode before there is a script to load anything from;
    // initialize() comes here again when there is.
    if (!engineStarted)
        return;
    // With everything at hand the switching would do no more than search for the last pattern
    // once again.
    if (engine->areFileListsCollected() && engine->areOtherDataCollected() &&
        engine->areSearchTextsCollected())
        return;
    proxy->setFilter(false);
    collectSearched();
    proxy->setFilter(true);
}

void MainWindow::collectSearched()
{
    engine->collectFileLists();
    engine->collectOtherData();
    engine->collectSearchTexts();
}

void MainWindow::modeChanged(int index)
{
    const bool search = index == PackageTable::ModeSearch;
    if (search)
        setReady(false);
    if (search) {
        filterButton->setText(tr("Search"));
        regexpEdit->setToolTip(tr("Regular expression to compare to all fields of a package"));
        filterButton->setToolTip(
            tr("Perform the search for the regular expression specified to the left"));
    } else {
        filterButton->setText(tr("Filter"));
        regexpEdit->setToolTip(
            tr("Regular expression filter matching textual fields visible in the table"));
        filterButton->setToolTip(tr("Apply the filter specified to the left"));
    }
    prepareFilterSearch();
    proxy->setMode(static_cast<PackageTable::Mode>(index));
    if (search)
        setReady(initialized);
    anyFilterChanged();
}

template<typename Change> void MainWindow::changeFilter(Change change)
{
    if (inSearchMode())
        setReady(false);
    change();
    if (inSearchMode())
        setReady(initialized);
    anyFilterChanged();
}

void MainWindow::stateFilterChanged(int index)
{
    changeFilter([=] { proxy->setStateFilter(static_cast<PackageTable::StateFilter>(index)); });
}

void MainWindow::dupsFilterChanged(int checked)
{
    changeFilter([=] { proxy->setDupsFilter(checked != 0); });
}

void MainWindow::groupsFilterChanged(int checked)
{
    changeFilter([=] { proxy->setGroupsFilter(checked != 0); });
}

void MainWindow::anyFilterChanged()
{
    warnUnlistedActions();
}

void MainWindow::warnConfigure()
{
    warningLabel->setText(tr("Unlisted Actions"));
    warningLabel->setFixedSize(warningLabel->sizeHint());
    warningLabel->setText(QString());
}

void MainWindow::warnUnlistedActions()
{
    if (!engine)
        return;
    for (int row = 0; row < engine->count(); ++row) {
        if ((*engine)[row]->action == Package::ActionNone ||
            proxy->mapFromSource(model->index(row, 0)).isValid())
            continue;
        warningLabel->setText(tr("Unlisted Actions"));
        warningLabel->setToolTip(
            tr("Some packages have actions specified, but because of the current\n"
               "Mode, Filter, Search, State, Duplicates, and Groups settings,\n"
               "these packages are not listed currently.\n"
               "Pressing Apply will cause these actions to occur nonetheless."));
        return;
    }
    warningLabel->setText(QString());
    warningLabel->setToolTip(QString());
}

void MainWindow::collectedExtraData()
{
    const QString text =
        tr("Specify the method for using a regular expression to select packages in the table:\n"
           "\tFilter uses the textual fields visible in the table, as if they were separated by "
           "spaces.\n"
           "\tSearch uses all fields in packages, including list of Files, Change Log, Requires, "
           "etc.,\n"
           "\tindependently.  It is considerably slower.");
    const bool loaded = engine->areFileListsCollected() && engine->areOtherDataCollected();
    modeBox->setToolTip(loaded ? text : tr("%1 (Must load extra data.)").arg(text));
}

void MainWindow::currentChanged(int currentRow, int)
{
    describeButton->setEnabled(currentRow != -1);
}

void MainWindow::stateChanged(int row)
{
    if (!engine)
        return;
    const auto marked = [](const Package::Entry* entry) {
        return entry->action != Package::ActionNone;
    };
    applyButton->setEnabled((row != -1 && marked((*engine)[row])) ||
                            std::any_of(engine->begin(), engine->end(), marked));
}

void MainWindow::setSelected()
{
    model->setSelected(view->selectedRows());
    stateChanged(-1);
}

void MainWindow::setUpdateListed()
{
    proxy->setUpdateListed();
    stateChanged(-1);
}

void MainWindow::clearActions()
{
    model->clearActions();
    warnUnlistedActions();
    stateChanged(-1);
}
