// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"

#include <QRegularExpression>
#include <QTest>

namespace
{

const QString query = QStringLiteral("http://h/vantry?user=a&pass=b&path=/x");
const QString path = QStringLiteral("http://h/rhel/user=a/pass=b/x");

/// What getAuth() finds, its four texts between bars; "none" where there is nothing.
QString found(const QString& url)
{
    QString nameKey, name, passwordKey, password;
    if (!Repo::Vantry::getAuth(url, nameKey, name, passwordKey, password))
        return QStringLiteral("none");
    return QStringList{nameKey, name, passwordKey, password}.join(QLatin1Char('|'));
}

/// `text` with a star for each character that a password field hides.
QString masked(QString text, const QRegularExpression& regExp)
{
    const QString original = text;
    QRegularExpressionMatchIterator it = regExp.globalMatch(original);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        for (int i = 1; i <= regExp.captureCount(); ++i) {
            if (match.capturedLength(i) > 0)
                text.replace(match.capturedStart(i), match.capturedLength(i),
                             QString(match.capturedLength(i), QLatin1Char('*')));
        }
    }
    return text;
}

} // namespace

/// Credentials in URLs.
class TestVantry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFourParts_data();
    void findsTheFourParts();
    void leavesTheResultsUntouchedWhereThereIsNothing();
    void prefersTheUrlsToTheMirrorList();
    void takesTheMirrorListWhereTheUrlsHaveNothing();
    void replacesAllFour();
    void replacesNameAndPasswordAndKeepsTheKeys();
    void replacesThePasswordAndKeepsTheName();
    void leavesOtherUrlsAsTheyAre_data();
    void leavesOtherUrlsAsTheyAre();
    void keysBehindABrokenFormAreNotLost_data();
    void keysBehindABrokenFormAreNotLost();
    void replacesInEachUrl();
    void encodesExactlyWhatWouldBreakTheUrl();
    void whatIsWrittenIsFoundAgain_data();
    void whatIsWrittenIsFoundAgain();
    void everyCharacterSurvives();
    void hidesThePasswordOfOneUrl_data();
    void hidesThePasswordOfOneUrl();
    void oneUrlIsMatchedAsAWhole();
    void hidesThePasswordsOfAllUrls();
    void onlyOneCaptureTakesPart();
    void formsWithOneSlashBetweenThemAreTwo();
};

void TestVantry::findsTheFourParts_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("parts");
    const auto row = [](const char* name, const char* url, const char* parts) {
        QTest::newRow(name) << QString::fromUtf8(url) << QString::fromUtf8(parts);
    };
    row("query form", "http://h/vantry?user=a&pass=b&path=/x", "user|a|pass|b");
    row("path form", "http://h/rhel/user=a/pass=b/x", "user|a|pass|b");
    row("nothing behind it", "/vantry?user=a&pass=b&path=", "user|a|pass|b");
    row("empty credentials", "http://h/vantry?user=&pass=&path=/x", "user||pass|");
    row("empty credentials in a path", "http://h/rhel/user=/pass=/x", "user||pass|");
    row("all empty", "/vantry?=&=&path=", "|||");
    row("decoded", "http://h/vantry?my%20user=a%26b&p%3D=c%2Fd&path=/x", "my user|a&b|p=|c/d");
    row("upper and lower hex digits", "/vantry?u=%3d&p=%3D&path=", "u|=|p|=");
    row("stray per cent signs", "/vantry?u=%&p=10%zz%4&path=", "u|%|p|10%zz%4");
    row("decoded once", "/vantry?u=%2541&p=%%34&path=", "u|%41|p|%4");
    row("equal sign in a value", "/vantry?u=a=b&p=c=d&path=", "u|a=b|p|c=d");
    row("ampersand before the end", "/vantry?u=a&p=b&c&path=/x", "u|a|p|b&c");
    row("first of several",
        "http://h/a\nhttp://h/vantry?u=1&p=2&path=/\nhttp://h/vantry?u=3&p=4&path=/", "u|1|p|2");
    row("query form wins", "http://h/rhel/u=1/p=2/\nhttp://h/vantry?u=3&p=4&path=/", "u|3|p|4");
    row("no form", "http://h/x", "none");
    row("empty", "", "none");
    row("query form without its end", "http://h/vantry?user=a&pass=b", "none");
    row("query form without a separator", "http://h/vantry?user=a", "none");
    row("broken query form before a path form", "http://h/vantry?user=a/rhel/user=a/pass=b/x",
        "none");
    row("path form without its end", "http://h/rhel/user=a/pass=b", "none");
    row("path form without a value", "http://h/rhel/7/os/", "none");
    row("other case", "http://h/Vantry?user=a&pass=b&path=/x", "none");
    row("other case of the path", "http://h/RHEL/user=a/pass=b/x", "none");
    row("other case of the end", "http://h/vantry?user=a&pass=b&Path=/x", "none");
}

void TestVantry::findsTheFourParts()
{
    QFETCH(QString, url);
    QFETCH(QString, parts);
    QCOMPARE(found(url), parts);
}

void TestVantry::leavesTheResultsUntouchedWhereThereIsNothing()
{
    for (const char* url : {"http://h/x", "http://h/vantry?user=a&pass=b", "/rhel/user=a/pass=b"}) {
        QString a = QStringLiteral("1"), b = QStringLiteral("2");
        QString c = QStringLiteral("3"), d = QStringLiteral("4");
        QVERIFY(!Repo::Vantry::getAuth(QLatin1String(url), a, b, c, d));
        QCOMPARE(a + b + c + d, QStringLiteral("1234"));
    }
}

void TestVantry::prefersTheUrlsToTheMirrorList()
{
    Repo::Entry entry;
    entry.baseurl = QStringLiteral("http://h/x\n") + query;
    entry.mirrorlist = QStringLiteral("http://h/rhel/k=other/l=values/x");
    QString nameKey, name, passwordKey, password;
    QVERIFY(Repo::Vantry::getAuth(entry, nameKey, name, passwordKey, password));
    QCOMPARE(name + password, QStringLiteral("ab"));
}

void TestVantry::takesTheMirrorListWhereTheUrlsHaveNothing()
{
    Repo::Entry entry;
    QString nameKey, name, passwordKey, password;
    QVERIFY(!Repo::Vantry::getAuth(entry, nameKey, name, passwordKey, password));

    entry.baseurl = QStringLiteral("http://h/vantry?user=broken");
    entry.mirrorlist = path;
    QVERIFY(Repo::Vantry::getAuth(entry, nameKey, name, passwordKey, password));
    QCOMPARE(nameKey, QStringLiteral("user"));
    QCOMPARE(name, QStringLiteral("a"));
    QCOMPARE(passwordKey, QStringLiteral("pass"));
    QCOMPARE(password, QStringLiteral("b"));
}

void TestVantry::replacesAllFour()
{
    const auto all = [](const QString& url) {
        return Repo::Vantry::replaceAuth(url, QStringLiteral("k"), QStringLiteral("n"),
                                         QStringLiteral("l"), QStringLiteral("p"));
    };
    QCOMPARE(all(query), QStringLiteral("http://h/vantry?k=n&l=p&path=/x"));
    QCOMPARE(all(path), QStringLiteral("http://h/rhel/k=n/l=p/x"));
}

void TestVantry::replacesNameAndPasswordAndKeepsTheKeys()
{
    const QString name = QStringLiteral("n n");
    const QString password = QStringLiteral("a&b");
    QCOMPARE(Repo::Vantry::replaceAuth(query, name, password),
             QStringLiteral("http://h/vantry?user=n%20n&pass=a%26b&path=/x"));
    QCOMPARE(Repo::Vantry::replaceAuth(path, name, password),
             QStringLiteral("http://h/rhel/user=n%20n/pass=a%26b/x"));
    QCOMPARE(found(Repo::Vantry::replaceAuth(query, name, password)),
             QStringLiteral("user|n n|pass|a&b"));
    QCOMPARE(
        Repo::Vantry::replaceAuth(QStringLiteral("/vantry?my%20key=&p=&path="), name, password),
        QStringLiteral("/vantry?my%20key=n%20n&p=a%26b&path="));
}

void TestVantry::replacesThePasswordAndKeepsTheName()
{
    const QString url = QStringLiteral("/vantry?user=a%2fb&pass=old&path=/x");
    QCOMPARE(Repo::Vantry::replaceAuth(url, QStringLiteral("new")),
             QStringLiteral("/vantry?user=a%2fb&pass=new&path=/x"));
    QCOMPARE(Repo::Vantry::replaceAuth(path, QString()),
             QStringLiteral("http://h/rhel/user=a/pass=/x"));
}

void TestVantry::leavesOtherUrlsAsTheyAre_data()
{
    QTest::addColumn<QString>("url");
    for (const char* url :
         {"", "http://h/x", "http://h/vantry?user=a&pass=b",
          "http://h/vantry?user=a&pass=b&paths=/x", "http://h/rhel/7/x86_64/os/",
          "http://h/rhel/user=a/pass=b", "http://h/vantry?us er=a&pass=b&path=/x"})
        QTest::newRow(url) << QString::fromLatin1(url);
}

void TestVantry::leavesOtherUrlsAsTheyAre()
{
    QFETCH(QString, url);
    const QString word = QStringLiteral("z");
    QCOMPARE(Repo::Vantry::replaceAuth(url, word, word, word, word), url);
    QCOMPARE(Repo::Vantry::replaceAuth(url, word, word), url);
    QCOMPARE(Repo::Vantry::replaceAuth(url, word), url);
}

void TestVantry::keysBehindABrokenFormAreNotLost_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("in one URL") << "http://h/vantry?user=a/rhel/user=a/pass=b/x";
    QTest::newRow("in the next URL") << "http://h/vantry?\nhttp://g/rhel/user=a/pass=b/x";
}

void TestVantry::keysBehindABrokenFormAreNotLost()
{
    QFETCH(QString, url);
    QCOMPARE(found(url), QStringLiteral("none"));
    const QString word = QStringLiteral("z");
    QCOMPARE(Repo::Vantry::replaceAuth(url, word, word), url);
    QCOMPARE(Repo::Vantry::replaceAuth(url, word), url);
}

void TestVantry::replacesInEachUrl()
{
    const QString urls = query + QStringLiteral("\nhttp://h/plain\n") + path + QLatin1Char('\n') +
                         query + QLatin1Char('\n');
    QCOMPARE(
        Repo::Vantry::replaceAuth(urls, QStringLiteral("n"), QStringLiteral("p")),
        QStringLiteral("http://h/vantry?user=n&pass=p&path=/x\nhttp://h/plain\n"
                       "http://h/rhel/user=n/pass=p/x\nhttp://h/vantry?user=n&pass=p&path=/x\n"));
}

void TestVantry::encodesExactlyWhatWouldBreakTheUrl()
{
    const QString reserved = QStringLiteral("$&+,/:;=?@ \"<>#%{}|\\^~[]\t\n\v\f\r");
    for (int code = 1; code < 0x180; ++code) {
        const QString url =
            Repo::Vantry::replaceAuth(QStringLiteral("/vantry?u=&p=&path="), QString(QChar(code)));
        const QString text = url.mid(13, url.size() - 13 - 6);
        if (reserved.contains(QChar(code)))
            QCOMPARE(text, QStringLiteral("%%1").arg(code, 2, 16, QLatin1Char('0')));
        else
            QCOMPARE(text, QString(QChar(code)));
    }
}

void TestVantry::whatIsWrittenIsFoundAgain_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text :
         {"", "a&b", "a b", " ", "tab\there", "line\nbreak", "&path=", "/rhel/a=b/c=d/", "%41",
          "%2541", "%", "\\1\\0$&", "a=b=c", "\xc3\xa9\xe2\x82\xac",
          "no\xc2\xa0"
          "break",
          "caf\xc3\xa0"})
        QTest::newRow(text) << QString::fromUtf8(text);
    QTest::newRow("bytes of UTF-8") << QString::fromLatin1("caf\xc3\xa0 \xc2\x85");
}

void TestVantry::whatIsWrittenIsFoundAgain()
{
    QFETCH(QString, text);
    for (const QString& url : {query, path}) {
        const QString written = Repo::Vantry::replaceAuth(url, text, text, text, text);
        QCOMPARE(found(written), QStringList({text, text, text, text}).join(QLatin1Char('|')));
        // It is still one that can be replaced and hidden.
        QCOMPARE(Repo::Vantry::replaceAuth(written, QStringLiteral("user"), QStringLiteral("a"),
                                           QStringLiteral("pass"), QStringLiteral("b")),
                 url);
        QVERIFY(Repo::Vantry::oneUrlRegExp().match(written).hasMatch());
        QVERIFY(Repo::Vantry::urlsRegExp().match(written).hasMatch());
    }
}

void TestVantry::everyCharacterSurvives()
{
    QString all;
    for (int code = 1; code < 0x800; ++code)
        all += QChar(code);
    for (const QString& url : {query, path})
        QCOMPARE(
            found(Repo::Vantry::replaceAuth(url, all)),
            QStringList({QStringLiteral("user"), QStringLiteral("a"), QStringLiteral("pass"), all})
                .join(QLatin1Char('|')));
}

void TestVantry::hidesThePasswordOfOneUrl_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* url, const char* shown) {
        QTest::newRow(url) << QString::fromLatin1(url) << QString::fromLatin1(shown);
    };
    row("http://h/rhel/a=b/c=hidden/x", "http://h/rhel/a=b/c=******/x");
    row("http://h/vantry?a=b&c=hidden&path=/x", "http://h/vantry?a=b&c=******&path=/x");
    row("http://h/vantry?a=b&c=hidden&path=x", "http://h/vantry?a=b&c=******&path=x");
    row("http://h/vantry?a=b&c=hidden&path=", "http://h/vantry?a=b&c=******&path=");
    row("http://h/rhel/a=b/c=hidden/", "http://h/rhel/a=b/c=******/");
    row("http://h/vantry?a=b&c=hid=den&path=/x", "http://h/vantry?a=b&c=*******&path=/x");
    row("http://h/rhel/a=b/c=hid=den/x", "http://h/rhel/a=b/c=*******/x");
    row("http://h/vantry?a=b&c=hid\xa0"
        "den&path=/x",
        "http://h/vantry?a=b&c=*******&path=/x");
    row("http://h/vantry?a=b&c=&path=/x", "http://h/vantry?a=b&c=&path=/x");
    row("http://h/vantry?a=b&c=plain", "http://h/vantry?a=b&c=plain");
    row("http://h/x", "http://h/x");
}

void TestVantry::hidesThePasswordOfOneUrl()
{
    QFETCH(QString, url);
    QFETCH(QString, shown);
    QCOMPARE(masked(url, Repo::Vantry::oneUrlRegExp()), shown);
    QCOMPARE(masked(url, Repo::Vantry::urlsRegExp()), shown);
}

void TestVantry::oneUrlIsMatchedAsAWhole()
{
    const QString text = QStringLiteral("\n http://h/rhel/a=b/c=hidden/x\n\n");
    const QRegularExpressionMatch match = Repo::Vantry::oneUrlRegExp().match(text);
    QVERIFY(match.hasMatch());
    QCOMPARE(match.captured(0), text);
    QCOMPARE(match.captured(2), QStringLiteral("hidden"));
}

void TestVantry::hidesThePasswordsOfAllUrls()
{
    const QString urls = QStringLiteral("http://h/vantry?a=b&c=one&path=/x\n"
                                        "http://h/plain\n"
                                        "http://h/rhel/a=b/c=three/\n"
                                        "http://h/vantry?a=b&c=four&path=\n\n"
                                        "  http://h/vantry?a=b&c=fives&path=repo");
    QCOMPARE(masked(urls, Repo::Vantry::urlsRegExp()),
             QStringLiteral("http://h/vantry?a=b&c=***&path=/x\n"
                            "http://h/plain\n"
                            "http://h/rhel/a=b/c=*****/\n"
                            "http://h/vantry?a=b&c=****&path=\n\n"
                            "  http://h/vantry?a=b&c=*****&path=repo"));
}

void TestVantry::onlyOneCaptureTakesPart()
{
    for (const QRegularExpression& regExp :
         {Repo::Vantry::oneUrlRegExp(), Repo::Vantry::urlsRegExp()}) {
        QVERIFY2(regExp.isValid(), qPrintable(regExp.errorString()));
        QCOMPARE(regExp.captureCount(), 2);
        QCOMPARE(regExp.match(query).captured(1), QStringLiteral("b"));
        QCOMPARE(regExp.match(query).capturedStart(2), -1);
        QCOMPARE(regExp.match(path).capturedStart(1), -1);
        QCOMPARE(regExp.match(path).captured(2), QStringLiteral("b"));
    }
}

void TestVantry::formsWithOneSlashBetweenThemAreTwo()
{
    const QString url = QStringLiteral("http://h/rhel/a=b/c=one/rhel/d=e/f=two/vantry?g=h&i=three&"
                                       "path=/x");
    QCOMPARE(masked(url, Repo::Vantry::urlsRegExp()),
             QStringLiteral("http://h/rhel/a=b/c=***/rhel/d=e/f=***/vantry?g=h&i=*****&path=/x"));
    QCOMPARE(Repo::Vantry::replaceAuth(url, QStringLiteral("k"), QStringLiteral("n"),
                                       QStringLiteral("l"), QStringLiteral("p")),
             QStringLiteral("http://h/rhel/k=n/l=p/rhel/k=n/l=p/vantry?k=n&l=p&path=/x"));
}

QTEST_MAIN(TestVantry)
#include "tst_Vantry.moc"
