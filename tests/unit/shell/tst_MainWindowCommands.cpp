// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "engine/TransactionGuard.h"
#include "kit/HFrameLabel.h"
#include "support/ProcessPerTest.h"
#include "unit/repo/RepoEditorDriver.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

#include <csignal>

namespace
{

/// A stand-in for a viewer: writes its arguments, one a line, to "seen" in its own directory.
const char viewer[] = "#!/bin/sh\n"
                      "dir=$(dirname \"$0\")\n"
                      "printf '%s\\n' \"$@\" > \"$dir/part\"\n"
                      "mv \"$dir/part\" \"$dir/seen\"\n";

const char editorTitle[] = "VOK Repository Configuration Editor";

void addSecondRepository(WindowLife& life)
{
    WindowLife::writeFile(life.rootPath(QStringLiteral("etc/yum.repos.d/second.repo")),
                          "[second]\nname=Second\nbaseurl=file:///second\nenabled=1\n");
    life.system["repos"] =
        QJsonObject{{"base", QJsonObject{{"enabled", 1}}}, {"second", QJsonObject{{"enabled", 1}}}};
    life.play();
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The one-shot commands: cleaning, repositories, help, apply.
class TestMainWindowCommands : public QObject
{
    Q_OBJECT

private:
    void cleaningCollectsAnew(const char* text, const QStringList& methods)
    {
        WindowLife life;
        life.system["version"] = "2.9.1";
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        QVERIFY(life.action(QString::fromLatin1(text))->isEnabled());
        life.action(QString::fromLatin1(text))->trigger();
        const QStringList calls = life.calls();
        for (const QString& method : methods)
            QVERIFY2(calls.contains(method), qPrintable(method));
        QVERIFY(calls.indexOf(methods.last()) < calls.indexOf("flush"));
        QCOMPARE(calls.count("collectAll"), 1);
        QCOMPARE(life.listed(), QStringList{"alpha"});
        QCOMPARE(life.entry("alpha")->action, Package::ActionNone);
        // As after a refresh, the button learns of it only later.
        QVERIFY(life.find<QPushButton>("apply")->isEnabled());
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

private Q_SLOTS:
    void cleanHeadersCollectsAnew() { cleaningCollectsAnew("Clean Headers", {"cleanHeaders"}); }
    void cleanXmlMetadataCollectsAnew()
    {
        cleaningCollectsAnew("Clean XML Metadata", {"cleanMetadata"});
    }
    void cleanPickledCacheCollectsAnew()
    {
        cleaningCollectsAnew("Clean Pickled Data", {"cleanPickles"});
    }
    void cleanSqliteCacheCollectsAnew()
    {
        cleaningCollectsAnew("Clean Sqlite Data", {"cleanSqlite"});
    }
    void cleanAllCollectsAnew()
    {
        cleaningCollectsAnew("Clean All", {"cleanHeaders", "cleanPackages", "cleanMetadata",
                                           "cleanPickles", "cleanSqlite"});
    }

    void cleanPackagesKeepsTheTableAsItIs()
    {
        WindowLife life;
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        const Package::Entry* before = life.entry("alpha");
        life.action("Clean Packages")->trigger();
        const QStringList calls = life.calls();
        QVERIFY(calls.contains("cleanPackages"));
        QVERIFY(!calls.contains("collectAll") && !calls.contains("flush"));
        QCOMPARE(resets.size(), 0);
        QCOMPARE(life.entry("alpha"), const_cast<Package::Entry*>(before));
        QCOMPARE(before->action, Package::ActionUpdate);
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void aSuccessfulApplyCollectsAnewAndLosesTheActions()
    {
        WindowLife life;
        life.system["apply"] = QStringLiteral("yumIOC.listTransaction(base())\n"
                                              "yumIOC.userconfirm()");
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.filter("beta");
        auto* warning = life.find<HFrameLabel>("warning");
        QCOMPARE(warning->text(), QString("Unlisted Actions"));
        life.calls();
        // What is installed at the end is what the next collection finds.
        life.system["updates"] = QJsonArray();
        life.play();
        life.dialogs.expect("Apply").act([&](QWidget*) { QVERIFY(!life.ready()); }).press("OK");
        life.click("apply");
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("apply"), 1);
        QCOMPARE(calls.count("collectAll"), 1);
        QVERIFY(calls.indexOf("apply") < calls.indexOf("collectAll"));
        QVERIFY(!life.entry("alpha") || life.entry("alpha")->action == Package::ActionNone);
        QCOMPARE(warning->text(), QString());
        QVERIFY(!life.find<QPushButton>("apply")->isEnabled());
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void aFailedApplyLeavesEveryActionAsItWas()
    {
        WindowLife life;
        life.system["raise"] =
            QJsonObject{{"apply", QJsonObject{{"type", "YumBaseError"}, {"text", "no room"}}}};
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        const Package::Entry* before = life.entry("alpha");
        life.dialogs.expect("VOK Yum Error").textContains("no room").press("Close");
        life.click("apply");
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("apply"), 1);
        QVERIFY(!calls.contains("collectAll"));
        QCOMPARE(resets.size(), 0);
        QCOMPARE(life.entry("alpha"), const_cast<Package::Entry*>(before));
        QCOMPARE(before->action, Package::ActionUpdate);
        QVERIFY(life.find<QPushButton>("apply")->isEnabled());
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void aCancelledApplyLeavesEveryActionAsItWas()
    {
        WindowLife life;
        life.system["apply"] = QStringLiteral("yumIOC.listTransaction(base())\n"
                                              "yumIOC.userconfirm()");
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        life.dialogs.expect("Apply").press("Cancel");
        life.click("apply");
        const QStringList calls = life.calls();
        QVERIFY(!calls.contains("collectAll") && !calls.contains("applyFailCleanup"));
        QCOMPARE(life.entry("alpha")->action, Package::ActionUpdate);
        QVERIFY(life.find<QPushButton>("apply")->isEnabled());
        QVERIFY(life.ready());
    }

    void theWindowRefusesToCloseDuringAnApply()
    {
        WindowLife life;
        life.system["apply"] = QStringLiteral("yumIOC.listTransaction(base())\n"
                                              "yumIOC.userconfirm()");
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        QSignalSpy left(&life.window(), &MainWindow::left);
        life.dialogs.expect("Apply")
            .act([&](QWidget*) {
                QVERIFY(!life.window().close());
                QVERIFY(life.window().isVisible());
                QVERIFY(!life.action("Quit")->isEnabled());
            })
            .press("Cancel");
        life.click("apply");
        QCoreApplication::processEvents();
        QCOMPARE(left.size(), 0);
        QVERIFY(life.ready());
    }

    void aSignalDuringTheTransactionEndsTheProgramAfterIt()
    {
        WindowLife life;
        life.system["apply"] = QStringLiteral("import os, signal\n"
                                              "yumIOC.listTransaction(base())\n"
                                              "yumIOC.userconfirm()\n"
                                              "yumIOC.tsInitCallback(1)\n"
                                              "os.kill(os.getpid(), signal.SIGTERM)\n"
                                              "record('survived')");
        life.play();
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        QSignalSpy left(&life.window(), &MainWindow::left);
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        life.dialogs.expect("Apply").press("OK");
        life.click("apply");
        QCOMPARE(left.size(), 1);
        QCOMPARE(resets.size(), 0);
        QVERIFY(!life.window().isVisible());
        QCOMPARE(TransactionGuard::pendingSignal(), SIGTERM);
    }

    void aChangeInTheRepositoryEditorReadsTheListAnew()
    {
        WindowLife life;
        addSecondRepository(life);
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        life.dialogs.expect(editorTitle)
            .act([&](QWidget* window) {
                const RepoEditorDriver editor(qobject_cast<RepoEditor::Dialog*>(window));
                QCOMPARE(editor.listed(), (QStringList{"base", "second"}));
                editor.click("second", RepoEditor::ColumnUse);
                QVERIFY(life.calls().isEmpty());
                life.system["updates"] = QJsonArray();
                life.play();
            })
            .press("OK");
        life.action("Edit Configuration")->trigger();
        QVERIFY(life.dialogs.waitUntilDone());
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("collectAll"), 1);
        QVERIFY(calls.contains("disableRepo"));
        QCOMPARE(life.listed(), QStringList());
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void theRepositoryEditorLeftWithoutAChangeKeepsTheList()
    {
        WindowLife life;
        // The force of the start is over when the editor is opened again.
        life.window().setStartInRepoEditor();
        life.dialogs.expect(editorTitle).press("OK");
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        life.dialogs.expect(editorTitle).press("OK");
        life.action("Edit Configuration")->trigger();
        QVERIFY(life.dialogs.waitUntilDone());
        QVERIFY(!life.calls().contains("collectAll"));
        QCOMPARE(life.entry("alpha")->action, Package::ActionUpdate);
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void startingWithTheRepositoryEditorCollectsWhenItIsCancelled()
    {
        WindowLife life;
        life.window().setStartInRepoEditor();
        bool met = false;
        life.dialogs.expect(editorTitle)
            .act([&](QWidget* window) {
                met = true;
                const RepoEditorDriver editor(qobject_cast<RepoEditor::Dialog*>(window));
                QCOMPARE(editor.listed(), QStringList{"base"});
                QVERIFY(life.find<QWidget>("mainArea")->isHidden());
                QVERIFY(life.action("Quit")->isEnabled());
                QVERIFY(!life.calls().contains("collectAll"));
            })
            .pressKey(Qt::Key_Escape);
        QVERIFY(life.start());
        QVERIFY(met);
        QCOMPARE(life.calls().count("collectAll"), 1);
        QCOMPARE(life.listed(), QStringList{"alpha"});
        QVERIFY(life.table()->columnWidth(3) >=
                static_cast<QAbstractItemView*>(life.table())->sizeHintForColumn(3));
        QVERIFY(!QApplication::overrideCursor());
    }

    void aRepositoryEditorThatCantReadLeavesAWindowToUse()
    {
        WindowLife life;
        QVERIFY(QFile::remove(life.rootPath("etc/yum.conf")));
        life.window().setStartInRepoEditor();
        // Once for the editor, and once for the list.
        for (int i = 0; i < 2; ++i)
            life.dialogs.expect("VOK Repository Editor Error")
                .textContains("Unable to read yum configuration file")
                .press("OK");
        QVERIFY(life.start());
        QVERIFY(life.dialogs.waitUntilDone());
        QCOMPARE(life.calls().count("collectAll"), 1);
        QVERIFY(!QApplication::overrideCursor());
    }

    void theManualOpensInTheBrowser()
    {
        WindowLife life;
        WindowLife::writeFile(life.sharePath("webbrowser"), viewer, true);
        life.window();
        life.action("Manual (html)")->trigger();
        QTRY_VERIFY(QFile::exists(life.sharePath("seen")));
        QCOMPARE(contents(life.sharePath("seen")),
                 QByteArray("/usr/share/doc/vok-1.11.11/html/index.html\n"));
    }

    void theManualForPrintingOpensInItsViewer()
    {
        WindowLife life;
        WindowLife::writeFile(life.sharePath("mimeviewer"), viewer, true);
        life.window();
        life.action("Manual (PDF)")->trigger();
        QTRY_VERIFY(QFile::exists(life.sharePath("seen")));
        QCOMPARE(contents(life.sharePath("seen")),
                 QByteArray("application/pdf\n/usr/share/doc/vok-1.11.11/manual.pdf\n"));
    }

    void aboutTellsTheProgramAndItsVersion()
    {
        WindowLife life;
        life.window();
        life.dialogs.expect("About")
            .text("<h3>VOK 1.11.11</h3><hr><p>VOK, Package Steward, is a graphical user interface "
                  "which allows a user to make modifications to the installed rpm packages on a "
                  "system.</p><p>Capabilities:<p><ul><li>Install new packages or update existing "
                  "packages by downloading them from a yum package repository</li><li>Remove "
                  "existing packages.</li><li>Configure sets of repositories from which to obtain "
                  "new and updated packages.</li><li>Examine installed packages or packages "
                  "available for installation or update</li><li>Install, update, or remove groups "
                  "of packages</li><li>Install or update suites of packages</li></ul><p>For more "
                  "information see https://vok.example/.</p>")
            .press("OK");
        life.action("About")->trigger();
        QVERIFY(life.dialogs.waitUntilDone());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestMainWindowCommands tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_MainWindowCommands.moc"
