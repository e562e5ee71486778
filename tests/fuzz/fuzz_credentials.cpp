// SPDX-License-Identifier: GPL-2.0-or-later
#include "fuzz/Require.h"
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QString>

namespace
{

/// Name and password, and the server's keys of both.
struct Auth {
    QString nameKey, name, passwordKey, password;

    bool operator==(const Auth& other) const
    {
        return nameKey == other.nameKey && name == other.name && passwordKey == other.passwordKey &&
               password == other.password;
    }
    bool find(const QString& url)
    {
        return Repo::Vantry::getAuth(url, nameKey, name, passwordKey, password);
    }
    QString putInto(const QString& url) const
    {
        return Repo::Vantry::replaceAuth(url, nameKey, name, passwordKey, password);
    }
};

/// `text` as the fields show it.
QString masked(QString text, const QRegularExpression& regExp)
{
    for (int from = 0;;) {
        const QRegularExpressionMatch match = regExp.match(text, from);
        if (!match.hasMatch())
            return text;
        from = match.capturedEnd();
        for (int i = 1; i <= match.lastCapturedIndex(); ++i) {
            const int length = match.capturedLength(i);
            if (length > 0)
                text.replace(match.capturedStart(i), length, QString(length, QLatin1Char('*')));
        }
    }
}

/// Walks over a text, of which a URL ends at white space.
class Walk
{
public:
    Walk(const QString& text, int start)
        : text(text)
        , at(start)
    {
    }

    bool skip(const char* word)
    {
        const QLatin1String expected(word);
        if (text.midRef(at, expected.size()) != expected)
            return false;
        at += expected.size();
        return true;
    }
    /// Over characters that are neither white space nor one of `ends`.
    void until(const char* ends)
    {
        const QLatin1String stops(ends);
        while (at < text.size() && !stops.contains(text.at(at)) &&
               !QLatin1String(" \t\n\v\f\r").contains(text.at(at)))
            ++at;
    }

    int position() const { return at; }

private:
    const QString& text;
    int at;
};

/// The end of the form that begins at `start`, its last slash not counted; -1 where none does.
int endOfForm(const QString& text, int start)
{
    Walk query(text, start);
    if (query.skip("/vantry?")) {
        query.until("&=");
        if (!query.skip("="))
            return -1;
        query.until("&");
        if (!query.skip("&"))
            return -1;
        query.until("&=");
        if (!query.skip("="))
            return -1;
        query.until("&");
        return query.skip("&path=") ? query.position() : -1;
    }
    Walk path(text, start);
    if (!path.skip("/rhel/"))
        return -1;
    path.until("/=");
    if (!path.skip("="))
        return -1;
    path.until("/");
    if (!path.skip("/"))
        return -1;
    path.until("/=");
    if (!path.skip("="))
        return -1;
    path.until("/");
    return path.skip("/") ? path.position() - 1 : -1;
}

/// Whether what getAuth() looks at is whole: the first query, else the first path.
bool beginsWithForm(const QString& text)
{
    const int query = text.indexOf(QLatin1String("/vantry?"));
    const int start = query < 0 ? text.indexOf(QLatin1String("/rhel/")) : query;
    return start >= 0 && endOfForm(text, start) >= 0;
}

/// The forms of a text.
struct Forms {
    explicit Forms(const QString& text)
    {
        int last = 0;
        for (int i = 0; i < text.size(); ++i) {
            const int end = text.at(i) == QLatin1Char('/') ? endOfForm(text, i) : -1;
            if (end < 0)
                continue;
            ++count;
            areApart = areApart && i >= last;
            last = end;
        }
    }

    int count = 0;
    bool areApart = true; ///< none is within a key or a value of another
};

void findsAndReplaces(const QString& urls, const Auth& wanted)
{
    const Forms forms(urls);
    Auth found{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")};
    const Auth before = found;
    const bool has = found.find(urls);
    require(has || found == before, "nothing is given where nothing is found");
    require(has || !beginsWithForm(urls), "a form is found");

    const QString written = wanted.putInto(urls);
    const Forms after(written);
    // Forms in each other are no URLs that anyone has; nothing is promised of what becomes of them.
    const bool plain = forms.areApart && after.areApart && after.count == forms.count;
    require(!plain || wanted.putInto(written) == written, "the same once more changes nothing");
    if (forms.count == 0) {
        require(written == urls, "other text stays as it is");
        return;
    }
    require(after.count > 0, "what is written is one of the forms");
    if (plain && beginsWithForm(written)) {
        Auth again;
        require(again.find(written) && again == wanted, "what is written is found again");
    }
    if (has && beginsWithForm(urls)) {
        const QString changed = Repo::Vantry::replaceAuth(urls, wanted.password);
        Auth expected = found;
        expected.password = wanted.password;
        require(changed == expected.putInto(urls), "a new password leaves the rest");
        expected.name = wanted.name;
        require(Repo::Vantry::replaceAuth(urls, wanted.name, wanted.password) ==
                    expected.putInto(urls),
                "new credentials leave the keys");
    }
}

void hidesThePassword(const QString& urls, const Auth& wanted)
{
    static const QRegularExpression all = Repo::Vantry::urlsRegExp();
    static const QRegularExpression one = Repo::Vantry::oneUrlRegExp();

    const Forms forms(urls);
    require(masked(urls, all).size() == urls.size(), "the mask is as long as the text");
    require((forms.count > 0) == all.match(urls).hasMatch(), "the mask knows all forms");
    require((forms.count > 0) == one.match(urls).hasMatch(), "the mask of one URL knows all forms");

    // Wherever this one is put, it isn't to be seen.
    const QString secret = QStringLiteral("5ecr3t");
    Auth hidden = wanted;
    hidden.password = secret;
    for (const QString* text : {&urls, &wanted.nameKey, &wanted.name, &wanted.passwordKey}) {
        if (text->contains(secret))
            return;
    }
    const QString written = hidden.putInto(urls);
    const Forms after(written);
    if (forms.areApart && after.areApart && after.count == forms.count)
        require(!masked(written, all).contains(secret), "no password is shown");
    // A field of one URL hides one password.
    if (after.count == 1)
        require(!masked(written, one).contains(secret), "the password of one URL isn't shown");
}

} // namespace

/// Four lines, percent-encoded: key, name, key and password to be written. Then a text of URLs.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    QByteArray rest(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const auto next = [&rest] {
        const int end = rest.indexOf('\n');
        const QByteArray line = end < 0 ? rest : rest.left(end);
        rest = end < 0 ? QByteArray() : rest.mid(end + 1);
        const QByteArray bytes = QByteArray::fromPercentEncoding(line);
        return QString::fromUtf8(bytes.constData(), bytes.size());
    };
    Auth wanted;
    wanted.nameKey = next();
    wanted.name = next();
    wanted.passwordKey = next();
    wanted.password = next();
    // As it is in a file, a character for each byte.
    const QString urls = QString::fromLatin1(rest.constData(), rest.size());

    findsAndReplaces(urls, wanted);
    hidesThePassword(urls, wanted);
    return 0;
}
