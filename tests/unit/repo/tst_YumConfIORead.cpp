// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/ConfigTree.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

namespace
{

class Reader : public YumConfIO
{
public:
    using YumConfIO::confText;
    using YumConfIO::isOption;
    using YumConfIO::unreadLines;
    using YumConfIO::YumConfIO;
};

/// A whole entry as text, one field a line, so that a difference can be seen.
QString dump(const Repo::Entry& entry)
{
    const auto quoted = [](QString text) {
        return text.replace(QLatin1Char('\n'), QStringLiteral("\\n"))
            .replace(QLatin1Char('\r'), QStringLiteral("\\r"));
    };
    return QStringLiteral(
               "[%1] name<%2> baseurl<%3> mirrorlist<%4> enabled %5 gpgcheck %6 other<%7> "
               "file<%8> position %9")
        .arg(quoted(entry.id), quoted(entry.name), quoted(entry.baseurl), quoted(entry.mirrorlist),
             QString::number(entry.enabled), QString::number(entry.gpgcheck), quoted(entry.other),
             entry.fileName, QString::number(entry.filePosition));
}

} // namespace

/// What the reader makes of files that it can read.
class TestYumConfIORead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void freshEntryStatesNothing();
    void prefersTheFileInItsOwnDirectory();
    void readsTheOtherMainFileWhereThereIsNoFirst();
    void asksForTheMainFileAnew();
    void startsFromTheDefaults();
    void readsTheMainSection();
    void reposdirReplacesTheList();
    void keepsTheMainSectionVerbatim();
    void readsRepositoriesBehindTheMainSection();
    void mainBehindAnotherSectionIsARepository();
    void mainOfARepoFileIsARepository();
    void aMissingDirectoryIsNoError();
    void passesADirectoryOver();
    void readsOnlyRepoFiles();
    void readsADirectoryOutsideAscii();
    void readsAFileOfTwoDirectoriesTwice();
    void splitsUrlsAtWhiteSpaceAndLines();
    void optionKeysAreExact_data();
    void optionKeysAreExact();
    void onlyZeroIsFalse_data();
    void onlyZeroIsFalse();
    void commentsStayInOrderWithUnknownLines();
    void theLastOccurrenceWins();
    void emptyLinesEndALogicalLine();
    void ignoresWhatStandsBeforeTheFirstSection();
    void anEmptyFileHasNoEntries();
    void readsALastLineWithoutNewline();
    void takesBytesOneToOne();
    void readsAnUglyFileWhole();
    void tellsOfAChangeOnce();
    void forgetsWhatItReadBefore();
    void readsAThousandFilesInNoTime();

private:
    bool read() { return io->read(nullptr); }
    /// Reads `content` as the only .repo file.
    void readRepo(const QByteArray& content);
    Repo::Entry entryOf(const QString& id) const;

    std::unique_ptr<ConfigTree> tree;
    std::unique_ptr<DialogDriver> driver; ///< without expectations: a report fails the test
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<Reader> io;
};

void TestYumConfIORead::init()
{
    tree = std::make_unique<ConfigTree>();
    driver = std::make_unique<DialogDriver>();
    used.clear();
    io = std::make_unique<Reader>(options, used);
}

void TestYumConfIORead::cleanup()
{
    io.reset();
    driver.reset();
    tree.reset();
}

void TestYumConfIORead::readRepo(const QByteArray& content)
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\n");
    tree->write(QStringLiteral("/etc/yum.repos.d/test.repo"), content);
    QVERIFY(read());
}

Repo::Entry TestYumConfIORead::entryOf(const QString& id) const
{
    const auto found = std::find_if(io->entries.begin(), io->entries.end(),
                                    [&id](const Repo::Entry& entry) { return entry.id == id; });
    return found == io->entries.end() ? Repo::Entry() : *found;
}

void TestYumConfIORead::freshEntryStatesNothing()
{
    const Repo::Entry entry;
    QCOMPARE(dump(entry), QStringLiteral("[] name<> baseurl<> mirrorlist<> enabled 1 gpgcheck 1 "
                                         "other<> file<> position 0"));
}

void TestYumConfIORead::prefersTheFileInItsOwnDirectory()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\ncachedir=/second\n");
    tree->write(QStringLiteral("/etc/yum/yum.conf"), "[main]\ncachedir=/first\n");
    QVERIFY(read());
    QCOMPARE(io->cachedir, QStringLiteral("/first"));
    QCOMPARE(QString::fromUtf8(io->fileName()), tree->path(QStringLiteral("/etc/yum/yum.conf")));
}

void TestYumConfIORead::readsTheOtherMainFileWhereThereIsNoFirst()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\ncachedir=/second\n");
    QVERIFY(read());
    QCOMPARE(io->cachedir, QStringLiteral("/second"));
}

void TestYumConfIORead::asksForTheMainFileAnew()
{
    QCOMPARE(QString::fromUtf8(io->fileName()), tree->path(QStringLiteral("/etc/yum.conf")));
    tree->write(QStringLiteral("/etc/yum/yum.conf"), "");
    QCOMPARE(QString::fromUtf8(io->fileName()), tree->path(QStringLiteral("/etc/yum/yum.conf")));
}

void TestYumConfIORead::startsFromTheDefaults()
{
    io->reposDirs = QStringList{QStringLiteral("/elsewhere")};
    io->mainEnabled = false;
    io->mainGpgcheck = true;
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\n");
    QVERIFY(read());
    QCOMPARE(io->cachedir, QStringLiteral("/var/cache/yum"));
    QCOMPARE(io->reposDirs,
             (QStringList{QStringLiteral("/etc/yum.repos.d"), QStringLiteral("/etc/yum/repos.d")}));
    QVERIFY(io->mainEnabled);
    QVERIFY(!io->mainGpgcheck);
    QCOMPARE(io->confText, QStringLiteral("[main]\n"));
}

void TestYumConfIORead::readsTheMainSection()
{
    tree->write(QStringLiteral("/etc/yum.conf"),
                "[main]\ncachedir : /cache\nenabled=0\ngpgcheck=1\n");
    QVERIFY(read());
    QCOMPARE(io->cachedir, QStringLiteral("/cache"));
    QVERIFY(!io->mainEnabled);
    QVERIFY(io->mainGpgcheck);
}

void TestYumConfIORead::reposdirReplacesTheList()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\nreposdir=/a,/b  /c\n");
    tree->write(QStringLiteral("/etc/yum.repos.d/x.repo"), "[default]\n");
    tree->write(QStringLiteral("/b/x.repo"), "[b]\n");
    tree->write(QStringLiteral("/c/x.repo"), "[c]\n");
    QVERIFY(read());
    QCOMPARE(io->reposDirs,
             (QStringList{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/c")}));
    QCOMPARE(io->entries.size(), 2);
    QCOMPARE(io->entries.at(0).id, QStringLiteral("b"));
    QCOMPARE(io->entries.at(0).fileName, tree->path(QStringLiteral("/b/x.repo")));
    QCOMPARE(io->entries.at(1).id, QStringLiteral("c"));
}

void TestYumConfIORead::keepsTheMainSectionVerbatim()
{
    const QByteArray head = "# a comment = one\n\n[main]\n\ncachedir=/x \n; another\n"
                            "exclude=a\n  b\n\tc\n\nplugins=1\r\nlast";
    tree->write(QStringLiteral("/etc/yum.conf"), head + "\n[repo]\nname=A\n");
    QVERIFY(read());
    QCOMPARE(io->confText, QString::fromLatin1(head + "\n"));

    tree->write(QStringLiteral("/etc/yum.conf"), head);
    QVERIFY(read());
    QCOMPARE(io->confText, QString::fromLatin1(head + "\n"));
}

void TestYumConfIORead::readsRepositoriesBehindTheMainSection()
{
    tree->write(QStringLiteral("/etc/yum.conf"),
                "[main]\ncachedir=/x\n[one]\nname=One\n# of one\n[two]\nbaseurl=file:///two\n");
    tree->write(QStringLiteral("/etc/yum.repos.d/three.repo"), "[three]\n");
    QVERIFY(read());
    QCOMPARE(io->confText, QStringLiteral("[main]\ncachedir=/x\n"));
    QCOMPARE(io->entries.size(), 3);
    const QString mainFile = tree->path(QStringLiteral("/etc/yum.conf"));
    QCOMPARE(dump(io->entries.at(0)),
             QStringLiteral("[one] name<One> baseurl<> mirrorlist<> enabled 1 gpgcheck 1 "
                            "other<# of one\\n> file<%1> position 1")
                 .arg(mainFile));
    QCOMPARE(dump(io->entries.at(1)),
             QStringLiteral("[two] name<> baseurl<file:///two> mirrorlist<> enabled 1 gpgcheck 1 "
                            "other<> file<%1> position 2")
                 .arg(mainFile));
    QCOMPARE(io->entries.at(2).id, QStringLiteral("three"));
    QCOMPARE(io->entries.at(2).filePosition, 1.0);
}

void TestYumConfIORead::mainBehindAnotherSectionIsARepository()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[one]\n[main]\ncachedir=/x\n");
    QVERIFY(read());
    QCOMPARE(io->confText, QString());
    QCOMPARE(io->cachedir, QStringLiteral("/var/cache/yum"));
    QCOMPARE(io->entries.size(), 2);
    QCOMPARE(io->entries.at(1).id, QStringLiteral("main"));
    QCOMPARE(io->entries.at(1).other, QStringLiteral("cachedir=/x\n"));
}

void TestYumConfIORead::mainOfARepoFileIsARepository()
{
    readRepo("[main]\nname=M\n");
    QCOMPARE(io->entries.size(), 1);
    QCOMPARE(io->entries.at(0).id, QStringLiteral("main"));
    QCOMPARE(io->entries.at(0).name, QStringLiteral("M"));
}

void TestYumConfIORead::aMissingDirectoryIsNoError()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\nreposdir=/missing /there\n");
    tree->write(QStringLiteral("/there/x.repo"), "[x]\n");
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIORead::passesADirectoryOver()
{
    tree->makeDirectory(QStringLiteral("/etc/yum.repos.d/x.repo"));
    readRepo("[y]\n");
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIORead::readsOnlyRepoFiles()
{
    for (const char* name : {"a.repo.rpmnew", "b.REPO", "repo", "c.repo~", "d.conf"})
        tree->write(QStringLiteral("/etc/yum.repos.d/") + QLatin1String(name), "[no]\n");
    tree->write(QStringLiteral("/etc/yum.repos.d/.repo"), "[hidden]\n");
    readRepo("[y]\n");
    QCOMPARE(io->entries.size(), 2);
    QVERIFY(entryOf(QStringLiteral("no")).id.isEmpty());
    QCOMPARE(entryOf(QStringLiteral("hidden")).fileName,
             tree->path(QStringLiteral("/etc/yum.repos.d/.repo")));
}

void TestYumConfIORead::readsADirectoryOutsideAscii()
{
    const QString directory = QString::fromUtf8("/r\xc3\xa9pos");
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\nreposdir=/r\xc3\xa9pos\n");
    tree->write(directory + QStringLiteral("/x.repo"), "[x]\n");
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 1);
    QCOMPARE(io->entries.at(0).fileName, tree->path(directory + QStringLiteral("/x.repo")));
}

void TestYumConfIORead::readsAFileOfTwoDirectoriesTwice()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\nreposdir=/a /b\n");
    tree->write(QStringLiteral("/a/x.repo"), "[x]\n");
    tree->link(tree->path(QStringLiteral("/a")), QStringLiteral("/b"));
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 2);
    QCOMPARE(io->entries.at(0).fileName, tree->path(QStringLiteral("/a/x.repo")));
    QCOMPARE(io->entries.at(1).fileName, tree->path(QStringLiteral("/b/x.repo")));
}

void TestYumConfIORead::splitsUrlsAtWhiteSpaceAndLines()
{
    readRepo("[line]\nbaseurl=file:///a  file:///b\n"
             "[lines]\nbaseurl=file:///a\n    file:///b\n\n"
             "[tabs]\nbaseurl=file:///a \t\n\t file:///b\n"
             "[next]\nbaseurl=\n  file:///a\n  file:///b\nmirrorlist=http://m/ x  y\n");
    const QString both = QStringLiteral("file:///a\nfile:///b");
    QCOMPARE(entryOf(QStringLiteral("line")).baseurl, both);
    QCOMPARE(entryOf(QStringLiteral("lines")).baseurl, both);
    QCOMPARE(entryOf(QStringLiteral("tabs")).baseurl, both);
    QCOMPARE(entryOf(QStringLiteral("next")).baseurl, QStringLiteral("\n") + both);
    QCOMPARE(entryOf(QStringLiteral("next")).mirrorlist, QStringLiteral("http://m/ x  y"));
}

void TestYumConfIORead::optionKeysAreExact_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("value");
    QTest::newRow("equals") << "enabled=0" << true << "0";
    QTest::newRow("blanks") << "enabled = 0" << true << "0";
    QTest::newRow("colon") << "enabled:0" << true << "0";
    QTest::newRow("tabs") << "enabled\t \t:\t 0" << true << "0";
    QTest::newRow("first separator counts") << "enabled=a:b=c" << true << "a:b=c";
    QTest::newRow("trailing blanks stay") << "enabled= 0 \t" << true << "0 \t";
    QTest::newRow("lines stay") << "enabled=0\n 1" << true << "0\n 1";
    QTest::newRow("empty") << "enabled=" << true << "";
    QTest::newRow("only blanks") << "enabled=  " << true << "";
    QTest::newRow("capital") << "Enabled=0" << false << "untouched";
    QTest::newRow("comment") << "#enabled=0" << false << "untouched";
    QTest::newRow("leading blank") << " enabled=0" << false << "untouched";
    QTest::newRow("longer") << "enabled2=0" << false << "untouched";
    QTest::newRow("shorter") << "enable=0" << false << "untouched";
    QTest::newRow("no separator") << "enabled" << false << "untouched";
    QTest::newRow("no key") << "=enabled" << false << "untouched";
    QTest::newRow("nothing") << "" << false << "untouched";
}

void TestYumConfIORead::optionKeysAreExact()
{
    QFETCH(QString, line);
    QFETCH(bool, found);
    QString value = QStringLiteral("untouched");
    QCOMPARE(Reader::isOption(line, QStringLiteral("enabled"), value), found);
    QTEST(value, "value");
}

void TestYumConfIORead::onlyZeroIsFalse_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("enabled");
    QTest::addColumn<QString>("other");
    QTest::newRow("zero") << QByteArray("enabled = 0") << 0 << QString();
    QTest::newRow("zero after colon") << QByteArray("enabled:0") << 0 << QString();
    QTest::newRow("one") << QByteArray("enabled=1") << 2 << QString();
    QTest::newRow("no") << QByteArray("enabled=no") << 2 << QString();
    QTest::newRow("False") << QByteArray("enabled=False") << 2 << QString();
    QTest::newRow("zero and blank") << QByteArray("enabled=0 ") << 2 << QString();
    QTest::newRow("zero and carriage return") << QByteArray("enabled=0\r") << 2 << QString();
    QTest::newRow("nothing") << QByteArray("enabled=") << 2 << QString();
    QTest::newRow("capital") << QByteArray("Enabled=0") << 1 << QStringLiteral("Enabled=0\n");
}

void TestYumConfIORead::onlyZeroIsFalse()
{
    QFETCH(QByteArray, line);
    readRepo("[x]\n" + line + "\ngpgcheck=0\n");
    QCOMPARE(io->entries.size(), 1);
    QTEST(io->entries.at(0).enabled, "enabled");
    QTEST(io->entries.at(0).other, "other");
    QCOMPARE(io->entries.at(0).gpgcheck, 0);
}

void TestYumConfIORead::commentsStayInOrderWithUnknownLines()
{
    readRepo("[x]\nexclude=a\n#enabled=0\nname=X\n; c\npriority=1\n\n# last\n[y]\n");
    QCOMPARE(entryOf(QStringLiteral("x")).other,
             QStringLiteral("exclude=a\n#enabled=0\n; c\npriority=1\n# last\n"));
    QCOMPARE(entryOf(QStringLiteral("x")).enabled, 1);
    QCOMPARE(entryOf(QStringLiteral("y")).other, QString());
}

void TestYumConfIORead::theLastOccurrenceWins()
{
    readRepo("[x]\nname=A\nenabled=0\nname=B\nenabled=1\n");
    QCOMPARE(io->entries.at(0).name, QStringLiteral("B"));
    QCOMPARE(io->entries.at(0).enabled, 2);
    QVERIFY(used.value(QStringLiteral("x")));
}

void TestYumConfIORead::emptyLinesEndALogicalLine()
{
    readRepo("[x]\nname=A\n\n  indented\nexclude=a\n \n b\n");
    // An empty line is a logical line itself, and what is indented behind it belongs to it.
    QCOMPARE(io->entries.at(0).name, QStringLiteral("A"));
    QCOMPARE(io->entries.at(0).other, QStringLiteral("\n  indented\nexclude=a\n \n b\n"));
}

void TestYumConfIORead::ignoresWhatStandsBeforeTheFirstSection()
{
    readRepo("# comment\nname=A\nenabled=0\n\nbaseurl=file:///a\n[x]\n");
    QCOMPARE(io->entries.size(), 1);
    QCOMPARE(dump(io->entries.at(0)),
             QStringLiteral("[x] name<> baseurl<> mirrorlist<> enabled 1 gpgcheck 1 other<> "
                            "file<%1> position 1")
                 .arg(tree->path(QStringLiteral("/etc/yum.repos.d/test.repo"))));
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("x"), true}}));
}

void TestYumConfIORead::anEmptyFileHasNoEntries()
{
    readRepo("");
    QVERIFY(io->entries.isEmpty());
    readRepo("# nothing\n");
    QVERIFY(io->entries.isEmpty());
}

void TestYumConfIORead::readsALastLineWithoutNewline()
{
    readRepo("[x]\nname=A");
    QCOMPARE(io->entries.at(0).name, QStringLiteral("A"));
    readRepo("[y]");
    QCOMPARE(io->entries.at(0).id, QStringLiteral("y"));
    readRepo("[z]\nbaseurl=a\n  b");
    QCOMPARE(io->entries.at(0).baseurl, QStringLiteral("a\nb"));
    QVERIFY(io->unreadLines.isEmpty());
}

void TestYumConfIORead::takesBytesOneToOne()
{
    QByteArray name;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\n')
            name.append(static_cast<char>(byte));
    }
    name.append('\0').append('z');
    readRepo("[x]\nname=v" + name + "\n");
    QCOMPARE(io->entries.at(0).name.size(), name.size() + 1);
    QCOMPARE(io->entries.at(0).name.toLatin1(), "v" + name);
    QCOMPARE(io->entries.at(0).name.at(128), QChar(0x81));
}

void TestYumConfIORead::readsAnUglyFileWhole()
{
    readRepo("\n"
             "lost = 1\n"
             "[ two words]]\n"
             "name = Two: words = three  \n"
             "  and a line\n"
             "\tand a tab\n"
             "#name=x\n"
             "\n"
             "\n"
             "baseurl:\thttp://u:p%40@h/a b\n"
             " \t http://h/\xe9\xff\n"
             "enabled=0\n"
             "enabled=no\n"
             "junk\n"
             " mirrorlist=http://hidden\n"
             "mirrorlist = http://m/?a=b:c\r\n"
             "gpgcheck :1\n"
             "[]\n"
             "name=\n"
             "other=%1 %2\n"
             "[ two words]]\n"
             "gpgcheck=0\n"
             "Name=n");
    const QString file = tree->path(QStringLiteral("/etc/yum.repos.d/test.repo"));
    QCOMPARE(io->entries.size(), 3);
    QCOMPARE(dump(io->entries.at(0)),
             QString::fromLatin1("[ two words]] "
                                 "name<Two: words = three  \\n  and a line\\n\tand a tab> "
                                 "baseurl<http://u:p%40@h/a\\nb\\nhttp://h/\xe9\xff> "
                                 "mirrorlist<http://m/?a=b:c\\r> enabled 2 gpgcheck 2 "
                                 "other<#name=x\\njunk\\n mirrorlist=http://hidden\\n> ") +
                 QStringLiteral("file<") + file + QStringLiteral("> position 1"));
    QCOMPARE(dump(io->entries.at(1)),
             QStringLiteral("[] name<> baseurl<> mirrorlist<> enabled 1 gpgcheck 1 "
                            "other<other=%1 %2\\n> file<") +
                 file + QStringLiteral("> position 2"));
    QCOMPARE(dump(io->entries.at(2)),
             QStringLiteral("[ two words]] name<> baseurl<> mirrorlist<> enabled 1 gpgcheck 0 "
                            "other<Name=n\\n> file<") +
                 file + QStringLiteral("> position 3"));
}

void TestYumConfIORead::tellsOfAChangeOnce()
{
    QSignalSpy spy(io.get(), &YumConfIO::changed);
    readRepo("[x]\n[y]\n");
    QCOMPARE(spy.count(), 1);
}

void TestYumConfIORead::forgetsWhatItReadBefore()
{
    readRepo("[x]\n");
    readRepo("[y]\n");
    QCOMPARE(io->entries.size(), 1);
    QCOMPARE(io->entries.at(0).id, QStringLiteral("y"));
    QCOMPARE(io->confText, QStringLiteral("[main]\n"));
}

void TestYumConfIORead::readsAThousandFilesInNoTime()
{
    constexpr int files = 1000;
    constexpr int sections = 10;
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\n");
    for (int file = 0; file < files; ++file) {
        QByteArray text;
        for (int section = 0; section < sections; ++section) {
            text += "[repo-" + QByteArray::number(file) + '-' + QByteArray::number(section) +
                    "]\nname=Repository " + QByteArray(60, 'n') +
                    "\nbaseurl=http://host/a/b/c\n        http://mirror/a/b/c\nenabled=1\n"
                    "gpgcheck=0\nexclude=kernel*\n\n";
        }
        tree->write(QStringLiteral("/etc/yum.repos.d/%1.repo").arg(file), text);
    }
    QVERIFY(read());
    QCOMPARE(io->entries.size(), files * sections);
    QCOMPARE(used.size(), files * sections);
}

QTEST_MAIN(TestYumConfIORead)
#include "tst_YumConfIORead.moc"
