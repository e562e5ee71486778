// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include <QScopeGuard>

// The package manager changed its group data at version 2.5: before it one object, "groupInfo",
// held dictionaries for all groups; since then each group is an object. hasDistribGroups() tells
// which.

bool YumIO::collectGroups(EntryHash& hash, PyObject* holder)
{
    const bool distrib = hasDistribGroups();
    const PyRef groups = distrib ? PyRef::borrow(holder)
                                 : PyRef::adopt(PyObject_GetAttrString(holder, "visible_groups"));
    if (!groups) {
        PyErr_Clear();
        error(tr("Internal error: groupInfo.visible_groups not evaluable"));
        return false;
    }
    // A script without any groups may give nothing at all.
    if (groups.get() == Py_None)
        return true;
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(groups.get()));
    if (!iterator) {
        handleException();
        return false;
    }
    while (const PyRef item = PyRef::adopt(PyIter_Next(iterator.get()))) {
        PyObject* group = holder;
        PyRef nameObject;
        if (distrib) {
            group = item.get();
            const PyRef visible = PyRef::adopt(PyObject_GetAttrString(group, "user_visible"));
            const int truth = visible ? PyObject_IsTrue(visible.get()) : 0;
            if (truth != 1) {
                PyErr_Clear();
                continue;
            }
            nameObject.reset(PyObject_GetAttrString(group, "name"));
            if (!nameObject) {
                PyErr_Clear();
                error(tr("Internal error: group without name"));
                return false;
            }
        } else {
            nameObject = PyRef::borrow(item.get());
        }
        const QString name = pyString(nameObject.get());
        const EntryKey key(true, name, QString());
        if (hash.contains(key))
            continue;
        Package::Entry* entry = nullptr;
        const bool made = collectGroup(entry, group, name);
        // What was made belongs to the hash even after a failure, as packages do.
        if (entry)
            hash.insert(key, entry);
        if (!made)
            return false;
    }
    if (PyErr_Occurred()) {
        handleException();
        return false;
    }
    return true;
}

bool YumIO::collectGroup(Package::Entry*& slot, PyObject* group, const QString& name)
{
    int installed = 0;
    if (hasDistribGroups()) {
        const PyRef flag = PyRef::adopt(PyObject_GetAttrString(group, "installed"));
        if (!flag) {
            PyErr_Clear();
            error(tr("Internal error: cannot find group's installed flag"));
            return false;
        }
        installed = PyObject_IsTrue(flag.get());
    } else {
        const PyRef flags = PyRef::adopt(PyObject_GetAttrString(group, "group_installed"));
        PyObject* flag =
            flags && PyDict_Check(flags.get()) ? pyDictGetItem(flags.get(), name) : nullptr;
        if (!flag) {
            PyErr_Clear();
            // The text has no place for the name and always appears with the letters "%s" in it.
            error(tr("Internal error: cannot find groupInfo.group_installed['%s']"));
            return false;
        }
        installed = PyObject_IsTrue(flag);
    }
    if (installed < 0)
        handleException();

    auto* entry = new Package::Entry;
    slot = entry;
    Py_INCREF(group);
    entry->pyObject = group;
    entry->kind = Package::KindGroup;
    entry->name = name;
    entry->state = installed > 0 ? Package::StateInstalled : Package::StateInstallable;
    if (entry->state == Package::StateInstalled && !upToDateGroup(*entry))
        entry->state = Package::StateUpdatable;
    return true;
}

bool YumIO::upToDateGroup(const Package::Entry& entry)
{
    // Groups that contain each other say nothing new the second time round.
    if (groupsVisited.contains(&entry))
        return true;
    groupsVisited.insert(&entry);
    const auto leave = qScopeGuard([&] { groupsVisited.remove(&entry); });
    return upToDateGroupGrps(entry, "sub_groups") &&
           upToDateGroupPkgs(entry, "mandatory_pkgs", "mandatory_packages");
}

QStringList YumIO::namesOf(PyObject* iterable)
{
    QStringList names;
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(iterable));
    if (!iterator) {
        handleException();
        return names;
    }
    while (const PyRef item = PyRef::adopt(PyIter_Next(iterator.get())))
        names.append(pyString(item.get()));
    if (PyErr_Occurred())
        handleException();
    return names;
}

bool YumIO::upToDateGroupGrps(const Package::Entry& entry, const char* field)
{
    if (hasDistribGroups())
        return true;
    const PyRef item = getGroupItem_22(entry, field);
    if (!item)
        return true;
    const QStringList names = namesOf(item.get());
    for (const QString& name : names) {
        const Package::Entry* group = entryHash.value(EntryKey(true, name, QString()));
        if (group && !upToDateGroup(*group))
            return false;
    }
    return true;
}

bool YumIO::upToDateGroupPkgs(const Package::Entry& entry, const char* field22, const char* field25)
{
    const PyRef item =
        hasDistribGroups() ? getGroupItem_25(entry, field25) : getGroupItem_22(entry, field22);
    if (!item)
        return true;
    const QStringList names = namesOf(item.get());
    for (const QString& name : names) {
        const Package::Entry* package = findPackage(name);
        if (package && package->state == Package::StateUpdatable)
            return false;
    }
    return true;
}

PyRef YumIO::getGroupItem_22(const Package::Entry& entry, const char* field)
{
    if (hasDistribGroups()) {
        error(tr("getGroupItem_22 called for incorrect version of yum"));
        return PyRef();
    }
    const PyRef groups = PyRef::adopt(PyObject_GetAttrString(entry.pyObject, field));
    if (!groups) {
        PyErr_Clear();
        error(tr("Internal error: groupInfo.%1 not evaluable").arg(QLatin1String(field)));
        return PyRef();
    }
    PyObject* item = PyDict_Check(groups.get()) ? pyDictGetItem(groups.get(), entry.name) : nullptr;
    if (!item) {
        PyErr_Clear();
        error(tr("Internal error: groupInfo.%1[%2] not evaluable")
                  .arg(QLatin1String(field), entry.name));
        return PyRef();
    }
    return PyRef::borrow(item);
}

PyRef YumIO::getGroupItem_25(const Package::Entry& entry, const char* field)
{
    if (!hasDistribGroups()) {
        error(tr("getGroupItem_25 called for incorrect version of yum"));
        return PyRef();
    }
    PyRef item = PyRef::adopt(PyObject_GetAttrString(entry.pyObject, field));
    if (!item) {
        PyErr_Clear();
        error(
            tr("Internal error: group %1.%2 not evaluable").arg(QLatin1String(field), entry.name));
    }
    return item;
}

QString YumIO::getGroupGrps(const Package::Entry& entry, const char* field)
{
    PyGILStateWrapper lock(true);
    if (hasDistribGroups())
        return QString();
    const PyRef item = getGroupItem_22(entry, field);
    if (!item)
        return QString();
    QStringList names = namesOf(item.get());
    return makeSorted(names);
}

QString YumIO::getGroupPkgs(const Package::Entry& entry, const char* field22, const char* field25)
{
    PyGILStateWrapper lock(true);
    const PyRef item =
        hasDistribGroups() ? getGroupItem_25(entry, field25) : getGroupItem_22(entry, field22);
    if (!item)
        return QString();
    QStringList names = namesOf(item.get());
    return makeSorted(names);
}
