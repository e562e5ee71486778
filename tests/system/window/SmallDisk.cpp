// SPDX-License-Identifier: GPL-2.0-or-later
#include "SmallDisk.h"

#include <QDir>
#include <QFile>

#include <sys/mount.h>

SmallDisk::SmallDisk(const QString& folder, int megabytes)
    : folder(folder)
{
    QDir().mkpath(folder);
    const QByteArray options = "mode=755,size=" + QByteArray::number(megabytes) + 'm';
    isMounted = mount("vok-test", QFile::encodeName(folder), "tmpfs", 0, options.constData()) == 0;
}

SmallDisk::~SmallDisk()
{
    // Lazily: a process that failed may have left files open there.
    if (isMounted)
        umount2(QFile::encodeName(folder), MNT_DETACH);
}
