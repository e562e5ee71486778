// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Meters.h"
#include "engine/YumIOCapturers.h"
#include "engine/YumIODialogs.h"
#include "progress/Progress.h"

#include <QFile>

#include <array>

namespace
{

/// Whether a version of the chain, its head included, hasn't been started on.
bool hasNotStarted(const Package::Entry* entry)
{
    for (; entry; entry = entry->next) {
        if (!entry->started)
            return true;
    }
    return false;
}

} // namespace

bool YumIO::applyReal()
{
    blocker.block();
    Progress::User progressUser(progress, totalBar, itemBar);
    YumIODialogsUser dialogsUser(dialogs, parentWidget);
    log(Log::Action, 0, tr("Applying"));
    PyGILStateWrapper lock(true);
    progress->startTotal(tr("Checking Dependencies: Total Progress"), 10000);
    progress->startItem(tr("Preparing"), 100, 1);

    resetApplyState();
    const PyRef installs = PyRef::adopt(PyList_New(0));
    const PyRef updates = PyRef::adopt(PyList_New(0));
    const PyRef removes = PyRef::adopt(PyList_New(0));
    for (Package::Entry* entry : qAsConst(entries)) {
        entry->applyAction = entry->action;
        entry->markedBy = entry;
        // The head's own mark stays: it is false on every fresh collection.
        for (Package::Entry* old = entry->next; old; old = old->next)
            old->started = false;
    }
    if (!applyGroups() || !applyLists(installs.get(), updates.get(), removes.get()))
        return false;

    // A pass over the transaction takes an act a package, and a header is worth ten of them.
    applyState.depPassActs = applyState.depPackages;
    applyState.depActs = applyState.depPackages;
    progress->setupItemActs(9900, applyState.depHeaders * Meters::headerActs + applyState.depActs);

    // What it removes may be what is downloaded next.
    remover.finish();
    if (!reapChildren()) {
        progress->reset();
        return false;
    }
    {
        YumIOCapturersUser capturersUser(capturers, this);
        sigchldDisable();
        // What went wrong so far has been reported.
        PyErr_Clear();
        pyExceptStart();
        commExceptSetup();
        {
            const PyRef result = pyMethodCall(yumIO, "apply", "(O,O,O)", installs.get(),
                                              updates.get(), removes.get());
            if (commExceptRaised(result.get(), tr("apply changes"))) {
                pyExceptClear();
                applyState.applyConfirmed = false;
                pyMethodCall(yumIO, "applyFailCleanup", "()");
                PyErr_Clear();
            } else {
                pyExceptClear();
            }
        }
        sigchldRestore();
    }
    // Whatever has become of the transaction, rpm is through with the system.
    transactionGuard.reset();
    pyMethodCall(yumIO, "flush", "()");
    PyErr_Clear();
    progress->reset();
    return applyState.applyConfirmed;
}

void YumIO::resetApplyState()
{
    applyState.transactionText.clear();
    applyState.transactionListed = false;
    applyState.applyConfirmed = false;
    applyState.progressAct = 0;
    applyState.depPackages = 0;
    applyState.depHeaders = 0;
    applyState.downloadTotal = 0;
    applyState.downloadLeft = 0;
    applyState.transactionActs = 0;
    applyState.lastTsCurrent = 0;
    applyState.deltaRebuilt = false;
    applyState.tsEventSeen = false;
    applyState.multi.multiActive = false;
    applyState.multi.meterThreads.clear();
    // The rest is set before it is read.
}

bool YumIO::applyLists(PyObject* installs, PyObject* updates, PyObject* removes)
{
    const auto append = [this](PyObject* list, PyObject* item, const Package::Entry& entry,
                               const QString& message) {
        if (PyList_Append(list, item) == 0)
            return true;
        PyErr_Clear();
        error(message.arg(entry.name));
        return false;
    };
    const auto countHeader = [this](const Package::Entry& entry) {
        if (entry.pyObject && !QFile::exists(getLocalHdr(entry.pyObject)))
            ++applyState.depHeaders;
    };

    for (Package::Entry* entry : qAsConst(entries)) {
        if (entry->kind == Package::KindGroup)
            continue;
        switch (entry->applyAction) {
        case Package::ActionInstall:
            append(installs, entry->pyObject, *entry,
                   tr("Unable to add package %1 to installs list"));
            ++applyState.depPackages;
            countHeader(*entry);
            break;
        case Package::ActionUpdate:
            if (!entry->next) {
                error(tr("Internal error: Unable to find installed version for package update %1")
                          .arg(entry->name));
                return false;
            }
            ++applyState.depPackages;
            for (const Package::Entry* old = entry->next; old; old = old->next) {
                ++applyState.depPackages;
                const PyRef pair = PyRef::adopt(PyList_New(0));
                // Half a pair would be worse than none.
                if (append(pair.get(), entry->pyObject, *entry,
                           tr("Unable to add new package to pair for updated package %1")) &&
                    append(pair.get(), old->pyObject, *entry,
                           tr("Unable to add old package to pair for updated package %1")))
                    append(updates, pair.get(), *entry,
                           tr("Unable to add package %1 to updates list"));
            }
            countHeader(*entry);
            break;
        case Package::ActionRemove:
            // The head of an updatable row is the update, which isn't installed.
            for (const Package::Entry* old = entry->state == Package::StateUpdatable ? entry->next
                                                                                     : entry;
                 old; old = old->next) {
                append(removes, old->pyObject, *entry,
                       tr("Unable to add package %1 to removes list"));
                ++applyState.depPackages;
            }
            break;
        case Package::ActionNone:
            break;
        }
    }
    return true;
}

bool YumIO::hasNotStartedUpdate(Package::Entry* entry)
{
    return entry->applyAction == Package::ActionUpdate && hasNotStarted(entry);
}

bool YumIO::hasNotStartedRemove(Package::Entry* entry)
{
    return entry->applyAction == Package::ActionRemove && hasNotStarted(entry);
}

bool YumIO::makeLists(PyObject* base, PyObject*& tsInfo, PyObject*& lists, PyObject*& updated,
                      PyObject*& installed, PyObject*& removed, PyObject*& obsoleted,
                      PyObject*& depUpdated, PyObject*& depInstalled, PyObject*& depRemoved)
{
    constexpr std::array<const char*, 7> words = {
        "updated", "installed", "removed", "obsoleted", "depupdated", "depinstalled", "depremoved"};
    PyRef info = PyRef::adopt(PyObject_GetAttrString(base, "tsInfo"));
    if (!info) {
        handleException();
        return false;
    }
    PyRef holder = pyMethodCall(info.get(), "makelists", "()");
    if (!holder)
        return false;
    if (yumVersion() <= 20301) {
        if (!PyTuple_Check(holder.get())) {
            error("Internal error: yumIO.makelists() did not return a tuple\n");
            return false;
        }
        if (PyTuple_GET_SIZE(holder.get()) != static_cast<Py_ssize_t>(words.size())) {
            error("Internal error: yumIO.makelists() returned tuple of incorrect size\n");
            return false;
        }
    } else {
        // An attribute may be made anew each time that it is read, so the seven are kept alive by a
        // tuple of them rather than by the object that they were read from.
        PyRef tuple = PyRef::adopt(PyTuple_New(static_cast<Py_ssize_t>(words.size())));
        for (std::size_t i = 0; tuple && i < words.size(); ++i) {
            PyRef list = PyRef::adopt(PyObject_GetAttrString(holder.get(), words[i]));
            if (!list)
                tuple.reset();
            else
                PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), list.release());
        }
        if (!tuple) {
            handleException();
            return false;
        }
        holder = std::move(tuple);
    }

    const std::array<PyObject**, 7> slots = {&updated,    &installed,    &removed,   &obsoleted,
                                             &depUpdated, &depInstalled, &depRemoved};
    for (std::size_t i = 0; i < slots.size(); ++i)
        *slots[i] = PyTuple_GET_ITEM(holder.get(), static_cast<Py_ssize_t>(i));
    tsInfo = info.release();
    lists = holder.release();
    return true;
}
