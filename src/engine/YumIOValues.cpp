// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/PyText.h"

#include <QScopedValueRollback>

#include <cerrno>
#include <cstdlib>
#include <ctime>

namespace
{

/// Whether `object` is an integer that fits; `value` is set only then.
bool toLongLong(PyObject* object, long long& value)
{
    if (!object || !PyLong_Check(object))
        return false;
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(object, &overflow);
    if (overflow)
        return false;
    value = number;
    return true;
}

/// Text of ctime_r() without the newline; empty for a time that has none.
QString timeText(long time)
{
    // Room for any year that a time_t can hold.
    char buffer[64];
    const time_t seconds = time;
    if (!ctime_r(&seconds, buffer))
        return QString();
    QString text = QString::fromLatin1(buffer);
    text.chop(1);
    return text;
}

} // namespace

QString YumIO::pyString(PyObject* object)
{
    if (!object) {
        warning(tr("Internal error: YumIO::pyString called with NULL"));
        return QString();
    }
    if (PyText::check(object))
        return PyText::toQString(object);
    if (object != Py_None)
        warning(tr("Internal error: YumIO::pyString did not understand type"));
    return QString();
}

QString YumIO::pyStringDec(PyObject* object)
{
    const PyRef owner = PyRef::adopt(object);
    return pyString(object);
}

QString YumIO::pyStringX(PyObject* object)
{
    if (!object || PyText::check(object))
        return pyString(object);

    if (PyList_Check(object) || PyTuple_Check(object)) {
        QStringList items;
        // The length is asked anew each time: a list may change while a warning is on the screen.
        for (Py_ssize_t item = 0; item < PySequence_Fast_GET_SIZE(object); ++item)
            items.append(pyStringX(PySequence_Fast_GET_ITEM(object, item)));
        if (items.isEmpty())
            return QString();
        const QString separator =
            PyList_Check(object) ? QStringLiteral(",\n ") : QStringLiteral(",");
        return QLatin1Char('(') + items.join(separator) + QLatin1Char(')');
    }

    if (PyLong_Check(object)) {
        long long number = 0;
        if (toLongLong(object, number))
            return QString::number(number);
        return pyStringDec(PyObject_Str(object));
    }

    warning(tr("Internal error: YumIO::pyStringX did not understand type"));
    return QString();
}

QString YumIO::pyStringXDec(PyObject* object)
{
    const PyRef owner = PyRef::adopt(object);
    return pyStringX(object);
}

QString YumIO::pyMappingString(PyObject* mapping, const char* key)
{
    return pyStringDec(PyMapping_GetItemString(mapping, key));
}

long YumIO::pyTime(PyObject* object)
{
    long long number = 0;
    if (toLongLong(object, number))
        return static_cast<long>(number);
    if (object && PyText::check(object)) {
        const QString text = pyString(object);
        errno = 0;
        const unsigned long time = std::strtoul(text.toUtf8().constData(), nullptr, 10);
        if (errno)
            warning(tr("Internal error: time not understood: %1").arg(text));
        return static_cast<long>(time);
    }
    warning(tr("Internal error: time not understood"));
    return 0;
}

long YumIO::pyTimeDec(PyObject* object)
{
    const PyRef owner = PyRef::adopt(object);
    return pyTime(object);
}

PyObject* YumIO::pyDictGetItem(PyObject* dict, const QString& key)
{
    return PyDict_GetItemString(dict, key.toUtf8().constData());
}

const char* YumIO::pyDescribe(PyObject* object)
{
    static QByteArray text;
    if (object == Py_None) {
        text = "*None*";
    } else if (PyText::check(object) || PyLong_Check(object)) {
        text = pyStringX(object).toUtf8();
    } else {
        const PyRef described = pyMethodCall(object, "__str__", "()");
        if (described && PyText::check(described.get()))
            text = pyString(described.get()).toUtf8() + "(*Obj*)";
        else
            text = "*Obj-no-str*";
    }
    return text.constData();
}

QString YumIO::simpleString(PyObject* object, const char* field)
{
    PyGILStateWrapper lock(true);
    // A scope around this one goes on.
    const QScopedValueRollback<int> outerMark(exceptLogStart);
    pyExceptStart();
    pyExceptExpect(PyExc_KeyError);
    const PyRef value = pyMethodCall(object, "returnSimple", "(s)", field);
    pyExceptClear();
    return value ? simpleText(value.get()) : QString();
}

QString YumIO::simpleText(PyObject* value)
{
    if (value == Py_None)
        return QString();
    QString text = pyStringX(value);
    int length = text.size();
    while (length > 0 && text.at(length - 1) == QLatin1Char('\n'))
        --length;
    text.truncate(length);
    return text;
}

QString YumIO::getBiArch(const QString& arch)
{
    const auto known = biArchWords.constFind(arch);
    if (known != biArchWords.constEnd())
        return known.value();
    const PyRef word = pyMethodCall(yumIO, "getBiArch", "(s)", arch.toUtf8().constData());
    // A failure has been reported and is kept as well: one report a word, not one a package.
    if (!word)
        PyErr_Clear();
    QString text = word ? pyString(word.get()) : QString();
    biArchWords.insert(arch, text);
    return text;
}

quint64 YumIO::sizeOf(PyObject* package)
{
    quint64 size = 0;
    const auto read = [&](PyObject* object) {
        long long number = 0;
        if (toLongLong(object, number)) {
            size = static_cast<quint64>(number);
            return true;
        }
        if (!object || !PyText::check(object))
            return false;
        const QString text = pyString(object);
        errno = 0;
        size = std::strtoull(text.toUtf8().constData(), nullptr, 10);
        if (errno)
            warning(tr("Internal error: package size not understood: %1").arg(text));
        return true;
    };

    const PyRef attribute = PyRef::adopt(PyObject_GetAttrString(package, "size"));
    if (!attribute)
        PyErr_Clear();
    if (read(attribute.get()))
        return size;
    if (!attribute || !PyCallable_Check(attribute.get())) {
        warning(tr("Internal error: package size not understood"));
        return 0;
    }
    const PyRef result = pyMethodCall(package, "size", "()");
    if (!read(result.get()))
        warning(tr("Internal error: package size result not understood"));
    return size;
}

long YumIO::buildTimeOf(PyObject* package)
{
    const PyRef time = pyMethodCall(package, "returnSimple", "(s)", "buildtime");
    if (!time)
        PyErr_Clear();
    return pyTime(time.get());
}

QString YumIO::bytesFormat(unsigned long long bytes)
{
    static const struct {
        int shift;
        const char* unit;
    } units[] = {
        {60, QT_TR_NOOP("Eb")}, {50, QT_TR_NOOP("Pb")}, {40, QT_TR_NOOP("Tb")},
        {30, QT_TR_NOOP("Gb")}, {20, QT_TR_NOOP("Mb")}, {10, QT_TR_NOOP("Kb")},
    };
    double number = static_cast<double>(bytes);
    const char* unit = QT_TR_NOOP("b");
    for (const auto& candidate : units) {
        // A unit is taken from 1000 of the next lower one on, but holds 1024 of them.
        if (bytes >= (1000ULL << (candidate.shift - 10))) {
            number /= static_cast<double>(1ULL << candidate.shift);
            unit = candidate.unit;
            break;
        }
    }
    const int decimals = number > 0.0 && number < 9.95 ? 1 : 0;
    return QString::number(number, 'f', decimals) + tr(unit);
}

QString YumIO::timeFormat(long time)
{
    return timeText(time);
}

QString YumIO::dateFormat(long time)
{
    QString text = timeText(time);
    // The year, behind the clock time, takes its place.
    return text.size() > 20 ? text.remove(11, 9) : text;
}
