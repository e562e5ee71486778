// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/PythonHeader.h"

#include <QString>

/// Texts of the interpreter: `str`, and `bytes` taken as UTF-8. Needs the interpreter lock.
namespace PyText
{

/// Whether `object` is a text. Subclasses are.
inline bool check(PyObject* object)
{
    return PyUnicode_Check(object) || PyBytes_Check(object);
}

/// Copy of a text. Never fails: bytes that are no UTF-8 turn into replacement characters, and the
/// lone surrogates by which Python carries such bytes are kept.
QString toQString(PyObject* text);

/// Converter for "O&" of PyArg_ParseTuple: a text into a QString. Anything else raises TypeError.
int converter(PyObject* object, void* result);

} // namespace PyText
