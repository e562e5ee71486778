// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "log/LogWindow.h"
#include "support/ProcessPerTest.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

/// Starts of all kinds, the failing ones among them.
class TestMainWindowStart : public QObject
{
    Q_OBJECT

private:
    void endsWithAMessage(WindowLife& life, const char* title, const char* message,
                          const char* button = "OK")
    {
        life.dialogs.expect(title).textContains(message).press(button);
        QSignalSpy left(&life.window(), &MainWindow::left);
        life.window().show();
        QVERIFY(left.size() == 1 || left.wait(10000));
        QVERIFY(life.dialogs.waitUntilDone());
        QVERIFY(!life.window().isVisible());
    }

private Q_SLOTS:
    void theWindowIsPaintedBeforeTheEngineStarts()
    {
        WindowLife life;
        life.window().show();
        QVERIFY(life.window().isVisible());
        QVERIFY(life.find<QWidget>("mainArea")->isHidden());
        QTRY_VERIFY(life.ready());
    }

    void aMissingScriptEndsTheProgram()
    {
        WindowLife life;
        QVERIFY(QFile::remove(life.sharePath("python")));
        endsWithAMessage(life, "VOK Yum Error", "Internal error: unable to open YumIO.py");
    }

    void aScriptThatRefusesToStartEndsTheProgram()
    {
        WindowLife life;
        life.useScript("import sys\n"
                       "class YumIO:\n"
                       "    def __init__(self):\n"
                       "        sys.exit('no configuration')\n");
        endsWithAMessage(life, "VOK Yum Error", "Unable to initialize", "Close");
    }

    void aScriptWithoutItsClassEndsTheProgram()
    {
        WindowLife life;
        life.useScript("x = 1\n");
        endsWithAMessage(life, "VOK Yum Error", "Internal error: cannot find python YumIO");
    }

    void aMissingMainFileIsToldAndLeavesTheWindowReady()
    {
        WindowLife life;
        QVERIFY(QFile::remove(life.rootPath("etc/yum.conf")));
        life.dialogs.expect("VOK Repository Editor Error")
            .textContains("Unable to read yum configuration file " +
                          life.rootPath(QStringLiteral("etc/yum.conf")))
            .press("OK");
        QVERIFY(life.start());
        QCOMPARE(life.listed(), QStringList{"alpha"});
    }

    void overridesReachTheCollection()
    {
        WindowLife life;
        life.window().addRepoOverride(YumRepoEnabled(false, QStringLiteral("*")));
        life.dialogs.expect("VOK Yum Error")
            .textContains("No repositories are enabled.")
            .press("OK");
        QVERIFY(life.start());
        QVERIFY(life.calls().contains("disableRepo"));
    }

    void theLogIsShownAtTheStartWhenAskedFor()
    {
        WindowLife life;
        life.window().setLogAtStart();
        QVERIFY(life.start());
        const auto widgets = QApplication::topLevelWidgets();
        int shown = 0;
        for (QWidget* widget : widgets)
            shown += qobject_cast<Log::Window*>(widget) && widget->isVisible();
        QCOMPARE(shown, 1);
    }

    void settingsOfTheCommandLineHoldForTheFirstTable()
    {
        WindowLife life;
        life.window().setRegexp("^(beta|tools|gamma)");
        life.window().setStateFilter(PackageTable::ViewAll);
        life.window().setDups(false);
        life.window().setGroups(true);
        QVERIFY(life.start());
        QCOMPARE(life.listed(), (QStringList{"beta", "gamma", "tools"}));
    }

    void aStartInSearchModeKeepsTheBusyCursorButWorks()
    {
        WindowLife life;
        life.window().setMode(PackageTable::ModeSearch);
        QVERIFY(!life.find<QWidget>("mainArea")->isEnabled());
        QVERIFY(life.start());
        QVERIFY(life.action("Quit")->isEnabled());
        QCOMPARE(WindowLife::takeBusyCursors(), 2);
    }

    void aStartInSearchModeSearches()
    {
        WindowLife life;
        // The pattern comes first, and so is there when the mode is set and nothing can be loaded.
        life.window().setRegexp("bin/needle");
        life.window().setMode(PackageTable::ModeSearch);
        life.window().setStateFilter(PackageTable::ViewAll);
        QVERIFY(life.start());
        QVERIFY(life.calls().contains("collectFileLists"));
        QCOMPARE(life.listed(), QStringList{"beta"});
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestMainWindowStart tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_MainWindowStart.moc"
