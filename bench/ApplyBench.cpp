// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplyBench.h"

#include "engine/PythonHeader.h"
#include "shell/MainWindow.h"
#include "table/PackageTable.h"

#include <QApplication>
#include <QComboBox>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>

namespace
{

/// How long the engine may take to start and to collect.
constexpr int patience = 300000;

QString textsIn(const QWidget* dialog)
{
    QStringList texts(dialog->windowTitle());
    const auto labels = dialog->findChildren<QLabel*>();
    for (const QLabel* label : labels)
        texts << label->text();
    return texts.join(QLatin1Char('\n'));
}

/// Where VOK_BENCH_PROFILE names a file, the script's methods are profiled into it. The figures are
/// worth nothing then.
void profileScript()
{
    const QByteArray path = qgetenv("VOK_BENCH_PROFILE");
    if (path.isEmpty())
        return;
    const PyGILState_STATE state = PyGILState_Ensure();
    PyRun_SimpleString(
        "import cProfile, pstats, os, __main__\n"
        "_profile = cProfile.Profile()\n"
        "def _profiled(method):\n"
        "    def call(*arguments):\n"
        "        _profile.enable()\n"
        "        try:\n"
        "            return method(*arguments)\n"
        "        finally:\n"
        "            _profile.disable()\n"
        "    return call\n"
        "for _name in ('apply', 'flush', 'setupRepos', 'setupTs', 'collectUpdates',\n"
        "              'collectAll', 'setupTsGroup', 'collectGroupInfo'):\n"
        "    setattr(__main__.YumIO, _name,\n"
        "            _profiled(getattr(__main__.YumIO, _name)))\n");
    PyGILState_Release(state);
}

void saveProfile()
{
    if (qgetenv("VOK_BENCH_PROFILE").isEmpty())
        return;
    const PyGILState_STATE state = PyGILState_Ensure();
    PyRun_SimpleString("_profile.dump_stats(os.environ['VOK_BENCH_PROFILE'])\n");
    PyGILState_Release(state);
}

} // namespace

ApplyBench::ApplyBench(const QString& pattern)
    : pattern(pattern)
    , window(new MainWindow(nullptr))
{
    QApplication::setQuitOnLastWindowClosed(false);
    qApp->installEventFilter(this);
}

ApplyBench::~ApplyBench() = default;

int ApplyBench::run()
{
    window->show();
    if (!waitUntilReady()) {
        std::fprintf(stderr, "the table doesn't come\n");
        return 1;
    }
    profileScript();
    const int wanted = list(PackageTable::ViewInstallable);
    find<QTableView>("packages")->selectAll();
    find<QPushButton>("setSelected")->click();
    report("apply.rows", rows()->rowCount(), "rows");
    report("apply.packages", wanted, "packages");

    heartbeat = std::make_unique<Heartbeat>();
    clock.start();
    find<QPushButton>("apply")->click();
    if (!agreed) {
        std::fprintf(stderr, "there was no question\n");
        return 1;
    }
    QApplication::processEvents();
    find<QTableView>("packages")->viewport()->repaint();
    const double done = millisecondsOf(clock);
    const double gap = heartbeat->longestGap();
    saveProfile();
    report("apply.to-review", toReview, "ms");
    report("apply.to-review.gui-gap", toReviewGap, "ms");
    report("apply.run", done, "ms");
    report("apply.run.transaction", transaction, "ms");
    report("apply.run.collection", done - transaction, "ms");
    report("apply.run.gui-gap", gap, "ms");

    const int there = list(PackageTable::ViewRemovable);
    if (wanted == 0 || there != wanted) {
        std::fprintf(stderr, "%d packages were installed, not %d\n", there, wanted);
        return 1;
    }
    QEventLoop leaving;
    QObject::connect(window.get(), &MainWindow::left, &leaving, &QEventLoop::quit);
    window->close();
    leaving.exec();
    return 0;
}

bool ApplyBench::waitUntilReady()
{
    QEventLoop loop;
    QTimer poll;
    QElapsedTimer since;
    bool ready = false;
    since.start();
    QObject::connect(&poll, &QTimer::timeout, [&] {
        const auto* area = find<QWidget>("mainArea");
        ready = area->isVisible() && area->isEnabled();
        if (ready || since.hasExpired(patience))
            loop.quit();
    });
    poll.start(20);
    loop.exec();
    return ready;
}

int ApplyBench::list(int state)
{
    find<QComboBox>("state")->setCurrentIndex(state);
    find<QLineEdit>("regexp")->setText(pattern);
    find<QPushButton>("filter")->click();
    return find<QTableView>("packages")->model()->rowCount();
}

template<typename Widget> Widget* ApplyBench::find(const char* name) const
{
    return window->findChild<Widget*>(QLatin1String(name));
}

QAbstractItemModel* ApplyBench::rows() const
{
    auto* listed = qobject_cast<QSortFilterProxyModel*>(find<QTableView>("packages")->model());
    return listed->sourceModel();
}

bool ApplyBench::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto* dialog = static_cast<QWidget*>(watched);
        // Met when it has been painted, in its own event loop.
        if (dialog->isWindow() && dialog->isModal())
            QTimer::singleShot(0, dialog, [this, dialog] { agree(dialog); });
    }
    return QObject::eventFilter(watched, event);
}

void ApplyBench::agree(QWidget* dialog)
{
    const auto buttons = dialog->findChildren<QPushButton*>();
    QPushButton* ok = nullptr;
    for (QPushButton* button : buttons) {
        if (button->text() == QLatin1String("OK"))
            ok = button;
    }
    // Any other question, or a failure that is told, makes the figures worthless.
    if (agreed || !ok || dialog->windowTitle() != QLatin1String("Apply")) {
        std::fprintf(stderr, "an unexpected dialog: %s\n", qPrintable(textsIn(dialog)));
        std::_Exit(1);
    }
    // Told at the end: standard output belongs to the log until the Apply is over.
    toReview = millisecondsOf(clock);
    toReviewGap = heartbeat->longestGap();
    agreed = true;
    heartbeat = std::make_unique<Heartbeat>();
    // The rows go when the transaction is over and the collection begins.
    auto* watch = new QTimer(this);
    connect(watch, &QTimer::timeout, this, [this, watch] {
        if (rows()->rowCount() == 0) {
            transaction = millisecondsOf(clock);
            watch->deleteLater();
        }
    });
    watch->start(1);
    clock.start();
    ok->click();
}
