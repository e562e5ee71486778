// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/FileRemover.h"

#include <QFile>
#include <QThread>

#include <unistd.h>

#include <cerrno>
#include <cstring>

FileRemover::~FileRemover()
{
    finish();
}

void FileRemover::begin(const QList<QByteArray>& paths,
                        const std::function<void(const QString& line)>& complain)
{
    finish();
    thread.reset(QThread::create([paths, complain] {
        for (const QByteArray& path : paths) {
            if (unlink(path.constData()) != 0 && errno != ENOENT)
                complain(QStringLiteral("%1: %2").arg(
                    QFile::decodeName(path), QString::fromLocal8Bit(std::strerror(errno))));
        }
    }));
    thread->setObjectName(QStringLiteral("Clean"));
    thread->start();
}

void FileRemover::finish()
{
    if (!thread)
        return;
    thread->wait();
    thread.reset();
}
