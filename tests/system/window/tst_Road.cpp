// SPDX-License-Identifier: GPL-2.0-or-later
#include "Program.h"
#include "Sandbox.h"
#include "WindowDriver.h"

#include "kit/HFrameLabel.h"
#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"
#include "unit/repo/RepoAuthUser.h"
#include "unit/repo/RepoEditorDriver.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

/// A person's way through the program, on real packages.
class TestRoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableShowsTheSystem()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        QVERIFY(root.locked());
        const QStringList updates = user.listed();
        QVERIFY2(updates.contains("edwin") && updates.contains("network-suite"),
                 qPrintable(updates.join(QLatin1Char(' '))));
        QVERIFY(!updates.contains("chess"));
        user.select("state", PackageTable::ViewInstallable);
        QVERIFY(user.listed().contains("atlas"));
        QVERIFY(!user.listed().contains("edwin"));
        user.select("state", PackageTable::ViewRemovable);
        QVERIFY(user.listed().contains("edwin") && user.listed().contains("chess"));
        user.select("state", PackageTable::ViewAll);
        QVERIFY(!user.listed().contains("Games"));
        user.check("groups", true);
        QVERIFY(user.listed().contains("Games"));
        // libglow is there in two architectures.
        QCOMPARE(user.listed().count("libglow"), 2);
        user.check("duplicates", false);
        QCOMPARE(user.listed().count("libglow"), 1);
        QCOMPARE(user.cell("libglow", PackageTable::ColumnArchitecture).data().toString(),
                 QStringLiteral("x86_64"));
    }

    void noTextOfTheTableIsCut()
    {
        const SandboxRoot root;
        WindowDriver user;
        user.window().setStateFilter(PackageTable::ViewAll);
        user.window().setGroups(true);
        QVERIFY(user.start());
        const QTableView* table = user.table();
        for (int column = 0; column < PackageTable::ColumnCount; ++column)
            QVERIFY2(table->columnWidth(column) >=
                         static_cast<const QAbstractItemView*>(table)->sizeHintForColumn(column),
                     QByteArray::number(column).constData());
        const int last = PackageTable::ColumnCount - 1;
        QVERIFY(table->columnViewportPosition(last) + table->columnWidth(last) <=
                table->viewport()->width());
        QTRY_VERIFY(
            user.window().screen()->availableGeometry().contains(user.window().frameGeometry()));
    }

    void filteringMarkingAndClearing()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        auto* apply = user.find<QPushButton>("apply");
        user.filter("^network-");
        QCOMPARE(user.listed(), QStringList{"network-suite"});
        user.filter(".*");
        QVERIFY(user.clickAction("edwin"));
        QCOMPARE(user.entry("edwin")->action, Package::ActionUpdate);
        QVERIFY(apply->isEnabled());
        QVERIFY(user.clickAction("edwin"));
        QCOMPARE(user.entry("edwin")->action, Package::ActionRemove);

        user.select("state", PackageTable::ViewInstallable);
        QCOMPARE(user.find<HFrameLabel>("warning")->text(), QStringLiteral("Unlisted Actions"));
        user.table()->selectionModel()->select(
            user.cell("atlas", 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        user.click("setSelected");
        QCOMPARE(user.entry("atlas")->action, Package::ActionInstall);
        user.dialogs.expect("Apply").textContains("Transaction to be performed").press("Cancel");
        user.click("apply");
        QVERIFY(user.dialogs.waitUntilDone());
        QCOMPARE(user.entry("atlas")->action, Package::ActionInstall);
        user.click("clearActions");
        QCOMPARE(user.entry("edwin")->action, Package::ActionNone);
        QCOMPARE(user.find<HFrameLabel>("warning")->text(), QString());
        QVERIFY(!apply->isEnabled());
    }

    void theContextMenusMarkAndDescribe()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        user.table()->setCurrentIndex(user.cell("chess", PackageTable::ColumnName));
        user.table()->selectionModel()->select(
            user.cell("atlas", 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        QStringList enabled =
            user.chooseFromMenu(user.cell("chess", PackageTable::ColumnAction), "Install");
        QCOMPARE(enabled, (QStringList{"Install", "Remove", "No Action"}));
        QCOMPARE(user.entry("atlas")->action, Package::ActionInstall);
        QCOMPARE(user.entry("chess")->action, Package::ActionNone);
        QVERIFY(user.find<QPushButton>("apply")->isEnabled());

        enabled =
            user.chooseFromMenu(user.cell("chess", PackageTable::ColumnRepository), QString());
        QCOMPARE(enabled, (QStringList{"Describe", "Browse Repository"}));
        enabled = user.chooseFromMenu(user.cell("chess", PackageTable::ColumnName), QString());
        QCOMPARE(enabled, QStringList{"Describe"});
    }

    void aSearchFindsWhatThePackagesHold()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        user.filter("/usr/share/doc/chess/README$");
        QCOMPARE(user.listed(), QStringList());
        user.select("mode", PackageTable::ModeSearch);
        QCOMPARE(user.listed(), QStringList{"chess"});
        QVERIFY(!user.find<QComboBox>("mode")->toolTip().contains("Must load extra data"));
        user.filter("/usr/share/doc/almanac/README$");
        QCOMPARE(user.listed(), QStringList{"almanac"});
        QVERIFY(user.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void refreshSeesWhatOthersDidToTheSystem()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        QCOMPARE(user.entry("chess")->state, Package::StateInstalled);
        QCOMPARE(SandboxRoot::run("rpm", {"--dbpath", root.path("var/lib/rpm"), "-e", "--justdb",
                                          "--nodeps", "--noscripts", "chess"}),
                 0);
        user.click("refresh");
        QVERIFY(user.ready());
        const Package::Entry* chess = user.entry("chess");
        QVERIFY(!chess || chess->state == Package::StateInstallable);
    }

    void cleaningTheMetadataBringsAChangedRepository()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        const QDir testing(SandboxRoot::repository("testing"));
        const QString file = testing.entryList({"*.rpm"}).first();
        QVERIFY(
            QFile::copy(testing.filePath(file), SandboxRoot::repository("extras") + '/' + file));
        const QStringList makeRepository{"--quiet", "--no-database", "--update",
                                         SandboxRoot::repository("extras")};
        QCOMPARE(SandboxRoot::run("createrepo_c", makeRepository), 0);
        const int before = user.model()->rowCount();
        user.click("refresh");
        QCOMPARE(user.model()->rowCount(), before);
        user.action("Clean XML Metadata")->trigger();
        QFile::remove(SandboxRoot::repository("extras") + '/' + file);
        QCOMPARE(SandboxRoot::run("createrepo_c", makeRepository), 0);
        QVERIFY(user.ready());
        bool found = false;
        for (int row = 0; row < user.model()->rowCount(); ++row) {
            const QString name =
                user.model()->index(row, PackageTable::ColumnName).data().toString();
            const QString version =
                user.model()->index(row, PackageTable::ColumnVersion).data().toString();
            found = found || file.startsWith(name + '-' + version.section(':', -1) + '.');
        }
        QVERIFY2(found, qPrintable(file));
    }

    void theLogTellsWhatWasDone()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        user.action("Log")->trigger();
        QVERIFY(user.logWindow());
        QVERIFY(user.logText().contains("Initialization"));
        const int before = user.logText().count("Initialization");
        user.click("refresh");
        QVERIFY(user.logText().count("Initialization") > before);
        QTest::keyClick(user.logWindow(), Qt::Key_Escape);
        QVERIFY(!user.logWindow());
        QVERIFY(user.window().isVisible());
    }

    void quitGivesTheLockBackAndLeavesNothing()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        QVERIFY(root.locked());
        user.action("Log")->trigger();
        const QSignalSpy left(&user.window(), &MainWindow::left);
        user.action("Quit")->trigger();
        QCOMPARE(left.size(), 1);
        QVERIFY(!user.logWindow());
        QVERIFY(!root.locked());
        QCOMPARE(root.leftovers(), QStringList());
    }

    void theProgramEndsInSilenceOnCtrlQ()
    {
        // Without a session's directory Qt makes one for the user among the temporary files.
        QTemporaryDir session;
        const SandboxRoot root;
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(session.path()));
        Program vok({"--log", "--state=all"});
        QTRY_VERIFY_WITH_TIMEOUT(root.locked(), 20000);
        // The key is refused until the first collection is over.
        const auto pressed = [&] {
            SandboxRoot::run("xdotool", {"search", "--onlyvisible", "--name", "^VOK - ",
                                         "windowactivate", "--sync"});
            SandboxRoot::run("xdotool", {"key", "ctrl+q"});
            // The window may have gone before the keys came up, and the server would repeat them.
            SandboxRoot::run("xdotool", {"keyup", "q", "keyup", "ctrl"});
            return vok.process.waitForFinished(500);
        };
        for (int tries = 0; tries < 40 && !pressed(); ++tries)
            ;
        QCOMPARE(vok.process.state(), QProcess::NotRunning);
        QCOMPARE(vok.process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(vok.process.exitCode(), 0);
        QCOMPARE(vok.process.readAllStandardOutput(), QByteArray());
        QCOMPARE(vok.process.readAllStandardError(), QByteArray());
        QVERIFY(!root.locked());
        QCOMPARE(root.leftovers(), QStringList());
    }

    void aSecondStartIsToldOfTheLockAndCanTryAgain()
    {
        const SandboxRoot root;
        Program first;
        QTRY_VERIFY_WITH_TIMEOUT(root.locked(), 20000);
        WindowDriver user;
        user.dialogs.expect("VOK Yum Error")
            .textContains("Unable to obtain yum lock")
            .press("Close");
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QCOMPARE(user.listed(), QStringList());
        first.process.terminate();
        QVERIFY(first.process.waitForFinished());
        user.click("refresh");
        QVERIFY(user.listed().contains("edwin"));
    }

    void theRepositoryEditorLeadsToANewList()
    {
        const SandboxRoot root;
        WindowDriver user;
        user.window().setStartInRepoEditor();
        user.dialogs.expect("VOK Repository Configuration Editor")
            .act([&](QWidget* window) {
                auto* dialog = qobject_cast<RepoEditor::Dialog*>(window);
                QVERIFY(dialog);
                const RepoEditorDriver editor(dialog);
                // The repository is off in its file, and used for this run.
                editor.click("testing", RepoEditor::ColumnUse);
            })
            .press("OK");
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        QStringList repositories;
        for (int row = 0; row < user.model()->rowCount(); ++row)
            repositories
                << user.model()->index(row, PackageTable::ColumnRepository).data().toString();
        QVERIFY(repositories.contains("testing"));
    }

    void repositoriesForMembersOpenWithOneAnswer()
    {
        const SandboxRoot root;
        WindowDriver user;
        RepoAuthUser asked;
        for (const char* id : {"members", "minutes"})
            user.window().addRepoOverride(YumRepoEnabled(true, QLatin1String(id)));
        user.dialogs.expect("VOK Authentication").leave();
        asked.answer("Apply to All with this Host", "demo", "secret");
        QVERIFY(user.start());
        QCOMPARE(asked.asked.size(), 1);
        user.select("state", PackageTable::ViewAll);
        const QStringList listed = user.listed();
        QVERIFY(listed.contains("members-handbook") && listed.contains("members-minutes"));
        QFile file(root.path("etc/yum.repos.d/members.repo"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.contains("/vantry?user=demo&pass=secret&path=/"));
        QVERIFY(text.contains("/rhel/user=demo/pass=secret/"));
        QVERIFY(user.logWindow() == nullptr);
        user.action("Log")->trigger();
        QVERIFY(!user.logText().contains("secret"));
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestRoad tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Road.moc"
