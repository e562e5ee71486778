// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Package.h"
#include "engine/SearchTexts.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/resource.h>

class TestSearchTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesBackWhatItWasGiven();
    void keepsMoreThanItsBuffer();
    void tellsAnEmptyTextFromNone();
    void separatesFieldsByNuls();
    void takesAFieldUpToItsFirstNul();
    void leavesNoNameAndNoDescriptorBehind();
    void takesTheFirstDirectoryThatWillDo();
    void failsWithoutADirectory();
    void failsWhereThereIsNoRoom();
    void prefersTheDirectoryOfTheEnvironment();

private:
    static int openFiles()
    {
        return QDir(QStringLiteral("/proc/self/fd"))
            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
            .size();
    }
};

void TestSearchTexts::givesBackWhatItWasGiven()
{
    const Package::Entry first, second, other;
    SearchTexts texts;
    QVERIFY(texts.add(&first, "one"));
    QVERIFY(texts.add(&second, QByteArray("two\0three\n", 10)));
    QVERIFY(texts.finish());
    QCOMPARE(texts.of(&second), QByteArray("two\0three\n", 10));
    QCOMPARE(texts.of(&first), QByteArray("one"));
    QVERIFY(texts.of(&other).isNull());
}

void TestSearchTexts::keepsMoreThanItsBuffer()
{
    const std::vector<Package::Entry> entries(50);
    const auto textOf = [](size_t i) {
        return QByteArray(static_cast<int>(i * 7919), static_cast<char>('A' + i)) + "end";
    };
    const Package::Entry huge, last;
    SearchTexts texts;
    for (size_t i = 0; i < entries.size(); ++i)
        QVERIFY(texts.add(&entries[i], textOf(i)));
    QVERIFY(texts.add(&huge, QByteArray(3000000, 'h')));
    QVERIFY(texts.add(&last, "last"));
    QVERIFY(texts.finish());
    for (size_t i = 0; i < entries.size(); ++i)
        QVERIFY2(texts.of(&entries[i]) == textOf(i), qPrintable(QString::number(i)));
    QVERIFY(texts.of(&huge) == QByteArray(3000000, 'h'));
    QCOMPARE(texts.of(&last), QByteArray("last"));
}

void TestSearchTexts::tellsAnEmptyTextFromNone()
{
    const Package::Entry entry, other;
    SearchTexts texts;
    texts.add(&entry, "");
    QVERIFY(texts.finish());
    QVERIFY(!texts.of(&entry).isNull());
    QVERIFY(texts.of(&entry).isEmpty());
    QVERIFY(texts.of(&other).isNull());
}

void TestSearchTexts::separatesFieldsByNuls()
{
    QByteArray text;
    SearchTexts::appendField(text, "");
    QVERIFY(!text.isNull());
    QCOMPARE(text, QByteArray(""));
    SearchTexts::appendField(text, "b\n");
    SearchTexts::appendField(text, QByteArray());
    SearchTexts::appendField(text, "d");
    QCOMPARE(text, QByteArray("\0b\n\0\0d", 6));
}

void TestSearchTexts::takesAFieldUpToItsFirstNul()
{
    QByteArray text;
    SearchTexts::appendField(text, QByteArray("a\0b", 3));
    SearchTexts::appendField(text, "c");
    QCOMPARE(text, QByteArray("a\0c", 3));
}

void TestSearchTexts::leavesNoNameAndNoDescriptorBehind()
{
    const QTemporaryDir directory;
    const Package::Entry entry;
    const int before = openFiles();
    {
        SearchTexts texts({directory.path()});
        QVERIFY(texts.add(&entry, QByteArray(2000000, 'x')));
        QVERIFY(texts.finish());
        QCOMPARE(openFiles(), before + 1);
        QCOMPARE(QDir(directory.path())
                     .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden),
                 QStringList());
    }
    QCOMPARE(openFiles(), before);
}

void TestSearchTexts::takesTheFirstDirectoryThatWillDo()
{
    const QTemporaryDir directory;
    const Package::Entry entry;
    SearchTexts texts({directory.filePath("missing"), directory.path()});
    QVERIFY(texts.add(&entry, "text"));
    QVERIFY(texts.finish());
    QCOMPARE(texts.of(&entry), QByteArray("text"));
}

void TestSearchTexts::failsWithoutADirectory()
{
    const QTemporaryDir directory;
    const Package::Entry entry;
    SearchTexts texts({directory.filePath("missing")});
    QVERIFY(!texts.add(&entry, "text"));
    QVERIFY(!texts.finish());
    QVERIFY(texts.of(&entry).isNull());
}

void TestSearchTexts::failsWhereThereIsNoRoom()
{
    const Package::Entry first, second, third;
    // A limit to the size of files stands for a full disk.
    rlimit saved;
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 1500000;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    SearchTexts early;
    early.add(&first, QByteArray(1000000, 'a'));
    early.add(&second, QByteArray(1000000, 'b'));
    const bool third1 = early.add(&third, QByteArray(1000000, 'c'));
    const bool finished1 = early.finish();
    SearchTexts late;
    late.add(&first, QByteArray(1000000, 'a'));
    const bool second2 = late.add(&second, QByteArray(1000000, 'b'));
    const bool finished2 = late.finish();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    QVERIFY(!third1);
    QVERIFY(!finished1);
    QVERIFY(early.of(&first).isNull());
    QVERIFY(second2);
    QVERIFY(!finished2);
    QVERIFY(late.of(&first).isNull());
}

void TestSearchTexts::prefersTheDirectoryOfTheEnvironment()
{
    const QByteArray saved = qgetenv("TMPDIR");
    const bool wasSet = qEnvironmentVariableIsSet("TMPDIR");
    const QTemporaryDir directory;
    qputenv("TMPDIR", QFile::encodeName(directory.path()));
    const QStringList own = SearchTexts::directories();
    qunsetenv("TMPDIR");
    const QStringList usual = SearchTexts::directories();
    if (wasSet)
        qputenv("TMPDIR", saved);
    QCOMPARE(own, QStringList({directory.path(), "/var/tmp"}));
    QCOMPARE(usual, QStringList({"/var/tmp", "/tmp"}));
}

QTEST_GUILESS_MAIN(TestSearchTexts)
#include "tst_SearchTexts.moc"
