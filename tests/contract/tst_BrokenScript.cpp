// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"
#include "support/ProcessPerTest.h"

#include <QtTest>

#include <memory>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString yumWarning = QStringLiteral("VOK Yum Warning");

} // namespace

/// A script that lacks what it must have is named, and work goes on as far as it can.
class TestBrokenScript : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void aCollectionWithoutAScriptObjectFails_data()
    {
        QTest::addColumn<bool>("locked");
        QTest::newRow("first collection") << false;
        QTest::newRow("later collection") << true;
    }

    void aCollectionWithoutAScriptObjectFails()
    {
        QFETCH(bool, locked);
        // The object refuses to be made anew, which a refresh says nothing of.
        contract->play({{"raise", QJsonObject{{"YumIO", QJsonObject{{"type", "SystemExit"}}}}}});
        OpenEngine& engine = contract->engine();
        QVERIFY(!engine.yumIO);
        engine.yumLocked = locked;
        driver->expect(yumError)
            .text("Internal error: yumIO.repos.repos not evaluable")
            .press("OK");
        QVERIFY(!contract->collect());
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(engine.yumLocked, locked);
        QCOMPARE(engine.getYumVar("basearch"), QString());

        contract->play({{"repos", QJsonObject{{"base", QJsonObject{{"enabled", 1}}}}}});
        QVERIFY2(contract->collect(), "the next refresh makes a new object");
    }

    void aMissingFlushIsReportedAndTheObjectIsMadeAnew()
    {
        contract->play({{"missing", QJsonArray{"flush"}}});
        driver->expect(yumError).text("Internal error: method flush not found\n").press("OK");
        contract->play({});
        QCOMPARE(driver->driven(), 1);
        QVERIFY(contract->engine().yumIO);
        QVERIFY(!PyErr_Occurred());
    }

    void aMissingCleanCommandIsReportedAndFails()
    {
        contract->play({{"missing", QJsonArray{"cleanHeaders"}}});
        driver->expect(yumError)
            .text("Internal error: method cleanHeaders not found\n")
            .press("OK");
        QVERIFY(!contract->engine().cleanHeaders());
        QCOMPARE(driver->driven(), 1);
        QVERIFY(!PyErr_Occurred());
    }

    void aMissingQuestionDoesNotEndTheCollection_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("family") << "getBiArch";
        QTest::newRow("comparison") << "isBetterThan";
    }

    void aMissingQuestionDoesNotEndTheCollection()
    {
        QFETCH(QString, method);
        const bool families = method == QLatin1String("getBiArch");
        contract->play({{"missing", QJsonArray{method}},
                        {"installed", QJsonArray{Contract::installed("i")}},
                        {"available", QJsonArray{Contract::package("a", {{"arch", "x86_64"}}),
                                                 Contract::package(
                                                     "a", {{"arch", families ? "x86_64" : "i686"}}),
                                                 Contract::package("b", {{"arch", "x86_64"}})}}});
        const QString text = QStringLiteral("Internal error: method %1 not found\n").arg(method);
        driver->expect(yumError).text(text).press("OK");
        QVERIFY(contract->collect());
        QCOMPARE(driver->driven(), 1);
        QCOMPARE(contract->rowNames(),
                 families ? QStringList({"a", "b", "i"}) : QStringList({"a", "a", "b", "i"}));
        if (families)
            return;
        const Package::Entry* second =
            contract->engine().entryHash.value(YumIO::EntryKey(false, "a", "i386"));
        QVERIFY(second);
        QCOMPARE(contract->engine().bestByName.value("a"), second);
    }

    void aPackageWithoutItsMethodsLeavesNoErrorBehind()
    {
        contract->play({});
        OpenEngine& engine = contract->engine();
        engine.py("class Bare: name, arch, size = 'bare', 'noarch', 1\n"
                  "bare = Bare()\n"
                  "Bare.returnSimple = property(lambda self: dict(group='Suite').__getitem__)\n");
        const PyRef package = engine.pyr("bare");
        driver->expect(yumError).text("Internal error: method printVer not found\n").press("OK");
        driver->expect(yumWarning)
            .text("Internal error: YumIO::pyString called with NULL")
            .press("OK");
        driver->expect(yumError).textContains("python exception occurred").press("OK");
        driver->expect(yumWarning).text("Internal error: time not understood").press("OK");
        Package::Entry* entry = nullptr;
        QVERIFY(engine.collectPkg(entry, Package::StateInstallable, package.get()));
        const std::unique_ptr<Package::Entry> owner(entry);
        Py_CLEAR(entry->pyObject);
        QCOMPARE(driver->driven(), 4);
        QCOMPARE(entry->kind, Package::KindSuite);
        QCOMPARE(entry->verRel, QString());
        QCOMPARE(entry->sizeBytes, quint64(1));
        QVERIFY(!PyErr_Occurred());
    }

    void aCallOfAnotherThreadIsRefused_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<bool>("refused");
        QTest::newRow("log") << "yumIOC.log(0, 'TSINFO: Updating x to 2')" << true;
        QTest::newRow("question") << "yumIOC.userconfirm()" << true;
        QTest::newRow("event") << "yumIOC.tsEvent('x', 40, 0, 1, 1, 1)" << true;
        QTest::newRow("meter") << "yumIOC.applyGrabMultiMeterStart(2, 100)" << true;
        QTest::newRow("output") << "yumIOC.stdoutWrite('said\\n')" << false;
        QTest::newRow("errors") << "yumIOC.stderrWrite('said\\n')" << false;
    }

    void aCallOfAnotherThreadIsRefused()
    {
        QFETCH(QString, call);
        QFETCH(bool, refused);
        contract->play({{"apply", QString("outcome = []\n"
                                          "def speak():\n"
                                          "    try:\n"
                                          "        outcome.append(%1)\n"
                                          "    except RuntimeError:\n"
                                          "        outcome.append('refused')\n"
                                          "other = threading.Thread(target=speak)\n"
                                          "other.start()\n"
                                          "other.join()\n"
                                          "sys.modules['__main__'].outcome = outcome\n")
                                      .arg(call)}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->eval("str(outcome)"), QString(refused ? "['refused']" : "[None]"));
        QCOMPARE(contract->logTexts().contains("said"), !refused);
        QVERIFY(!contract->engine().transactionGuard);
        QVERIFY(!contract->engine().applyState.multi.multiActive);
    }

    void aTransactionWithinACollectionIsGuardedToItsEndOnly()
    {
        bool guarded = false;
        contract->play(
            {{"meters", QJsonObject{{"setupRepos", QJsonArray{QJsonArray{"tsInitCallback", 1}}}}}});
        contract->probe([&](const QString& method) {
            if (method == "collectDone")
                guarded = contract->engine().transactionGuard != nullptr;
        });
        QVERIFY(contract->collect());
        QVERIFY(guarded);
        QVERIFY2(!contract->engine().transactionGuard, "a signal can end the program again");
    }

    void theEndWithoutAScriptObjectIsSilent()
    {
        contract->play({{"raise", QJsonObject{{"YumIO", QJsonObject{{"type", "SystemExit"}}}}}});
        contract->engine().yumLocked = true;
        contract.reset();
        QCOMPARE(driver->driven(), 0);
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestBrokenScript tests;
    // Newer rpm modules can be loaded into one interpreter of a process only.
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_BrokenScript.moc"
