// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ReviewStage.h"

#include <QtTest>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString foo = QStringLiteral("foo-2.0-3.x86_64");
const QString bar = QStringLiteral("bar-1.0-1.x86_64");

} // namespace

/// What the solver's log lines make of the bar.
class TestDepsolve : public ReviewStage
{
    Q_OBJECT

    /// Three rows: foo and bar to be had, there up to date.
    void openRows(QJsonObject told = {}, QJsonObject fooMore = {})
    {
        told.insert("available", QJsonArray{package("foo", "2.0-3", "x86_64", fooMore),
                                            package("bar", "1.0-1", "x86_64")});
        told.insert("installed", QJsonArray{installed("there", "1.0-1", "x86_64")});
        open(told);
    }

    void tell(const QString& line) { run(QString("yumIOC.log(2, '''TSINFO: %1''')").arg(line)); }

    void expectError(const QString& text) { driver->expect(yumError).text(text).press("OK"); }

    QList<quint32> counts() { return {state().depPackages, state().depHeaders}; }

private Q_SLOTS:
    // ---- Lines

    void whatALineCounts_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("packages");
        QTest::addColumn<int>("headers");
        const auto counted = [](const QString& line, int packages, int headers) {
            QTest::newRow(qPrintable(line)) << line << packages << headers;
        };
        counted("Updating " + foo + " to 2", 2, 1);
        counted("Updating " + foo + " ", 2, 1);
        counted("Updating " + foo + " marked as erase", 2, 1);
        counted("Marking " + foo + " as install for " + bar, 1, 1);
        counted("Marking " + foo + " as update to " + bar, 2, 1);
        counted("Marking " + foo + " as update", 1, 1);
        counted("Marking " + foo + " as updated by " + bar, 1, 1);
        counted("Marking " + foo + " ", 1, 1);
        counted("Obsoleting " + foo + " with " + bar, 2, 1);
        counted("Obsoleting " + foo + " here with nosuch", 2, 1);
        counted("Obsoleting " + foo + " with ", 2, 1);
        counted(foo + " marked as erase", 0, 0);
        counted("nosuch marked as erased", 0, 0);
    }

    void whatALineCounts()
    {
        QFETCH(QString, line);
        openRows();
        tell(line);
        QTEST(static_cast<int>(state().depPackages), "packages");
        QTEST(static_cast<int>(state().depHeaders), "headers");
    }

    void anUnexpectedLineIsReportedAndCountsNothing_data()
    {
        QTest::addColumn<QString>("line");
        for (const QString& line :
             {"Updating " + foo, QString("Updating "), "Obsoleting " + foo,
              "Obsoleting " + foo + " by " + bar, "Obsoleting " + foo + " with", "Marking " + foo,
              foo + " marked as update", "updating " + foo + " to 2", " Updating " + foo + " to 2",
              "Updating\t" + foo + " to 2", QString("%1 %2"), QString()})
            QTest::newRow(qPrintable("'" + line + "'")) << line;
    }

    void anUnexpectedLineIsReportedAndCountsNothing()
    {
        QFETCH(QString, line);
        openRows();
        expectError("Internal error: unexpected TSINFO: " + line);
        tell(line);
        QCOMPARE(counts(), QList<quint32>({0, 0}));
        QCOMPARE(changes->count(), 0);
    }

    void anObsoletingLineCountsItsFirstPackageTwice()
    {
        openRows();
        tell("Obsoleting " + foo + " with " + bar);
        // Once without and once with a header; the other isn't looked at.
        QCOMPARE(contract->mainCalls(), QStringList({"localHdr(foo)"}));
        QCOMPARE(changes->count(), 2);
        QCOMPARE(counts(), QList<quint32>({2, 1}));
    }

    void anObsoletingLineOfAnUnknownPackageIsReportedTwice()
    {
        openRows();
        const QString unknown =
            "Internal error: TSINFO mentions unknown package: nosuch-1-1.x86_64";
        expectError(unknown);
        expectError(unknown);
        tell("Obsoleting nosuch-1-1.x86_64 with " + foo);
        QCOMPARE(counts(), QList<quint32>({0, 0}));
    }

    void aPackageThatIsUpToDateIsReportedAndCountsNothing()
    {
        openRows();
        expectError("Internal error: TSINFO mentions intent to install or upgrade package that "
                    "already seems up-to-date: there");
        tell("Marking there-1.0-1.x86_64 as install for foo");
        QCOMPARE(counts(), QList<quint32>({0, 0}));
        QCOMPARE(changes->count(), 0);
    }

    void anUnknownPackageIsReportedAndLeavesAnEmptySlot()
    {
        openRows();
        const int slots = engine().entryHash.size();
        expectError("Internal error: TSINFO mentions unknown package: nosuch-1-1.x86_64");
        tell("Updating nosuch-1-1.x86_64 to 2");
        QCOMPARE(counts(), QList<quint32>({0, 0}));
        QCOMPARE(engine().entryHash.size(), slots + 1);
        QVERIFY(engine().entryHash.contains(YumIO::EntryKey(false, "nosuch", "x86_64")));

        // Nobody stumbles over it.
        OpenEngine::PyGILStateWrapper lock(true);
        QVERIFY(!engine().findPackage("nosuch"));
        driver->expect(yumError)
            .text("Internal error: Unable to find package for install/update/remove of "
                  "nosuch.x86_64")
            .press("OK");
        run("yumIOC.listTransaction(base(installed=[member('nosuch')]))");
        engine().clearEntries();
        QCOMPARE(engine().entryHash.size(), 0);
        QVERIFY(contract->collect());
        QCOMPARE(contract->rowNames(), QStringList({"bar", "foo", "there"}));
    }

    // ---- The road of a line

    void onlyLinesWithTheExactPrefixAreParsed_data()
    {
        QTest::addColumn<QString>("call");
        QTest::newRow("another case") << "log(2, 'tsinfo: Updating')";
        QTest::newRow("a blank in front") << "log(2, ' TSINFO: Updating')";
        QTest::newRow("no blank behind") << "log(2, 'TSINFO:Updating')";
        QTest::newRow("too short") << "log(2, 'TSINFO:')";
        QTest::newRow("later in the line") << "log(2, 'x\\nTSINFO: Updating')";
        QTest::newRow("the other logger") << "errorlog(2, 'TSINFO: Updating')";
    }

    void onlyLinesWithTheExactPrefixAreParsed()
    {
        QFETCH(QString, call);
        openRows();
        // A dialog would fail the test.
        run("yumIOC." + call);
        QCOMPARE(counts(), QList<quint32>({0, 0}));
    }

    void aLineIsLoggedAndParsedAsItCame()
    {
        openRows();
        expectError("Internal error: unexpected TSINFO: foo: [Errno 5] bar\nmore");
        run("yumIOC.log(2, 'TSINFO: foo: [Errno 5] bar\\nmore')");
        QCOMPARE(contract->logTexts().mid(0, 3),
                 QStringList({"TSINFO: foo:", "[Errno 5] bar", "more"}));
    }

    void aLineMayBeBytes()
    {
        openRows();
        run(QString("yumIOC.log(2, b'TSINFO: Updating %1 to 2')").arg(foo));
        QCOMPARE(counts(), QList<quint32>({2, 1}));
    }

    void aLineThatNobodyWatchesIsStillCounted()
    {
        openRows();
        progressUser.reset();
        tell("Updating " + foo + " to 2");
        run("yumIOC.dsTsCheck(); yumIOC.dsRestartLoop()");
        QCOMPARE(counts(), QList<quint32>({2, 1}));
        QCOMPARE(state().depActs, 2U);
    }

    // ---- Packages of lines

    void aPackageIsNamedByItsVersionsForm_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QStringList>("reports");
        const QString unknown = "Internal error: TSINFO mentions unknown package: ";
        const QString invalid =
            "Internal error: TSINFO mentions package %1 which does not appear to "
            "be a valid envra; interpreting as package name";
        QTest::newRow("3.2.8, name") << "3.2.8"
                                     << "foo" << QStringList();
        QTest::newRow("3.2.8, envra") << "3.2.8" << foo << QStringList({unknown + foo});
        QTest::newRow("3.2.9, name") << "3.2.9"
                                     << "foo" << QStringList({invalid.arg("foo")});
        QTest::newRow("3.2.9, envra") << "3.2.9" << foo << QStringList();
        QTest::newRow("3.2.9, neither")
            << "3.2.9"
            << "nosuch" << QStringList({invalid.arg("nosuch"), unknown + "nosuch"});
    }

    void aPackageIsNamedByItsVersionsForm()
    {
        QFETCH(QString, version);
        QFETCH(QString, word);
        QFETCH(QStringList, reports);
        openRows({{"version", version}});
        for (const QString& report : qAsConst(reports))
            expectError(report);
        OpenEngine::PyGILStateWrapper lock(true);
        const bool found = reports.isEmpty() || !reports.last().contains("unknown");
        QCOMPARE(engine().dsTsFindPkg(word), found ? contract->row("foo") : nullptr);
    }

    void anEnvraFindsTheRowOfItsFamily()
    {
        open({{"available",
               QJsonArray{package("foo", "1-1", "i386"), package("foo", "1-1", "x86_64")}}});
        OpenEngine::PyGILStateWrapper lock(true);
        const Package::Entry* found = engine().dsTsFindPkg("3:foo-9-9.i686");
        QVERIFY(found);
        QCOMPARE(found->arch, QString("i386"));
    }

    void partsOfAnEnvra_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("parts");
        const auto row = [](const char* text, const QStringList& parts) {
            QTest::newRow(text) << text << parts;
        };
        row("1:foo-bar-2.0-3.x86_64", {"foo-bar", "1", "2.0", "3", "x86_64"});
        row("foo-2.0-3.fc9.noarch", {"foo", "", "2.0", "3.fc9", "noarch"});
        row("a-1-1.", {"a", "", "1", "1", ""});
        row("foo-1:2.0-3.i386", {"foo", "", "1:2.0", "3", "i386"});
        row("1:2:foo-1-1.i386", {"foo", "1:2", "1", "1", "i386"});
        row(":foo-1-1.i386", {"foo", "", "1", "1", "i386"});
        row("foo--.", {"foo", "", "", "", ""});
        row("1:-1-1.i386", {"", "1", "1", "1", "i386"});
        row("foo.i386", {});
        row("foo-1.i386", {});
        row(".foo-1-2", {});
        row("-1-1.i386", {});
        row("--1.i386", {});
        row("-1.i386", {});
        row("-1.i386-x", {});
        row("foo-1-1", {});
        row("", {});
    }

    void partsOfAnEnvra()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, parts);
        QString name, epoch, version, release, arch;
        QCOMPARE(engine().parseEnvra(text, name, epoch, version, release, arch), !parts.isEmpty());
        QCOMPARE(engine().parseEnvra(text, name, arch), !parts.isEmpty());
        if (!parts.isEmpty())
            QCOMPARE(QStringList({name, epoch, version, release, arch}), parts);
    }

    void anEnvraWithoutAColonHasNoEpochAtAll()
    {
        QString name, epoch, version, release, arch;
        QVERIFY(engine().parseEnvra("foo-1-1.i386", name, epoch, version, release, arch));
        QVERIFY(epoch.isNull());
        QVERIFY(engine().parseEnvra(":foo-1-1.i386", name, epoch, version, release, arch));
        QVERIFY(!epoch.isNull());
    }

    void aFamilyThatIsCalledAsTheBaseArchitectureIsNotSearched()
    {
        open(
            {{"yumvar", QJsonObject{{"basearch", "amd64"}}},
             {"biArch", QJsonObject{{"amd64", "x86_64"}, {"odd", "amd64"}}},
             {"available", QJsonArray{package("a", "1-1", "odd"), package("b", "1-1", "x86_64")}}});
        OpenEngine::PyGILStateWrapper lock(true);
        const int slots = engine().entryHash.size();
        QVERIFY(!engine().findPackage("a"));
        QCOMPARE(engine().findPackage("b"), contract->row("b"));
        QCOMPARE(engine().entryHash.size(), slots);
    }

    // ---- Acts

    void aHeaderThatIsThereIsNoWork()
    {
        openRows({}, {{"localHdr", presentFile()}});
        tell("Updating " + foo + " to 2");
        QCOMPARE(counts(), QList<quint32>({2, 0}));
    }

    void aHeaderThatIsMissingIsTenActs()
    {
        openRows({}, {{"localHdr", absentFile()}});
        state().depActs = 10;
        tell("Marking " + foo + " as install for bar");
        QCOMPARE(counts(), QList<quint32>({1, 1}));
        // Twenty acts now: ten of the header, ten of the packages.
        engine().progress->startItemAct("half", 1, 10);
        run("yumIOC.dsRestartLoop()");
        QCOMPARE(steps(changes, 0), Steps(100 + 9900 * 10 / 21));
    }

    void aPassTakesTheActsOfItsPackages()
    {
        open({}, 8);
        state().depPackages = state().depPassActs = state().depActs = 4;
        state().depHeaders = 0;
        run("yumIOC.dsTsCheck()");
        QCOMPARE(state().progressAct, 4U);
        QCOMPARE(items->count(), 1);
        QCOMPARE(items->last().at(0).toString(), QString("Resolve Dependencies"));
        QCOMPARE(steps(items, 2), Steps(1));
        run("yumIOC.dsTsCheck()");
        QCOMPARE(state().progressAct, 8U);
        // The second begins where the first ends: in the middle of the stretch.
        QCOMPARE(steps(items, 1), Steps(100 + 9900 / 2));
    }

    void aRestartAddsAPassOfAllPackages()
    {
        open({}, 4);
        state().depPackages = 6;
        state().depPassActs = state().depActs = 4;
        state().depHeaders = 1;
        run("yumIOC.dsRestartLoop()");
        QCOMPARE(state().depPassActs, 6U);
        QCOMPARE(state().depActs, 10U);
        QCOMPARE(changes->count(), 1);
        run("yumIOC.dsTsCheck()");
        QCOMPARE(state().progressAct, 6U);
        // Six of twenty acts: ten for the header, ten for the packages.
        run("yumIOC.dsTsCheck()");
        QCOMPARE(steps(items, 1), Steps(100 + 9900 * 6 / 20));
    }

    void bothCallsGiveNoneAndTakeNothing()
    {
        open({});
        QCOMPARE(outcome("yumIOC.dsTsCheck()"), QString("None"));
        QCOMPARE(outcome("yumIOC.dsRestartLoop()"), QString("None"));
        QCOMPARE(outcome("yumIOC.dsTsCheck(1)"), QString("TypeError"));
        QCOMPARE(outcome("yumIOC.dsRestartLoop(1)"), QString("TypeError"));
    }
};

QTEST_MAIN(TestDepsolve)
#include "tst_Depsolve.moc"
