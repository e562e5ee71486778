// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Fonts.h"

#include <QCoreApplication>
#include <QFontInfo>
#include <QTest>
#include <QTranslator>

namespace
{

/// Gives the fixed fonts names that this system may or may not have.
class FamilyTranslator : public QTranslator
{
public:
    explicit FamilyTranslator(const QHash<QString, QString>& families)
        : m_families(families)
    {
    }

    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return qstrcmp(context, "Fonts") ? QString() : m_families.value(QString::fromLatin1(text));
    }
    bool isEmpty() const override { return false; }

private:
    const QHash<QString, QString> m_families;
};

} // namespace

class TestFonts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHeaderIsBoldAndHalfAsLargeAgain()
    {
        QFont font;
        font.setFixedPitch(true);
        font.setPointSize(9);
        const QFont header = Fonts::makeHeader(font);
        QCOMPARE(header.pointSize(), 13);
        QVERIFY(header.bold());
        QVERIFY(!header.fixedPitch());
        QCOMPARE(header.styleHint(), QFont::SansSerif);
        QCOMPARE(header.styleStrategy(), QFont::PreferDefault);
        QVERIFY(!font.bold());
        QCOMPARE(font.pointSize(), 9);
    }

    void aHeaderOfAFontInPixelsGrowsInPixels()
    {
        QFont font;
        font.setPixelSize(15);
        QCOMPARE(Fonts::makeHeader(font).pixelSize(), 22);
        QCOMPARE(Fonts::makeHeader(font).pointSize(), -1);
    }

    void fixedStopsAtTheFirstFamilyThatTheSystemHas()
    {
        const QString own = QFontInfo(QFont()).family();
        FamilyTranslator translator(
            {{"Bitstream Vera Sans Mono", "No Such Family One"}, {"DejaVu Sans Mono", own}});
        QVERIFY(QCoreApplication::installTranslator(&translator));
        const QFont fixed = Fonts::makeFixed(QFont("Some Other", 8));
        QCOMPARE(fixed.family(), own);
        QVERIFY(fixed.fixedPitch());
        QCOMPARE(fixed.pointSize(), 8);
    }

    void fixedEndsOnTheFourthNameWhereNoneOfTheFirstThreeExists()
    {
        FamilyTranslator translator({{"Bitstream Vera Sans Mono", "No Such Family One"},
                                     {"DejaVu Sans Mono", "No Such Family Two"},
                                     {"Monospace", "No Such Family Three"},
                                     {"Courier", "No Such Family Four"}});
        QVERIFY(QCoreApplication::installTranslator(&translator));
        QCOMPARE(Fonts::makeFixed(QFont()).family(), QString("No Such Family Four"));
    }

    void boldIsBoldAndNothingElse()
    {
        QFont font("Some Family", 11);
        QFont expected(font);
        expected.setBold(true);
        QCOMPARE(Fonts::makeBold(font), expected);
    }
};

QTEST_MAIN(TestFonts)
#include "tst_Fonts.moc"
