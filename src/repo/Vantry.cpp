// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"

namespace
{

/// Where the next `what` begins at or behind `from`; `next` is moved behind it. -1 where there is
/// none.
int find(const QString& text, QLatin1String what, int& next)
{
    const int at = text.indexOf(what, next, Qt::CaseSensitive);
    if (at >= 0)
        next = at + what.size();
    return at;
}

QChar toHex(int value)
{
    if (value < 0 || value > 15)
        return QLatin1Char('?');
    return QLatin1Char("0123456789abcdef"[value]);
}

int fromHex(QChar digit)
{
    const ushort code = digit.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    if (code >= 'a' && code <= 'f')
        return code - 'a' + 10;
    if (code >= 'A' && code <= 'F')
        return code - 'A' + 10;
    return -1;
}

/// What would end a key or a value, or the URL itself. White space of all kinds ends a URL of a
/// list, so a tab goes the way of a blank.
bool isReserved(QChar c)
{
    const ushort code = c.unicode();
    return (code >= '\t' && code <= '\r') ||
           QLatin1String("$&+,/:;=?@ \"<>#%{}|\\^~[]").contains(c);
}

QString httpProtect(const QString& plain)
{
    QString result;
    result.reserve(plain.size());
    for (const QChar c : plain) {
        if (isReserved(c)) {
            result += QLatin1Char('%');
            result += toHex(c.unicode() >> 4);
            result += toHex(c.unicode() & 0xf);
        } else {
            result += c;
        }
    }
    return result;
}

QString httpUnprotect(const QString& encoded)
{
    QString result;
    result.reserve(encoded.size());
    const int size = encoded.size();
    for (int i = 0; i < size; ++i) {
        if (encoded.at(i) == QLatin1Char('%') && i + 2 < size) {
            const int high = fromHex(encoded.at(i + 1));
            const int low = fromHex(encoded.at(i + 2));
            if (high >= 0 && low >= 0) {
                result += QChar(high << 4 | low);
                i += 2;
                continue;
            }
        }
        result += encoded.at(i);
    }
    return result;
}

// A key ends at its first "=", here as in getAuth(), so that a value with another one is captured
// whole. White space means that of ASCII: bytes of UTF-8 must not be taken for blanks.
QString queryForm(const QString& password)
{
    return QStringLiteral("/vantry\\?[^&=\\s]*=[^&\\s]*&[^&=\\s]*=") + password +
           QStringLiteral("&path=");
}

// The slash behind the password isn't part of it: it may be that before another form.
QString pathForm(const QString& password)
{
    return QStringLiteral("/rhel/[^/=\\s]*=[^/\\s]*/[^/=\\s]*=") + password +
           QStringLiteral("(?=/)");
}

QString eitherForm()
{
    return QStringLiteral("(?:") + queryForm(QStringLiteral("([^&\\s]*)")) + QLatin1Char('|') +
           pathForm(QStringLiteral("([^/\\s]*)")) + QLatin1Char(')');
}

} // namespace

bool Repo::Vantry::getAuth(const QString& url, QString& nameKey, QString& name,
                           QString& passwordKey, QString& password)
{
    QLatin1String separator("&");
    QLatin1String end("&path=");
    int next = 0;
    if (find(url, QLatin1String("/vantry?"), next) < 0) {
        if (find(url, QLatin1String("/rhel/"), next) < 0)
            return false;
        separator = QLatin1String("/");
        end = separator;
    }

    QString parts[4];
    const QLatin1String ends[4] = {QLatin1String("="), separator, QLatin1String("="), end};
    for (int i = 0; i < 4; ++i) {
        const int start = next;
        const int at = find(url, ends[i], next);
        if (at < 0)
            return false;
        parts[i] = httpUnprotect(url.mid(start, at - start));
    }

    nameKey = parts[0];
    name = parts[1];
    passwordKey = parts[2];
    password = parts[3];
    return true;
}

bool Repo::Vantry::getAuth(const Entry& entry, QString& nameKey, QString& name,
                           QString& passwordKey, QString& password)
{
    return getAuth(entry.baseurl, nameKey, name, passwordKey, password) ||
           getAuth(entry.mirrorlist, nameKey, name, passwordKey, password);
}

QString Repo::Vantry::replaceAuth(QString url, const QString& nameKey, const QString& name,
                                  const QString& passwordKey, const QString& password)
{
    static const QRegularExpression query(queryForm(QStringLiteral("[^&\\s]*")));
    static const QRegularExpression path(pathForm(QStringLiteral("[^/\\s]*")));

    // Backslashes, which would have a meaning in a replacement, are encoded.
    const QString nameKeyText = httpProtect(nameKey) + QLatin1Char('=') + httpProtect(name);
    const QString passwordText =
        httpProtect(passwordKey) + QLatin1Char('=') + httpProtect(password);
    url.replace(query, QLatin1String("/vantry?") + nameKeyText + QLatin1Char('&') + passwordText +
                           QLatin1String("&path="));
    url.replace(path, QLatin1String("/rhel/") + nameKeyText + QLatin1Char('/') + passwordText);
    return url;
}

QString Repo::Vantry::replaceAuth(QString url, const QString& name, const QString& password)
{
    QString nameKey;
    QString oldName;
    QString passwordKey;
    QString oldPassword;
    // A broken form hides the keys of one behind it, which would be lost.
    if (!getAuth(url, nameKey, oldName, passwordKey, oldPassword))
        return url;
    return replaceAuth(std::move(url), nameKey, name, passwordKey, password);
}

QString Repo::Vantry::replaceAuth(QString url, const QString& password)
{
    QString nameKey;
    QString name;
    QString passwordKey;
    QString oldPassword;
    if (!getAuth(url, nameKey, name, passwordKey, oldPassword))
        return url;
    return replaceAuth(std::move(url), nameKey, name, passwordKey, password);
}

QRegularExpression Repo::Vantry::oneUrlRegExp()
{
    return QRegularExpression(QStringLiteral("\\A.*") + eitherForm() + QStringLiteral(".*\\z"),
                              QRegularExpression::DotMatchesEverythingOption);
}

QRegularExpression Repo::Vantry::urlsRegExp()
{
    // Nothing is asked of what follows: a password is to be hidden whether the rest of the URL
    // begins with a letter, a slash or not at all.
    return QRegularExpression(eitherForm());
}
