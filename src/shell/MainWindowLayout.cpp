// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/MainWindow.h"

#include "engine/YumIO.h"
#include "kit/Colors.h"
#include "kit/HFrameLabel.h"
#include "kit/HMenu.h"
#include "progress/HProgressBar.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"
#include "table/PackageTableView.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

void MainWindow::createMenuBar()
{
    auto* bar = new QMenuBar(this);
    const auto addMenu = [bar](const QString& title) {
        auto* menu = new HMenu(title, bar);
        bar->addMenu(menu);
        return menu;
    };
    const auto addAction = [this](QMenu* menu, const QString& text, auto slot,
                                  const QKeySequence& shortcut = QKeySequence()) {
        QAction* action = menu->addAction(text);
        action->setShortcut(shortcut);
        connect(action, &QAction::triggered, this, [this, slot] { (this->*slot)(); });
        return action;
    };

    programMenu = addMenu(tr("&Program"));
    quitAction = addAction(programMenu, tr("&Quit"), &MainWindow::quit, tr("Ctrl+Q"));

    HMenu* windowsMenu = addMenu(tr("&Windows"));
    addAction(windowsMenu, tr("&Log"), &MainWindow::displayLog, tr("Ctrl+L"));

    repositoriesMenu = addMenu(tr("&Repositories"));
    editRepositoriesAction = repositoriesMenu->addAction(tr("&Edit Configuration"));
    editRepositoriesAction->setShortcut(tr("Ctrl+E"));
    connect(editRepositoriesAction, &QAction::triggered, this, [this] { editRepositories(); });

    cacheMenu = addMenu(tr("&Cache"));
    cleanHeadersAction = addAction(cacheMenu, tr("Clean Headers"), &MainWindow::cleanHeaders);
    cleanPackagesAction = addAction(cacheMenu, tr("Clean Packages"), &MainWindow::cleanPackages);
    cleanXmlMetadataAction =
        addAction(cacheMenu, tr("Clean XML Metadata"), &MainWindow::cleanXmlMetadata);
    cleanPickledCacheAction =
        addAction(cacheMenu, tr("Clean Pickled Data"), &MainWindow::cleanPickledCache);
    cleanSqliteCacheAction =
        addAction(cacheMenu, tr("Clean Sqlite Data"), &MainWindow::cleanSqliteCache);
    cacheMenu->addSeparator();
    cleanAllAction = addAction(cacheMenu, tr("Clean All"), &MainWindow::cleanAll);

    HMenu* helpMenu = addMenu(tr("&Help"));
    addAction(helpMenu, tr("Manual (html)"), &MainWindow::manualHtml, QKeySequence(Qt::Key_F1));
    addAction(helpMenu, tr("Manual (PDF)"), &MainWindow::manualPdf);
    helpMenu->addSeparator();
    addAction(helpMenu, tr("&About"), &MainWindow::about);

    setMenuBar(bar);
}

void MainWindow::createMainArea()
{
    auto* central = new QWidget(this);
    auto* centralBox = new QVBoxLayout(central);
    mainArea = new QWidget(central);
    mainArea->setObjectName(QStringLiteral("mainArea"));
    auto* itemBar = new HProgressBar(central);
    itemBar->setObjectName(QStringLiteral("itemBar"));
    itemBar->setAccessibleName(tr("Progress of this step"));
    auto* totalBar = new HProgressBar(central);
    totalBar->setObjectName(QStringLiteral("totalBar"));
    totalBar->setAccessibleName(tr("Total progress"));
    centralBox->addWidget(mainArea);
    centralBox->addWidget(itemBar);
    centralBox->addWidget(totalBar);

    auto* box = new QVBoxLayout(mainArea);
    box->setContentsMargins(0, 0, 0, 0);
    box->addLayout(createControlRow());
    createTable();
    box->addWidget(view);
    box->addLayout(createButtonRow());
    mainArea->hide();

    engine->setup(this, totalBar, itemBar);
    setCentralWidget(central);
    regexpEdit->selectAll();
    focusWhenReady = regexpEdit;
    collectedExtraData();
    modeChanged(0);
    setReady(false);
}

QBoxLayout* MainWindow::createControlRow()
{
    modeBox = new QComboBox(mainArea);
    modeBox->setObjectName(QStringLiteral("mode"));
    modeBox->setAccessibleName(tr("Mode"));
    modeBox->addItem(tr("Filter"), PackageTable::ModeFilter);
    modeBox->addItem(tr("Search"), PackageTable::ModeSearch);

    regexpEdit = new QLineEdit(QStringLiteral(".*"), mainArea);
    regexpEdit->setObjectName(QStringLiteral("regexp"));
    regexpEdit->setAccessibleName(tr("Regular expression"));
    regexpEdit->installEventFilter(this);

    filterButton = new QPushButton(mainArea);
    filterButton->setObjectName(QStringLiteral("filter"));
    filterButton->setDefault(true);

    stateBox = new QComboBox(mainArea);
    stateBox->setObjectName(QStringLiteral("state"));
    stateBox->setAccessibleName(tr("State"));
    stateBox->addItem(tr("View Updatable"), PackageTable::ViewUpdatable);
    stateBox->addItem(tr("View Installable"), PackageTable::ViewInstallable);
    stateBox->addItem(tr("View Removable"), PackageTable::ViewRemovable);
    stateBox->addItem(tr("View All"), PackageTable::ViewAll);
    stateBox->setToolTip(tr("Filter for those packages which are eligible for updating,\n"
                            "for installing, or for removing; or show all packages"));

    dupsBox = new QCheckBox(tr("Include Duplicates"), mainArea);
    dupsBox->setObjectName(QStringLiteral("duplicates"));
    dupsBox->setChecked(true);
    dupsBox->setToolTip(
        tr("Whether or not filter should include packages with duplicate names.\n"
           "If unchecked, the package with the architecture closest to the base architecture is "
           "shown."));

    groupsBox = new QCheckBox(tr("Include Groups"), mainArea);
    groupsBox->setObjectName(QStringLiteral("groups"));
    groupsBox->setToolTip(tr("Whether or not filter should include package groups"));

    const auto indexChanged = QOverload<int>::of(&QComboBox::currentIndexChanged);
    connect(modeBox, indexChanged, this, &MainWindow::modeChanged);
    connect(regexpEdit, &QLineEdit::returnPressed, this, &MainWindow::filtersearch);
    connect(filterButton, &QPushButton::clicked, this, &MainWindow::filtersearch);
    connect(stateBox, indexChanged, this, &MainWindow::stateFilterChanged);
    connect(dupsBox, &QCheckBox::stateChanged, this, &MainWindow::dupsFilterChanged);
    connect(groupsBox, &QCheckBox::stateChanged, this, &MainWindow::groupsFilterChanged);

    auto* row = new QHBoxLayout;
    row->addWidget(modeBox);
    row->addWidget(regexpEdit);
    row->addWidget(filterButton);
    row->addWidget(stateBox);
    row->addWidget(dupsBox);
    row->addWidget(groupsBox);
    return row;
}

void MainWindow::createTable()
{
    engine = new YumIO;
    connect(engine, &YumIO::collectedExtraData, this, &MainWindow::collectedExtraData);
    model = new PackageTable::Model(engine, mainArea);
    proxy = new PackageTable::SortFilterProxyModel(PackageTable::ViewUpdatable, true, false, engine,
                                                   mainArea);
    proxy->setSourceModel(model);
    view = new PackageTable::View(model, proxy, mainArea);
    view->setObjectName(QStringLiteral("packages"));
    view->setAccessibleName(tr("Packages"));
    connect(view, QOverload<int, int>::of(&PackageTable::View::currentChanged), this,
            &MainWindow::currentChanged);
    connect(view, &PackageTable::View::stateChanged, this, &MainWindow::stateChanged);
}

QBoxLayout* MainWindow::createButtonRow()
{
    auto* row = new QHBoxLayout;
    const auto addButton = [this, row](const char* name, const QIcon& icon, const QString& text,
                                       const QString& toolTip) {
        auto* button = new QPushButton(icon, text, mainArea);
        button->setObjectName(QLatin1String(name));
        button->setToolTip(toolTip);
        row->addWidget(button);
        return button;
    };

    describeButton = addButton(
        "describe", QIcon(), tr("&Describe"),
        tr("Pop up a window with a detailed description of the currently selected package"));
    describeButton->setEnabled(false);
    connect(describeButton, &QPushButton::clicked, view, &PackageTable::View::describe);

    row->addStretch(1);

    QPushButton* button = addButton("resize", QIcon(), tr("Re&size"),
                                    tr("Resize the columns and window to optimal values"));
    connect(button, &QPushButton::clicked, this, QOverload<>::of(&MainWindow::resize));

    button = addButton("refresh", QIcon(), tr("Re&fresh"),
                       tr("Refresh the list of installed packages and packages available for "
                          "update.\nUse this to check for new updates in repositories, or if any "
                          "packages were installed manually."));
    connect(button, &QPushButton::clicked, this, &MainWindow::refresh);

    button = addButton(
        "setSelected", QIcon(), tr("Set &Install/Update of Selected"),
        tr("Sets the Action for all selected packages which are Not Installed to Install, and\n"
           "sets the Action for all selected packages which are Installed but Out-of-date to "
           "Update.\nDoes not Apply Actions automatically."));
    connect(button, &QPushButton::clicked, this, &MainWindow::setSelected);

    button = addButton(
        "setUpdateListed", updateIcon, tr("Set &Update of Listed"),
        tr("Sets the Action to Update for any packages which are Installed but Out-of-date,\n"
           "and which are currently listed based on the the Mode, Filter, Search, State, "
           "Duplicates, and Groups settings.\nDoes not Apply Actions automatically."));
    connect(button, &QPushButton::clicked, this, &MainWindow::setUpdateListed);

    button = addButton("clearActions", noIcon, tr("&Clear Actions"),
                       tr("Clears all specified Actions (Updates, Installs, and Removals)"));
    connect(button, &QPushButton::clicked, this, &MainWindow::clearActions);

    warningLabel = new HFrameLabel(mainArea);
    warningLabel->setObjectName(QStringLiteral("warning"));
    warningLabel->setPalette(Colors::makeWarning(warningLabel->palette()));
    warnConfigure();
    row->addWidget(warningLabel);

    applyButton = addButton("apply", applyIcon, tr("&Apply Actions"),
                            tr("Applies the specified Actions (Updates, Installs, and Removals)"));
    applyButton->setEnabled(false);
    connect(applyButton, &QPushButton::clicked, this, &MainWindow::apply);
    return row;
}
