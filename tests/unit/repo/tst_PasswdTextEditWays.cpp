// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdWaysTest.h"

#include <QFontInfo>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>

/// The other ways into a password field of several lines and out of it.
class TestPasswdTextEditWays : public PasswdWaysTest
{
    Q_OBJECT

private:
    std::unique_ptr<PasswdField> makeField(QWidget* parent) const override
    {
        return std::make_unique<PasswdTextField>(parent);
    }
    PasswdTextEdit* edit() const { return qobject_cast<PasswdTextEdit*>(field->widget()); }
    /// Scrolls to the end of the text and clicks into the middle of it.
    void clickIntoTheScrolledText()
    {
        key(Qt::Key_End, Qt::ControlModifier);
        edit()->grab(); // scrolls
        QVERIFY(edit()->verticalScrollBar()->value() > 0);
        QTest::mouseClick(field->canvas(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 30));
    }

private Q_SLOTS:
    void pastesRichTextPlain();
    void typesWhereTheMouseHasClickedInAScrolledText();
    void staysScrolledWhileTyping();
    void masksWhatAnInputMethodIsComposing();
    void followsALineThatAProgramAppends();
};

void TestPasswdTextEditWays::pastesRichTextPlain()
{
    auto* data = new QMimeData;
    data->setHtml(QStringLiteral("<h1>G<b>r</b>eat</h1>"));
    data->setText(QStringLiteral("BIG"));
    QApplication::clipboard()->setMimeData(data);
    goInto(3);
    key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hidBIGden"));
    QCOMPARE(field->shown(), shown(9));
    call("paste");
    QCOMPARE(field->real(), real("hidBIGBIGden"));
    QCOMPARE(field->shown(), shown(12));
    QVERIFY(QFontInfo(edit()->currentFont()).fixedPitch());
}

void TestPasswdTextEditWays::typesWhereTheMouseHasClickedInAScrolledText()
{
    const QString text = QStringLiteral("http://host/x\n").repeated(50) + real("hidden");
    field->setReal(text);
    clickIntoTheScrolledText();
    const int cursor = field->position();
    QVERIFY(cursor > 100);
    type("Z");
    QCOMPARE(field->real(), QString(text).insert(cursor, QLatin1Char('Z')));
}

void TestPasswdTextEditWays::staysScrolledWhileTyping()
{
    field->setReal(QStringLiteral("http://host/x\n").repeated(50));
    clickIntoTheScrolledText();
    const int scrolled = edit()->verticalScrollBar()->value();
    type("Z");
    edit()->grab();
    QCOMPARE(edit()->verticalScrollBar()->value(), scrolled);
}

void TestPasswdTextEditWays::masksWhatAnInputMethodIsComposing()
{
    const auto composed = [this] {
        return edit()->document()->findBlock(start()).layout()->preeditAreaText();
    };
    goInto(2);
    QInputMethodEvent compose(QStringLiteral("SEC"), {});
    QApplication::sendEvent(edit(), &compose);
    QCOMPARE(composed(), mask(3));
    QInputMethodEvent end(QString(), {});
    QApplication::sendEvent(edit(), &end);
    QCOMPARE(field->real(), real("hidden"));
    // Outside of the password it shows.
    key(Qt::Key_Home);
    QApplication::sendEvent(edit(), &compose);
    QCOMPARE(composed(), QStringLiteral("SEC"));
}

void TestPasswdTextEditWays::followsALineThatAProgramAppends()
{
    other->setFocus(); // with the focus, events would follow it
    edit()->append(QStringLiteral("http://host/"));
    QCOMPARE(field->real(), real("hidden") + "\nhttp://host/");
    QCOMPARE(field->shown(), shown(6) + "\nhttp://host/");
}

QTEST_MAIN(TestPasswdTextEditWays)
#include "tst_PasswdTextEditWays.moc"
