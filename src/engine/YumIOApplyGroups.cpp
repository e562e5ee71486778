// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/PyText.h"
#include "engine/YumIODialogs.h"

#include <initializer_list>

namespace
{

QString actionLabel(Package::Action action)
{
    switch (action) {
    case Package::ActionUpdate:
        return YumIO::tr("Update");
    case Package::ActionInstall:
        return YumIO::tr("Install");
    case Package::ActionRemove:
        return YumIO::tr("Remove");
    case Package::ActionNone:
        break;
    }
    return YumIO::tr("ERROR");
}

} // namespace

bool YumIO::applyGroups()
{
    for (const Package::Entry* entry : qAsConst(entries)) {
        if (entry->kind != Package::KindGroup)
            continue;
        bool expanded = true;
        switch (entry->applyAction) {
        case Package::ActionInstall:
            expanded = applyGrpInstall(entry);
            break;
        case Package::ActionUpdate:
            expanded = applyGrpUpdate(entry);
            break;
        case Package::ActionRemove:
            expanded = applyGrpRemove(entry);
            break;
        case Package::ActionNone:
            break;
        }
        if (!expanded)
            return false;
    }
    return true;
}

bool YumIO::applyGrpUpdate(const Package::Entry* group)
{
    QStringList names;
    if (!groupNames(requiredPkgs(group), names))
        return false;
    const QSet<QString> required(names.cbegin(), names.cend());
    if (!groupNames(pkgTree(group), names))
        return false;
    for (const QString& name : qAsConst(names)) {
        Package::Entry* package = findPackage(name);
        if (!package)
            continue;
        switch (package->applyAction) {
        case Package::ActionUpdate:
        case Package::ActionInstall:
            applyGrpLogWas(group, package);
            break;
        case Package::ActionNone:
            if (package->state == Package::StateUpdatable) {
                package->applyAction = Package::ActionUpdate;
                applyGrpLog(group, package);
            } else if (package->state == Package::StateInstallable) {
                if (required.contains(name)) {
                    package->applyAction = Package::ActionInstall;
                    applyGrpLog(group, package);
                } else {
                    applyGrpLogNot(group, package, Package::ActionInstall,
                                   tr("the package is optional"));
                }
            }
            break;
        default:
            if (!applyGrpConflict(group, package))
                return false;
        }
    }
    return true;
}

bool YumIO::applyGrpInstall(const Package::Entry* group)
{
    QStringList names;
    if (!groupNames(pkgTree(group), names))
        return false;
    for (const QString& name : qAsConst(names)) {
        Package::Entry* package = findPackage(name);
        if (!package)
            continue;
        switch (package->applyAction) {
        case Package::ActionUpdate:
        case Package::ActionInstall:
            applyGrpLogWas(group, package);
            break;
        case Package::ActionNone:
            if (package->state == Package::StateInstalled)
                break;
            package->applyAction = package->state == Package::StateUpdatable
                                       ? Package::ActionUpdate
                                       : Package::ActionInstall;
            applyGrpLog(group, package);
            break;
        default:
            if (!applyGrpConflict(group, package))
                return false;
        }
    }
    return true;
}

bool YumIO::applyGrpRemove(const Package::Entry* group)
{
    QStringList names;
    if (!groupNames(allPkgs(group), names))
        return false;
    for (const QString& name : qAsConst(names)) {
        Package::Entry* package = findPackage(name);
        if (!package)
            continue;
        switch (package->applyAction) {
        case Package::ActionRemove:
            applyGrpLog(group, package);
            break;
        case Package::ActionNone:
            if (package->state == Package::StateInstallable)
                break;
            package->applyAction = Package::ActionRemove;
            applyGrpLog(group, package);
            break;
        default:
            if (!applyGrpConflict(group, package))
                return false;
        }
    }
    return true;
}

bool YumIO::applyGrpConflict(const Package::Entry* group, Package::Entry* package)
{
    Package::Action implied = Package::ActionNone;
    switch (package->state) {
    case Package::StateUpdatable:
        implied = Package::ActionUpdate;
        break;
    case Package::StateInstallable:
        implied = Package::ActionInstall;
        break;
    case Package::StateInstalled:
        implied = Package::ActionRemove;
        break;
    default:
        error("Internal error: applyGrpConflict unexpected package state\n");
        return false;
    }
    const QString groupLabel = actionLabel(group->applyAction);
    const QString impliedLabel = actionLabel(implied);
    const QString presentLabel = actionLabel(package->applyAction);

    // All arguments at once: a name may hold a placeholder.
    QString question;
    if (package->markedBy == package) {
        question = tr("Package %1 is included in group %2 which was marked for %3,\n"
                      "so the package would be marked for %4,\n"
                      "but it was marked individually for %5.\n"
                      "How do you wish to proceed?")
                       .arg(package->name, group->name, groupLabel, impliedLabel, presentLabel);
    } else if (package->markedBy) {
        question = tr("Package %1 is included in group %2 which was marked for %3,\n"
                      "so the package would be marked for %4,\n"
                      "but it also was part of group %5 and so was marked for %6.\n"
                      "How do you wish to proceed?")
                       .arg(package->name, group->name, groupLabel, impliedLabel,
                            package->markedBy->name, presentLabel);
    } else {
        question = tr("Package %1 is included in group %2 which was marked for %3,\n"
                      "so the package would be marked for %4,\n"
                      "but you resolved an earlier conflict by marking it for %5.\n"
                      "How do you wish to proceed?")
                       .arg(package->name, group->name, groupLabel, impliedLabel, presentLabel);
    }

    enum Answer { TakeImplied = 0, Cancel = 2 };
    int answer = Cancel;
    withDialogs([&](YumIODialogs& shown) {
        answer = shown.critical(tr("Apply"), question, impliedLabel, presentLabel, tr("Cancel"),
                                Cancel, Cancel);
    });
    if (answer == Cancel)
        return false;
    if (answer == TakeImplied)
        package->applyAction = implied;
    log(Log::Plain, 4,
        tr("Manually resolving conflict: marking package %1 for %3")
            .arg(package->name, actionLabel(package->applyAction)));
    package->markedBy = nullptr;
    return true;
}

void YumIO::applyGrpLog(const Package::Entry* group, const Package::Entry* package)
{
    log(Log::Plain, 4,
        tr("For group %1, marking package %2 for %3")
            .arg(group->name, package->name, actionLabel(package->applyAction)));
}

void YumIO::applyGrpLogWas(const Package::Entry* group, const Package::Entry* package)
{
    log(Log::Plain, 4,
        tr("For group %1, package %2 already was marked for %3")
            .arg(group->name, package->name, actionLabel(package->applyAction)));
}

void YumIO::applyGrpLogNot(const Package::Entry* group, const Package::Entry* package,
                           Package::Action action, const QString& reason)
{
    log(Log::Plain, 4,
        tr("For group %1, not marking package %2 for %3, becuase %4")
            .arg(group->name, package->name, actionLabel(action), reason));
}

PyObject* YumIO::requiredPkgs(const Package::Entry* group)
{
    if (!hasDistribGroups())
        return pyMethodCall(group->pyObject, "requiredPkgs", "(s)",
                            group->name.toUtf8().constData())
            .release();
    return groupKeys(group, {"mandatory_packages", "default_packages"},
                     tr("Internal error: group lacks required package lists"),
                     tr("Internal error: group lacks required proper required package lists"))
        .release();
}

PyObject* YumIO::pkgTree(const Package::Entry* group)
{
    if (hasDistribGroups())
        return requiredPkgs(group);
    return pyMethodCall(group->pyObject, "pkgTree", "(s)", group->name.toUtf8().constData())
        .release();
}

PyObject* YumIO::allPkgs(const Package::Entry* group)
{
    if (!hasDistribGroups())
        return requiredPkgs(group);
    return groupKeys(group,
                     {"mandatory_packages", "default_packages", "optional_packages",
                      "conditional_packages"},
                     tr("Internal error: group lacks package lists"),
                     tr("Internal error: group lacks required proper package lists"))
        .release();
}

PyRef YumIO::groupKeys(const Package::Entry* group, std::initializer_list<const char*> fields,
                       const QString& missing, const QString& improper)
{
    const auto fail = [this](const QString& message) {
        PyErr_Clear();
        error(message);
        return PyRef();
    };

    std::vector<PyRef> dictionaries;
    for (const char* field : fields) {
        dictionaries.push_back(PyRef::adopt(PyObject_GetAttrString(group->pyObject, field)));
        if (!dictionaries.back())
            return fail(missing);
    }
    PyRef joined = PyRef::adopt(PyList_New(0));
    for (const PyRef& dictionary : dictionaries) {
        // A view of the keys is no sequence yet.
        const PyRef keys = pyMethodCall(dictionary.get(), "keys", "()");
        const PyRef names = PyRef::adopt(keys ? PySequence_List(keys.get()) : nullptr);
        if (!names)
            return fail(improper);
        joined = PyRef::adopt(PySequence_Concat(joined.get(), names.get()));
    }
    return joined;
}

bool YumIO::groupNames(PyObject* sequence, QStringList& names)
{
    const PyRef owner = PyRef::adopt(sequence);
    names.clear();
    if (!sequence) {
        PyErr_Clear();
        return false;
    }
    const PyRef iterator = PyRef::adopt(PyObject_GetIter(sequence));
    bool told = false;
    while (const PyRef item = PyRef::adopt(iterator ? PyIter_Next(iterator.get()) : nullptr)) {
        const bool text = PyText::check(item.get());
        // One report a list, however many of its items are no names.
        if (text || !told)
            names.append(pyString(item.get()));
        told = told || !text;
    }
    if (PyErr_Occurred()) {
        handleException();
        PyErr_Clear();
        return false;
    }
    return true;
}
