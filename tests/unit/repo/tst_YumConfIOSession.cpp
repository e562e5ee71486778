// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/ConfigTree.h"

#include <QTest>

#include <memory>

/// Which repositories a run of the program uses.
class TestYumConfIOSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void followsTheMainSectionWhereNothingIsStated_data();
    void followsTheMainSectionWhereNothingIsStated();
    void followsTheFileWhereItStates();
    void keepsTheValueOfAnEarlierRead();
    void keepsTheUsersChoiceForTheSession();
    void commandLineOverridesTheFileInOrder();
    void commandLineNeverReachesTheEntries();
    void commandLineIsAppliedOnceAnId();
    void commandLinePatternsMatchTheWholeId();
    void theFirstOfTwoSectionsDecides();

private:
    void read(const QByteArray& repoText, const QByteArray& mainText = "[main]\n");

    std::unique_ptr<ConfigTree> tree;
    std::unique_ptr<DialogDriver> driver;
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<YumConfIO> io;
};

void TestYumConfIOSession::init()
{
    tree = std::make_unique<ConfigTree>();
    driver = std::make_unique<DialogDriver>();
    options.clear();
    used.clear();
    io = std::make_unique<YumConfIO>(options, used);
}

void TestYumConfIOSession::cleanup()
{
    io.reset();
    driver.reset();
    tree.reset();
}

void TestYumConfIOSession::read(const QByteArray& repoText, const QByteArray& mainText)
{
    tree->write(QStringLiteral("/etc/yum.conf"), mainText);
    tree->write(QStringLiteral("/etc/yum.repos.d/test.repo"), repoText);
    QVERIFY(io->read(nullptr));
}

void TestYumConfIOSession::followsTheMainSectionWhereNothingIsStated_data()
{
    QTest::addColumn<QByteArray>("mainText");
    QTest::addColumn<bool>("expected");
    QTest::newRow("default") << QByteArray("[main]\n") << true;
    QTest::newRow("enabled") << QByteArray("[main]\nenabled=1\n") << true;
    QTest::newRow("disabled") << QByteArray("[main]\nenabled=0\n") << false;
}

void TestYumConfIOSession::followsTheMainSectionWhereNothingIsStated()
{
    QFETCH(QByteArray, mainText);
    read("[x]\nname=X\n", mainText);
    QCOMPARE(io->entries.at(0).enabled, 1);
    QVERIFY(used.contains(QStringLiteral("x")));
    QTEST(used.value(QStringLiteral("x")), "expected");
}

void TestYumConfIOSession::followsTheFileWhereItStates()
{
    read("[off]\nenabled=0\n[on]\nenabled=1\n[unsaid]\n", "[main]\nenabled=0\n");
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("off"), false},
                                         {QStringLiteral("on"), true},
                                         {QStringLiteral("unsaid"), false}}));
}

void TestYumConfIOSession::keepsTheValueOfAnEarlierRead()
{
    read("[x]\nenabled=1\n");
    QVERIFY(used.value(QStringLiteral("x")));
    read("[x]\nenabled=0\n[y]\nenabled=0\n");
    QCOMPARE(io->entries.at(0).enabled, 0);
    QVERIFY(used.value(QStringLiteral("x")));
    QVERIFY(!used.value(QStringLiteral("y"), true));
}

void TestYumConfIOSession::keepsTheUsersChoiceForTheSession()
{
    read("[x]\nenabled=1\n");
    used[QStringLiteral("x")] = false;
    read("[x]\nenabled=1\n");
    QVERIFY(!used.value(QStringLiteral("x")));
    read("");
    QVERIFY(used.contains(QStringLiteral("x")));
}

void TestYumConfIOSession::commandLineOverridesTheFileInOrder()
{
    options << YumRepoEnabled(false, QStringLiteral("*"))
            << YumRepoEnabled(true, QStringLiteral("foo"));
    read("[foo]\nenabled=0\n[foobar]\nenabled=1\n[bar]\n");
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("foo"), true},
                                         {QStringLiteral("foobar"), false},
                                         {QStringLiteral("bar"), false}}));
}

void TestYumConfIOSession::commandLineNeverReachesTheEntries()
{
    options << YumRepoEnabled(false, QStringLiteral("*"));
    read("[foo]\nenabled=1\n[bar]\n");
    QCOMPARE(io->entries.at(0).enabled, 2);
    QCOMPARE(io->entries.at(1).enabled, 1);
}

void TestYumConfIOSession::commandLineIsAppliedOnceAnId()
{
    options << YumRepoEnabled(false, QStringLiteral("foo"));
    read("[foo]\n");
    used[QStringLiteral("foo")] = true;
    read("[foo]\n");
    QVERIFY(used.value(QStringLiteral("foo")));
}

void TestYumConfIOSession::commandLinePatternsMatchTheWholeId()
{
    options << YumRepoEnabled(false, QStringLiteral("up*s"))
            << YumRepoEnabled(false, QStringLiteral("?b"))
            << YumRepoEnabled(false, QStringLiteral("CASE"));
    read("[updates]\n[updates-src]\n[ab]\n[abc]\n[case]\n");
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("updates"), false},
                                         {QStringLiteral("updates-src"), true},
                                         {QStringLiteral("ab"), false},
                                         {QStringLiteral("abc"), true},
                                         {QStringLiteral("case"), true}}));
}

void TestYumConfIOSession::theFirstOfTwoSectionsDecides()
{
    tree->write(QStringLiteral("/b/x.repo"), "[x]\nname=second\nenabled=1\n");
    tree->write(QStringLiteral("/a/x.repo"), "[x]\nname=first\nenabled=0\n");
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\nreposdir=/a /b\n");
    QVERIFY(io->read(nullptr));
    QCOMPARE(io->entries.size(), 2);
    QCOMPARE(io->entries.at(0).name, QStringLiteral("first"));
    QCOMPARE(io->entries.at(1).name, QStringLiteral("second"));
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("x"), false}}));
}

QTEST_MAIN(TestYumConfIOSession)
#include "tst_YumConfIOSession.moc"
