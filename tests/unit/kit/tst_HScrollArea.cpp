// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HScrollArea.h"
#include "kit/HSeparator.h"
#include "kit/ScreenLimit.h"

#include <QFontMetrics>
#include <QScreen>
#include <QScrollBar>
#include <QTest>

namespace
{

class Sized : public QWidget
{
public:
    QSize sizeHint() const override { return wanted; }
    QSize wanted{120, 90};
};

} // namespace

class TestHScrollArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksAsTheBaseDoesWithoutAWidget()
    {
        HScrollArea area(nullptr);
        QCOMPARE(area.sizeHint(), static_cast<QScrollArea&>(area).QScrollArea::sizeHint());
    }

    void asksForTheWidgetAndItsScrollBars()
    {
        HScrollArea area(nullptr);
        area.setWidget(new Sized);
        const int extra = 2 * area.frameWidth() + area.frameOnlyAroundContentsPixels();
        QCOMPARE(area.sizeHint(),
                 QSize(120 + extra + area.verticalScrollBar()->sizeHint().width(),
                       90 + extra + area.horizontalScrollBar()->sizeHint().height()));
    }

    void staysWithinTheMaximumGiven()
    {
        HScrollArea area(QSize(50, 1000), nullptr);
        auto* widget = new Sized;
        area.setWidget(widget);
        QCOMPARE(area.sizeHint().width(), 50);
        QVERIFY(area.sizeHint().height() > 90);
    }

    void countsTheMaximumInLettersAndLines()
    {
        HScrollArea area(4, 3, nullptr);
        auto* widget = new Sized;
        widget->wanted = QSize(400, 400);
        area.setWidget(widget);
        const QFontMetrics metrics = area.fontMetrics();
        QCOMPARE(area.sizeHint(), QSize(4 * metrics.horizontalAdvance('n'), 3 * metrics.height()));
        HScrollArea tall(4, -1, nullptr);
        tall.setWidget(new Sized);
        QVERIFY(tall.sizeHint().height() > 90);
        HScrollArea wide(-1, 3, nullptr);
        wide.setWidget(new Sized);
        QVERIFY(wide.sizeHint().width() > 120);
    }

    void staysWithinNineTenthsOfTheScreen()
    {
        HScrollArea area(nullptr);
        auto* widget = new Sized;
        widget->wanted = QSize(100000, 100000);
        area.setWidget(widget);
        const QSize screen = area.screen()->geometry().size();
        QCOMPARE(area.sizeHint(), QSize(screen.width() * 9 / 10, screen.height() * 9 / 10));
        QCOMPARE(ScreenLimit::of(&area), area.sizeHint());
    }

    void forceResizeGivesTheWidgetWhatItNowWants()
    {
        HScrollArea area(nullptr);
        area.forceResize();
        auto* widget = new Sized;
        area.setWidget(widget);
        widget->wanted = QSize(77, 55);
        area.forceResize();
        QCOMPARE(widget->size(), QSize(77, 55));
    }

    void aSeparatorIsASunkenLine()
    {
        HSeparator separator(nullptr);
        QCOMPARE(separator.frameShape(), QFrame::HLine);
        QCOMPARE(separator.frameShadow(), QFrame::Sunken);
    }
};

QTEST_MAIN(TestHScrollArea)
#include "tst_HScrollArea.moc"
