// SPDX-License-Identifier: GPL-2.0-or-later
#include "WorkRunner.h"

#include "engine/ScrollableConfirmDialog.h"
#include "engine/ScrollableErrorDialog.h"
#include "engine/YumIODialogs.h"
#include "support/DialogDriver.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

namespace
{

QPushButton* button(QWidget* window, const QString& label)
{
    for (QPushButton* candidate : window->findChildren<QPushButton*>()) {
        if (candidate->text() == label)
            return candidate;
    }
    return nullptr;
}

QString veryLongText()
{
    QStringList lines;
    for (int line = 0; line < 3000; ++line)
        lines.append(
            QStringLiteral("package-%1-1.0-1.x86_64  of a listing that has no end").arg(line));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

class TestYumIODialogs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void confirmGivesOneForTheFirstButton();
    void confirmGivesNoughtForAnythingElse();
    void messagesGiveTheIndexOfTheButton();
    void emptyLabelLeavesAButtonOut();
    void escapeMeansTheEscapeButton();
    void defaultButtonIsSet();
    void onTheGuiThreadNoLoopWaits();
    void onAWorkThreadTheCallerWaits();
    void oneAnswerIsNeverTakenForTheNext();
    void longTextScrollsWithTheButtonsInView_data();
    void longTextScrollsWithTheButtonsInView();
    void shortTextNeedsNoScrollBar();
    void lineOfMostOfTheScreenIsSeenWhole();
    void textIsPlainAndCanBeSelected();
    void userScopeRestoresWhatWasThere();
    void parentMayGoFirst();

private:
    QWidget parent;
};

void TestYumIODialogs::confirmGivesOneForTheFirstButton()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    driver.expect(QStringLiteral("Apply"))
        .text(QStringLiteral("Install 3 packages"))
        .act([&](QWidget* window) {
            QVERIFY(qobject_cast<ScrollableConfirmDialog*>(window));
            QCOMPARE(window->parentWidget(), &parent);
            QVERIFY(window->isModal());
        })
        .press(QStringLiteral("Yes"));
    QCOMPARE(dialogs.confirm(QStringLiteral("Apply"), QStringLiteral("Install 3 packages"),
                             QStringLiteral("Yes"), QStringLiteral("No")),
             1);
    QCOMPARE(driver.driven(), 1);
}

void TestYumIODialogs::confirmGivesNoughtForAnythingElse()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    const auto ask = [&] {
        return dialogs.confirm(QStringLiteral("Query"), QStringLiteral("Go on?"),
                               QStringLiteral("Yes"), QStringLiteral("No"));
    };
    driver.expect(QStringLiteral("Query")).press(QStringLiteral("No"));
    QCOMPARE(ask(), 0);
    driver.expect(QStringLiteral("Query")).pressKey(Qt::Key_Escape);
    QCOMPARE(ask(), 0);
    driver.expect(QStringLiteral("Query")).act([](QWidget* window) { window->close(); }).leave();
    QCOMPARE(ask(), 0);
    QCOMPARE(driver.driven(), 3);
}

void TestYumIODialogs::messagesGiveTheIndexOfTheButton()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    const QStringList labels = {QStringLiteral("Stop"), QStringLiteral("Skip"),
                                QStringLiteral("All")};
    for (int index = 0; index < 3; ++index) {
        driver.expect(QStringLiteral("T")).text(QStringLiteral("x")).press(labels.at(index));
        QCOMPARE(dialogs.critical(QStringLiteral("T"), QStringLiteral("x"), labels[0], labels[1],
                                  labels[2], 0, 0),
                 index);
        driver.expect(QStringLiteral("T")).text(QStringLiteral("x")).press(labels.at(index));
        QCOMPARE(dialogs.warning(QStringLiteral("T"), QStringLiteral("x"), labels[0], labels[1],
                                 labels[2], 0, 0),
                 index);
    }
    QCOMPARE(driver.driven(), 6);
}

void TestYumIODialogs::emptyLabelLeavesAButtonOut()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    driver.expect(QStringLiteral("T"))
        .act([](QWidget* box) { QCOMPARE(box->findChildren<QPushButton*>().size(), 2); })
        .press(QStringLiteral("b"));
    QCOMPARE(dialogs.warning(QStringLiteral("T"), QStringLiteral("x"), QStringLiteral("a"),
                             QStringLiteral("b"), QString(), 0, -1),
             1);
    driver.expect(QStringLiteral("T"))
        .act([](QWidget* box) { QCOMPARE(box->findChildren<QPushButton*>().size(), 1); })
        .press(QStringLiteral("OK"));
    QCOMPARE(dialogs.critical(QStringLiteral("T"), QStringLiteral("x"), QString(), QString(),
                              QString(), 0, -1),
             0);
    QCOMPARE(driver.driven(), 2);
}

void TestYumIODialogs::escapeMeansTheEscapeButton()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    driver.expect(QStringLiteral("T")).pressKey(Qt::Key_Escape);
    QCOMPARE(dialogs.critical(QStringLiteral("T"), QStringLiteral("x"), QStringLiteral("a"),
                              QStringLiteral("b"), QStringLiteral("c"), 0, 2),
             2);
    QCOMPARE(driver.driven(), 1);
}

void TestYumIODialogs::defaultButtonIsSet()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    driver.expect(QStringLiteral("T"))
        .act([](QWidget* box) {
            QCOMPARE(qobject_cast<QMessageBox*>(box)->defaultButton(),
                     button(box, QStringLiteral("b")));
        })
        .press(QStringLiteral("a"));
    QCOMPARE(dialogs.critical(QStringLiteral("T"), QStringLiteral("x"), QStringLiteral("a"),
                              QStringLiteral("b"), QString(), 1, 0),
             0);
}

void TestYumIODialogs::onTheGuiThreadNoLoopWaits()
{
    YumIODialogs dialogs(&parent);
    DialogDriver driver;
    // The answer is there when the dialog's own loop has ended; a waiting loop would be a second
    // one, in which what is queued now would be delivered.
    bool delivered = false;
    driver.expect(QStringLiteral("T")).press(QStringLiteral("Close"));
    const auto connection = connect(&dialogs, &YumIODialogs::scrollableSig, this, [&] {
        // Connected behind the minion: runs when the dialog is gone, still inside the emit.
        QMetaObject::invokeMethod(
            this, [&] { delivered = true; }, Qt::QueuedConnection);
    });
    dialogs.scrollable(QStringLiteral("T"), QStringLiteral("x"));
    disconnect(connection);
    QCOMPARE(driver.driven(), 1);
    QVERIFY(!delivered);
    QTRY_VERIFY(delivered);
}

void TestYumIODialogs::onAWorkThreadTheCallerWaits()
{
    DialogDriver driver;
    QThread* shownOn = nullptr;
    driver.expect(QStringLiteral("Apply"))
        .act([&](QWidget*) { shownOn = QThread::currentThread(); })
        .press(QStringLiteral("OK"));
    int answer = -1;
    WorkRunner worker([&] {
        YumIODialogs dialogs(&parent);
        answer = dialogs.confirm(QStringLiteral("Apply"), QStringLiteral("x"), QStringLiteral("OK"),
                                 QStringLiteral("Cancel"));
    });
    worker.runToEnd();
    QCOMPARE(answer, 1);
    QCOMPARE(shownOn, thread());
}

void TestYumIODialogs::oneAnswerIsNeverTakenForTheNext()
{
    DialogDriver driver;
    driver.expect(QStringLiteral("1")).press(QStringLiteral("Yes"));
    driver.expect(QStringLiteral("2")).press(QStringLiteral("No"));
    driver.expect(QStringLiteral("3")).press(QStringLiteral("c"));
    driver.expect(QStringLiteral("4")).press(QStringLiteral("Yes"));
    QList<int> answers;
    WorkRunner worker([&] {
        YumIODialogs dialogs(&parent);
        const QString yes = QStringLiteral("Yes");
        const QString no = QStringLiteral("No");
        answers << dialogs.confirm(QStringLiteral("1"), QStringLiteral("x"), yes, no);
        answers << dialogs.confirm(QStringLiteral("2"), QStringLiteral("x"), yes, no);
        answers << dialogs.critical(QStringLiteral("3"), QStringLiteral("x"), QStringLiteral("a"),
                                    QStringLiteral("b"), QStringLiteral("c"), 0, 0);
        answers << dialogs.confirm(QStringLiteral("4"), QStringLiteral("x"), yes, no);
    });
    worker.runToEnd();
    QCOMPARE(answers, QList<int>({1, 0, 2, 1}));
    QCOMPARE(driver.driven(), 4);
}

void TestYumIODialogs::longTextScrollsWithTheButtonsInView_data()
{
    QTest::addColumn<bool>("confirm");
    QTest::newRow("confirm") << true;
    QTest::newRow("error") << false;
}

void TestYumIODialogs::longTextScrollsWithTheButtonsInView()
{
    QFETCH(bool, confirm);
    std::unique_ptr<QDialog> dialog;
    if (confirm)
        dialog = std::make_unique<ScrollableConfirmDialog>(veryLongText(), QStringLiteral("OK"),
                                                           QStringLiteral("Cancel"), nullptr);
    else
        dialog = std::make_unique<ScrollableErrorDialog>(veryLongText(), nullptr);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QVERIFY(dialog->height() <= dialog->screen()->geometry().height());
    auto* area = dialog->findChild<QScrollArea*>();
    QVERIFY(area->verticalScrollBar()->maximum() > 0);
    for (QPushButton* shown : dialog->findChildren<QPushButton*>())
        QVERIFY(
            dialog->rect().contains(QRect(shown->mapTo(dialog.get(), QPoint()), shown->size())));
    QCOMPARE(dialog->findChildren<QPushButton*>().size(), confirm ? 2 : 1);
}

void TestYumIODialogs::shortTextNeedsNoScrollBar()
{
    ScrollableConfirmDialog dialog(QStringLiteral("Really?\nSure?"), QStringLiteral("Yes"),
                                   QStringLiteral("No"), nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* area = dialog.findChild<QScrollArea*>();
    QVERIFY(!area->verticalScrollBar()->isVisible());
    QVERIFY(!area->horizontalScrollBar()->isVisible());
}

void TestYumIODialogs::lineOfMostOfTheScreenIsSeenWhole()
{
    const int width = QGuiApplication::primaryScreen()->geometry().width() * 3 / 4;
    QString text;
    while (QApplication::fontMetrics().horizontalAdvance(text) < width)
        text += QLatin1Char('n');
    ScrollableErrorDialog dialog(text, nullptr);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto* area = dialog.findChild<QScrollArea*>();
    QVERIFY(!area->verticalScrollBar()->isVisible());
    QVERIFY(!area->horizontalScrollBar()->isVisible());
}

void TestYumIODialogs::textIsPlainAndCanBeSelected()
{
    ScrollableErrorDialog dialog(QStringLiteral("<b>x</b> <urlopen>"), nullptr);
    auto* label = dialog.findChild<QScrollArea*>()->findChild<QLabel*>();
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QVERIFY(label->textInteractionFlags() & Qt::TextSelectableByMouse);
    QVERIFY(!label->wordWrap());
    // Its minimum keeps each line in one piece.
    QVERIFY(label->width() >= label->fontMetrics().horizontalAdvance(label->text()));
}

void TestYumIODialogs::userScopeRestoresWhatWasThere()
{
    YumIODialogs own(&parent);
    YumIODialogs* slot = &own;
    {
        YumIODialogsUser user(slot, &parent);
        QVERIFY(slot && slot != &own);
    }
    QCOMPARE(slot, &own);
}

void TestYumIODialogs::parentMayGoFirst()
{
    auto temporary = std::make_unique<QWidget>();
    YumIODialogs dialogs(temporary.get());
    temporary.reset();
    DialogDriver driver;
    driver.expect(QStringLiteral("T")).press(QStringLiteral("OK"));
    dialogs.critical(QStringLiteral("T"), QStringLiteral("x"), QString(), QString(), QString(), 0,
                     -1);
    QCOMPARE(driver.driven(), 1);
}

QTEST_MAIN(TestYumIODialogs)
#include "tst_YumIODialogs.moc"
