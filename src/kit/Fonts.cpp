// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Fonts.h"

#include <QCoreApplication>
#include <QFontInfo>

QFont Fonts::makeHeader(const QFont& font)
{
    QFont result(font);
    result.setFixedPitch(false);
    result.setStyleHint(QFont::SansSerif, QFont::PreferDefault);
    result.setBold(true);
    // A font is sized in points or in pixels; the other size of the two is -1.
    if (result.pixelSize() != -1)
        result.setPixelSize(result.pixelSize() * 3 / 2);
    else if (result.pointSize() != -1)
        result.setPointSize(result.pointSize() * 3 / 2);
    return result;
}

QFont Fonts::makeFixed(const QFont& font)
{
    static const char* const families[] = {
        QT_TRANSLATE_NOOP("Fonts", "Bitstream Vera Sans Mono"),
        QT_TRANSLATE_NOOP("Fonts", "DejaVu Sans Mono"),
        QT_TRANSLATE_NOOP("Fonts", "Monospace"),
        QT_TRANSLATE_NOOP("Fonts", "Courier"),
    };
    QFont result(font);
    result.setFixedPitch(true);
    for (const char* const name : families) {
        const QString family = QCoreApplication::translate("Fonts", name);
        result.setFamily(family);
        if (QFontInfo(result).family() == family)
            break;
    }
    return result;
}

QFont Fonts::makeBold(const QFont& font)
{
    QFont result(font);
    result.setBold(true);
    return result;
}
