// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/TransactionGuard.h"

#include "engine/Unattended.h"

#include <atomic>
#include <csignal>
#include <cstddef>

namespace
{

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr std::size_t count = sizeof signals / sizeof *signals;
struct sigaction saved[count];
std::atomic<bool> guarded{false};
std::atomic<int> pending{0};

static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "a signal handler uses them");

void obey(int number)
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
    raise(number);
}

/// On any thread that doesn't block the signal; rpm does that on its own.
extern "C" void noteSignal(int number)
{
    if (!guarded) {
        // Somebody had saved this handler within the guard and put it back after its end.
        obey(number);
        return;
    }
    int none = 0;
    pending.compare_exchange_strong(none, number);
}

} // namespace

TransactionGuard::TransactionGuard()
{
    Unattended::hold();
    guarded = true;
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    // What waits on other threads is none of the signal's business. Programs that scriptlets run
    // start with the default, as exec() makes it of any handler.
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < count; ++i) {
        sigaction(signals[i], nullptr, &saved[i]);
        // Programs under nohup have nothing to fear, and hand it on to the scriptlets.
        if (saved[i].sa_handler != SIG_IGN)
            sigaction(signals[i], &action, nullptr);
    }
}

TransactionGuard::~TransactionGuard()
{
    for (std::size_t i = 0; i < count; ++i)
        sigaction(signals[i], &saved[i], nullptr);
    guarded = false;
    Unattended::release();
}

int TransactionGuard::pendingSignal()
{
    return pending;
}

void TransactionGuard::obeyPendingSignal()
{
    const int number = pending;
    if (number == 0)
        return;
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, number);
    pthread_sigmask(SIG_UNBLOCK, &mask, nullptr);
    obey(number);
}
