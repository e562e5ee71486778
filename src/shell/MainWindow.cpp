// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/MainWindow.h"

#include "engine/YumIO.h"
#include "kit/HMenu.h"
#include "kit/Share.h"
#include "log/LogWindow.h"
#include "repo/RepoAuthChecker.h"
#include "repo/RepoEditorDialog.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"
#include "table/PackageTableView.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>

#include <algorithm>

#include <sys/utsname.h>

namespace
{

QString nodeName()
{
    utsname names{};
    uname(&names);
    return QString::fromLocal8Bit(names.nodename);
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , updateIcon(Share::absolute(QStringLiteral("icons/update.png")))
    , applyIcon(Share::absolute(QStringLiteral("icons/check.png")))
{
    setWindowTitle(tr("VOK - %1").arg(nodeName()));
    createMenuBar();
    createMainArea();
}

MainWindow::~MainWindow()
{
    delete logWindow;
    delete repoEditor; // It shows the entries of `conf`.
    endEngine();
}

void MainWindow::setVisible(bool visible)
{
    QMainWindow::setVisible(visible);
    if (visible)
        QTimer::singleShot(0, this, &MainWindow::initialize);
}

QSize MainWindow::sizeHint() const
{
    return QMainWindow::sizeHint().expandedTo(QSize(768, 0));
}

void MainWindow::initialize()
{
    // The window may be shown again, and an event loop of the engine's may run when it is: the
    // engine is started once, and not after it was ended.
    if (!engine || conf)
        return;

    conf = std::make_unique<YumConfIO>(repoOverrides, usedRepos);
    connect(conf.get(), &YumConfIO::changed, this, &MainWindow::yumConfIOChanged);
    model->setYumConfIO(conf.get());
    if (logAtStart)
        displayLog();
    engineStarted = engine->initialize();
    if (!engineStarted) {
        quit();
        return;
    }
    if (startInRepoEditor) {
        model->reset();
        setReady(true);
        editRepositories(true);
        initialized = true;
        return;
    }
    // A message about the files, or a question, belongs over the window, where the window manager
    // has put it by now.
    QEventLoop().processEvents(QEventLoop::ExcludeUserInputEvents);
    {
        const RepoAuth::Checker check(this, conf.get());
        if (check.quit) {
            quit();
            return;
        }
        // The script has read the files already.
        if (check.changed)
            engine->clear();
    }
    engine->collect(usedRepos);
    model->reset();
    mainArea->show();
    fitToContents();
    filtersearch();
    setReady(true);
    initialized = true;
}

void MainWindow::setReady(bool nowReady)
{
    // Events are processed below, and a close of the window is no user input to Qt: it is refused
    // until the very end.
    ready = false;
    if (!engine)
        return;
    // A disabled widget loses the keyboard, and nobody gives it back by itself.
    if (!nowReady && mainArea->isAncestorOf(focusWidget()))
        focusWhenReady = focusWidget();
    {
        // Only the questions to the script need the interpreter, which may not have been started
        // yet, or may be another thread's, when the window becomes busy.
        const Python::PyGILStateWrapper lock(nowReady);
        programMenu->setEnabled(nowReady);
        quitAction->setEnabled(nowReady);
        repositoriesMenu->setEnabled(nowReady);
        editRepositoriesAction->setEnabled(nowReady);
        cacheMenu->setEnabled(nowReady);
        cleanHeadersAction->setEnabled(nowReady);
        cleanPackagesAction->setEnabled(nowReady);
        cleanXmlMetadataAction->setEnabled(nowReady);
        cleanAllAction->setEnabled(nowReady);
        cleanPickledCacheAction->setEnabled(nowReady && engine->hasPickledCache());
        cleanSqliteCacheAction->setEnabled(nowReady && engine->hasSqliteCache());
        mainArea->setEnabled(nowReady);
    }
    if (nowReady && focusWhenReady && !mainArea->isAncestorOf(focusWidget())) {
        // The button Apply has done its work, and can't take it back.
        QWidget* heir = focusWhenReady->isEnabled() ? focusWhenReady.data() : view;
        heir->setFocus();
    }
    if (nowReady)
        QApplication::restoreOverrideCursor();
    else
        QApplication::setOverrideCursor(Qt::BusyCursor);
    QEventLoop().processEvents(QEventLoop::ExcludeUserInputEvents);
    ready = nowReady;
}

void MainWindow::fitToContents()
{
    view->resizeColumnsToContents();
    if (isMaximized() || isFullScreen())
        return;
    const QRect available = screen()->availableGeometry();
    const QRect frame = frameGeometry();
    const QPoint corner(
        qMax(available.left(), qMin(frame.left(), available.right() - frame.width() + 1)),
        qMax(available.top(), qMin(frame.top(), available.bottom() - frame.height() + 1)));
    if (corner != frame.topLeft())
        move(corner);
}

void MainWindow::collectAnew()
{
    engine->clear();
    engine->collect(usedRepos);
    // The table is about to search the new entries, which would load the same row by row.
    if (inSearchMode() && !proxy->filterRegExp().isEmpty())
        collectSearched();
    model->reset();
}

void MainWindow::refresh()
{
    if (!engine)
        return;
    setReady(false);
    collectAnew();
    setReady(true);
}

void MainWindow::yumConfIOChanged()
{
    const QString& cache = conf->cachedir;
    cleanHeadersAction->setToolTip(tr("Clean RPM package headers cached locally in %1").arg(cache));
    cleanPackagesAction->setToolTip(tr("Clean RPM packages cached locally in %1\n"
                                       "(useful for recovering disk space)")
                                        .arg(cache));
    cleanXmlMetadataAction->setToolTip(tr("Clean XML metadata cached locally in %1\n"
                                          "(useful along with Clean Pickled Data for\n"
                                          " forcing download of new available package lists)")
                                           .arg(cache));
    cleanPickledCacheAction->setToolTip(tr("Clean pickled data cached locally in %1\n"
                                           "(useful along with Clean XML Metadata for\n"
                                           " forcing download of new available package lists)")
                                            .arg(cache));
    cleanSqliteCacheAction->setToolTip(tr("Clean sqlite data cached locally in %1\n"
                                          "(useful along with Clean XML Metadata for\n"
                                          " forcing download of new available package lists)")
                                           .arg(cache));
    cleanAllAction->setToolTip(tr("Clean all data cached locally in %1").arg(cache));
}

void MainWindow::displayLog()
{
    if (!engine)
        return;
    if (!logWindow)
        logWindow = new Log::Window(engine->getLogEntries(), this);
    logWindow->show();
    logWindow->raise();
    logWindow->activateWindow();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!engine || leaving) {
        event->accept();
        return;
    }
    // Leaving closes the window itself, which it can't do from within its own close event.
    event->ignore();
    if (ready)
        QTimer::singleShot(0, this, &MainWindow::quit);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    // A text field takes some of them for the commands of its own that other keys give as well,
    // such as Ctrl+E for End.
    if (event->type() == QEvent::ShortcutOverride && isShortcut(*static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

bool MainWindow::isShortcut(const QKeyEvent& event) const
{
    const QKeySequence pressed(event.key() |
                               static_cast<int>(event.modifiers() & ~Qt::KeypadModifier));
    const auto actions = menuBar()->findChildren<QAction*>();
    return std::any_of(actions.cbegin(), actions.cend(), [&pressed](const QAction* action) {
        return !action->shortcut().isEmpty() && action->shortcut() == pressed;
    });
}

void MainWindow::quit()
{
    if (!engine || leaving)
        return;
    leaving = true;
    engine->clearEntriesBeforeQuit();
    if (logWindow) {
        if (logWindow->isVisible())
            logWindow->hide();
        // It keeps a reference to the engine's log, unused while hidden, and may be on the stack.
        logWindow->deleteLater();
    }
    close();
    endEngine();
    Q_EMIT left();
}

void MainWindow::endEngine()
{
    if (!engine)
        return;
    ready = false;
    // Whatever the engine's end still shows or logs must find no way back here.
    disconnect(engine, nullptr, this, nullptr);
    delete view;
    delete proxy;
    delete model;
    view = nullptr;
    proxy = nullptr;
    model = nullptr;
    engine->clearEntriesBeforeQuit();
    delete engine;
    engine = nullptr;
}
