// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace
{

/// A disk of memory that lies over a folder while this exists, as far as this machine allows it.
class Disk
{
public:
    Disk(const QByteArray& folder, const char* options)
        : folder(folder)
        , mounted(mount("vok-test", folder, "tmpfs", 0, options) == 0)
    {
    }
    ~Disk()
    {
        if (mounted)
            umount2(folder, MNT_DETACH);
    }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    const QByteArray folder;
    const bool mounted;
};

} // namespace

/// Files that aren't plain ones, disks that are full, and what others do to files meanwhile.
class TestYumConfIOOddFiles : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void aPipeHoldsNoRepositoryAndKeepsNobodyWaiting();
    void tellsOfAPipeInPlaceOfTheMainFile();
    void aPipeWithAWriterKeepsNobodyWaiting();
    void tellsOfADirectoryInPlaceOfTheMainFile();
    void readsAnEmptyMainFile();
    void aSocketIsPassedOver();
    void makesTheTargetOfADanglingMainFile();
    void writesThroughAChainOfMainFiles();
    void keepsExtendedAttributes();
    void keepsOtherHardLinksToTheFile();
    void fullDiskLosesNothing();
    void aFileThatIsGoneIsMadeAgain();
    void aFileThatWasReplacedByADirectoryStays();
    void aRemovedDirectoryIsTold();
    void failureLeavesNoNewFile();
    void failureLeavesADanglingLink();

private:
    QByteArray path(const QString& name) const { return QFile::encodeName(tree->path(name)); }
    /// The next read or write reports this of the file.
    void expectReport(const char* text, const QString& name, int number) const
    {
        driver->expect(QStringLiteral("VOK Repository Editor Error"))
            .text(QStringLiteral("%1 %2; errno = %3 (%4).")
                      .arg(text, tree->path(name), QString::number(number), strerror(number)))
            .press(QStringLiteral("OK"));
    }
    void replaceMainFileByPipe() const
    {
        QVERIFY(QFile::remove(tree->path(mainFile)));
        QCOMPARE(mkfifo(path(mainFile), 0644), 0);
    }
};

void TestYumConfIOOddFiles::aPipeHoldsNoRepositoryAndKeepsNobodyWaiting()
{
    tree->write(repo("x.repo"), "[x]\n\n");
    QCOMPARE(mkfifo(path(repo("pipe.repo")), 0644), 0);
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
    at("x").fileName = tree->path(repo("pipe.repo"));
    // Nobody reads it.
    expectReport("Unable to write repository configuration file", repo("pipe.repo"), ENXIO);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n\n"));
}

void TestYumConfIOOddFiles::tellsOfAPipeInPlaceOfTheMainFile()
{
    replaceMainFileByPipe();
    tree->write(repo("x.repo"), "[x]\n\n");
    QVERIFY(read());
    QCOMPARE(io->confText, QString());
    QCOMPARE(io->entries.size(), 1);
    expectReport("Unable to write repository configuration file", mainFile, ENXIO);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOOddFiles::aPipeWithAWriterKeepsNobodyWaiting()
{
    replaceMainFileByPipe();
    const int fd = open(path(mainFile), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(fd >= 0);
    expectReport("Error reading repository configuration file", mainFile, EAGAIN);
    QVERIFY(!read());
    driver->verify();
    close(fd);
}

void TestYumConfIOOddFiles::tellsOfADirectoryInPlaceOfTheMainFile()
{
    tree->write(repo("x.repo"), "[x]\n\n");
    tree->makeDirectory(QStringLiteral("/etc/yum/yum.conf"));
    expectReport("Error reading repository configuration file", QStringLiteral("/etc/yum/yum.conf"),
                 EISDIR);
    QVERIFY(!read());
    driver->verify();
    expectReport("Unable to write repository configuration file",
                 QStringLiteral("/etc/yum/yum.conf"), ECANCELED);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n\n"));
    QCOMPARE(content(mainFile), QByteArray("[main]\n"));
}

void TestYumConfIOOddFiles::readsAnEmptyMainFile()
{
    tree->write(mainFile, "");
    tree->write(repo("x.repo"), "[x]\n\n");
    QVERIFY(read());
    QCOMPARE(io->confText, QString());
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray());
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOOddFiles::aSocketIsPassedOver()
{
    // Its mode shares the bit of a directory's.
    const QByteArray name = path(repo("socket.repo"));
    QCOMPARE(mknod(name, S_IFSOCK | 0644, 0), 0);
    QVERIFY(read());
    QVERIFY(io->entries.isEmpty());
    QVERIFY(write());
    QCOMPARE(access(name, F_OK), 0);
}

void TestYumConfIOOddFiles::makesTheTargetOfADanglingMainFile()
{
    QVERIFY(read());
    QVERIFY(QFile::remove(tree->path(mainFile)));
    tree->makeDirectory(QStringLiteral("/srv"));
    tree->link(QStringLiteral("../srv/main"), mainFile);
    QVERIFY(write());
    QVERIFY(QFileInfo(tree->path(mainFile)).isSymLink());
    QCOMPARE(content(QStringLiteral("/srv/main")), QByteArray("[main]\n"));

    QVERIFY(QFile::remove(tree->path(QStringLiteral("/srv/main"))));
    expectReport("Unable to read yum configuration file", mainFile, ENOENT);
    QVERIFY(!read());
    driver->verify();
}

void TestYumConfIOOddFiles::writesThroughAChainOfMainFiles()
{
    QVERIFY(QFile::remove(tree->path(mainFile)));
    tree->write(QStringLiteral("/srv/3"), "[main]\n\n[m]\n\n");
    tree->link(QStringLiteral("3"), QStringLiteral("/srv/2"));
    tree->link(tree->path(QStringLiteral("/srv/2")), QStringLiteral("/srv/1"));
    tree->link(QStringLiteral("../srv/1"), mainFile);
    QVERIFY(read());
    at("m").name = QStringLiteral("M");
    QVERIFY(write());
    for (const char* link : {"/etc/yum.conf", "/srv/1", "/srv/2"})
        QVERIFY2(QFileInfo(tree->path(link)).isSymLink(), link);
    QVERIFY(!QFileInfo(tree->path(QStringLiteral("/srv/3"))).isSymLink());
    QCOMPARE(content(QStringLiteral("/srv/3")), QByteArray("[main]\n\n[m]\nname=M\n"));
}

void TestYumConfIOOddFiles::keepsExtendedAttributes()
{
    tree->write(repo("x.repo"), "[x]\n\n");
    for (const QString& name : {mainFile, repo("x.repo")}) {
        if (setxattr(path(name), "user.vok", "kept", 4, 0) != 0)
            QSKIP("this file system has no extended attributes");
    }
    QVERIFY(read());
    at("x").name = QStringLiteral("X");
    QVERIFY(write());
    for (const QString& name : {mainFile, repo("x.repo")}) {
        char value[16] = "";
        QCOMPARE(getxattr(path(name), "user.vok", value, sizeof value), ssize_t(4));
        QCOMPARE(QByteArray(value), QByteArray("kept"));
    }
}

void TestYumConfIOOddFiles::keepsOtherHardLinksToTheFile()
{
    tree->write(repo("x.repo"), "[x]\n\n");
    QCOMPARE(::link(path(repo("x.repo")), path(QStringLiteral("/etc/other"))), 0);
    QVERIFY(read());
    at("x").name = QStringLiteral("X");
    QVERIFY(write());
    QCOMPARE(content(QStringLiteral("/etc/other")), QByteArray("[x]\nname=X\n"));
}

void TestYumConfIOOddFiles::fullDiskLosesNothing()
{
    const Disk disk(path(repoDir), "mode=755,size=256k");
    if (!disk.mounted)
        QSKIP("no disk can be mounted here");

    const QByteArray old = "[x]\n\nname=" + QByteArray(10000, 'x') + '\n';
    tree->write(repo("x.repo"), old);
    QVERIFY(read());
    QFile filler(tree->path(repo("filler")));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray page(4096, 'f');
    while (filler.write(page) == page.size()) {
    }

    at("x").other = QString(50000, QLatin1Char('o'));
    expectReport("Unable to write repository configuration file", repo("x.repo"), ENOSPC);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), old);
    QCOMPARE(at("x").other.size(), 50000);

    at("x").other.clear();
    io->entries << makeEntry("extras", "Extras");
    expectReport("Unable to write repository configuration file", repo("extras.repo"), ENOSPC);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), old);
    QCOMPARE(repoFiles(), (QStringList{QStringLiteral("filler"), QStringLiteral("x.repo")}));

    // What it has room for is written.
    io->entries.removeLast();
    at("x").name.chop(1);
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), "[x]\nname=" + QByteArray(9999, 'x') + '\n');
}

void TestYumConfIOOddFiles::aFileThatIsGoneIsMadeAgain()
{
    tree->write(mainFile, "[main]\nk=v\n");
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    QVERIFY(QFile::remove(tree->path(repo("x.repo"))));
    QVERIFY(QFile::remove(tree->path(mainFile)));
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\nk=v\n"));
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOOddFiles::aFileThatWasReplacedByADirectoryStays()
{
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    QVERIFY(QFile::remove(tree->path(repo("x.repo"))));
    tree->write(repo("x.repo/inside"), "text");
    io->entries.clear();
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo/inside")), QByteArray("text"));
}

void TestYumConfIOOddFiles::aRemovedDirectoryIsTold()
{
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    QVERIFY(QDir(tree->path(repoDir)).removeRecursively());
    expectReport("Unable to write repository configuration file", repo("x.repo"), ENOENT);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIOOddFiles::failureLeavesNoNewFile()
{
    // On a disk that is full from the start.
    const Disk disk(path(repoDir), "mode=755,size=4k");
    if (!disk.mounted)
        QSKIP("no disk can be mounted here");
    QVERIFY(read());
    io->entries << makeEntry("extras");
    io->entries[0].other = QString(50000, QLatin1Char('o'));
    expectReport("Unable to write repository configuration file", repo("extras.repo"), ENOSPC);
    QVERIFY(!write());
    driver->verify();
    QVERIFY(repoFiles().isEmpty());
}

void TestYumConfIOOddFiles::failureLeavesADanglingLink()
{
    tree->makeDirectory(QStringLiteral("/srv"));
    const Disk disk(path(QStringLiteral("/srv")), "mode=755,size=4k");
    if (!disk.mounted)
        QSKIP("no disk can be mounted here");
    QVERIFY(read());
    tree->link(QStringLiteral("../../srv/extras"), repo("extras.repo"));
    io->entries << makeEntry("extras");
    io->entries[0].other = QString(50000, QLatin1Char('o'));
    expectReport("Unable to write repository configuration file", repo("extras.repo"), ENOSPC);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("extras.repo")});
    QVERIFY(QDir(tree->path(QStringLiteral("/srv"))).isEmpty());
}

QTEST_MAIN(TestYumConfIOOddFiles)
#include "tst_YumConfIOOddFiles.moc"
