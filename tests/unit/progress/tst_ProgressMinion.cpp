// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/GeneralTip.h"
#include "progress/HProgressBar.h"
#include "progress/ProgressMinion.h"

#include <QGridLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

using Progress::Minion;
using Progress::ThreadState;

namespace
{

const QColor orange(255, 140, 0);
const QColor yellow(255, 255, 0);
const QColor green(144, 238, 144);

ThreadsState completeSlots(unsigned int count)
{
    ThreadsState state(count);
    for (unsigned int i = 0; i < count; ++i) {
        state[i].activity = QStringLiteral("file %1").arg(i);
        state[i].state = ThreadState::Complete;
    }
    return state;
}

/// A row of the tip as it is on the screen.
struct Row {
    QString text;
    QString label;
    QColor colour;
    int frameStyle;
};

bool operator==(const Row& a, const Row& b)
{
    return a.text == b.text && a.label == b.label && a.colour == b.colour &&
           a.frameStyle == b.frameStyle;
}

constexpr int madeFrame = QFrame::StyledPanel | QFrame::Plain;

QList<Row> rowsOf(const GeneralTip* tip)
{
    QList<Row> rows;
    const auto* layout = qobject_cast<QGridLayout*>(tip->layout());
    for (int row = 0; layout && row < layout->rowCount(); ++row) {
        QLayoutItem* left = layout->itemAtPosition(row, 0);
        QLayoutItem* right = layout->itemAtPosition(row, 1);
        if (!left || !right)
            continue;
        const auto* text = qobject_cast<QLabel*>(left->widget());
        const auto* label = qobject_cast<QLabel*>(right->widget());
        rows.append(Row{text->text(), label->text(), label->palette().color(QPalette::Window),
                        label->frameStyle()});
    }
    return rows;
}

} // namespace

class TestProgressMinion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startOfATotalResetsTheItemBar();
    void startOfAnItemSetsBothBars();
    void valuesMoveTheBars();
    void takesTheLow32Bits();
    void resetLeavesBothBarsIdle();
    void labelsAreReadableOnTheirColour();
    void showsNoTipWithoutSlots();
    void theTotalBarHasNoTip();
    void showsTheTipAtThePointer();
    void showsTwentyCompleteSlotsEachOnItsOwnRow();
    void foldsTwentyOneCompleteSlotsIntoOneRow();
    void showsNoNumbersForAnUnknownSize();
    void showsTheNumbersAndThePlainRatio();
    void listsTheSlotsInOrder();
    void readsNoMarkupInAnActivity();
    void aTipStaysAsItWasBuilt();
    void worksWithoutTheTipsMinion();

private:
    void askForToolTip(HProgressBar* bar);

    std::unique_ptr<QWidget> window;
    HProgressBar* total = nullptr;
    HProgressBar* item = nullptr;
    std::unique_ptr<Minion> minion;
};

void TestProgressMinion::init()
{
    window = std::make_unique<QWidget>();
    window->setAttribute(Qt::WA_AlwaysShowToolTips);
    auto* layout = new QVBoxLayout(window.get());
    item = new HProgressBar;
    total = new HProgressBar;
    layout->addWidget(item);
    layout->addWidget(total);
    window->move(50, 50);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QCoreApplication::processEvents();
    minion = std::make_unique<Minion>(total, item);
}

void TestProgressMinion::cleanup()
{
    delete GeneralTip::it;
    minion.reset();
    window.reset();
}

void TestProgressMinion::askForToolTip(HProgressBar* bar)
{
    const QPoint pos(5, 6);
    QHelpEvent event(QEvent::ToolTip, pos, bar->mapToGlobal(pos));
    QCoreApplication::sendEvent(bar, &event);
}

void TestProgressMinion::startOfATotalResetsTheItemBar()
{
    minion->startItem(QStringLiteral("item"), 0, 10);
    minion->startTotal(QStringLiteral("all"), 1000);
    QCOMPARE(total->maximum(), 1000);
    QCOMPARE(total->value(), 0);
    QVERIFY(total->isEnabled());
    QCOMPARE(total->text(), QStringLiteral("all (0%)"));
    QVERIFY(!item->isEnabled());
    QCOMPARE(item->text(), QString());
}

void TestProgressMinion::startOfAnItemSetsBothBars()
{
    minion->reset();
    minion->startTotal(QStringLiteral("all"), 1000);
    minion->startItem(QStringLiteral("item"), 250, 10);
    QCOMPARE(total->value(), 250);
    QCOMPARE(item->maximum(), 10);
    QCOMPARE(item->value(), 0);
    QVERIFY(item->isEnabled());
    QCOMPARE(item->text(), QStringLiteral("item (0%)"));
}

void TestProgressMinion::valuesMoveTheBars()
{
    minion->startTotal(QStringLiteral("all"), 1000);
    minion->startItem(QStringLiteral("item"), 0, 10);
    minion->setItemValue(300, 5);
    QCOMPARE(total->value(), 300);
    QCOMPARE(item->value(), 5);
    minion->changeItemActs(200);
    QCOMPARE(total->value(), 200);
    minion->setTotalValue(400);
    QCOMPARE(total->value(), 400);
    minion->endItemActs(1000);
    QCOMPARE(total->value(), 1000);
    minion->changeItemActivity(QStringLiteral("other"));
    QCOMPARE(item->text(), QStringLiteral("other (50%)"));
    QCOMPARE(total->text(), QStringLiteral("all (100%)"));
}

void TestProgressMinion::takesTheLow32Bits()
{
    minion->startTotal(QString(), (Steps(1) << 32) + 500);
    QCOMPARE(total->maximum(), 500);
    minion->setTotalValue((Steps(7) << 32) + 20);
    QCOMPARE(total->value(), 20);
}

void TestProgressMinion::resetLeavesBothBarsIdle()
{
    minion->startTotal(QStringLiteral("all"), 1000);
    minion->startItem(QStringLiteral("item"), 0, 10);
    minion->reset();
    for (const HProgressBar* bar : {total, item}) {
        QCOMPARE(bar->minimum(), 0);
        QCOMPARE(bar->maximum(), 1);
        QCOMPARE(bar->text(), QString());
        QVERIFY(!bar->isEnabled());
    }
}

void TestProgressMinion::labelsAreReadableOnTheirColour()
{
    const auto textColour = [](const QColor& colour) {
        const std::unique_ptr<QLabel> label(Minion::makeLabel(QStringLiteral("text"), colour));
        return label->palette().color(QPalette::WindowText);
    };
    QCOMPARE(textColour(QColor(123, 123, 123)), QColor(Qt::white));
    QCOMPARE(textColour(QColor(124, 124, 124)), QColor(Qt::black));

    const std::unique_ptr<QLabel> label(Minion::makeLabel(QStringLiteral("text"), green));
    QCOMPARE(label->text(), QStringLiteral("text"));
    QCOMPARE(label->frameShape(), QFrame::StyledPanel);
    QCOMPARE(label->frameShadow(), QFrame::Plain);
    QVERIFY(label->autoFillBackground());
    QCOMPARE(label->palette().color(QPalette::Window), green);
}

void TestProgressMinion::showsNoTipWithoutSlots()
{
    askForToolTip(item);
    QVERIFY(!GeneralTip::it);

    minion->updateThreadsState(ThreadsState(2));
    minion->updateThreadsState(ThreadsState());
    askForToolTip(item);
    QVERIFY(!GeneralTip::it);
}

void TestProgressMinion::theTotalBarHasNoTip()
{
    minion->updateThreadsState(ThreadsState(2));
    askForToolTip(total);
    QVERIFY(!GeneralTip::it);
}

void TestProgressMinion::showsTheTipAtThePointer()
{
    minion->updateThreadsState(ThreadsState(2));
    askForToolTip(item);
    QVERIFY(GeneralTip::it);
    QVERIFY(GeneralTip::it->isVisible());
    QCOMPARE(GeneralTip::it->pos(), item->mapToGlobal(QPoint(5, 6)) + QPoint(2, 16));
    QCOMPARE(GeneralTip::it->layout()->contentsMargins(), QMargins(4, 4, 4, 4));
    const QList<Row> expected{
        {QStringLiteral("2 downloads"), QStringLiteral("Not Started Yet"), orange, madeFrame}};
    QCOMPARE(rowsOf(GeneralTip::it), expected);
}

void TestProgressMinion::showsTwentyCompleteSlotsEachOnItsOwnRow()
{
    minion->updateThreadsState(completeSlots(20));
    askForToolTip(item);
    const QList<Row> rows = rowsOf(GeneralTip::it);
    QCOMPARE(rows.size(), 20);
    for (int i = 0; i < rows.size(); ++i) {
        const Row expected{QStringLiteral("file %1").arg(i), QStringLiteral("Complete"), green,
                           QFrame::Box};
        QCOMPARE(rows.at(i), expected);
    }
}

void TestProgressMinion::foldsTwentyOneCompleteSlotsIntoOneRow()
{
    minion->updateThreadsState(completeSlots(21));
    askForToolTip(item);
    const QList<Row> expected{
        {QStringLiteral("21 downloads"), QStringLiteral("Complete"), green, madeFrame}};
    QCOMPARE(rowsOf(GeneralTip::it), expected);
}

void TestProgressMinion::showsNoNumbersForAnUnknownSize()
{
    ThreadsState state(1);
    state[0] = ThreadState{QStringLiteral("file"), 12345, 1, ThreadState::InProgress};
    minion->updateThreadsState(state);
    askForToolTip(item);
    const QList<Row> expected{
        {QStringLiteral("file"), QStringLiteral("In Progress"), yellow, madeFrame}};
    QCOMPARE(rowsOf(GeneralTip::it), expected);
}

void TestProgressMinion::showsTheNumbersAndThePlainRatio()
{
    ThreadsState state(2);
    state[0] = ThreadState{QStringLiteral("half"), 50, 100, ThreadState::InProgress};
    state[1] = ThreadState{QStringLiteral("third"), 1, 3, ThreadState::InProgress};
    minion->updateThreadsState(state);
    askForToolTip(item);
    const QList<Row> expected{
        {QStringLiteral("half"), QStringLiteral("50 / 100 (0.5%%)"), yellow, madeFrame},
        {QStringLiteral("third"), QStringLiteral("1 / 3 (0.333333%%)"), yellow, madeFrame}};
    QCOMPARE(rowsOf(GeneralTip::it), expected);
}

void TestProgressMinion::listsTheSlotsInOrder()
{
    ThreadsState state(5);
    state[0] = ThreadState{QStringLiteral("a"), 0, 10, ThreadState::Retrying};
    state[2] = ThreadState{QStringLiteral("c"), 10, 10, ThreadState::Complete};
    state[3] = ThreadState{QStringLiteral("d"), 0, 1, ThreadState::InProgress};
    minion->updateThreadsState(state);
    askForToolTip(item);
    const QList<Row> expected{
        {QStringLiteral("a"), QStringLiteral("Retrying"), orange, QFrame::Box},
        {QStringLiteral("c"), QStringLiteral("Complete"), green, QFrame::Box},
        {QStringLiteral("d"), QStringLiteral("In Progress"), yellow, madeFrame},
        {QStringLiteral("2 downloads"), QStringLiteral("Not Started Yet"), orange, madeFrame}};
    QCOMPARE(rowsOf(GeneralTip::it), expected);
}

void TestProgressMinion::readsNoMarkupInAnActivity()
{
    ThreadsState state(1);
    state[0] = ThreadState{QStringLiteral("<b>x</b>"), 0, 1, ThreadState::InProgress};
    minion->updateThreadsState(state);
    askForToolTip(item);
    const auto* layout = qobject_cast<QGridLayout*>(GeneralTip::it->layout());
    const auto* label = qobject_cast<QLabel*>(layout->itemAtPosition(0, 0)->widget());
    QCOMPARE(label->textFormat(), Qt::PlainText);
}

void TestProgressMinion::aTipStaysAsItWasBuilt()
{
    minion->updateThreadsState(ThreadsState(2));
    askForToolTip(item);
    const GeneralTip* tip = GeneralTip::it;
    minion->updateThreadsState(ThreadsState());
    QCOMPARE(GeneralTip::it, tip);
    QVERIFY(tip->isVisible());
    QCOMPARE(rowsOf(tip).size(), 1);
}

void TestProgressMinion::worksWithoutTheTipsMinion()
{
    minion->updateThreadsState(completeSlots(3));
    askForToolTip(item);
    minion.reset();
    QCoreApplication::processEvents();
    QVERIFY(GeneralTip::it->isVisible());
    QCOMPARE(rowsOf(GeneralTip::it).size(), 3);
    askForToolTip(item); // nobody listens any more
    QCOMPARE(rowsOf(GeneralTip::it).size(), 3);
}

QTEST_MAIN(TestProgressMinion)
#include "tst_ProgressMinion.moc"
