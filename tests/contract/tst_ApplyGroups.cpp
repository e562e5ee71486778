// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"

#include <QtTest>

Q_DECLARE_METATYPE(Package::Action)

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString yumWarning = QStringLiteral("VOK Yum Warning");
const QString walkback =
    QStringLiteral("Internal error: python exception occurred from C code.\nWhen reporting this "
                   "issue, please include the contents of the\nLog window, which should contain a "
                   "walkback.");

/// An updatable, an installed and an available package, another available one, and the groups
/// given.
QJsonObject systemWith(const QString& version, const QJsonArray& groups)
{
    return {{"version", version},
            {"updates", QJsonArray{Contract::package("old", {{"ver", "2-1"}})}},
            {"installed",
             QJsonArray{Contract::package("old", {{"ver", "1-1"}}), Contract::package("good")}},
            {"available", QJsonArray{Contract::package("new"), Contract::package("extra")}},
            {"groups", groups}};
}

} // namespace

/// What a marked group makes of its packages where no two marks disagree.
class TestApplyGroups : public ContractTest
{
    Q_OBJECT

    void collect(const QString& version, const QJsonArray& groups)
    {
        contract->play(systemWith(version, groups));
        QVERIFY(contract->collect());
        contract->sortRows();
        contract->forgetCalls();
        const QMutexLocker locker(&contract->engine().getLogEntries().mutex);
        contract->engine().getLogEntries().entries.clear();
    }

    /// What the log says of groups.
    QStringList groupLines()
    {
        return contract->logTexts().filter(QRegularExpression("^For group |^Manually "));
    }

    /// Sets an attribute of a row's object to the value of an expression.
    void setAttribute(const QString& row, const char* name, const char* expression)
    {
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef value = contract->engine().pyr(expression);
        QVERIFY(value);
        QCOMPARE(PyObject_SetAttrString(contract->row(row)->pyObject, name, value.get()), 0);
    }

private Q_SLOTS:
    void aMarkedGroupMarksItsPackages_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<Package::Action>("action");
        QTest::addColumn<QString>("applied");
        QTest::addColumn<QStringList>("lines");

        const QString mark = "For group g, marking package %1 for %2";
        const QString optional = "For group g, not marking package %1 for Install, becuase the "
                                 "package is optional";
        // The group has: mandatory old, new and one that nobody knows; default good and extra;
        // optional opt; conditional cond.
        for (const char* version : {"2.5.0", "4.14.0"}) {
            const auto add = [&](const char* what, Package::Action action, const QString& applied,
                                 const QStringList& lines) {
                QTest::newRow(qPrintable(QString("%1 %2").arg(version, what)))
                    << version << action << applied << lines;
            };
            add("install", Package::ActionInstall, "['extra', 'new'],[['old', 'old']],[]",
                {mark.arg("old", "Update"), mark.arg("new", "Install"),
                 mark.arg("extra", "Install")});
            add("update", Package::ActionUpdate, "['extra', 'new'],[['old', 'old']],[]",
                {mark.arg("old", "Update"), mark.arg("new", "Install"),
                 mark.arg("extra", "Install")});
            add("remove", Package::ActionRemove, "[],[],['good', 'old', 'opt', 'cond']",
                {mark.arg("old", "Remove"), mark.arg("good", "Remove"), mark.arg("opt", "Remove"),
                 mark.arg("cond", "Remove")});
            add("none", Package::ActionNone, "[],[],[]", {});
        }
        // Until then the script says what is required and what belongs to the whole tree.
        QTest::newRow("2.4.3 install")
            << "2.4.3" << Package::ActionInstall << "['extra', 'new'],[['old', 'old']],[]"
            << QStringList{mark.arg("old", "Update"), mark.arg("new", "Install"),
                           mark.arg("extra", "Install")};
        QTest::newRow("2.4.3 update")
            << "2.4.3" << Package::ActionUpdate << "['new'],[['old', 'old']],[]"
            << QStringList{mark.arg("old", "Update"), mark.arg("new", "Install"),
                           optional.arg("extra")};
        QTest::newRow("2.4.3 remove") << "2.4.3" << Package::ActionRemove << "[],[],['old']"
                                      << QStringList{mark.arg("old", "Remove")};
        QTest::newRow("2.4.3 none")
            << "2.4.3" << Package::ActionNone << "[],[],[]" << QStringList();
    }

    void aMarkedGroupMarksItsPackages()
    {
        QFETCH(QString, version);
        QFETCH(Package::Action, action);
        QFETCH(QString, applied);
        QFETCH(QStringList, lines);
        QJsonObject system = systemWith(
            version, {Contract::group("g", {{"mandatory", QJsonArray{"old", "new", "nobody"}},
                                            {"default", QJsonArray{"good", "extra"}},
                                            {"optional", QJsonArray{"opt"}},
                                            {"conditional", QJsonArray{"cond"}}})});
        QJsonArray installed = system.value("installed").toArray();
        installed.append(Contract::package("opt"));
        installed.append(Contract::package("cond"));
        system.insert("installed", installed);
        contract->play(system);
        QVERIFY(contract->collect());
        contract->sortRows();
        contract->mark({{"g", action}});
        QVERIFY(!contract->apply());

        const auto sorted = [](const QString& text) {
            QStringList words = text.split(QRegularExpression("[^a-z]+"));
            words.sort();
            return words;
        };
        if (action == Package::ActionRemove)
            QCOMPARE(sorted(contract->applied()), sorted(applied));
        else
            QCOMPARE(contract->applied(), applied);
        QCOMPARE(groupLines(), lines);
        for (const QString& line : lines)
            QVERIFY2(contract->logged(Log::Plain, 4, line), qPrintable(line));
        for (const Package::Entry* entry : contract->engine())
            QCOMPARE(entry->action, entry->name == "g" ? action : Package::ActionNone);
    }

    void aMemberThatIsUpToDateIsPassedOver_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<Package::Action>("action");
        for (const char* version : {"2.4.3", "4.14.0"}) {
            QTest::newRow(qPrintable(QString("install %1").arg(version)))
                << version << Package::ActionInstall;
            QTest::newRow(qPrintable(QString("update %1").arg(version)))
                << version << Package::ActionUpdate;
        }
    }

    void aMemberThatIsUpToDateIsPassedOver()
    {
        QFETCH(QString, version);
        QFETCH(Package::Action, action);
        collect(version, {Contract::group("g", {{"mandatory", QJsonArray{"good", "nobody"}}})});
        contract->mark({{"g", action}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[],[]"));
        QCOMPARE(contract->logTexts(), QStringList({"Applying"}));
    }

    void removalPassesOverWhatIsNotInstalled()
    {
        collect("4.14.0", {Contract::group("g", {{"mandatory", QJsonArray{"new", "nobody"}}})});
        contract->mark({{"g", Package::ActionRemove}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[],[]"));
        QCOMPARE(contract->logTexts(), QStringList({"Applying"}));
    }

    void aPackageThatIsMarkedAlreadyIsOnlyLogged_data()
    {
        QTest::addColumn<Package::Action>("group");
        QTest::addColumn<QString>("package");
        QTest::addColumn<Package::Action>("packageAction");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("applied");
        const QString was = "For group g, package %1 already was marked for %2";
        for (Package::Action group : {Package::ActionInstall, Package::ActionUpdate}) {
            const char* name = group == Package::ActionInstall ? "install" : "update";
            QTest::newRow(qPrintable(QString("%1, new for install").arg(name)))
                << group << "new" << Package::ActionInstall << was.arg("new", "Install")
                << "['new'],[],[]";
            QTest::newRow(qPrintable(QString("%1, old for update").arg(name)))
                << group << "old" << Package::ActionUpdate << was.arg("old", "Update")
                << "[],[['old', 'old']],[]";
        }
        // Not "already": a removal says the same of what it marks and of what was marked.
        QTest::newRow("remove, good for remove")
            << Package::ActionRemove << "good" << Package::ActionRemove
            << "For group g, marking package good for Remove"
            << "[],[],['good']";
    }

    void aPackageThatIsMarkedAlreadyIsOnlyLogged()
    {
        QFETCH(Package::Action, group);
        QFETCH(QString, package);
        QFETCH(Package::Action, packageAction);
        QFETCH(QString, line);
        QFETCH(QString, applied);
        collect("4.14.0", {Contract::group("g", {{"mandatory", QJsonArray{package}}})});
        contract->mark({{"g", group}, {package, packageAction}});
        QVERIFY(!contract->apply());
        QCOMPARE(groupLines(), QStringList({line}));
        QVERIFY(contract->logged(Log::Plain, 4, line));
        QCOMPARE(contract->applied(), applied);
    }

    void twoGroupsAgree()
    {
        const QJsonObject members{{"mandatory", QJsonArray{"new"}}};
        collect("4.14.0", {Contract::group("a", members), Contract::group("b", members)});
        contract->mark({{"a", Package::ActionInstall}, {"b", Package::ActionUpdate}});
        QVERIFY(!contract->apply());
        QCOMPARE(groupLines(),
                 QStringList({"For group a, marking package new for Install",
                              "For group b, package new already was marked for Install"}));
        QCOMPARE(contract->applied(), QString("['new'],[],[]"));
    }

    void namesWithPlaceholdersAreLoggedAsTheyAre()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("%1%3")}},
             {"groups", QJsonArray{Contract::group("%2%3", {{"mandatory", QJsonArray{"%1%3"}}})}}});
        QVERIFY(contract->collect());
        contract->mark({{"%2%3", Package::ActionInstall}});
        QVERIFY(!contract->apply());
        QCOMPARE(groupLines(), QStringList({"For group %2%3, marking package %1%3 for Install"}));
    }

    void theListsOfAGroupFollowTheVersion_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("required");
        QTest::addColumn<QString>("tree");
        QTest::addColumn<QString>("all");
        QTest::newRow("2.4.3") << "2.4.3"
                               << "m"
                               << "m d"
                               << "m";
        QTest::newRow("2.5.0") << "2.5.0"
                               << "m d"
                               << "m d"
                               << "m d o c";
        QTest::newRow("4.14.0") << "4.14.0"
                                << "m d"
                                << "m d"
                                << "m d o c";
    }

    void theListsOfAGroupFollowTheVersion()
    {
        QFETCH(QString, version);
        QFETCH(QString, required);
        QFETCH(QString, tree);
        QFETCH(QString, all);
        collect(version, {Contract::group("g", {{"mandatory", QJsonArray{"m"}},
                                                {"default", QJsonArray{"d"}},
                                                {"optional", QJsonArray{"o"}},
                                                {"conditional", QJsonArray{"c"}}})});
        OpenEngine::PyGILStateWrapper lock(true);
        const auto text = [](PyObject* sequence) {
            const PyRef owner = PyRef::adopt(sequence);
            if (!sequence || !PySequence_Check(sequence))
                return QString("no sequence");
            const PyRef blank = PyRef::adopt(PyUnicode_FromString(" "));
            const PyRef joined = PyRef::adopt(PyUnicode_Join(blank.get(), sequence));
            return QString::fromUtf8(PyUnicode_AsUTF8(joined.get()));
        };
        const Package::Entry* group = contract->row("g");
        QCOMPARE(text(contract->engine().requiredPkgs(group)), required);
        QCOMPARE(text(contract->engine().pkgTree(group)), tree);
        QCOMPARE(text(contract->engine().allPkgs(group)), all);
    }

    void aGroupWithoutItsListsEndsTheApply_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<Package::Action>("action");
        QTest::addColumn<QString>("message");
        const QString required = "Internal error: group lacks required package lists";
        const QString all = "Internal error: group lacks package lists";
        QTest::newRow("mandatory, install")
            << "mandatory_packages" << Package::ActionInstall << required;
        QTest::newRow("default, install")
            << "default_packages" << Package::ActionInstall << required;
        QTest::newRow("default, update") << "default_packages" << Package::ActionUpdate << required;
        for (const char* field : {"mandatory_packages", "default_packages", "optional_packages",
                                  "conditional_packages"})
            QTest::newRow(qPrintable(QString("%1, remove").arg(field)))
                << field << Package::ActionRemove << all;
    }

    void aGroupWithoutItsListsEndsTheApply()
    {
        QFETCH(QString, field);
        QFETCH(Package::Action, action);
        QFETCH(QString, message);
        // Installable, so that the collection doesn't look at the lists.
        collect("4.14.0", {Contract::group("g", {{"without", QJsonArray{field}}})});
        contract->mark({{"g", action}});
        driver->expect(yumError).text(message).press("OK");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->calls().filter("apply"), QStringList());
        QCOMPARE(contract->callCount("flush"), 0);
        QVERIFY(!PyErr_Occurred());
    }

    void aListThatIsNoDictionaryEndsTheApply_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<Package::Action>("action");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("message");
        const QString required =
            "Internal error: group lacks required proper required package lists";
        const QString all = "Internal error: group lacks required proper package lists";
        const QString noMethod = "Internal error: method keys not found\n";
        QTest::newRow("no keys") << QByteArray("default_packages") << QByteArray("['new']")
                                 << Package::ActionInstall << noMethod << required;
        QTest::newRow("no keys, remove") << QByteArray("optional_packages") << QByteArray("['new']")
                                         << Package::ActionRemove << noMethod << all;
        QTest::newRow("keys fails")
            << QByteArray("mandatory_packages") << QByteArray("Holder(keys=lambda: 1 / 0)")
            << Package::ActionUpdate << walkback << required;
        QTest::newRow("keys gives a number")
            << QByteArray("mandatory_packages") << QByteArray("Holder(keys=lambda: 7)")
            << Package::ActionInstall << QString() << required;
        QTest::newRow("keys gives a number, remove")
            << QByteArray("conditional_packages") << QByteArray("Holder(keys=lambda: 7)")
            << Package::ActionRemove << QString() << all;
    }

    void aListThatIsNoDictionaryEndsTheApply()
    {
        QFETCH(QByteArray, field);
        QFETCH(QByteArray, value);
        QFETCH(Package::Action, action);
        QFETCH(QString, first);
        QFETCH(QString, message);
        collect("4.14.0", {Contract::group("g")});
        setAttribute("g", field, value);
        contract->mark({{"g", action}});
        if (!first.isEmpty())
            driver->expect(yumError).text(first).press("OK");
        driver->expect(yumError).text(message).press("OK");
        QVERIFY(!contract->apply());
        QVERIFY(contract->applied().isNull());
    }

    void anOldGroupThatFailsEndsTheApply_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<Package::Action>("action");
        QTest::addColumn<QString>("message");
        QTest::newRow("required, update")
            << QByteArray("requiredPkgs") << QByteArray("lambda name: 1 / 0")
            << Package::ActionUpdate << walkback;
        QTest::newRow("tree, update") << QByteArray("pkgTree") << QByteArray("lambda name: 1 / 0")
                                      << Package::ActionUpdate << walkback;
        QTest::newRow("tree, install") << QByteArray("pkgTree") << QByteArray("lambda name: 1 / 0")
                                       << Package::ActionInstall << walkback;
        QTest::newRow("required, remove")
            << QByteArray("requiredPkgs") << QByteArray("lambda name: 1 / 0")
            << Package::ActionRemove << walkback;
        QTest::newRow("no method")
            << QByteArray("pkgTree") << QByteArray("None") << Package::ActionInstall
            << QString("Internal error: method pkgTree not callable\n");
        QTest::newRow("no sequence") << QByteArray("pkgTree") << QByteArray("lambda name: None")
                                     << Package::ActionInstall << walkback;
        QTest::newRow("broken sequence")
            << QByteArray("pkgTree") << QByteArray("lambda name: broken(['new'])")
            << Package::ActionInstall << walkback;
    }

    void anOldGroupThatFailsEndsTheApply()
    {
        QFETCH(QByteArray, method);
        QFETCH(QByteArray, value);
        QFETCH(Package::Action, action);
        QFETCH(QString, message);
        collect("2.4.3", {Contract::group("g")});
        setAttribute("g", method, value);
        contract->mark({{"g", action}});
        driver->expect(yumError).text(message).press("OK");
        QVERIFY(!contract->apply());
        QVERIFY(contract->applied().isNull());
        QCOMPARE(contract->row("new")->applyAction, Package::ActionNone);
    }

    void whatIsNoNameIsToldOnceAndPassedOver()
    {
        collect("2.4.3", {Contract::group("g")});
        setAttribute("g", "pkgTree", "lambda name: [3, None, 'new', object(), b'extra', '']");
        contract->mark({{"g", Package::ActionInstall}});
        driver->expect(yumWarning)
            .text("Internal error: YumIO::pyString did not understand type")
            .press("OK");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['extra', 'new'],[],[]"));
    }

    void theListsOfAGroupAreGivenBack()
    {
        collect("4.14.0", {Contract::group("g", {{"mandatory", QJsonArray{"new"}}})});
        contract->mark({{"g", Package::ActionInstall}});
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef field = PyRef::adopt(
            PyObject_GetAttrString(contract->row("g")->pyObject, "mandatory_packages"));
        PyObject* name = nullptr;
        Py_ssize_t position = 0;
        QVERIFY(PyDict_Next(field.get(), &position, &name, nullptr));
        const Py_ssize_t before = Py_REFCNT(field.get());
        // Each list of names holds it.
        const Py_ssize_t namesBefore = Py_REFCNT(name);
        for (Package::Entry* entry : contract->engine().entries)
            entry->applyAction = entry->action;
        for (int i = 0; i < 1000; ++i)
            QVERIFY(contract->engine().applyGroups());
        QCOMPARE(Py_REFCNT(field.get()), before);
        QCOMPARE(Py_REFCNT(name), namesBefore);
    }
};

QTEST_MAIN(TestApplyGroups)
#include "tst_ApplyGroups.moc"
