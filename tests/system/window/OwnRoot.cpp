// SPDX-License-Identifier: GPL-2.0-or-later
#include "OwnRoot.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

/// Where the copy is put together; nobody else sees what is mounted there.
const char place[] = "/mnt";

QString refused(const char* what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what),
                                        QString::fromLocal8Bit(strerror(errno)));
}

} // namespace

QString OwnRoot::enter(const QStringList& shared)
{
    if (unshare(CLONE_NEWNS) != 0)
        return refused("a mount namespace");
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return refused("private mounts");
    if (mount("vok-test", place, "tmpfs", 0, "mode=755") != 0)
        return refused("a disk of memory");
    const QDir disk(QString::fromLatin1(place));
    if (!disk.mkdir("changes") || !disk.mkdir("work") || !disk.mkdir("root"))
        return QStringLiteral("its folders can't be made");
    const QByteArray options = "lowerdir=/,upperdir=/mnt/changes,workdir=/mnt/work";
    if (mount("vok-test", "/mnt/root", "overlay", 0, options.constData()) != 0)
        return refused("an overlay");
    for (const QString& folder : QStringList{"/proc", "/sys", "/dev"} + shared) {
        const QString inside = disk.filePath("root") + folder;
        QDir().mkpath(inside);
        if (mount(QFile::encodeName(folder), QFile::encodeName(inside), nullptr, MS_BIND | MS_REC,
                  nullptr) != 0)
            return refused(QFile::encodeName(folder));
    }
    if (chdir("/mnt/root") != 0)
        return refused("the way there");
    // One above the other, so that no folder is needed for the old one.
    if (syscall(SYS_pivot_root, ".", ".") != 0)
        return refused("a change of the root");
    if (umount2(".", MNT_DETACH) != 0 || chdir("/") != 0)
        return refused("leaving the old root");
    return QString();
}
