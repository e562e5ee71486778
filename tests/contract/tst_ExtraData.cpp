// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");

QJsonArray change(int time, const char* author, const char* text)
{
    return {time, author, text};
}

QString dated(long time, const char* rest)
{
    return QString("* %1 %2").arg(YumIO::dateFormat(time), rest);
}

} // namespace

class TestExtraData : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    // ---- Loading

    void aLoadRunsOnceOnAWorkThread_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("heading");
        QTest::newRow("files") << "collectFileLists"
                               << "Collecting File Lists";
        QTest::newRow("others") << "collectOtherData"
                                << "Collecting Miscellaneous data";
    }

    void aLoadRunsOnceOnAWorkThread()
    {
        QFETCH(QString, method);
        QFETCH(QString, heading);
        contract->play({});
        QVERIFY(contract->collect());
        contract->forgetCalls();
        QSignalSpy collected(&contract->engine(), &YumIO::collectedExtraData);
        QVERIFY(!loaded(method));
        QVERIFY(load(method));
        QVERIFY(load(method));
        QCOMPARE(contract->calls(), QStringList({method + "()"}));
        QVERIFY(!contract->calledHere(method));
        QCOMPARE(collected.count(), 1);
        QVERIFY(loaded(method));
        QCOMPARE(contract->logTexts().count(heading), 1);
    }

    void aCollectionForgetsTheLoads()
    {
        contract->play({});
        QVERIFY(contract->collect());
        QVERIFY(load("collectFileLists") && load("collectOtherData"));
        contract->engine().clear();
        QVERIFY(contract->collect());
        QVERIFY(!loaded("collectFileLists") && !loaded("collectOtherData"));
    }

    void aLoadShowsItsProgress_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("total");
        QTest::addColumn<QString>("label");
        QTest::newRow("files") << "collectFileLists"
                               << "Loading file lists: Total Progress"
                               << "file lists";
        QTest::newRow("others") << "collectOtherData"
                                << "Loading miscellaneous data: Total Progress"
                                << "miscellaneous data";
    }

    void aLoadShowsItsProgress()
    {
        QFETCH(QString, method);
        QFETCH(QString, total);
        QFETCH(QString, label);
        contract->play(
            {{"repos",
              QJsonObject{{"a", QJsonObject{{"enabled", 1}}}, {"b", QJsonObject{{"enabled", 1}}}}},
             {"meters", QJsonObject{{method, QJsonArray{QJsonArray{
                                                 "collectGrabMeterStart", "meter:1",
                                                 "/c/a/filelists.xml.gz", "", "", 50, ""}}}}},
             {"raise",
              QJsonObject{{method, QJsonObject{{"type", "YumBaseError"}, {"text", "stop"}}}}}});
        QVERIFY(contract->collect());
        contract->engine().collectState.act = 5;
        QStringList items;
        contract->probe([&](const QString& called) {
            if (called == method)
                QObject::connect(contract->engine().progress, &Progress::Object::startItemSig,
                                 [&](const QString& activity, Steps start, Steps maximum) {
                                     items.append(
                                         QString("%1 %2 %3").arg(activity).arg(start).arg(maximum));
                                 });
        });
        QString totalText;
        int totalMaximum = 0;
        driver->expect(yumError)
            .act([&](QWidget*) {
                totalText = contract->totalBar.text();
                totalMaximum = contract->totalBar.maximum();
            })
            .press("Close");
        QVERIFY(!load(method));
        QCOMPARE(items, QStringList({"Downloading repository " + label + " for a 1000 50"}));
        QVERIFY2(totalText.contains(total), qPrintable(totalText));
        QCOMPARE(totalMaximum, 15000);
        // The act count began anew: contents are the fourth act of the first repository.
        QCOMPARE(contract->engine().collectState.act, 4);
    }

    void aFailedLoadGivesAnEmptyTextAndIsTriedAgain_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("message");
        QTest::newRow("files") << "collectFileLists"
                               << "gone\nUnable to collect filelists";
        QTest::newRow("others") << "collectOtherData"
                                << "gone\nUnable to collect miscellaneous data";
    }

    void aFailedLoadGivesAnEmptyTextAndIsTriedAgain()
    {
        QFETCH(QString, method);
        QFETCH(QString, message);
        contract->play(
            {{"available", QJsonArray{Contract::package(
                               "a", {{"files", QJsonArray{"/x"}},
                                     {"changelog", QJsonArray{change(0, "me", "did")}}})}},
             {"raise",
              QJsonObject{{method, QJsonObject{{"type", "YumBaseError"}, {"text", "gone"}}}}}});
        QVERIFY(contract->collect());
        QSignalSpy collected(&contract->engine(), &YumIO::collectedExtraData);
        driver->expect(yumError).text(message).press("Close");
        QCOMPARE(textFor(method), QString());
        QVERIFY(!loaded(method));
        QCOMPARE(collected.count(), 0);
        QVERIFY(!textFor(method).isEmpty());
        QCOMPARE(contract->callCount(method), 2);
    }

    void aLoadThatRaisesTheUnexpectedIsAnInternalError_data()
    {
        QTest::addColumn<QString>("method");
        QTest::newRow("files") << "collectFileLists";
        QTest::newRow("others") << "collectOtherData";
    }

    void aLoadThatRaisesTheUnexpectedIsAnInternalError()
    {
        QFETCH(QString, method);
        contract->play({{"raise", QJsonObject{{method, QJsonObject{{"type", "ValueError"}}}}}});
        QVERIFY(contract->collect());
        driver->expect(yumError).textContains("Internal error: python exception").press("OK");
        driver->expect(yumError)
            .text(QString("Internal error: execution of yumIO.%1 failed").arg(method))
            .press("OK");
        QVERIFY(!load(method));
    }

    // ---- Files

    void filesOfARepositoryPackageAreSortedAndEachOnce()
    {
        contract->play({{"available", QJsonArray{Contract::package(
                                          "a", {{"files", QJsonArray{"/b", "/a", "/b"}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), QString("/a\n/b"));
        QCOMPARE(contract->callCount("collectFileLists"), 1);
        QVERIFY(contract->calls().contains("returnFileEntries(a,file)"));
        QCOMPARE(contract->engine().getFilesUtf8(*contract->row("a")), QByteArray("/a\n/b"));
        QCOMPARE(contract->callCount("collectFileLists"), 1);
    }

    void filesAsOneTextAreTheSame_data()
    {
        QTest::addColumn<QString>("form");
        QTest::newRow("bytes") << "bytes";
        QTest::newRow("str") << "str";
    }

    void filesAsOneTextAreTheSame()
    {
        QFETCH(QString, form);
        const QJsonArray packages{
            Contract::package("a", {{"files", QJsonArray{"/b", "/usr/\u00e4", "/a", "/b"}}}),
            Contract::package("none")};
        contract->play({{"available", packages}});
        QVERIFY(contract->collect());
        const QString listed = contract->engine().getFiles(*contract->row("a"));
        QCOMPARE(listed, QString("/a\n/b\n/usr/\u00e4"));
        QCOMPARE(contract->engine().getFiles(*contract->row("none")), QString());

        contract->play({{"available", packages}, {"fileTexts", form}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), listed);
        QCOMPARE(contract->engine().getFilesUtf8(*contract->row("a")), listed.toUtf8());
        QCOMPARE(contract->engine().getFiles(*contract->row("none")), QString());
        QCOMPARE(contract->callCount("returnFileText"), 3);
        QCOMPARE(contract->callCount("returnFileEntries"), 0);
        QCOMPARE(contract->callCount("collectFileLists"), 1);
    }

    void filesOfAGroupAreEmptyAndLoadNothing()
    {
        contract->play({{"groups", QJsonArray{Contract::group("g")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("g")), QString());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("g")), QString());
        QCOMPARE(contract->callCount("collectFileLists"), 0);
        QCOMPARE(contract->callCount("collectOtherData"), 0);
    }

    void filesOfAnUnknownKindAreEmpty()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        contract->row("a")->kind = static_cast<Package::Kind>(3);
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), QString());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("a")), QString());
        QCOMPARE(contract->callCount("collectFileLists"), 0);
    }

    void filesOfASuiteAreListed()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package(
                               "a", {{"group", "Suite"}, {"files", QJsonArray{"/a"}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), QString("/a"));
    }

    void aPackageWithoutFileDataLoadsNothing()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"without", QJsonArray{"_loadFiles"}},
                                                              {"files", QJsonArray{"/a"}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), QString());
        QCOMPARE(contract->callCount("collectFileLists"), 0);
    }

    void aFileListThatRaisesIsAnInternalError()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a")}},
             {"raise", QJsonObject{{"returnFileEntries", QJsonObject{{"type", "ValueError"}}}}}});
        QVERIFY(contract->collect());
        driver->expect(yumError).textContains("Internal error: python exception").press("OK");
        driver->expect(yumError).text("Internal error: cannot find package's files").press("OK");
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), QString());
    }

    void filesOfAnInstalledPackageNeverLoad()
    {
        contract->play(
            {{"installed",
              QJsonArray{Contract::installed("a", {{"BASENAMES", QJsonArray{"c", "b", "a", "c"}},
                                                   {"DIRNAMES", QJsonArray{"/usr/", "/"}},
                                                   {"DIRINDEXES", QJsonArray{0, 1, 0, 0}}}),
                         Contract::installed("none"),
                         Contract::installed("null", {{"BASENAMES", QJsonValue()}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("a")), QString("/b\n/usr/a\n/usr/c"));
        QCOMPARE(contract->engine().getFilesUtf8(*contract->row("a")),
                 QByteArray("/b\n/usr/a\n/usr/c"));
        QCOMPARE(contract->engine().getFiles(*contract->row("none")), QString());
        QCOMPARE(contract->engine().getFiles(*contract->row("null")), QString());
        QCOMPARE(contract->callCount("collectFileLists"), 0);
    }

    void aBareDirectoryIndexStandsForEachFile()
    {
        contract->play(
            {{"installed",
              QJsonArray{Contract::installed("one", {{"BASENAMES", QJsonArray{"a"}},
                                                     {"DIRNAMES", QJsonArray{"/x/", "/y/"}},
                                                     {"DIRINDEXES", 1}}),
                         Contract::installed("two", {{"BASENAMES", QJsonArray{"b", "a"}},
                                                     {"DIRNAMES", QJsonArray{"/x/"}},
                                                     {"DIRINDEXES", 0}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("one")), QString("/y/a"));
        QCOMPARE(contract->engine().getFiles(*contract->row("two")), QString("/x/a\n/x/b"));
    }

    void aHeaderOutOfShapeIsSurvived()
    {
        contract->play(
            {{"installed",
              QJsonArray{Contract::installed("far", {{"BASENAMES", QJsonArray{"a", "b"}},
                                                     {"DIRNAMES", QJsonArray{"/x/"}},
                                                     {"DIRINDEXES", QJsonArray{7, -1}}}),
                         Contract::installed("short", {{"BASENAMES", QJsonArray{"a", "b"}},
                                                       {"DIRNAMES", QJsonArray{"/x/"}},
                                                       {"DIRINDEXES", QJsonArray{0}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getFiles(*contract->row("far")), QString("a\nb"));
        QCOMPARE(contract->engine().getFiles(*contract->row("short")), QString("/x/a\nb"));
    }

    // ---- Change logs

    void changeLogOfARepositoryPackage_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("calls");
        QTest::newRow("attribute") << "2.3.0" << 0;
        QTest::newRow("method") << "2.3.1" << 1;
        QTest::newRow("method today") << "4.14.0" << 1;
    }

    void changeLogOfARepositoryPackage()
    {
        QFETCH(QString, version);
        QFETCH(int, calls);
        contract->play(
            {{"version", version},
             {"available", QJsonArray{Contract::package(
                               "a", {{"changelog", QJsonArray{change(86400, "b", "- new\n- more"),
                                                              change(0, "a", "- old")}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("a")),
                 dated(86400, "b\n- new\n- more") + "\n\n" + dated(0, "a\n- old"));
        QCOMPARE(contract->callCount("returnChangelog"), calls);
        QCOMPARE(contract->callCount("collectOtherData"), 1);
    }

    void aChangeLogThatIsNothingIsEmpty()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"changelog", QJsonValue()}}),
                                      Contract::package("b")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("a")), QString());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("b")), QString());
    }

    void aPackageWithoutChangeLogDataLoadsNothing()
    {
        contract->play({{"available", QJsonArray{Contract::package(
                                          "a", {{"without", QJsonArray{"changelog"}}})}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("a")), QString());
        QCOMPARE(contract->callCount("collectOtherData"), 0);
    }

    void aChangeLogThatRaisesIsAnInternalError()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a")}},
             {"raise", QJsonObject{{"returnChangelog", QJsonObject{{"type", "ValueError"}}}}}});
        QVERIFY(contract->collect());
        driver->expect(yumError).textContains("Internal error: python exception").press("OK");
        driver->expect(yumError)
            .text("Internal error: cannot find package's changelog")
            .press("OK");
        QCOMPARE(contract->engine().getChangeLog(*contract->row("a")), QString());
    }

    void changeLogOfAnInstalledPackage()
    {
        contract->play(
            {{"installed",
              QJsonArray{
                  Contract::installed("two", {{"CHANGELOGNAME", QJsonArray{"b", "a"}},
                                              {"CHANGELOGTIME", QJsonArray{86400, 0}},
                                              {"CHANGELOGTEXT", QJsonArray{"- new", "- old"}}}),
                  Contract::installed("one", {{"CHANGELOGNAME", QJsonArray{"b"}},
                                              {"CHANGELOGTIME", 86400},
                                              {"CHANGELOGTEXT", QJsonArray{"- new"}}}),
                  Contract::installed("none")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getChangeLog(*contract->row("two")),
                 dated(86400, "b\n- new") + "\n\n" + dated(0, "a\n- old"));
        QCOMPARE(contract->engine().getChangeLog(*contract->row("one")), dated(86400, "b\n- new"));
        QCOMPARE(contract->engine().getChangeLog(*contract->row("none")), QString());
        QCOMPARE(contract->callCount("collectOtherData"), 0);
    }

    void gettersLeaveNoReferencesBehind()
    {
        contract->play(
            {{"available",
              QJsonArray{Contract::package(
                  "a", {{"files", QJsonArray{"/a"}},
                        {"changelog", QJsonArray{change(0, "me", "did")}},
                        {"prco", QJsonObject{{"provides",
                                              QJsonArray{QJsonArray{
                                                  "p", "EQ", QJsonArray{"0", "1", "1"}}}}}}})}}});
        QVERIFY(contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        const Package::Entry& entry = *contract->row("a");
        const auto none = Py_REFCNT(Py_None);
        const auto refs = Py_REFCNT(entry.pyObject);
        contract->engine().getFiles(entry);
        contract->engine().getChangeLog(entry);
        contract->forgetCalls();
        for (int i = 0; i < 1000; ++i) {
            contract->engine().getFiles(entry);
            contract->engine().getChangeLog(entry);
            contract->engine().getProvides(entry);
            contract->engine().getDescription(entry);
        }
        contract->forgetCalls();
        QCOMPARE(Py_REFCNT(entry.pyObject), refs);
        QVERIFY2(std::abs(static_cast<long>(Py_REFCNT(Py_None) - none)) < 500,
                 "a getter drops or keeps a reference to None");
    }

private:
    bool load(const QString& method)
    {
        return method == "collectFileLists" ? contract->engine().collectFileLists()
                                            : contract->engine().collectOtherData();
    }

    bool loaded(const QString& method)
    {
        return method == "collectFileLists" ? contract->engine().areFileListsCollected()
                                            : contract->engine().areOtherDataCollected();
    }

    /// The text of package "a" that needs the load.
    QString textFor(const QString& method)
    {
        const Package::Entry& entry = *contract->row("a");
        return method == "collectFileLists" ? contract->engine().getFiles(entry)
                                            : contract->engine().getChangeLog(entry);
    }
};

QTEST_MAIN(TestExtraData)
#include "tst_ExtraData.moc"
