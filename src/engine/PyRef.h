// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/PythonHeader.h"

#include <utility>

/// Sole owner of one reference to an interpreter object, or of none. Whoever makes, moves over or
/// destroys one that holds an object must hold the interpreter lock, and it must not outlive the
/// interpreter.
class PyRef
{
public:
    PyRef() = default;
    PyRef(PyRef&& other) noexcept
        : object(std::exchange(other.object, nullptr))
    {
    }
    PyRef& operator=(PyRef&& other) noexcept
    {
        if (this != &other)
            reset(std::exchange(other.object, nullptr));
        return *this;
    }
    PyRef(const PyRef&) = delete;
    PyRef& operator=(const PyRef&) = delete;
    ~PyRef() { Py_XDECREF(object); }

    /// Takes over a new reference; null is fine.
    static PyRef adopt(PyObject* object) { return PyRef(object); }

    /// Takes a reference of its own to a borrowed object; null is fine.
    static PyRef borrow(PyObject* object)
    {
        Py_XINCREF(object);
        return PyRef(object);
    }

    /// The object, borrowed.
    PyObject* get() const { return object; }
    explicit operator bool() const { return object != nullptr; }

    /// Gives the reference to the caller.
    [[nodiscard]] PyObject* release() { return std::exchange(object, nullptr); }

    /// Drops what is held and takes over `next`.
    void reset(PyObject* next = nullptr)
    {
        PyObject* old = std::exchange(object, next);
        Py_XDECREF(old);
    }

private:
    explicit PyRef(PyObject* object)
        : object(object)
    {
    }

    PyObject* object = nullptr;
};
