// SPDX-License-Identifier: GPL-2.0-or-later
// Measures the program's own code on a prepared system: collection, table, filter, sort, search.
// The system comes from VOKROOT and the script from VOKSHARE, as for the program itself. Prints one
// figure a line as "name<TAB>value<TAB>unit".
//
//     vok_bench [TEXT [PATTERN...]]
//         collection and table; with patterns also searches, whose text is written to TEXT
//     vok_bench apply REGEXP
//         installs, in the real window, the packages that the filter lists by REGEXP
//     vok_bench describe
//         opens the descriptions of the packages that bench/describe.py makes

#include "ApplyBench.h"
#include "DescribeBench.h"
#include "Measure.h"
#include "engine/YumIO.h"
#include "kit/Application.h"
#include "progress/HProgressBar.h"
#include "repo/YumConfIO.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"
#include "table/PackageTableView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QTextStream>
#include <QVBoxLayout>

#include <functional>

namespace
{

/// A line of /proc/self/status that is given in kB, as MB.
double statusMegabytes(const QByteArray& key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(key + ":"))
            return line.mid(key.size() + 1).simplified().split(' ').first().toDouble() / 1024;
    }
    return -1;
}

double milliseconds(const std::function<void()>& work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

/// Every field that a search looks at, one after the other, so that grep can be run over the same
/// text.
void dumpText(YumIO& engine, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    using Getter = QString (YumIO::*)(const Package::Entry&);
    static const Getter getters[] = {
        &YumIO::getDescription, &YumIO::getGroup,       &YumIO::getVendor,
        &YumIO::getInstallTime, &YumIO::getBinaryRpm,   &YumIO::getSourceRpm,
        &YumIO::getLicense,     &YumIO::getPackager,    &YumIO::getUrl,
        &YumIO::getProvides,    &YumIO::getRelocations, &YumIO::getRequires,
        &YumIO::getConflicts,   &YumIO::getObsoletes,   &YumIO::getFiles,
    };
    for (const Package::Entry* entry : engine) {
        QString text;
        for (const QString& field : {entry->name, entry->verRel, entry->repo, entry->arch,
                                     entry->sizeText, entry->summary, entry->buildTimeText})
            text += field + QLatin1Char('\n');
        if (entry->kind != Package::KindGroup) {
            for (const Getter getter : getters)
                text += (engine.*getter)(*entry) + QLatin1Char('\n');
            text += engine.getChangeLog(*entry) + QLatin1Char('\n');
        }
        file.write(text.toUtf8());
    }
}

} // namespace

int main(int argc, char** argv)
{
    // The platform that draws without a display warns of what it leaves out.
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    QApplication app(argc, argv);
    application = &app;
    program = argv[0];
    if (argc > 2 && qstrcmp(argv[1], "apply") == 0)
        return ApplyBench(QString::fromLocal8Bit(argv[2])).run();
    const bool describing = argc == 2 && qstrcmp(argv[1], "describe") == 0;
    const QString dump = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    const QStringList patterns = app.arguments().mid(2);

    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    HProgressBar item(&window);
    HProgressBar total(&window);
    YumIO engine;
    engine.setup(&window, &total, &item);
    PackageTable::Model model(&engine, &window);
    PackageTable::SortFilterProxyModel proxy(PackageTable::ViewAll, true, true, &engine, &window);
    proxy.setSourceModel(&model);
    auto* view = new PackageTable::View(&model, &proxy, &window);
    layout->addWidget(view);
    layout->addWidget(&item);
    layout->addWidget(&total);
    window.resize(1000, 700);
    window.show();

    const QList<YumRepoEnabled> overrides;
    QHash<QString, bool> used;
    YumConfIO conf(overrides, used);
    model.setYumConfIO(&conf);
    if (!conf.read(&window))
        return 1;
    if (describing) {
        if (!engine.initialize() || !engine.collect(used))
            return 1;
        model.reset();
        const int status = DescribeBench(&engine, &model).run();
        engine.clearEntriesBeforeQuit();
        return status;
    }

    report("start.initialize", milliseconds([&] {
               if (!engine.initialize())
                   std::exit(1);
           }),
           "ms");
    {
        Heartbeat heartbeat;
        QElapsedTimer clock;
        clock.start();
        if (!engine.collect(used))
            return 1;
        const double gap = heartbeat.longestGap();
        report("collect.engine", static_cast<double>(clock.nsecsElapsed()) / 1e6, "ms");
        model.reset();
        proxy.setFilterRegExp(QStringLiteral(".*"));
        QApplication::processEvents();
        view->viewport()->repaint();
        report("collect.to-rows", static_cast<double>(clock.nsecsElapsed()) / 1e6, "ms");
        report("collect.gui-gap", gap, "ms");
    }
    report("collect.rows", engine.count(), "rows");
    report("memory.peak-after-collection", statusMegabytes("VmHWM"), "MB");

    const auto toRows = [&](const std::function<void()>& change) {
        return milliseconds([&] {
            change();
            QApplication::processEvents();
            view->viewport()->repaint();
        });
    };
    report("table.resize-columns", toRows([&] { view->resizeColumnsToContents(); }), "ms");
    report("table.filter-literal", toRows([&] { proxy.setFilterRegExp(QStringLiteral("lib")); }),
           "ms");
    report("table.filter-regexp", toRows([&] {
               proxy.setFilterRegExp(QStringLiteral("^[a-m][a-z]+-(devel|libs)? .*noarch"));
           }),
           "ms");
    report("table.filter-all", toRows([&] { proxy.setFilterRegExp(QStringLiteral(".*")); }), "ms");
    report("table.state-installable",
           toRows([&] { proxy.setStateFilter(PackageTable::ViewInstallable); }), "ms");
    report("table.state-all", toRows([&] { proxy.setStateFilter(PackageTable::ViewAll); }), "ms");
    for (const int column : {3, 4, 7, 8, 1}) {
        const QByteArray name = "table.sort-column-" + QByteArray::number(column);
        report(name.constData(), toRows([&] { view->HTableView::sortByColumn(column); }), "ms");
    }

    if (dump.isEmpty()) {
        engine.clearEntriesBeforeQuit();
        return 0;
    }
    double gap = 0;
    report("search.load-file-lists", milliseconds([&] {
               Heartbeat heartbeat;
               if (!engine.collectFileLists())
                   std::exit(1);
               gap = heartbeat.longestGap();
           }),
           "ms");
    report("search.load-file-lists-gui-gap", gap, "ms");
    report("search.load-other-data", milliseconds([&] {
               if (!engine.collectOtherData())
                   std::exit(1);
           }),
           "ms");
    report("search.prepare", milliseconds([&] {
               Heartbeat heartbeat;
               if (!engine.collectSearchTexts())
                   std::exit(1);
               gap = heartbeat.longestGap();
           }),
           "ms");
    report("search.prepare-gui-gap", gap, "ms");
    proxy.setMode(PackageTable::ModeSearch);
    int number = 0;
    for (const QString& pattern : patterns) {
        const QByteArray name = "search.pattern-" + QByteArray::number(++number);
        report(name.constData(), toRows([&] { proxy.setFilterRegExp(pattern); }), "ms");
        report((name + ".rows").constData(), proxy.rowCount(), "rows");
    }
    report("memory.peak-after-search", statusMegabytes("VmHWM"), "MB");
    dumpText(engine, dump);
    engine.clearEntriesBeforeQuit();
    return 0;
}
