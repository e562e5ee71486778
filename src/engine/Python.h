// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/PyRef.h"

#include <cstdarg>
#include <list>
#include <stack>

/// Thin access to the interpreter that lives in the process: start and stop, code strings, calls by
/// name, and the rule by which an exception is either what the caller expected or an internal
/// error.
///
/// Everything but initialize() needs the interpreter lock. Nothing throws: a failing call gives
/// null and has reported through error(), unless an expected exception is pending.
///
/// The GUI thread holds the lock from initialize() on and gives it away only while a work thread
/// runs.
class Python
{
public:
    /// Holds the interpreter lock for a scope, if told to act at all. Nests.
    class PyGILStateWrapper
    {
    public:
        explicit PyGILStateWrapper(bool act);
        ~PyGILStateWrapper();
        PyGILStateWrapper(const PyGILStateWrapper&) = delete;
        PyGILStateWrapper& operator=(const PyGILStateWrapper&) = delete;

        /// Opens and closes the lock within the scope; calls must alternate.
        void ensure();
        void release();

    private:
        bool act;
        bool held = false;
        PyGILState_STATE state{};
    };

    /// Gives the calling thread's interpreter lock away for a scope.
    class PyThreadStateWrapper
    {
    public:
        PyThreadStateWrapper();
        ~PyThreadStateWrapper();
        PyThreadStateWrapper(const PyThreadStateWrapper&) = delete;
        PyThreadStateWrapper& operator=(const PyThreadStateWrapper&) = delete;

        void save();
        void restore();

    private:
        PyThreadState* state = nullptr;
    };

    /// Gives the interpreter lock away for a scope in which the calling thread waits for another,
    /// if it holds the lock at all.
    class UnlockedWait
    {
    public:
        UnlockedWait();
        ~UnlockedWait();
        UnlockedWait(const UnlockedWait&) = delete;
        UnlockedWait& operator=(const UnlockedWait&) = delete;

    private:
        PyThreadState* state = nullptr;
    };

    /// Ends the interpreter if it was started.
    virtual ~Python();

    /// Opens a scope of expected exceptions; every one is closed by exactly one pyExceptClear(),
    /// which also drops what is pending.
    virtual void pyExceptStart();
    /// `exception` is borrowed and must live until the matching pyExceptClear().
    virtual void pyExceptExpect(PyObject* exception);
    virtual void pyExceptClear();
    /// Whether a call that gave `result` failed by an exception of this class, still pending.
    virtual bool pyExceptMatches(PyObject* result, PyObject* exception);
    virtual void error(const char* message) = 0;
    virtual void warning(const char* message) = 0;
    /// Leaves an exception that the innermost scope expects pending; any other is reported as an
    /// internal error and cleared.
    virtual void handleException();
    /// Hook: an expected exception has been met and stays pending.
    virtual void exceptionExpected();
    /// Clears the pending exception and reports it, its walkback to the script's `sys.stderr`.
    virtual void exceptionError();

    /// Starts the interpreter, once a process; the calling thread then holds the lock. False, after
    /// a report, where the main module can't be had.
    bool initialize();

    /// Runs statements, or gives the value of an expression, in the main module. The forms with an
    /// "f" format the code as printf() does.
    void py(const char* code);
    PyRef pyr(const char* code);
    void pyf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    PyRef pyrf(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// UTF-8 text of a string, or the bytes of a bytes object; owned by the object. Null for None
    /// (no report), for null and for any other type (reported).
    const char* pyString(PyObject* object);

    /// Calls a function by dotted name, or a method. They take a Py_BuildValue format that gives a
    /// tuple: "()" or "(O,s)". A method that is missing leaves the AttributeError pending, besides
    /// the report.
    PyRef pyCall(const char* name, const char* format, ...);
    PyRef pyVCall(const char* name, const char* format, va_list arguments);
    PyRef pyMethodCall(PyObject* self, const char* method, const char* format, ...);
    PyRef pyVMethodCall(PyObject* self, const char* method, const char* format, va_list arguments);

    /// Object of a dotted name: main module's globals or an import first, then module dictionaries.
    /// Borrowed: modules and their dictionaries keep it alive.
    PyObject* pyLookup(const char* name, bool quiet);
    /// A name in a module; borrowed. Null without a word where only the name is missing.
    PyObject* pyValue(const char* module, const char* name);
    /// Binds a name in a module, or in the main one; the dictionary takes a reference of its own.
    void pyAssign(const char* module, const char* name, PyObject* value);
    void pyAssignGlobal(const char* name, PyObject* value);

    /// sys.hexversion.
    long pyVersion();
    /// Normalized value of the pending exception, which stays pending.
    PyRef pyExceptValue();
    /// Text object of the pending exception: its attribute "value", else str() of it.
    PyRef pyExceptValuef();
    /// Text object of a given exception value, by the same rule.
    PyRef pyExceptText(PyObject* value);

    /// Developer's aid: binds `object` to the global `dbg` and enters the debugger.
    void pyDebug(PyObject* object);

    /// Sets Python's own SIGINT handler, or the system's default.
    void setEnablePythonSIGINTHandler(bool enable);

protected:
    static bool initialized;
    /// Dictionary of module __main__; borrowed, alive as long as the interpreter.
    static PyObject* main_dict;

private:
    /// Dictionary of a module by dotted name, or the dictionary of that name; borrowed. Null after
    /// a report.
    PyObject* dictionaryOf(const char* module);

    std::stack<std::list<PyObject*>> expected; ///< classes are borrowed; only the top list counts
};
