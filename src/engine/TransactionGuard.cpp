// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/TransactionGuard.h"

#include <atomic>
#include <csignal>

namespace
{

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};
struct sigaction saved[3];
std::atomic<int> pending{0};

extern "C" void noteSignal(int number)
{
    int none = 0;
    pending.compare_exchange_strong(none, number);
}

} // namespace

TransactionGuard::TransactionGuard()
{
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (int i = 0; i < 3; ++i)
        sigaction(signals[i], &action, &saved[i]);
}

TransactionGuard::~TransactionGuard()
{
    for (int i = 0; i < 3; ++i)
        sigaction(signals[i], &saved[i], nullptr);
}

int TransactionGuard::pendingSignal()
{
    return pending;
}
