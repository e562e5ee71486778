// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HScrollArea.h"
#include "kit/ScreenLimit.h"

#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QtTest>

class Sized : public QWidget
{
public:
    explicit Sized(QSize hint, QSize least = QSize())
        : m_hint(hint)
        , m_least(least)
    {
        resize(hint);
    }
    QSize sizeHint() const override { return m_hint; }
    QSize minimumSizeHint() const override { return m_least; }

private:
    QSize m_hint;
    QSize m_least;
};

/// At a scale of one and a half, where a point isn't a whole number of pixels.
class TestScreenLimit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNineTenthsOfTheScreen()
    {
        QLabel label("any");
        const QSize screen = label.screen()->geometry().size();
        QCOMPARE(ScreenLimit::of(&label), QSize(screen.width() * 9 / 10, screen.height() * 9 / 10));
    }

    void aWindowIsNoLargerThanItsHintButForARoundedPoint()
    {
        const Sized small(QSize(100, 70));
        QCOMPARE(ScreenLimit::windowSize(&small), QSize(101, 71));
        const Sized large(QSize(10000, 70));
        QCOMPARE(ScreenLimit::windowSize(&large), QSize(ScreenLimit::of(&large).width() + 1, 71));
    }

    void aWindowThatCannotBeSmallerHasItsRoundedPoint()
    {
        const Sized wide(QSize(10000, 70), QSize(9000, 60));
        QCOMPARE(ScreenLimit::windowSize(&wide), QSize(9001, 71));
    }

    /// Whatever the place of the window and the width of its text, none of which is lost to
    /// rounding between points and pixels.
    void textsOfTheHintedWidthNeedNoScrollBar()
    {
        for (int place = 0; place < 4; ++place) {
            for (int width = 300; width < 304; ++width) {
                QWidget window;
                auto* box = new QVBoxLayout(&window);
                box->setContentsMargins(0, 0, 0, 0);
                auto* area = new HScrollArea(-1, 5, &window);
                area->setFrameStyle(QFrame::NoFrame);
                area->setWidget(new Sized(QSize(width, 2000)));
                box->addWidget(area);
                window.move(100 + place, 100 + place);
                window.resize(ScreenLimit::windowSize(&window));
                window.show();
                QVERIFY(QTest::qWaitForWindowExposed(&window));
                QVERIFY(area->verticalScrollBar()->isVisible());
                QVERIFY2(!area->horizontalScrollBar()->isVisible(),
                         qPrintable(QStringLiteral("text of %1 at %2 in a window of %3")
                                        .arg(width)
                                        .arg(window.x())
                                        .arg(window.width())));
            }
        }
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_SCALE_FACTOR", "1.5");
    QApplication app(argc, argv);
    TestScreenLimit test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_ScreenLimit.moc"
