// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ApplyStage.h"

#include <QSignalSpy>
#include <QtTest>

#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

void ignoreChild(int) {}

/// What a descriptor leads to.
QPair<dev_t, ino_t> target(int descriptor)
{
    struct stat status = {};
    fstat(descriptor, &status);
    return {status.st_dev, status.st_ino};
}

} // namespace

/// The road of one Apply around the script's part of it.
class TestApply : public ApplyStage
{
    Q_OBJECT

private Q_SLOTS:
    void callsTheScriptAndFlushes()
    {
        collect();
        confirm();
        QVERIFY(contract->apply());
        QCOMPARE(road(), QStringList({"apply", "flush"}));
        QVERIFY2(!contract->calledHere("apply"), "an Apply runs on a work thread");
        QVERIFY(!contract->calledHere("flush"));
        QCOMPARE(contract->applied(), QString("['new'],[],[]"));
        QVERIFY(contract->logged(Log::Action, 0, "Applying"));
        QCOMPARE(contract->logTexts().filter("Applying").size(), 1);
    }

    void withoutTheUsersYesTheResultIsFalse()
    {
        collect();
        QVERIFY(!contract->apply());
        QCOMPARE(road(), QStringList({"apply", "flush"}));
        QCOMPARE(contract->row("new")->action, Package::ActionInstall);
        QCOMPARE(contract->engine().count(), 2);
    }

    void cancelInTheReviewEndsTheApplyQuietly()
    {
        collect("yumIOC.listTransaction(base())\nassert yumIOC.userconfirm() == 0");
        driver->expect("Apply").press("Cancel");
        QVERIFY(!contract->apply());
        QCOMPARE(road(), QStringList({"apply", "flush"}));
        QVERIFY(contract->logged(Log::Action, 0, "Not Applying: Canceled"));
        QCOMPARE(contract->row("new")->action, Package::ActionInstall);
    }

    void okInTheReviewIsTheResult()
    {
        collect("yumIOC.listTransaction(base())\nassert yumIOC.userconfirm() == 1");
        driver->expect("Apply").press("OK");
        QVERIFY(contract->apply());
        QVERIFY(contract->logged(Log::Action, 0, "Applying: OK"));
    }

    void theBarsSayWhatGoesOn()
    {
        collect("yumIOC.errorlog(0, 'x')\nraise yum.Errors.YumBaseError('stop')");
        QString total;
        QString item;
        driver->expect(yumError)
            .act([&](QWidget*) {
                total = contract->totalBar.text();
                item = contract->itemBar.text();
            })
            .press("Close");
        QVERIFY(!contract->apply());
        QVERIFY2(total.contains("Checking Dependencies: Total Progress"), qPrintable(total));
        QVERIFY2(item.contains("Preparing"), qPrintable(item));
        QVERIFY2(!contract->totalBar.text().contains("Checking"), "the bars are reset at the end");
        QCOMPARE(engine().progress, nullptr);
    }

    void eachApplyStartsFromACleanState()
    {
        collect();
        state().transactionText = "left over";
        state().transactionListed = true;
        state().applyConfirmed = true;
        state().progressAct = 7;
        state().depPackages = 7;
        state().depHeaders = 7;
        state().downloadTotal = 7;
        state().downloadLeft = 7;
        state().downloadSpan = 7;
        state().transactionActs = 7;
        state().lastTsCurrent = 7;
        state().deltaRebuilt = true;
        state().tsEventSeen = true;
        state().multi.multiActive = true;
        state().multi.meterThreads.insert(this, 1);
        OpenEngine::ApplyState seen;
        contract->probe([&](const QString& method) {
            if (method == "apply")
                seen = state();
        });
        QVERIFY(!contract->apply());
        QCOMPARE(seen.transactionText, QString());
        QVERIFY(!seen.transactionListed && !seen.applyConfirmed);
        QCOMPARE(seen.progressAct, 0u);
        QCOMPARE(seen.depPackages, 1u);
        QCOMPARE(seen.depHeaders, 1u);
        QCOMPARE(seen.downloadTotal, 0u);
        QCOMPARE(seen.downloadLeft, 0u);
        QCOMPARE(seen.transactionActs, 0u);
        QCOMPARE(seen.lastTsCurrent, 0);
        QVERIFY(!seen.deltaRebuilt && !seen.tsEventSeen);
        QVERIFY(!seen.multi.multiActive && seen.multi.meterThreads.isEmpty());
    }

    void marksAreCopiedAndOwnThemselves()
    {
        collect();
        contract->row("good")->applyAction = Package::ActionRemove;
        contract->row("good")->markedBy = nullptr;
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[],[]"));
        for (Package::Entry* entry : engine()) {
            QCOMPARE(entry->applyAction, entry->action);
            QCOMPARE(entry->markedBy, entry);
        }
    }

    // ---- What surrounds the script's part -------------------------------------------------------

    void outputOfTheProcessGoesToTheLogMeanwhile()
    {
        collect("os.write(1, b'out 1\\nrest')\nos.write(2, b'err 2\\n')\n"
                "os.system('echo out of a child')");
        const auto out = target(1);
        const auto err = target(2);
        bool captured = false;
        bool flushed = false;
        contract->probe([&](const QString& method) {
            const bool here = engine().capturers && target(1) != out && target(2) != err;
            if (method == "apply")
                captured = here;
            else if (method == "flush")
                flushed = !engine().capturers && target(1) == out && target(2) == err;
        });
        QVERIFY(!contract->apply());
        QVERIFY2(captured, "the script's part is captured");
        QVERIFY2(flushed, "the capture ends before flush");
        QCOMPARE(target(1), out);
        QCOMPARE(target(2), err);
        QVERIFY(contract->logged(Log::Output, 0, "out 1"));
        QVERIFY(contract->logged(Log::Output, 0, "restout of a child"));
        QVERIFY(contract->logged(Log::Error, 0, "err 2"));
    }

    void theCaptureEndsAfterAnException()
    {
        collect("os.write(2, b'last words\\n')\nraise yum.Errors.YumBaseError('stop')");
        const auto out = target(1);
        bool restored = false;
        contract->probe([&](const QString& method) {
            if (method == "flush")
                restored = target(1) == out;
        });
        driver->expect(yumError).press("Close");
        QVERIFY(!contract->apply());
        QVERIFY(restored);
        QVERIFY(contract->logged(Log::Error, 0, "last words"));
    }

    void theScriptReapsItsOwnChildren()
    {
        collect("status = os.system('exit 3')\nassert os.WEXITSTATUS(status) == 3, status");
        struct sigaction action = {};
        struct sigaction old = {};
        action.sa_handler = ignoreChild;
        sigemptyset(&action.sa_mask);
        sigaction(SIGCHLD, &action, &old);
        bool disabled = false;
        bool restored = false;
        contract->probe([&](const QString& method) {
            struct sigaction now = {};
            sigaction(SIGCHLD, nullptr, &now);
            if (method == "apply")
                disabled = now.sa_handler == SIG_DFL;
            else if (method == "flush")
                restored = now.sa_handler == ignoreChild;
        });
        QVERIFY(!contract->apply());
        sigaction(SIGCHLD, &old, nullptr);
        QVERIFY(disabled);
        QVERIFY(restored);
    }

    void childrenThatDiedBeforeAreReaped()
    {
        collect();
        const pid_t child = fork();
        if (child == 0)
            _exit(0);
        siginfo_t info = {};
        QCOMPARE(waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
        QVERIFY(!contract->apply());
        QVERIFY(contract->logged(Log::Warning, 0, QString("Reaped zombie child %1").arg(child)));
        QCOMPARE(road(), QStringList({"apply", "flush"}));
    }

    void theGuardGoesWithTheCapture_data()
    {
        QTest::addColumn<QString>("apply");
        QTest::addColumn<QString>("button");
        QTest::newRow("well") << ""
                              << "";
        QTest::newRow("understood") << "raise yum.Errors.YumBaseError('x')"
                                    << "Close";
        QTest::newRow("odd") << "raise SystemExit(1)"
                             << "OK";
    }

    void theGuardGoesWithTheCapture()
    {
        QFETCH(QString, apply);
        QFETCH(QString, button);
        collect(apply);
        bool gone = false;
        contract->probe([&](const QString& method) {
            if (method == "apply")
                engine().transactionGuard = std::make_unique<TransactionGuard>();
            else if (method == "flush")
                gone = !engine().transactionGuard;
        });
        if (!button.isEmpty())
            driver->expect(yumError).press(button);
        QVERIFY(!contract->apply());
        QVERIFY(gone);
        QVERIFY(!engine().transactionGuard);
    }

    void workAskedForMeanwhileIsRefused()
    {
        collect("yumIOC.listTransaction(base())\nyumIOC.userconfirm()");
        driver->expect("Apply")
            .act([&](QWidget*) {
                QVERIFY(!contract->apply());
                QVERIFY(!contract->collect());
                QVERIFY(!engine().collectOtherData());
                engine().clear();
            })
            .press("OK");
        QVERIFY(contract->apply());
        QCOMPARE(road(), QStringList({"apply", "flush"}));
        QCOMPARE(engine().count(), 2);
        QCOMPARE(contract->logTexts().filter("Applying").size(), 2); // and "Applying: OK"
    }

    void aHundredApplies()
    {
        collect("print('x' * 1000)\nos.write(1, b'y' * 1000)");
        for (int i = 0; i < 100; ++i)
            QVERIFY(!contract->apply());
        QCOMPARE(contract->callCount("flush"), 100);
    }
};

QTEST_MAIN(TestApply)
#include "tst_Apply.moc"
