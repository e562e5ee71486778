// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

/// What the writer makes of the entries and of the files that were there.
class TestYumConfIOWrite : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheKnownOptionsInOrder();
    void leavesOutWhatIsNotStated();
    void enabledThatIsNotStatedStaysSo();
    void separatesSectionsByOneEmptyLine();
    void ordersAFileByPosition();
    void keepsTheOrderOfEqualPositions();
    void indentsFurtherUrls_data();
    void indentsFurtherUrls();
    void normalisesAnUnchangedFile();
    void keepsBytesThatAreNoText();
    void charactersBeyondLatin1DontSurvive();
    void addsNoNewlineToOther();
    void newEntryGetsAFileOfItsOwn();
    void newEntryGoesToTheFirstListedDirectory();
    void relativeFileIsPlacedInTheFirstDirectory();
    void typedPathLiesBelowTheSystemRoot();
    void relativeDirectoryIsNotPutInFrontTwice();
    void directoryBesideTheSystemRootIsNotPutBelowIt();
    void movesAnEntryToAnotherFile();
    void removesTheFileOfTheLastRepository();
    void leavesTheHeadAloneInTheMainFile();
    void writesRepositoriesBehindTheHeadInOneGo();
    void rewritesTheMainFileWithoutAHead();
    void makesAMissingMainFile();
    void emptyListLeavesTheMainFileOnly();
    void removesFilesThatNeverHeldARepository();
    void leavesOtherFilesAndDirectories();
    void emitsNothingAndRenumbersNothing();
};

void TestYumConfIOWrite::writesTheKnownOptionsInOrder()
{
    QVERIFY(read());
    Repo::Entry entry = makeEntry("base", "Base");
    entry.baseurl = QStringLiteral("file:///a\nfile:///b");
    entry.mirrorlist = QStringLiteral("http://h/list");
    entry.enabled = 2;
    entry.gpgcheck = 0;
    entry.other = QStringLiteral("exclude=kernel*\n# last\n");
    io->entries << entry;
    QVERIFY(write());
    QCOMPARE(
        content(repo("base.repo")),
        QByteArray("[base]\nname=Base\nbaseurl=file:///a\n        file:///b\n"
                   "mirrorlist=http://h/list\nenabled=1\ngpgcheck=0\nexclude=kernel*\n# last\n"));
}

void TestYumConfIOWrite::leavesOutWhatIsNotStated()
{
    QVERIFY(read());
    io->entries << makeEntry("a") << makeEntry("b") << makeEntry("c");
    io->entries[2].enabled = 3;
    io->entries[2].gpgcheck = -1;
    io->entries[1].enabled = 0;
    io->entries[1].gpgcheck = 2;
    QVERIFY(write());
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\n"));
    QCOMPARE(content(repo("b.repo")), QByteArray("[b]\nenabled=0\ngpgcheck=1\n"));
    // Whatever else the number may be, it isn't on.
    QCOMPARE(content(repo("c.repo")), QByteArray("[c]\nenabled=0\ngpgcheck=0\n"));
}

void TestYumConfIOWrite::enabledThatIsNotStatedStaysSo()
{
    tree->write(repo("x.repo"), "[x]\nname=X\n");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\nname=X\n"));
    QVERIFY(read());
    QCOMPARE(at("x").enabled, 1);
    QCOMPARE(at("x").gpgcheck, 1);
}

void TestYumConfIOWrite::separatesSectionsByOneEmptyLine()
{
    tree->write(repo("x.repo"), "[a]\n\n\n\n[b]\n[c]\nk=v\n\n");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[a]\n\n[b]\n\n[c]\nk=v\n"));
}

void TestYumConfIOWrite::ordersAFileByPosition()
{
    tree->write(repo("x.repo"), "[a]\n[b]\n[c]\n");
    QVERIFY(read());
    at("a").filePosition = 2.5;
    at("c").filePosition = 0.0;
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[c]\n\n[b]\n\n[a]\n"));
    // The list has its own order.
    QCOMPARE(io->entries.at(0).id, QStringLiteral("a"));
    QCOMPARE(io->entries.at(2).id, QStringLiteral("c"));
}

void TestYumConfIOWrite::keepsTheOrderOfEqualPositions()
{
    QVERIFY(read());
    QByteArray expected;
    for (int i = 0; i < 50; ++i) {
        const QByteArray id = "r" + QByteArray::number(i);
        io->entries << makeEntry(id.constData());
        io->entries.last().fileName = QStringLiteral("x.repo");
        expected += (i ? "\n[" : "[") + id + "]\n";
    }
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), expected);
}

void TestYumConfIOWrite::indentsFurtherUrls_data()
{
    QTest::addColumn<QString>("urls");
    QTest::addColumn<QByteArray>("lines");
    QTest::newRow("one") << QStringLiteral("a") << QByteArray("baseurl=a\n");
    QTest::newRow("three") << QStringLiteral("a\nb\nc")
                           << QByteArray("baseurl=a\n        b\n        c\n");
    QTest::newRow("newline at the end")
        << QStringLiteral("a\n") << QByteArray("baseurl=a\n        \n");
    QTest::newRow("newline at the front")
        << QStringLiteral("\na") << QByteArray("baseurl=\n        a\n");
    QTest::newRow("newline alone") << QStringLiteral("\n") << QByteArray("baseurl=\n        \n");
}

void TestYumConfIOWrite::indentsFurtherUrls()
{
    QFETCH(QString, urls);
    QFETCH(QByteArray, lines);
    QVERIFY(read());
    io->entries << makeEntry("x") << makeEntry("y");
    io->entries[0].baseurl = urls;
    io->entries[1].fileName = QStringLiteral("x.repo");
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), "[x]\n" + lines + "\n[y]\n");
    QVERIFY(read());
    QCOMPARE(at("x").baseurl, urls);
    QCOMPARE(at("x").other, QString());
}

void TestYumConfIOWrite::normalisesAnUnchangedFile()
{
    tree->write(
        repo("x.repo"),
        "# head of the file\n\nstray=1\n[x]\n\n# of x\nexclude = a,\n   b\ngpgcheck : 0\n\n"
        "enabled = yes\nbaseurl = http://h/a http://h/b\n;of y?\nName=other case\nname=X\n\n"
        "[y]\nmetalink=http://h/m\nname=Y");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(
        content(repo("x.repo")),
        QByteArray("[x]\nname=X\nbaseurl=http://h/a\n        http://h/b\nenabled=1\ngpgcheck=0\n"
                   "# of x\nexclude = a,\n   b\n;of y?\nName=other case\n"
                   "\n[y]\nname=Y\nmetalink=http://h/m\n"));
}

void TestYumConfIOWrite::keepsBytesThatAreNoText()
{
    QByteArray all;
    for (int code = 0; code < 256; ++code) {
        if (code != '\n')
            all += static_cast<char>(code);
    }
    tree->write(mainFile, "[main]\nk=" + all + "\n");
    tree->write(repo("x.repo"), "[\xe9" + all + "]\nname=\xc3\xa9" + all + "\nk=" + all + "\n");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(mainFile), "[main]\nk=" + all + "\n");
    QCOMPARE(content(repo("x.repo")),
             "[\xe9" + all + "]\nname=\xc3\xa9" + all + "\nk=" + all + "\n");
}

void TestYumConfIOWrite::charactersBeyondLatin1DontSurvive()
{
    QVERIFY(read());
    io->entries << makeEntry("x");
    io->entries[0].name = QString::fromUtf8("\xc3\xa9\xe2\x82\xac");
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\nname=\xe9?\n"));
}

void TestYumConfIOWrite::addsNoNewlineToOther()
{
    QVERIFY(read());
    io->entries << makeEntry("x") << makeEntry("y");
    for (Repo::Entry& entry : io->entries) {
        entry.fileName = QStringLiteral("x.repo");
        entry.other = QStringLiteral("k=v");
    }
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), QByteArray("[x]\nk=v\n[y]\nk=v"));
    QVERIFY(read());
    QCOMPARE(at("x").other, QStringLiteral("k=v\n"));
    QCOMPARE(at("y").other, QStringLiteral("k=v\n"));
}

void TestYumConfIOWrite::newEntryGetsAFileOfItsOwn()
{
    QVERIFY(read());
    io->entries << makeEntry("extras", "Extras");
    QVERIFY(write());
    QCOMPARE(content(repo("extras.repo")), QByteArray("[extras]\nname=Extras\n"));
    QCOMPARE(io->entries.at(0).fileName, tree->path(repo("extras.repo")));
}

void TestYumConfIOWrite::newEntryGoesToTheFirstListedDirectory()
{
    tree->write(mainFile, "[main]\nreposdir=/b /a\n");
    tree->makeDirectory(QStringLiteral("/a"));
    tree->makeDirectory(QStringLiteral("/b"));
    QVERIFY(read());
    io->entries << makeEntry("extras");
    QVERIFY(write());
    QCOMPARE(content(QStringLiteral("/b/extras.repo")), QByteArray("[extras]\n"));
    // Read again it has the very same name, so that the next write keeps it.
    const QString name = io->entries.at(0).fileName;
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
    QCOMPARE(io->entries.at(0).fileName, name);
    QVERIFY(write());
    QCOMPARE(content(QStringLiteral("/b/extras.repo")), QByteArray("[extras]\n"));
}

void TestYumConfIOWrite::relativeFileIsPlacedInTheFirstDirectory()
{
    QVERIFY(read());
    io->entries << makeEntry("x");
    io->entries[0].fileName = QStringLiteral("typed.repo");
    QVERIFY(write());
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("typed.repo")});
    QCOMPARE(io->entries.at(0).fileName, tree->path(repo("typed.repo")));
}

void TestYumConfIOWrite::typedPathLiesBelowTheSystemRoot()
{
    QVERIFY(read());
    io->entries << makeEntry("x");
    io->entries[0].fileName = QStringLiteral("/etc/yum.repos.d/typed.repo");
    QVERIFY(write());
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("typed.repo")});
    QCOMPARE(io->entries.at(0).fileName, tree->path(repo("typed.repo")));
}

void TestYumConfIOWrite::relativeDirectoryIsNotPutInFrontTwice()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(tree->path(QString())));
    qputenv("VOKROOT", ".");
    const bool wasRead = read();
    io->entries << makeEntry("x");
    const bool first = write();
    const QString name = io->entries.at(0).fileName;
    const bool second = write();
    const QString again = io->entries.at(0).fileName;
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(wasRead && first && second);
    QCOMPARE(name, QStringLiteral("./etc/yum.repos.d/x.repo"));
    QCOMPARE(again, name);
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("x.repo")});
}

void TestYumConfIOWrite::directoryBesideTheSystemRootIsNotPutBelowIt()
{
    // A directory without a slash in front is no directory below the root.
    qputenv("VOKROOT", QFile::encodeName(tree->path(QStringLiteral("/sub"))));
    tree->write(QStringLiteral("/sub/etc/yum.conf"), "[main]\nreposdir=side\n");
    tree->write(QStringLiteral("/subside/x.repo"), "[x]\n\n");
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
    io->entries << makeEntry("y");
    for (int i = 0; i < 2; ++i) {
        QVERIFY(write());
        QCOMPARE(content(QStringLiteral("/subside/x.repo")), QByteArray("[x]\n"));
        QCOMPARE(content(QStringLiteral("/subside/y.repo")), QByteArray("[y]\n"));
    }
}

void TestYumConfIOWrite::movesAnEntryToAnotherFile()
{
    tree->write(repo("a.repo"), "[a]\n[b]\n");
    tree->write(repo("c.repo"), "[c]\n[d]\n");
    QVERIFY(read());
    at("b").fileName = at("c").fileName;
    at("b").filePosition = 1.5;
    QVERIFY(write());
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\n"));
    QCOMPARE(content(repo("c.repo")), QByteArray("[c]\n\n[b]\n\n[d]\n"));
}

void TestYumConfIOWrite::removesTheFileOfTheLastRepository()
{
    tree->write(repo("a.repo"), "[a]\n");
    tree->write(repo("b.repo"), "[b]\n");
    QVERIFY(read());
    io->entries.removeAt(io->entries.at(0).id == QLatin1String("a") ? 0 : 1);
    QVERIFY(write());
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("b.repo")});
}

void TestYumConfIOWrite::leavesTheHeadAloneInTheMainFile()
{
    tree->write(mainFile, "# c\n[main]\n\nk=v\n  w\n\n[x]\nname=X\n");
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
    io->entries.clear();
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("# c\n[main]\n\nk=v\n  w\n\n"));
}

void TestYumConfIOWrite::writesRepositoriesBehindTheHeadInOneGo()
{
    tree->write(mainFile, "[main]\nk=v\n\n[x]\nname=X\n[y]\n");
    tree->write(repo("a.repo"), "[a]\n");
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 3);
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\nk=v\n\n[x]\nname=X\n\n[y]\n"));
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\n"));
}

void TestYumConfIOWrite::rewritesTheMainFileWithoutAHead()
{
    tree->write(mainFile, "[x]\n");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[x]\n"));
    io->entries.clear();
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray());
}

void TestYumConfIOWrite::makesAMissingMainFile()
{
    QVERIFY(read());
    QVERIFY(QFile::remove(tree->path(mainFile)));
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\n"));
}

void TestYumConfIOWrite::emptyListLeavesTheMainFileOnly()
{
    tree->write(mainFile, "[main]\nreposdir=/a,/b,/missing\n[m]\n");
    tree->write(QStringLiteral("/a/1.repo"), "[1]\n");
    tree->write(QStringLiteral("/a/2.repo"), "");
    tree->write(QStringLiteral("/b/3.repo"), "[3]\n[4]\n");
    QVERIFY(read());
    io->entries.clear();
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\nreposdir=/a,/b,/missing\n"));
    for (const char* directory : {"/a", "/b"})
        QVERIFY(QDir(tree->path(QLatin1String(directory))).isEmpty());
}

void TestYumConfIOWrite::removesFilesThatNeverHeldARepository()
{
    tree->write(repo("comments.repo"), "# nothing\n");
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("x.repo")});
}

void TestYumConfIOWrite::leavesOtherFilesAndDirectories()
{
    tree->write(repo("x.repo.rpmsave"), "[x]\n");
    tree->write(repo("README"), "text");
    tree->write(repo("x.REPO"), "[x]\n");
    tree->makeDirectory(repo("dir.repo"));
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(repoFiles().size(), 4);
    QCOMPARE(content(repo("README")), QByteArray("text"));
}

void TestYumConfIOWrite::emitsNothingAndRenumbersNothing()
{
    tree->write(repo("x.repo"), "[a]\n[b]\n");
    QVERIFY(read());
    at("a").filePosition = 7.5;
    QSignalSpy spy(io.get(), &YumConfIO::changed);
    QVERIFY(write());
    QCOMPARE(spy.count(), 0);
    QCOMPARE(at("a").filePosition, 7.5);
    QCOMPARE(at("b").filePosition, 2.0);
    QVERIFY(read());
    QCOMPARE(at("b").filePosition, 1.0);
    QCOMPARE(at("a").filePosition, 2.0);
}

QTEST_MAIN(TestYumConfIOWrite)
#include "tst_YumConfIOWrite.moc"
