// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/GeneralTip.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <memory>

namespace
{

/// Content of a known size; `data` is the QSize.
void setupSized(GeneralTip* tip, void* data)
{
    auto* layout = new QVBoxLayout(tip);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* content = new QLabel(QStringLiteral("content"));
    content->setFixedSize(*static_cast<QSize*>(data));
    layout->addWidget(content);
}

QList<QAbstractEventDispatcher::TimerInfo> timersOf(QObject* object)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(object);
}

/// Lets the one timer of `tip` fire now, be its interval what it may.
void fireTimer(GeneralTip* tip)
{
    const auto timers = timersOf(tip);
    QCOMPARE(timers.size(), 1);
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(tip, &event);
}

} // namespace

class TestGeneralTip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void opensBelowThePointer();
    void opensUpAndLeftInTheScreensCorner_data();
    void opensUpAndLeftInTheScreensCorner();
    void keepsATipThatIsTooLargeAtTheBottomRightEdge();
    void staysOnTheScreenLeftAndAbove();
    void modifierKeysLeaveTheTipUp_data();
    void modifierKeysLeaveTheTipUp();
    void aLetterClosesTheTip();
    void aLetterWithAModifierLeavesTheTipUp();
    void userEventsCloseTheTip_data();
    void userEventsCloseTheTip();
    void otherEventsLeaveTheTipUp();
    void consumesNoEvent();
    void aNewTipDeletesTheOldOneBeforeItsSetup();
    void thePointerEnteringClosesTheTip();
    void expiresUnlessPersistent();
    void isDeletedAQuarterSecondAfterItIsHidden();
    void hasTheColoursOfATip();

private:
    GeneralTip* show(const QPoint& pos, bool persistent = true);

    QSize contentSize{120, 40};
    std::unique_ptr<QWidget> window;
    QLineEdit* edit = nullptr;
};

GeneralTip* TestGeneralTip::show(const QPoint& pos, bool persistent)
{
    GeneralTip::showTip(pos, setupSized, &contentSize, window.get(), persistent);
    return GeneralTip::it;
}

void TestGeneralTip::init()
{
    contentSize = QSize(120, 40);
    window = std::make_unique<QWidget>();
    auto* layout = new QVBoxLayout(window.get());
    edit = new QLineEdit;
    layout->addWidget(edit);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    edit->setFocus();
    QTRY_VERIFY(edit->hasFocus());
    QCoreApplication::processEvents();
}

void TestGeneralTip::cleanup()
{
    delete GeneralTip::it;
    QVERIFY(!GeneralTip::it);
    window.reset();
}

void TestGeneralTip::opensBelowThePointer()
{
    GeneralTip* tip = show(QPoint(100, 100));
    QVERIFY(tip);
    QVERIFY(tip->isVisible());
    QCOMPARE(tip->windowFlags() & Qt::WindowType_Mask, Qt::ToolTip);
    QCOMPARE(tip->pos(), QPoint(102, 116));
    QCOMPARE(tip->frameStyle(), 1);
    QVERIFY(tip->width() >= contentSize.width());
    QVERIFY(tip->height() >= contentSize.height());
}

void TestGeneralTip::opensUpAndLeftInTheScreensCorner_data()
{
    QTest::addColumn<QPoint>("fromCorner");
    QTest::addColumn<bool>("flipsX");
    QTest::addColumn<bool>("flipsY");
    QTest::newRow("bottom right") << QPoint(-20, -20) << true << true;
    QTest::newRow("right") << QPoint(-20, -300) << true << false;
    QTest::newRow("bottom") << QPoint(-300, -20) << false << true;
}

void TestGeneralTip::opensUpAndLeftInTheScreensCorner()
{
    QFETCH(QPoint, fromCorner);
    QFETCH(bool, flipsX);
    QFETCH(bool, flipsY);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QPoint pos = screen.topLeft() + QPoint(screen.width(), screen.height()) + fromCorner;

    const GeneralTip* tip = show(pos);
    QVERIFY(tip->isVisible());
    QCoreApplication::processEvents();
    const QRect rect(tip->pos(), tip->size());
    QVERIFY2(screen.contains(rect), "the tip lies partly outside the screen");
    QCOMPARE(rect.x(), flipsX ? pos.x() + 2 - rect.width() - 4 : pos.x() + 2);
    QCOMPARE(rect.y(), flipsY ? pos.y() + 16 - rect.height() - 24 : pos.y() + 16);
}

void TestGeneralTip::keepsATipThatIsTooLargeAtTheBottomRightEdge()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    contentSize = screen.size() + QSize(50, 50);
    const GeneralTip* tip = show(screen.center());
    // The left edge wins over the right one, the bottom one over the top.
    QCOMPARE(tip->x(), screen.x());
    QCOMPARE(tip->y(), screen.y() + screen.height() - tip->height());
}

void TestGeneralTip::staysOnTheScreenLeftAndAbove()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const GeneralTip* tip = show(screen.topLeft() - QPoint(50, 50));
    QCOMPARE(tip->pos(), screen.topLeft());
}

void TestGeneralTip::modifierKeysLeaveTheTipUp_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Shift") << int(Qt::Key_Shift);
    QTest::newRow("Control") << int(Qt::Key_Control);
    QTest::newRow("Meta") << int(Qt::Key_Meta);
    QTest::newRow("Alt") << int(Qt::Key_Alt);
}

void TestGeneralTip::modifierKeysLeaveTheTipUp()
{
    QFETCH(int, key);
    const GeneralTip* tip = show(QPoint(100, 100));
    QTest::keyPress(edit, Qt::Key(key));
    QVERIFY(tip->isVisible());
    QTest::keyRelease(edit, Qt::Key(key));
    QVERIFY(tip->isVisible());
}

void TestGeneralTip::aLetterClosesTheTip()
{
    const GeneralTip* tip = show(QPoint(100, 100));
    QTest::keyPress(edit, Qt::Key_A);
    QVERIFY(!tip->isVisible());
    QTest::keyRelease(edit, Qt::Key_A);

    tip = show(QPoint(100, 100));
    QTest::keyRelease(edit, Qt::Key_A);
    QVERIFY(!tip->isVisible());
}

void TestGeneralTip::aLetterWithAModifierLeavesTheTipUp()
{
    const GeneralTip* tip = show(QPoint(100, 100));
    QTest::keyPress(edit, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(tip->isVisible());
}

void TestGeneralTip::userEventsCloseTheTip_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("FocusIn") << int(QEvent::FocusIn);
    QTest::newRow("FocusOut") << int(QEvent::FocusOut);
    QTest::newRow("Leave") << int(QEvent::Leave);
    QTest::newRow("WindowActivate") << int(QEvent::WindowActivate);
    QTest::newRow("WindowDeactivate") << int(QEvent::WindowDeactivate);
    QTest::newRow("MouseButtonPress") << int(QEvent::MouseButtonPress);
    QTest::newRow("MouseButtonRelease") << int(QEvent::MouseButtonRelease);
    QTest::newRow("MouseButtonDblClick") << int(QEvent::MouseButtonDblClick);
    QTest::newRow("Wheel") << int(QEvent::Wheel);
}

void TestGeneralTip::userEventsCloseTheTip()
{
    QFETCH(int, type);
    const auto eventType = static_cast<QEvent::Type>(type);
    const QPoint at(5, 5);
    const GeneralTip* tip = show(QPoint(100, 100));
    switch (eventType) {
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        QFocusEvent event(eventType);
        QCoreApplication::sendEvent(edit, &event);
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick: {
        QMouseEvent event(eventType, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &event);
        break;
    }
    case QEvent::Wheel: {
        QWheelEvent event(at, window->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(window.get(), &event);
        break;
    }
    default: {
        QEvent event(eventType);
        QCoreApplication::sendEvent(window.get(), &event);
        break;
    }
    }
    QVERIFY(!tip->isVisible());
}

void TestGeneralTip::otherEventsLeaveTheTipUp()
{
    const GeneralTip* tip = show(QPoint(100, 100));
    QMouseEvent move(QEvent::MouseMove, QPoint(5, 5), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &move);
    window->resize(window->size() + QSize(10, 10));
    window->update();
    QCoreApplication::processEvents();
    QVERIFY(tip->isVisible());
}

void TestGeneralTip::consumesNoEvent()
{
    show(QPoint(100, 100));
    QTest::keyClick(edit, Qt::Key_X);
    QCOMPARE(edit->text(), QStringLiteral("x"));
}

void TestGeneralTip::aNewTipDeletesTheOldOneBeforeItsSetup()
{
    struct Seen {
        QPointer<GeneralTip> old;
        bool oldAlive = true;
        GeneralTip* current = nullptr;
    } seen;
    seen.old = show(QPoint(100, 100));
    QVERIFY(seen.old);

    GeneralTip::showTip(
        QPoint(200, 200),
        [](GeneralTip*, void* data) {
            auto* seen = static_cast<Seen*>(data);
            seen->oldAlive = !seen->old.isNull();
            seen->current = GeneralTip::it;
        },
        &seen, window.get(), true);
    QVERIFY(!seen.oldAlive);
    QVERIFY(GeneralTip::it);
    QCOMPARE(GeneralTip::it, seen.current);
    QVERIFY(GeneralTip::it->isVisible());
}

void TestGeneralTip::thePointerEnteringClosesTheTip()
{
    GeneralTip* tip = show(QPoint(100, 100));
    QEnterEvent event(QPointF(1, 1), QPointF(1, 1), tip->mapToGlobal(QPoint(1, 1)));
    QCoreApplication::sendEvent(tip, &event);
    QVERIFY(!tip->isVisible());
}

void TestGeneralTip::expiresUnlessPersistent()
{
    QVERIFY(timersOf(show(QPoint(100, 100), true)).isEmpty());

    GeneralTip* tip = show(QPoint(100, 100), false);
    QCOMPARE(timersOf(tip).size(), 1);
    QCOMPARE(timersOf(tip).first().interval, 10000);
    fireTimer(tip);
    QVERIFY(!tip->isVisible());
}

void TestGeneralTip::isDeletedAQuarterSecondAfterItIsHidden()
{
    const QPointer<GeneralTip> tip = show(QPoint(100, 100));
    QElapsedTimer clock;
    clock.start();
    tip->hideTip();
    QVERIFY(!tip->isVisible());
    QCOMPARE(GeneralTip::it, tip.data());
    QTRY_VERIFY(!tip);
    QVERIFY(clock.elapsed() >= 230); // a coarse timer may be early by a twentieth
    QVERIFY(!GeneralTip::it);
}

void TestGeneralTip::hasTheColoursOfATip()
{
    const QPalette palette = show(QPoint(100, 100))->palette();
    QCOMPARE(palette.color(QPalette::WindowText), QColor(Qt::black));
    QCOMPARE(palette.color(QPalette::Window), QColor(255, 255, 220));
    QCOMPARE(palette.color(QPalette::Light), QColor(96, 96, 96));
    QCOMPARE(palette.color(QPalette::Dark), QColor(Qt::black));
    QCOMPARE(palette.color(QPalette::Mid), QColor(Qt::black));
    QCOMPARE(palette.color(QPalette::Text), QColor(Qt::black));
    QCOMPARE(palette.color(QPalette::Base), QColor(255, 255, 220));
}

QTEST_MAIN(TestGeneralTip)
#include "tst_GeneralTip.moc"
