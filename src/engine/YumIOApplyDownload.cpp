// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

PyObject* YumIO::applyGrabMeterStart(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMeterUpdate(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMeterEnd(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMeterFailure(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterStart(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterNew(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterRemove(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::applyGrabMultiMeterEnd(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}
