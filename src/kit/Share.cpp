// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Share.h"

#include <QtGlobal>

QString Share::absolute(const QString& path)
{
    const QString directory = qEnvironmentVariableIsSet("VOKSHARE")
                                  ? qEnvironmentVariable("VOKSHARE")
                                  : QStringLiteral("/usr/share/vok");
    return QStringLiteral("%1/%2").arg(directory, path);
}
