// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

PyObject* YumIO::userconfirm(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::reportDownloadSize(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::listTransaction(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}

PyObject* YumIO::postTransactionOutput(PyObject*, PyObject*)
{
    Py_RETURN_NONE;
}
