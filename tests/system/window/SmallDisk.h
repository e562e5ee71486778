// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

/// A small disk of memory that lies over a folder while this exists, as far as this machine allows
/// it.
class SmallDisk
{
public:
    /// Makes the folder where there is none.
    SmallDisk(const QString& folder, int megabytes);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool mounted() const { return isMounted; }

private:
    QString folder;
    bool isMounted;
};
