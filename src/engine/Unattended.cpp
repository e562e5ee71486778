// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Unattended.h"

#include "engine/Python.h"

#include <QCoreApplication>
#include <QHash>
#include <QThread>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include <unistd.h>

namespace
{

struct Shared {
    std::mutex mutex;
    std::condition_variable released;
    std::function<void()> leave; ///< set while work runs
    bool held = false;
    std::thread::id holder;
    std::thread::id leaver;       ///< the thread that has called `leave`
    QThread* successor = nullptr; ///< of the GUI thread; never ends
    QHash<QObject*, std::function<void()>> served;
};

/// Never destroyed: work threads may use it to the last moment.
Shared& shared()
{
    static Shared* const made = new Shared;
    return *made;
}

std::atomic<bool> unattended{false};
std::atomic<int> standardError{-1};

void handOver(Shared& all, QObject* object, const std::function<void()>& takenOver)
{
    object->moveToThread(all.successor);
    if (takenOver)
        QMetaObject::invokeMethod(object, takenOver, Qt::QueuedConnection);
}

/// On the GUI thread.
void leaveGuiThread(Shared& all)
{
    if (all.successor)
        return;
    all.successor = new QThread;
    all.successor->setObjectName(QStringLiteral("Unattended"));
    all.successor->start();
    for (auto it = all.served.cbegin(); it != all.served.cend(); ++it) {
        if (it.key()->thread() == QThread::currentThread())
            handOver(all, it.key(), it.value());
    }
}

[[noreturn]] void waitForEver()
{
    for (;;)
        pause();
}

extern "C" void beforeExit()
{
    Shared& all = shared();
    std::unique_lock<std::mutex> lock(all.mutex);
    if (!all.leave)
        return;
    if (!all.held && !unattended) {
        if (standardError >= 0)
            Unattended::tell("ended before the transaction; nothing was changed");
        // With the mutex held: no transaction begins any more.
        _exit(1);
    }
    unattended = true;
    const std::function<void()> leave = all.leave;
    // Its own end can't be waited for: rpm's Python callbacks exit where they fail.
    if (all.holder != std::this_thread::get_id()) {
        if (const QCoreApplication* app = QCoreApplication::instance()) {
            if (app->thread() == QThread::currentThread())
                leaveGuiThread(all);
        }
        lock.unlock();
        const Python::UnlockedWait unlocked;
        lock.lock();
        all.released.wait(lock, [&] { return !all.held; });
        if (all.leaver == std::thread::id()) {
            all.leaver = std::this_thread::get_id();
            lock.unlock();
            leave();
        } else if (all.leaver != std::this_thread::get_id()) {
            lock.unlock();
            waitForEver();
        }
        // Even where `leave` has come to an exit() of its own.
        _exit(1);
    }
    if (all.leaver == std::thread::id()) {
        all.leaver = std::this_thread::get_id();
        lock.unlock();
        Unattended::tell("ended within the transaction; the system may be half changed");
        leave();
    }
    _exit(1);
}

/// Handlers run in reverse order, so this one comes before the destructors of all that exists now.
void watchExit()
{
    std::atexit(beforeExit);
}

} // namespace

Unattended::Work::Work(std::function<void()> leave)
{
    static const bool watched = (watchExit(), true);
    Q_UNUSED(watched)
    Shared& all = shared();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.leave = std::move(leave);
}

Unattended::Work::~Work()
{
    Shared& all = shared();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.leave = nullptr;
}

void Unattended::hold()
{
    // Again, before what has been made since; and twice, because each thread that calls exit()
    // takes the next handler, and the second one is not to get past us to the destructors.
    watchExit();
    watchExit();
    Shared& all = shared();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.held = true;
    all.holder = std::this_thread::get_id();
}

void Unattended::release()
{
    Shared& all = shared();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.held = false;
    all.holder = std::thread::id();
    all.released.notify_all();
}

bool Unattended::active()
{
    return unattended;
}

void Unattended::serve(QObject* object, const std::function<void()>& takenOver)
{
    Shared& all = shared();
    const std::lock_guard<std::mutex> lock(all.mutex);
    if (all.successor)
        handOver(all, object, takenOver);
    else
        object->moveToThread(QCoreApplication::instance()->thread());
    all.served.insert(object, takenOver);
}

void Unattended::forget(QObject* object)
{
    Shared& all = shared();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.served.remove(object);
}

void Unattended::setStandardError(int descriptor)
{
    standardError = descriptor;
}

void Unattended::tell(const char* text)
{
    const int descriptor = standardError;
    dprintf(descriptor < 0 ? STDERR_FILENO : descriptor, "%s: %s\n", program_invocation_short_name,
            text);
}
