// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include <QScopedValueRollback>

#include <cerrno>
#include <cstdlib>
#include <cstring>

QString YumIO::yumVersionStr()
{
    if (yumVersionRead)
        return yumVersionText;
    PyGILStateWrapper lock(true);
    PyObject* version = pyValue("yum", "__version__");
    if (!version)
        version = pyValue("cli", "__version__");
    if (version)
        yumVersionText = pyString(version);
    yumVersionRead = true;
    return yumVersionText;
}

long YumIO::yumVersion()
{
    static bool warned = false;
    const QStringList parts = yumVersionStr().split(QLatin1Char('.'));
    long weight = 10000;
    long version = 0;
    for (int i = 0; i < parts.size() && weight > 0; ++i, weight /= 100) {
        errno = 0;
        const unsigned long part = std::strtoul(parts.at(i).toUtf8().constData(), nullptr, 10);
        const int number = errno;
        if (number != 0 && !warned) {
            warned = true;
            warning(tr("Internal error: yum version not understood: %1 errno=%2 (%3)")
                        .arg(yumVersionText, QString::number(number),
                             QString::fromLocal8Bit(std::strerror(number))));
        }
        // An absurd part may overflow, which must stay a wrong number and nothing worse.
        version = static_cast<long>(static_cast<unsigned long>(version) +
                                    part * static_cast<unsigned long>(weight));
    }
    return version;
}

bool YumIO::hasDistribGroups()
{
    return yumVersion() >= 20500;
}

bool YumIO::hasTransTest()
{
    return yumVersion() < 30203;
}

bool YumIO::hasPickledCache()
{
    return yumVersion() < 20902;
}

bool YumIO::hasSqliteCache()
{
    return yumVersion() > 20301;
}

bool YumIO::answer(bool& known, bool& value, const std::function<PyRef()>& ask)
{
    if (known)
        return value;
    PyGILStateWrapper lock(true);
    // The script may be in the middle of a call whose scope goes on.
    const QScopedValueRollback<int> outerMark(exceptLogStart);
    pyExceptStart();
    value = ask().get() == Py_True;
    pyExceptClear();
    known = true;
    return value;
}

bool YumIO::usesSqlite()
{
    return answer(usesSqliteKnown, usesSqliteValue, [this] { return pyCall("usesSqlite", "()"); });
}

bool YumIO::usesPresto()
{
    return answer(usesPrestoKnown, usesPrestoValue,
                  [this] { return pyMethodCall(yumIO, "usesPresto", "()"); });
}

bool YumIO::hasMultiProgress()
{
    return answer(hasMultiProgressKnown, hasMultiProgressValue,
                  [this] { return pyMethodCall(yumIO, "hasMultiProgress", "()"); });
}

PyObject* YumIO::removeFiles(PyObject*, PyObject* args)
{
    PyObject* paths = nullptr;
    if (!PyArg_ParseTuple(args, "O", &paths))
        return nullptr;
    const PyRef sequence = PyRef::adopt(PySequence_Fast(paths, "a sequence of paths is wanted"));
    if (!sequence)
        return nullptr;
    QList<QByteArray> names;
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(sequence.get()); ++i) {
        PyObject* bytes = nullptr;
        if (!PyUnicode_FSConverter(PySequence_Fast_GET_ITEM(sequence.get(), i), &bytes))
            return nullptr;
        const PyRef name = PyRef::adopt(bytes);
        names << PyBytes_AS_STRING(name.get());
    }
    remover.begin(names, [this](const QString& line) {
        log(Log::Warning, 0, tr("Unable to remove %1").arg(line));
    });
    Py_RETURN_NONE;
}

bool YumIO::cleanStep(const char* method)
{
    remover.finish();
    const PyRef result = pyMethodCall(yumIO, method, "()");
    const bool coded = result && PyTuple_Check(result.get()) && PyTuple_GET_SIZE(result.get()) > 0;
    const long code = coded ? PyLong_AsLong(PyTuple_GET_ITEM(result.get(), 0)) : -1;
    PyErr_Clear();
    return code == 0;
}

bool YumIO::cleanHeaders()
{
    log(Log::Action, 0, tr("Cleaning Headers"));
    PyGILStateWrapper lock(true);
    return cleanStep("cleanHeaders");
}

bool YumIO::cleanPackages()
{
    log(Log::Action, 0, tr("Cleaning Packages"));
    PyGILStateWrapper lock(true);
    return cleanStep("cleanPackages");
}

bool YumIO::cleanXmlMetadata()
{
    log(Log::Action, 0, tr("Cleaning Xml Metadata"));
    PyGILStateWrapper lock(true);
    return cleanStep("cleanMetadata");
}

bool YumIO::cleanPickledCache()
{
    log(Log::Action, 0, tr("Cleaning Pickled Cache"));
    PyGILStateWrapper lock(true);
    return cleanStep("cleanPickles");
}

bool YumIO::cleanSqliteCache()
{
    log(Log::Action, 0, tr("Cleaning Sqlite Cache"));
    PyGILStateWrapper lock(true);
    return cleanStep("cleanSqlite");
}

bool YumIO::cleanAll()
{
    log(Log::Action, 0, tr("Cleaning All"));
    PyGILStateWrapper lock(true);
    // Every step runs, whatever became of those before it.
    bool clean = cleanStep("cleanHeaders");
    clean = cleanStep("cleanPackages") && clean;
    clean = cleanStep("cleanMetadata") && clean;
    if (hasPickledCache())
        clean = cleanStep("cleanPickles") && clean;
    if (hasSqliteCache())
        clean = cleanStep("cleanSqlite") && clean;
    return clean;
}
