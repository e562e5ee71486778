// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QtTest>

#include <memory>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString walkbackStart =
    QStringLiteral("Internal error: python exception occurred from C code.");

} // namespace

class TestVersions : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void versionTextsAsNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<long>("number");
        QTest::newRow("three parts") << "3.2.29" << 30229L;
        QTest::newRow("two parts") << "3.4" << 30400L;
        QTest::newRow("one part") << "3" << 30000L;
        QTest::newRow("four parts") << "3.2.8.5" << 30208L;
        QTest::newRow("letters behind digits") << "3.2rc1.8" << 30208L;
        QTest::newRow("letters only") << "a.2.8" << 208L;
        QTest::newRow("empty part") << "3..8" << 30008L;
        QTest::newRow("empty") << "" << 0L;
        QTest::newRow("today's") << "4.14.0" << 41400L;
    }

    void versionTextsAsNumbers()
    {
        QFETCH(QString, text);
        QFETCH(long, number);
        contract->play({{"version", text}});
        QCOMPARE(contract->engine().yumVersionStr(), text);
        QCOMPARE(contract->engine().yumVersion(), number);
    }

    void whatAVersionHas_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("distribGroups");
        QTest::addColumn<bool>("transTest");
        QTest::addColumn<bool>("pickledCache");
        QTest::addColumn<bool>("sqliteCache");
        QTest::newRow("none") << "" << false << true << true << false;
        QTest::newRow("2.3.1") << "2.3.1" << false << true << true << false;
        QTest::newRow("2.3.2") << "2.3.2" << false << true << true << true;
        QTest::newRow("2.4.3") << "2.4.3" << false << true << true << true;
        QTest::newRow("2.5.0") << "2.5.0" << true << true << true << true;
        QTest::newRow("2.9.1") << "2.9.1" << true << true << true << true;
        QTest::newRow("2.9.2") << "2.9.2" << true << true << false << true;
        QTest::newRow("3.2.2") << "3.2.2" << true << true << false << true;
        QTest::newRow("3.2.3") << "3.2.3" << true << false << false << true;
        QTest::newRow("4.14.0") << "4.14.0" << true << false << false << true;
    }

    void whatAVersionHas()
    {
        QFETCH(QString, version);
        contract->play({{"version", version}});
        QTEST(contract->engine().hasDistribGroups(), "distribGroups");
        QTEST(contract->engine().hasTransTest(), "transTest");
        QTEST(contract->engine().hasPickledCache(), "pickledCache");
        QTEST(contract->engine().hasSqliteCache(), "sqliteCache");
    }

    void theVersionMayBeInTheOtherModule()
    {
        contract->play({{"version", "2.0.4"}, {"versionAt", "cli"}});
        QCOMPARE(contract->engine().yumVersion(), 20004L);
    }

    void aVersionThatIsNowhereIsLookedForOnce()
    {
        contract->play({{"versionAt", "nowhere"}});
        QCOMPARE(contract->engine().yumVersion(), 0L);
        contract->engine().py("yum.__version__ = '3.2.8'");
        QCOMPARE(contract->engine().yumVersionStr(), QString());
    }

    void aVersionOutOfRangeIsWarnedOfOnce()
    {
        contract->play({{"version", "99999999999999999999999.1"}});
        driver->expect("VOK Yum Warning")
            .textContains("Internal error: yum version not understood: "
                          "99999999999999999999999.1 errno=34 (")
            .press("OK");
        contract->engine().yumVersion();
        QCOMPARE(driver->driven(), 1);
        contract->engine().yumVersion();
    }

    void questionsAreAskedOnce_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QJsonValue>("answer");
        QTest::addColumn<bool>("value");
        for (const char* method : {"usesSqlite", "usesPresto", "hasMultiProgress"}) {
            const auto row = [&](const char* what, const QJsonValue& answer, bool value) {
                QTest::newRow(qPrintable(QString("%1 %2").arg(method, what)))
                    << method << answer << value;
            };
            row("true", true, true);
            row("false", false, false);
            row("something else that is true", 1, false);
            row("nothing", QJsonValue(), false);
        }
    }

    void questionsAreAskedOnce()
    {
        QFETCH(QString, method);
        QFETCH(QJsonValue, answer);
        QFETCH(bool, value);
        contract->play({{"returns", QJsonObject{{method, answer}}}});
        QCOMPARE(ask(method), value);
        QCOMPARE(ask(method), value);
        QCOMPARE(contract->callCount(method), 1);
    }

    void aQuestionThatRaisesIsReportedAndMeansNo_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("usesSqlite") << "usesSqlite";
        QTest::newRow("usesPresto") << "usesPresto";
        QTest::newRow("hasMultiProgress") << "hasMultiProgress";
    }

    void aQuestionThatRaisesIsReportedAndMeansNo()
    {
        QFETCH(QString, method);
        contract->play({{"sqlite", true},
                        {"presto", true},
                        {"multi", true},
                        {"raise", QJsonObject{{method, QJsonObject{{"type", "ValueError"}}}}}});
        driver->expect(yumError).textContains(walkbackStart).press("OK");
        QVERIFY(!ask(method));
        QCOMPARE(driver->driven(), 1);
        QVERIFY2(!ask(method), "the answer stays for the run");
        QCOMPARE(contract->callCount(method), 1);
    }

    void cleanCommandsCallTheirMethod_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("heading");
        QTest::newRow("headers") << "cleanHeaders"
                                 << "Cleaning Headers";
        QTest::newRow("packages") << "cleanPackages"
                                  << "Cleaning Packages";
        QTest::newRow("metadata") << "cleanMetadata"
                                  << "Cleaning Xml Metadata";
        QTest::newRow("pickles") << "cleanPickles"
                                 << "Cleaning Pickled Cache";
        QTest::newRow("sqlite") << "cleanSqlite"
                                << "Cleaning Sqlite Cache";
    }

    void cleanCommandsCallTheirMethod()
    {
        QFETCH(QString, method);
        QFETCH(QString, heading);
        contract->play({});
        QVERIFY(clean(method));
        QCOMPARE(contract->calls(), QStringList({method + "()"}));
        QVERIFY(contract->calledHere(method));
        QCOMPARE(contract->logTexts(), QStringList({heading}));
        QCOMPARE(contract->engine().getLogEntries().entries.first().kind, Log::Action);
        QCOMPARE(contract->engine().getLogEntries().entries.first().level, 0U);
    }

    void aCodeOtherThanNoneIsAFailure_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QJsonValue>("result");
        QTest::addColumn<bool>("clean");
        QTest::newRow("zero") << "cleanHeaders" << QJsonValue(QJsonArray{0}) << true;
        QTest::newRow("one") << "cleanPackages" << QJsonValue(QJsonArray{1, QJsonArray{}}) << false;
        QTest::newRow("nothing") << "cleanMetadata" << QJsonValue() << false;
        QTest::newRow("no tuple") << "cleanPickles" << QJsonValue(0) << false;
        QTest::newRow("empty tuple") << "cleanSqlite" << QJsonValue(QJsonArray{}) << false;
        QTest::newRow("no number") << "cleanSqlite" << QJsonValue(QJsonArray{"0"}) << false;
    }

    void aCodeOtherThanNoneIsAFailure()
    {
        QFETCH(QString, method);
        QFETCH(QJsonValue, result);
        contract->play({{"returns", QJsonObject{{method, result}}}});
        QTEST(clean(method), "clean");
        OpenEngine::PyGILStateWrapper lock(true);
        QVERIFY(!PyErr_Occurred());
    }

    void questionsAskedWithinAStepKeepItsErrorLines()
    {
        // The first meter has the engine ask how files are downloaded.
        const QJsonArray steps{QJsonArray{"errorlog", 0, "the mirror says no"},
                               QJsonArray{"collectGrabMeterStart", "meter:1", "/base/repomd.xml",
                                          QJsonValue(), QJsonValue(), 1, "base/repomd.xml"}};
        contract->play({{"repos", QJsonObject{{"base", QJsonObject{{"enabled", 1}}}}},
                        {"meters", QJsonObject{{"setupRepos", steps}}},
                        {"raise", QJsonObject{{"setupRepos", QJsonObject{{"type", "RepoError"},
                                                                         {"text", "given up"}}}}}});
        driver->expect(yumError)
            .text("the mirror says no\ngiven up\nUnable to initialize")
            .press("Close");
        QVERIFY(!contract->collect());
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(contract->callCount("hasMultiProgress"), 1);
    }

    void aCleanThatRaisesIsReportedAndFails()
    {
        contract->play(
            {{"raise", QJsonObject{{"cleanHeaders", QJsonObject{{"type", "YumBaseError"}}}}}});
        driver->expect(yumError).textContains(walkbackStart).press("OK");
        QVERIFY(!contract->engine().cleanHeaders());
        QCOMPARE(driver->driven(), 1);
    }

    void cleanAllCallsWhatTheVersionHas_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("calls");
        const QStringList always{"cleanHeaders()", "cleanPackages()", "cleanMetadata()"};
        QTest::newRow("2.3.1") << "2.3.1" << always + QStringList{"cleanPickles()"};
        QTest::newRow("2.9.1") << "2.9.1"
                               << always + QStringList{"cleanPickles()", "cleanSqlite()"};
        QTest::newRow("3.0.0") << "3.0.0" << always + QStringList{"cleanSqlite()"};
        QTest::newRow("4.14.0") << "4.14.0" << always + QStringList{"cleanSqlite()"};
    }

    void cleanAllCallsWhatTheVersionHas()
    {
        QFETCH(QString, version);
        contract->play({{"version", version}});
        QVERIFY(contract->engine().cleanAll());
        QTEST(contract->calls(), "calls");
        QCOMPARE(contract->logTexts(), QStringList({"Cleaning All"}));
    }

    void cleanAllGoesOnAfterAFailure_data()
    {
        QTest::addColumn<QString>("method");
        for (const char* method :
             {"cleanHeaders", "cleanPackages", "cleanMetadata", "cleanPickles", "cleanSqlite"})
            QTest::newRow(method) << method;
    }

    void cleanAllGoesOnAfterAFailure()
    {
        QFETCH(QString, method);
        contract->play({{"version", "2.9.1"}, {"returns", QJsonObject{{method, QJsonArray{3}}}}});
        QVERIFY(!contract->engine().cleanAll());
        QCOMPARE(contract->calls().size(), 5);
    }

private:
    bool ask(const QString& method)
    {
        YumIO& engine = contract->engine();
        if (method == "usesSqlite")
            return engine.usesSqlite();
        return method == "usesPresto" ? engine.usesPresto() : engine.hasMultiProgress();
    }

    bool clean(const QString& method)
    {
        YumIO& engine = contract->engine();
        if (method == "cleanHeaders")
            return engine.cleanHeaders();
        if (method == "cleanPackages")
            return engine.cleanPackages();
        if (method == "cleanMetadata")
            return engine.cleanXmlMetadata();
        return method == "cleanPickles" ? engine.cleanPickledCache() : engine.cleanSqliteCache();
    }
};

QTEST_MAIN(TestVersions)
#include "tst_Versions.moc"
