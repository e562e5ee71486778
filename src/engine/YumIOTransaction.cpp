// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Meters.h"

#include <algorithm>

// The script passes on either rpm's own callback or the events of the package manager's display,
// each with its numbers. Both become the same items and acts. Nothing here ends a transaction:
// whatever isn't understood is told and left alone.

using Meters::steps;

namespace
{

/// Bits of rpm's callback.
enum Callback : long {
    InstProgress = 1,
    InstStart = 2,
    InstOpenFile = 4,
    InstCloseFile = 8,
    TransProgress = 16,
    TransStart = 32,
    TransStop = 64,
    UninstProgress = 128,
    UninstStart = 256,
    UninstStop = 512,
    KnownCallbacks = 1023,
};

/// What the package manager's display tells of a package.
enum Event : long {
    TsUpdate = 10,
    TsInstall = 20,
    TsTrueInstall = 30,
    TsErase = 40,
    TsObsoleted = 50,
    TsObsoleting = 60,
    TsAvailable = 70,
    TsUpdated = 90,
};

/// What any element of a transaction counts for at least: small ones are to be seen as well.
constexpr quint64 leastActs = 10240;

} // namespace

QString YumIO::getLocalPkg(PyObject* package)
{
    return localPath(package, "localPkg");
}

QString YumIO::getLocalHdr(PyObject* package)
{
    return localPath(package, "localHdr");
}

QString YumIO::localPath(PyObject* package, const char* method)
{
    const PyRef path = pyMethodCall(package, method, "()");
    // A failure has been reported; the caller goes on as without a file.
    if (!path)
        PyErr_Clear();
    return path && path.get() != Py_None ? pyString(path.get()) : QString();
}

quint64 YumIO::installActs(const Package::Entry& entry)
{
    return std::max(entry.sizeBytes * 3, leastActs);
}

quint64 YumIO::updatedActs(const Package::Entry& old)
{
    return std::max(old.sizeBytes / 5, leastActs);
}

quint64 YumIO::removeActs(const Package::Entry& old)
{
    return std::max(old.sizeBytes, leastActs);
}

void YumIO::guardTransaction()
{
    if (!transactionGuard)
        transactionGuard = std::make_unique<TransactionGuard>();
}

void YumIO::addActs(quint64 acts)
{
    applyState.progressAct = static_cast<quint32>(applyState.progressAct + acts);
}

void YumIO::startApplyItem(const QString& label, long long maximum)
{
    if (progress)
        progress->startItemAct(label, steps(maximum), applyState.progressAct);
}

void YumIO::setApplyItem(long long value)
{
    if (progress)
        progress->setItemValue(steps(value));
}

void YumIO::startTransactionStage(const QString& label, quint64 span, quint64 acts)
{
    if (!progress)
        return;
    progress->startItem(label, 1000, 1);
    progress->setupItemActs(span, acts);
}

quint64 YumIO::preparationActs() const
{
    return applyState.transactionActs / 20;
}

PyObject* YumIO::tsInitCallback(PyObject*, PyObject* args)
{
    long run = 0;
    if (!PyArg_ParseTuple(args, "l", &run))
        return nullptr;
    guardTransaction();
    applyState.progressAct = 0;
    if (run != 0) {
        if (progress)
            progress->endItemActs();
        startTransactionStage(YumIO::tr("Preparing to Run Transaction"), 8000,
                              applyState.transactionActs + preparationActs());
        Py_RETURN_NONE;
    }

    // Ends the downloads, and fills the step for deltas whether or not there were any.
    if (!applyState.deltaRebuilt && progress) {
        progress->endItemActs();
        if (usesPresto()) {
            progress->startItem(YumIO::tr("Finishing RPM rebuild from deltas"), 2000, 1);
            progress->setItemValue(1);
        }
    }
    if (hasTransTest())
        startTransactionStage(YumIO::tr("Preparing to Test Transaction"), 1000, preparationActs());
    Py_RETURN_NONE;
}

Package::Entry* YumIO::transactionEntry(const QString& name, const QString& arch)
{
    return entryHash.value(EntryKey(false, name, getBiArch(arch)));
}

void YumIO::startInstall(Package::Entry& entry, const QString& label, long long total)
{
    addActs(installActs(entry));
    entry.started = true;
    log(Log::Plain, 1, label);
    startApplyItem(label, total);
}

bool YumIO::startRemoval(const QString& name, bool mayUpdate, const QString& unexpected,
                         long long total)
{
    Package::Entry* found = mayUpdate ? findPackage(name, &YumIO::hasNotStartedUpdate) : nullptr;
    const bool update = found;
    if (!found)
        found = findPackage(name, &YumIO::hasNotStartedRemove);
    if (!found) {
        warning(unexpected.arg(name));
        found = findPackage(name);
    }
    if (!found)
        return false;

    // The head of an updatable row is the update, not something that can go.
    Package::Entry* version = found->state == Package::StateUpdatable ? found->next : found;
    while (version && version->started)
        version = version->next;
    if (!version) {
        warning(tr("Internal error: YumIO::tsCallback UNINST of %1 too many times").arg(name));
        version = found;
    }
    version->started = true;
    addActs(update ? updatedActs(*version) : removeActs(*version));
    startApplyItem((update ? tr("Completing update for: %1") : tr("Removing %1")).arg(name), total);
    return true;
}

PyObject* YumIO::tsCallback(PyObject*, PyObject* args)
{
    long what = 0;
    long long amount = 0;
    long long total = 0;
    PyObject* key = nullptr;
    PyObject* client = nullptr;
    if (!PyArg_ParseTuple(args, "lLLOO", &what, &amount, &total, &key, &client))
        return nullptr;
    // A script may do without the announcement.
    guardTransaction();

    if ((what & KnownCallbacks) == 0)
        warning(tr("Internal error: YumIO::tsCallback what=%1 not understood; ignoring").arg(what));
    if (what & TransStart) {
        addActs(preparationActs());
        startApplyItem(tr("Transaction Test"), total);
    }
    if (what & TransProgress)
        setApplyItem(amount);
    if (what & TransStop)
        setApplyItem(total);
    if (what & InstStart)
        callbackInstall(key, total);
    if (what & InstProgress)
        setApplyItem(amount);
    if (what & UninstStart)
        startRemoval(pyString(key), true,
                     tr("Internal error: YumIO::tsCallback UNINST of %1 not expected"), total);
    if (what & UninstProgress)
        setApplyItem(amount);
    if (what & UninstStop)
        setApplyItem(total);
    Py_RETURN_NONE;
}

void YumIO::callbackInstall(PyObject* key, long long total)
{
    QString name;
    QString arch;
    if (PyTuple_Check(key) && PyTuple_GET_SIZE(key) > 0) {
        PyObject* header = PyTuple_GET_ITEM(key, 0);
        name = pyMappingString(header, "name");
        PyErr_Clear();
        arch = pyMappingString(header, "arch");
        PyErr_Clear();
    }
    Package::Entry* entry = transactionEntry(name, arch);
    if (!entry) {
        error(tr("Internal error: Unable to find package for install/update of %1.%2")
                  .arg(name, arch));
        return;
    }
    const bool update = entry->applyAction == Package::ActionUpdate;
    startInstall(*entry, (update ? tr("Updating %1") : tr("Installing %1")).arg(name), total);
}

PyObject* YumIO::tsEvent(PyObject*, PyObject* args)
{
    PyObject* package = nullptr;
    long action = 0;
    long long teCurrent = 0;
    long long teTotal = 0;
    long tsCurrent = 0;
    long tsTotal = 0;
    if (!PyArg_ParseTuple(args, "OlLLll", &package, &action, &teCurrent, &teTotal, &tsCurrent,
                          &tsTotal))
        return nullptr;
    guardTransaction();

    if (!applyState.tsEventSeen) {
        addActs(preparationActs());
        applyState.tsEventSeen = true;
    }
    const bool begins = tsCurrent != applyState.lastTsCurrent;
    switch (action) {
    case TsUpdate:
    case TsObsoleting:
    case TsInstall:
    case TsTrueInstall:
        // Where it isn't found, the report is to come again with the package's next event.
        if (begins && eventInstall(package, action == TsUpdate || action == TsObsoleting, teTotal))
            applyState.lastTsCurrent = tsCurrent;
        setApplyItem(teCurrent);
        break;
    case TsErase:
    case TsUpdated:
    case TsObsoleted:
        if (begins) {
            const QString unexpected =
                tr("Internal error: YumIO::tsCallback REMOVE/COMPLETE of %1 not expected");
            if (!startRemoval(pyString(package), action != TsErase, unexpected, teTotal))
                break;
            applyState.lastTsCurrent = tsCurrent;
        }
        setApplyItem(teCurrent);
        break;
    case TsAvailable:
        break;
    default:
        warning(
            tr("Internal error: YumIO::tsEvent action=%1 not understood; ignoring").arg(action));
    }
    Py_RETURN_NONE;
}

bool YumIO::eventInstall(PyObject* package, bool update, long long total)
{
    // What isn't there has been reported as a text that is missing, and finds no entry.
    const QString name = pyStringDec(PyObject_GetAttrString(package, "name"));
    PyErr_Clear();
    const QString arch = pyStringDec(PyObject_GetAttrString(package, "arch"));
    PyErr_Clear();
    Package::Entry* entry = transactionEntry(name, arch);
    if (!entry) {
        const QString what = update ? QStringLiteral("update") : QStringLiteral("install");
        error(tr("Internal error: Unable to find package for %1 of %2.%3").arg(what, name, arch));
        return false;
    }
    startInstall(*entry, (update ? tr("Updating %1") : tr("Installing %1")).arg(name), total);
    return true;
}

PyObject* YumIO::gpgsigcheck(PyObject*, PyObject*)
{
    applyState.transactionText.clear();
    Py_RETURN_NONE;
}
