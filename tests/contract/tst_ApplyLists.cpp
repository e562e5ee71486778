// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(Package::Action)

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString walkback =
    QStringLiteral("Internal error: python exception occurred from C code.\nWhen reporting this "
                   "issue, please include the contents of the\nLog window, which should contain a "
                   "walkback.");

/// The seven lists in the order in which makeLists() gives them.
struct Lists {
    PyObject* tsInfo = nullptr;
    PyObject* lists = nullptr;
    PyObject* seven[7] = {};

    bool make(OpenEngine& engine, PyObject* base)
    {
        return engine.makeLists(base, tsInfo, lists, seven[0], seven[1], seven[2], seven[3],
                                seven[4], seven[5], seven[6]);
    }
};

} // namespace

/// The lists that the script gets, what is counted with them, and the lists that it gives.
class TestApplyLists : public ContractTest
{
    Q_OBJECT

    /// old is updatable with two installed versions, good is installed, twice has two installed
    /// versions, new is available. The files of headers are where `headers` says.
    void collect(const QJsonObject& headers = {})
    {
        const auto withHeader = [&](const QString& name, const QString& version) {
            QJsonObject more{{"ver", version}};
            if (headers.contains(name))
                more.insert("localHdr", headers.value(name));
            return Contract::package(name, more);
        };
        contract->play({{"updates", QJsonArray{withHeader("old", "3")}},
                        {"installed", QJsonArray{withHeader("old", "1"), withHeader("old", "2"),
                                                 withHeader("good", "1"), withHeader("twice", "1"),
                                                 withHeader("twice", "2")}},
                        {"available", QJsonArray{withHeader("new", "1")}},
                        {"groups", QJsonArray{Contract::group("g")}},
                        {"apply", "calls.append(('versions', ','.join('.'.join(p.printVer() for p "
                                  "in pair) for pair in updates) + ';' + ','.join(p.printVer() for "
                                  "p in removes), 0))"}});
        QVERIFY(contract->collect());
        contract->sortRows();
        contract->forgetCalls();
    }

    /// Versions of the pairs of updates, then of the removes, that the script got.
    QString versions()
    {
        const QStringList found = contract->calls().filter(QRegularExpression("^versions"));
        return found.isEmpty() ? QString() : found.first().mid(9).chopped(1);
    }

    OpenEngine::ApplyState& state() { return contract->engine().applyState; }

    PyRef value(const char* expression)
    {
        PyRef result = contract->engine().pyr(expression);
        if (!result)
            qFatal("no value of %s", expression);
        return result;
    }

private Q_SLOTS:
    void withoutMarksTheScriptIsCalledAllTheSame()
    {
        collect();
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[],[]"));
        QCOMPARE(state().depPackages, 0u);
        QCOMPARE(state().depHeaders, 0u);
    }

    void aGroupReachesNoList_data()
    {
        QTest::addColumn<Package::Action>("action");
        QTest::newRow("install") << Package::ActionInstall;
        QTest::newRow("update") << Package::ActionUpdate;
        QTest::newRow("remove") << Package::ActionRemove;
    }

    void aGroupReachesNoList()
    {
        QFETCH(Package::Action, action);
        collect();
        contract->mark({{"g", action}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[],[]"));
        QCOMPARE(state().depPackages, 0u);
    }

    void anInstallIsOnePackage()
    {
        collect();
        contract->mark({{"new", Package::ActionInstall}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[],[]"));
        QCOMPARE(state().depPackages, 1u);
        QCOMPARE(state().depHeaders, 1u);
    }

    void anUpdateIsAPairForEachInstalledVersion()
    {
        collect();
        contract->mark({{"old", Package::ActionUpdate}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[['old', 'old'], ['old', 'old']],[]"));
        QCOMPARE(versions(), QString("3.1,3.2;"));
        QCOMPARE(state().depPackages, 3u);
        QCOMPARE(state().depHeaders, 1u);
        OpenEngine::PyGILStateWrapper lock(true);
        QCOMPARE(contract->eval("str(lists[1][0][0] is lists[1][1][0])"), QString("True"));
    }

    void removingAnUpdatableRowRemovesWhatIsInstalled()
    {
        collect();
        contract->mark({{"old", Package::ActionRemove}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[],['old', 'old']"));
        QCOMPARE(versions(), QString(";1,2"));
        QCOMPARE(state().depPackages, 2u);
        QCOMPARE(state().depHeaders, 0u);
    }

    void removingAnInstalledRowRemovesAllItsVersions()
    {
        collect();
        contract->mark({{"twice", Package::ActionRemove}, {"good", Package::ActionRemove}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("[],[],['good', 'twice', 'twice']"));
        QCOMPARE(versions(), QString(";1,1,2"));
        QCOMPARE(state().depPackages, 3u);
    }

    void allThreeListsAtOnce()
    {
        collect();
        contract->mark({{"new", Package::ActionInstall},
                        {"old", Package::ActionUpdate},
                        {"good", Package::ActionRemove}});
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[['old', 'old'], ['old', 'old']],['good']"));
        QCOMPARE(state().depPackages, 5u);
    }

    void anUpdateWithNothingInstalledEndsTheApply()
    {
        collect();
        contract->mark({{"new", Package::ActionUpdate}, {"good", Package::ActionRemove}});
        driver->expect(yumError)
            .text("Internal error: Unable to find installed version for package update new")
            .press("OK");
        QVERIFY(!contract->apply());
        QVERIFY(contract->applied().isNull());
        QCOMPARE(contract->callCount("applyFailCleanup"), 0);
        QCOMPARE(contract->callCount("flush"), 0);
        QCOMPARE(contract->row("new")->action, Package::ActionUpdate);
    }

    void headersThatAreThereNeedNoFetching()
    {
        QTemporaryDir directory;
        const QString there = directory.filePath("there.hdr");
        QFile file(there);
        QVERIFY(file.open(QIODevice::WriteOnly));
        collect({{"new", there}, {"old", directory.filePath("absent.hdr")}, {"good", there}});
        contract->mark({{"new", Package::ActionInstall},
                        {"old", Package::ActionUpdate},
                        {"good", Package::ActionRemove}});
        QVERIFY(!contract->apply());
        QCOMPARE(state().depHeaders, 1u);
        // One question a package that comes, however many versions go.
        QStringList asked = contract->calls().filter("localHdr");
        asked.sort();
        QCOMPARE(asked, QStringList({"localHdr(new)", "localHdr(old)"}));
    }

    void aHeaderCountsAsTenPackages()
    {
        collect();
        contract->mark({{"new", Package::ActionInstall}, {"old", Package::ActionUpdate}});
        QVariantList totals;
        contract->probe([&](const QString& method) {
            if (method != "apply")
                return;
            Progress::Object* progress = contract->engine().progress;
            QSignalSpy starts(progress, &Progress::Object::startItemSig);
            progress->startItemAct("the first", 1, 0);
            progress->startItemAct("after all packages", 1, 4);
            progress->startItemAct("and nearly all headers", 1, 23);
            progress->startItemAct("an end", 1, 24);
            progress->startItem("the very end", 1, 1);
            for (const auto& arguments : qAsConst(starts))
                totals.append(arguments.at(1));
        });
        QVERIFY(!contract->apply());
        QCOMPARE(state().depPassActs, 4u);
        QCOMPARE(state().depActs, 4u);
        // Each item starts where the one before ends: 100, then 9900 / 24 an act.
        QCOMPARE(totals.size(), 5);
        QCOMPARE(totals.at(0).toInt(), 100);
        QCOMPARE(totals.at(1).toInt(), 100);
        QCOMPARE(totals.at(2).toInt(), 100 + 9900 * 4 / 24);
        QCOMPARE(totals.at(3).toInt(), 100 + 9900 * 23 / 24);
        QCOMPARE(totals.at(4).toInt(), 10000);
    }

    void whatCannotBeListedIsToldAndPassedOver_data()
    {
        QTest::addColumn<QString>("package");
        QTest::addColumn<Package::Action>("action");
        QTest::addColumn<int>("version"); // of the chain, whose object is missing
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("applied");
        QTest::newRow("install") << "new" << Package::ActionInstall << 0
                                 << QStringList{"Unable to add package new to installs list"}
                                 << "[],[],['good']";
        const QString first = "Unable to add new package to pair for updated package old";
        QTest::newRow("update, new")
            << "old" << Package::ActionUpdate << 0 << QStringList{first, first} << "[],[],['good']";
        QTest::newRow("update, old")
            << "old" << Package::ActionUpdate << 1
            << QStringList{"Unable to add old package to pair for updated package old"}
            << "[],[['old', 'old']],['good']";
        QTest::newRow("remove") << "twice" << Package::ActionRemove << 0
                                << QStringList{"Unable to add package twice to removes list"}
                                << "[],[],['good', 'twice']";
    }

    void whatCannotBeListedIsToldAndPassedOver()
    {
        QFETCH(QString, package);
        QFETCH(Package::Action, action);
        QFETCH(int, version);
        QFETCH(QStringList, messages);
        QFETCH(QString, applied);
        collect();
        contract->mark({{package, action}, {"good", Package::ActionRemove}});
        Package::Entry* entry = contract->row(package);
        for (int i = 0; i < version; ++i)
            entry = entry->next;
        {
            OpenEngine::PyGILStateWrapper lock(true);
            Py_CLEAR(entry->pyObject);
        }
        for (const QString& message : messages)
            driver->expect(yumError).text(message).press("OK");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), applied);
    }

    void theListsAreGivenBack()
    {
        collect();
        contract->mark({{"new", Package::ActionInstall},
                        {"old", Package::ActionUpdate},
                        {"good", Package::ActionRemove}});
        const auto counts = [&] {
            OpenEngine::PyGILStateWrapper lock(true);
            contract->engine().py("lists.clear()");
            QList<Py_ssize_t> found;
            for (const Package::Entry* entry : contract->engine()) {
                for (; entry; entry = entry->next)
                    found.append(Py_REFCNT(entry->pyObject));
            }
            return found;
        };
        const QList<Py_ssize_t> before = counts();
        for (int i = 0; i < 10; ++i)
            QVERIFY(!contract->apply());
        QCOMPARE(counts(), before);
    }

    void theListsAreGivenBackWhereAnApplyEndsEarly()
    {
        collect();
        contract->mark({{"good", Package::ActionRemove}, {"new", Package::ActionUpdate}});
        OpenEngine::PyGILStateWrapper lock(true);
        PyObject* package = contract->row("good")->pyObject;
        const Py_ssize_t before = Py_REFCNT(package);
        driver->expect(yumError).press("OK");
        QVERIFY(!contract->apply());
        QCOMPARE(Py_REFCNT(package), before);
    }

    // ---- Versions that have been started on -----------------------------------------------------

    void aVersionThatHasNotBeenStartedIsFound()
    {
        collect();
        OpenEngine& engine = contract->engine();
        Package::Entry* entry = contract->row("old");
        for (Package::Action action : {Package::ActionUpdate, Package::ActionInstall,
                                       Package::ActionRemove, Package::ActionNone}) {
            entry->applyAction = action;
            QCOMPARE(engine.hasNotStartedUpdate(entry), action == Package::ActionUpdate);
            QCOMPARE(engine.hasNotStartedRemove(entry), action == Package::ActionRemove);
        }
        entry->started = true;
        entry->next->started = true;
        entry->applyAction = Package::ActionUpdate;
        QVERIFY2(engine.hasNotStartedUpdate(entry), "the last of the chain is left");
        entry->next->next->started = true;
        QVERIFY(!engine.hasNotStartedUpdate(entry));
        entry->started = false;
        QVERIFY2(engine.hasNotStartedUpdate(entry), "the head counts too");
        entry->applyAction = Package::ActionRemove;
        QVERIFY(engine.hasNotStartedRemove(entry));
        entry->started = true;
        QVERIFY(!engine.hasNotStartedRemove(entry));
    }

    void aSecondApplyForgetsStartedVersionsButTheHead()
    {
        collect();
        contract->mark({{"old", Package::ActionUpdate}});
        Package::Entry* entry = contract->row("old");
        for (Package::Entry* version = entry; version; version = version->next)
            version->started = true;
        QVERIFY(!contract->apply());
        QVERIFY(entry->started);
        QVERIFY(!entry->next->started && !entry->next->next->started);
        QVERIFY(contract->engine().hasNotStartedUpdate(entry));
    }

    // ---- The seven lists of a transaction -------------------------------------------------------

    void theSevenListsComeInOneOrderOfBothForms_data()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("2.3.1") << "2.3.1";
        QTest::newRow("2.3.2") << "2.3.2";
        QTest::newRow("4.14.0") << "4.14.0";
    }

    void theSevenListsComeInOneOrderOfBothForms()
    {
        QFETCH(QString, version);
        contract->play({{"version", version}});
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef base = value("base(**{word: [word] for word in WORDS})");
        Lists made;
        QVERIFY(made.make(contract->engine(), base.get()));
        QStringList words;
        for (PyObject* list : made.seven)
            words.append(contract->engine().pyStringDec(PySequence_GetItem(list, 0)));
        QCOMPARE(words, QStringList({"updated", "installed", "removed", "obsoleted", "depupdated",
                                     "depinstalled", "depremoved"}));
        Py_DECREF(made.tsInfo);
        Py_DECREF(made.lists);
    }

    void listsThatAreMadeAtEachReadStayAlive()
    {
        contract->play({});
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef base = value(
            "Holder(tsInfo=Holder(makelists=lambda: type('Fresh', (), {word: property(lambda self, "
            "word=word: [word]) for word in WORDS})()))");
        Lists made;
        QVERIFY(made.make(contract->engine(), base.get()));
        for (PyObject* list : made.seven)
            QVERIFY(PyList_Check(list) && Py_REFCNT(list) == 1);
        Py_DECREF(made.tsInfo);
        Py_DECREF(made.lists);
    }

    void listsThatCannotBeHad_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QByteArray>("base");
        QTest::addColumn<QString>("message");
        const QString noTuple = "Internal error: yumIO.makelists() did not return a tuple\n";
        const QString size = "Internal error: yumIO.makelists() returned tuple of incorrect size\n";
        const QByteArray lists = "Holder(tsInfo=Holder(makelists=lambda: %1))";
        const auto add = [&](const char* what, const char* version, const QByteArray& base,
                             const QString& message) {
            QTest::newRow(qPrintable(QString("%1 %2").arg(version, what)))
                << version << base << message;
        };
        const auto giving = [&](const char* what) { return QByteArray(lists).replace("%1", what); };
        add("list", "2.3.1", giving("[[]] * 7"), noTuple);
        add("object", "2.3.1", giving("Holder(**{word: [] for word in WORDS})"), noTuple);
        add("six", "2.3.1", giving("((),) * 6"), size);
        add("eight", "2.3.1", giving("((),) * 8"), size);
        add("nothing", "2.3.1", giving("None"), noTuple);
        add("tuple", "2.3.2", giving("((),) * 7"), walkback);
        add("one missing", "4.14.0", giving("Holder(**{word: [] for word in WORDS[:6]})"),
            walkback);
        for (const char* version : {"2.3.1", "4.14.0"}) {
            add("raises", version, giving("1 / 0"), walkback);
            add("no tsInfo", version, "Holder()", walkback);
            add("no makelists", version, "Holder(tsInfo=None)",
                "Internal error: method makelists not found\n");
        }
    }

    void listsThatCannotBeHad()
    {
        QFETCH(QString, version);
        QFETCH(QByteArray, base);
        QFETCH(QString, message);
        contract->play({{"version", version}});
        OpenEngine::PyGILStateWrapper lock(true);
        const PyRef object = value(base);
        const Py_ssize_t before = Py_REFCNT(object.get());
        Lists made;
        driver->expect(yumError).text(message).press("OK");
        QVERIFY(!made.make(contract->engine(), object.get()));
        QVERIFY2(!made.tsInfo && !made.lists, "nothing is left to release");
        QCOMPARE(Py_REFCNT(object.get()), before);
        PyErr_Clear();
    }
};

QTEST_MAIN(TestApplyLists)
#include "tst_ApplyLists.moc"
