// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/HProgressBar.h"

#include <QElapsedTimer>
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
    void paintsFewOfManySteps();
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
    QString painted; ///< what the last painting showed

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        painted = text();
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

void TestHProgressBar::paintsFewOfManySteps()
{
    PaintedBar bar;
    bar.setMaximum(1000);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QTRY_VERIFY(bar.paints > 0);

    bar.paints = 0;
    QElapsedTimer clock;
    clock.start();
    for (int step = 1; step <= 1000; ++step) {
        bar.setActivity(QString::number(step));
        bar.setValue(step);
        QCoreApplication::processEvents();
    }
    QCOMPARE(bar.value(), 1000);
    const qint64 most = clock.elapsed() / 20 + 2;
    QVERIFY2(bar.paints <= most, qPrintable(QString::number(bar.paints)));
    // The last one is not forgotten.
    QTRY_COMPARE(bar.painted, QStringLiteral("1000 (100%)"));
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
