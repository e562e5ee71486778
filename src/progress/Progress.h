// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QVector>

class HProgressBar;

/// A progress count. What it counts (abstract steps, bytes) is the caller's.
using Steps = quint64;

namespace Progress
{

class Minion;

/// One parallel download.
struct ThreadState {
    enum State : qint32 { NotStarted = 0, Retrying = 1, InProgress = 2, Complete = 3 };

    QString activity;
    Steps value = 0;
    Steps maximum = 1; ///< size of the download; 1 where it isn't known
    State state = NotStarted;
};

/// The slots of parallel downloads: a value, of which each thread has a copy of its own. The number
/// of slots is fixed; a new number means a new object. Slot numbers aren't checked.
///
/// Each change of a slot sends a copy to the GUI thread. Copies share their slots by the block, so
/// that a change after it costs one block and not all of hundreds of slots.
class ThreadsState
{
public:
    ThreadsState() = default;
    explicit ThreadsState(unsigned int count)
        : slotCount(count)
        , blocks(static_cast<int>((count + blockSize - 1) / blockSize), Block(blockSize))
    {
    }

    ThreadState& operator[](unsigned int thread)
    {
        return blocks[static_cast<int>(thread / blockSize)][static_cast<int>(thread % blockSize)];
    }
    const ThreadState& operator[](unsigned int thread) const
    {
        return blocks.at(static_cast<int>(thread / blockSize))
            .at(static_cast<int>(thread % blockSize));
    }
    unsigned int count() const { return slotCount; }

private:
    using Block = QVector<ThreadState>;
    static constexpr unsigned int blockSize = 16;

    unsigned int slotCount = 0;
    QVector<Block> blocks;
};

/// What the engine tells of a long operation: a total, items within it, acts that share a stretch
/// of the total evenly, and parallel downloads within an item. It does the arithmetic and draws
/// nothing: one signal an operation goes to the Minion on the GUI thread. To be used on one thread
/// only, the one that it was made on.
class Object : public QObject
{
    Q_OBJECT

public:
    /// The bars aren't owned and must live on the GUI thread.
    Object(HProgressBar* total, HProgressBar* item);
    ~Object() override;

    void startTotal(const QString& activity, Steps maximum);
    void startItem(const QString& activity, Steps totalSteps, Steps itemMaximum);
    void changeItemActivity(const QString& activity);
    void setItemValue(Steps value);
    void setTotalValue(Steps value);
    void setupItemActs(Steps span, Steps count);
    void changeItemActs(Steps count);
    void startItemAct(const QString& activity, Steps itemMaximum, Steps act);
    void endItemActs();
    void setupItemActsThreads(const QString& activity, Steps firstAct, Steps endAct,
                              unsigned int threadCount, Steps itemMaximum);
    void startItemActThread(const QString& activity, unsigned int thread, Steps maximum);
    void setItemActsThreadValue(unsigned int thread, Steps value);
    void endItemActThread(unsigned int thread);
    void retryItemActThread(unsigned int thread);
    void endItemActsThreads();
    /// Slots of the running batch; 0 without one.
    unsigned int threadCount() const { return threads.count(); }
    void reset();

Q_SIGNALS:
    void startTotalSig(QString activity, Steps maximum);
    void startItemSig(QString activity, Steps total, Steps maximum);
    void changeItemActivitySig(QString activity);
    void changeItemActsSig(Steps total);
    void setItemValueSig(Steps total, Steps item);
    void endItemActsSig(Steps total);
    void setTotalValueSig(Steps total);
    void updateThreadsStateSig(const ThreadsState& state);
    void resetSig();

protected:
    /// Where act number `act` begins, counted from the start of the acts stretch.
    Steps position(Steps act) const;
    /// Lets the GUI move on where the long operation runs on the GUI thread itself.
    void updateGui();

    Minion* minion = nullptr;
    bool sameThread = false;
    QElapsedTimer valueTime;
    QElapsedTimer guiTime;
    Steps totalValue = 0;
    Steps totalMaximum = 1;
    Steps itemStart = 0;
    Steps itemEnd = 0;
    Steps itemValue = 0;
    Steps itemMaximum = 1;
    Steps actsSpan = 0;
    Steps actsEnd = 0;
    Steps actCount = 0;
    Steps actIndex = 0;
    Steps threadsFirstAct = 0; ///< noted only, as is the next
    Steps threadsActCount = 0;
    ThreadsState threads;
};

/// Makes an Object on the running thread for a scope and keeps it in `slot`; null again at the end.
class User
{
public:
    User(Object*& slot, HProgressBar* total, HProgressBar* item);
    ~User();
    User(const User&) = delete;
    User& operator=(const User&) = delete;

private:
    Object*& slot;
};

} // namespace Progress

using ThreadsState = Progress::ThreadsState;

Q_DECLARE_METATYPE(Progress::ThreadsState)
