// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

PyObject* YumIO::tsInitCallback(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::tsCallback(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::tsEvent(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::gpgsigcheck(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}
