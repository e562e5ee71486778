// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/ConfigText.h"

namespace
{

QString charactersOf(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size()); // null bytes too
}

/// Whether `bytes` are UTF-8 that is written again as it was; `text` is what they say.
bool isUtf8(const QByteArray& bytes, QString& text)
{
    text = QString::fromUtf8(bytes.constData(), bytes.size());
    return text.toUtf8() == bytes;
}

} // namespace

QString ConfigText::toShown(const QString& stored)
{
    const QByteArray bytes = stored.toLatin1();
    QString text;
    return charactersOf(bytes) == stored && isUtf8(bytes, text) ? text : stored;
}

QString ConfigText::toStored(const QString& shown)
{
    return charactersOf(shown.toUtf8());
}

QString ConfigText::encodedUnlessUtf8(const QString& storedUrl)
{
    const QByteArray bytes = storedUrl.toLatin1();
    QString text;
    if (isUtf8(bytes, text))
        return storedUrl;
    QString encoded;
    for (const QChar c : storedUrl) {
        if (c.unicode() < 0x80)
            encoded += c;
        else
            encoded += QLatin1Char('%') + QString::number(c.unicode(), 16);
    }
    return encoded;
}
