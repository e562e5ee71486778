// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

/// What becomes of the files themselves, and of those that have more than one name.
class TestYumConfIOWriteLinks : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void writesInPlace();
    void aNewFileWithAPasswordIsItsOwnersOnly_data();
    void aNewFileWithAPasswordIsItsOwnersOnly();
    void writesThroughASymbolicLink();
    void writesThroughASymbolicMainFile();
    void aShorterTextLeavesNothingOfTheLonger();
    void directoryNamedTwice_data();
    void directoryNamedTwice();
    void twoSpellingsOfOneFileDontOverwriteEachOther();
    void twoSpellingsOfANewFileDontOverwriteEachOther();
    void keepsTheTargetOfALink();
    void keepsEveryLinkOfAChain();
    void removesALinkThatHoldsNoEntry();
    void removesAHardLinkThatHoldsNoEntry();
    void keepsAFileOfAnUndecodableName();
};

void TestYumConfIOWriteLinks::writesInPlace()
{
    const QString name = repo("x.repo");
    tree->write(name, "[x]\n\n");
    const QByteArray path = QFile::encodeName(tree->path(name));
    QCOMPARE(chmod(path.constData(), 0640), 0);
    if (geteuid() == 0)
        QCOMPARE(chown(path.constData(), 12345, 23456), 0);
    struct stat before {
    };
    QCOMPARE(stat(path.constData(), &before), 0);

    QVERIFY(read());
    at("x").name = QStringLiteral("X");
    QVERIFY(write());
    struct stat after {
    };
    QCOMPARE(stat(path.constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(after.st_uid, before.st_uid);
    QCOMPARE(after.st_gid, before.st_gid);
    QCOMPARE(content(name), QByteArray("[x]\nname=X\n"));
}

void TestYumConfIOWriteLinks::aNewFileWithAPasswordIsItsOwnersOnly_data()
{
    QTest::addColumn<QString>("baseurl");
    QTest::addColumn<QString>("other");
    QTest::addColumn<int>("rights");

    QTest::newRow("none") << "http://h/"
                          << "" << 0644;
    QTest::newRow("query") << "http://h/vantry?n=me&p=secret&path=/r"
                           << "" << 0600;
    QTest::newRow("path") << "http://h/rhel/n=me/p=secret/r"
                          << "" << 0600;
    QTest::newRow("user") << "http://me:secret@h/"
                          << "" << 0600;
    QTest::newRow("option") << "http://h/"
                            << "password=secret\n"
                            << 0600;
    QTest::newRow("option of the proxy") << "http://h/"
                                         << "proxy_password: secret\n"
                                         << 0600;
    QTest::newRow("another option") << "http://h/"
                                    << "cost=5\n"
                                    << 0644;
}

void TestYumConfIOWriteLinks::aNewFileWithAPasswordIsItsOwnersOnly()
{
    QFETCH(QString, baseurl);
    QFETCH(QString, other);
    QFETCH(int, rights);
    const mode_t mask = umask(022);
    QVERIFY(read());
    Repo::Entry entry = makeEntry("new");
    entry.baseurl = baseurl;
    entry.other = other;
    io->entries << entry;
    const bool written = write();
    umask(mask);
    QVERIFY(written);
    struct stat info {
    };
    QCOMPARE(stat(QFile::encodeName(tree->path(repo("new.repo"))).constData(), &info), 0);
    QCOMPARE(static_cast<int>(info.st_mode & 0777), rights);
}

void TestYumConfIOWriteLinks::writesThroughASymbolicLink()
{
    const QString name = repo("x.repo");
    tree->write(QStringLiteral("/srv/elsewhere"), "[x]\n\n");
    tree->link(QStringLiteral("../../srv/elsewhere"), name);
    QVERIFY(read());
    at("x").name = QStringLiteral("X");
    QVERIFY(write());
    QVERIFY(QFileInfo(tree->path(name)).isSymLink());
    QCOMPARE(content(QStringLiteral("/srv/elsewhere")), QByteArray("[x]\nname=X\n"));
}

void TestYumConfIOWriteLinks::writesThroughASymbolicMainFile()
{
    QVERIFY(QFile::remove(tree->path(mainFile)));
    tree->write(QStringLiteral("/etc/dnf/dnf.conf"), "[main]\nk=v\n\n[x]\n[y]\n");
    tree->link(QStringLiteral("dnf/dnf.conf"), mainFile);
    QVERIFY(read());
    // Entries by both names, the target's first; then by that of the target alone.
    const QString target = tree->path(QStringLiteral("/etc/dnf/dnf.conf"));
    io->entries.move(1, 0);
    for (const char* id : {"y", "x"}) {
        at(id).fileName = target;
        QVERIFY(write());
        QVERIFY(QFileInfo(tree->path(mainFile)).isSymLink());
        QCOMPARE(content(QStringLiteral("/etc/dnf/dnf.conf")),
                 QByteArray("[main]\nk=v\n\n[x]\n\n[y]\n"));
    }
}

void TestYumConfIOWriteLinks::aShorterTextLeavesNothingOfTheLonger()
{
    tree->write(mainFile, "[main]\n[m]\nk=" + QByteArray(20000, 'v') + '\n');
    tree->write(repo("x.repo"), "[x]\nname=" + QByteArray(20000, 'n') + '\n');
    QVERIFY(read());
    at("m").other.clear();
    at("x").name.clear();
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\n[m]\n"));
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOWriteLinks::directoryNamedTwice_data()
{
    QTest::addColumn<QByteArray>("directories");
    QTest::newRow("same text") << QByteArray("/etc/yum.repos.d /etc/yum.repos.d");
    QTest::newRow("slash behind") << QByteArray("/etc/yum.repos.d /etc/yum.repos.d/");
    QTest::newRow("by a detour") << QByteArray("/etc/../etc/yum.repos.d /etc/yum.repos.d");
    QTest::newRow("by a link") << QByteArray("/etc/yum.repos.d /etc/link");
    QTest::newRow("link first") << QByteArray("/etc/link /etc/yum.repos.d");
}

void TestYumConfIOWriteLinks::directoryNamedTwice()
{
    QFETCH(QByteArray, directories);
    tree->write(mainFile, "[main]\nreposdir=" + directories + '\n');
    tree->link(QStringLiteral("yum.repos.d"), QStringLiteral("/etc/link"));
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 2);
    driver->expect(QStringLiteral("Repository Editor")).press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\n"));

    io->entries.clear();
    QVERIFY(write());
    QVERIFY(repoFiles().isEmpty());
}

void TestYumConfIOWriteLinks::twoSpellingsOfOneFileDontOverwriteEachOther()
{
    tree->write(repo("x.repo"), "[a]\n[b]\n");
    QVERIFY(read());
    const QString other = tree->path(QStringLiteral("/etc//yum.repos.d/./x.repo"));
    at("a").fileName = other;
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[a]\n\n[b]\n"));
    QCOMPARE(at("a").fileName, other);
}

void TestYumConfIOWriteLinks::twoSpellingsOfANewFileDontOverwriteEachOther()
{
    QVERIFY(read());
    io->entries << makeEntry("a") << makeEntry("b") << makeEntry("c");
    io->entries[1].fileName = QStringLiteral("./a.repo");
    tree->link(QStringLiteral("a.repo"), repo("c.repo"));
    QVERIFY(write());
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\n\n[b]\n\n[c]\n"));
    QVERIFY(QFileInfo(tree->path(repo("c.repo"))).isSymLink());
}

void TestYumConfIOWriteLinks::keepsTheTargetOfALink()
{
    tree->write(repo("target.repo"), "[x]\n");
    tree->link(QStringLiteral("target.repo"), repo("link.repo"));
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 2);
    for (int i = 1; i >= 0; --i) {
        if (io->entries.at(i).fileName.endsWith(QStringLiteral("target.repo")))
            io->entries.removeAt(i);
    }
    QVERIFY(write());
    QCOMPARE(content(repo("link.repo")), QByteArray("[x]\n"));
    QCOMPARE(repoFiles(),
             QStringList({QStringLiteral("link.repo"), QStringLiteral("target.repo")}));
}

void TestYumConfIOWriteLinks::keepsEveryLinkOfAChain()
{
    tree->write(QStringLiteral("/srv/target"), "[x]\n");
    tree->link(QStringLiteral("../../srv/target"), repo("2.repo"));
    tree->link(tree->path(repo("2.repo")), repo("1.repo"));
    QVERIFY(read());
    io->entries = {makeEntry("x")};
    io->entries[0].fileName = QStringLiteral("1.repo");
    QVERIFY(write());
    QCOMPARE(content(repo("1.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOWriteLinks::removesALinkThatHoldsNoEntry()
{
    tree->write(repo("target.repo"), "[x]\n");
    tree->link(QStringLiteral("target.repo"), repo("link.repo"));
    QVERIFY(read());
    io->entries = {makeEntry("x")};
    io->entries[0].fileName = QStringLiteral("target.repo");
    QVERIFY(write());
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("target.repo")});
    QCOMPARE(content(repo("target.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOWriteLinks::removesAHardLinkThatHoldsNoEntry()
{
    tree->write(repo("a.repo"), "[x]\n");
    QCOMPARE(::link(QFile::encodeName(tree->path(repo("a.repo"))).constData(),
                    QFile::encodeName(tree->path(repo("b.repo"))).constData()),
             0);
    QVERIFY(read());
    io->entries = {makeEntry("x")};
    io->entries[0].fileName = QStringLiteral("a.repo");
    QVERIFY(write());
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("a.repo")});
    QCOMPARE(content(repo("a.repo")), QByteArray("[x]\n"));
}

void TestYumConfIOWriteLinks::keepsAFileOfAnUndecodableName()
{
    const QByteArray directory = QFile::encodeName(tree->path(repoDir));
    const QByteArray name = "caf\xe9.repo";
    FILE* file = fopen((directory + '/' + name).constData(), "w");
    QVERIFY(file);
    fputs("[x]\n\n\n", file);
    QCOMPARE(fclose(file), 0);
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
    QVERIFY(write());
    QVERIFY(access((directory + '/' + name).constData(), F_OK) == 0);
    // Nothing under another name either.
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
}

QTEST_MAIN(TestYumConfIOWriteLinks)
#include "tst_YumConfIOWriteLinks.moc"
