// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/TextWidth.h"

#include "NastyTexts.h"

#include <QTest>
#include <QTextLayout>

class TestTextWidth : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundsHold_data();
    void boundsHold();
    void boundsMeetForPlainWords();
    void unusualTextsHaveNoBounds();
    void anEmptyTextIsEmpty();
};

namespace
{

qreal layoutWidth(const QFont& font, const QString& text)
{
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::ManualWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal width = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(1000000);
        width = qMax(width, line.naturalTextWidth());
    }
    layout.endLayout();
    return width;
}

} // namespace

void TestTextWidth::boundsHold_data()
{
    QTest::addColumn<QFont>("font");
    for (const QFont& font : Nasty::fonts()) {
        QTest::addRow("%s %d %d %d", qPrintable(font.family()), font.pointSize(),
                      int(font.letterSpacing()), int(font.kerning()))
            << font;
    }
}

void TestTextWidth::boundsHold()
{
    QFETCH(QFont, font);
    TextWidth widths(font);
    QRandomGenerator random(1);
    QStringList texts = Nasty::texts();
    for (int i = 0; i < 400; ++i)
        texts << Nasty::randomText(random);
    for (const QString& text : texts) {
        const TextWidth::Bounds bounds = widths.bounds(text);
        const qreal width = layoutWidth(font, text);
        QVERIFY2(bounds.lower <= width && width <= bounds.upper,
                 qPrintable(QString("\"%1\" is %2 wide, not %3 to %4")
                                .arg(text)
                                .arg(width)
                                .arg(bounds.lower)
                                .arg(bounds.upper)));
    }
}

void TestTextWidth::boundsMeetForPlainWords()
{
    const QFont font("DejaVu Sans Mono", 10);
    TextWidth widths(font);
    const QString text("package-1.2.3-4.x86_64");
    const TextWidth::Bounds bounds = widths.bounds(text);
    QCOMPARE(bounds.lower, bounds.upper);
    QCOMPARE(bounds.upper, layoutWidth(font, text));
}

void TestTextWidth::unusualTextsHaveNoBounds()
{
    TextWidth widths{QFont()};
    for (const char* text : {"a\tb", "a\nb", "\xd0\x9f\xd0\xb0", "e\xcc\x81",
                             "a\xc2\xad"
                             "b"}) {
        QVERIFY(qIsInf(widths.bounds(QString::fromUtf8(text)).upper));
        QCOMPARE(widths.bounds(QString::fromUtf8(text)).lower, 0.0);
    }
}

void TestTextWidth::anEmptyTextIsEmpty()
{
    TextWidth widths{QFont()};
    QCOMPARE(widths.bounds(QString()).upper, 0.0);
    QCOMPARE(widths.bounds("").upper, 0.0);
}

QTEST_MAIN(TestTextWidth)
#include "tst_TextWidth.moc"
