// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

namespace
{

/// Root may write everything; as long as this exists the process opens files as nobody.
class AsNobody
{
public:
    AsNobody() { setfsuid(geteuid() == 0 ? 65534 : geteuid()); }
    ~AsNobody() { setfsuid(geteuid()); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
};

/// No file may grow beyond this size, as on a full disk.
class SizeLimit
{
public:
    explicit SizeLimit(rlim_t bytes)
        : oldHandler(signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &old);
        rlimit limit = old;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &old);
        signal(SIGXFSZ, oldHandler);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    rlimit old{};
    void (*oldHandler)(int);
};

} // namespace

/// What the writer says of files that it can't write or remove, and what is left then.
class TestYumConfIOWriteFailures : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfAFileWhoseDirectoryIsMissing();
    void tellsOfADirectoryInPlaceOfTheFile();
    void tellsOfAFileThatItMayNotWrite();
    void tellsOfADirectoryThatTakesNoNewFile();
    void tellsOfAMainFileThatItMayNotWrite();
    void removesNothingWhereTheMainFileCantBeWritten();
    void earlierFilesStayWritten();
    void fullDiskLeavesTheOldText();
    void fullDiskLeavesTheOldMainFile();
    void tellsOfAWriteErrorBehindTheOpening();
    void entriesStayAsTheyWereOnFailure();
    void tellsOfAFileThatCantBeLookedAt();
    void tellsOfAFileThatItMayNotRemove();
    void stopsRemovingAtTheFirstFailure();
    void leavesFilesThatWereNotRead();
    void leavesAFileThatWasNotReadWhole();
    void leavesAMainFileThatWasNotRead();
    void writesAgainAfterTheNextRead();

private:
    QString realPath(const QString& path) const { return tree->path(path); }
    void setMode(const QString& path, mode_t mode) const;
    /// The next read or write reports this.
    void expectReport(const QString& text, int number);
};

void TestYumConfIOWriteFailures::setMode(const QString& path, mode_t mode) const
{
    QCOMPARE(chmod(QFile::encodeName(tree->path(path)).constData(), mode), 0);
}

void TestYumConfIOWriteFailures::expectReport(const QString& text, int number)
{
    driver->expect(QStringLiteral("VOK Repository Editor Error"))
        .text(QStringLiteral("%1; errno = %2 (%3).")
                  .arg(text, QString::number(number), QString::fromLocal8Bit(strerror(number))))
        .press(QStringLiteral("OK"));
}

void TestYumConfIOWriteFailures::tellsOfAFileWhoseDirectoryIsMissing()
{
    tree->write(repo("unused.repo"), "");
    QVERIFY(read());
    io->entries << makeEntry("x");
    const QString path = realPath(QStringLiteral("/missing/x.repo"));
    io->entries[0].fileName = path;
    expectReport(QStringLiteral("Unable to write repository configuration file ") + path, ENOENT);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("unused.repo")});
}

void TestYumConfIOWriteFailures::tellsOfADirectoryInPlaceOfTheFile()
{
    tree->makeDirectory(repo("x.repo"));
    QVERIFY(read());
    io->entries << makeEntry("x");
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("x.repo")),
                 EISDIR);
    QVERIFY(!write());
    driver->verify();
}

void TestYumConfIOWriteFailures::tellsOfAFileThatItMayNotWrite()
{
    tree->write(repo("x.repo"), "[x]\n\n\n");
    setMode(QString(), 0755);
    setMode(repo("x.repo"), 0444);
    QVERIFY(read());
    at("x").name = QStringLiteral("X");
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("x.repo")),
                 EACCES);
    {
        const AsNobody nobody;
        QVERIFY(!write());
    }
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n\n\n"));
}

void TestYumConfIOWriteFailures::tellsOfADirectoryThatTakesNoNewFile()
{
    tree->write(repo("x.repo"), "[x]\n\n\n");
    setMode(QString(), 0755);
    setMode(repoDir, 0555);
    QVERIFY(read());
    io->entries << makeEntry("extras");
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("extras.repo")),
                 EACCES);
    {
        const AsNobody nobody;
        QVERIFY(!write());
    }
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n\n\n"));
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("x.repo")});
    setMode(repoDir, 0755);
}

void TestYumConfIOWriteFailures::tellsOfAMainFileThatItMayNotWrite()
{
    tree->write(mainFile, "[main]\n[m]\n\n");
    setMode(QString(), 0755);
    setMode(mainFile, 0444);
    QVERIFY(read());
    // Once with an entry in it, once without.
    for (int i = 0; i < 2; ++i) {
        expectReport(QStringLiteral("Unable to write repository configuration file ") +
                         realPath(mainFile),
                     EACCES);
        {
            const AsNobody nobody;
            QVERIFY(!write());
        }
        driver->verify();
        QCOMPARE(content(mainFile), QByteArray("[main]\n[m]\n\n"));
        io->entries.clear();
    }
}

void TestYumConfIOWriteFailures::removesNothingWhereTheMainFileCantBeWritten()
{
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    io->entries.clear();
    QVERIFY(QFile::remove(realPath(mainFile)));
    tree->makeDirectory(mainFile);
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(mainFile),
                 EISDIR);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("x.repo")});
}

void TestYumConfIOWriteFailures::earlierFilesStayWritten()
{
    tree->write(repo("a.repo"), "[a]\n\n");
    tree->write(repo("b.repo"), "[b]\n\n");
    tree->write(repo("c.repo"), "[c]\n\n");
    tree->write(repo("unused.repo"), "");
    QVERIFY(read());
    QVERIFY(QFile::remove(realPath(repo("b.repo"))));
    tree->makeDirectory(repo("b.repo"));
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("b.repo")),
                 EISDIR);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\n"));
    QCOMPARE(content(repo("c.repo")), QByteArray("[c]\n\n"));
    QCOMPARE(content(repo("unused.repo")), QByteArray());
}

void TestYumConfIOWriteFailures::fullDiskLeavesTheOldText()
{
    const QByteArray old = "[x]\n\nname=old\n";
    tree->write(repo("x.repo"), old);
    QVERIFY(read());
    at("x").other = QString(10000, QLatin1Char('o'));
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("x.repo")),
                 EFBIG);
    {
        const SizeLimit limit(5000);
        QVERIFY(!write());
    }
    driver->verify();
    QCOMPARE(content(repo("x.repo")), old);
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")).size(), 4 + 9 + 10000);
}

void TestYumConfIOWriteFailures::fullDiskLeavesTheOldMainFile()
{
    QVERIFY(read());
    io->confText += QString(10000, QLatin1Char('#'));
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(mainFile),
                 EFBIG);
    {
        const SizeLimit limit(5000);
        QVERIFY(!write());
    }
    driver->verify();
    QCOMPARE(content(mainFile), QByteArray("[main]\n"));
}

void TestYumConfIOWriteFailures::tellsOfAWriteErrorBehindTheOpening()
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        QSKIP("there is no device that is always full");
    QVERIFY(read());
    tree->link(QStringLiteral("/dev/full"), repo("x.repo"));
    io->entries << makeEntry("x");
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("x.repo")),
                 ENOSPC);
    QVERIFY(!write());
    driver->verify();
}

void TestYumConfIOWriteFailures::entriesStayAsTheyWereOnFailure()
{
    QVERIFY(read());
    io->entries << makeEntry("z", "1") << makeEntry("") << makeEntry("z", "2") << makeEntry("a");
    tree->makeDirectory(repo("z.repo"));
    driver->expect(QStringLiteral("Repository Editor")).press(QStringLiteral("Yes"));
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("z.repo")),
                 EISDIR);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(io->entries.size(), 4);
    for (const Repo::Entry& entry : qAsConst(io->entries))
        QCOMPARE(entry.fileName, QString());
    QCOMPARE(io->entries.at(2).name, QStringLiteral("2"));
}

void TestYumConfIOWriteFailures::tellsOfAFileThatCantBeLookedAt()
{
    tree->write(repo("x.repo"), "[x]\n\n");
    QVERIFY(read());
    tree->link(QStringLiteral("/nowhere/at/all"), repo("dangling.repo"));
    expectReport(QStringLiteral("Unable to stat repository configuration file ") +
                     realPath(repo("dangling.repo")),
                 ENOENT);
    QVERIFY(write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOWriteFailures::tellsOfAFileThatItMayNotRemove()
{
    tree->write(repo("unused.repo"), "# c\n");
    setMode(QString(), 0755);
    setMode(repoDir, 0555);
    setMode(mainFile, 0666);
    QVERIFY(read());
    expectReport(QStringLiteral("Unable to unlink repository configuration file ") +
                     realPath(repo("unused.repo")),
                 EACCES);
    {
        const AsNobody nobody;
        QVERIFY(write());
    }
    driver->verify();
    QCOMPARE(content(repo("unused.repo")), QByteArray("# c\n"));
    setMode(repoDir, 0755);
}

void TestYumConfIOWriteFailures::stopsRemovingAtTheFirstFailure()
{
    tree->write(mainFile, "[main]\nreposdir=/a /b\n");
    tree->makeDirectory(QStringLiteral("/a"));
    tree->write(QStringLiteral("/b/unused.repo"), "");
    QVERIFY(read());
    tree->link(QStringLiteral("/nowhere/at/all"), QStringLiteral("/a/dangling.repo"));
    expectReport(QStringLiteral("Unable to stat repository configuration file ") +
                     realPath(QStringLiteral("/a/dangling.repo")),
                 ENOENT);
    QVERIFY(write());
    driver->verify();
    QCOMPARE(content(QStringLiteral("/b/unused.repo")), QByteArray());
}

void TestYumConfIOWriteFailures::leavesFilesThatWereNotRead()
{
    tree->write(mainFile, "[main]\nreposdir=/a /b /c\n\n[m]\n\n\n");
    tree->write(QStringLiteral("/a/x.repo"), "[x]\n\n");
    tree->write(QStringLiteral("/b/bad.repo"), "[bad\n");
    tree->write(QStringLiteral("/c/y.repo"), "[y]\n\n");
    expectReport(QStringLiteral("Malformed section name in line: [bad"), 0);
    QVERIFY(!read());
    driver->verify();
    at("x").name = QStringLiteral("X");
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\nreposdir=/a /b /c\n\n[m]\n"));
    QCOMPARE(content(QStringLiteral("/a/x.repo")), QByteArray("[x]\nname=X\n"));
    QCOMPARE(content(QStringLiteral("/b/bad.repo")), QByteArray("[bad\n"));
    QCOMPARE(content(QStringLiteral("/c/y.repo")), QByteArray("[y]\n\n"));
}

void TestYumConfIOWriteFailures::leavesAFileThatWasNotReadWhole()
{
    const QByteArray old = "[x]\n[y]\n[bad\n[z]\n";
    tree->write(repo("x.repo"), old);
    expectReport(QStringLiteral("Malformed section name in line: [bad"), 0);
    QVERIFY(!read());
    driver->verify();
    QCOMPARE(io->entries.size(), 1);
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(repo("x.repo")),
                 ECANCELED);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), old);
}

void TestYumConfIOWriteFailures::leavesAMainFileThatWasNotRead()
{
    const QByteArray old = "[main]\nk=v\n[bad\n";
    tree->write(mainFile, old);
    tree->write(repo("x.repo"), "[x]\n");
    expectReport(QStringLiteral("Malformed section name in line: [bad"), 0);
    QVERIFY(!read());
    driver->verify();
    expectReport(QStringLiteral("Unable to write repository configuration file ") +
                     realPath(mainFile),
                 ECANCELED);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(mainFile), old);
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOWriteFailures::writesAgainAfterTheNextRead()
{
    tree->write(repo("x.repo"), "[bad\n");
    expectReport(QStringLiteral("Malformed section name in line: [bad"), 0);
    QVERIFY(!read());
    driver->verify();
    tree->write(repo("x.repo"), "[x]\n\n");
    tree->write(repo("unused.repo"), "");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("x.repo")});
}

QTEST_MAIN(TestYumConfIOWriteFailures)
#include "tst_YumConfIOWriteFailures.moc"
