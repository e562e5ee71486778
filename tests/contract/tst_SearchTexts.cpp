// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>

#include <sys/resource.h>

class TestSearchTextsOfTheScript : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void theyHoldAllFieldsButTheFiles()
    {
        const QJsonObject prco{
            {"provides", QJsonArray{QJsonArray{"prov", "EQ", QJsonArray{"2", "1", "3"}}}},
            {"requires", QJsonArray{QJsonArray{"/bin/sh", QJsonValue(), QJsonValue()}}},
            {"conflicts", QJsonArray{QJsonArray{"conf", "LT", QJsonArray{"0", "7", "1"}}}},
            {"obsoletes", QJsonArray{QJsonArray{"obs", QJsonValue(), QJsonValue()}}}};
        const QJsonObject fields{{"description", QString::fromUtf8("two\nlines \xc3\xa9")},
                                 {"vendor", "ven"},
                                 {"sourcerpm", "src"},
                                 {"license", "lic"},
                                 {"packager", "pac"},
                                 {"url", "http://x"}};
        contract->play(
            {{"available", QJsonArray{Contract::package(
                               "a", {{"ver", "1:2-3"},
                                     {"repoid", "base"},
                                     {"size", 4096},
                                     {"summary", "sum"},
                                     {"group", "grp"},
                                     {"buildtime", 86400},
                                     {"relativepath", "p/a.rpm"},
                                     {"fields", fields},
                                     {"prco", prco},
                                     {"files", QJsonArray{"/usr/bin/a"}},
                                     {"changelog", QJsonArray{QJsonArray{0, "me", "- did"}}}})}}});
        prepare();
        const QList<QByteArray> texts = textsOf("a");
        const QList<QByteArray> expected{
            "a",
            "1:2-3",
            "base",
            "x86_64",
            YumIO::bytesFormat(4096).toUtf8(),
            "sum",
            "two\nlines \xc3\xa9",
            "grp",
            "ven",
            YumIO::timeFormat(86400).toUtf8(),
            "",
            "p/a.rpm",
            "src",
            "lic",
            "pac",
            "http://x",
            "",
            "prov = 2:1-3",
            "/bin/sh",
            "conf < 7-1",
            "obs",
            QString("* %1 me\n- did").arg(YumIO::dateFormat(0)).toUtf8(),
        };
        QCOMPARE(texts, expected);
    }

    void installedPackagesHaveThemToo()
    {
        contract->play({{"installed", QJsonArray{Contract::installed(
                                          "a", {{"PROVIDENAME", QJsonArray{"prov"}},
                                                {"INSTALLTIME", 86400},
                                                {"PREFIXES", QJsonArray{"/opt"}},
                                                {"CHANGELOGNAME", QJsonArray{"me"}},
                                                {"CHANGELOGTIME", 0},
                                                {"CHANGELOGTEXT", QJsonArray{"- did"}}})}}});
        prepare();
        const QList<QByteArray> texts = textsOf("a");
        QCOMPARE(texts.size(), 22);
        QCOMPARE(texts[10], YumIO::timeFormat(86400).toUtf8());
        QCOMPARE(texts[16], QByteArray("/opt"));
        QCOMPARE(texts[17], QByteArray("prov"));
        QVERIFY(texts[21].endsWith("me\n- did"));
    }

    void groupsHaveNone()
    {
        contract->play({{"groups", QJsonArray{Contract::group("g")}},
                        {"available", QJsonArray{Contract::package("a")}}});
        prepare();
        QVERIFY(contract->engine().getSearchTexts(*contract->row("g")).isNull());
        QVERIFY(!contract->engine().getSearchTexts(*contract->row("a")).isNull());
    }

    void aFieldCountsUpToItsNul()
    {
        contract->play(
            {{"available",
              QJsonArray{Contract::package(
                  "a", {{"fields", QJsonObject{{"vendor", QString::fromUtf8("ven\0dor", 7)},
                                               {"license", "lic"}}}})}}});
        prepare();
        const QList<QByteArray> texts = textsOf("a");
        QCOMPARE(texts.size(), 22);
        QCOMPARE(texts[8], QByteArray("ven"));
        QCOMPARE(texts[13], QByteArray("lic"));
    }

    void thePackagesAreAskedInTheOrderInWhichTheyWereListed()
    {
        QJsonArray packages;
        QStringList expected;
        for (int i = 0; i < 40; ++i) {
            const QString name = QString("p%1").arg((i * 17) % 40);
            packages.append(Contract::package(name));
            expected.append(QString("returnChangelog(%1)").arg(name));
        }
        contract->play({{"available", packages}});
        QVERIFY(contract->collect());
        QStringList rows;
        for (const Package::Entry* entry : contract->engine())
            rows.append(QString("returnChangelog(%1)").arg(entry->name));
        QVERIFY(rows != expected);
        QVERIFY(contract->engine().collectOtherData());
        contract->forgetCalls();
        QVERIFY(contract->engine().collectSearchTexts());
        QCOMPARE(contract->calls().filter("returnChangelog"), expected);
    }

    void theyAreGatheredOnceOnAWorkThread()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        QVERIFY(contract->engine().collectOtherData());
        QVERIFY(!contract->engine().areSearchTextsCollected());
        QVERIFY(contract->engine().collectSearchTexts());
        QVERIFY(contract->engine().areSearchTextsCollected());
        QVERIFY(contract->engine().collectSearchTexts());
        QCOMPARE(contract->callCount("returnChangelog"), 1);
        QVERIFY(!contract->calledHere("returnChangelog"));
        QCOMPARE(contract->logTexts().count("Preparing the Search"), 1);
    }

    void theyNeedTheChangeLogs()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        contract->forgetCalls();
        QVERIFY(!contract->engine().collectSearchTexts());
        QCOMPARE(contract->calls(), QStringList());
        QVERIFY(!contract->logTexts().contains("Preparing the Search"));
        QVERIFY(contract->engine().getSearchTexts(*contract->row("a")).isNull());
    }

    void theyGoWithTheEntries()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        prepare();
        contract->engine().clearEntries();
        QVERIFY(!contract->engine().areSearchTextsCollected());

        QVERIFY(contract->collect());
        QVERIFY(contract->engine().getSearchTexts(*contract->row("a")).isNull());
        QVERIFY(contract->engine().collectOtherData());
        QVERIFY(contract->engine().collectSearchTexts());
        contract->engine().clear();
        QVERIFY(!contract->engine().areSearchTextsCollected());

        // Those of no entries don't stand for those of the next ones.
        QVERIFY(contract->engine().collectSearchTexts());
        QVERIFY(contract->collect());
        QVERIFY(!contract->engine().areSearchTextsCollected());
    }

    void withoutRoomThereAreNoneAndNoDialog()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        QVERIFY(contract->engine().collectOtherData());
        // A limit to the size of files stands for a full disk.
        rlimit saved;
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
        rlimit small = saved;
        small.rlim_cur = 10;
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const bool collected = contract->engine().collectSearchTexts();
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, oldHandler);
        QVERIFY(!collected);
        QVERIFY(contract->engine().getSearchTexts(*contract->row("a")).isNull());
        QCOMPARE(contract->logTexts().last(),
                 QString("Unable to keep the texts to search, so searching will be slow"));
        // With room it works.
        QVERIFY(contract->engine().collectSearchTexts());
        QVERIFY(!contract->engine().getSearchTexts(*contract->row("a")).isNull());
    }

    void aFieldThatFailsIsReportedAndEmpty()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a"), Contract::package("b")}},
             {"raise",
              QJsonObject{{"returnChangelog", QJsonObject{{"type", "ValueError"}, {"on", "a"}}}}}});
        QString total;
        driver->expect("VOK Yum Error")
            .textContains("Internal error: python exception")
            .act([&](QWidget*) { total = contract->totalBar.text(); })
            .press("OK");
        driver->expect("VOK Yum Error")
            .text("Internal error: cannot find package's changelog")
            .press("OK");
        prepare();
        QVERIFY2(total.contains("Preparing the search: Total Progress"), qPrintable(total));
        QCOMPARE(textsOf("a").size(), 22);
        QCOMPARE(textsOf("a").last(), QByteArray());
        QCOMPARE(textsOf("b").size(), 22);
    }

    void afterAFailedLoadMissingDataIsEmptyWhereTheCallerSaysSo()
    {
        const QJsonObject gone{{"type", "YumBaseError"}, {"text", "gone"}};
        contract->play(
            {{"available", QJsonArray{Contract::package(
                               "a", {{"files", QJsonArray{"/a"}},
                                     {"changelog", QJsonArray{QJsonArray{0, "me", "did"}}}})}},
             {"installed",
              QJsonArray{Contract::installed("b", {{"BASENAMES", QJsonArray{"b"}},
                                                   {"DIRNAMES", QJsonArray{"/"}},
                                                   {"DIRINDEXES", 0},
                                                   {"CHANGELOGNAME", QJsonArray{"me"}},
                                                   {"CHANGELOGTIME", 0},
                                                   {"CHANGELOGTEXT", QJsonArray{"- did"}}})}},
             {"raise", QJsonObject{{"collectFileLists", gone}, {"collectOtherData", gone}}}});
        QVERIFY(contract->collect());
        YumIO& engine = contract->engine();
        const auto files = [&](const char* name) {
            return engine.getFilesUtf8(*contract->row(name), YumIO::NotAfterFailure);
        };
        const auto changes = [&](const char* name) {
            return engine.getChangeLog(*contract->row(name), YumIO::NotAfterFailure);
        };
        driver->expect("VOK Yum Error").textContains("filelists").press("Close");
        driver->expect("VOK Yum Error").textContains("miscellaneous data").press("Close");
        // The first need loads, as ever; the next ones do not.
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(files("a"), QByteArray());
            QCOMPARE(changes("a"), QString());
        }
        QCOMPARE(contract->callCount("collectFileLists"), 1);
        QCOMPARE(contract->callCount("collectOtherData"), 1);
        QCOMPARE(files("b"), QByteArray("/b"));
        QVERIFY(!changes("b").isEmpty());

        QVERIFY(engine.collectFileLists() && engine.collectOtherData());
        QCOMPARE(files("a"), QByteArray("/a"));
        QVERIFY(!changes("a").isEmpty());
    }

    void aCollectionForgetsAFailedLoad()
    {
        const QJsonObject gone{{"type", "YumBaseError"}, {"text", "gone"}, {"keep", true}};
        contract->play(
            {{"available", QJsonArray{Contract::package("a")}},
             {"raise", QJsonObject{{"collectFileLists", gone}, {"collectOtherData", gone}}}});
        for (int i = 0; i < 2; ++i) {
            contract->engine().clearEntries();
            QVERIFY(contract->collect());
            driver->expect("VOK Yum Error").textContains("filelists").press("Close");
            driver->expect("VOK Yum Error").textContains("miscellaneous data").press("Close");
            contract->engine().getFilesUtf8(*contract->row("a"), YumIO::NotAfterFailure);
            contract->engine().getChangeLog(*contract->row("a"), YumIO::NotAfterFailure);
        }
        QCOMPARE(contract->callCount("collectFileLists"), 2);
        QCOMPARE(contract->callCount("collectOtherData"), 2);
    }

private:
    void prepare()
    {
        QVERIFY(contract->collect());
        QVERIFY(contract->engine().collectOtherData());
        QVERIFY(contract->engine().collectSearchTexts());
    }

    QList<QByteArray> textsOf(const QString& name)
    {
        return contract->engine().getSearchTexts(*contract->row(name)).split('\0');
    }
};

QTEST_MAIN(TestSearchTextsOfTheScript)
#include "tst_SearchTexts.moc"
