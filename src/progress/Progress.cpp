// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/Progress.h"
#include "progress/HProgressBar.h"
#include "progress/ProgressMinion.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <algorithm>

namespace Progress
{

namespace
{

constexpr qint64 throttleMsecs = 9;

/// A clock that was never started lets nothing through.
bool isDue(const QElapsedTimer& clock)
{
    return clock.isValid() && clock.elapsed() > throttleMsecs;
}

/// Queued connections and signal spies look the argument types up by the names in the signals.
void registerTypes()
{
    static const bool registeredTypes = [] {
        qRegisterMetaType<Steps>("Steps");
        qRegisterMetaType<ThreadsState>("ThreadsState");
        return true;
    }();
    Q_UNUSED(registeredTypes)
}

} // namespace

Object::Object(HProgressBar* total, HProgressBar* item)
{
    registerTypes();
    setObjectName(QStringLiteral("progress"));

    minion = new Minion(total, item);
    minion->moveToThread(QCoreApplication::instance()->thread());
    sameThread = minion->thread() == thread();

    connect(this, &Object::startTotalSig, minion, &Minion::startTotal);
    connect(this, &Object::startItemSig, minion, &Minion::startItem);
    connect(this, &Object::changeItemActivitySig, minion, &Minion::changeItemActivity);
    connect(this, &Object::changeItemActsSig, minion, &Minion::changeItemActs);
    connect(this, &Object::setItemValueSig, minion, &Minion::setItemValue);
    connect(this, &Object::endItemActsSig, minion, &Minion::endItemActs);
    connect(this, &Object::setTotalValueSig, minion, &Minion::setTotalValue);
    connect(this, &Object::updateThreadsStateSig, minion, &Minion::updateThreadsState);
    connect(this, &Object::resetSig, minion, &Minion::reset);

    reset();
}

Object::~Object()
{
    reset();
    // Its own thread deletes it, after the signals that are still on their way to it.
    minion->deleteLater();
}

void Object::startTotal(const QString& activity, Steps maximum)
{
    totalValue = 0;
    totalMaximum = maximum;
    if (sameThread)
        guiTime.start();
    Q_EMIT startTotalSig(activity, totalMaximum);
    updateGui();
}

void Object::startItem(const QString& activity, Steps totalSteps, Steps itemMaximum)
{
    // What the item before left undone is skipped.
    totalValue = itemEnd;
    itemStart = itemEnd;
    itemEnd = itemStart + totalSteps;
    itemValue = 0;
    this->itemMaximum = itemMaximum;
    valueTime.start();
    Q_EMIT startItemSig(activity, totalValue, itemMaximum);
    updateGui();
}

void Object::changeItemActivity(const QString& activity)
{
    Q_EMIT changeItemActivitySig(activity);
}

void Object::setItemValue(Steps value)
{
    value = std::min(value, itemMaximum);
    itemValue = value;
    totalValue =
        itemMaximum == 0 ? itemEnd : itemStart + value * (itemEnd - itemStart) / itemMaximum;

    // No exception for an item's last value: the next item sets both bars right.
    if (isDue(valueTime)) {
        valueTime.start();
        Q_EMIT setItemValueSig(totalValue, value);
    }
    updateGui();
}

void Object::setTotalValue(Steps value)
{
    value = std::min(value, totalMaximum);
    const bool reachesEnd = value == totalMaximum && totalValue != totalMaximum;
    if (!isDue(valueTime) && !reachesEnd)
        return;

    valueTime.start();
    totalValue = value;
    Q_EMIT setTotalValueSig(value);
    updateGui();
}

void Object::setupItemActs(Steps span, Steps count)
{
    actsSpan = span;
    actsEnd = itemEnd + span;
    actCount = count;
    actIndex = 0;
}

void Object::changeItemActs(Steps count)
{
    actCount = count;
    itemEnd = actsEnd - actsSpan + position(actIndex);
    totalValue = itemEnd;
    Q_EMIT changeItemActsSig(totalValue);
    updateGui();
}

void Object::startItemAct(const QString& activity, Steps itemMaximum, Steps act)
{
    act = std::min(act, actCount);
    startItem(activity, position(act) - position(actIndex), itemMaximum);
    actIndex = act;
}

void Object::endItemActs()
{
    itemStart = itemEnd = totalValue = actsEnd;
    Q_EMIT endItemActsSig(totalValue);
    updateGui();
}

void Object::setupItemActsThreads(const QString& activity, Steps firstAct, Steps endAct,
                                  unsigned int threadCount, Steps itemMaximum)
{
    threadsFirstAct = firstAct;
    threadsActCount = actCount;
    threads = ThreadsState(threadCount);
    Q_EMIT updateThreadsStateSig(threads);
    startItem(activity, position(endAct - 1) - position(actIndex), itemMaximum);
    actIndex = endAct - 1;
}

void Object::startItemActThread(const QString& activity, unsigned int thread, Steps maximum)
{
    ThreadState& slot = threads[thread];
    slot.activity = activity;
    slot.value = 0;
    slot.maximum = maximum;
    slot.state = ThreadState::InProgress;
    // A single download is shown on the item bar itself.
    if (threads.count() == 1)
        changeItemActivity(activity);
    Q_EMIT updateThreadsStateSig(threads);
}

void Object::setItemActsThreadValue(unsigned int thread, Steps value)
{
    ThreadState& slot = threads[thread];
    // Unsigned arithmetic wraps around, so a value that goes down is taken off.
    const Steps change = value - slot.value;
    slot.value = value;
    Q_EMIT updateThreadsStateSig(threads);
    setItemValue(itemValue + change);
}

void Object::endItemActThread(unsigned int thread)
{
    threads[thread].state = ThreadState::Complete;
    Q_EMIT updateThreadsStateSig(threads);
}

void Object::retryItemActThread(unsigned int thread)
{
    ThreadState& slot = threads[thread];
    slot.state = ThreadState::Retrying;
    const Steps rest = itemValue - slot.value;
    slot.value = 0;
    setItemValue(rest);
    Q_EMIT updateThreadsStateSig(threads);
}

void Object::endItemActsThreads()
{
    threads = ThreadsState();
    Q_EMIT updateThreadsStateSig(threads);
}

void Object::reset()
{
    totalMaximum = 1;
    itemStart = 0;
    itemEnd = 0;
    itemMaximum = 1;
    threads = ThreadsState();
    Q_EMIT updateThreadsStateSig(threads);
    Q_EMIT resetSig();
    updateGui();
}

Steps Object::position(Steps act) const
{
    return actCount == 0 ? actsSpan : actsSpan * act / actCount;
}

void Object::updateGui()
{
    if (!sameThread || !isDue(guiTime))
        return;
    QEventLoop loop;
    loop.processEvents(QEventLoop::ExcludeUserInputEvents);
    guiTime.start();
}

User::User(Object*& slot, HProgressBar* total, HProgressBar* item)
    : slot(slot)
{
    slot = new Object(total, item);
}

User::~User()
{
    delete slot;
    slot = nullptr;
}

} // namespace Progress
