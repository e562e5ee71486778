// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/TransactionStage.h"

/// Downloads and transactions that come out of a real Apply, on its work thread.
class TestTransactionApplied : public TransactionStage
{
    Q_OBJECT

    /// Plays `script` as what the Apply of a fresh package, an update and a removal does. Notes
    /// what is begun, each with where it begins on the total.
    bool apply(const QString& script, const QJsonObject& more = {})
    {
        QJsonObject told = more;
        told.insert("apply", script);
        openTransaction(told);
        engine().progress = nullptr;
        progress.reset();
        begun.clear();
        notes.clear();
        contract->row("fresh")->action = Package::ActionInstall;
        contract->row("kernel")->action = Package::ActionUpdate;
        contract->row("gone")->action = Package::ActionRemove;
        contract->probe([this](const QString& step) {
            if (step == "apply") {
                // The signals come on this thread, and the object goes before the Apply ends.
                Progress::Object* shown = engine().progress;
                QObject::connect(
                    shown, &Progress::Object::startItemSig, shown,
                    [this](const QString& label, Steps total) {
                        begun.append(QString("%1 @%2").arg(label).arg(total));
                    },
                    Qt::DirectConnection);
                QObject::connect(
                    shown, &Progress::Object::endItemActsSig, shown,
                    [this](Steps total) { begun.append(QString("end @%1").arg(total)); },
                    Qt::DirectConnection);
            } else if (step == "note") {
                notes.append(engine().transactionGuard ? "guarded" : "unguarded");
            }
        });
        return engine().apply();
    }

    static QString listing()
    {
        return "yumIOC.listTransaction(base(installed=[member('fresh')],\n"
               "    updated=[member('kernel')], removed=[member('gone', ver='1', rel='1')]))\n";
    }

    static QString transaction()
    {
        return "yumIOC.gpgsigcheck()\n"
               "probe('note')\n"
               "yumIOC.tsInitCallback(0)\n"
               "probe('note')\n"
               "yumIOC.tsInitCallback(1)\n"
               "def package(name):\n"
               "    return Holder(name=name, arch='x86_64')\n"
               "yumIOC.tsEvent(package('fresh'), 30, 9, 9, 1, 5)\n"
               "yumIOC.tsEvent(package('kernel'), 10, 4, 9, 2, 5)\n"
               "yumIOC.tsEvent(package('kernel'), 10, 9, 9, 2, 5)\n"
               "yumIOC.tsEvent('gone', 40, 9, 9, 3, 5)\n"
               "yumIOC.tsEvent('kernel', 90, 9, 9, 4, 5)\n"
               "yumIOC.tsEvent('kernel', 90, 9, 9, 5, 5)\n"
               "probe('note')\n"
               "yumIOC.postTransactionOutput(base())\n";
    }

    QStringList begun;
    QStringList notes;

private Q_SLOTS:
    void aWholeApplyFillsItsTotal()
    {
        driver->expect("Apply").press("OK");
        QVERIFY(apply("yumIOC.applyGrabMeterStart(meter('h'), 'x/fresh.hdr', '', '', None, '')\n" +
                          listing() +
                          "assert yumIOC.userconfirm() == 1\n"
                          "a, b = meter('a'), meter('b')\n"
                          "yumIOC.applyGrabMultiMeterStart(2, 150000)\n"
                          "yumIOC.applyGrabMultiMeterNew(a)\n"
                          "yumIOC.applyGrabMultiMeterNew(b)\n"
                          "yumIOC.applyGrabMeterStart(a, 'x/fresh.rpm', '', '', 100000, '')\n"
                          "yumIOC.applyGrabMeterStart(b, 'x/kernel.rpm', '', '', 50000, '')\n"
                          "yumIOC.applyGrabMeterUpdate(a, 70000)\n"
                          "yumIOC.applyGrabMeterFailure(a, 'timed out')\n"
                          "yumIOC.applyGrabMeterEnd(b, 50000)\n"
                          "yumIOC.applyGrabMeterStart(a, 'x/fresh.rpm', '', '', 100000, '')\n"
                          "yumIOC.applyGrabMeterEnd(a, 100000)\n"
                          "yumIOC.applyGrabMultiMeterRemove(a)\n"
                          "yumIOC.applyGrabMultiMeterEnd()\n" +
                          transaction(),
                      {{"multi", true}}));
        // 610,240 acts and their twentieth over 8000 steps.
        const auto at = [](quint64 acts) { return 25100 + 8000 * acts / 640752; };
        QCOMPARE(begun.takeFirst(), QString("Downloading fresh header @100"));
        QCOMPARE(begun,
                 QStringList(
                     {"end @10000", "Preparing @0", "Downloading 2 packages @100", "end @24100",
                      "end @24100", "Preparing to Run Transaction @24100",
                      "Installing fresh @25100", QString("Updating kernel @%1").arg(at(330512)),
                      QString("Removing gone @%1").arg(at(480512)),
                      QString("Completing update for: kernel @%1").arg(at(510512)),
                      QString("Completing update for: kernel @%1").arg(at(630512)), "end @33100"}));
        QCOMPARE(notes, QStringList({"unguarded", "guarded", "guarded"}));
        QVERIFY(!engine().transactionGuard);
        QVERIFY(contract->logTexts().contains("Updating kernel"));
        QVERIFY(!contract->logTexts().contains("timed out"));
    }

    void filesOneAfterAnotherFillTheSameStretch()
    {
        driver->expect("Apply").press("OK");
        QVERIFY(apply(listing() +
                      "yumIOC.userconfirm()\n"
                      "for name, size in ('fresh', 100000), ('kernel', 50000):\n"
                      "    yumIOC.applyGrabMeterStart(meter(name), name, '', '', size, '')\n"
                      "    yumIOC.applyGrabMeterEnd(meter(name), size)\n" +
                      transaction()));
        QCOMPARE(begun.mid(1, 4), QStringList({"Preparing @0", "Downloading fresh @100",
                                               "Downloading kernel @16100", "end @24100"}));
        QCOMPARE(begun.last(), QString("end @33100"));
    }

    void aTransactionWithoutDownloadsTakesNoRoomForThem()
    {
        QTemporaryFile cached;
        QVERIFY(cached.open());
        QJsonObject fresh = sized(Contract::package("fresh"), 100000);
        fresh.insert("localPkg", cached.fileName());
        driver->expect("Apply").press("OK");
        QVERIFY(apply("yumIOC.listTransaction(base(installed=[member('fresh')]))\n"
                      "yumIOC.userconfirm()\n"
                      "yumIOC.tsInitCallback(0)\n"
                      "yumIOC.tsInitCallback(1)\n",
                      {{"available", QJsonArray{fresh}}}));
        QCOMPARE(begun.last(), QString("Preparing to Run Transaction @100"));
    }

    void whatBreaksOffLeavesNothingForTheNextApply()
    {
        driver->expect("Apply").press("OK");
        driver->expect("VOK Yum Error").textContains("the disk is full").press("Close");
        QVERIFY(!apply(listing() + "yumIOC.userconfirm()\n"
                                   "yumIOC.applyGrabMultiMeterStart(2, 150000)\n"
                                   "yumIOC.applyGrabMultiMeterNew(meter('a'))\n"
                                   "yumIOC.tsInitCallback(0)\n"
                                   "probe('note')\n"
                                   "raise yum.Errors.YumBaseError('the disk is full')\n",
                       {{"multi", true}}));
        QCOMPARE(notes, QStringList({"guarded"}));
        QVERIFY(!engine().transactionGuard);
        QCOMPARE(contract->callCount("applyFailCleanup"), 1);
        QVERIFY(state().multi.multiActive);

        contract->forgetCalls();
        driver->expect("Apply").press("OK");
        driver->expect("VOK Yum Error").textContains("the disk is full").press("Close");
        QVERIFY(!engine().apply());
        QVERIFY(begun.contains("Downloading 2 packages @100"));
        QCOMPARE(state().multi.meterThreads.size(), 1);
    }

    void aTypeErrorReachesTheScript()
    {
        QVERIFY(!apply("for function, arguments in (\n"
                       "        (yumIOC.tsInitCallback, ('x',)), (yumIOC.tsCallback, (1, 2)),\n"
                       "        (yumIOC.tsEvent, (1,)), (yumIOC.applyGrabMeterStart, (1, 2)),\n"
                       "        (yumIOC.applyGrabMultiMeterStart, ('2', 3))):\n"
                       "    try:\n"
                       "        function(*arguments)\n"
                       "    except TypeError:\n"
                       "        calls.append(('caught', function.__name__, 0))\n"));
        QCOMPARE(contract->callCount("caught"), 5);
        QVERIFY(!engine().transactionGuard);
    }

    void reportsOfATransactionComeFromTheWorkThread()
    {
        driver->expect("Apply").press("OK");
        expectWarning("Internal error: YumIO::tsCallback what=0 not understood; ignoring");
        expectError("Internal error: Unable to find package for install of other.noarch");
        expectWarning("Internal error: YumIO::tsCallback REMOVE/COMPLETE of other not expected");
        QVERIFY(apply(listing() +
                      "yumIOC.userconfirm()\n"
                      "yumIOC.tsCallback(0, 1, 2, None, None)\n"
                      "yumIOC.tsEvent(Holder(name='other', arch='noarch'), 20, 1, 2, 1, 1)\n"
                      "yumIOC.tsEvent('other', 50, 1, 2, 2, 2)\n"
                      "calls.append(('went on', '', 0))\n"));
        QCOMPARE(driver->driven(), 4);
        QCOMPARE(contract->callCount("went on"), 1);
    }
};

QTEST_MAIN(TestTransactionApplied)
#include "tst_TransactionApplied.moc"
