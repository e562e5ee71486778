// SPDX-License-Identifier: GPL-2.0-or-later
#include "Program.h"
#include "WindowSession.h"

#include "support/ProcessPerTest.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QtTest>

namespace
{

const char noneConfigured[] =
    "No repositories are configured.\n"
    "Under the Repositories menu, Edit Configuration can be used to configure repositories.";
const char noneEnabled[] =
    "No repositories are enabled.\n"
    "Under the Repositories menu, Edit Configuration can be used to configure repositories.";

} // namespace

/// Configuration files that can't be used and a lock that can't be had: each is told, and the
/// window works.
class TestBadConfiguration : public QObject
{
    Q_OBJECT

private:
    /// The reader's message, with which a table of the other files' repositories comes all the
    /// same.
    static void readerComplains(WindowSession& user, const QString& text)
    {
        QRect place;
        user.dialogs.expect("VOK Repository Editor Error")
            .text(text)
            .act([&](QWidget* dialog) { place = dialog->frameGeometry(); })
            .press("OK");
        QVERIFY(user.start());
        QVERIFY2(place.intersects(user.window().frameGeometry()), "the message was elsewhere");
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY(user.listedAll().contains("edwin"));
        QVERIFY(user.listed().contains("almanac"));
    }

    static void showsNothing(WindowSession& user, const char* text)
    {
        user.dialogs.expect("VOK Yum Error").text(text).press("OK");
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QCOMPARE(user.listedAll(), QStringList());
        QVERIFY(user.action("Edit Configuration")->isEnabled());
    }

private Q_SLOTS:
    void withoutAMainFileBothReadersSaySo()
    {
        WindowSession user;
        const QString file = user.path("etc/yum.conf");
        QVERIFY(QFile::rename(file, file + ".away"));
        user.dialogs.expect("VOK Repository Editor Error")
            .text("Unable to read yum configuration file " + file +
                  "; errno = 2 (No such file or directory).")
            .press("OK");
        user.dialogs.expect("VOK Yum Error")
            .text("The configuration file " + file + " does not exist\nUnable to initialize")
            .press("Close");
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QCOMPARE(user.listedAll(), QStringList());
        QVERIFY(QFile::rename(file + ".away", file));
        user.click("refresh");
        QVERIFY(user.listed().contains("edwin"));
        QCOMPARE(user.quit(), QString());
    }

    void aMalformedMainFileIsRefusedByBothReaders()
    {
        WindowSession user;
        const QString file = user.path("etc/yum.conf");
        user.write("etc/yum.conf", "[main]\ncachedir=/var/cache/yum\n[base\nname=Base\n");
        user.dialogs.expect("VOK Repository Editor Error")
            .text("Malformed section name in line: [base; errno = 0 (Success).")
            .press("OK");
        QString told;
        user.expectError(told);
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY2(told.startsWith(file + ": ") && told.endsWith("\nUnable to initialize"),
                 qPrintable(told));
        QCOMPARE(user.listedAll(), QStringList());
        user.write("etc/yum.conf", "[main]\ncachedir=/var/cache/yum\n");
        user.click("refresh");
        QVERIFY(user.listed().contains("almanac"));
        QCOMPARE(user.quit(), QString());
    }

    void aDanglingRepositoryFile()
    {
        WindowSession user;
        const QString file = user.path("etc/yum.repos.d/dangling.repo");
        QVERIFY(QFile::link("/nonexistent/dangling.repo", file));
        readerComplains(user, "Unable to stat repository configuration file " + file +
                                  "; errno = 2 (No such file or directory).");
        QVERIFY2(user.log().contains(file + ": No such file or directory"),
                 qPrintable(user.logText()));
        QCOMPARE(user.quit(), QString());
    }

    void aRepositoryFileThatLinksToItself()
    {
        WindowSession user;
        const QString file = user.path("etc/yum.repos.d/loop.repo");
        QVERIFY(QFile::link("loop.repo", file));
        readerComplains(user, "Unable to stat repository configuration file " + file +
                                  "; errno = 40 (Too many levels of symbolic links).");
        QVERIFY2(user.log().contains(file + ": Too many levels of symbolic links"),
                 qPrintable(user.logText()));
        QCOMPARE(user.quit(), QString());
    }

    void aMalformedRepositoryFile()
    {
        WindowSession user;
        user.write("etc/yum.repos.d/broken.repo",
                   "[good]\nname=Good\nbaseurl=file:///nowhere\nenabled=0\n"
                   "[broken <b>section\nname=Broken\nbaseurl=file:///nowhere\n");
        readerComplains(user,
                        "Malformed section name in line: [broken <b>section; errno = 0 (Success).");
        const QString file = user.path("etc/yum.repos.d/broken.repo");
        QVERIFY2(user.log().contains(file + ": "), qPrintable(user.logText()));
        QCOMPARE(user.quit(), QString());
    }

    void aRepositoryFileThatOnlyTheScriptRefuses()
    {
        // To the reader what stands before the first section is nothing at all.
        WindowSession user;
        user.write("etc/yum.repos.d/early.repo", "name=Too early\n[late]\nname=Late\n");
        QVERIFY(user.start());
        QVERIFY(user.listedAll().contains("edwin"));
        const QString file = user.path("etc/yum.repos.d/early.repo");
        QVERIFY2(user.log().contains(file + ": "), qPrintable(user.logText()));
        QCOMPARE(user.quit(), QString());
    }

    void noRepositories()
    {
        WindowSession user;
        user.useRepositories("");
        showsNothing(user, noneConfigured);
        user.dialogs.expect("VOK Yum Error").text(noneConfigured).press("OK");
        user.click("refresh");
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY(user.ready());
        QCOMPARE(user.quit(), QString());
    }

    void allRepositoriesDisabledInTheFile()
    {
        WindowSession user;
        user.useRepositories("[one]\nname=One\nbaseurl=file:///nowhere\nenabled=0\n"
                             "[two]\nname=Two\nbaseurl=file:///nowhere\nenabled=0\n");
        showsNothing(user, noneEnabled);
        QCOMPARE(user.quit(), QString());
    }

    void allRepositoriesDisabledForTheSession()
    {
        WindowSession user;
        user.window().addRepoOverride(YumRepoEnabled(false, QStringLiteral("*")));
        showsNothing(user, noneEnabled);
        user.dialogs.expect("VOK Yum Error").text(noneEnabled).press("OK");
        user.click("refresh");
        QVERIFY(user.dialogs.waitUntilDone());
        QCOMPARE(user.quit(), QString());
    }

    void aLockThatAnotherProcessHolds()
    {
        WindowSession user;
        QProcess other;
        other.start("sleep", {"1000"});
        QVERIFY(other.waitForStarted());
        QDir().mkpath(user.path("var/lib/dnf"));
        const QByteArray pid = QByteArray::number(other.processId());
        user.write("var/lib/dnf/rpmdb_lock.pid", pid);
        const QString text =
            "The package database is locked by another application: sleep (pid " + pid +
            ").\nWait until it has finished, or end it, and try again.\nUnable to obtain yum lock";
        user.dialogs.expect("VOK Yum Error").text(text).press("Close");
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QCOMPARE(user.listedAll(), QStringList());
        user.dialogs.expect("VOK Yum Error").text(text).press("Close");
        user.click("refresh");
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY(user.ready());
        other.kill();
        QVERIFY(other.waitForFinished());
        user.click("refresh");
        QVERIFY(user.listed().contains("edwin"));
        QCOMPARE(user.quit(), QString());
    }

    void aSecondStartIsRefusedAndLeavesTheLockToTheFirst()
    {
        WindowSession user;
        QVERIFY(user.start());
        QVERIFY(user.locked());
        Program second;
        QVERIFY(second.press("^VOK Yum Error$", "Escape"));
        QVERIFY(second.press("^VOK - ", "ctrl+q"));
        QCOMPARE(second.end(), QString());
        QCOMPARE(second.process.readAllStandardOutput(), QByteArray());
        QCOMPARE(second.process.readAllStandardError(), QByteArray());
        QVERIFY(user.locked());
        user.click("refresh");
        QVERIFY(user.listed().contains("edwin"));
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestBadConfiguration tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_BadConfiguration.moc"
