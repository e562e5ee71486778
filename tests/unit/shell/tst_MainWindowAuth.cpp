// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "support/ProcessPerTest.h"
#include "unit/repo/RepoAuthUser.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QJsonObject>
#include <QSignalSpy>
#include <QtTest>

/// What the window does with the answers to the question for names and passwords.
class TestMainWindowAuth : public QObject
{
    Q_OBJECT

private:
    /// A repository that wants credentials, as a package might bring it along.
    static void addRepository(WindowLife& life)
    {
        life.system["repos"] = QJsonObject{{"base", QJsonObject{{"enabled", 1}}},
                                           {"closed", QJsonObject{{"enabled", 1}}}};
        life.play();
        WindowLife::writeFile(life.rootPath(QStringLiteral("etc/yum.repos.d/closed.repo")),
                              "[closed]\nname=Closed\n"
                              "baseurl=http://host/vantry?user=&pass=&path=/os\nenabled=1\n");
    }
    static QByteArray repository(const WindowLife& life)
    {
        QFile file(life.rootPath(QStringLiteral("etc/yum.repos.d/closed.repo")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void expectQuestion(WindowLife& life)
    {
        life.dialogs.expect("VOK Authentication").leave();
    }
    /// Agrees to an Apply, which brings the repository along.
    static void expectApply(WindowLife& life)
    {
        life.dialogs.expect("Apply").act([&](QWidget*) { addRepository(life); }).press("OK");
        expectQuestion(life);
    }
    static void playApply(WindowLife& life)
    {
        life.system["apply"] = QStringLiteral("yumIOC.listTransaction(base())\n"
                                              "yumIOC.userconfirm()");
        life.play();
    }

private Q_SLOTS:
    void anAnswerAtTheStartIsReadAnewBeforeTheCollection()
    {
        WindowLife life;
        RepoAuthUser user;
        addRepository(life);
        expectQuestion(life);
        user.answer([&](RepoAuth::Dialog& dialog) {
            QVERIFY(!QApplication::overrideCursor());
            QVERIFY(life.find<QWidget>("mainArea")->isHidden());
            QVERIFY(!life.action("Quit")->isEnabled());
            QVERIFY(!life.calls().contains("flush"));
            RepoAuthUser::type(dialog, "authName", "me");
            RepoAuthUser::type(dialog, "password", "pass");
            RepoAuthUser::press(dialog, "OK");
        });
        QVERIFY(life.start());
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("flush"), 1);
        QVERIFY(calls.indexOf("flush") < calls.indexOf("collectAll"));
        QVERIFY(repository(life).contains("user=me&pass=pass&"));
        QCOMPARE(life.listed(), QStringList{"alpha"});
        QVERIFY(!QApplication::overrideCursor());
    }

    void aStartWithoutAnAnswerCollectsAtOnce()
    {
        WindowLife life;
        RepoAuthUser user;
        addRepository(life);
        expectQuestion(life);
        user.answer("Skip All");
        QVERIFY(life.start());
        const QStringList calls = life.calls();
        QVERIFY(!calls.contains("flush"));
        QCOMPARE(calls.count("collectAll"), 1);
        QVERIFY(calls.count("enableRepo") > 0);
        QVERIFY(!QApplication::overrideCursor());
    }

    void quittingAtTheStartEndsTheProgramWithoutACollection()
    {
        WindowLife life;
        RepoAuthUser user;
        addRepository(life);
        expectQuestion(life);
        user.answer([&](RepoAuth::Dialog& dialog) {
            QVERIFY(!life.calls().contains("collectAll"));
            RepoAuthUser::press(dialog, "Quit");
        });
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        QSignalSpy left(&life.window(), &MainWindow::left);
        life.window().show();
        QVERIFY(left.size() == 1 || left.wait(10000));
        QCOMPARE(user.asked, QStringList{"closed"});
        QCOMPARE(resets.size(), 0);
        QVERIFY(!life.window().isVisible());
        QVERIFY(!life.find<QWidget>("mainArea")->isVisible());
    }

    void anApplyThatBringsARepositoryAsks()
    {
        WindowLife life;
        RepoAuthUser user;
        playApply(life);
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        life.calls();
        expectApply(life);
        user.answer([&](RepoAuth::Dialog& dialog) {
            QVERIFY(!life.calls().contains("collectAll"));
            RepoAuthUser::type(dialog, "authName", "me");
            RepoAuthUser::press(dialog, "OK");
        });
        life.click("apply");
        QVERIFY(life.dialogs.waitUntilDone());
        QCOMPARE(life.calls().count("collectAll"), 1);
        QVERIFY(repository(life).contains("user=me&"));
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void quittingAfterAnApplyEndsTheProgramWithoutACollection()
    {
        WindowLife life;
        RepoAuthUser user;
        playApply(life);
        QVERIFY(life.start());
        QVERIFY(life.clickAction("alpha"));
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        const QSignalSpy left(&life.window(), &MainWindow::left);
        expectApply(life);
        user.answer("Quit");
        life.click("apply");
        QCOMPARE(left.size(), 1);
        QCOMPARE(resets.size(), 0);
        QVERIFY(!life.window().isVisible());
    }

    void aChangeOfRepositoriesAsksAndReadsAnewOnce()
    {
        WindowLife life;
        RepoAuthUser user;
        QVERIFY(life.start());
        addRepository(life);
        life.calls();
        expectQuestion(life);
        user.answer("OK", "me", "pass");
        life.window().reposChanged();
        const QStringList calls = life.calls();
        QCOMPARE(calls.count("flush"), 1);
        QCOMPARE(calls.count("collectAll"), 1);
        QVERIFY(repository(life).contains("user=me&pass=pass&"));
        QVERIFY(life.ready());
        QVERIFY(!QApplication::overrideCursor());
    }

    void quittingAfterAChangeOfRepositoriesEndsTheProgram()
    {
        WindowLife life;
        RepoAuthUser user;
        QVERIFY(life.start());
        addRepository(life);
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        const QSignalSpy left(&life.window(), &MainWindow::left);
        expectQuestion(life);
        user.answer("Quit");
        life.window().reposChanged();
        QCOMPARE(left.size(), 1);
        QCOMPARE(resets.size(), 0);
        QVERIFY(!life.window().isVisible());
    }

    void aRepositoryDisabledForTheSessionIsNotCollected()
    {
        WindowLife life;
        RepoAuthUser user;
        addRepository(life);
        expectQuestion(life);
        user.answer("Disable for Session");
        QVERIFY(life.start());
        life.calls();
        // A second question would fail the test.
        life.window().reposChanged();
        QCOMPARE(user.asked.size(), 1);
        QVERIFY(life.calls().contains("disableRepo"));
        QVERIFY(repository(life).contains("enabled=1"));
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestMainWindowAuth tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_MainWindowAuth.moc"
