// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/SystemRoot.h"

#include <QtGlobal>

QString SystemRoot::path(const QString& path)
{
    QString root = qEnvironmentVariable("VOKROOT");
    while (root.endsWith(QLatin1Char('/')))
        root.chop(1);
    return root + path;
}
