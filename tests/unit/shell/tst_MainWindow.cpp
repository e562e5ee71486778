// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "kit/HFrameLabel.h"
#include "log/LogWindow.h"
#include "support/ProcessPerTest.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTableView>
#include <QTextEdit>
#include <QTimer>
#include <QtTest>

namespace
{

const char needsExtraData[] = "(Must load extra data.)";

Log::Window* logWindow()
{
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget* widget : widgets) {
        if (auto* window = qobject_cast<Log::Window*>(widget))
            return window;
    }
    return nullptr;
}

QString logText(Log::Window* window)
{
    return window->findChild<QTextEdit*>()->toPlainText();
}

} // namespace

/// The window at work: ready, busy, its filters and its marks.
class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstCollectionShowsTheTable()
    {
        WindowLife life;
        QVERIFY(life.find<QWidget>("mainArea")->isHidden());
        QVERIFY(life.start());
        QCOMPARE(life.listed(), QStringList{"alpha"});
        for (const char* text : {"Quit", "Edit Configuration", "Clean Headers", "Clean Packages",
                                 "Clean XML Metadata", "Clean All"})
            QVERIFY2(life.action(QString::fromLatin1(text))->isEnabled(), text);
        QVERIFY(!life.find<QPushButton>("describe")->isEnabled());
        QVERIFY(!life.find<QPushButton>("apply")->isEnabled());
        QCOMPARE(WindowLife::takeBusyCursors(), 0);
    }

    void showingTheWindowAgainStartsNothing()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.calls();
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        life.window().hide();
        life.window().show();
        life.window().showMinimized();
        life.window().showNormal();
        QTest::qWait(0);
        QCoreApplication::processEvents();
        QCOMPARE(life.calls(), QStringList());
        QCOMPARE(resets.size(), 0);
        QVERIFY(life.ready());
    }

    void theWindowOpensWideEnoughForItsColumns()
    {
        WindowLife life;
        QVERIFY(life.start());
        const QAbstractItemModel* rows = life.model();
        for (int column = 0; column < rows->columnCount(); ++column)
            QVERIFY2(life.table()->columnWidth(column) >=
                         static_cast<QAbstractItemView*>(life.table())->sizeHintForColumn(column),
                     qPrintable(rows->headerData(column, Qt::Horizontal).toString()));
    }

    void theWindowGrowsOntoItsScreen()
    {
        WindowLife life;
        const QRect screen = QApplication::primaryScreen()->availableGeometry();
        life.window().move(screen.bottomRight() - QPoint(100, 60));
        QVERIFY(life.start());
        // Where the screen is too small for the buttons, what is cut is at the far end.
        const QRect place = life.window().frameGeometry();
        const QString where = QStringLiteral("at %1, %2, to %3, %4")
                                  .arg(place.left())
                                  .arg(place.top())
                                  .arg(place.right())
                                  .arg(place.bottom());
        QVERIFY2(place.right() <= screen.right() || place.left() == screen.left(),
                 qPrintable(where));
        QVERIFY2(place.bottom() <= screen.bottom() || place.top() == screen.top(),
                 qPrintable(where));
        QVERIFY2(place.left() >= screen.left() && place.top() >= screen.top(), qPrintable(where));
    }

    void theCleanCommandsTellTheCacheDirectory()
    {
        WindowLife life;
        QVERIFY(life.start());
        const QString cache = QStringLiteral("/var/cache/steward");
        const auto tip = [&](const char* text) {
            return life.action(QString::fromLatin1(text))->toolTip();
        };
        QCOMPARE(tip("Clean Headers"),
                 QStringLiteral("Clean RPM package headers cached locally in ") + cache);
        QCOMPARE(tip("Clean Packages"), QStringLiteral("Clean RPM packages cached locally in ") +
                                            cache +
                                            QStringLiteral("\n(useful for recovering disk space)"));
        QCOMPARE(tip("Clean XML Metadata"),
                 QStringLiteral("Clean XML metadata cached locally in ") + cache +
                     QStringLiteral("\n(useful along with Clean Pickled Data for\n"
                                    " forcing download of new available package lists)"));
        QCOMPARE(tip("Clean Pickled Data"),
                 QStringLiteral("Clean pickled data cached locally in ") + cache +
                     QStringLiteral("\n(useful along with Clean XML Metadata for\n"
                                    " forcing download of new available package lists)"));
        QCOMPARE(tip("Clean Sqlite Data"),
                 QStringLiteral("Clean sqlite data cached locally in ") + cache +
                     QStringLiteral("\n(useful along with Clean XML Metadata for\n"
                                    " forcing download of new available package lists)"));
        QCOMPARE(tip("Clean All"), QStringLiteral("Clean all data cached locally in ") + cache);
    }

    void pickledDataStayDisabledWhereThereAreNone()
    {
        WindowLife life;
        life.system["version"] = "2.9.2";
        life.play();
        QVERIFY(life.start());
        QVERIFY(!life.action("Clean Pickled Data")->isEnabled());
        QVERIFY(life.action("Clean Sqlite Data")->isEnabled());
    }

    void sqliteDataStayDisabledWhereThereAreNone()
    {
        WindowLife life;
        life.system["version"] = "2.3.1";
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.action("Clean Pickled Data")->isEnabled());
        QVERIFY(!life.action("Clean Sqlite Data")->isEnabled());
    }

    void whileTheEngineWorksOnlyLogAndHelpCanBeUsed()
    {
        WindowLife life;
        QVERIFY(life.start());
        bool looked = false;
        // Comes in one of the event loops of the refresh.
        QTimer::singleShot(0, &life.window(), [&] {
            looked = true;
            QVERIFY(!life.find<QWidget>("mainArea")->isEnabled());
            QVERIFY(life.find<QWidget>("mainArea")->isVisible());
            for (const char* text : {"Quit", "Edit Configuration", "Clean Headers",
                                     "Clean Packages", "Clean XML Metadata", "Clean Sqlite Data",
                                     "Clean All", "Program", "Repositories", "Cache"})
                QVERIFY2(!life.action(QString::fromLatin1(text))->isEnabled(), text);
            for (const char* text :
                 {"Log", "Manual (html)", "Manual (PDF)", "About", "Windows", "Help"})
                QVERIFY2(life.action(QString::fromLatin1(text))->isEnabled(), text);
            QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
            life.action("Log")->trigger();
            QVERIFY(logWindow()->isVisible());
        });
        life.click("refresh");
        QVERIFY(looked);
        QVERIFY(life.ready());
        QVERIFY(life.action("Clean Sqlite Data")->isEnabled());
        QVERIFY(!QApplication::overrideCursor());
    }

    void theFrameClosesNoWindowThatIsBusy()
    {
        WindowLife life;
        QVERIFY(life.start());
        const QSignalSpy left(&life.window(), &MainWindow::left);
        bool closed = true;
        QTimer::singleShot(0, &life.window(), [&] { closed = life.window().close(); });
        life.click("refresh");
        QVERIFY(!closed);
        QCoreApplication::processEvents();
        QVERIFY(life.window().isVisible());
        QCOMPARE(left.size(), 0);
        QCOMPARE(life.listed(), QStringList{"alpha"});
    }

    void theFrameOfAReadyWindowIsQuit()
    {
        WindowLife life;
        QVERIFY(life.start());
        QSignalSpy left(&life.window(), &MainWindow::left);
        life.window().close();
        QVERIFY(left.size() == 1 || left.wait());
        QVERIFY(!life.window().isVisible());
    }

    void quitEndsTheEngineAndHidesTheLog()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.action("Log")->trigger();
        QPointer<Log::Window> log = logWindow();
        QVERIFY(log && log->isVisible());
        const QSignalSpy left(&life.window(), &MainWindow::left);
        life.action("Quit")->trigger();
        QCOMPARE(left.size(), 1);
        QVERIFY(!log || !log->isVisible());
        QVERIFY(!life.window().isVisible());
        // Nothing that is still on its way meets the engine that is gone.
        life.window().show();
        life.window().refresh();
        life.window().reposChanged();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QVERIFY(!log);
        QCOMPARE(left.size(), 1);
    }

    void refreshLosesTheActionsAndLeavesApplyEnabled()
    {
        WindowLife life;
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        QCOMPARE(life.entry("alpha")->action, Package::ActionUpdate);
        QVERIFY(life.find<QPushButton>("apply")->isEnabled());
        life.click("refresh");
        QCOMPARE(life.entry("alpha")->action, Package::ActionNone);
        QVERIFY(life.find<QPushButton>("apply")->isEnabled());
        life.click("clearActions");
        QVERIFY(!life.find<QPushButton>("apply")->isEnabled());
    }

    void refreshShowsWhatHasChanged()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.system["updates"] = QJsonArray();
        life.play();
        life.click("refresh");
        QCOMPARE(life.listed(), QStringList());
        QCOMPARE(life.entry("alpha")->state, Package::StateInstalled);
    }

    void applyIsEnabledByAnyAction()
    {
        WindowLife life;
        QVERIFY(life.start());
        const auto* apply = life.find<QPushButton>("apply");
        life.select("state", 3);
        QVERIFY(life.clickAction("alpha"));
        QVERIFY(life.clickAction("gamma"));
        QVERIFY(apply->isEnabled());
        QVERIFY(life.clickAction("gamma"));
        QCOMPARE(life.entry("gamma")->action, Package::ActionNone);
        QVERIFY(apply->isEnabled());
        QVERIFY(life.clickAction("alpha"));
        QVERIFY(life.clickAction("alpha"));
        QCOMPARE(life.entry("alpha")->action, Package::ActionNone);
        QVERIFY(!apply->isEnabled());
    }

    void theButtonsSetAndClearActions()
    {
        WindowLife life;
        QVERIFY(life.start());
        const auto* apply = life.find<QPushButton>("apply");
        life.select("state", 3);
        life.table()->selectAll();
        life.click("setSelected");
        QCOMPARE(life.entry("alpha")->action, Package::ActionUpdate);
        QCOMPARE(life.entry("beta")->action, Package::ActionInstall);
        QCOMPARE(life.entry("gamma")->action, Package::ActionNone);
        QVERIFY(apply->isEnabled());
        life.click("clearActions");
        QCOMPARE(life.entry("beta")->action, Package::ActionNone);
        QVERIFY(!apply->isEnabled());
        life.click("setUpdateListed");
        QCOMPARE(life.entry("alpha")->action, Package::ActionUpdate);
        QCOMPARE(life.entry("beta")->action, Package::ActionNone);
        QVERIFY(apply->isEnabled());
    }

    void describeFollowsTheCurrentRow()
    {
        WindowLife life;
        QVERIFY(life.start());
        const auto* describe = life.find<QPushButton>("describe");
        QVERIFY(!describe->isEnabled());
        life.table()->setCurrentIndex(life.table()->model()->index(0, 3));
        QVERIFY(describe->isEnabled());
        life.select("state", 1);
        QVERIFY(!life.table()->currentIndex().isValid());
        life.table()->setCurrentIndex(life.table()->model()->index(0, 3));
        life.table()->setCurrentIndex(QModelIndex());
        QVERIFY(!describe->isEnabled());
    }

    void aHiddenActionWarnsUntilItIsListedOrCleared()
    {
        WindowLife life;
        QVERIFY(life.start());
        const auto* warning = life.find<HFrameLabel>("warning");
        QVERIFY(life.clickAction("alpha"));
        QCOMPARE(warning->text(), QString());

        life.filter("nothing like it");
        QCOMPARE(life.listed(), QStringList());
        QCOMPARE(warning->text(), QStringLiteral("Unlisted Actions"));
        QCOMPARE(warning->toolTip(),
                 QStringLiteral("Some packages have actions specified, but because of the "
                                "current\nMode, Filter, Search, State, Duplicates, and Groups "
                                "settings,\nthese packages are not listed currently.\nPressing "
                                "Apply will cause these actions to occur nonetheless."));
        life.filter("alp");
        QCOMPARE(life.listed(), QStringList{"alpha"});
        QCOMPARE(warning->text(), QString());
        QCOMPARE(warning->toolTip(), QString());

        life.select("state", 1);
        QCOMPARE(warning->text(), QStringLiteral("Unlisted Actions"));
        life.click("clearActions");
        QCOMPARE(warning->text(), QString());
        QVERIFY(!life.find<QPushButton>("apply")->isEnabled());
    }

    void typingAloneFiltersNothing()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 3);
        const QStringList all = life.listed();
        auto* edit = life.find<QLineEdit>("regexp");
        edit->selectAll();
        QTest::keyClicks(edit, "gamma");
        QCOMPARE(life.listed(), all);
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(life.listed(), QStringList{"gamma"});
        edit->selectAll();
        QTest::keyClicks(edit, "alpha");
        QCOMPARE(life.listed(), QStringList{"gamma"});
        life.click("filter");
        QCOMPARE(life.listed(), QStringList{"alpha"});
    }

    void theControlsChooseTheRows()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 1);
        QCOMPARE(life.listed(), (QStringList{"beta", "beta"}));
        life.check("duplicates", false);
        QCOMPARE(life.listed(), QStringList{"beta"});
        life.check("groups", true);
        QCOMPARE(life.listed(), (QStringList{"beta", "tools"}));
        life.check("groups", false);
        life.select("state", 2);
        QCOMPARE(life.listed(), (QStringList{"alpha", "gamma"}));
    }

    void aSearchForNothingLoadsNoExtraData()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 3);
        life.select("mode", 1);
        life.calls();
        for (const QString& text : {QStringLiteral(".*"), QString()}) {
            life.filter(text);
            const QStringList calls = life.calls();
            QVERIFY2(!calls.contains("collectFileLists") && !calls.contains("collectOtherData"),
                     qPrintable(calls.join(QLatin1Char(' '))));
            QVERIFY(
                life.find<QComboBox>("mode")->toolTip().endsWith(QLatin1String(needsExtraData)));
            QCOMPARE(life.listed().size(), 4);
        }
    }

    void aSearchLooksIntoTheExtraData()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 3);
        life.select("mode", 1);
        life.calls();
        life.filter("bin/needle");
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("collectFileLists"), 1);
        QCOMPARE(calls.count("collectOtherData"), 1);
        QCOMPARE(life.listed(), QStringList{"beta"});
        QVERIFY(!life.find<QComboBox>("mode")->toolTip().contains(QLatin1String(needsExtraData)));
        QVERIFY(life.ready());
        // They are loaded once.
        life.filter("bin/");
        QVERIFY(!life.calls().contains("collectFileLists"));
        // And not kept beyond the entries that they belong to.
        life.filter("bin/needle");
        life.calls();
        life.click("refresh");
        const QStringList refreshed = life.calls();
        QCOMPARE(refreshed.count("collectFileLists"), 1);
        QCOMPARE(life.listed(), QStringList{"beta"});
        // A refresh searches what has been prepared, too.
        QCOMPARE(refreshed.count("returnChangelog"), 3);
    }

    void aSearchIsPreparedOnce()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 3);
        life.select("mode", 1);
        life.calls();
        // Each package but the chained one is a row.
        life.filter("no such text");
        QCOMPARE(life.calls().count("returnChangelog"), 3);
        QCOMPARE(life.listed(), QStringList());
        QSignalSpy resets(life.table()->model(), &QAbstractItemModel::modelReset);
        life.filter("no such text either");
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("returnChangelog"), 0);
        QCOMPARE(calls.count("returnPrco"), 0);
        QVERIFY(calls.contains("returnFileEntries"));
        QCOMPARE(resets.count(), 1);
    }

    void aFailedLoadIsReportedOncePerSearch()
    {
        WindowLife life;
        life.system["raise"] = QJsonObject{
            {"collectFileLists",
             QJsonObject{{"type", "YumBaseError"}, {"text", "unreachable"}, {"keep", true}}},
            {"collectOtherData",
             QJsonObject{{"type", "YumBaseError"}, {"text", "unreachable"}, {"keep", true}}}};
        life.play();
        QVERIFY(life.start());
        life.select("state", 3);
        life.select("mode", 1);
        life.calls();
        for (const char* data : {"filelists", "miscellaneous data"})
            life.dialogs.expect("VOK Yum Error").textContains(data).press("Close");
        life.filter("needle");
        QVERIFY(life.dialogs.waitUntilDone());
        QStringList calls = life.calls();
        QCOMPARE(calls.count("collectFileLists"), 1);
        QCOMPARE(calls.count("collectOtherData"), 1);
        QCOMPARE(life.listed(), QStringList());
        QVERIFY(life.ready());
        // What there is is searched all the same.
        for (const char* data : {"filelists", "miscellaneous data"})
            life.dialogs.expect("VOK Yum Error").textContains(data).press("Close");
        life.filter("gam*a");
        QVERIFY(life.dialogs.waitUntilDone());
        QCOMPARE(life.listed(), QStringList{"gamma"});
        calls = life.calls();
        QCOMPARE(calls.count("collectFileLists"), 1);
    }

    void changingToSearchWithAPatternLoadsTheExtraDataAtOnce()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 3);
        life.filter("needle");
        QCOMPARE(life.listed(), QStringList());
        life.calls();
        life.select("mode", 1);
        const QStringList calls = life.calls();
        QVERIFY(calls.contains("collectFileLists"));
        QVERIFY(calls.contains("collectOtherData"));
        QCOMPARE(life.listed(), QStringList{"beta"});
        QVERIFY(life.ready());
        QCOMPARE(WindowLife::takeBusyCursors(), 0);
    }

    void theKeyboardStaysWhereItWasBeforeASearch()
    {
        WindowLife life;
        QVERIFY(life.start());
        QCOMPARE(life.window().focusWidget(), life.find<QWidget>("regexp"));
        life.select("mode", 1);
        life.find<QLineEdit>("regexp")->setFocus();
        life.filter("needle");
        QCOMPARE(life.window().focusWidget(), life.find<QWidget>("regexp"));
        life.find<QPushButton>("refresh")->setFocus();
        life.click("refresh");
        QCOMPARE(life.window().focusWidget(), life.find<QWidget>("refresh"));
    }

    void aBadPatternListsEverything()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", 3);
        life.filter("(");
        QCOMPARE(life.listed().size(), 4);
    }

    void theLogOpensTwiceWithWhatWasSaid()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.action("Log")->trigger();
        Log::Window* log = logWindow();
        QVERIFY(log && log->isVisible());
        const QString first = logText(log);
        QVERIFY(!first.isEmpty());
        log->close();
        life.click("refresh");
        life.action("Log")->trigger();
        QCOMPARE(logWindow(), log);
        QVERIFY(logText(log).size() > first.size());
        QVERIFY(life.ready());
    }

    void resizeWidensTheColumnsAgain()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.table()->setColumnWidth(3, 1);
        life.click("resize");
        QVERIFY(life.table()->columnWidth(3) > 10);
    }

    void aFailedCollectionLeavesTheWindowReady()
    {
        WindowLife life;
        life.system["raise"] = QJsonObject{
            {"setupRepos", QJsonObject{{"type", "RepoError"}, {"text", "no mirror answers"}}}};
        life.play();
        life.dialogs.expect("VOK Yum Error").textContains("no mirror answers").press("Close");
        QVERIFY(life.start());
        QCOMPARE(life.listed(), QStringList());
        QVERIFY(life.dialogs.waitUntilDone());
        life.system.remove("raise");
        life.play();
        life.click("refresh");
        QCOMPARE(life.listed(), QStringList{"alpha"});
    }

    void withoutRepositoriesTheWindowIsReady()
    {
        WindowLife life;
        life.system["repos"] = QJsonObject();
        life.play();
        life.dialogs.expect("VOK Yum Error")
            .textContains("No repositories are configured.")
            .press("OK");
        QVERIFY(life.start());
        QVERIFY(life.action("Edit Configuration")->isEnabled());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestMainWindow tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_MainWindow.moc"
