// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/Meters.h"
#include "progress/Progress.h"

#include <QFile>

namespace
{

/// From 3.2.9 on the package manager names packages in full in these lines.
constexpr long lastVersionWithPlainNames = 30208;

/// Cuts `text` off at its first blank; false where it has none.
bool cutToWord(QString& text)
{
    const int blank = text.indexOf(QLatin1Char(' '));
    if (blank < 0)
        return false;
    text.truncate(blank);
    return true;
}

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
    const QLatin1String updating("Updating ");
    const QLatin1String obsoleting("Obsoleting ");
    const QLatin1String marking("Marking ");
    const auto unexpected = [&] { error(tr("Internal error: unexpected TSINFO: %1").arg(text)); };

    if (text.startsWith(updating)) {
        QString word = text.mid(updating.size());
        if (!cutToWord(word))
            return unexpected();
        dsTsNewPkg(word, dsTsFindPkg(word), 2, true);
    } else if (text.startsWith(obsoleting)) {
        QString word = text.mid(obsoleting.size());
        if (!word.contains(QLatin1String(" with ")) || !cutToWord(word))
            return unexpected();
        // Both halves of the line count for its first package, once without and once with a header;
        // the name behind " with " is never looked at. Kept so: it is an estimate of the work to
        // come, and the script's lines are made with this way of counting in mind.
        Package::Entry* obsoleted = dsTsFindPkg(word);
        Package::Entry* obsoleter = dsTsFindPkg(word);
        dsTsNewPkg(word, obsoleted, 1, false);
        dsTsNewPkg(word, obsoleter, 1, true);
    } else if (text.startsWith(marking)) {
        QString word = text.mid(marking.size());
        if (!cutToWord(word))
            return unexpected();
        const unsigned int packages = text.contains(QLatin1String(" update ")) ? 2 : 1;
        dsTsNewPkg(word, dsTsFindPkg(word), packages, true);
    } else if (!text.contains(QLatin1String(" marked as erase"))) {
        // What goes away adds no work to the resolver's.
        unexpected();
    }
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
    // Each part wants a character in front of its separator, which also keeps the searches below
    // from starting in front of the text, where they would mean its end.
    const int dot = text.lastIndexOf(QLatin1Char('.'));
    if (dot < 1)
        return false;
    const int dash2 = text.lastIndexOf(QLatin1Char('-'), dot - 1);
    if (dash2 < 1)
        return false;
    const int dash1 = text.lastIndexOf(QLatin1Char('-'), dash2 - 1);
    if (dash1 < 1)
        return false;
    const int colon = text.lastIndexOf(QLatin1Char(':'), dash1 - 1);
    epoch = colon < 0 ? QString() : text.left(colon);
    name = text.mid(colon + 1, dash1 - colon - 1);
    version = text.mid(dash1 + 1, dash2 - dash1 - 1);
    release = text.mid(dash2 + 1, dot - dash2 - 1);
    arch = text.mid(dot + 1);
    return true;
}

bool YumIO::parseEnvra(const QString& text, QString& name, QString& arch)
{
    QString epoch, version, release;
    return parseEnvra(text, name, epoch, version, release, arch);
}
