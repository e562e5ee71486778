// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Python.h"

#include "engine/PyRaised.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <string>

bool Python::initialized = false;
PyObject* Python::main_dict = nullptr;

namespace
{

__attribute__((format(printf, 1, 0))) std::string vformat(const char* format, va_list arguments)
{
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
        return format;
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(&text[0], text.size(), format, arguments);
    text.pop_back();
    return text;
}

__attribute__((format(printf, 1, 2))) std::string format(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = vformat(format, arguments);
    va_end(arguments);
    return text;
}

using Names = std::map<std::string, PyRef, std::less<>>;

/// Method names as interned strings: attribute lookup is fastest by those, and a collection makes a
/// million calls by a handful of names. Under the interpreter lock; emptied before the interpreter
/// ends.
Names& methodNames()
{
    // Never destroyed: at the end of the process there may be no interpreter to give the names to.
    static Names* const names = new Names;
    return *names;
}

/// Borrowed; null with the error set.
PyObject* methodName(const char* method)
{
    Names& names = methodNames();
    auto found = names.find(method);
    if (found == names.end()) {
        PyRef name = PyRef::adopt(PyUnicode_InternFromString(method));
        if (!name)
            return nullptr;
        found = names.emplace(method, std::move(name)).first;
    }
    return found->second.get();
}

PyRef callWith(PyObject* callable, const char* format, va_list arguments)
{
    if (std::strcmp(format, "()") == 0)
        return PyRef::adopt(PyObject_CallObject(callable, nullptr));
    const PyRef tuple = PyRef::adopt(Py_VaBuildValue(format, arguments));
    if (!tuple)
        return PyRef();
    return PyRef::adopt(PyObject_CallObject(callable, tuple.get()));
}

#if PY_VERSION_HEX >= 0x03080000

/// Null, or what went wrong. The environment has no say: the program often runs as root, and a path
/// meant for another interpreter must not decide which modules it loads.
const char* startInterpreter()
{
    // Text files are read as UTF-8 even in the C locale, but the locale itself stays as Qt has set
    // it.
    PyPreConfig before;
    PyPreConfig_InitPythonConfig(&before);
    before.parse_argv = 0;
    before.use_environment = 0;
    before.coerce_c_locale = 0;
    PyStatus status = Py_PreInitialize(&before);
    if (PyStatus_Exception(status))
        return status.err_msg ? status.err_msg : "unknown reason";

    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    config.parse_argv = 0;
    config.use_environment = 0;
    config.user_site_directory = 0;
    config.configure_c_stdio = 0;
    config.install_signal_handlers = 1;
    // Without a program name the interpreter looks for its prefix through PATH, where another
    // installation may come first that hasn't got the package manager's modules.
    status = PyConfig_SetBytesString(&config, &config.program_name, VOK_PYTHON);
    if (!PyStatus_Exception(status))
        status = Py_InitializeFromConfig(&config);
    PyConfig_Clear(&config);
    if (PyStatus_Exception(status))
        return status.err_msg ? status.err_msg : "unknown reason";
    return nullptr;
}

#else

const char* startInterpreter()
{
    Py_IgnoreEnvironmentFlag = 1;
    Py_NoUserSiteDirectory = 1;
    // The interpreter keeps the pointer.
    static wchar_t* const name = Py_DecodeLocale(VOK_PYTHON, nullptr);
    if (!name)
        return "program name";
    Py_SetProgramName(name);
    Py_Initialize();
#if PY_VERSION_HEX < 0x03070000
    PyEval_InitThreads();
#endif
    return nullptr;
}

#endif

} // namespace

Python::PyGILStateWrapper::PyGILStateWrapper(bool act)
    : act(act)
{
    ensure();
}

Python::PyGILStateWrapper::~PyGILStateWrapper()
{
    release();
}

void Python::PyGILStateWrapper::ensure()
{
    // Before the interpreter has started there is no lock to take.
    if (!act || held || !Py_IsInitialized())
        return;
    state = PyGILState_Ensure();
    held = true;
}

void Python::PyGILStateWrapper::release()
{
    if (!held)
        return;
    held = false;
    PyGILState_Release(state);
}

Python::PyThreadStateWrapper::PyThreadStateWrapper()
{
    save();
}

Python::PyThreadStateWrapper::~PyThreadStateWrapper()
{
    restore();
}

void Python::PyThreadStateWrapper::save()
{
    if (!state && Py_IsInitialized())
        state = PyEval_SaveThread();
}

void Python::PyThreadStateWrapper::restore()
{
    if (!state)
        return;
    PyEval_RestoreThread(state);
    state = nullptr;
}

Python::UnlockedWait::UnlockedWait()
{
    if (Py_IsInitialized() && PyGILState_Check())
        state = PyEval_SaveThread();
}

Python::UnlockedWait::~UnlockedWait()
{
    if (state)
        PyEval_RestoreThread(state);
}

Python::~Python()
{
    if (!initialized)
        return;
    // Never released: the interpreter takes the lock with it.
    PyGILState_Ensure();
    methodNames().clear();
    Py_FinalizeEx();
    initialized = false;
    main_dict = nullptr;
}

bool Python::initialize()
{
    if (initialized)
        return true;
    if (const char* reason = startInterpreter()) {
        error(format("Internal error: cannot start python: %s\n", reason).c_str());
        return false;
    }
    initialized = true;

    PyGILStateWrapper lock(true);
    py("import signal\ndefaultSigIntSigaction = signal.getsignal(signal.SIGINT)");
    const PyRef main = PyRef::adopt(PyImport_ImportModule("__main__"));
    if (!main) {
        PyErr_Clear();
        error("Internal error: cannot find python __main__ module\n");
        return false;
    }
    main_dict = PyModule_GetDict(main.get());
    if (!main_dict) {
        error("Internal error: cannot find python __main__ dict\n");
        return false;
    }
    return true;
}

void Python::py(const char* code)
{
    if (PyRun_SimpleStringFlags(code, nullptr) == -1 && PyErr_Occurred())
        handleException();
}

PyRef Python::pyr(const char* code)
{
    PyRef result =
        PyRef::adopt(PyRun_StringFlags(code, Py_eval_input, main_dict, main_dict, nullptr));
    if (!result && PyErr_Occurred())
        handleException();
    return result;
}

void Python::pyf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string code = vformat(format, arguments);
    va_end(arguments);
    py(code.c_str());
}

PyRef Python::pyrf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string code = vformat(format, arguments);
    va_end(arguments);
    return pyr(code.c_str());
}

const char* Python::pyString(PyObject* object)
{
    if (!object) {
        error("Internal error: pyString passed NULL python object\n");
        return nullptr;
    }
    if (object == Py_None)
        return nullptr;
    const char* text = nullptr;
    if (PyBytes_Check(object))
        text = PyBytes_AsString(object);
    else if (PyUnicode_Check(object))
        text = PyUnicode_AsUTF8(object);
    else
        PyErr_Format(PyExc_TypeError, "expected a string, not %.100s", Py_TYPE(object)->tp_name);
    if (!text && PyErr_Occurred())
        handleException();
    return text;
}

PyRef Python::pyCall(const char* name, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    PyRef result = pyVCall(name, format, arguments);
    va_end(arguments);
    return result;
}

PyRef Python::pyVCall(const char* name, const char* format, va_list arguments)
{
    PyObject* callable = pyLookup(name, false);
    if (!callable) {
        error(::format("Internal error: %s not found\n", name).c_str());
        return PyRef();
    }
    if (!PyCallable_Check(callable)) {
        error(::format("Internal error: %s not callable\n", name).c_str());
        return PyRef();
    }
    PyRef result = callWith(callable, format, arguments);
    if (!result && PyErr_Occurred())
        handleException();
    return result;
}

PyRef Python::pyMethodCall(PyObject* self, const char* method, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    PyRef result = pyVMethodCall(self, method, format, arguments);
    va_end(arguments);
    return result;
}

PyRef Python::pyVMethodCall(PyObject* self, const char* method, const char* format,
                            va_list arguments)
{
    if (!self) {
        error(::format("Internal error: method %s call attemped with NULL self\n", method).c_str());
        return PyRef();
    }
    PyObject* name = methodName(method);
    const PyRef callable = name ? PyRef::adopt(PyObject_GetAttr(self, name)) : PyRef();
    if (!callable) {
        error(::format("Internal error: method %s not found\n", method).c_str());
        return PyRef();
    }
    if (!PyCallable_Check(callable.get())) {
        error(::format("Internal error: method %s not callable\n", method).c_str());
        return PyRef();
    }
    PyRef result = callWith(callable.get(), format, arguments);
    if (!result && PyErr_Occurred())
        handleException();
    return result;
}

PyObject* Python::pyLookup(const char* name, bool quiet)
{
    const auto fail = [&](const std::string& message) -> PyObject* {
        PyErr_Clear();
        if (!quiet)
            error(message.c_str());
        return nullptr;
    };

    PyObject* object = nullptr;
    const char* rest = name;
    for (bool first = true;; first = false) {
        const std::size_t length = std::strcspn(rest, ".");
        const std::string part(rest, length);
        if (first) {
            object = PyDict_GetItemString(main_dict, part.c_str());
            if (!object) {
                PyErr_Clear();
                // Borrowed from here on: the table of modules keeps what was imported.
                object = PyRef::adopt(PyImport_ImportModule(part.c_str())).get();
            }
        } else {
            PyObject* dict = PyModule_Check(object) ? PyModule_GetDict(object) : object;
            if (!dict)
                return fail(::format("Internal error: module %s lacks dictionary\n", part.c_str()));
            object = PyDict_GetItemString(dict, part.c_str());
        }
        if (!object)
            return fail(::format("Internal error: %s not found\n", part.c_str()));
        if (rest[length] == '\0')
            return object;
        rest += length + 1;
    }
}

PyObject* Python::dictionaryOf(const char* module)
{
    PyObject* object = pyLookup(module, false);
    if (!object) {
        error(::format("Internal error: %s not found\n", module).c_str());
        return nullptr;
    }
    if (!PyModule_Check(object))
        return object;
    PyObject* dict = PyModule_GetDict(object);
    if (!dict)
        error(::format("Internal error: module %s lacks dictionary\n", module).c_str());
    return dict;
}

PyObject* Python::pyValue(const char* module, const char* name)
{
    PyObject* dict = dictionaryOf(module);
    if (!dict)
        return nullptr;
    PyObject* value = PyDict_GetItemString(dict, name);
    if (!value && PyErr_Occurred())
        handleException();
    return value;
}

void Python::pyAssign(const char* module, const char* name, PyObject* value)
{
    PyObject* dict = dictionaryOf(module);
    if (!dict || PyDict_SetItemString(dict, name, value) >= 0)
        return;
    if (PyErr_Occurred())
        handleException();
    else
        error(::format("Internal error: cannot assign %s.%s\n", module, name).c_str());
}

void Python::pyAssignGlobal(const char* name, PyObject* value)
{
    PyDict_SetItemString(main_dict, name, value);
}

long Python::pyVersion()
{
    PyObject* version = pyValue("sys", "hexversion");
    return version ? PyLong_AsLong(version) : 0;
}

void Python::pyExceptStart()
{
    expected.emplace();
}

void Python::pyExceptExpect(PyObject* exception)
{
    if (!exception)
        error("Internal error: pyExceptExpect called with NULL\n");
    if (expected.empty())
        expected.emplace();
    expected.top().push_back(exception);
}

void Python::pyExceptClear()
{
    if (!expected.empty())
        expected.pop();
    PyErr_Clear();
}

bool Python::pyExceptMatches(PyObject* result, PyObject* exception)
{
    return !result && PyErr_Occurred() && PyErr_ExceptionMatches(exception);
}

void Python::handleException()
{
    if (!expected.empty()) {
        for (PyObject* exception : expected.top()) {
            if (exception && PyErr_ExceptionMatches(exception)) {
                exceptionExpected();
                return;
            }
        }
    }
    exceptionError();
}

void Python::exceptionExpected() {}

void Python::exceptionError()
{
    const PyRaised raised = PyRaised::take();
    if (!raised) {
        error("Internal error: python exception occurred, but exception information was empty.");
        return;
    }
    raised.display();
    PyErr_Clear();
    error("Internal error: python exception occurred from C code.\n"
          "When reporting this issue, please include the contents of the\n"
          "Log window, which should contain a walkback.");
}

PyRef Python::pyExceptValue()
{
    PyRaised raised = PyRaised::take();
    PyRef value = PyRef::borrow(raised.value());
    if (raised)
        raised.restore();
    return value;
}

PyRef Python::pyExceptValuef()
{
    PyRaised raised = PyRaised::take();
    if (!raised)
        return PyRef();
    PyRef text = pyExceptText(raised.value());
    raised.restore();
    return text;
}

PyRef Python::pyExceptText(PyObject* value)
{
    PyRef text = PyRef::adopt(PyObject_GetAttrString(value, "value"));
    if (text)
        return text;
    PyErr_Clear();
    return pyCall("__builtins__.str", "(O)", value);
}

void Python::pyDebug(PyObject* object)
{
    PyErr_Clear();
    pyAssignGlobal("dbg", object);
    py("import sys\n"
       "sys.stdout = sys.__stdout__\n"
       "sys.stderr = sys.__stderr__\n"
       "import pdb\n"
       "pdb.set_trace()");
    PyErr_Clear();
}

void Python::setEnablePythonSIGINTHandler(bool enable)
{
    py(enable ? "signal.signal(signal.SIGINT, defaultSigIntSigaction)"
              : "signal.signal(signal.SIGINT, signal.SIG_DFL)");
}
