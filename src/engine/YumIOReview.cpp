// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Meters.h"
#include "engine/PyText.h"
#include "engine/YumIODialogs.h"
#include "progress/Progress.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace
{

// The scale of "Running Transaction: Total Progress".
constexpr Steps downloadSteps = 24000;   ///< where all that comes has to be downloaded
constexpr Steps deltaSteps = 2000;       ///< rebuild of packages from deltas
constexpr Steps testSteps = 2000;        ///< preparing the test, and the test
constexpr Steps transactionSteps = 9100; ///< preparing, preparing to run, and the run
constexpr Steps preparingSteps = 100;    ///< the first of these

/// Up to 2.3.1 an obsoleted package is related to the other's tuple itself.
constexpr long lastVersionWithRelatedTuples = 20301;

/// An attribute that may be missing.
PyRef attribute(PyObject* object, const char* name)
{
    PyRef value = PyRef::adopt(PyObject_GetAttrString(object, name));
    if (!value)
        PyErr_Clear();
    return value;
}

/// Calls `visit` with each item, borrowed, until one gives false, which this then gives too. Also
/// false where the walk fails, with that exception pending.
template<typename Visit> bool walk(PyObject* iterable, const Visit& visit)
{
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(iterable));
    if (!iterator)
        return false;
    while (const PyRef item = PyRef::adopt(PyIter_Next(iterator.get()))) {
        if (!visit(item.get()))
            return false;
    }
    return !PyErr_Occurred();
}

bool hasItems(PyObject* sequence)
{
    const Py_ssize_t size = PyObject_Size(sequence);
    if (size < 0)
        PyErr_Clear();
    return size > 0;
}

PyRef tupleItem(PyObject* tuple, Py_ssize_t index)
{
    PyRef item = PyRef::adopt(PySequence_GetItem(tuple, index));
    if (!item)
        PyErr_Clear();
    return item;
}

enum TupleItem : Py_ssize_t { Name, Arch, Epoch, Version, Release };

/// What makeLists() gives, for a scope. Where that fails, nothing.
struct Lists {
    Lists() = default;
    ~Lists()
    {
        Py_XDECREF(lists);
        Py_XDECREF(tsInfo);
    }
    Lists(const Lists&) = delete;
    Lists& operator=(const Lists&) = delete;

    PyObject* tsInfo = nullptr;
    PyObject* lists = nullptr;
    // Borrowed from `lists`.
    PyObject* updated = nullptr;
    PyObject* installed = nullptr;
    PyObject* removed = nullptr;
    PyObject* obsoleted = nullptr;
    PyObject* depUpdated = nullptr;
    PyObject* depInstalled = nullptr;
    PyObject* depRemoved = nullptr;
};

} // namespace

QString YumIO::pkgtupFormat(PyObject* pkgtup)
{
    const auto text = [&](TupleItem item) {
        return pyStringDec(tupleItem(pkgtup, item).release());
    };
    const QString epoch = text(Epoch);
    if (epoch == QLatin1String("0"))
        return tr("%1 %3-%4 (%2)").arg(text(Name), text(Arch), text(Version), text(Release));
    return tr("%1 %3:%4-%5 (%2)").arg(text(Name), text(Arch), epoch, text(Version), text(Release));
}

QString YumIO::pkgtupRepoFormat(PyObject* pkgtup, const QString& repo)
{
    return pkgtupFormat(pkgtup) + tr(" [%1]").arg(repo);
}

PyRef YumIO::pkgtupOf(PyObject* member)
{
    PyRef pkgtup = attribute(member, "pkgtup");
    if (!pkgtup)
        error("Internal error: txmbr lacks pkgtup\n");
    return pkgtup;
}

bool YumIO::displayTransactionPkgs(const QString& title, PyObject* members)
{
    return walk(members, [&](PyObject* member) {
        const PyRef pkgtup = pkgtupOf(member);
        if (!pkgtup)
            return false;
        applyState.transactionText += tr("\t%1: %2\n").arg(title, pkgtupFormat(pkgtup.get()));
        return true;
    });
}

bool YumIO::displayTransactionPkgsRepo(const QString& title, PyObject* members)
{
    return walk(members, [&](PyObject* member) {
        const PyRef pkgtup = pkgtupOf(member);
        if (!pkgtup)
            return false;
        const QString repo = pyStringDec(attribute(member, "repoid").release());
        applyState.transactionText +=
            tr("\t%1: %2\n").arg(title, pkgtupRepoFormat(pkgtup.get(), repo));
        return true;
    });
}

bool YumIO::displayTransactionPkgsObs(const QString& title, PyObject* members)
{
    return walk(members, [&](PyObject* member) {
        const PyRef pkgtup = pkgtupOf(member);
        if (!pkgtup)
            return false;
        const PyRef relations = attribute(member, "relatedto");
        if (!relations) {
            error("Internal error: package has no relatedto\n");
            return false;
        }
        PyRef related = PyRef::adopt(findRelation(relations.get(), "obsoletedby"));
        if (PyErr_Occurred())
            return false;
        if (related && yumVersion() > lastVersionWithRelatedTuples)
            related = attribute(related.get(), "pkgtup");
        if (!related) {
            error("Internal error: couldn't find obsoletedby package\n");
            return false;
        }
        applyState.transactionText +=
            tr("\t%1: %2 with %3\n")
                .arg(title, pkgtupFormat(pkgtup.get()), pkgtupFormat(related.get()));
        return true;
    });
}

PyObject* YumIO::findRelation(PyObject* relations, const char* relation)
{
    const QString wanted = QString::fromUtf8(relation);
    PyRef found;
    walk(relations, [&](PyObject* pair) {
        if (!PyTuple_Check(pair) || PyTuple_GET_SIZE(pair) != 2)
            return true;
        PyObject* name = PyTuple_GET_ITEM(pair, 1);
        if (!PyText::check(name) || PyText::toQString(name) != wanted)
            return true;
        found = PyRef::borrow(PyTuple_GET_ITEM(pair, 0));
        return false;
    });
    return found.release();
}

void YumIO::noteTransactionPkgs(Package::Action action, PyObject* members)
{
    walk(members, [&](PyObject* member) {
        const PyRef pkgtup = pkgtupOf(member);
        if (!pkgtup)
            return true;
        const QString name = pyStringDec(tupleItem(pkgtup.get(), Name).release());
        const QString arch = pyStringDec(tupleItem(pkgtup.get(), Arch).release());
        Package::Entry* entry = entryHash.value(EntryKey(false, name, getBiArch(arch)));
        if (!entry) {
            error(tr("Internal error: Unable to find package for install/update/remove of %1.%2")
                      .arg(name, arch));
            return true;
        }
        if (action == Package::ActionRemove)
            noteRemoval(*entry, memberVersion(member));
        else
            noteArrival(*entry, action == Package::ActionUpdate);
        if (entry->applyAction == Package::ActionNone)
            entry->applyAction = action;
        return true;
    });
}

void YumIO::noteArrival(const Package::Entry& entry, bool update)
{
    const quint64 bytes =
        hasMultiProgress() ? entry.sizeBytes : std::max(entry.sizeBytes, Meters::leastDownload);
    applyState.downloadTotal += bytes;
    if (!QFile::exists(getLocalPkg(entry.pyObject)))
        applyState.downloadLeft += bytes;
    applyState.transactionActs += installActs(entry);
    if (!update)
        return;
    for (const Package::Entry* old = entry.next; old; old = old->next)
        applyState.transactionActs += updatedActs(*old);
}

void YumIO::noteRemoval(const Package::Entry& entry, const QString& version)
{
    // The head of an updatable row is the update, which isn't installed.
    const Package::Entry* old = entry.state == Package::StateUpdatable ? entry.next : &entry;
    while (old && old->verRel != version)
        old = old->next;
    if (old)
        applyState.transactionActs += removeActs(*old);
}

QString YumIO::memberVersion(PyObject* member)
{
    const PyRef package = attribute(member, "po");
    if (package && package.get() != Py_None) {
        const PyRef version = pyMethodCall(package.get(), "printVer", "()");
        if (version && version.get() != Py_None)
            return pyString(version.get());
        PyErr_Clear();
    }
    const auto text = [&](const char* name) {
        const PyRef value = attribute(member, name);
        return value ? pyString(value.get()) : QString();
    };
    QString version = text("epoch");
    if (version == QLatin1String("0"))
        version.clear();
    else if (!version.isEmpty())
        version += QLatin1Char(':');
    version += text("ver");
    const QString release = text("rel");
    if (!release.isEmpty())
        version += QLatin1Char('-') + release;
    return version;
}

PyObject* YumIO::listTransaction(PyObject*, PyObject* args)
{
    PyObject* base = nullptr;
    if (!PyArg_ParseTuple(args, "O", &base))
        return nullptr;
    applyState.transactionText.clear();
    applyState.transactionListed = true;

    Lists of;
    if (!makeLists(base, of.tsInfo, of.lists, of.updated, of.installed, of.removed, of.obsoleted,
                   of.depUpdated, of.depInstalled, of.depRemoved))
        return nullptr;

    QString& text = applyState.transactionText;
    const auto display = [&](PyObject* coming, PyObject* updating, PyObject* going) {
        return displayTransactionPkgsRepo(tr("Install"), coming) &&
               displayTransactionPkgsRepo(tr("Update"), updating) &&
               displayTransactionPkgs(tr("Remove"), going);
    };
    text += tr("Transaction to be performed:\n");
    if (!display(of.installed, of.updated, of.removed))
        return nullptr;
    if (hasItems(of.depInstalled) || hasItems(of.depUpdated) || hasItems(of.depRemoved)) {
        text += tr("Performing the following to resolve dependencies:\n");
        if (!display(of.depInstalled, of.depUpdated, of.depRemoved))
            return nullptr;
    }
    if (hasItems(of.obsoleted)) {
        text += tr("Other Transactions:\n");
        if (!displayTransactionPkgsObs(tr("Obsoleting"), of.obsoleted))
            return nullptr;
    }

    const std::pair<Package::Action, PyObject*> parts[] = {
        {Package::ActionInstall, of.installed}, {Package::ActionUpdate, of.updated},
        {Package::ActionRemove, of.removed},    {Package::ActionInstall, of.depInstalled},
        {Package::ActionUpdate, of.depUpdated}, {Package::ActionRemove, of.depRemoved},
        {Package::ActionRemove, of.obsoleted},
    };
    for (const auto& part : parts) {
        noteTransactionPkgs(part.first, part.second);
        if (PyErr_Occurred())
            return nullptr;
    }
    Py_RETURN_NONE;
}

PyObject* YumIO::reportDownloadSize(PyObject*, PyObject* args)
{
    PyObject* packages = nullptr;
    if (!PyArg_ParseTuple(args, "O", &packages))
        return nullptr;
    quint64 size = 0;
    const bool walked = walk(packages, [&](PyObject* package) {
        size += sizeOf(package);
        return true;
    });
    if (!walked)
        return nullptr;
    applyState.transactionText += tr("Total download size: %1\n").arg(bytesFormat(size));
    Py_RETURN_NONE;
}

PyObject* YumIO::userconfirm(PyObject*, PyObject*)
{
    if (progress) {
        progress->endItemActs();
        progress->reset();
    }
    applyState.progressAct = 0;

    const bool review = applyState.transactionListed;
    // Fixed, whatever language the titles are in.
    const QString accept = review ? QStringLiteral("OK") : QStringLiteral("Yes");
    const QString reject = review ? QStringLiteral("Cancel") : QStringLiteral("No");
    bool agreed = false;
    withDialogs([&](YumIODialogs& shown) {
        agreed = shown.confirm(review ? tr("Apply") : tr("Query"), applyState.transactionText,
                               accept, reject) == 1;
    });

    if (review) {
        log(Log::Action, 0, agreed ? tr("Applying: OK") : tr("Not Applying: Canceled"));
        applyState.applyConfirmed = agreed;
        if (agreed)
            scaleTransaction();
    } else {
        log(Log::Action, 0, agreed ? tr("Confirmation: Yes") : tr("Confirmation: No"));
    }
    applyState.transactionText.clear();
    applyState.transactionListed = false;
    return PyLong_FromLong(agreed ? 1 : 0);
}

void YumIO::scaleTransaction()
{
    applyState.downloadSpan = applyState.downloadTotal ? applyState.downloadLeft * downloadSteps /
                                                             applyState.downloadTotal
                                                       : 0;
    if (!progress)
        return;
    progress->startTotal(tr("Running Transaction: Total Progress"),
                         applyState.downloadSpan + (usesPresto() ? deltaSteps : 0) +
                             (hasTransTest() ? testSteps : 0) + transactionSteps);
    progress->startItem(tr("Preparing"), preparingSteps, 1);
    progress->setupItemActs(applyState.downloadSpan, applyState.downloadLeft);
}

PyObject* YumIO::postTransactionOutput(PyObject*, PyObject* args)
{
    PyObject* base = nullptr;
    if (!PyArg_ParseTuple(args, "O", &base))
        return nullptr;
    if (progress)
        progress->endItemActs();

    Lists of;
    if (!makeLists(base, of.tsInfo, of.lists, of.updated, of.installed, of.removed, of.obsoleted,
                   of.depUpdated, of.depInstalled, of.depRemoved))
        return nullptr;

    const bool displayed = displayTransactionPkgs(tr("Removed"), of.removed) &&
                           displayTransactionPkgs(tr("Dependency Removed"), of.depRemoved) &&
                           displayTransactionPkgs(tr("Installed"), of.installed) &&
                           displayTransactionPkgs(tr("Dependency Installed"), of.depInstalled) &&
                           displayTransactionPkgs(tr("Updated"), of.updated) &&
                           displayTransactionPkgs(tr("Dependency Updated"), of.depUpdated) &&
                           displayTransactionPkgs(tr("Obsoleted"), of.obsoleted);
    return displayed ? PyUnicode_FromString("") : nullptr;
}
