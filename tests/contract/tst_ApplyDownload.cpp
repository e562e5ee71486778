// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/MeterStage.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString yumWarning = QStringLiteral("VOK Yum Warning");

} // namespace

/// Files that come one after another, and what is common to all downloads.
class TestApplyDownload : public MeterStage
{
    Q_OBJECT

    QString start(const QString& name, const QString& size = "500", const QString& text = "'t'")
    {
        return call("applyGrabMeterStart",
                    QString("meter('m'), %1, 'url', 'base', %2, %3").arg(name, size, text));
    }

private Q_SLOTS:
    void aFileIsAnItemOfItsSize()
    {
        open();
        QCOMPARE(start("'foo-1-1.x86_64.rpm'"), QString("None"));
        QCOMPARE(items, QStringList({"Downloading foo-1-1.x86_64 header"}));
        QCOMPARE(progress->itemMaximum, Steps(500));
        QCOMPARE(call("applyGrabMeterUpdate", "meter('m'), 200"), QString("None"));
        QCOMPARE(progress->itemValue, Steps(200));
    }

    void labelsTellHeadersFromPackages()
    {
        open();
        start("'foo.hdr'");
        state().applyConfirmed = true;
        start("'foo.rpm'");
        QCOMPARE(items, QStringList({"Downloading foo header", "Downloading foo"}));
    }

    void theNameIsCutToWhatAPersonReads_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char* name, const char* shown) {
            QTest::newRow(qPrintable(QString(name).replace("\n", " ")))
                << QString(name) << QString(shown);
        };
        row("foo", "foo");
        row("/var/cache/base/packages/foo-1-1.noarch.rpm", "foo-1-1.noarch");
        row("http://host/headers/foo-0-1-1.i386.hdr", "foo-0-1-1.i386");
        row("foo.RPM", "foo.RPM");
        row("foo.hdr.rpm", "foo.hdr");
        row("foo.rpm.gz", "foo.rpm.gz");
        row(".rpm", "");
        row("path/", "");
        row("http://host/vantry?user=a&pass=b&path=foo.rpm", "foo");
        row("http://host/vantry?user=a&pass=b&path=/x/foo.rpm", "foo");
        row("http://host/vantry?user=&pass=&path=foo.hdr", "foo");
        row("http://host/Vantry?user=a&pass=b&path=foo.rpm", "Vantry?user=a&pass=b&path=foo");
        row("vantr=a&pass=b&path=foo.rpm", "foo");
        row("vantry?user=a&path=foo.rpm", "vantry?user=a&path=foo");
        row("vantry?user=a\n&pass=b&path=foo.rpm", "foo");
    }

    void theNameIsCutToWhatAPersonReads()
    {
        open();
        state().applyConfirmed = true;
        QFETCH(QString, name);
        QFETCH(QString, shown);
        start("'" + name.replace("\n", "\\n") + "'");
        QCOMPARE(items, QStringList({"Downloading " + shown}));
    }

    void anEmptyNameFallsBackToTheText_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("empty") << "''"
                               << "'x/foo.rpm'"
                               << "foo";
        QTest::newRow("none") << "None"
                              << "'foo.rpm'"
                              << "foo";
        QTest::newRow("bytes") << "b''"
                               << "b'foo.rpm'"
                               << "foo";
        QTest::newRow("neither") << "None"
                                 << "None"
                                 << "";
        QTest::newRow("both") << "'bar.rpm'"
                              << "'foo.rpm'"
                              << "bar";
    }

    void anEmptyNameFallsBackToTheText()
    {
        open();
        state().applyConfirmed = true;
        QFETCH(QString, name);
        QFETCH(QString, text);
        QFETCH(QString, shown);
        start(name, "500", text);
        QCOMPARE(items, QStringList({"Downloading " + shown}));
    }

    void theDeltaTextStartsTheRebuildWhateverTheRest_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("size");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<Steps>("maximum");
        QTest::newRow("named") << "'foo.rpm'"
                               << "40" << false << Steps(40);
        QTest::newRow("a name that isn't understood") << "7"
                                                      << "40" << false << Steps(40);
        QTest::newRow("no size") << "None"
                                 << "None" << false << Steps(1);
        QTest::newRow("in a batch") << "'foo.rpm'"
                                    << "40" << true << Steps(40);
    }

    void theDeltaTextStartsTheRebuildWhateverTheRest()
    {
        open({}, 5000);
        QFETCH(QString, name);
        QFETCH(QString, size);
        QFETCH(bool, multi);
        QFETCH(Steps, maximum);
        state().applyConfirmed = true;
        state().multi.multiActive = multi;
        start(name, size, "'<delta rebuild>'");
        QCOMPARE(items, QStringList({"Finishing RPM rebuild from deltas"}));
        QCOMPARE(progress->totalValue, Steps(5000));
        QCOMPARE(progress->itemStart, Steps(5000));
        QCOMPARE(progress->itemEnd, Steps(7000));
        QCOMPARE(progress->itemMaximum, maximum);
        QVERIFY(state().deltaRebuilt);
        QCOMPARE(act(), 0U);
    }

    void updatesMoveTheRebuild()
    {
        open();
        start("'foo'", "40", "'<delta rebuild>'");
        call("applyGrabMeterUpdate", "meter('m'), 20");
        QCOMPARE(progress->itemValue, Steps(20));
        QCOMPARE(items.size(), 1);
    }

    void aTextThatOnlyBeginsLikeTheRebuildIsAName()
    {
        open();
        start("''", "40", "'<delta rebuild> '");
        QCOMPARE(items, QStringList({"Downloading <delta rebuild>  header"}));
        QVERIFY(!state().deltaRebuilt);
    }

    void downloadsGrowTheActs_data()
    {
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<QString>("size");
        QTest::addColumn<quint32>("acts");
        QTest::addColumn<Steps>("maximum");
        QTest::newRow("header") << false << false << "50000" << 10U << Steps(50000);
        QTest::newRow("header, parallel") << false << true << "50000" << 10U << Steps(50000);
        QTest::newRow("header of unknown size") << false << false << "None" << 10U << Steps(1);
        QTest::newRow("package") << true << false << "50000" << 50000U << Steps(50000);
        QTest::newRow("small package") << true << false << "100" << 10240U << Steps(100);
        QTest::newRow("package, parallel") << true << true << "100" << 100U << Steps(100);
        QTest::newRow("unknown size") << true << false << "None" << 10240U << Steps(1);
        QTest::newRow("unknown size, parallel") << true << true << "None" << 1U << Steps(1);
        QTest::newRow("negative") << true << true << "-5" << 0U << Steps(0);
        QTest::newRow("beyond 64 bits") << true << true << "1 << 70" << 1U << Steps(1);
    }

    void downloadsGrowTheActs()
    {
        QFETCH(bool, confirmed);
        QFETCH(bool, multi);
        QFETCH(QString, size);
        QFETCH(quint32, acts);
        QFETCH(Steps, maximum);
        open({{"multi", multi}});
        state().applyConfirmed = confirmed;
        state().progressAct = 7;
        start("'foo.rpm'", size);
        QCOMPARE(act(), acts + 7);
        QCOMPARE(progress->itemMaximum, maximum);
        QCOMPARE(progress->itemEnd, static_cast<Steps>(acts + 7));
    }

    void theActsAre32BitsWide()
    {
        // As much as the budget knows, of which the act number holds the low half only.
        open({{"multi", true}});
        const Steps acts = 5000000000ULL;
        progress->setupItemActs(1000, acts);
        state().applyConfirmed = true;
        start("'foo.rpm'", "3000000000");
        QCOMPARE(progress->itemEnd, Steps(600));
        start("'bar.rpm'", "1400000000");
        QCOMPARE(act(), static_cast<quint32>(4400000000ULL - (1ULL << 32)));
        QCOMPARE(progress->actIndex, static_cast<Steps>(act()));
        QVERIFY(progress->itemEnd < 600);
    }

    void aSizeThatIsNoNumberIsReportedAndCountsAsNothing()
    {
        open({{"multi", true}});
        state().applyConfirmed = true;
        driver->expect(yumWarning)
            .text("Internal error: collect grab size not understood")
            .press("OK");
        QCOMPARE(start("'foo.rpm'", "'500'"), QString("None"));
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items, QStringList({"Downloading foo"}));
        QCOMPARE(progress->itemMaximum, Steps(0));
        QCOMPARE(act(), 0U);
    }

    void aTextThatIsNoTextIsReported()
    {
        open();
        driver->expect(yumError).text("Internal error: unexpected progress text type").press("OK");
        QCOMPARE(start("'foo.rpm'", "5", "7"), QString("None"));
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items, QStringList({"Downloading foo header"}));
    }

    void aNameThatIsNoTextIsReportedAndTheTextTaken()
    {
        open();
        driver->expect(yumError).text("Internal error: unexpected progress name type").press("OK");
        QCOMPARE(start("['foo.rpm']", "5", "'bar'"), QString("None"));
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(items, QStringList({"Downloading bar header"}));
    }

    void endAndFailureOfAPlainMeterChangeNothing()
    {
        open();
        start("'foo.rpm'");
        call("applyGrabMeterUpdate", "meter('m'), 200");
        const quint32 before = act();
        QCOMPARE(call("applyGrabMeterEnd", "meter('m'), 500"), QString("None"));
        QCOMPARE(call("applyGrabMeterFailure", "meter('m'), 'timed out'"), QString("None"));
        QCOMPARE(call("applyGrabMeterFailure", "meter('m'), None"), QString("None"));
        QCOMPARE(progress->itemValue, Steps(200));
        QCOMPARE(act(), before);
        QCOMPARE(items.size(), 1);
        QVERIFY(state().multi.meterThreads.isEmpty());
        QVERIFY2(contract->logTexts().filter("timed out").isEmpty(), "the message isn't shown");
    }

    void aFailureMessageThatIsNoTextIsReported()
    {
        open();
        driver->expect(yumError)
            .text("Internal error: unexpected progress failure message")
            .press("OK");
        QCOMPARE(call("applyGrabMeterFailure", "meter('m'), 7"), QString("None"));
        QCOMPARE(driver->driven(), 1);
    }

    void aNegativeAmountIsNone()
    {
        open();
        start("'foo.rpm'");
        call("applyGrabMeterUpdate", "meter('m'), 200");
        call("applyGrabMeterUpdate", "meter('m'), -1");
        QCOMPARE(progress->itemValue, Steps(0));
    }

    void argumentsThatDoNotFitAreATypeError_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("arguments");
        const auto row = [](const char* function, const char* arguments) {
            QTest::newRow(qPrintable(QString("%1(%2)").arg(function, arguments)))
                << QString(function) << QString(arguments);
        };
        row("applyGrabMeterStart", "1, 'a', 'b', 'c', 5");
        row("applyGrabMeterStart", "1, 'a', 'b', 'c', 5, 't', 'more'");
        row("applyGrabMeterUpdate", "1");
        row("applyGrabMeterUpdate", "1, 'x'");
        row("applyGrabMeterUpdate", "1, None");
        row("applyGrabMeterEnd", "1, 'x'");
        row("applyGrabMeterFailure", "1");
        row("applyGrabMultiMeterStart", "'2', 5");
        row("applyGrabMultiMeterStart", "2");
        row("applyGrabMultiMeterNew", "1, 2");
        row("applyGrabMultiMeterRemove", "*()");
    }

    void argumentsThatDoNotFitAreATypeError()
    {
        open();
        state().applyConfirmed = true;
        QFETCH(QString, function);
        QFETCH(QString, arguments);
        QCOMPARE(call(function, arguments), QString("TypeError"));
        QVERIFY(items.isEmpty());
        QVERIFY(!state().multi.multiActive);
        QCOMPARE(act(), 0U);
    }

    void metersAreNeitherReadNorKept()
    {
        open({{"multi", true}});
        run("class Strict:\n"
            "    def __getattribute__(self, name):\n"
            "        raise AssertionError(name)\n"
            "    def __eq__(self, other):\n"
            "        raise AssertionError('compared')\n"
            "    __hash__ = None\n"
            "strict = Strict()\n"
            "before = sys.getrefcount(strict)\n"
            "for batch in False, True:\n"
            "    if batch:\n"
            "        yumIOC.applyGrabMultiMeterStart(1, 500)\n"
            "        yumIOC.applyGrabMultiMeterNew(strict)\n"
            "    yumIOC.applyGrabMeterStart(strict, 'a', strict, strict, 500, 't')\n"
            "    yumIOC.applyGrabMeterUpdate(strict, 5)\n"
            "    yumIOC.applyGrabMeterFailure(strict, 'x')\n"
            "    yumIOC.applyGrabMeterEnd(strict, 5)\n");
        QCOMPARE(state().multi.meterThreads.size(), 1);
        QCOMPARE(contract->eval("str(sys.getrefcount(strict) - before)"), QString("0"));
    }

    void callsOutsideAnApplyAreSurvived()
    {
        open();
        engine().progress = nullptr;
        start("'foo.rpm'");
        start("'foo.rpm'", "5", "'<delta rebuild>'");
        call("applyGrabMultiMeterStart", "1, 5");
        call("applyGrabMultiMeterNew", "meter('m')");
        start("'foo.rpm'");
        for (const char* function : {"applyGrabMeterUpdate", "applyGrabMeterEnd"})
            QCOMPARE(call(function, "meter('m'), 5"), QString("None"));
        QCOMPARE(call("applyGrabMeterFailure", "meter('m'), ''"), QString("None"));
        QCOMPARE(call("applyGrabMultiMeterEnd", "*()"), QString("None"));
        QVERIFY(items.isEmpty());
    }
};

QTEST_MAIN(TestApplyDownload)
#include "tst_ApplyDownload.moc"
