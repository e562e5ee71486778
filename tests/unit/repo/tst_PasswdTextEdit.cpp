// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdKeysTest.h"

#include <QFontInfo>
#include <QScrollBar>
#include <QTextBlock>

/// What a password field of several lines shows, and the keys that edit it.
class TestPasswdTextEdit : public PasswdKeysTest
{
    Q_OBJECT

private:
    std::unique_ptr<PasswdField> makeField(QWidget* parent) const override
    {
        return std::make_unique<PasswdTextField>(parent);
    }
    PasswdTextEdit* edit() const { return qobject_cast<PasswdTextEdit*>(field->widget()); }

private Q_SLOTS:
    void masksBothPasswordsOfTwoLines();
    void masksEveryMatchAndEndsOnEmptyOnes();
    void typesInAFixedFont();
    void isSizedInLettersAndLines();
    void wrapsAnywhere();
    void replacesASelectionOverLines();
    void removesALetterWithTheKeyOfX11();
    void removesAsMuchOfAWrappedLineAsIsSeen();
    void splitsALine();
    void undoPutsTheCursorWhereItUndid();
};

void TestPasswdTextEdit::masksBothPasswordsOfTwoLines()
{
    QCOMPARE(field->shown(), PasswdTextField::lines(mask(6), mask(6)) + field->tail());
    QCOMPARE(field->real(), PasswdTextField::lines("covert", "hidden") + field->tail());
}

void TestPasswdTextEdit::masksEveryMatchAndEndsOnEmptyOnes()
{
    PasswdTextEdit text(QRegularExpression(QStringLiteral("pw=(\\w+)|x*")), nullptr);
    text.setRealPlainText(QStringLiteral("xx pw=a b pw=cd"));
    QCOMPARE(text.toPlainText(), QStringLiteral("xx pw=%1 b pw=%2").arg(mask(1), mask(2)));
}

void TestPasswdTextEdit::typesInAFixedFont()
{
    QVERIFY(QFontInfo(edit()->currentFont()).fixedPitch());
    goInto(3);
    type("X");
    QVERIFY(QFontInfo(edit()->currentFont()).fixedPitch());
}

void TestPasswdTextEdit::isSizedInLettersAndLines()
{
    const PasswdTextEdit text(Repo::Vantry::urlsRegExp(), 20, 3, nullptr);
    const QFontMetrics metrics = text.fontMetrics();
    QCOMPARE(text.sizeHint(), QSize(2 * text.frameWidth() + 20 * metrics.horizontalAdvance('n'),
                                    2 * text.frameWidth() + 3 * metrics.lineSpacing()));
}

void TestPasswdTextEdit::wrapsAnywhere()
{
    field->setReal(QString(500, QLatin1Char('h')));
    QTRY_VERIFY(edit()->document()->firstBlock().layout()->lineCount() > 1);
    QCOMPARE(edit()->horizontalScrollBar()->maximum(), 0);
}

void TestPasswdTextEdit::replacesASelectionOverLines()
{
    const QString first = PasswdTextField::lines("cov", "").section("&path=", 0, 0);
    goInto(2);
    keys(start() + 2 - first.size(), Qt::Key_Left, Qt::ShiftModifier);
    type("XY");
    QCOMPARE(field->real(), first + "XYdden" + field->tail());
    QCOMPARE(field->position(), first.size() + 2);
    // One that is complete again hides what it has.
    type("&path=");
    QCOMPARE(field->shown(), first.chopped(3) + mask(5) + "&path=dden" + field->tail());
}

void TestPasswdTextEdit::removesALetterWithTheKeyOfX11()
{
    if (!QKeySequence::keyBindings(QKeySequence::Delete)
             .contains(QKeySequence(Qt::CTRL + Qt::Key_D)))
        QSKIP("this platform has no such key");
    goInto(3);
    key(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hiden"));
    QCOMPARE(field->position(), start() + 3);
}

void TestPasswdTextEdit::removesAsMuchOfAWrappedLineAsIsSeen()
{
    const QString host = QStringLiteral("http://") + QString(200, QLatin1Char('h'));
    field->setReal(host + real("hidden"));
    key(Qt::Key_Home, Qt::ControlModifier);
    key(Qt::Key_End, Qt::ShiftModifier);
    const int seen = field->position();
    QVERIFY(seen > 10 && seen < host.size());
    key(Qt::Key_Delete);
    QCOMPARE(field->real(), host.mid(seen) + real("hidden"));
    QCOMPARE(field->shown(), host.mid(seen) + shown(6));
}

void TestPasswdTextEdit::splitsALine()
{
    goInto(3);
    key(Qt::Key_Return);
    QCOMPARE(field->real(), real("hid\nden"));
    QCOMPARE(field->shown(), field->shownHead() + "hid\nden" + field->tail());
    key(Qt::Key_Backspace);
    QCOMPARE(field->shown(), shown(6));
    key(Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(field->real(), real("hid\nden"));
    QCOMPARE(field->position(), start() + 4);
}

void TestPasswdTextEdit::undoPutsTheCursorWhereItUndid()
{
    goInto(1);
    keys(4, Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hn"));
    key(Qt::Key_Home, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(field->shown(), shown(6));
    QCOMPARE(field->position(), start() + 5);
}

QTEST_MAIN(TestPasswdTextEdit)
#include "tst_PasswdTextEdit.moc"
