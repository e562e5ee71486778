// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/YumIOCapturers.h"
#include "engine/YumIODialogs.h"
#include "progress/Progress.h"

#include <algorithm>

// A repository package answers getFiles() by returnFileEntries("file"), a list of texts. With more
// than a hundred paths a package that is slow when the files of all packages are searched, so a
// package object may have the method `returnFileText` besides:
//
//   returnFileText() -> all paths as one bytes or str: sorted, each once, joined by newlines
//
// Where it exists it is called instead; the loading rules are the same.

namespace
{

/// Value of an rpm tag: a list, or the bare value that rpm gives for a list of one, which then
/// stands for each place of the list.
class HeaderValues
{
public:
    HeaderValues() = default;
    explicit HeaderValues(PyRef object)
        : object(std::move(object))
    {
    }

    bool isNull() const { return !object || object.get() == Py_None; }
    Py_ssize_t count() const
    {
        if (isNull())
            return 0;
        if (PyList_Check(object.get()))
            return PyList_GET_SIZE(object.get());
        return PyTuple_Check(object.get()) ? PyTuple_GET_SIZE(object.get()) : 1;
    }
    /// Borrowed; null behind the end.
    PyObject* at(Py_ssize_t index) const
    {
        if (isNull())
            return nullptr;
        if (PyList_Check(object.get()))
            return index < count() ? PyList_GET_ITEM(object.get(), index) : nullptr;
        if (PyTuple_Check(object.get()))
            return index < count() ? PyTuple_GET_ITEM(object.get(), index) : nullptr;
        return object.get();
    }

private:
    PyRef object;
};

bool isNone(PyObject* object)
{
    return !object || object == Py_None;
}

bool hasText(PyObject* object)
{
    if (isNone(object))
        return false;
    return !PyUnicode_Check(object) || PyUnicode_GetLength(object) > 0;
}

/// The operator of a relation by rpm's sense bits.
QString senseOperator(long flags)
{
    QString text;
    if (flags & 2)
        text += QLatin1Char('<');
    if (flags & 4)
        text += QLatin1Char('>');
    if (flags & 8)
        text += QLatin1Char('=');
    return text;
}

/// The operator of a relation by the package manager's word for it.
QString wordOperator(const QString& word)
{
    if (word == QLatin1String("GT"))
        return QStringLiteral(">");
    if (word == QLatin1String("GE"))
        return QStringLiteral(">=");
    if (word == QLatin1String("LT"))
        return QStringLiteral("<");
    if (word == QLatin1String("LE"))
        return QStringLiteral("<=");
    if (word == QLatin1String("EQ"))
        return QStringLiteral("=");
    return word;
}

} // namespace

bool YumIO::collectFileListsReal()
{
    return collectExtraReal(
        tr("Collecting File Lists"), tr("file lists"), tr("Loading file lists: Total Progress"),
        "collectFileLists", tr("collect filelists"),
        tr("Internal error: execution of yumIO.collectFileLists failed"), fileListsCollected);
}

bool YumIO::collectOtherDataReal()
{
    return collectExtraReal(tr("Collecting Miscellaneous data"), tr("miscellaneous data"),
                            tr("Loading miscellaneous data: Total Progress"), "collectOtherData",
                            tr("collect miscellaneous data"),
                            tr("Internal error: execution of yumIO.collectOtherData failed"),
                            otherDataCollected);
}

bool YumIO::collectExtraReal(const QString& heading, const QString& label, const QString& total,
                             const char* method, const QString& action, const QString& failure,
                             bool& flag)
{
    blocker.block();
    Progress::User progressUser(progress, totalBar, itemBar);
    YumIODialogsUser dialogsUser(dialogs, parentWidget);
    log(Log::Action, 0, heading);
    collectState.contentsLabel = label;
    resetCollectState();
    PyGILStateWrapper lock(true);
    progress->startTotal(total, 15000);
    progress->startItem(tr("Reading repositories"), 1000, 1);
    progress->setupItemActs(14000, 6 * static_cast<Steps>(collectState.repos.size()));
    {
        YumIOCapturersUser capturersUser(capturers, this);
        pyExceptStart();
        commExceptSetup();
        const PyRef result = pyMethodCall(yumIO, method, "()");
        const bool raised = commExceptRaised(result.get(), action);
        if (!raised && !result)
            error(failure);
        pyExceptClear();
        if (raised || !result) {
            progress->reset();
            return false;
        }
    }
    progress->endItemActs();
    flag = true;
    Q_EMIT collectedExtraData();
    return true;
}

QString YumIO::getFiles(const Package::Entry& entry)
{
    return QString::fromUtf8(getFilesUtf8(entry));
}

QByteArray YumIO::getFilesUtf8(const Package::Entry& entry, Loading loading)
{
    PyGILStateWrapper lock(true);
    if (entry.kind != Package::KindSuite && entry.kind != Package::KindOrdinary)
        return QByteArray();
    QStringList files;
    if (PyObject_HasAttrString(entry.pyObject, "hdr")) {
        files = installedFiles(entry.pyObject);
    } else {
        if (!PyObject_HasAttrString(entry.pyObject, "_loadFiles") &&
            !PyObject_HasAttrString(entry.pyObject, "files"))
            return QByteArray();
        if (!fileListsCollected && fileListsFailed && loading == NotAfterFailure)
            return QByteArray();
        // The load gives the lock away once, so no more than one level of it may be held here.
        lock.release();
        const bool loaded = collectFileLists();
        lock.ensure();
        if (!loaded)
            return QByteArray();
        if (PyObject_HasAttrString(entry.pyObject, "returnFileText")) {
            const PyRef text = pyMethodCall(entry.pyObject, "returnFileText", "()");
            if (text && PyBytes_Check(text.get()))
                return QByteArray(PyBytes_AS_STRING(text.get()),
                                  static_cast<int>(PyBytes_GET_SIZE(text.get())));
            if (text && PyUnicode_Check(text.get()))
                return pyString(text.get()).toUtf8();
            // Anything else is as good as no such method.
        }
        files = repositoryFiles(entry.pyObject);
    }
    return makeSortedUniq(files).toUtf8();
}

QStringList YumIO::repositoryFiles(PyObject* package)
{
    const PyRef list = pyMethodCall(package, "returnFileEntries", "(s)", "file");
    if (!list) {
        PyErr_Clear();
        error(tr("Internal error: cannot find package's files"));
        return QStringList();
    }
    return namesOf(list.get());
}

QStringList YumIO::installedFiles(PyObject* package)
{
    QStringList files;
    const HeaderValues names(getRpmHdrValue(package, "BASENAMES"));
    if (names.isNull())
        return files;
    const HeaderValues directories(getRpmHdrValue(package, "DIRNAMES"));
    const HeaderValues indexes(getRpmHdrValue(package, "DIRINDEXES"));
    QStringList directoryTexts;
    for (Py_ssize_t i = 0; i < directories.count(); ++i)
        directoryTexts.append(pyString(directories.at(i)));
    files.reserve(static_cast<int>(names.count()));
    for (Py_ssize_t i = 0; i < names.count(); ++i) {
        PyObject* indexObject = indexes.at(i);
        const long index = indexObject ? PyLong_AsLong(indexObject) : -1;
        PyErr_Clear();
        const QString directory = index >= 0 && index < directoryTexts.size()
                                      ? directoryTexts.at(static_cast<int>(index))
                                      : QString();
        files.append(directory + pyString(names.at(i)));
    }
    return files;
}

QString YumIO::getChangeLog(const Package::Entry& entry, Loading loading)
{
    PyGILStateWrapper lock(true);
    if (entry.kind != Package::KindSuite && entry.kind != Package::KindOrdinary)
        return QString();
    PyObject* package = entry.pyObject;
    QStringList items;
    const auto append = [&](PyObject* time, PyObject* author, PyObject* text) {
        items.append(QStringLiteral("* ") + dateFormat(pyTime(time)) + QLatin1Char(' ') +
                     pyString(author) + QLatin1Char('\n') + pyString(text));
    };

    if (PyObject_HasAttrString(package, "hdr")) {
        const HeaderValues names(getRpmHdrValue(package, "CHANGELOGNAME"));
        if (names.isNull())
            return QString();
        const HeaderValues times(getRpmHdrValue(package, "CHANGELOGTIME"));
        const HeaderValues texts(getRpmHdrValue(package, "CHANGELOGTEXT"));
        const Py_ssize_t count = std::min(names.count(), texts.count());
        for (Py_ssize_t i = 0; i < count; ++i)
            append(times.at(i), names.at(i), texts.at(i));
        return items.join(QLatin1String("\n\n"));
    }

    if (!PyObject_HasAttrString(package, "changelog"))
        return QString();
    if (!otherDataCollected && otherDataFailed && loading == NotAfterFailure)
        return QString();
    lock.release();
    const bool loaded = collectOtherData();
    lock.ensure();
    if (!loaded)
        return QString();
    const PyRef changes = yumVersion() > 20300
                              ? pyMethodCall(package, "returnChangelog", "()")
                              : PyRef::adopt(PyObject_GetAttrString(package, "changelog"));
    if (!changes) {
        PyErr_Clear();
        error(tr("Internal error: cannot find package's changelog"));
        return QString();
    }
    if (changes.get() == Py_None)
        return QString();
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(changes.get()));
    while (const PyRef item = PyRef::adopt(iterator ? PyIter_Next(iterator.get()) : nullptr)) {
        const PyRef change = PyRef::adopt(PySequence_Tuple(item.get()));
        if (!change || PyTuple_GET_SIZE(change.get()) < 3)
            break;
        append(PyTuple_GET_ITEM(change.get(), 0), PyTuple_GET_ITEM(change.get(), 1),
               PyTuple_GET_ITEM(change.get(), 2));
    }
    if (PyErr_Occurred())
        handleException();
    return items.join(QLatin1String("\n\n"));
}

QString YumIO::getPrco(PyObject* package, const char* prefix, const char* word)
{
    PyGILStateWrapper lock(true);
    QStringList list;
    if (PyObject_HasAttrString(package, "hdr")) {
        const QByteArray stem(prefix);
        const HeaderValues names(getRpmHdrValue(package, stem + "NAME"));
        if (names.isNull())
            return QString();
        const HeaderValues flags(getRpmHdrValue(package, stem + "FLAGS"));
        const HeaderValues versions(getRpmHdrValue(package, stem + "VERSION"));
        for (Py_ssize_t i = 0; i < names.count(); ++i) {
            QString text = pyString(names.at(i));
            PyObject* flag = flags.at(i);
            PyObject* version = flags.isNull() ? nullptr : versions.at(i);
            if (!isNone(flag) && !isNone(version)) {
                text += QLatin1Char(' ') + senseOperator(PyLong_AsLong(flag)) + QLatin1Char(' ') +
                        pyString(version);
                PyErr_Clear();
            }
            list.append(text);
        }
        return makeSorted(list);
    }

    if (!PyObject_HasAttrString(package, "prco"))
        return QString();
    PyRef relations;
    if (PyObject_HasAttrString(package, "returnPrco")) {
        relations = pyMethodCall(package, "returnPrco", "(s)", word);
    } else {
        const PyRef prco = PyRef::adopt(PyObject_GetAttrString(package, "prco"));
        if (prco && PyDict_Check(prco.get()))
            relations = PyRef::borrow(PyDict_GetItemString(prco.get(), word));
    }
    if (!relations) {
        PyErr_Clear();
        error(tr("Internal error: cannot find package's prco.%1").arg(QLatin1String(word)));
        return QString();
    }
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(relations.get()));
    while (const PyRef item = PyRef::adopt(iterator ? PyIter_Next(iterator.get()) : nullptr)) {
        const PyRef relation = PyRef::adopt(PySequence_Tuple(item.get()));
        if (!relation || PyTuple_GET_SIZE(relation.get()) < 1)
            break;
        list.append(relationText(relation.get()));
    }
    if (PyErr_Occurred())
        handleException();
    return makeSorted(list);
}

QString YumIO::relationText(PyObject* relation)
{
    QString text = pyString(PyTuple_GET_ITEM(relation, 0));
    if (PyTuple_GET_SIZE(relation) < 3)
        return text;
    PyObject* flag = PyTuple_GET_ITEM(relation, 1);
    PyObject* evr = PyTuple_GET_ITEM(relation, 2);
    if (isNone(flag) || !PyTuple_Check(evr) || PyTuple_GET_SIZE(evr) < 3)
        return text;
    PyObject* epoch = PyTuple_GET_ITEM(evr, 0);
    PyObject* version = PyTuple_GET_ITEM(evr, 1);
    PyObject* release = PyTuple_GET_ITEM(evr, 2);
    if (!hasText(version))
        return text;
    text += QLatin1Char(' ') + wordOperator(pyStringX(flag)) + QLatin1Char(' ');
    if (hasText(epoch)) {
        const QString epochText = pyStringX(epoch);
        if (epochText != QLatin1String("0"))
            text += epochText + QLatin1Char(':');
    }
    text += pyStringX(version);
    if (hasText(release))
        text += QLatin1Char('-') + pyStringX(release);
    return text;
}

QString YumIO::getRpmTime(PyObject* package, const char* tag)
{
    PyGILStateWrapper lock(true);
    if (!PyObject_HasAttrString(package, "hdr"))
        return QString();
    const HeaderValues times(getRpmHdrValue(package, tag));
    PyObject* time = times.at(0);
    return time ? timeFormat(pyTime(time)) : QString();
}

QString YumIO::getRpmList(PyObject* package, const char* tag)
{
    PyGILStateWrapper lock(true);
    if (!PyObject_HasAttrString(package, "hdr"))
        return QString();
    const HeaderValues values(getRpmHdrValue(package, tag));
    QStringList list;
    for (Py_ssize_t i = 0; i < values.count(); ++i)
        list.append(pyString(values.at(i)));
    return list.join(QLatin1Char('\n'));
}

PyRef YumIO::getRpmHdrValue(PyObject* package, const char* tag)
{
    const PyRef header = PyRef::adopt(PyObject_GetAttrString(package, "hdr"));
    if (!header) {
        PyErr_Clear();
        error(tr("getRpmHdrValue called for package with no hdr (i.e. not installed)"));
        return PyRef();
    }
    const QByteArray key = QByteArray("RPMTAG_") + tag;
    PyObject* number = PyDict_GetItemString(rpmDict, key.constData());
    if (!number) {
        error(tr("Internal error: cannot find rpm.%1").arg(QLatin1String(key)));
        return PyRef();
    }
    PyRef value = PyRef::adopt(PyObject_GetItem(header.get(), number));
    if (!value) {
        // A header without the tag is as good as an empty one.
        if (PyErr_ExceptionMatches(PyExc_LookupError))
            PyErr_Clear();
        else
            handleException();
    }
    return value;
}

QString YumIO::makeSorted(QStringList& list)
{
    std::sort(list.begin(), list.end());
    return list.join(QLatin1Char('\n'));
}

QString YumIO::makeSortedUniq(QStringList& list)
{
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    return list.join(QLatin1Char('\n'));
}
