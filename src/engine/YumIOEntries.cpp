// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

int YumIO::count() const
{
    return clearingEntries ? 0 : entries.size();
}

Package::EntryList::const_iterator YumIO::begin() const
{
    return clearingEntries ? noEntries.constBegin() : entries.constBegin();
}

Package::EntryList::const_iterator YumIO::end() const
{
    return clearingEntries ? noEntries.constEnd() : entries.constEnd();
}

Package::Entry* YumIO::operator[](int row) const
{
    return clearingEntries ? noEntries.at(row) : entries.at(row);
}

QString YumIO::getName(const Package::Entry& entry) const
{
    return entry.name;
}

QString YumIO::getVerRel(const Package::Entry& entry) const
{
    return entry.verRel;
}

QString YumIO::getRepo(const Package::Entry& entry) const
{
    return entry.repo;
}

QString YumIO::getArch(const Package::Entry& entry) const
{
    return entry.arch;
}

QString YumIO::getSize(const Package::Entry& entry) const
{
    return entry.sizeText;
}

QString YumIO::getSummary(const Package::Entry& entry) const
{
    return entry.summary;
}

QString YumIO::getBuildTime(const Package::Entry& entry) const
{
    return entry.buildTimeText;
}

QString YumIO::getState(const Package::Entry& entry) const
{
    switch (entry.state) {
    case Package::StateUpdatable:
        return tr("Available for update");
    case Package::StateInstallable:
        return tr("Available for installation");
    case Package::StateInstalled:
        return tr("Installed");
    }
    return QString();
}

QString YumIO::getKind(const Package::Entry& entry) const
{
    switch (entry.kind) {
    case Package::KindSuite:
        return tr("Suite of packages");
    case Package::KindGroup:
        return tr("Group of packages");
    case Package::KindOrdinary:
        return tr("Ordinary package");
    }
    return QString();
}

QString YumIO::getDescription(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "description");
}

QString YumIO::getGroup(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "group");
}

QString YumIO::getVendor(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "vendor");
}

QString YumIO::getBuildHost(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "buildhost");
}

QString YumIO::getSourceRpm(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "sourcerpm");
}

QString YumIO::getLicense(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "license");
}

QString YumIO::getPackager(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "packager");
}

QString YumIO::getUrl(const Package::Entry& entry)
{
    return simpleString(entry.pyObject, "url");
}

QString YumIO::getBinaryRpm(const Package::Entry& entry)
{
    PyGILStateWrapper lock(true);
    if (!PyObject_HasAttrString(entry.pyObject, "relativepath"))
        return QString();
    return simpleString(entry.pyObject, "relativepath");
}

QString YumIO::getInstallTime(const Package::Entry& entry)
{
    return getRpmTime(entry.pyObject, "INSTALLTIME");
}

QString YumIO::getRelocations(const Package::Entry& entry)
{
    return getRpmList(entry.pyObject, "PREFIXES");
}

QString YumIO::getProvides(const Package::Entry& entry)
{
    return getPrco(entry.pyObject, "PROVIDE", "provides");
}

QString YumIO::getRequires(const Package::Entry& entry)
{
    return getPrco(entry.pyObject, "REQUIRE", "requires");
}

QString YumIO::getConflicts(const Package::Entry& entry)
{
    return getPrco(entry.pyObject, "CONFLICT", "conflicts");
}

QString YumIO::getObsoletes(const Package::Entry& entry)
{
    return getPrco(entry.pyObject, "OBSOLETE", "obsoletes");
}

QString YumIO::getRequiredGroups(const Package::Entry& entry)
{
    return getGroupGrps(entry, "sub_groups");
}

QString YumIO::getDefaultMetaPkgs(const Package::Entry& entry)
{
    return getGroupGrps(entry, "default_metapkgs");
}

QString YumIO::getOptionalMetaPkgs(const Package::Entry& entry)
{
    return getGroupGrps(entry, "optional_metapkgs");
}

QString YumIO::getMandatoryPkgs(const Package::Entry& entry)
{
    return getGroupPkgs(entry, "mandatory_pkgs", "mandatory_packages");
}

QString YumIO::getDefaultPkgs(const Package::Entry& entry)
{
    return getGroupPkgs(entry, "default_pkgs", "default_packages");
}

QString YumIO::getOptionalPkgs(const Package::Entry& entry)
{
    return getGroupPkgs(entry, "optional_pkgs", "optional_packages");
}

QString YumIO::getConditionalPkgs(const Package::Entry& entry)
{
    if (!hasDistribGroups())
        return QString();
    return getGroupPkgs(entry, "", "conditional_packages");
}

QString YumIO::getYumVar(const QString& name)
{
    PyGILStateWrapper lock(true);
    if (!yumIO)
        return QString();
    PyRef conf = PyRef::adopt(PyObject_GetAttrString(yumIO, "conf"));
    PyRef variables = PyRef::adopt(conf ? PyObject_GetAttrString(conf.get(), "yumvar") : nullptr);
    PyRef value = PyRef::adopt(
        variables ? PyMapping_GetItemString(variables.get(), name.toUtf8().constData()) : nullptr);
    if (!value) {
        // A variable that isn't there is no more than an empty text.
        if (PyErr_ExceptionMatches(PyExc_KeyError))
            PyErr_Clear();
        else
            handleException();
        return QString();
    }
    return pyString(value.get());
}
