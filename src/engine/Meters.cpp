// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Meters.h"

#include <QRegularExpression>

QString Meters::withoutVantry(QString name)
{
    static const QRegularExpression prefix(QStringLiteral("vantry?.*=.*&.*=.*&path="),
                                           QRegularExpression::DotMatchesEverythingOption);
    return name.remove(prefix);
}
