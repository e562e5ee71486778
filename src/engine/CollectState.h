// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

/// One download of a batch. The number that it turns into is its only comparison and hash.
class ThreadId
{
public:
    ThreadId() = default;
    ThreadId(const QString& name, int act)
        : name(name)
        , act(act)
    {
    }
    operator long() const { return static_cast<long>(qHash(name)) + act; }

private:
    QString name;
    int act = 0;
};

/// Progress of a collection; touched only by the work thread.
struct CollectState {
    QStringList repos;     ///< ids of the enabled repositories
    QString contentsLabel; ///< the word for what ActContents fetches
    int act = 0;           ///< the act number reached
    int lastTotal = 0;
    QString lastName;
    bool multiActive = false;
    bool multiStarted = false;
    long long multiFiles = 0;
    long long multiSize = 0;
    unsigned int nextThread = 0;
    QHash<void*, unsigned int> meterThreads;
    std::vector<ThreadId> threadIds;
    QHash<ThreadId, unsigned int> idThreads;
};
