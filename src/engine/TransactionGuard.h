// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

/// While one exists, rpm is changing the system, and the process isn't ended by accident: SIGINT,
/// SIGTERM and SIGHUP are only noted. At most one at a time. Any thread.
class TransactionGuard
{
public:
    TransactionGuard();
    ~TransactionGuard();
    TransactionGuard(const TransactionGuard&) = delete;
    TransactionGuard& operator=(const TransactionGuard&) = delete;

    /// The first signal that came while a guard existed and that is still to be obeyed; 0 for none.
    static int pendingSignal();
};
