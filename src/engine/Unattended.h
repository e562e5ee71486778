// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <functional>

class QObject;

/// Keeps exit() from cutting a transaction in half. Qt and Xlib call it, on the thread that
/// notices, when the display is gone.
///
/// Where nothing works, exit() goes its way. Where work runs that changes nothing, the process ends
/// at once. While a transaction is held, exit() waits for its end, with nobody to ask any more;
/// what has to answer the work thread meanwhile moves from the GUI thread, which is in exit() and
/// must not come near the display again, to a thread without one.
///
/// Any thread, unless stated otherwise.
class Unattended
{
public:
    /// Work that runs, from the GUI thread's point of view. `leave` puts things in order after a
    /// transaction that nobody waits for any more, just before the process ends.
    class Work
    {
    public:
        explicit Work(std::function<void()> leave);
        ~Work();
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;
    };

    /// Of the thread that runs the transaction. Where the process is ending already hold() doesn't
    /// come back: nothing is begun any more.
    static void hold();
    static void release();

    /// Whether nobody can be asked any more. Then it stays so to the end of the process.
    static bool active();

    /// Gives an object of the calling thread to the thread that answers work threads. When another
    /// takes over from the GUI thread the object goes with all that was posted to it, and
    /// `takenOver` is run there. Until forget(), which the object's destructor calls.
    static void serve(QObject* object, const std::function<void()>& takenOver = nullptr);
    static void forget(QObject* object);

    /// Where the process's messages go while its own descriptor is captured; -1 for nowhere else.
    static void setStandardError(int descriptor);
    /// One line for whoever started the program.
    static void tell(const char* text);
};
