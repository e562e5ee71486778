// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTablePattern.h"

#include <QRandomGenerator>
#include <QTest>

#include <clocale>

using namespace PackageTable;

class TestPackageTablePattern : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void takesBytesWhereThatIsTheSame_data();
    void takesBytesWhereThatIsTheSame();
    void keepsTheLocaleOfTheCaller();
    void matchesWholeCharacters();
    void matchesOneOfSeveralTexts_data();
    void matchesOneOfSeveralTexts();
    void matchesAnyOfTextsWithoutAnExpression();
    void givesTheVerdictsOfTheLocaleOnRandomExpressions();
};

void TestPackageTablePattern::initTestCase()
{
    QVERIFY(setlocale(LC_ALL, "C.UTF-8"));
}

void TestPackageTablePattern::takesBytesWhereThatIsTheSame_data()
{
    QTest::addColumn<bool>("bytewise");
    for (const char* expression :
         {"abc", "[0-9]{5}", "a|[a-f]+", "^a.*b$", "/[^/]*/", "[]a-c]", "[^]a]*", "a\\.b", "\\\\",
          "(.*a)+", ".*", "[^a-z]*x", "[[]", "a{2,3}?"})
        QTest::newRow(expression) << true;
    for (const char* expression : {"a.b", "a.+", ".?", ".{3}", "[^a]", "[^a]+", "[[:alpha:]]",
                                   "[[=a=]]", "[[.a.]]", "[^[:digit:]]*", "(a)\\1", "\\bfoo", "\\w",
                                   "\\<a", "\xc3\xa9", "[\xc3\xa9]*", "a\xc3\xa9+", "(", "[z-a]"})
        QTest::newRow(expression) << false;
}

void TestPackageTablePattern::takesBytesWhereThatIsTheSame()
{
    QFETCH(bool, bytewise);
    Pattern pattern;
    // Whatever was compiled before plays no part.
    pattern.compile(bytewise ? "a.b" : "abc");
    pattern.compile(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(pattern.isBytewise(), bytewise);
}

void TestPackageTablePattern::keepsTheLocaleOfTheCaller()
{
    const locale_t before = uselocale(nullptr);
    Pattern pattern;
    pattern.compile("[0-9]");
    QVERIFY(pattern.isBytewise());
    QCOMPARE(uselocale(nullptr), before);
    pattern.compile("^.$");
    QVERIFY(pattern.matches("\xc3\xa9"));
}

void TestPackageTablePattern::matchesWholeCharacters()
{
    Pattern pattern;
    pattern.compile("^[^a]$");
    QVERIFY(pattern.matches("\xc3\xa9"));
    pattern.compile("^[^a].$");
    QVERIFY(!pattern.matches("\xc3\xa9"));
    pattern.compile("^a.+.+b$");
    QVERIFY(!pattern.matches("a\xc3\xa9"
                             "b"));
    pattern.compile("^a[^x]*.*b$");
    QVERIFY(pattern.matches("a\xc3\xa9"
                            "b"));
}

void TestPackageTablePattern::matchesOneOfSeveralTexts_data()
{
    QTest::addColumn<QByteArray>("texts");
    QTest::addColumn<bool>("expected");
    const QByteArray texts("bash\0\0first\nsecond\0x1y\0end", 27);
    const auto row = [&](const char* expression, bool expected) {
        QTest::newRow(expression) << texts << expected;
    };
    row("bash", true);
    row("basher", false);
    row("^first", true);
    row("^second", false); // no text begins at a line
    row("second$", true);
    row("first$", false);
    row("bash$", true);
    row("^end$", true);
    row("^$", true); // the empty text
    row("bashfirst", false);
    row("bash.*first", false);
    row("bash[^x]*first", false);
    row("bash[^q]first", false);
    row("first.second", true);
    row("first[^q]*second", true);
    row("[a-z][0-9][a-z]", true);
    row("[a-z][0-9]{2}", false);
    row("[h-h][f-f]", false);
    row("q*", true);
    row("(bash|dash).*(first|last)", false);
    row("(bash|dash)", true);
    row("ex|nd", true);
    row("\\be", true);
    QTest::newRow("nothing") << QByteArray("") << false;
    QTest::newRow("q*$") << QByteArray("") << true;
    // The last of the texts is empty.
    QTest::newRow("^()$") << QByteArray("a\0", 2) << true;
    QTest::newRow("^.$") << QByteArray("ab\0", 3) << false;
    QTest::newRow("a[^b]b") << QByteArray("a\0b", 3) << false;
    QTest::newRow("a[^b]*b") << QByteArray("a\0b", 3) << false;
}

void TestPackageTablePattern::matchesOneOfSeveralTexts()
{
    QFETCH(QByteArray, texts);
    QFETCH(bool, expected);
    Pattern pattern;
    pattern.compile(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(pattern.matchesAny(texts), expected);
}

void TestPackageTablePattern::matchesAnyOfTextsWithoutAnExpression()
{
    Pattern pattern;
    QVERIFY(pattern.matchesAny(QByteArray("a\0b", 3)));
    pattern.compile("(");
    QVERIFY(pattern.matchesAny(QByteArray("a\0b", 3)));
    QVERIFY(pattern.matchesAny(QByteArray()));
}

void TestPackageTablePattern::givesTheVerdictsOfTheLocaleOnRandomExpressions()
{
    const QStringList parts{"a",      "b",     "c",       "/",    QString::fromUtf8("\xc3\xa9"),
                            ".*",     ".*",    ".",       "+",    "?",
                            "*",      "{2}",   "{0,2}",   "|",    "(",
                            ")",      "(",     ")",       "^",    "$",
                            "[a-b]",  "[^a]*", "[^a-b]*", "[^/]", "[^]c]*",
                            "[0-9/]", "\\.",   "[]c]",    "\n",   "[[:alpha:]]"};
    const QStringList letters{"a",
                              "b",
                              "c",
                              "/",
                              "1",
                              ".",
                              "\n",
                              QString::fromUtf8("\xc3\xa9"),
                              QString::fromUtf8("\xc3\xa8"),
                              QString::fromUtf8("\xe2\x82\xac"),
                              QString::fromUtf8("\xf0\x9f\x98\x80")};
    QRandomGenerator random(19700101);
    const auto compose = [&random](const QStringList& from, int count) {
        QString text;
        for (int i = 0; i < count; ++i)
            text += from[random.bounded(from.size())];
        return text;
    };

    int bytewise = 0;
    int matched = 0;
    int missed = 0;
    for (int round = 0; round < 20000; ++round) {
        const QString expression = compose(parts, 1 + random.bounded(8));
        regex_t plain;
        Pattern pattern;
        pattern.compile(expression);
        if (regcomp(&plain, expression.toUtf8().constData(), REG_EXTENDED | REG_NOSUB) != 0) {
            QVERIFY2(!pattern.isBytewise(), qPrintable(expression));
            continue;
        }
        bytewise += pattern.isBytewise();
        for (int i = 0; i < 5; ++i) {
            QByteArray texts;
            bool expectedAny = false;
            bool same = true;
            for (int field = 0; field < 3; ++field) {
                const QByteArray text = compose(letters, random.bounded(8)).toUtf8();
                const bool expected = regexec(&plain, text.constData(), 0, nullptr, 0) == 0;
                expectedAny = expectedAny || expected;
                same = same && pattern.matches(text) == expected;
                if (field > 0)
                    texts += '\0';
                texts += text;
            }
            if (!same || pattern.matchesAny(texts) != expectedAny) {
                regfree(&plain);
                QFAIL(qPrintable(QString("\"%1\" on \"%2\": expected %3")
                                     .arg(expression, QString::fromUtf8(texts.replace('\0', '~')))
                                     .arg(expectedAny)));
            }
            ++(expectedAny ? matched : missed);
        }
        regfree(&plain);
    }
    QVERIFY2(bytewise > 2500, qPrintable(QString::number(bytewise)));
    QVERIFY2(matched > 10000, qPrintable(QString::number(matched)));
    QVERIFY2(missed > 10000, qPrintable(QString::number(missed)));
}

QTEST_GUILESS_MAIN(TestPackageTablePattern)
#include "tst_PackageTablePattern.moc"
