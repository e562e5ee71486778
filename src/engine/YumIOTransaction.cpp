// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include <algorithm>

namespace
{

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

PyObject* YumIO::tsInitCallback(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::tsCallback(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::tsEvent(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::gpgsigcheck(PyObject*, PyObject*)
{
    applyState.transactionText.clear();
    Py_RETURN_NONE;
}
