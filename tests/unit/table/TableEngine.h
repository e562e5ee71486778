// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/YumIO.h"

/// An engine whose rows a test makes by hand. It starts no interpreter.
class TableEngine : public YumIO
{
    Q_OBJECT

public:
    /// An entry that nobody owns yet, with a value in every field that the table shows.
    static Package::Entry* make(const QString& name, Package::State state,
                                Package::Kind kind = Package::KindOrdinary);

    /// Takes over the entry as the last row.
    Package::Entry* add(Package::Entry* entry);
    Package::Entry* add(const QString& name, Package::State state,
                        Package::Kind kind = Package::KindOrdinary);
    void removeAll();
    void removeAllButFirst();

    static void setSize(Package::Entry* entry, quint64 bytes);
    static void setBuildTime(Package::Entry* entry, long time);
};
