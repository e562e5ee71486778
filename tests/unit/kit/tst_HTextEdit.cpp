// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HTextEdit.h"
#include "kit/ScreenLimit.h"
#include "kit/TextDialog.h"

#include <QFocusEvent>
#include <QFontMetrics>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QVBoxLayout>

class TestHTextEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isSizedInLettersAndLines()
    {
        HTextEdit edit(20, 5, nullptr);
        const QFontMetrics metrics = edit.fontMetrics();
        QCOMPARE(edit.sizeHint(), QSize(2 * edit.frameWidth() + 20 * metrics.horizontalAdvance('n'),
                                        2 * edit.frameWidth() + 5 * metrics.lineSpacing()));
    }

    void leavesADirectionThatIsNotGivenToTheBase()
    {
        HTextEdit plain(nullptr);
        const QSize base = plain.QTextEdit::sizeHint();
        QCOMPARE(plain.sizeHint(), base);
        QCOMPARE(HTextEdit(-1, 5, nullptr).sizeHint().width(), base.width());
        QCOMPARE(HTextEdit(20, -1, nullptr).sizeHint().height(), base.height());
    }

    void staysWithinNineTenthsOfTheScreen()
    {
        HTextEdit edit(5000, 5000, nullptr);
        QCOMPARE(edit.sizeHint(), ScreenLimit::of(&edit));
    }

    void tellsWhenTheFocusGoesElsewhere()
    {
        QWidget window;
        auto* box = new QVBoxLayout(&window);
        auto* edit = new HTextEdit(&window);
        auto* other = new QLineEdit(&window);
        box->addWidget(edit);
        box->addWidget(other);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        edit->setFocus();
        QSignalSpy finished(edit, &HTextEdit::editingFinished);
        other->setFocus();
        QCOMPARE(finished.count(), 1);
    }

    void isNotFinishedByAPopupOfItsOwn()
    {
        HTextEdit edit(nullptr);
        edit.show();
        QVERIFY(QTest::qWaitForWindowActive(&edit));
        QSignalSpy finished(&edit, &HTextEdit::editingFinished);

        QFocusEvent popup(QEvent::FocusOut, Qt::PopupFocusReason);
        edit.focusOutEvent(&popup);
        QCOMPARE(finished.count(), 0);

        QFocusEvent other(QEvent::FocusOut, Qt::OtherFocusReason);
        for (QWidget* parent : {static_cast<QWidget*>(&edit), edit.viewport()}) {
            QMenu menu(parent);
            menu.addAction("Copy");
            menu.popup(QPoint(0, 0));
            QCOMPARE(QApplication::activePopupWidget(), &menu);
            finished.clear();
            edit.focusOutEvent(&other);
            QCOMPARE(finished.count(), 0);
        }
        QMenu foreign;
        foreign.addAction("Copy");
        foreign.popup(QPoint(0, 0));
        finished.clear();
        edit.focusOutEvent(&other);
        QCOMPARE(finished.count(), 1);
    }

    void appendsWithoutMargins()
    {
        HTextEdit edit(nullptr);
        edit.append("<h2>roomy</h2>");
        QVERIFY(edit.document()->lastBlock().blockFormat().topMargin() > 0);
        edit.appendCompact("<h2>heading</h2>");
        edit.appendCompact("text");
        QCOMPARE(edit.toPlainText(), QString("roomy\nheading\ntext"));
        QTextBlock block = edit.document()->firstBlock().next();
        for (; block.isValid(); block = block.next()) {
            QCOMPARE(block.blockFormat().topMargin(), 0.0);
            QCOMPARE(block.blockFormat().bottomMargin(), 0.0);
        }
        QVERIFY(edit.document()->firstBlock().blockFormat().topMargin() > 0);
    }

    void aTextDialogScrollsALongTextInsteadOfWrappingIt()
    {
        TextDialog dialog(nullptr);
        auto* edit = dialog.findChild<HTextEdit*>();
        QVERIFY(edit);
        dialog.setText(QString("word ").repeated(2000) + QString("\n<b>line</b>").repeated(500));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QTRY_VERIFY(edit->horizontalScrollBar()->maximum() > edit->viewport()->width());
        QTRY_VERIFY(edit->verticalScrollBar()->maximum() > 0);
        QCOMPARE(edit->document()->firstBlock().layout()->lineCount(), 1);
        QVERIFY(edit->toPlainText().endsWith("<b>line</b>"));
        const QSize limit = ScreenLimit::of(&dialog);
        QVERIFY(dialog.sizeHint().width() <= limit.width());
        QVERIFY(dialog.sizeHint().height() <= limit.height());
    }

    void aTextDialogIsModalAndReadOnlyAndCloses()
    {
        TextDialog dialog(nullptr);
        auto* edit = dialog.findChild<HTextEdit*>();
        QVERIFY(edit->isReadOnly());
        QVERIFY(edit->tabChangesFocus());
        QVERIFY(dialog.testAttribute(Qt::WA_ShowModal));
        dialog.show();
        QVERIFY(dialog.isModal());
        auto* close = dialog.findChild<QPushButton*>();
        QCOMPARE(close->text(), QString("Close"));
        QSignalSpy accepted(&dialog, &QDialog::accepted);
        QTest::mouseClick(close, Qt::LeftButton);
        QCOMPARE(accepted.count(), 1);
        QVERIFY(!dialog.isVisible());
    }
};

QTEST_MAIN(TestHTextEdit)
#include "tst_HTextEdit.moc"
