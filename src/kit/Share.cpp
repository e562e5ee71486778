// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Share.h"

#include <QDir>
#include <QFile>
#include <QtGlobal>

namespace
{

const QLatin1String usual("/usr/share/vok");

}

QString Share::absolute(const QString& path)
{
    const QString directory =
        qEnvironmentVariableIsSet("VOKSHARE") ? qEnvironmentVariable("VOKSHARE") : QString(usual);
    return QStringLiteral("%1/%2").arg(directory, path);
}

void Share::settle(const QString& directory)
{
    if (qEnvironmentVariableIsSet("VOKSHARE"))
        return;
    const QString clean = QDir::cleanPath(directory);
    if (clean != usual && QFile::exists(clean + QStringLiteral("/python/YumIO.py")))
        qputenv("VOKSHARE", QFile::encodeName(clean));
}
