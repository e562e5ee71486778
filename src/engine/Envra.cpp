// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Envra.h"

#include <QString>

bool Envra::parse(const QString& text, QString& name, QString& epoch, QString& version,
                  QString& release, QString& arch)
{
    // Each part wants a character in front of its separator, which also keeps the searches below
    // from starting in front of the text, where they would mean its end.
    const int dot = text.lastIndexOf(QLatin1Char('.'));
    if (dot < 1)
        return false;
    const int dash2 = text.lastIndexOf(QLatin1Char('-'), dot - 1);
    if (dash2 < 1)
        return false;
    const int dash1 = text.lastIndexOf(QLatin1Char('-'), dash2 - 1);
    if (dash1 < 1)
        return false;
    const int colon = text.lastIndexOf(QLatin1Char(':'), dash1 - 1);
    epoch = colon < 0 ? QString() : text.left(colon);
    name = text.mid(colon + 1, dash1 - colon - 1);
    version = text.mid(dash1 + 1, dash2 - dash1 - 1);
    release = text.mid(dash2 + 1, dot - dash2 - 1);
    arch = text.mid(dot + 1);
    return true;
}
