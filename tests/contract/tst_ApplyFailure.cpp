// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ApplyStage.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString yumWarning = QStringLiteral("VOK Yum Warning");
const QString walkback =
    QStringLiteral("Internal error: python exception occurred from C code.\nWhen reporting this "
                   "issue, please include the contents of the\nLog window, which should contain a "
                   "walkback.");

} // namespace

/// An Apply whose script raises or returns something odd.
class TestApplyFailure : public ApplyStage
{
    Q_OBJECT

private Q_SLOTS:
    void aFailureThatIsUnderstoodCleansUp_data()
    {
        QTest::addColumn<QString>("raise");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("button");
        QTest::newRow("YumBaseError") << "yum.Errors.YumBaseError('no room')"
                                      << "no room\nUnable to apply changes"
                                      << "Close";
        QTest::newRow("BdbQuit") << "bdb.BdbQuit('left')"
                                 << "left\nUnable to apply changes"
                                 << "Close";
        QTest::newRow("IOError")
            << "IOError('no disk')"
            << "Unable to apply changes: I/O Error: no disk\n\nEmitting a walkback to the Log "
               "window."
            << "OK";
        QTest::newRow("KeyboardInterrupt") << "KeyboardInterrupt()"
                                           << "Unable to apply changes: KeyboardInterrupt\n"
                                           << "OK";
        QTest::newRow("AssertionError") << "AssertionError('odd')"
                                        << "Internal error: python assertion failed\n"
                                        << "OK";
        QTest::newRow("RepoError") << "yum.Errors.RepoError('gone')" << walkback << "OK";
        QTest::newRow("locked database")
            << "yum.Errors.RepoError('database is locked')"
            << "Unable to apply changes: a repository's sqlite database was locked unexpectedly"
            << "Close";
        QTest::newRow("mirrors")
            << "yum.Errors.NoMoreMirrorsRepoError('all dead')"
            << "Unable to apply changes: metadata unavailable from all repo mirrors:\nall dead"
            << "OK";
        QTest::newRow("text that isn't one")
            << "(lambda e: (setattr(e, 'value', ['a', 3]), e)[1])(yum.Errors.YumBaseError(''))"
            << "(a,\n 3)\nUnable to apply changes"
            << "Close";
    }

    void aFailureThatIsUnderstoodCleansUp()
    {
        QFETCH(QString, raise);
        QFETCH(QString, text);
        QFETCH(QString, button);
        collect("raise " + raise);
        confirm();
        driver->expect(yumError).textContains(text).press(button);
        QVERIFY(!contract->apply());
        QCOMPARE(road(), QStringList({"apply", "applyFailCleanup", "flush"}));
        QVERIFY(!engine().capturers);
        QCOMPARE(contract->row("new")->action, Package::ActionInstall);
    }

    void anExceptionWithoutATextIsReportedAllTheSame()
    {
        collect("class Mute(yum.Errors.YumBaseError):\n"
                "    def __init__(self): pass\n"
                "    def __str__(self): return 1 // 0\n"
                "    value = property(__str__)\n"
                "raise Mute()");
        confirm();
        driver->expect(yumError).text(walkback).press("OK");
        driver->expect(yumWarning).press("OK");
        driver->expect(yumError).textContains("Unable to apply changes").press("Close");
        QVERIFY(!contract->apply());
        QCOMPARE(road(), QStringList({"apply", "applyFailCleanup", "flush"}));
    }

    void anyOtherExceptionIsAnInternalErrorAndKeepsTheResult_data()
    {
        QTest::addColumn<QString>("apply");
        QTest::addColumn<bool>("confirmed");
        for (bool confirmed : {true, false}) {
            const auto add = [&](const char* what, const char* apply) {
                QTest::newRow(qPrintable(QString("%1, %2").arg(what).arg(confirmed)))
                    << apply << confirmed;
            };
            add("ValueError", "raise ValueError('odd')");
            add("no exception class", "raise 42");
            add("exit", "import sys\nsys.exit(3)");
            add("generator exit", "raise GeneratorExit()");
            add("base exception", "raise BaseException('bare')");
            add("deep recursion", "def down(): down()\ndown()");
            add("no python", "this is no python");
            add("wrong arguments", "yumIOC.tsEvent('too', 'few')");
        }
    }

    void anyOtherExceptionIsAnInternalErrorAndKeepsTheResult()
    {
        QFETCH(QString, apply);
        QFETCH(bool, confirmed);
        collect(apply);
        if (confirmed)
            confirm();
        driver->expect(yumError).text(walkback).press("OK");
        QCOMPARE(contract->apply(), confirmed);
        QCOMPARE(road(), QStringList({"apply", "flush"}));
    }

    void whateverApplyReturnsIsDropped_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("text") << QJsonValue("garbage");
        QTest::newRow("false") << QJsonValue(false);
        QTest::newRow("list") << QJsonValue(QJsonArray{1, QJsonValue(), "x"});
    }

    void whateverApplyReturnsIsDropped()
    {
        QFETCH(QJsonValue, value);
        contract->play({{"returns", QJsonObject{{"apply", value}}}});
        QVERIFY(contract->collect());
        contract->forgetCalls();
        confirm();
        QVERIFY(contract->apply());
        QCOMPARE(road(), QStringList({"apply", "flush"}));
    }

    void aMissingApplyIsReported()
    {
        contract->play({{"missing", QJsonArray{"apply"}}});
        QVERIFY(contract->collect());
        contract->forgetCalls();
        driver->expect(yumError).text("Internal error: method apply not found\n").press("OK");
        QVERIFY(!contract->apply());
        QCOMPARE(road(), QStringList({"flush"}));
    }

    void aCleanupThatFailsChangesNothing_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("reported");
        QTest::newRow("ValueError") << "ValueError" << true;
        QTest::newRow("YumBaseError") << "YumBaseError" << true;
        // One that the whole process expects.
        QTest::newRow("SystemExit") << "SystemExit" << false;
    }

    void aCleanupThatFailsChangesNothing()
    {
        QFETCH(QString, type);
        QFETCH(bool, reported);
        const QJsonObject trouble{{"type", type}, {"text", "in the cleanup"}};
        contract->play({{"raise", QJsonObject{{"applyFailCleanup", trouble}, {"flush", trouble}}},
                        {"apply", "raise yum.Errors.YumBaseError('first')"}});
        QVERIFY(contract->collect());
        contract->forgetCalls();
        driver->expect(yumError).textContains("first").press("Close");
        for (int i = 0; reported && i < 2; ++i)
            driver->expect(yumError).text(walkback).press("OK");
        QVERIFY(!contract->apply());
        QCOMPARE(road(), QStringList({"apply", "applyFailCleanup", "flush"}));
        driver->verify();
        QVERIFY2(contract->collect(), "nothing is left pending");
    }

    void aFlushThatFailsIsToldAndKeepsTheResult()
    {
        // Nothing that the Apply expects is expected any more.
        contract->play({{"raise", QJsonObject{{"flush", QJsonObject{{"type", "YumBaseError"}}}}}});
        QVERIFY(contract->collect());
        contract->forgetCalls();
        confirm();
        driver->expect(yumError).text(walkback).press("OK");
        QVERIFY(contract->apply());
        QCOMPARE(road(), QStringList({"apply", "flush"}));
    }

    void aHeaderThatCannotBeAskedForCountsAsAbsent()
    {
        contract->play({{"available", QJsonArray{Contract::package("new")}},
                        {"raise", QJsonObject{{"localHdr", QJsonObject{{"type", "SystemExit"},
                                                                       {"keep", true}}}}}});
        QVERIFY(contract->collect());
        contract->mark({{"new", Package::ActionInstall}});
        contract->forgetCalls();
        confirm();
        QVERIFY(contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[],[]"));
        QCOMPARE(state().depHeaders, 1u);
    }

    void anApplyAfterAFailedOneWorks()
    {
        collect("if callable(globals().get('once')): raise yum.Errors.YumBaseError('first')");
        engine().py("once = print");
        driver->expect(yumError).press("Close");
        QVERIFY(!contract->apply());
        engine().py("del once");
        confirm();
        QVERIFY(contract->apply());
        QCOMPARE(road(), QStringList({"apply", "applyFailCleanup", "flush", "apply", "flush"}));
    }
};

QTEST_MAIN(TestApplyFailure)
#include "tst_ApplyFailure.moc"
