// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

Package::Entry* YumIO::findPackage(const QString& name)
{
    return findPackage(name, nullptr);
}

Package::Entry* YumIO::findPackage(const QString& name, bool (YumIO::*predicate)(Package::Entry*))
{
    const auto find = [&](const QString& word) -> Package::Entry* {
        Package::Entry* entry = entryHash.value(EntryKey(false, name, word));
        return entry && (!predicate || (this->*predicate)(entry)) ? entry : nullptr;
    };
    if (Package::Entry* entry = find(getBiArch(basearch)))
        return entry;
    for (const QString& word : qAsConst(biArchs)) {
        if (word == basearch)
            continue;
        if (Package::Entry* entry = find(word))
            return entry;
    }
    return nullptr;
}

Package::Entry*& YumIO::findUpdateablePackage(const QString& name, const QString& arch)
{
    const EntryKey key(false, name, getBiArch(arch));
    const auto exact = entryHash.find(key);
    if (exact != entryHash.end())
        return exact.value();
    const QString noarch = QStringLiteral("noarch");
    if (arch != noarch) {
        const auto independent = entryHash.find(EntryKey(false, name, noarch));
        if (independent != entryHash.end())
            return independent.value();
    }
    return *entryHash.insert(key, nullptr);
}
