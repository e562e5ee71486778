// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTablePattern.h"
#include "table/RequiredLiteral.h"

#include <QRandomGenerator>
#include <QTest>

#include <clocale>

#include <regex.h>

using namespace PackageTable;

/// What the table finds out about the texts that every match must contain may save time, but must
/// never change a verdict.
class TestRequiredLiteral : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void findsWhatEveryMatchContains_data();
    void findsWhatEveryMatchContains();
    void excludesTextsWithoutIt();
    void agreesWithTheMatcherOnRandomExpressions_data();
    void agreesWithTheMatcherOnRandomExpressions();
    void matchesUpToTheFirstNul();
    void matchesEverythingWithoutAnExpression();
    void compilesAnewEachTime();
};

void TestRequiredLiteral::initTestCase()
{
    QVERIFY2(setlocale(LC_ALL, "C.UTF-8"), "no UTF-8 locale");
}

void TestRequiredLiteral::findsWhatEveryMatchContains_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<QList<QList<QByteArray>>>("texts");
    QTest::addColumn<bool>("whole");

    const auto add = [](const char* expression, const QList<QList<QByteArray>>& texts,
                        bool whole = false) {
        QTest::newRow(expression) << QByteArray(expression) << texts << whole;
    };
    add("glibc", {{"glibc"}}, true);
    add("lib/x86-64,~", {{"lib/x86-64,~"}}, true);
    add("na\xc3\xafve", {{"na\xc3\xafve"}}, true);
    add("", {});
    add(".", {});
    add("ab.cde", {{"ab"}, {"cde"}});
    add("README.*GPL", {{"README"}, {"GPL"}});
    add("^abc$", {{"abc"}});
    add("abc*", {{"ab"}});
    add("abc+d", {{"abc"}, {"d"}});
    add("abc?", {{"ab"}});
    add("abc{0,1}", {{"ab"}});
    add("abc+*", {{"ab"}});
    add("abc+?", {{"ab"}});
    add("x\xc3\xa9*", {{"x"}});
    add("\xc3\xa9?", {});
    add("a\\.b", {{"a.b"}});
    add("a\\+\\+", {{"a++"}});
    add("ab\\wcde", {{"ab"}, {"cde"}});
    add("ab\\bcde", {{"ab"}, {"cde"}});
    add("(ab)\\1cde", {{"ab"}, {"cde"}});
    add("[abc]de", {{"de"}});
    add("[]abc]de", {{"de"}});
    add("[^]abc]de", {{"de"}});
    add("[[:alpha:]]de", {{"de"}});
    add("[[:alpha:]]]de", {{"]de"}});
    add("[[.].]abc]de", {{"de"}});
    add("[a\\]de", {{"de"}});
    add("abc|de.f", {{"abc", "de"}});
    add("abc|", {});
    add("abc|.", {});
    add("(abc|def)g", {{"abc", "def"}, {"g"}});
    add("(abc|def)?g", {{"g"}});
    add("(abc|def)*", {});
    add("(abc|def)+", {{"abc", "def"}});
    add("(a(bc)d)xyz", {{"a"}, {"bc"}, {"d"}, {"xyz"}});
    add("(abc(def|ghi)|jkl)m", {{"abc", "jkl"}, {"m"}});
    add("(a|b|c|d|e|f|g|h|i)j", {{"j"}});
    add("a)|b", {{"a", "b"}});
}

void TestRequiredLiteral::findsWhatEveryMatchContains()
{
    QFETCH(QByteArray, expression);
    QFETCH(QList<QList<QByteArray>>, texts);
    QFETCH(bool, whole);

    const RequiredLiteral literal(expression);
    QCOMPARE(literal.required(), texts);
    QCOMPARE(literal.isWhole(), whole);
}

void TestRequiredLiteral::excludesTextsWithoutIt()
{
    const RequiredLiteral literal("abc.*|def[0-9]");
    QVERIFY(literal.mayMatch("xabc", 4));
    QVERIFY(literal.mayMatch("def", 3));
    QVERIFY(!literal.mayMatch("xabd de", 7));
    QVERIFY(!literal.mayMatch("abc", 2));
    QVERIFY(RequiredLiteral().mayMatch("", 0));
}

void TestRequiredLiteral::agreesWithTheMatcherOnRandomExpressions_data()
{
    QTest::addColumn<QByteArray>("locale");
    QTest::newRow("characters of several bytes") << QByteArray("C.UTF-8");
    QTest::newRow("characters of one byte") << QByteArray("C");
}

void TestRequiredLiteral::agreesWithTheMatcherOnRandomExpressions()
{
    QFETCH(QByteArray, locale);
    QVERIFY(setlocale(LC_ALL, locale.constData()));

    // Few characters and many operators, so that matches, near misses and odd nestings are common.
    const QStringList parts{
        "a",  "b",           "c",   "ab",    "abc",   QString::fromUtf8("\xc3\xa9"),
        ".",  "*",           "+",   "?",     "{0,1}", "{2}",
        "|",  "(",           ")",   "[",     "]",     "^",
        "$",  "\\.",         "\\|", "[ab]",  "[^a]",  "[]a]",
        "\n", "\\w",         "\\1", "(a|b)", "(ab)?", "\\\\",
        "-",  "[[:alpha:]]", "\\b", "}",     "{",     "\\("};
    const QStringList letters{"a", "b", "c",  "abc", QString::fromUtf8("\xc3\xa9"),
                              ".", "|", "\n", "]",   "\\",
                              "(", " ", "-",  "}",   "*"};
    QRandomGenerator random(20200913);
    const auto compose = [&random](const QStringList& from, int count) {
        QString text;
        for (int i = 0; i < count; ++i)
            text += from[random.bounded(from.size())];
        return text;
    };

    int compiled = 0;
    int excluded = 0;
    int matched = 0;
    for (int round = 0; round < 20000; ++round) {
        const QString expression = compose(parts, 1 + random.bounded(8));
        regex_t plain;
        if (regcomp(&plain, expression.toUtf8().constData(), REG_EXTENDED | REG_NOSUB) != 0)
            continue;
        ++compiled;
        Pattern pattern;
        pattern.compile(expression);
        const RequiredLiteral literal(expression.toUtf8());
        for (int i = 0; i < 10; ++i) {
            const QByteArray text = compose(letters, random.bounded(12)).toUtf8();
            const bool expected = regexec(&plain, text.constData(), 0, nullptr, 0) == 0;
            if (pattern.matches(text) != expected) {
                regfree(&plain);
                QFAIL(qPrintable(QString("\"%1\" on \"%2\": expected %3")
                                     .arg(expression, QString::fromUtf8(text))
                                     .arg(expected)));
            }
            matched += expected;
            excluded += !literal.mayMatch(text.constData(), static_cast<size_t>(text.size()));
        }
        regfree(&plain);
    }
    QVERIFY2(compiled > 5000, qPrintable(QString::number(compiled)));
    QVERIFY2(matched > 10000, qPrintable(QString::number(matched)));
    QVERIFY2(excluded > 10000, qPrintable(QString::number(excluded)));
    setlocale(LC_ALL, "C.UTF-8");
}

void TestRequiredLiteral::matchesUpToTheFirstNul()
{
    Pattern pattern;
    pattern.compile("abc");
    QVERIFY(pattern.matches(QByteArray("xabc\0y", 6)));
    QVERIFY(!pattern.matches(QByteArray("x\0abc", 5)));
}

void TestRequiredLiteral::matchesEverythingWithoutAnExpression()
{
    Pattern pattern;
    QVERIFY(pattern.matches("anything"));
    pattern.compile("(");
    QVERIFY(pattern.matches("anything"));
    QVERIFY(pattern.matches(QByteArray()));
}

void TestRequiredLiteral::compilesAnewEachTime()
{
    Pattern pattern;
    pattern.compile("a.c");
    QVERIFY(pattern.matches("abc"));
    pattern.compile("x");
    QVERIFY(!pattern.matches("abc"));
    pattern.compile("(");
    QVERIFY(pattern.matches("abc"));
    pattern.compile("A.c");
    QVERIFY(!pattern.matches("abc"));
}

QTEST_MAIN(TestRequiredLiteral)
#include "tst_RequiredLiteral.moc"
