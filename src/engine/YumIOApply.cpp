// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

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
    return false;
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
