// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

PyObject* YumIO::dsTsCheck(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::dsRestartLoop(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}
