// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/PyText.h"

QString PyText::toQString(PyObject* text)
{
    if (PyBytes_Check(text))
        return QString::fromUtf8(PyBytes_AS_STRING(text), static_cast<int>(PyBytes_GET_SIZE(text)));

#if PY_VERSION_HEX < 0x030C0000
    if (PyUnicode_READY(text) < 0) {
        PyErr_Clear();
        return QString();
    }
#endif
    // The interpreter stores a string as Latin-1, UCS-2 or UCS-4, whichever its widest character
    // needs.
    const int length = static_cast<int>(PyUnicode_GET_LENGTH(text));
    const void* data = PyUnicode_DATA(text);
    switch (PyUnicode_KIND(text)) {
    case PyUnicode_1BYTE_KIND:
        return QString::fromLatin1(static_cast<const char*>(data), length);
    case PyUnicode_2BYTE_KIND:
        return QString(static_cast<const QChar*>(data), length);
    default:
        return QString::fromUcs4(static_cast<const char32_t*>(data), length);
    }
}

int PyText::converter(PyObject* object, void* result)
{
    if (!check(object)) {
        PyErr_Format(PyExc_TypeError, "a string is required, not %.100s", Py_TYPE(object)->tp_name);
        return 0;
    }
    *static_cast<QString*>(result) = toQString(object);
    return 1;
}
