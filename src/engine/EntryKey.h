// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QHash>
#include <QString>

/// What a row is found by: group or package, name, and for a package its `biArch`.
struct EntryKey {
    EntryKey(bool group, const QString& name, const QString& arch)
        : group(group)
        , name(name)
        , arch(arch)
    {
    }

    bool operator==(const EntryKey& other) const
    {
        return group == other.group && name == other.name && arch == other.arch;
    }

    bool group;
    QString name;
    QString arch;
};

inline uint qHash(const EntryKey& key)
{
    return (key.group ? 1U : 0U) + 2U * qHash(key.name) + 4U * qHash(key.arch);
}
