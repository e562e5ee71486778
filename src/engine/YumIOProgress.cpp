// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Meters.h"
#include "engine/PyText.h"
#include "progress/Progress.h"

#include <algorithm>

// A collection's long stretch is six acts a repository: mirror list, repomd, groups, contents,
// conversion, reading. What the script's meters say is turned into act numbers here, by the order
// in which the package manager at hand goes through them.

using Meters::steps;

namespace
{

QString afterLastSlash(const QString& name)
{
    const int slash = name.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : name.mid(slash + 1);
}

/// The next-to-last component of a path, which is what the user knows as the repository; the whole
/// where there is none.
QString repositoryOfPath(QString name)
{
    const int last = name.lastIndexOf(QLatin1Char('/'));
    const int before = last > 0 ? name.lastIndexOf(QLatin1Char('/'), last - 1) : -1;
    if (before >= 0)
        name = name.mid(before + 1, last - before - 1);
    return Meters::withoutVantry(name);
}

} // namespace

QString YumIO::progressText(PyObject* object, const QString& message)
{
    if (object == Py_None)
        return QString();
    if (PyText::check(object))
        return pyString(object);
    error(message);
    return QString();
}

long long YumIO::progressSize(PyObject* object, long long otherwise)
{
    if (object == Py_None)
        return 1;
    if (PyLong_Check(object)) {
        int overflow = 0;
        const long long size = PyLong_AsLongLongAndOverflow(object, &overflow);
        return overflow ? 1 : size;
    }
    warning(tr("Internal error: collect grab size not understood"));
    return otherwise;
}

PyObject* YumIO::collectProgress(PyObject*, PyObject* args)
{
    long current = 0;
    long total = 0;
    PyObject* nameObject = nullptr;
    if (!PyArg_ParseTuple(args, "llO", &current, &total, &nameObject))
        return nullptr;
    const QString name = progressText(nameObject, tr("Internal error: unexpected progress name"));
    const bool goesOn = collectState.act > 0 && collectState.lastTotal == total;
    if (goesOn && collectState.lastName == name) {
        collectUpdate(nullptr, current);
    } else if (current == -1 && total == -1) {
        collectStart(nullptr, name, ActRead, 1, 1);
    } else if (name == QLatin1String("MD Read")) {
        if (goesOn && collectState.lastName.isEmpty())
            collectUpdate(nullptr, current);
        else
            collectStart(nullptr, QString(), ActConvert, current, total);
    } else {
        collectStart(nullptr, name, usesSqlite() ? ActConvert : ActRead, current, total);
    }
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMeterStart(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    PyObject* filename = nullptr;
    PyObject* url = nullptr;
    PyObject* basename = nullptr;
    PyObject* sizeObject = nullptr;
    PyObject* text = nullptr;
    if (!PyArg_ParseTuple(args, "OOOOOO", &meter, &filename, &url, &basename, &sizeObject, &text))
        return nullptr;

    const long size = static_cast<long>(progressSize(sizeObject, 1));
    QString name = progressText(filename, tr("Internal error: unexpected progress filename"));
    const bool fromText = name.isEmpty() && PyText::check(text);
    if (fromText)
        name = pyString(text);
    const QString file = afterLastSlash(name);
    RepoAct act = ActContents;
    if (file.startsWith(QLatin1String("metalink")))
        act = ActMirrorList;
    else if (file.startsWith(QLatin1String("repomd")))
        act = ActRepomd;
    else if (file.startsWith(QLatin1String("group_gz")))
        act = ActGroups;
    name = fromText ? name.section(QLatin1Char('/'), 0, 0) : repositoryOfPath(name);
    collectStart(meter, name, act, 0, size);
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMeterUpdate(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    long long amount = 0;
    if (!PyArg_ParseTuple(args, "OL", &meter, &amount))
        return nullptr;
    collectUpdate(meter, static_cast<long>(amount));
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMeterEnd(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    long long amount = 0;
    if (!PyArg_ParseTuple(args, "OL", &meter, &amount))
        return nullptr;
    collectEnd(meter, static_cast<long>(amount));
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMeterFailure(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    PyObject* message = nullptr;
    if (!PyArg_ParseTuple(args, "OO", &meter, &message))
        return nullptr;
    // Only its type is of interest: what went wrong reaches the log by the script's own lines.
    progressText(message, tr("Internal error: unexpected progress failure message"));
    collectFailure(meter);
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMultiMeterStart(PyObject*, PyObject* args)
{
    long long files = 0;
    long long totalSize = 0;
    if (!PyArg_ParseTuple(args, "LL", &files, &totalSize))
        return nullptr;
    collectState.multiActive = true;
    collectState.multiStarted = false;
    collectState.multiFiles = files;
    collectState.multiSize = totalSize;
    collectState.nextThread = 0;
    collectState.meterThreads.clear();
    collectState.threadIds.assign(Meters::slotCount(files), ThreadId());
    collectState.idThreads.clear();
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMultiMeterNew(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    if (!PyArg_ParseTuple(args, "O", &meter))
        return nullptr;
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMultiMeterRemove(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    if (!PyArg_ParseTuple(args, "O", &meter))
        return nullptr;
    Py_RETURN_NONE;
}

PyObject* YumIO::collectGrabMultiMeterEnd(PyObject*, PyObject*)
{
    if (progress)
        progress->endItemActsThreads();
    collectState.multiActive = false;
    collectState.multiStarted = false;
    collectState.nextThread = 0;
    collectState.meterThreads.clear();
    collectState.threadIds.clear();
    collectState.idThreads.clear();
    Py_RETURN_NONE;
}

int YumIO::actNumber(int from, int act)
{
    const int repos = collectState.repos.size();
    // `width` acts of each repository lie together, in a band that begins at `base`.
    const auto inBand = [from](int base, int width, int place) {
        const int start = std::max(from, base);
        return base + width * ((start - base) / width) + place;
    };
    if (hasMultiProgress()) {
        if (act <= ActRepomd)
            return inBand(0, 2, act + 1);
        if (act <= ActContents)
            return inBand(2 * repos, 2, act - 1);
        return inBand(4 * repos, 2, act - 3);
    }
    if (yumVersion() > 30106)
        return inBand(0, 6, act + 1);
    if (act <= ActRepomd)
        return inBand(0, 2, act + 1);
    return inBand(2 * repos, 3, act - 1);
}

QString YumIO::actText(RepoAct act, const QString& name)
{
    const QString& label = collectState.contentsLabel;
    if (name.isEmpty()) {
        switch (act) {
        case ActMirrorList:
            return tr("Downloading repository mirror list");
        case ActRepomd:
            return tr("Downloading repository repomd");
        case ActGroups:
            return tr("Downloading repository groups");
        case ActContents:
            return tr("Downloading repository %1").arg(label);
        case ActConvert:
            return tr("Converting repository");
        case ActRead:
            return tr("Reading repository %1").arg(label);
        }
    } else {
        switch (act) {
        case ActMirrorList:
            return tr("Downloading repository mirror list for %2").arg(name);
        case ActRepomd:
            return tr("Downloading repository repomd for %2").arg(name);
        case ActGroups:
            return tr("Downloading repository groups for %2").arg(name);
        case ActContents:
            return tr("Downloading repository %1 for %2").arg(label, name);
        case ActConvert:
            return tr("Converting repository %2").arg(name);
        case ActRead:
            return tr("Reading repository %1 for %2").arg(label, name);
        }
    }
    error("Internal error: invalid collect act\n");
    return QString();
}

void YumIO::collectStart(void* meter, const QString& name, RepoAct act, long value, long size)
{
    // The script may download at a time when nobody watches.
    if (!progress)
        return;
    collectState.act = actNumber(collectState.act, act);
    collectState.lastTotal = static_cast<int>(size);
    collectState.lastName = name;
    const QString text = actText(act, name);

    if (!collectState.multiActive) {
        progress->startItemAct(text, steps(size), steps(collectState.act));
        if (value != 0)
            progress->setItemValue(steps(value));
        return;
    }

    if (!collectState.multiStarted)
        setupBatch(name, act);
    const ThreadId id(name, act);
    const auto known = collectState.idThreads.constFind(id);
    const unsigned int slot =
        known != collectState.idThreads.constEnd() ? known.value() : collectState.nextThread++;
    if (slot >= collectState.threadIds.size()) {
        error(tr("Internal error: Start: unexpected thread %1 > total files %2\n")
                  .arg(slot)
                  .arg(collectState.multiFiles));
        return;
    }
    collectState.meterThreads.insert(meter, slot);
    collectState.threadIds[slot] = id;
    collectState.idThreads.insert(id, slot);
    progress->startItemActThread(text, slot, steps(size));
    if (value != 0)
        progress->setItemActsThreadValue(slot, steps(value));
}

void YumIO::setupBatch(const QString& name, RepoAct act)
{
    QString label = QStringLiteral("Unknown");
    Steps first = 0;
    Steps end = 1;
    if (!hasMultiProgress()) {
        error(
            tr("Internal error: Unexpected parallel grab with no parallel support:\n%1").arg(name));
    } else if (act != ActGroups && act != ActContents) {
        error(tr("Internal error: Unexpected parallel grab type:\n%1").arg(name));
    } else {
        const Steps repos = steps(collectState.repos.size());
        label = QStringLiteral("Downloading repository contents for %1 repositories")
                    .arg(collectState.multiFiles);
        first = (collectState.multiSize != 0 ? 2 : 3) * repos;
        end = first + repos;
    }
    progress->setupItemActsThreads(label, first, end,
                                   static_cast<unsigned int>(collectState.threadIds.size()),
                                   steps(collectState.multiSize));
    collectState.multiStarted = true;
}

bool YumIO::batchSlot(void* meter, const QString& message, unsigned int& slot)
{
    slot = collectState.meterThreads.value(meter);
    // Before its first start a batch has no slots to speak of.
    if (collectState.multiStarted && slot < collectState.threadIds.size())
        return true;
    error(message.arg(slot).arg(collectState.multiFiles));
    return false;
}

void YumIO::collectUpdate(void* meter, long value)
{
    if (!progress)
        return;
    if (!collectState.multiActive) {
        progress->setItemValue(steps(value));
        return;
    }
    unsigned int slot = 0;
    if (batchSlot(meter, tr("Internal error: Update: unexpected thread %1 > total files %2\n"),
                  slot))
        progress->setItemActsThreadValue(slot, steps(value));
}

void YumIO::collectEnd(void* meter, long value)
{
    if (!progress || !collectState.multiActive)
        return;
    unsigned int slot = 0;
    if (!batchSlot(meter, tr("Internal error: End: unexpected thread %1 > total files %2\n"), slot))
        return;
    collectState.idThreads.remove(collectState.threadIds[slot]);
    progress->setItemActsThreadValue(slot, steps(value));
    progress->endItemActThread(slot);
    collectState.meterThreads.remove(meter);
}

void YumIO::collectFailure(void* meter)
{
    if (!progress || !collectState.multiActive)
        return;
    unsigned int slot = 0;
    if (!batchSlot(meter, tr("Internal error: Failure: unexpected thread %1 > total files %2\n"),
                   slot))
        return;
    progress->retryItemActThread(slot);
    // The id keeps its slot for the file's next try, which comes with another meter.
    collectState.meterThreads.remove(meter);
}
