// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Envra.h"
#include "engine/Meters.h"
#include "engine/TsInfo.h"
#include "progress/Progress.h"

#include <QFile>

namespace
{

/// From 3.2.9 on the package manager names packages in full in these lines.
constexpr long lastVersionWithPlainNames = 30208;

} // namespace

PyObject* YumIO::dsTsCheck(PyObject*, PyObject*)
{
    applyState.progressAct += applyState.depPassActs;
    if (progress)
        progress->startItemAct(tr("Resolve Dependencies"), 1, applyState.progressAct);
    Py_RETURN_NONE;
}

PyObject* YumIO::dsRestartLoop(PyObject*, PyObject*)
{
    applyState.depPassActs = applyState.depPackages;
    applyState.depActs += applyState.depPassActs;
    changeDepActs();
    Py_RETURN_NONE;
}

void YumIO::changeDepActs()
{
    // The script may log at a time when nobody watches.
    if (progress)
        progress->changeItemActs(applyState.depHeaders * Meters::headerActs + applyState.depActs);
}

void YumIO::dsTsInfo(const QString& text)
{
    TsInfo info;
    if (!info.parse(text)) {
        error(tr("Internal error: unexpected TSINFO: %1").arg(text));
        return;
    }
    for (const TsInfo::Count& count : qAsConst(info.counts))
        dsTsNewPkg(info.package, dsTsFindPkg(info.package), count.packages, count.header);
}

Package::Entry* YumIO::dsTsFindPkg(const QString& text)
{
    Package::Entry* entry = nullptr;
    QString name, arch;
    if (yumVersion() <= lastVersionWithPlainNames) {
        entry = findPackage(text);
    } else if (parseEnvra(text, name, arch)) {
        // Leaves an empty slot where the package is unknown.
        entry = entryHash[EntryKey(false, name, getBiArch(arch))];
    } else {
        error(tr("Internal error: TSINFO mentions package %1 which does not appear to be a valid "
                 "envra; interpreting as package name")
                  .arg(text));
        entry = findPackage(text);
    }
    if (!entry)
        error(tr("Internal error: TSINFO mentions unknown package: %1").arg(text));
    return entry;
}

void YumIO::dsTsNewPkg(const QString&, Package::Entry* entry, unsigned int packages, bool header)
{
    if (!entry)
        return;
    if (entry->state == Package::StateInstalled) {
        error(tr("Internal error: TSINFO mentions intent to install or upgrade package that "
                 "already seems up-to-date: %1")
                  .arg(entry->name));
        return;
    }
    applyState.depPackages += packages;
    if (header && !QFile::exists(getLocalHdr(entry->pyObject)))
        ++applyState.depHeaders;
    changeDepActs();
}

bool YumIO::parseEnvra(const QString& text, QString& name, QString& epoch, QString& version,
                       QString& release, QString& arch)
{
    return Envra::parse(text, name, epoch, version, release, arch);
}

bool YumIO::parseEnvra(const QString& text, QString& name, QString& arch)
{
    QString epoch, version, release;
    return parseEnvra(text, name, epoch, version, release, arch);
}
