// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/YumConfIO.h"
#include "table/PackageTable.h"

#include <QHash>
#include <QIcon>
#include <QList>
#include <QMainWindow>
#include <QPointer>

#include <memory>

class HFrameLabel;
class HMenu;
class HProgressBar;
class QAction;
class QBoxLayout;
class QCheckBox;
class QComboBox;
class QKeyEvent;
class QLineEdit;
class QPushButton;
class YumIO;

namespace Log
{
class Window;
}

namespace PackageTable
{
class Model;
class SortFilterProxyModel;
class View;
} // namespace PackageTable

namespace RepoEditor
{
class Dialog;
}

/// The one top-level window. It owns the engine, starts it once the window has been painted, and
/// keeps the user from starting a second operation while the engine works.
///
/// Each group of members below is headed by the file that it lives in.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent);
    ~MainWindow() override;

    /// The first time that it shows the window it also arranges for initialize().
    void setVisible(bool visible) override;
    QSize sizeHint() const override;

    // What the command line sets. The controls are set as if the user had done it.
    void setMode(PackageTable::Mode mode);
    void setStateFilter(PackageTable::StateFilter filter);
    void setRegexp(const char* regexp);
    void setDups(bool include);
    void setGroups(bool include);
    void setStartInRepoEditor() { startInRepoEditor = true; }
    void setLogAtStart() { logAtStart = true; }
    void addRepoOverride(const YumRepoEnabled& repoOverride) { repoOverrides << repoOverride; }

    const QList<YumRepoEnabled>& getRepoOverrides() const { return repoOverrides; }
    bool startsInRepoEditor() const { return startInRepoEditor; }
    bool showsLogAtStart() const { return logAtStart; }

    using QMainWindow::resize;

Q_SIGNALS:
    /// The engine is gone: the program is over.
    void left();

public Q_SLOTS:
    // ---- MainWindowTable.cpp --------------------------------------------------------------------
    /// Fits columns and window to the contents.
    void resize();
    // ---- MainWindow.cpp -------------------------------------------------------------------------
    void refresh();
    // ---- MainWindowRepos.cpp --------------------------------------------------------------------
    void reposChanged();

protected Q_SLOTS:
    // ---- MainWindow.cpp -------------------------------------------------------------------------
    void initialize();
    void yumConfIOChanged();
    void quit();
    void displayLog();

    // ---- MainWindowRepos.cpp --------------------------------------------------------------------
    void editRepositories(bool forceReposChanged = false);

    // ---- MainWindowCommands.cpp -----------------------------------------------------------------
    void cleanHeaders();
    void cleanPackages();
    void cleanXmlMetadata();
    void cleanPickledCache();
    void cleanSqliteCache();
    void cleanAll();
    void manualHtml();
    void manualPdf();
    void about();
    void apply();

    // ---- MainWindowTable.cpp --------------------------------------------------------------------
    void filtersearch();
    void currentChanged(int currentRow, int previousRow);
    void stateChanged(int row = -1);
    void modeChanged(int index);
    void collectedExtraData();
    void stateFilterChanged(int index);
    void dupsFilterChanged(int checked);
    void groupsFilterChanged(int checked);
    void setSelected();
    void setUpdateListed();
    void clearActions();

protected:
    /// The frame's close button is Quit, and as little allowed while the engine works.
    void closeEvent(QCloseEvent* event) override;
    /// Keeps the shortcuts of the menus from the pattern's field.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // ---- MainWindowLayout.cpp -------------------------------------------------------------------
    void createMenuBar();
    void createMainArea();
    QBoxLayout* createControlRow();
    void createTable();
    QBoxLayout* createButtonRow();

    // ---- MainWindow.cpp -------------------------------------------------------------------------
    /// Enables or disables all that starts an operation. Each call with false pushes a busy cursor,
    /// and each with true pops one; nobody counts them.
    void setReady(bool ready);
    /// Fits columns and window to the contents, and keeps the window, which grows downwards and to
    /// the right, on its screen.
    void fitToContents();
    /// Whether a menu has these keys as a shortcut.
    bool isShortcut(const QKeyEvent& event) const;
    /// Throws the package list away and collects it from fresh configuration.
    void collectAnew();
    /// Ends the engine, and before it the table, which reads its rows there. Once; then `engine` is
    /// null.
    void endEngine();

    // ---- MainWindowCommands.cpp -----------------------------------------------------------------
    void cleanAndCollect(bool (YumIO::*clean)());

    // ---- MainWindowTable.cpp --------------------------------------------------------------------
    bool inSearchMode() const;
    /// Loads what only a search looks at, if there is something to search for.
    void prepareFilterSearch();
    /// Loads what a search looks at. Failures have been reported, and the search does without.
    void collectSearched();
    void anyFilterChanged();
    void warnConfigure();
    void warnUnlistedActions();
    /// Runs `change` on the proxy, closed to the user for as long as a search may take.
    template<typename Change> void changeFilter(Change change);

    QIcon updateIcon;
    QIcon noIcon;
    QIcon applyIcon;
    bool startInRepoEditor = false;
    bool logAtStart = false;
    QList<YumRepoEnabled> repoOverrides;
    QHash<QString, bool> usedRepos; ///< for each repository id: whether this run uses it
    YumIO* engine = nullptr;        ///< owned; null once the program is over
    std::unique_ptr<YumConfIO> conf;
    bool engineStarted = false;
    bool initialized = false;
    bool ready = false;
    bool leaving = false;
    QPointer<QWidget> focusWhenReady; ///< what had the keyboard when the window became busy

    HMenu* programMenu = nullptr;
    QAction* quitAction = nullptr;
    HMenu* repositoriesMenu = nullptr;
    QAction* editRepositoriesAction = nullptr;
    HMenu* cacheMenu = nullptr;
    QAction* cleanHeadersAction = nullptr;
    QAction* cleanPackagesAction = nullptr;
    QAction* cleanXmlMetadataAction = nullptr;
    QAction* cleanPickledCacheAction = nullptr;
    QAction* cleanSqliteCacheAction = nullptr;
    QAction* cleanAllAction = nullptr;

    QWidget* mainArea = nullptr;
    QComboBox* modeBox = nullptr;
    QLineEdit* regexpEdit = nullptr;
    QPushButton* filterButton = nullptr;
    QComboBox* stateBox = nullptr;
    QCheckBox* groupsBox = nullptr;
    QCheckBox* dupsBox = nullptr;
    PackageTable::Model* model = nullptr;
    PackageTable::SortFilterProxyModel* proxy = nullptr;
    PackageTable::View* view = nullptr;
    QPushButton* describeButton = nullptr;
    HFrameLabel* warningLabel = nullptr;
    QPushButton* applyButton = nullptr;

    RepoEditor::Dialog* repoEditor = nullptr; ///< made when it is needed first
    QPointer<Log::Window> logWindow;          ///< a top-level window of its own, so owned by hand
};
