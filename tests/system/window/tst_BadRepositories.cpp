// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowSession.h"
#include "WrittenRepository.h"

#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <QtTest>

namespace
{

/// A served repository of this test's own, which changes as it is told.
class ChangingRepository
{
public:
    ChangingRepository() { QDir().mkpath(path()); }
    ~ChangingRepository() { QDir(path()).removeRecursively(); }

    static QString path() { return SandboxRoot::repository(QStringLiteral("changing")); }
    static QString primary() { return path() + QStringLiteral("/repodata/primary.xml.gz"); }

    void add(const QString& repository, const QString& package)
    {
        const QDir from(SandboxRoot::repository(repository));
        const QStringList files = from.entryList({package + QStringLiteral("-[0-9]*.rpm")});
        QCOMPARE(files.size(), 1);
        QVERIFY(QFile::copy(from.filePath(files.first()), path() + '/' + files.first()));
    }
    void remove(const QString& package)
    {
        QDir folder(path());
        const QStringList files = folder.entryList({package + QStringLiteral("-[0-9]*.rpm")});
        QCOMPARE(files.size(), 1);
        QVERIFY(folder.remove(files.first()));
    }
    /// Files of the same names each time, which a client may thus see old beside new.
    void publish()
    {
        QCOMPARE(
            SandboxRoot::run("createrepo_c", {"--quiet", "--no-database", "--simple-md-filenames",
                                              "--general-compress-type=gz", path()}),
            0);
    }
    /// The section that names it.
    static QByteArray section()
    {
        QFile url(QStringLiteral(VOK_SANDBOX "/url"));
        return url.open(QIODevice::ReadOnly)
                   ? "[changing]\nname=Changes\nbaseurl=" + url.readAll() + "/repos/changing\n"
                   : QByteArray();
    }
};

/// The longest time in which the GUI thread got to no timer.
class Gaps : public QTimer
{
public:
    Gaps()
    {
        connect(this, &QTimer::timeout, this, [this] { longest = qMax(longest, since.restart()); });
        since.start();
        start(10);
    }

    qint64 longest = 0;

private:
    QElapsedTimer since;
};

} // namespace

/// Repositories that can't be reached or serve nonsense: each is named with the cause, and all is
/// well again when it is.
class TestBadRepositories : public QObject
{
    Q_OBJECT

private:
    /// The first collection fails with a dialog that names repository and cause; the window is of
    /// use then, and shows all once the server has recovered.
    static void recovers(WindowSession& user, const QString& repository, const QString& cause)
    {
        QString told;
        user.expectError(told);
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY2(told.contains('\'' + repository + '\'') && told.contains(cause), qPrintable(told));
        QVERIFY2(told.endsWith("\nUnable to initialize"), qPrintable(told));
        QVERIFY2(!told.contains("Traceback") && !told.contains("Internal error"), qPrintable(told));
        QCOMPARE(user.listedAll(), QStringList());
        user.filter("edwin");
        QVERIFY(user.ready());
        user.recover();
        user.click("refresh");
        QCOMPARE(user.listed(), (QStringList{"edwin", "edwin-gui", "edwin-i18n"}));
        user.filter(".*");
        QVERIFY(user.listed().contains("almanac") && user.listed().contains("postbox"));
        QCOMPARE(user.quit(), QString());
    }

private Q_SLOTS:
    void aServerThatResetsTheConnection()
    {
        WindowSession user;
        user.fail("/repos/updates/*", "refuse");
        recovers(user, "updates", "Connection reset by peer");
    }

    void aServerWhereNobodyListens()
    {
        WindowSession user;
        user.write("etc/yum.repos.d/dead.repo",
                   "[dead]\nname=Dead\nbaseurl=http://127.0.0.1:1/dead\n");
        QString told;
        user.expectError(told);
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY2(told.contains("'dead'") && told.contains("http://127.0.0.1:1/dead") &&
                     told.contains("connect to server"),
                 qPrintable(told));
        QCOMPARE(user.listedAll(), QStringList());
        QVERIFY(QFile::remove(user.path("etc/yum.repos.d/dead.repo")));
        user.click("refresh");
        QVERIFY(user.listed().contains("edwin"));
        QCOMPARE(user.quit(), QString());
    }

    void aServerThatDoesNotHaveTheRepository()
    {
        WindowSession user;
        user.fail("/repos/updates/*", "404");
        recovers(user, "updates", "Status code: 404");
    }

    void aServerThatDoesNotHaveTheContents()
    {
        WindowSession user;
        user.fail("/repos/updates/repodata/*primary*", "404");
        recovers(user, "updates", "Status code: 404");
    }

    void aServerThatIsOutOfOrder()
    {
        WindowSession user;
        user.fail("/repos/base/*", "503");
        recovers(user, "base", "Status code: 503");
    }

    void aServerThatHangs()
    {
        WindowSession user;
        user.configure("etc/yum.conf", "main", "timeout=2\n");
        user.fail("/repos/updates/*", "hang");
        const Gaps gaps;
        recovers(user, "updates", "Timeout was reached");
        qInfo("the longest gap in the window's events: %d ms", static_cast<int>(gaps.longest));
    }

    void aServerThatStopsInTheMiddle()
    {
        WindowSession user;
        user.fail("/repos/updates/repodata/*primary*", "truncate");
        recovers(user, "updates", "Transferred a partial file");
    }

    void aServerWithTheWrongContents()
    {
        WindowSession user;
        user.fail("/repos/updates/repodata/*primary*", "corrupt");
        recovers(user, "updates", "checksum");
    }

    void aServerWithoutAnIndex()
    {
        WindowSession user;
        user.fail("/repos/updates/repodata/repomd.xml", "corrupt");
        recovers(user, "updates", "repomd.xml: ");
    }

    void contentsThatAreNoXmlForAllTheirChecksum()
    {
        WindowSession user;
        const QString folder = user.path("srv/odd");
        WrittenRepository::write(folder, "<html><body>Please log in.<p></body></html>\n");
        user.useRepositories("[odd]\nname=Odd\nbaseurl=file://" + QFile::encodeName(folder) + '\n');
        QString told;
        user.expectError(told);
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY2(told.startsWith("Loading repository 'odd' has failed: "), qPrintable(told));
        QCOMPARE(user.listedAll(), QStringList());
        WrittenRepository::write(folder, WrittenRepository::listing("sound", "All is well"));
        user.click("refresh");
        user.select("state", PackageTable::ViewInstallable);
        QCOMPARE(user.listed(), QStringList{"sound"});
        QCOMPARE(user.quit(), QString());
    }

    void aRepositoryThatMayBeMissingIsLeftOut()
    {
        WindowSession user;
        user.configure("etc/yum.repos.d/demo.repo", "updates", "skip_if_unavailable=1\n");
        user.fail("/repos/updates/*", "404");
        QVERIFY(user.start());
        const QStringList listed = user.listedAll();
        QVERIFY(listed.contains("edwin") && listed.contains("almanac"));
        QVERIFY(!listed.contains("postbox"));
        const QString log = user.log();
        QVERIFY2(log.contains("'updates'") && log.contains("Status code: 404"), qPrintable(log));
        QVERIFY2(log.contains("Ignoring repository: updates"), qPrintable(log));
        user.recover();
        user.click("refresh");
        QVERIFY(user.listed().contains("postbox"));
        QCOMPARE(user.quit(), QString());
    }

    void aListOfMirrorsLeadsToTheOneThatLives()
    {
        // The first mirror of the list is dead by itself.
        WindowSession user;
        user.fail("/mirror/1/mirrored/*", "404");
        QVERIFY(user.start());
        QVERIFY(user.listedAll().contains("almanac"));
        user.fail("/mirror/2/mirrored/*", "404");
        QString told;
        user.expectError(told);
        user.click("refresh");
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY2(told.contains("'mirrored'") && told.contains("all mirrors were already tried"),
                 qPrintable(told));
        QCOMPARE(user.listed(), QStringList());
        QCOMPARE(user.quit(), QString());
    }

    void aRefreshThatFailsDoesNotCostTheNextOne()
    {
        WindowSession user;
        QVERIFY(user.start());
        const QStringList before = user.listedAll();
        user.fail("/repos/base/*", "refuse");
        for (int times = 0; times < 2; ++times) {
            QString told;
            user.expectError(told);
            user.click("refresh");
            QVERIFY(user.dialogs.waitUntilDone());
            QVERIFY2(told.contains("'base'"), qPrintable(told));
            QCOMPARE(user.listed(), QStringList());
            QVERIFY(user.ready());
        }
        user.recover();
        user.click("refresh");
        QCOMPARE(user.listed(), before);
        QCOMPARE(user.quit(), QString());
    }

    void packagesComeAndGoBetweenRefreshes()
    {
        ChangingRepository repository;
        repository.add("base", "wallpapers");
        repository.publish();
        WindowSession user;
        user.useRepositories(ChangingRepository::section());
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewInstallable);
        QCOMPARE(user.listed(), QStringList{"wallpapers"});
        repository.add("base", "browser");
        repository.publish();
        user.click("refresh");
        QCOMPARE(user.listed(), (QStringList{"browser", "wallpapers"}));
        repository.remove("wallpapers");
        repository.publish();
        user.click("refresh");
        QCOMPARE(user.listed(), QStringList{"browser"});
        repository.remove("browser");
        repository.publish();
        user.click("refresh");
        QCOMPARE(user.listed(), QStringList());
        QCOMPARE(user.quit(), QString());
    }

    void anIndexThatIsNewerThanItsContents()
    {
        ChangingRepository repository;
        repository.add("base", "wallpapers");
        repository.publish();
        WindowSession user;
        user.useRepositories(ChangingRepository::section());
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewInstallable);
        const QString primary = ChangingRepository::primary();
        const QString kept = ChangingRepository::path() + "/old";
        const QString fresh = ChangingRepository::path() + "/new";
        QVERIFY(QFile::copy(primary, kept));
        repository.add("base", "browser");
        repository.publish();
        QVERIFY(QFile::rename(primary, fresh) && QFile::rename(kept, primary));
        QString told;
        user.expectError(told);
        user.click("refresh");
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY2(told.contains("'changing'") && told.contains("primary.xml.gz") &&
                     told.contains("Inconsistent server data"),
                 qPrintable(told));
        QCOMPARE(user.listed(), QStringList());
        QVERIFY(QFile::remove(primary) && QFile::rename(fresh, primary));
        user.click("refresh");
        QCOMPARE(user.listed(), (QStringList{"browser", "wallpapers"}));
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestBadRepositories tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_BadRepositories.moc"
