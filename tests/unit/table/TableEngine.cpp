// SPDX-License-Identifier: GPL-2.0-or-later
#include "TableEngine.h"

Package::Entry* TableEngine::make(const QString& name, Package::State state, Package::Kind kind)
{
    auto* entry = new Package::Entry;
    entry->name = name;
    entry->state = state;
    entry->kind = kind;
    entry->verRel = QStringLiteral("1.0-1");
    entry->repo =
        state == Package::StateInstalled ? QStringLiteral("installed") : QStringLiteral("base");
    entry->arch = QStringLiteral("x86_64");
    setSize(entry, 2048);
    setBuildTime(entry, 1600000000);
    return entry;
}

Package::Entry* TableEngine::add(Package::Entry* entry)
{
    entries.append(entry);
    return entry;
}

Package::Entry* TableEngine::add(const QString& name, Package::State state, Package::Kind kind)
{
    return add(make(name, state, kind));
}

void TableEngine::removeAll()
{
    qDeleteAll(entries);
    entries.clear();
}

void TableEngine::removeAllButFirst()
{
    while (entries.size() > 1)
        delete entries.takeLast();
}

void TableEngine::setSize(Package::Entry* entry, quint64 bytes)
{
    entry->sizeBytes = bytes;
    entry->sizeText = bytesFormat(bytes);
}

void TableEngine::setBuildTime(Package::Entry* entry, long time)
{
    entry->buildTime = time;
    entry->buildTimeText = timeFormat(time);
}
