// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIOC.h"

#include "engine/YumIO.h"

namespace
{

YumIO* current = nullptr;

using Function = PyObject* (YumIO::*)(PyObject*, PyObject*);

/// A function that any thread of the script's may call.
template<Function Member> PyObject* callAnywhere(PyObject* self, PyObject* args)
{
    if (!current)
        Py_RETURN_NONE;
    return (current->*Member)(self, args);
}

/// One whose state has no lock and goes with the work that the script was called for.
template<Function Member> PyObject* call(PyObject* self, PyObject* args)
{
    if (current && !current->callsScript()) {
        PyErr_SetString(PyExc_RuntimeError, "yumIOC is for the thread that has called the script");
        return nullptr;
    }
    return callAnywhere<Member>(self, args);
}

#define VOK_FUNCTION_NOARGS(name)                                                                  \
    {                                                                                              \
#name, call < &YumIO::name>, METH_NOARGS, nullptr                                          \
    }

#define VOK_FUNCTION_ANYWHERE(name)                                                                \
    {                                                                                              \
#name, callAnywhere < &YumIO::name>, METH_VARARGS, nullptr                                 \
    }

#define VOK_FUNCTION(name)                                                                         \
    {                                                                                              \
#name, call < &YumIO::name>, METH_VARARGS, nullptr                                         \
    }

PyMethodDef functions[] = {
    VOK_FUNCTION_ANYWHERE(stdoutWrite),
    VOK_FUNCTION_ANYWHERE(stderrWrite),
    VOK_FUNCTION(log),
    VOK_FUNCTION(errorlog),
    VOK_FUNCTION(collectProgress),
    VOK_FUNCTION(collectGrabMeterStart),
    VOK_FUNCTION(collectGrabMeterUpdate),
    VOK_FUNCTION(collectGrabMeterEnd),
    VOK_FUNCTION(collectGrabMeterFailure),
    VOK_FUNCTION(collectGrabMultiMeterStart),
    VOK_FUNCTION(collectGrabMultiMeterNew),
    VOK_FUNCTION(collectGrabMultiMeterRemove),
    VOK_FUNCTION(collectGrabMultiMeterEnd),
    VOK_FUNCTION(applyGrabMeterStart),
    VOK_FUNCTION(applyGrabMeterUpdate),
    VOK_FUNCTION(applyGrabMeterEnd),
    VOK_FUNCTION(applyGrabMeterFailure),
    VOK_FUNCTION(applyGrabMultiMeterStart),
    VOK_FUNCTION(applyGrabMultiMeterNew),
    VOK_FUNCTION(applyGrabMultiMeterRemove),
    VOK_FUNCTION(applyGrabMultiMeterEnd),
    VOK_FUNCTION_NOARGS(dsTsCheck),
    VOK_FUNCTION_NOARGS(dsRestartLoop),
    VOK_FUNCTION_NOARGS(userconfirm),
    VOK_FUNCTION(reportDownloadSize),
    VOK_FUNCTION(listTransaction),
    VOK_FUNCTION(tsInitCallback),
    VOK_FUNCTION(tsCallback),
    VOK_FUNCTION(tsEvent),
    VOK_FUNCTION(postTransactionOutput),
    VOK_FUNCTION(gpgsigcheck),
    VOK_FUNCTION(removeFiles),
    {nullptr, nullptr, 0, nullptr},
};

#undef VOK_FUNCTION
#undef VOK_FUNCTION_ANYWHERE
#undef VOK_FUNCTION_NOARGS

PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "yumIOC", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr,
};

} // namespace

bool YumIOC::initialize(YumIO* engine)
{
    current = engine;
    // Registered once an interpreter: one that was ended and started again has a new module table.
    PyObject* modules = PyImport_GetModuleDict();
    if (PyDict_GetItemString(modules, definition.m_name))
        return true;
    const PyRef module = PyRef::adopt(PyModule_Create(&definition));
    return module && PyDict_SetItemString(modules, definition.m_name, module.get()) == 0;
}

void YumIOC::finalize(YumIO* engine)
{
    if (current == engine)
        current = nullptr;
}
