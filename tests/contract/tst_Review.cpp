// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ReviewStage.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

/// One member for each line of the fullest review. How members are related differs by version.
const char* const members = R"(
def full(related):
    return base(
        installed=[member('foo')],
        updated=[member('bar', 'noarch', '2', '3.1', '4', repoid='updates')],
        removed=[member('baz', 'i386', '0', '0.9', '2')],
        depinstalled=[member('qux', version='7', release='7')],
        obsoleted=[member('old', 'i386', relatedto=[('x', 'obsoletes'), (related, 'obsoletedby')],
                          version='1')])
)";

} // namespace

/// The text of the review and of the summary, and the size of the download.
class TestReview : public ReviewStage
{
    Q_OBJECT

    void openRows(const QString& version = "4.14.0")
    {
        open({{"version", version},
              {"updates", QJsonArray{package("bar", "2:3.1-4", "noarch")}},
              {"installed",
               QJsonArray{installed("bar", "3.0-1", "noarch"), installed("baz", "0.9-2", "i386"),
                          installed("old", "1-1", "i386")}},
              {"available",
               QJsonArray{package("foo", "1.0-1", "x86_64"), package("qux", "7-7", "x86_64"),
                          package("new", "2-1", "i386")}}});
        run(members);
    }

    QStringList text() { return state().transactionText.split('\n'); }

    QString format(const QString& tuple, const QString& repo = QString())
    {
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef pkgtup = engine().pyr(tuple.toUtf8().constData());
        return repo.isNull() ? engine().pkgtupFormat(pkgtup.get())
                             : engine().pkgtupRepoFormat(pkgtup.get(), repo);
    }

private Q_SLOTS:
    void aFullListing_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("related");
        const char* const tuple = "('new', 'i386', '0', '2', '1')";
        const char* const object = "member('new', 'i386', version='2')";
        QTest::newRow("2.3.1: tuples") << "2.3.1" << tuple;
        QTest::newRow("2.3.2: objects") << "2.3.2" << object;
        QTest::newRow("4.14.0: objects") << "4.14.0" << object;
    }

    void aFullListing()
    {
        QFETCH(QString, version);
        QFETCH(QString, related);
        openRows(version);
        state().transactionText = "left over";
        QCOMPARE(outcome(QString("yumIOC.listTransaction(full(%1))").arg(related)),
                 QString("None"));
        QCOMPARE(
            text(),
            QStringList({"Transaction to be performed:", "\tInstall: foo 1.0-1 (x86_64) [base]",
                         "\tUpdate: bar 2:3.1-4 (noarch) [updates]", "\tRemove: baz 0.9-2 (i386)",
                         "Performing the following to resolve dependencies:",
                         "\tInstall: qux 7-7 (x86_64) [base]", "Other Transactions:",
                         "\tObsoleting: old 1-1 (i386) with new 2-1 (i386)", ""}));
        QVERIFY(state().transactionListed);
    }

    void anEmptyTransactionIsOneLine()
    {
        openRows();
        run("yumIOC.listTransaction(base())");
        QCOMPARE(text(), QStringList({"Transaction to be performed:", ""}));
    }

    void whatTheSolverAddedIsListedApart_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("line");
        QTest::newRow("install") << "depinstalled=[member('foo')]"
                                 << "\tInstall: foo 1.0-1 (x86_64) [base]";
        QTest::newRow("update")
            << "depupdated=[member('bar', 'noarch', '2', '3.1', '4', repoid='updates')]"
            << "\tUpdate: bar 2:3.1-4 (noarch) [updates]";
        QTest::newRow("removal") << "depremoved=[member('baz', 'i386', '0', '0.9', '2')]"
                                 << "\tRemove: baz 0.9-2 (i386)";
    }

    void whatTheSolverAddedIsListedApart()
    {
        QFETCH(QString, list);
        QFETCH(QString, line);
        openRows();
        run(QString("yumIOC.listTransaction(base(%1))").arg(list));
        QCOMPARE(text(),
                 QStringList({"Transaction to be performed:",
                              "Performing the following to resolve dependencies:", line, ""}));
    }

    void versionsOfPackages_data()
    {
        QTest::addColumn<QString>("tuple");
        QTest::addColumn<QString>("expected");
        QTest::newRow("epoch 0") << "('n', 'a', '0', 'v', 'r')"
                                 << "n v-r (a)";
        QTest::newRow("epoch 2") << "('n', 'a', '2', 'v', 'r')"
                                 << "n 2:v-r (a)";
        QTest::newRow("epoch 00") << "('n', 'a', '00', 'v', 'r')"
                                  << "n 00:v-r (a)";
        QTest::newRow("empty epoch") << "('n', 'a', '', 'v', 'r')"
                                     << "n :v-r (a)";
        QTest::newRow("bytes") << "(b'n', b'a', b'0', b'v', b'r')"
                               << "n v-r (a)";
        QTest::newRow("placeholders") << "('%2', '%3', '1', '%1', '%5')"
                                      << "%2 1:%1-%5 (%3)";
    }

    void versionsOfPackages()
    {
        QFETCH(QString, tuple);
        QFETCH(QString, expected);
        openRows();
        QCOMPARE(format(tuple), expected);
        QCOMPARE(format(tuple, "repo"), expected + " [repo]");
    }

    // ---- Relations

    void theFirstObsoleterIsTaken_data()
    {
        QTest::addColumn<QString>("relations");
        QTest::addColumn<QString>("found");
        const auto row = [](const char* relations, const char* found) {
            QTest::newRow(relations) << relations << found;
        };
        row("[('a', 'obsoletedby'), ('b', 'obsoletedby')]", "a");
        row("[('a', 'obsoletes'), ('b', b'obsoletedby')]", "b");
        row("[('a', 'obsoletedby', 1), 7, ('obsoletedby',), ('b', 'obsoletedby')]", "b");
        row("(pair for pair in [('a', 'obsoletedby')])", "a");
        row("[('a', 'Obsoletedby'), ('b', 'obsoletedby '), ('c', None)]", "");
        row("[]", "");
    }

    void theFirstObsoleterIsTaken()
    {
        QFETCH(QString, relations);
        openRows();
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef pairs = engine().pyr(relations.toUtf8().constData());
        const PyRef found = PyRef::adopt(engine().findRelation(pairs.get(), "obsoletedby"));
        QVERIFY(!PyErr_Occurred());
        QTEST(found ? QString::fromUtf8(PyUnicode_AsUTF8(found.get())) : QString(""), "found");
    }

    void aRelationGivesAReferenceOfItsOwn()
    {
        openRows();
        OpenEngine::PyGILStateWrapper lock(true);
        run("thing = object()\npairs = [(thing, 'obsoletedby')]");
        const PyRef thing = engine().pyr("thing");
        const PyRef pairs = engine().pyr("pairs");
        const Py_ssize_t before = Py_REFCNT(thing.get());
        PyRef found = PyRef::adopt(engine().findRelation(pairs.get(), "obsoletedby"));
        QCOMPARE(found.get(), thing.get());
        QCOMPARE(Py_REFCNT(thing.get()), before + 1);
        found.reset();
        QCOMPARE(Py_REFCNT(thing.get()), before);
    }

    void anObsoletedPackageWithoutItsObsoleterFailsTheListing_data()
    {
        QTest::addColumn<QString>("spoil");
        QTest::addColumn<QString>("report");
        QTest::newRow("no relations") << "del gone.relatedto"
                                      << "Internal error: package has no relatedto\n";
        QTest::newRow("another relation") << "gone.relatedto = [(gone, 'obsoletes')]"
                                          << "Internal error: couldn't find obsoletedby package\n";
        QTest::newRow("no package") << "gone.relatedto = [(7, 'obsoletedby')]"
                                    << "Internal error: couldn't find obsoletedby package\n";
        QTest::newRow("nobody") << "del gone.pkgtup"
                                << "Internal error: txmbr lacks pkgtup\n";
    }

    void anObsoletedPackageWithoutItsObsoleterFailsTheListing()
    {
        QFETCH(QString, spoil);
        QFETCH(QString, report);
        openRows();
        run("gone = member('old', 'i386', version='1')\n" + spoil);
        driver->expect(yumError).text(report).press("OK");
        // What the interpreter makes of a null without an exception.
        QCOMPARE(outcome("yumIOC.listTransaction(base(obsoleted=[gone]))"), QString("SystemError"));
        QCOMPARE(state().transactionActs, quint64(0));
    }

    // ---- What can't be listed

    void listsThatCannotBeReadFail_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("exception");
        QTest::newRow("no list") << "listTransaction(base(installed=7))"
                                 << "TypeError";
        QTest::newRow("one that breaks off")
            << "listTransaction(base(removed=broken([member('baz', 'i386')])))"
            << "ValueError";
        QTest::newRow("relations that break off")
            << "listTransaction(base(obsoleted=[member('old', relatedto=broken([]))]))"
            << "ValueError";
        QTest::newRow("a summary of no list") << "postTransactionOutput(base(removed=7))"
                                              << "TypeError";
        QTest::newRow("no packages") << "reportDownloadSize(7)"
                                     << "TypeError";
        QTest::newRow("packages that break off") << "reportDownloadSize(broken([]))"
                                                 << "ValueError";
    }

    void listsThatCannotBeReadFail()
    {
        QFETCH(QString, call);
        openRows();
        QTEST(outcome("yumIOC." + call), "exception");
        // Nothing is left pending.
        QCOMPARE(outcome("1"), QString("1"));
    }

    void noListsAtAllFail()
    {
        openRows("2.3.1");
        for (const char* function : {"listTransaction", "postTransactionOutput"}) {
            driver->expect(yumError)
                .text("Internal error: yumIO.makelists() did not return a tuple\n")
                .press("OK");
            QCOMPARE(outcome(QString("yumIOC.%1(Holder(tsInfo=Holder(makelists=lambda: [])))")
                                 .arg(function)),
                     QString("SystemError"));
        }
        QVERIFY(state().transactionListed);
        QCOMPARE(state().transactionText, QString());
    }

    void wrongArgumentsAreATypeError_data()
    {
        QTest::addColumn<QString>("call");
        for (const char* call :
             {"listTransaction()", "listTransaction(1, 2)", "reportDownloadSize()",
              "reportDownloadSize([], [])", "postTransactionOutput()",
              "postTransactionOutput(1, 2)", "userconfirm(1)"})
            QTest::newRow(call) << call;
    }

    void wrongArgumentsAreATypeError()
    {
        QFETCH(QString, call);
        openRows();
        state().transactionText = "kept";
        QCOMPARE(outcome("yumIOC." + call), QString("TypeError"));
        QCOMPARE(state().transactionText, QString("kept"));
    }

    void aListingKeepsNoReferences()
    {
        openRows();
        OpenEngine::PyGILStateWrapper lock(true);
        run("whole = full(member('new', 'i386', version='2'))\n"
            "import sys\n"
            "def references():\n"
            "    lists = whole.tsInfo.makelists()\n"
            "    one = lists.obsoleted[0]\n"
            "    return [sys.getrefcount(thing) for thing in (whole, whole.tsInfo, lists, "
            "lists.installed, one, one.pkgtup, one.relatedto, one.relatedto[1][0])]");
        const QString before = contract->eval("str(references())");
        for (int i = 0; i < 1000; ++i)
            run("yumIOC.listTransaction(whole); yumIOC.postTransactionOutput(whole)");
        QCOMPARE(contract->eval("str(references())"), before);
    }

    // ---- The size of the download

    void theDownloadSizeIsTheLastLine()
    {
        openRows();
        run("yumIOC.listTransaction(base(installed=[member('foo')]))");
        QCOMPARE(outcome("yumIOC.reportDownloadSize(Holder(size=size) for size in (1000, '2000', "
                         "lambda: 4168))"),
                 QString("None"));
        QCOMPARE(
            text(),
            QStringList({"Transaction to be performed:", "\tInstall: foo 1.0-1 (x86_64) [base]",
                         "Total download size: 7.0Kb", ""}));
    }

    void noDownloadHasASizeToo()
    {
        openRows();
        run("yumIOC.reportDownloadSize([])");
        QCOMPARE(text(), QStringList({"Total download size: 0b", ""}));
    }

    // ---- The summary

    void aSummaryNamesWhatWasDone()
    {
        openRows();
        state().transactionText = "before\n";
        run("everything = base(\n"
            "    removed=[member('a', epoch='0')], depremoved=[member('b')],\n"
            "    installed=[member('c', epoch='2')], depinstalled=[member('d')],\n"
            "    updated=[member('e')], depupdated=[member('f'), member('g')],\n"
            "    obsoleted=[member('h', relatedto=None)])");
        QCOMPARE(outcome("yumIOC.postTransactionOutput(everything)"), QString("''"));
        QCOMPARE(
            text(),
            QStringList(
                {"before", "\tRemoved: a 1.0-1 (x86_64)", "\tDependency Removed: b 1.0-1 (x86_64)",
                 "\tInstalled: c 2:1.0-1 (x86_64)", "\tDependency Installed: d 1.0-1 (x86_64)",
                 "\tUpdated: e 1.0-1 (x86_64)", "\tDependency Updated: f 1.0-1 (x86_64)",
                 "\tDependency Updated: g 1.0-1 (x86_64)", "\tObsoleted: h 1.0-1 (x86_64)", ""}));
        QVERIFY(!state().transactionListed);
        // The run's stretch is over.
        QCOMPARE(ends->count(), 1);
    }
};

QTEST_MAIN(TestReview)
#include "tst_Review.moc"
