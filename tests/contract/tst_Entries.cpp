// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"
#include "support/DialogDriver.h"

#include <QFile>
#include <QTemporaryFile>
#include <QtTest>

#include <memory>

#include <unistd.h>

namespace
{

/// What is written to standard error while `function` runs.
QByteArray standardErrorOf(const std::function<void()>& function)
{
    QTemporaryFile file;
    if (!file.open())
        return "no temporary file";
    fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);
    function();
    fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    QFile written(file.fileName());
    return written.open(QIODevice::ReadOnly) ? written.readAll() : QByteArray("unreadable");
}

} // namespace

class TestEntries : public ContractTest
{
    Q_OBJECT

private Q_SLOTS:
    void anEntryWithoutAnObjectIsDestroyedSilently()
    {
        const QByteArray text = standardErrorOf([] {
            auto* entry = new Package::Entry;
            entry->next = new Package::Entry;
            delete entry;
        });
        QCOMPARE(text, QByteArray());
    }

    void entriesThatStillHoldObjectsAreToldOnce()
    {
        // Never dereferenced, so that any address will do.
        auto* object = reinterpret_cast<PyObject*>(this);
        QByteArray expected;
        const QByteArray text = standardErrorOf([&] {
            auto* entry = new Package::Entry;
            entry->pyObject = object;
            expected = QString::asprintf("Internal error: attempt to delete Package::Entry %p "
                                         "with extant python obj %p\n",
                                         static_cast<void*>(entry), static_cast<void*>(object))
                           .toUtf8();
            entry->next = new Package::Entry;
            entry->next->pyObject = object;
            delete entry;
            auto* other = new Package::Entry;
            other->pyObject = object;
            delete other;
        });
        QCOMPARE(text, expected);
    }

    void aNewEntryIsEmpty()
    {
        const Package::Entry entry;
        QCOMPARE(entry.action, Package::ActionNone);
        QVERIFY(entry.name.isEmpty() && entry.sizeText.isEmpty() && entry.buildTimeText.isEmpty());
        QCOMPARE(entry.sizeBytes, quint64(0));
        QCOMPARE(entry.buildTime, 0L);
        QVERIFY(!entry.pyObject && !entry.next && !entry.duplicate);
    }

    void keysAreEqualOnlyInAllThree()
    {
        const YumIO::EntryKey key(false, "a", "b");
        QVERIFY(key == YumIO::EntryKey(false, "a", "b"));
        QVERIFY(!(key == YumIO::EntryKey(true, "a", "b")));
        QVERIFY(!(key == YumIO::EntryKey(false, "b", "b")));
        QVERIFY(!(key == YumIO::EntryKey(false, "a", "a")));
        QCOMPARE(qHash(key), 2 * qHash(QString("a")) + 4 * qHash(QString("b")));
        QCOMPARE(qHash(YumIO::EntryKey(true, "a", "b")), qHash(key) + 1);
    }

    void textsOfStates()
    {
        Package::Entry entry;
        const auto text = [&](int state) {
            entry.state = static_cast<Package::State>(state);
            return contract->engine().getState(entry);
        };
        QCOMPARE(text(0), QString("Available for update"));
        QCOMPARE(text(1), QString("Available for installation"));
        QCOMPARE(text(2), QString("Installed"));
        QCOMPARE(text(3), QString());
    }

    void textsOfKinds()
    {
        Package::Entry entry;
        const auto text = [&](int kind) {
            entry.kind = static_cast<Package::Kind>(kind);
            return contract->engine().getKind(entry);
        };
        QCOMPARE(text(0), QString("Suite of packages"));
        QCOMPARE(text(1), QString("Group of packages"));
        QCOMPARE(text(2), QString("Ordinary package"));
        QCOMPARE(text(3), QString());
    }

    void plainGettersGiveTheFields()
    {
        Package::Entry entry;
        entry.name = "n";
        entry.verRel = "v";
        entry.repo = "r";
        entry.arch = "a";
        entry.sizeText = "z";
        entry.summary = "s";
        entry.buildTimeText = "b";
        const YumIO& engine = contract->engine();
        QCOMPARE(QStringList({engine.getName(entry), engine.getVerRel(entry), engine.getRepo(entry),
                              engine.getArch(entry), engine.getSize(entry),
                              engine.getSummary(entry), engine.getBuildTime(entry)}),
                 QStringList({"n", "v", "r", "a", "z", "s", "b"}));
    }

    void otherGettersAskThePackage()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package(
                               "a", {{"group", "System"},
                                     {"relativepath", "Packages/a.rpm"},
                                     {"fields", QJsonObject{{"description", "Long\ntext\n\n"},
                                                            {"vendor", "V"},
                                                            {"buildhost", "B"},
                                                            {"sourcerpm", "S"},
                                                            {"license", "L"},
                                                            {"packager", "P"},
                                                            {"url", QJsonValue()}}}})}}});
        QVERIFY(contract->collect());
        const Package::Entry& entry = *contract->row("a");
        YumIO& engine = contract->engine();
        QCOMPARE(engine.getDescription(entry), QString("Long\ntext"));
        QCOMPARE(engine.getGroup(entry), QString("System"));
        QCOMPARE(engine.getVendor(entry), QString("V"));
        QCOMPARE(engine.getBuildHost(entry), QString("B"));
        QCOMPARE(engine.getSourceRpm(entry), QString("S"));
        QCOMPARE(engine.getLicense(entry), QString("L"));
        QCOMPARE(engine.getPackager(entry), QString("P"));
        QCOMPARE(engine.getUrl(entry), QString());
        QCOMPARE(engine.getBinaryRpm(entry), QString("Packages/a.rpm"));
        QCOMPARE(engine.getInstallTime(entry), QString());
        QCOMPARE(engine.getRelocations(entry), QString());
    }

    void aMissingFieldIsEmptyWithoutADialog()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getVendor(*contract->row("a")), QString());
    }

    void binaryRpmOfAnInstalledPackageIsEmpty()
    {
        // returnSimple() would answer; the attribute decides.
        QJsonObject package = Contract::installed("a");
        package.insert("fields", QJsonObject{{"relativepath", "x"}});
        contract->play({{"installed", QJsonArray{package}}});
        QVERIFY(contract->collect());
        QCOMPARE(contract->engine().getBinaryRpm(*contract->row("a")), QString());
    }

    void headerGettersOfAnInstalledPackage()
    {
        contract->play(
            {{"installed",
              QJsonArray{Contract::installed("a", {{"INSTALLTIME", 86400},
                                                   {"PREFIXES", QJsonArray{"/usr", "/opt"}}}),
                         Contract::installed(
                             "b", {{"INSTALLTIME", QJsonArray{86400}}, {"PREFIXES", "/usr"}}),
                         Contract::installed("c")}}});
        QVERIFY(contract->collect());
        YumIO& engine = contract->engine();
        QCOMPARE(engine.getInstallTime(*contract->row("a")), YumIO::timeFormat(86400));
        QCOMPARE(engine.getRelocations(*contract->row("a")), QString("/usr\n/opt"));
        QCOMPARE(engine.getInstallTime(*contract->row("b")), YumIO::timeFormat(86400));
        QCOMPARE(engine.getRelocations(*contract->row("b")), QString("/usr"));
        QCOMPARE(engine.getInstallTime(*contract->row("c")), QString());
        QCOMPARE(engine.getRelocations(*contract->row("c")), QString());
    }

    void variablesOfThePackageManager()
    {
        contract->play({{"yumvar", QJsonObject{{"releasever", "12"}}}});
        QCOMPARE(contract->engine().getYumVar("releasever"), QString("12"));
        QCOMPARE(contract->engine().getYumVar("nosuch"), QString());
    }

    void thereAreNoRowsWhileEntriesAreCleared()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        OpenEngine& engine = contract->engine();
        QCOMPARE(engine.count(), 1);
        QCOMPARE(engine[0]->name, QString("a"));
        engine.clearingEntries = true;
        QCOMPARE(engine.count(), 0);
        QVERIFY(engine.begin() == engine.end());
        QCOMPARE(engine.entries.size(), 1);
        engine.clearingEntries = false;
        QCOMPARE(std::distance(engine.begin(), engine.end()), 1);
    }

    void workAskedForWhileWorkRunsIsRefused()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        OpenEngine& engine = contract->engine();
        Package::Entry entry;
        entry.pyObject = engine.pyr("current.packages('available')[0]").release();

        bool asked = false;
        QString files = "none yet";
        bool loaded = true;
        contract->probe([&](const QString& method) {
            if (method != QLatin1String("collectUpdates"))
                return;
            const Python::PyThreadStateWrapper away;
            QMetaObject::invokeMethod(
                &contract->window,
                [&] {
                    files = engine.getFiles(entry);
                    loaded = engine.collectOtherData();
                    engine.clear();
                    asked = true;
                },
                Qt::BlockingQueuedConnection);
        });
        QVERIFY(contract->collect({}));
        contract->probe(nullptr);
        Py_CLEAR(entry.pyObject);
        QVERIFY(asked);
        QCOMPARE(files, QString());
        QVERIFY(!loaded);
        QCOMPARE(contract->callCount("collectFileLists"), 0);
        QCOMPARE(contract->callCount("flush"), 0);
        QCOMPARE(contract->rowNames(), QStringList("a"));
        QVERIFY2(engine.collectOtherData(), "work is over");
    }

    void clearingGivesUpTheObjectsOfARowAndItsChain()
    {
        contract->play({{"installed", QJsonArray{Contract::package("a"), Contract::package("a")}}});
        QVERIFY(contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        const Package::Entry* entry = contract->row("a");
        QVERIFY(entry && entry->next);
        const PyRef head = PyRef::borrow(entry->pyObject);
        const PyRef link = PyRef::borrow(entry->next->pyObject);
        QCOMPARE(static_cast<int>(Py_REFCNT(head.get())), 2);
        const QByteArray text = standardErrorOf([&] { contract->engine().clearEntries(); });
        QCOMPARE(text, QByteArray());
        QCOMPARE(static_cast<int>(Py_REFCNT(head.get())), 1);
        QCOMPARE(static_cast<int>(Py_REFCNT(link.get())), 1);
        QVERIFY(contract->engine().entryHash.isEmpty());
        QVERIFY(contract->engine().bestByName.isEmpty() && contract->engine().biArchs.isEmpty());
    }

    void rowsOfAFailedCollectionGiveTheirObjectsUpToo()
    {
        contract->play(
            {{"updates", QJsonArray{Contract::package("a")}},
             {"raise", QJsonObject{{"collectAll", QJsonObject{{"type", "YumBaseError"}}}}}});
        driver->expect("VOK Yum Error").press("Close");
        QVERIFY(!contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        const Package::Entry* entry =
            contract->engine().entryHash.value(YumIO::EntryKey(false, "a", "x86_64"));
        QVERIFY(entry);
        const PyRef object = PyRef::borrow(entry->pyObject);
        contract->engine().clearEntries();
        QCOMPARE(static_cast<int>(Py_REFCNT(object.get())), 1);
    }

    void findsAPackageOfTheBaseArchitectureFirst()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "i686"}}),
                                                 Contract::package("a", {{"arch", "x86_64"}}),
                                                 Contract::package("b", {{"arch", "i686"}}),
                                                 Contract::package("c", {{"arch", "noarch"}})}}});
        QVERIFY(contract->collect());
        OpenEngine& engine = contract->engine();
        OpenEngine::PyGILStateWrapper lock(true);
        QCOMPARE(engine.findPackage("a")->arch, QString("x86_64"));
        QCOMPARE(engine.findPackage("b")->arch, QString("i686"));
        QCOMPARE(engine.findPackage("c")->arch, QString("noarch"));
        const int size = engine.entryHash.size();
        QVERIFY(!engine.findPackage("nosuch"));
        QCOMPARE(engine.entryHash.size(), size);
    }

    void aPackageThatFailsThePredicateDoesNotEndTheSearch()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "x86_64"}}),
                                                 Contract::package("a", {{"arch", "i686"}}),
                                                 Contract::package("b")}}});
        QVERIFY(contract->collect());
        OpenEngine::PyGILStateWrapper lock(true);
        const auto predicate = static_cast<bool (YumIO::*)(Package::Entry*)>(&OpenEngine::isI686);
        const Package::Entry* found = contract->engine().findPackage("a", predicate);
        QVERIFY(found);
        QCOMPARE(found->arch, QString("i686"));
        QVERIFY(!contract->engine().findPackage("b", predicate));
    }

    void aSlotIsFoundByFamilyThenNoarchThenMade()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"arch", "i386"}}),
                                                 Contract::package("b", {{"arch", "noarch"}})}}});
        QVERIFY(contract->collect());
        OpenEngine& engine = contract->engine();
        OpenEngine::PyGILStateWrapper lock(true);
        QCOMPARE(engine.findUpdateablePackage("a", "i686"), contract->row("a"));
        QCOMPARE(engine.findUpdateablePackage("b", "i686"), contract->row("b"));
        const int size = engine.entryHash.size();
        Package::Entry*& made = engine.findUpdateablePackage("a", "noarch");
        QVERIFY(!made);
        QCOMPARE(engine.entryHash.size(), size + 1);
        QVERIFY(engine.entryHash.contains(YumIO::EntryKey(false, "a", "noarch")));
    }
};

QTEST_MAIN(TestEntries)
#include "tst_Entries.moc"
