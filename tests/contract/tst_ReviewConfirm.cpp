// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ReviewStage.h"

#include <QPushButton>
#include <QtTest>

/// The question that the review or the script's own lines end in, and what its answer starts.
class TestReviewConfirm : public ReviewStage
{
    Q_OBJECT

    void openRow(QJsonObject told = {})
    {
        told.insert("available", QJsonArray{package("foo", "1.0-1", "x86_64", {{"size", 20000}})});
        open(told);
    }

    void list() { run("yumIOC.listTransaction(base(installed=[member('foo')]))"); }

    DialogDriver::Expectation& expectReview()
    {
        return driver->expect("Apply").text(
            "Transaction to be performed:\n\tInstall: foo 1.0-1 (x86_64) [base]\n");
    }

    QString confirm() { return outcome("yumIOC.userconfirm()"); }

    static QString buttons(const QWidget* window)
    {
        QStringList texts;
        const auto found = window->findChildren<QPushButton*>();
        for (const QPushButton* button : found)
            texts.append(button->text());
        return texts.join(',');
    }

private Q_SLOTS:
    // ---- The review

    void aReviewIsAnswered_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("line");
        QTest::newRow("OK") << "OK"
                            << "1"
                            << "Applying: OK";
        QTest::newRow("Cancel") << "Cancel"
                                << "0"
                                << "Not Applying: Canceled";
        QTest::newRow("Escape") << ""
                                << "0"
                                << "Not Applying: Canceled";
    }

    void aReviewIsAnswered()
    {
        QFETCH(QString, button);
        QFETCH(QString, result);
        openRow();
        list();
        state().progressAct = 7;
        auto& dialog = expectReview().act(
            [](QWidget* window) { QCOMPARE(buttons(window), QString("OK,Cancel")); });
        if (button.isEmpty())
            dialog.pressKey(Qt::Key_Escape);
        else
            dialog.press(button);
        QCOMPARE(confirm(), result);

        QTEST(contract->logTexts().last(), "line");
        {
            const QMutexLocker locker(&engine().getLogEntries().mutex);
            QCOMPARE(engine().getLogEntries().entries.last().kind, Log::Action);
            QCOMPARE(engine().getLogEntries().entries.last().level, 0U);
        }
        QCOMPARE(state().applyConfirmed, result == "1");
        QCOMPARE(totals->count(), result.toInt());
        QCOMPARE(state().progressAct, 0U);
        QCOMPARE(ends->count(), 1);
        QCOMPARE(resets->count(), 1);
        QVERIFY(!state().transactionListed);
        QCOMPARE(state().transactionText, QString());
    }

    void aReviewThatIsClosedIsCanceled()
    {
        openRow();
        list();
        expectReview().act([](QWidget* window) { window->close(); }).leave();
        QCOMPARE(confirm(), QString("0"));
        QVERIFY(!state().applyConfirmed);
    }

    void theBarsAreResetWhileTheUserReads()
    {
        openRow();
        list();
        expectReview()
            .act([&](QWidget*) {
                QCOMPARE(resets->count(), 1);
                QCOMPARE(totals->count(), 0);
            })
            .press("OK");
        confirm();
    }

    // ---- The scale of the transaction

    void theTotalHasRoomForEachStage_data()
    {
        QTest::addColumn<bool>("presto");
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("cached");
        QTest::addColumn<Steps>("total");
        QTest::newRow("least") << false << "4.14.0" << true << Steps(9100);
        QTest::newRow("downloads") << false << "4.14.0" << false << Steps(33100);
        QTest::newRow("deltas") << true << "4.14.0" << true << Steps(11100);
        QTest::newRow("test") << false << "3.2.2" << true << Steps(11100);
        QTest::newRow("all") << true << "3.2.2" << false << Steps(37100);
    }

    void theTotalHasRoomForEachStage()
    {
        QFETCH(bool, presto);
        QFETCH(QString, version);
        QFETCH(bool, cached);
        const QJsonValue file = cached ? presentFile() : absentFile();
        open({{"presto", presto},
              {"version", version},
              {"available", QJsonArray{package("foo", "1.0-1", "x86_64",
                                               {{"size", 20000}, {"localPkg", file}})}}});
        list();
        expectReview().press("OK");
        confirm();
        QCOMPARE(totals->last().at(0).toString(), QString("Running Transaction: Total Progress"));
        QTEST(steps(totals, 1), "total");
        QCOMPARE(items->last().at(0).toString(), QString("Preparing"));
        QCOMPARE(steps(items, 1), Steps(0));
        QCOMPARE(steps(items, 2), Steps(1));
    }

    void downloadsGetTheShareOfWhatIsMissing_data()
    {
        QTest::addColumn<bool>("multi");
        QTest::addColumn<bool>("second");
        QTest::addColumn<quint64>("span");
        QTest::newRow("a third") << true << true << quint64(8000);
        QTest::newRow("all") << true << false << quint64(24000);
        // The cached one counts as more than it has.
        QTest::newRow("small ones, one by one") << false << true << quint64(18000);
    }

    void downloadsGetTheShareOfWhatIsMissing()
    {
        QFETCH(bool, multi);
        QFETCH(bool, second);
        const int size = multi ? 10000 : 30720;
        open({{"multi", multi},
              {"available",
               QJsonArray{package("foo", "1.0-1", "x86_64", {{"size", size}}),
                          package("here", "1.0-1", "x86_64",
                                  {{"size", multi ? 20000 : 1}, {"localPkg", presentFile()}})}}});
        run(QString("yumIOC.listTransaction(base(installed=[member('foo')%1]))")
                .arg(second ? ", member('here')" : ""));
        driver->expect("Apply").press("OK");
        confirm();
        QTEST(state().downloadSpan, "span");

        // One act a byte: half of the bytes take half of the stretch.
        Progress::Object* progress = engine().progress;
        progress->startItemAct("half", 1, static_cast<Steps>(size / 2));
        progress->startItem("behind it", 1, 1);
        QCOMPARE(steps(items, 1), Steps(100 + state().downloadSpan / 2));
        progress->endItemActs();
        QCOMPARE(steps(ends, 0), Steps(100 + state().downloadSpan));
    }

    void withNothingToDownloadTheStretchTakesNoRoom()
    {
        open({{"available", QJsonArray{package("foo", "1.0-1", "x86_64",
                                               {{"size", 20000}, {"localPkg", presentFile()}})}}});
        list();
        QCOMPARE(state().downloadTotal, quint64(20000));
        QCOMPARE(state().downloadLeft, quint64(0));
        state().downloadSpan = 5;
        expectReview().press("OK");
        confirm();
        QCOMPARE(state().downloadSpan, quint64(0));
        const int itemsBefore = items->count();
        engine().progress->endItemActs();
        QCOMPARE(steps(ends, 0), Steps(100));
        QCOMPARE(items->count(), itemsBefore);
    }

    void withNothingThatComesThereIsNoDivision()
    {
        open({{"installed", QJsonArray{installed("baz", "0.9-2", "x86_64", 20000)}}});
        run("yumIOC.listTransaction(base(removed=[member('baz', ver='0.9', rel='2')]))");
        state().downloadSpan = 5;
        driver->expect("Apply").press("OK");
        QCOMPARE(confirm(), QString("1"));
        QCOMPARE(state().downloadSpan, quint64(0));
        QCOMPARE(steps(totals, 1), Steps(9100));
    }

    // ---- Queries

    void theScriptsLinesPileUpToAQuery()
    {
        openRow();
        run("yumIOC.log(2, 'Importing a key')\nyumIOC.errorlog(0, 'Is this ok?')");
        driver->expect("Query")
            .text("Importing a key\nIs this ok?\n")
            .act([](QWidget* window) { QCOMPARE(buttons(window), QString("Yes,No")); })
            .press("Yes");
        QCOMPARE(confirm(), QString("1"));
        QCOMPARE(contract->logTexts().last(), QString("Confirmation: Yes"));
        QCOMPARE(state().transactionText, QString());
    }

    void linesDoNotJoinAListing()
    {
        openRow();
        list();
        run("yumIOC.log(2, 'by the way')\nyumIOC.errorlog(0, 'oh')");
        expectReview().press("Cancel");
        confirm();
        // Nor do they come back with the next question.
        driver->expect("Query").text("").press("No");
        QCOMPARE(confirm(), QString("0"));
        QCOMPARE(contract->logTexts().last(), QString("Confirmation: No"));
    }

    void aQueryLeavesTheBarsReset_data()
    {
        QTest::addColumn<QString>("button");
        QTest::newRow("Yes") << "Yes";
        QTest::newRow("No") << "No";
    }

    void aQueryLeavesTheBarsReset()
    {
        QFETCH(QString, button);
        openRow();
        state().progressAct = 3;
        driver->expect("Query").press(button);
        confirm();
        QCOMPARE(resets->count(), 1);
        QCOMPARE(totals->count(), 0);
        QCOMPARE(items->count(), 0);
        QCOMPARE(state().progressAct, 0U);
    }

    void aSecondQuestionLeavesTheFirstAnswer_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<bool>("confirmed");
        QTest::newRow("agreed, then No") << "OK"
                                         << "No" << true;
        QTest::newRow("agreed, then Yes") << "OK"
                                          << "Yes" << true;
        QTest::newRow("canceled, then Yes") << "Cancel"
                                            << "Yes" << false;
    }

    void aSecondQuestionLeavesTheFirstAnswer()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        openRow();
        list();
        expectReview().press(first);
        confirm();
        run("yumIOC.log(2, 'Is this ok?')");
        driver->expect("Query").text("Is this ok?\n").press(second);
        QCOMPARE(confirm(), QString(second == "Yes" ? "1" : "0"));
        QTEST(state().applyConfirmed, "confirmed");
    }
};

QTEST_MAIN(TestReviewConfirm)
#include "tst_ReviewConfirm.moc"
