// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QHash>
#include <QString>

/// One Apply; touched only by the work thread.
struct ApplyState {
    QString transactionText;        ///< the review or question that is being put together
    bool transactionListed = false; ///< a review waits for the user
    bool applyConfirmed = false;    ///< the user agreed; what apply() gives
    quint32 progressAct = 0;        ///< the act number reached; may wrap
    quint32 depPackages = 0;        ///< packages counted so far for the dependency check
    quint32 depHeaders = 0;         ///< headers that have still to be fetched for it
    quint32 depPassActs = 0;        ///< acts of one pass of it
    quint32 depActs = 0;            ///< acts of all its passes so far
    quint64 downloadTotal = 0;      ///< bytes of all packages that come
    quint64 downloadLeft = 0;       ///< those of them that aren't in the cache
    quint64 downloadSpan = 0;       ///< steps of the total that downloads get
    quint64 transactionActs = 0;    ///< acts that rpm's transaction will take
    qint64 lastTsCurrent = 0;       ///< the event that last began a package had this number
    bool deltaRebuilt = false;      ///< the item for the rebuild from deltas has been begun
    bool tsEventSeen = false;       ///< so its preparation has been counted
    /// Downloads that run in parallel.
    struct {
        bool multiActive = false;
        qint64 multiFiles = 0;
        qint64 multiSize = 0;
        quint32 nextThread = 0; ///< the slot of the next meter
        QHash<void*, unsigned int> meterThreads;
    } multi;
};
