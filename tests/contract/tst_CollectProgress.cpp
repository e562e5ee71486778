// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ProgressStage.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString yumWarning = QStringLiteral("VOK Yum Warning");

} // namespace

/// What single calls of the script make of the bars.
class TestCollectProgress : public ProgressStage
{
    Q_OBJECT

private Q_SLOTS:
    // ---- Act numbers

    void actNumbers_data()
    {
        QTest::addColumn<bool>("multi");
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("act");
        QTest::addColumn<int>("expected");
        // Three repositories. In the comments: which repository, and what of it.
        const auto row = [](bool multi, const char* version, int from, int act, int expected) {
            QTest::newRow(qPrintable(QString("%1 %2: %3 after %4")
                                         .arg(multi ? "multi" : "single", version)
                                         .arg(act)
                                         .arg(from)))
                << multi << version << from << act << expected;
        };
        // With parallel downloads the version makes no difference.
        for (const char* version : {"2.4.0", "4.14.0"}) {
            row(true, version, 0, 0, 1);
            row(true, version, 1, 1, 2); // repomd of the first
            row(true, version, 2, 1, 4); // repomd of the second, which has no mirror list
            row(true, version, 3, 1, 4);
            row(true, version, 0, 2, 7); // groups begin behind the 2 * 3 acts of all repomd
            row(true, version, 6, 2, 7);
            row(true, version, 7, 3, 8);
            row(true, version, 8, 3, 10); // contents of the second, which has no groups
            row(true, version, 3, 4, 13); // reading begins behind 4 * 3 acts
            row(true, version, 13, 5, 14);
            row(true, version, 14, 5, 16);
        }
        row(false, "3.1.7", 0, 0, 1);
        row(false, "3.1.7", 0, 1, 2);
        row(false, "3.1.7", 2, 3, 4);
        row(false, "3.1.7", 4, 5, 6);
        row(false, "3.1.7", 6, 1, 8); // the second repository's six
        row(false, "3.1.7", 11, 4, 11);
        row(false, "3.1.6", 0, 0, 1);
        row(false, "3.1.6", 1, 1, 2);
        row(false, "3.1.6", 2, 0, 3);
        row(false, "3.1.6", 0, 2, 7);
        row(false, "3.1.6", 7, 3, 8);
        row(false, "3.1.6", 8, 4, 9);
        row(false, "3.1.6", 9, 2, 10); // the second repository's three
        row(false, "3.1.6", 9, 5, 13);
    }

    void actNumbers()
    {
        QFETCH(bool, multi);
        QFETCH(QString, version);
        QFETCH(int, from);
        QFETCH(int, act);
        QFETCH(int, expected);
        open(3, {{"multi", multi}, {"version", version}});
        state().act = from;
        engine().collectStart(nullptr, "r", static_cast<YumIO::RepoAct>(act), 0, 10);
        QCOMPARE(state().act, expected);
    }

    void eachRepositoryHasSixActsWithoutParallelDownloads()
    {
        open(2, {{"version", "3.2.0"}});
        QList<int> acts;
        const auto note = [&](const char* code) {
            run(code);
            acts.append(state().act);
        };
        for (const char* id : {"one", "two"}) {
            note(qPrintable(start("m", QString("/c/%1/repomd.xml").arg(id))));
            note(qPrintable(start("m", QString("/c/%1/group_gz.xml").arg(id))));
            note(qPrintable(start("m", QString("/c/%1/primary.xml.gz").arg(id))));
            note(qPrintable(QString("yumIOC.collectProgress(1, 20, '%1')").arg(id)));
        }
        QCOMPARE(acts, QList<int>({2, 3, 4, 6, 8, 9, 10, 12}));
        QCOMPARE(items().last(), QString("Reading repository contents for two"));
    }

    void aRepositoryWithoutGroupsLeavesAGap()
    {
        open(1, {{"version", "3.2.0"}});
        run(start("m", "/c/one/repomd.xml"));
        QCOMPARE(state().act, 2);
        run(start("m", "/c/one/primary.xml.gz"));
        QCOMPARE(state().act, 4);
    }

    // ---- Texts

    void activityTexts_data()
    {
        QTest::addColumn<int>("act");
        QTest::addColumn<QString>("bare");
        QTest::addColumn<QString>("named");
        QTest::newRow("mirror list") << 0 << "Downloading repository mirror list"
                                     << "Downloading repository mirror list for base";
        QTest::newRow("repomd") << 1 << "Downloading repository repomd"
                                << "Downloading repository repomd for base";
        QTest::newRow("groups") << 2 << "Downloading repository groups"
                                << "Downloading repository groups for base";
        QTest::newRow("contents") << 3 << "Downloading repository the label"
                                  << "Downloading repository the label for base";
        QTest::newRow("convert") << 4 << "Converting repository"
                                 << "Converting repository base";
        QTest::newRow("read") << 5 << "Reading repository the label"
                              << "Reading repository the label for base";
    }

    void activityTexts()
    {
        QFETCH(int, act);
        open(1);
        state().contentsLabel = "the label";
        engine().collectStart(nullptr, "", static_cast<YumIO::RepoAct>(act), 0, 10);
        QTEST(items().last(), "bare");
        engine().collectStart(nullptr, "base", static_cast<YumIO::RepoAct>(act), 0, 10);
        QTEST(items().last(), "named");
    }

    void anUnknownActIsAnInternalErrorWithAnEmptyText()
    {
        open(1);
        driver->expect(yumError).text("Internal error: invalid collect act\n").press("OK");
        engine().collectStart(nullptr, "base", static_cast<YumIO::RepoAct>(6), 0, 10);
        QCOMPARE(items(), QStringList({""}));
    }

    // ---- collectProgress

    void aReadingWithoutACountIsOneStep()
    {
        open(1);
        run("yumIOC.collectProgress(-1, -1, 'base')");
        QCOMPARE(items(), QStringList({"Reading repository contents for base"}));
        QCOMPARE(itemStarts->last().at(2).value<Steps>(), Steps(1));
        QCOMPARE(state().act, 6);
        QCOMPARE(state().lastTotal, 1);
        QCOMPARE(state().lastName, QString("base"));
        // Its size is noted as 1, so that an equal call differs from it and is another step.
        run("yumIOC.collectProgress(-1, -1, 'base')");
        QCOMPARE(items().size(), 2);
        QCOMPARE(state().act, 12);
    }

    void anEqualTotalAndNameGoOn()
    {
        open(2);
        run("yumIOC.collectProgress(0, 20, 'base')");
        const int act = state().act;
        run("yumIOC.collectProgress(3, 20, 'base')");
        run("yumIOC.collectProgress(20, 20, 'base')");
        QCOMPARE(state().act, act);
        QCOMPARE(items().size(), 1);
        run("yumIOC.collectProgress(20, 21, 'base')");
        QCOMPARE(items().size(), 2);
        run("yumIOC.collectProgress(20, 21, 'other')");
        QCOMPARE(items().size(), 3);
        QCOMPARE(items().last(), QString("Reading repository contents for other"));
    }

    void aCallEqualToTheInitialStateBeginsAStep()
    {
        open(1);
        state().lastTotal = 20;
        state().lastName = "base";
        run("yumIOC.collectProgress(3, 20, 'base')");
        QCOMPARE(items().size(), 1);
    }

    void anUpdateMovesTheItem()
    {
        open(1);
        engine().collectStart(nullptr, "base", YumIO::ActContents, 0, 100);
        // Values that follow each other too closely are dropped, so it may take more than one.
        QTRY_VERIFY((engine().collectUpdate(nullptr, 30), itemValues->count() > 0));
        QCOMPARE(itemValues->last().at(1).value<Steps>(), Steps(30));
    }

    void metadataReadHasNoName()
    {
        open(1);
        run("yumIOC.collectProgress(5, 100, 'MD Read')");
        QCOMPARE(items(), QStringList({"Converting repository"}));
        QCOMPARE(state().act, 5);
        QCOMPARE(state().lastName, QString());
        run("yumIOC.collectProgress(6, 100, 'MD Read')");
        QCOMPARE(items().size(), 1);
        run("yumIOC.collectProgress(6, 101, 'MD Read')");
        QCOMPARE(items().size(), 2);
    }

    void aNamedStepIsAConversionWhereSqliteIsUsed_data()
    {
        QTest::addColumn<bool>("sqlite");
        QTest::addColumn<QString>("text");
        QTest::newRow("sqlite") << true << "Converting repository base";
        QTest::newRow("none") << false << "Reading repository contents for base";
    }

    void aNamedStepIsAConversionWhereSqliteIsUsed()
    {
        QFETCH(bool, sqlite);
        open(1, {{"sqlite", sqlite}});
        run("yumIOC.collectProgress(1, 20, 'base')");
        QTEST(items().last(), "text");
    }

    void aNameMayBeNoneOrBytes()
    {
        open(1);
        run("yumIOC.collectProgress(1, 20, None)");
        QCOMPARE(items().last(), QString("Reading repository contents"));
        run("yumIOC.collectProgress(1, 20, b'base')");
        QCOMPARE(items().last(), QString("Reading repository contents for base"));
    }

    void aNameOfAnotherTypeIsReported()
    {
        open(1);
        driver->expect(yumError).text("Internal error: unexpected progress name").press("OK");
        run("yumIOC.collectProgress(1, 20, 7)");
        QCOMPARE(items().last(), QString("Reading repository contents"));
    }

    // ---- collectGrabMeterStart

    void whatAFileIsAndWhose_data()
    {
        QTest::addColumn<QString>("filename");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("activity");
        const auto row = [](const char* name, const char* filename, const char* text,
                            const char* activity) {
            QTest::newRow(name) << filename << text << activity;
        };
        row("repomd", "/var/cache/base/repomd.xml", "", "Downloading repository repomd for base");
        row("signature beside repomd", "/var/cache/base/repomd.xml.asc", "",
            "Downloading repository repomd for base");
        row("mirror list", "/var/cache/base/metalink.xml.tmp", "",
            "Downloading repository mirror list for base");
        row("groups", "/var/cache/base/group_gz.xml", "", "Downloading repository groups for base");
        row("contents", "/var/cache/base/primary.xml.gz", "",
            "Downloading repository contents for base");
        row("another case", "/c/base/REPOMD.xml", "", "Downloading repository contents for base");
        row("a word too short", "/c/base/repom", "", "Downloading repository contents for base");
        row("no slash", "repomd.xml", "", "Downloading repository contents for repomd.xml");
        row("one slash", "base/repomd.xml", "",
            "Downloading repository repomd for base/repomd.xml");
        row("a slash in front", "/repomd.xml", "", "Downloading repository repomd for /repomd.xml");
        row("a Vantry URL",
            "https://host/cgi/vantry?user=me&password=secret&path=fedora/repomd.xml", "",
            "Downloading repository repomd for fedora");
        row("a Vantry URL of more fields", "h/vantry?a=1&b=2&c=3&path=base/x.gz", "",
            "Downloading repository contents for base");
        row("from text", "", "base/metalink", "Downloading repository mirror list for base");
        row("from text of more parts", "", "base/sub/repomd",
            "Downloading repository repomd for base");
        row("from text without a slash", "", "base", "Downloading repository contents for base");
        row("the file name wins", "/c/base/primary", "other/repomd",
            "Downloading repository contents for base");
        row("nothing", "", "", "Downloading repository contents");
    }

    void whatAFileIsAndWhose()
    {
        QFETCH(QString, filename);
        QFETCH(QString, text);
        open(1);
        run(start("m", filename, "10", text));
        QTEST(items().last(), "activity");
        QCOMPARE(itemStarts->last().at(2).value<Steps>(), Steps(10));
    }

    void sizesOfFiles_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<Steps>("maximum");
        QTest::newRow("number") << "4096" << Steps(4096);
        QTest::newRow("above 4 GiB") << "5368709120" << Steps(5368709120);
        QTest::newRow("none") << "None" << Steps(1);
        QTest::newRow("absurd") << "1 << 80" << Steps(1);
    }

    void sizesOfFiles()
    {
        QFETCH(QString, size);
        open(1);
        run(start("m", "/c/base/primary", size));
        QFETCH(Steps, maximum);
        QCOMPARE(itemStarts->last().at(2).value<Steps>(), maximum);
    }

    void aSizeOfAnotherTypeIsAWarning()
    {
        open(1);
        driver->expect(yumWarning)
            .text("Internal error: collect grab size not understood")
            .press("OK");
        run(start("m", "/c/base/primary", "'10'"));
        QCOMPARE(itemStarts->last().at(2).value<Steps>(), Steps(1));
    }

    void aFileNameOfAnotherTypeIsReported()
    {
        open(1);
        driver->expect(yumError).text("Internal error: unexpected progress filename").press("OK");
        run("yumIOC.collectGrabMeterStart('m', 7, '', '', 10, 'base/repomd')");
        QCOMPARE(items().last(), QString("Downloading repository repomd for base"));
    }

    void textThatIsNoTextIsIgnored()
    {
        open(1);
        run("yumIOC.collectGrabMeterStart('m', None, '', '', 10, None)");
        QCOMPARE(items().last(), QString("Downloading repository contents"));
    }

    void wrongArgumentsAreATypeError_data()
    {
        QTest::addColumn<QString>("call");
        for (const char* call :
             {"collectProgress('1', 2, '')", "collectProgress(1, 2)", "collectGrabMeterStart(1)",
              "collectGrabMeterUpdate(1, 'x')", "collectGrabMeterEnd(1)",
              "collectGrabMeterFailure(1)", "collectGrabMultiMeterStart('a', 1)",
              "collectGrabMultiMeterNew()", "collectGrabMultiMeterRemove(1, 2)"})
            QTest::newRow(call) << call;
    }

    void wrongArgumentsAreATypeError()
    {
        QFETCH(QString, call);
        open(1);
        run(QString("try:\n"
                    "    yumIOC.%1\n"
                    "    caught = 'nothing'\n"
                    "except TypeError:\n"
                    "    caught = 'TypeError'")
                .arg(call));
        QCOMPARE(contract->eval("caught"), QString("TypeError"));
    }

    void callsGiveNone()
    {
        open(1, {{"multi", true}});
        QCOMPARE(contract->eval("str([yumIOC.collectProgress(1, 2, ''),"
                                "yumIOC.collectGrabMeterStart('m', '', '', '', 1, ''),"
                                "yumIOC.collectGrabMeterUpdate('m', 1),"
                                "yumIOC.collectGrabMeterFailure('m', 'x'),"
                                "yumIOC.collectGrabMeterEnd('m', 1),"
                                "yumIOC.collectGrabMultiMeterStart(1, 1),"
                                "yumIOC.collectGrabMultiMeterNew('m'),"
                                "yumIOC.collectGrabMultiMeterRemove('m'),"
                                "yumIOC.collectGrabMultiMeterEnd()])"),
                 QString("[None, None, None, None, None, None, None, None, None]"));
    }

    void metersThatNobodyWatchesAreIgnored()
    {
        contract->play({});
        run("yumIOC.collectProgress(1, 2, 'x')");
        run(start("m", "/c/base/repomd"));
        run("yumIOC.collectGrabMeterUpdate('m', 1)");
        run("yumIOC.collectGrabMeterFailure('m', 'x')");
        run("yumIOC.collectGrabMeterEnd('m', 1)");
        run("yumIOC.collectGrabMultiMeterEnd()");
        QVERIFY(!engine().progress);
    }

    void anEndWithoutABatchChangesNothing()
    {
        open(1);
        run(start("m", "/c/base/primary"));
        const int act = state().act;
        const int signalsBefore = itemValues->count() + itemStarts->count() + threads->count();
        run("yumIOC.collectGrabMeterEnd('m', 10)");
        run("yumIOC.collectGrabMeterFailure('m', 'again')");
        QCOMPARE(itemValues->count() + itemStarts->count() + threads->count(), signalsBefore);
        QCOMPARE(state().act, act);
    }

    void aFailureTextOfAnotherTypeIsReported()
    {
        open(1);
        driver->expect(yumError)
            .text("Internal error: unexpected progress failure message")
            .press("OK");
        run("yumIOC.collectGrabMeterFailure('m', 3)");
    }
};

QTEST_MAIN(TestCollectProgress)
#include "tst_CollectProgress.moc"
