// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QFont>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>
#include <QVector>

/// Texts and fonts that are hard to guess the width of. All of it repeats from run to run.
namespace Nasty
{

inline const QStringList& texts()
{
    static const QStringList texts{
        "",
        " ",
        "   ",
        "trailing blanks        ",
        "        leading blanks",
        "AVAVAVAVAVAVAVATAToToTeLTLTYoYo",
        "ffiffiffiffifflfflfi",
        "office waffle fjord Thin",
        "...............",
        "-->==>!==<=>://www.///***",
        "111111111117777777",
        "one\ntwo lines, the second longer",
        "tab\tin the\tmiddle",
        QString::fromLatin1("nul\0inside", 10),
        QString("soft\u00adhyphen\u00adated\u00adtext"),
        QString("no\u00a0break\u00a0space"),
        QString("line\u2028separator and\u2029paragraph separator"),
        QString("zero\u200bwidth\u200djoiner"),
        QString("e\u0301a\u0308o\u0302\u0327 combining"),
        QString("\u00e4\u00f6\u00fc\u00df\u00c4 \u0141\u00f3d\u017a \u0133 \u0149"),
        QString("\u041f\u0430\u043a\u0435\u0442\u044b \u0441\u0438\u0441\u0442\u0435\u043c\u044b"),
        QString("\u03a0\u03b1\u03ba\u03ad\u03c4\u03b1"),
        QString("\u0627\u0644\u062d\u0632\u0645\u0629 \u05e9\u05dc\u05d5\u05dd abc"),
        QString("\u30d1\u30c3\u30b1\u30fc\u30b8\u7ba1\u7406"),
        QString("\u0939\u093f\u0928\u094d\u0926\u0940"),
        QString::fromUtf8("\xf0\x9f\x98\x80 \xf0\x9f\x91\xa8\xe2\x80\x8d\xf0\x9f\x91\xa9 emoji"),
        QString(QChar(0xd800)) + "lone surrogate",
        QString("\u202eright to left override"),
    };
    return texts;
}

inline QString randomText(QRandomGenerator& random)
{
    switch (random.bounded(8)) {
    case 0:
        return texts()[random.bounded(texts().size())];
    case 1: {
        QString text;
        for (int length = random.bounded(20); length > 0; --length) {
            const uint code = random.bounded(0x1ffff);
            if (QChar::isSurrogate(code) || code == 0)
                continue;
            text += QString::fromUcs4(&code, 1);
        }
        return text;
    }
    case 2: {
        QString text;
        for (int length = random.bounded(30); length > 0; --length)
            text += QChar(static_cast<ushort>(random.bounded(0xa0, 0x180)));
        return text;
    }
    case 3: {
        // Letters that kern, and little else.
        static const QString kerning("AVTWYLPFfrvwy.,-To ");
        QString text;
        for (int length = random.bounded(40); length > 0; --length)
            text += kerning[random.bounded(kerning.size())];
        return text;
    }
    default: {
        QString text;
        for (int length = random.bounded(40); length > 0; --length)
            text += QChar(static_cast<ushort>(random.bounded(0x20, 0x7f)));
        return text;
    }
    }
}

inline QVector<QFont> fonts()
{
    QVector<QFont> fonts;
    for (const char* family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono", "Nimbus Sans",
                               "Nimbus Roman", "C059", "Z003", "P052", "Noto Sans Mono"}) {
        for (const int size : {7, 10, 13})
            fonts << QFont(family, size);
    }
    QFont font("DejaVu Sans", 11);
    fonts << font;
    font.setBold(true);
    font.setItalic(true);
    fonts << font;
    font.setLetterSpacing(QFont::PercentageSpacing, 120);
    fonts << font;
    font.setLetterSpacing(QFont::AbsoluteSpacing, 3);
    fonts << font;
    font.setKerning(false);
    fonts << font;
    font.setWordSpacing(7);
    fonts << font;
    font.setCapitalization(QFont::SmallCaps);
    fonts << font;
    QFont stretched("Nimbus Sans", 10);
    stretched.setStretch(150);
    stretched.setHintingPreference(QFont::PreferNoHinting);
    fonts << stretched;
    QFont pixels("Nimbus Roman");
    pixels.setPixelSize(17);
    fonts << pixels;
    return fonts;
}

} // namespace Nasty
