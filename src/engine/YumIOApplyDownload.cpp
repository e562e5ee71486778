// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Meters.h"

#include <algorithm>

// What the script's meters say during an Apply: of headers before the user's agreement, of packages
// after it. Either one file after another, an item each, or a batch of parallel files, which is one
// item with a slot for each file. A meter is its object's address and never looked at.

using Meters::steps;

namespace
{

/// What a person wants to read of a path or URL.
QString shortName(const QString& name)
{
    QString text = Meters::withoutVantry(name.mid(name.lastIndexOf(QLatin1Char('/')) + 1));
    if (text.endsWith(QLatin1String(".rpm")) || text.endsWith(QLatin1String(".hdr")))
        text.chop(4);
    return text;
}

} // namespace

void YumIO::addDownloadActs(long long bytes)
{
    if (!applyState.applyConfirmed)
        addActs(Meters::headerActs);
    else
        addActs(hasMultiProgress() ? steps(bytes) : std::max(steps(bytes), Meters::leastDownload));
}

bool YumIO::applySlot(void* meter, unsigned int& slot)
{
    slot = applyState.multi.meterThreads[meter];
    return progress && slot < progress->threadCount();
}

PyObject* YumIO::applyGrabMeterStart(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    PyObject* nameObject = nullptr;
    PyObject* url = nullptr;
    PyObject* basename = nullptr;
    PyObject* sizeObject = nullptr;
    PyObject* textObject = nullptr;
    if (!PyArg_ParseTuple(args, "OOOOOO", &meter, &nameObject, &url, &basename, &sizeObject,
                          &textObject))
        return nullptr;

    const long long size = progressSize(sizeObject, 0);
    const QString text =
        progressText(textObject, tr("Internal error: unexpected progress text type"));
    if (text == QLatin1String("<delta rebuild>")) {
        applyState.deltaRebuilt = true;
        if (progress) {
            progress->endItemActs();
            progress->startItem(tr("Finishing RPM rebuild from deltas"), 2000, steps(size));
        }
        Py_RETURN_NONE;
    }

    const QString name =
        progressText(nameObject, tr("Internal error: unexpected progress name type"));
    const QString shown = shortName(name.isEmpty() ? text : name);
    const QString label = applyState.applyConfirmed ? tr("Downloading %1").arg(shown)
                                                    : tr("Downloading %1 header").arg(shown);
    if (applyState.multi.multiActive) {
        unsigned int slot = 0;
        if (applySlot(meter, slot))
            progress->startItemActThread(label, slot, steps(size));
        Py_RETURN_NONE;
    }
    addDownloadActs(size);
    startApplyItem(label, size);
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMeterUpdate(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    long long amount = 0;
    if (!PyArg_ParseTuple(args, "OL", &meter, &amount))
        return nullptr;
    unsigned int slot = 0;
    if (!applyState.multi.multiActive)
        setApplyItem(amount);
    else if (applySlot(meter, slot))
        progress->setItemActsThreadValue(slot, steps(amount));
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMeterEnd(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    long long amount = 0;
    if (!PyArg_ParseTuple(args, "OL", &meter, &amount))
        return nullptr;
    unsigned int slot = 0;
    // Outside a batch the next item ends this one.
    if (applyState.multi.multiActive && applySlot(meter, slot)) {
        progress->setItemActsThreadValue(slot, steps(amount));
        progress->endItemActThread(slot);
    }
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMeterFailure(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    PyObject* message = nullptr;
    if (!PyArg_ParseTuple(args, "OO", &meter, &message))
        return nullptr;
    // Only its type is of interest: what went wrong reaches the log by the script's own lines.
    progressText(message, tr("Internal error: unexpected progress failure message"));
    unsigned int slot = 0;
    if (applyState.multi.multiActive && applySlot(meter, slot))
        progress->retryItemActThread(slot);
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterStart(PyObject*, PyObject* args)
{
    long long files = 0;
    long long bytes = 0;
    if (!PyArg_ParseTuple(args, "LL", &files, &bytes))
        return nullptr;
    auto& multi = applyState.multi;
    multi.multiActive = true;
    multi.multiFiles = files;
    multi.multiSize = bytes;
    multi.nextThread = 0;
    multi.meterThreads.clear();

    const Steps first = applyState.progressAct;
    addDownloadActs(bytes);
    // The item goes up to the act before its end, and there is none before act 0.
    const Steps end = std::max<Steps>(applyState.progressAct, 1);
    if (progress)
        progress->setupItemActsThreads(QStringLiteral("Downloading %1 packages").arg(files), first,
                                       end, Meters::slotCount(files), steps(bytes));
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterNew(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    if (!PyArg_ParseTuple(args, "O", &meter))
        return nullptr;
    applyState.multi.meterThreads.insert(meter, applyState.multi.nextThread++);
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterRemove(PyObject*, PyObject* args)
{
    PyObject* meter = nullptr;
    if (!PyArg_ParseTuple(args, "O", &meter))
        return nullptr;
    applyState.multi.meterThreads.remove(meter);
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterEnd(PyObject*, PyObject*)
{
    if (progress)
        progress->endItemActsThreads();
    applyState.multi.multiActive = false;
    applyState.multi.nextThread = 0;
    applyState.multi.meterThreads.clear();
    Py_RETURN_NONE;
}
