// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

/// While one exists, rpm is changing the system, and the process isn't ended by accident: SIGINT,
/// SIGTERM and SIGHUP are only noted, unless they were ignored, and exit() waits for the end of it
/// (see Unattended). At most one at a time, on the thread that runs the transaction.
class TransactionGuard
{
public:
    TransactionGuard();
    ~TransactionGuard();
    TransactionGuard(const TransactionGuard&) = delete;
    TransactionGuard& operator=(const TransactionGuard&) = delete;

    /// The first signal that came while a guard existed and that is still to be obeyed; 0 for none.
    static int pendingSignal();
    /// Ends the process by the pending signal, so that its parent sees why it ended. Comes back
    /// where there is none.
    static void obeyPendingSignal();
};
