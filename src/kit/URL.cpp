// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/URL.h"

QString URL::getHost(const QString& url)
{
    const int colon = url.indexOf(QLatin1Char(':'));
    if (colon < 0 || url.mid(colon + 1, 2) != QLatin1String("//"))
        return QString();
    const int start = colon + 3;
    const int slash = url.indexOf(QLatin1Char('/'), start);
    return slash < 0 ? url.mid(start) : url.mid(start, slash - start);
}
