// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/PyRaised.h"

#if PY_VERSION_HEX >= 0x030C0000

PyRaised PyRaised::take()
{
    PyRaised raised;
    raised.instance = PyRef::adopt(PyErr_GetRaisedException());
    return raised;
}

void PyRaised::restore()
{
    PyErr_SetRaisedException(instance.release());
}

void PyRaised::display() const
{
    if (instance)
        PyErr_DisplayException(instance.get());
}

#else

PyRaised PyRaised::take()
{
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    if (type)
        PyErr_NormalizeException(&type, &value, &traceback);

    PyRaised raised;
    raised.type = PyRef::adopt(type);
    raised.instance = PyRef::adopt(value);
    raised.traceback = PyRef::adopt(traceback);
    return raised;
}

void PyRaised::restore()
{
    PyErr_Restore(type.release(), instance.release(), traceback.release());
}

void PyRaised::display() const
{
    if (type)
        PyErr_Display(type.get(), instance.get(), traceback.get());
}

#endif
