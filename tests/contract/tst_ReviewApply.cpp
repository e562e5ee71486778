// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString review = QStringLiteral("Transaction to be performed:\n"
                                      "\tInstall: foo 1.0-1 (x86_64) [base]\n"
                                      "Performing the following to resolve dependencies:\n"
                                      "\tInstall: qux 1.0-1 (x86_64) [base]\n"
                                      "Total download size: 29Kb\n");

/// What a script does from the solver's first pass to the answer of the review.
const QStringList solve = {
    "whole = base(installed=[member('foo')], depinstalled=[member('qux')])",
    "yumIOC.dsTsCheck()",
    "yumIOC.log(2, 'TSINFO: Marking qux-1.0-1.x86_64 as install for foo')",
    "yumIOC.dsRestartLoop()",
    "yumIOC.dsTsCheck()",
    "yumIOC.listTransaction(whole)",
    "yumIOC.reportDownloadSize([Holder(size=10000), Holder(size=20000)])",
    "answers.append(yumIOC.userconfirm())",
};

} // namespace

/// The solver's lines and the review on the work thread of a whole Apply.
class TestReviewApply : public ContractTest
{
    Q_OBJECT

    /// foo, marked for installation, and qux, which it needs.
    void open(const QStringList& script)
    {
        contract->play({{"multi", true},
                        {"available",
                         QJsonArray{Contract::package("foo", {{"size", 10000}, {"ver", "1.0-1"}}),
                                    Contract::package("qux", {{"size", 20000}, {"ver", "1.0-1"}})}},
                        {"apply", QJsonArray::fromStringList(script)}});
        contract->engine().py("answers = []");
        QVERIFY(contract->collect());
        contract->row("foo")->action = Package::ActionInstall;
    }

    OpenEngine::ApplyState& state() { return contract->engine().applyState; }

private Q_SLOTS:
    void aReviewThatIsAgreedToIsApplied()
    {
        open(solve + QStringList{"yumIOC.log(1, 'Is this key ok?')",
                                 "answers.append(yumIOC.userconfirm())",
                                 "answers.append(yumIOC.postTransactionOutput(whole))"});
        driver->expect("Apply").text(review).press("OK");
        // A refusal later on doesn't take back what was agreed to.
        driver->expect("Query").text("Is this key ok?\n").press("No");
        QVERIFY(contract->engine().apply());
        QCOMPARE(contract->eval("str(answers)"), QString("[1, 0, '']"));

        QCOMPARE(state().depPackages, 2U);
        QCOMPARE(state().depActs, 1U + 2U);
        QCOMPARE(state().depHeaders, 2U);
        QCOMPARE(state().downloadTotal, quint64(30000));
        QCOMPARE(state().downloadSpan, quint64(24000));
        QCOMPARE(state().transactionActs, quint64(30000 + 60000));
        QCOMPARE(contract->row("qux")->applyAction, Package::ActionInstall);
        QCOMPARE(contract->row("qux")->action, Package::ActionNone);
        // The summary is left for nobody.
        QCOMPARE(state().transactionText, QString("\tInstalled: foo 1.0-1 (x86_64)\n"
                                                  "\tDependency Installed: qux 1.0-1 (x86_64)\n"));
        const QStringList log = contract->logTexts();
        QVERIFY(log.indexOf("Applying") < log.indexOf("Applying: OK"));
        QVERIFY(log.indexOf("Applying: OK") < log.indexOf("Confirmation: No"));
    }

    void aReviewThatIsCanceledLeavesTheMarks()
    {
        open(solve);
        driver->expect("Apply").text(review).press("Cancel");
        QVERIFY(!contract->engine().apply());
        QCOMPARE(contract->eval("str(answers)"), QString("[0]"));
        QVERIFY(contract->logTexts().contains("Not Applying: Canceled"));
        QCOMPARE(contract->callCount("applyFailCleanup"), 0);
        QCOMPARE(contract->row("foo")->action, Package::ActionInstall);
    }

    void theNextApplyStartsWithAnEmptyReview()
    {
        open(solve + QStringList{"yumIOC.postTransactionOutput(whole)",
                                 "yumIOC.log(1, 'behind the summary')"});
        for (int times = 0; times < 2; ++times) {
            driver->expect("Apply").text(review).press("OK");
            QVERIFY(contract->engine().apply());
            QCOMPARE(state().downloadTotal, quint64(30000));
            QCOMPARE(state().transactionActs, quint64(90000));
            QVERIFY(state().transactionText.endsWith("behind the summary\n"));
        }
    }

    void theLogGoesOnWhileTheUserReads()
    {
        open(solve);
        driver->expect("Apply")
            .act([&](QWidget*) {
                contract->engine().log(Log::Plain, 0, "meanwhile");
                QVERIFY(contract->logTexts().contains("meanwhile"));
            })
            .press("Cancel");
        QVERIFY(!contract->engine().apply());
    }

    void aFailedListingFailsTheApply()
    {
        open({"gone = member('foo')", "del gone.relatedto",
              "yumIOC.listTransaction(base(obsoleted=[gone]))", "answers.append('went on')"});
        driver->expect(yumError).text("Internal error: package has no relatedto\n").press("OK");
        driver->expect(yumError).textContains("Internal error: python exception").press("OK");
        QVERIFY(!contract->engine().apply());
        QCOMPARE(contract->eval("str(answers)"), QString("[]"));
        QVERIFY(contract->logTexts().filter("SystemError").size() > 0);
    }

    void anUnexpectedLineHoldsTheSolverUpButDoesNotStopIt()
    {
        open(QStringList{"yumIOC.log(2, 'TSINFO: Updating qux')"} + solve);
        driver->expect(yumError)
            .text("Internal error: unexpected TSINFO: Updating qux")
            .press("OK");
        driver->expect("Apply").text(review).press("OK");
        QVERIFY(contract->engine().apply());
        QCOMPARE(state().depPackages, 2U);
    }
};

QTEST_MAIN(TestReviewApply)
#include "tst_ReviewApply.moc"
