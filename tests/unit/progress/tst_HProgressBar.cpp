// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/HProgressBar.h"

#include <QHelpEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

class TestHProgressBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsActivityAndPercentage();
    void showsOnlyTheActivityWithoutPercentage();
    void showsOnlyThePercentageWithoutActivity();
    void percentSignsOfTheActivityStay();
    void resetForgetsTheActivity();
    void repaintsOnlyForAnotherActivity();
    void tellsOfAToolTipWhereTheWindowIsActive();
    void isSilentWhereTheWindowIsNot();
    void tellsOfAToolTipWhereTheWindowAlwaysShowsThem();
};

namespace
{

/// Counts its paint events.
class PaintedBar : public HProgressBar
{
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        HProgressBar::paintEvent(event);
    }
};

/// A tool-tip request at (3, 4) of the bar; whether it was accepted as handled.
bool askForToolTip(HProgressBar& bar)
{
    QHelpEvent event(QEvent::ToolTip, QPoint(3, 4), bar.mapToGlobal(QPoint(3, 4)));
    event.ignore();
    return QCoreApplication::sendEvent(&bar, &event) && event.isAccepted();
}

} // namespace

void TestHProgressBar::joinsActivityAndPercentage()
{
    HProgressBar bar;
    bar.setMaximum(200);
    bar.setValue(50);
    bar.setActivity(QStringLiteral("Reading"));
    QCOMPARE(bar.text(), QStringLiteral("Reading (25%)"));
}

void TestHProgressBar::showsOnlyTheActivityWithoutPercentage()
{
    HProgressBar bar;
    bar.setActivity(QStringLiteral("Reading"));
    QCOMPARE(bar.text(), QStringLiteral("Reading"));
}

void TestHProgressBar::showsOnlyThePercentageWithoutActivity()
{
    HProgressBar bar;
    bar.setValue(7);
    QCOMPARE(bar.text(), QStringLiteral("7%"));
}

void TestHProgressBar::percentSignsOfTheActivityStay()
{
    HProgressBar bar;
    bar.setValue(7);
    bar.setActivity(QStringLiteral("a%2b%1c"));
    QCOMPARE(bar.text(), QStringLiteral("a%2b%1c (7%)"));
}

void TestHProgressBar::resetForgetsTheActivity()
{
    HProgressBar bar;
    bar.setValue(7);
    bar.setActivity(QStringLiteral("Reading"));
    bar.reset();
    QCOMPARE(bar.text(), QString());
}

void TestHProgressBar::repaintsOnlyForAnotherActivity()
{
    PaintedBar bar;
    bar.setActivity(QStringLiteral("Reading"));
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QTRY_VERIFY(bar.paints > 0);
    QCoreApplication::processEvents();

    bar.paints = 0;
    bar.setActivity(QStringLiteral("Reading"));
    QCoreApplication::processEvents();
    QCOMPARE(bar.paints, 0);
    bar.setActivity(QStringLiteral("Writing"));
    QTRY_COMPARE(bar.paints, 1);
}

void TestHProgressBar::tellsOfAToolTipWhereTheWindowIsActive()
{
    QWidget window;
    QVBoxLayout layout(&window);
    HProgressBar bar;
    layout.addWidget(&bar);
    QSignalSpy spy(&bar, &HProgressBar::toolTip);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QVERIFY(askForToolTip(bar));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toPoint(), QPoint(3, 4));
}

void TestHProgressBar::isSilentWhereTheWindowIsNot()
{
    QWidget window;
    QVBoxLayout layout(&window);
    HProgressBar bar;
    layout.addWidget(&bar);
    QSignalSpy spy(&bar, &HProgressBar::toolTip);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QVERIFY(!window.isActiveWindow());
    QVERIFY(!askForToolTip(bar));
    QCOMPARE(spy.count(), 0);
}

void TestHProgressBar::tellsOfAToolTipWhereTheWindowAlwaysShowsThem()
{
    QWidget window;
    window.setAttribute(Qt::WA_AlwaysShowToolTips);
    QVBoxLayout layout(&window);
    HProgressBar bar;
    layout.addWidget(&bar);
    QSignalSpy spy(&bar, &HProgressBar::toolTip);
    QVERIFY(!window.isActiveWindow());
    QVERIFY(askForToolTip(bar));
    QCOMPARE(spy.count(), 1);
}

QTEST_MAIN(TestHProgressBar)
#include "tst_HProgressBar.moc"
