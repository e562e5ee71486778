// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/PyRef.h"

/// An exception taken out of the interpreter's error indicator. Needs the interpreter lock for all
/// of its life.
class PyRaised
{
public:
    PyRaised() = default;

    /// Takes the pending exception, normalized; nothing is pending afterwards. Holds nothing where
    /// nothing was pending.
    static PyRaised take();

    /// Makes the exception pending again in place of whatever is pending now.
    void restore();

    /// Writes the walkback to the script's `sys.stderr`.
    void display() const;

    /// The exception instance, borrowed; null where none is held.
    PyObject* value() const { return instance.get(); }
    explicit operator bool() const { return bool(instance) || bool(type); }

private:
    PyRef type;
    PyRef instance;
    PyRef traceback;
};
