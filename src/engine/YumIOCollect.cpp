// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/YumIOCapturers.h"
#include "engine/YumIODialogs.h"
#include "progress/Progress.h"

// What a row is made of comes from the package object by one call a field, and that is most of the
// cost of a collection. A script that cares for speed gives its package class the method
// `collectRow`:
//
//   collectRow() -> (name, printVer, repoid, arch, size, summary, buildtime, group)
//
// a tuple of exactly these eight, each as the attribute or method of that name gives it; None
// stands for a field that returnSimple() hasn't got. It must be cheap and must not raise. It is
// looked up on the class, not on the instance. A package without it, or whose tuple has another
// shape, is read by the single calls, and both ways make the same row.

struct YumIO::PackageRow {
    PyObject* tuple = nullptr; ///< borrowed
    QString name;
    QString arch;

    enum Field { Name, PrintVer, RepoId, Arch, Size, Summary, BuildTime, Group, FieldCount };

    PyObject* field(Field index) const { return PyTuple_GET_ITEM(tuple, index); }
};

namespace
{

const Steps collectSteps = 24000;

/// Finds collectRow() of packages, whose class is nearly always that of the package before.
class RowMethod
{
public:
    /// Borrowed function of the class, to be called with the package; null where there is none.
    PyObject* of(PyObject* package)
    {
        PyObject* packageType = reinterpret_cast<PyObject*>(Py_TYPE(package));
        if (type.get() != packageType) {
            type = PyRef::borrow(packageType);
            method.reset(PyObject_GetAttrString(packageType, "collectRow"));
            if (!method)
                PyErr_Clear();
        }
        return method.get();
    }

private:
    PyRef type;
    PyRef method;
};

/// Gives a member's reference up at the end of a scope in which the interpreter lock is held.
class ClearAtEnd
{
public:
    explicit ClearAtEnd(PyObject*& member)
        : member(member)
    {
    }
    ~ClearAtEnd() { Py_CLEAR(member); }
    ClearAtEnd(const ClearAtEnd&) = delete;
    ClearAtEnd& operator=(const ClearAtEnd&) = delete;

private:
    PyObject*& member;
};

} // namespace

void YumIO::resetCollectState()
{
    collectState.act = 0;
    collectState.multiActive = false;
    collectState.multiStarted = false;
    collectState.meterThreads.clear();
    collectState.threadIds.clear();
    collectState.idThreads.clear();
}

bool YumIO::collectReal(const QHash<QString, bool>& usedRepos)
{
    blocker.block();
    Progress::User progressUser(progress, totalBar, itemBar);
    YumIODialogsUser dialogsUser(dialogs, parentWidget);
    log(Log::Action, 0, tr("Initialization"));
    PyGILStateWrapper lock(true);

    const auto fail = [this] {
        pyExceptClear();
        progress->reset();
        return false;
    };

    fileListsCollected = false;
    otherDataCollected = false;
    progress->startTotal(tr("Initializing: Total Progress"), collectSteps);
    progress->startItem(tr("Preparing"), 100, 1);

    if (!yumLocked && yumIO) {
        pyExceptStart();
        pyExceptExpect(lockError);
        const PyRef result = pyMethodCall(yumIO, "lock", "()");
        if (pyExceptMatches(result.get(), lockError)) {
            pythonException(tr("Unable to obtain yum lock"));
            return fail();
        }
        pyExceptClear();
        yumLocked = true;
    }

    ClearAtEnd reposDictEnd(reposDict);
    {
        // There is no object where it could not be made anew.
        const PyRef repos = PyRef::adopt(yumIO ? PyObject_GetAttrString(yumIO, "repos") : nullptr);
        Py_XSETREF(reposDict, repos ? PyObject_GetAttrString(repos.get(), "repos") : nullptr);
        if (!reposDict) {
            PyErr_Clear();
            error(tr("Internal error: yumIO.repos.repos not evaluable"));
            return false;
        }
        if (!PyDict_Check(reposDict)) {
            error(tr("Internal error: yumIO.repos.repos not a dictionary"));
            return false;
        }
        useRepos(repos.get(), usedRepos);
    }
    collectState.repos = collectRepos(reposDict);
    collectState.contentsLabel = tr("contents");
    resetCollectState();
    if (PyDict_Size(reposDict) == 0) {
        error(tr("No repositories are configured.\n"
                 "Under the Repositories menu, Edit Configuration can be used to configure "
                 "repositories."));
        return false;
    }
    if (collectState.repos.isEmpty()) {
        error(tr("No repositories are enabled.\n"
                 "Under the Repositories menu, Edit Configuration can be used to configure "
                 "repositories."));
        return false;
    }

    progress->startItem(tr("Reading repositories"), 900, 1);
    progress->setupItemActs(14000, 6 * static_cast<Steps>(collectState.repos.size()));
    pyExceptStart();
    pyExceptExpect(repoError);
    pyExceptExpect(bdbQuit);
    {
        const PyRef result = pyMethodCall(yumIO, "setupRepos", "()");
        if (pyExceptMatches(result.get(), repoError) || pyExceptMatches(result.get(), bdbQuit)) {
            pythonExceptionV(tr("Unable to initialize"));
            return fail();
        }
    }
    pyExceptClear();
    progress->endItemActs();
    basearch = getYumVar(QStringLiteral("basearch"));

    progress->startItem(tr("Collecting updatable packages"), 4000, 1);
    pyExceptStart();
    commExceptSetup();
    {
        const PyRef result = pyMethodCall(yumIO, "setupTs", "()");
        if (commExceptRaised(result.get(), tr("setup transaction")))
            return fail();
    }
    pyExceptClear();

    /// Null after a report, and then the collection has failed.
    const auto collectList = [&](const char* method, const QString& action,
                                 const QString& failure) -> PyRef {
        YumIOCapturersUser capturersUser(capturers, this);
        pyExceptStart();
        commExceptSetup();
        PyRef result = pyMethodCall(yumIO, method, "()");
        if (commExceptRaised(result.get(), action)) {
            fail();
            return PyRef();
        }
        if (!result) {
            error(failure);
            fail();
            return PyRef();
        }
        pyExceptClear();
        return result;
    };

    {
        const PyRef updates =
            collectList("collectUpdates", tr("collect updatable packages"),
                        tr("Internal error: execution of yumIO.collectUpdates failed"));
        if (!updates || !collectSet(entryHash, updates.get(), Package::StateUpdatable))
            return false;
    }
    progress->startItem(tr("Collecting installed and available packages"), 4000, 1);
    {
        const PyRef all = collectList("collectAll", tr("collect installed and available packages"),
                                      tr("Internal error: execution of yumIO.collectAll failed"));
        if (!all)
            return false;
        // Installed packages come first, so that an available one that is installed already finds
        // its place taken.
        if (!collectField(entryHash, all.get(), "installed", Package::StateInstalled) ||
            !collectField(entryHash, all.get(), "available", Package::StateInstallable))
            return false;
    }

    progress->startItem(tr("Collecting groups"), 1000, 1);
    pyExceptStart();
    pyExceptExpect(groupsError);
    commExceptSetup();
    {
        const PyRef result = pyMethodCall(yumIO, "setupTsGroup", "()");
        if (pyExceptMatches(result.get(), groupsError)) {
            // A system without groups is a normal one.
            const QString text = pyStringXDec(pyExceptValuef().release());
            if (!text.contains(QLatin1String("No Groups Available"))) {
                error(tr("Internal error: execution of yumIO.setupTsGroup failed"));
                return fail();
            }
        } else if (commExceptRaised(result.get(), tr("collect groups"))) {
            return fail();
        }
    }
    pyExceptClear();

    const PyRef groups = pyMethodCall(yumIO, "collectGroupInfo", "()");
    if (!groups) {
        error(tr("Internal error: execution of yumIO.collectGroupInfo failed"));
        return false;
    }
    if (!collectGroups(entryHash, groups.get()))
        return false;
    pyMethodCall(yumIO, "collectDone", "()");

    entries.reserve(entries.size() + entryHash.size());
    for (Package::Entry* entry : qAsConst(entryHash)) {
        if (entry)
            entries.append(entry);
    }
    return true;
}

void YumIO::useRepos(PyObject* repos, const QHash<QString, bool>& usedRepos)
{
    for (auto used = usedRepos.constBegin(); used != usedRepos.constEnd(); ++used) {
        if (!pyDictGetItem(reposDict, used.key()))
            continue;
        pyExceptStart();
        pyExceptExpect(repoError);
        const PyRef result = pyMethodCall(repos, used.value() ? "enableRepo" : "disableRepo", "(s)",
                                          used.key().toUtf8().constData());
        if (pyExceptMatches(result.get(), repoError)) {
            const QString text = pyStringXDec(pyExceptValuef().release());
            warning(tr("unable to setup repository %1:\n%2").arg(used.key(), text));
        }
        pyExceptClear();
    }
}

QStringList YumIO::collectRepos(PyObject* repositories)
{
    QStringList enabledRepos;
    PyObject* id = nullptr;
    PyObject* repository = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(repositories, &position, &id, &repository)) {
        // Reading the attribute may run code of the script, which may drop the dictionary's
        // references.
        const PyRef heldId = PyRef::borrow(id);
        const PyRef heldRepository = PyRef::borrow(repository);
        const PyRef enabled = PyRef::adopt(PyObject_GetAttrString(heldRepository.get(), "enabled"));
        const long value = enabled ? PyLong_AsLong(enabled.get()) : 0;
        if (PyErr_Occurred())
            PyErr_Clear();
        else if (value != 0)
            enabledRepos.append(pyString(heldId.get()));
    }
    return enabledRepos;
}

bool YumIO::collectField(EntryHash& hash, PyObject* holder, const char* field, Package::State state)
{
    const PyRef iterable = PyRef::adopt(PyObject_GetAttrString(holder, field));
    if (!iterable) {
        PyErr_Clear();
        error(tr("Internal error: yumIO.collectAll.%1 not found").arg(QLatin1String(field)));
        return false;
    }
    return collectSet(hash, iterable.get(), state);
}

bool YumIO::collectSet(EntryHash& hash, PyObject* iterable, Package::State state)
{
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(iterable));
    if (!iterator) {
        handleException();
        return false;
    }
    // Only a hint, which may be wrong by any amount.
    const Py_ssize_t hint = PyObject_LengthHint(iterable, 0);
    PyErr_Clear();
    const int expected = static_cast<int>(qBound<Py_ssize_t>(0, hint, 1000000));
    hash.reserve(hash.size() + expected);
    bestByName.reserve(bestByName.size() + expected);

    RowMethod rowMethod;
    while (const PyRef package = PyRef::adopt(PyIter_Next(iterator.get()))) {
        PyRef tuple;
        PackageRow row;
        if (PyObject* method = rowMethod.of(package.get())) {
            tuple.reset(PyObject_CallFunctionObjArgs(method, package.get(), nullptr));
            if (!tuple)
                handleException();
        }
        if (!readRow(tuple.get(), row)) {
            row.name = pyStringDec(PyObject_GetAttrString(package.get(), "name"));
            row.arch = shared(pyStringDec(PyObject_GetAttrString(package.get(), "arch")));
            PyErr_Clear();
        }
        biArchs.insert(getBiArch(row.arch));

        Package::Entry*& slot = findUpdateablePackage(row.name, row.arch);
        if (!slot) {
            if (!collectPkg(slot, state, package.get(), row))
                return false;
            const auto best = bestByName.find(row.name);
            if (best == bestByName.end()) {
                bestByName.insert(row.name, slot);
                continue;
            }
            const PyRef better = pyMethodCall(yumIO, "isBetterThan", "(O,O)",
                                              best.value()->pyObject, slot->pyObject);
            if (better.get() == Py_True) {
                slot->duplicate = true;
            } else {
                if (!better)
                    PyErr_Clear();
                best.value()->duplicate = true;
                best.value() = slot;
            }
        } else if (state == Package::StateInstalled) {
            Package::Entry* last = slot;
            while (last->next)
                last = last->next;
            if (!collectPkg(last->next, state, package.get(), row))
                return false;
        }
    }
    if (PyErr_Occurred()) {
        // A list that broke off would show a system that isn't there.
        handleException();
        return false;
    }
    return true;
}

bool YumIO::collectPkg(Package::Entry*& slot, Package::State state, PyObject* package)
{
    PackageRow row;
    row.name = pyStringDec(PyObject_GetAttrString(package, "name"));
    row.arch = shared(pyStringDec(PyObject_GetAttrString(package, "arch")));
    PyErr_Clear();
    return collectPkg(slot, state, package, row);
}

bool YumIO::collectPkg(Package::Entry*& slot, Package::State state, PyObject* package,
                       const PackageRow& row)
{
    Py_INCREF(package);
    auto* entry = new Package::Entry;
    slot = entry;
    entry->serial = nextSerial++;
    entry->state = state;
    entry->name = row.name;
    entry->arch = row.arch;
    entry->biArch = getBiArch(row.arch);
    if (row.tuple)
        collectPkgFields(*entry, package, row);
    else
        collectPkgFields(*entry, package);
    entry->sizeText = bytesFormat(entry->sizeBytes);
    entry->buildTimeText = timeFormat(entry->buildTime);
    entry->pyObject = package;
    return true;
}

Package::Kind YumIO::getPkgKind(PyObject* package)
{
    return simpleString(package, "group") == QLatin1String("Suite") ? Package::KindSuite
                                                                    : Package::KindOrdinary;
}

void YumIO::collectPkgFields(Package::Entry& entry, PyObject* package)
{
    entry.kind = getPkgKind(package);
    const PyRef version = pyMethodCall(package, "printVer", "()");
    if (!version)
        PyErr_Clear();
    entry.verRel = pyString(version.get());
    entry.repo = shared(simpleString(package, "repoid"));
    entry.sizeBytes = sizeOf(package);
    entry.summary = simpleString(package, "summary");
    entry.buildTime = buildTimeOf(package);
}

void YumIO::collectPkgFields(Package::Entry& entry, PyObject* package, const PackageRow& row)
{
    entry.kind = simpleText(row.field(PackageRow::Group)) == QLatin1String("Suite")
                     ? Package::KindSuite
                     : Package::KindOrdinary;
    entry.verRel = pyString(row.field(PackageRow::PrintVer));
    entry.repo = shared(simpleText(row.field(PackageRow::RepoId)));
    PyObject* size = row.field(PackageRow::Size);
    const long long bytes = PyLong_Check(size) ? PyLong_AsLongLong(size) : -1;
    if (bytes >= 0) {
        entry.sizeBytes = static_cast<quint64>(bytes);
    } else {
        // Anything but a plain number is understood, or reported, in one place.
        PyErr_Clear();
        entry.sizeBytes = sizeOf(package);
    }
    entry.summary = simpleText(row.field(PackageRow::Summary));
    entry.buildTime = pyTime(row.field(PackageRow::BuildTime));
}

bool YumIO::readRow(PyObject* tuple, PackageRow& row)
{
    if (!tuple || !PyTuple_Check(tuple) || PyTuple_GET_SIZE(tuple) != PackageRow::FieldCount)
        return false;
    row.tuple = tuple;
    row.name = pyString(row.field(PackageRow::Name));
    row.arch = shared(pyString(row.field(PackageRow::Arch)));
    return true;
}

QString YumIO::shared(const QString& word)
{
    return *sharedWords.insert(word);
}
