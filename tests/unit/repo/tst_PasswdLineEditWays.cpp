// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdLineEditTest.h"

/// The other ways into a password field and out of it: clipboard, mouse, input methods, slots and
/// assistive tools.
class TestPasswdLineEditWays : public PasswdLineEditTest
{
    Q_OBJECT

private Q_SLOTS:
    void pastesIntoThePassword();
    void copiesTheMaskOnly_data();
    void copiesTheMaskOnly();
    void leavesTheMaskInTheSelectionOfTheMouse();
    void pastesTheSelectionWhereTheMouseIs();
    void typesWhereTheMouseHasClickedInAScrolledText();
    void replacesWhatTheMouseHasSelected();
    void replacesWhatADoubleClickHasSelected();
    void takesTheTextOfAnInputMethod();
    void masksWhatAnInputMethodIsComposing();
    void followsSlotsOfTheBaseClass();
    void followsAnAssistiveTool();
    void givesAssistiveToolsTheMask();
    void keepsTheRealTextFromAssistiveTools();
};

void TestPasswdLineEditWays::pastesIntoThePassword()
{
    QApplication::clipboard()->setText(QStringLiteral("PASTED"));
    goInto(3);
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(edit->realText(), before + QStringLiteral("hidPASTEDden") + behind);
    QCOMPARE(edit->text(), shown(12));
    QCOMPARE(edit->cursorPosition(), before.size() + 9);
    edit->paste();
    QCOMPARE(edit->realText(), before + QStringLiteral("hidPASTEDPASTEDden") + behind);
    QCOMPARE(edit->text(), shown(18));
}

void TestPasswdLineEditWays::copiesTheMaskOnly_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("copy") << int(Qt::Key_C) << int(Qt::ControlModifier);
    QTest::newRow("copy with Insert") << int(Qt::Key_Insert) << int(Qt::ControlModifier);
    QTest::newRow("cut") << int(Qt::Key_X) << int(Qt::ControlModifier);
    QTest::newRow("cut with Delete") << int(Qt::Key_Delete) << int(Qt::ShiftModifier);
}

void TestPasswdLineEditWays::copiesTheMaskOnly()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(QApplication::clipboard()->text(), shown(6));
}

void TestPasswdLineEditWays::leavesTheMaskInTheSelectionOfTheMouse()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection())
        QSKIP("this platform has no selection of the mouse");
    clipboard->setText(QStringLiteral("old"), QClipboard::Selection);
    const QPoint from = place(before.size() - 2);
    const QPoint to = place(before.size() + 6);
    sweep(edit, from, to);
    QCOMPARE(clipboard->text(QClipboard::Selection), QStringLiteral("c=") + mask(6));
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(!clipboard->text(QClipboard::Selection).contains(QStringLiteral("hidden")));
}

void TestPasswdLineEditWays::pastesTheSelectionWhereTheMouseIs()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection())
        QSKIP("this platform has no selection of the mouse");
    clipboard->setText(QStringLiteral("PASTED"), QClipboard::Selection);
    const QPoint where = place(before.size() + 2);
    keys(1, Qt::Key_Home);
    QTest::mouseClick(edit, Qt::MiddleButton, Qt::NoModifier, where);
    QCOMPARE(edit->realText(), before + QStringLiteral("hiPASTEDdden") + behind);
    QCOMPARE(edit->text(), shown(12));
}

void TestPasswdLineEditWays::typesWhereTheMouseHasClickedInAScrolledText()
{
    const QString host = QStringLiteral("http://") + QString(300, QLatin1Char('h'));
    edit->setRealText(host + before + QStringLiteral("hidden") + behind);
    keys(1, Qt::Key_End);
    edit->grab(); // scrolls
    QTest::mouseClick(edit, Qt::LeftButton, Qt::NoModifier, edit->rect().center());
    const int cursor = edit->cursorPosition();
    QVERIFY(cursor > 100);
    QTest::keyClicks(edit, QStringLiteral("Z"));
    QString expected = host + before + QStringLiteral("hidden") + behind;
    QCOMPARE(edit->realText(), expected.insert(cursor, QLatin1Char('Z')));
}

void TestPasswdLineEditWays::replacesWhatTheMouseHasSelected()
{
    const QPoint from = place(before.size() + 1);
    const QPoint to = place(before.size() + 5);
    sweep(edit, from, to);
    QCOMPARE(edit->selectedText(), mask(4));
    QTest::keyClicks(edit, QStringLiteral("X"));
    QCOMPARE(edit->realText(), before + QStringLiteral("hXn") + behind);
    QCOMPARE(edit->text(), shown(3));
}

void TestPasswdLineEditWays::replacesWhatADoubleClickHasSelected()
{
    edit->setRealText(before + QStringLiteral("a-b.c+d") + behind);
    const QPoint where = place(before.size() + 3);
    QTest::mouseClick(edit, Qt::LeftButton, Qt::NoModifier, where);
    QTest::mouseDClick(edit, Qt::LeftButton, Qt::NoModifier, where);
    const int start = edit->selectionStart();
    const int length = edit->selectedText().size();
    QVERIFY(length > 0);
    QTest::keyClicks(edit, QStringLiteral("X"));
    QString expected = before + QStringLiteral("a-b.c+d") + behind;
    QCOMPARE(edit->realText(), expected.replace(start, length, QStringLiteral("X")));
}

void TestPasswdLineEditWays::takesTheTextOfAnInputMethod()
{
    goInto(2);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("\u00e9X"));
    QApplication::sendEvent(edit, &commit);
    QCOMPARE(edit->realText(), before + QStringLiteral("hi\u00e9Xdden") + behind);
    QCOMPARE(edit->text(), shown(8));
    QCOMPARE(edit->cursorPosition(), before.size() + 4);
}

void TestPasswdLineEditWays::masksWhatAnInputMethodIsComposing()
{
    const auto compose = [this](const QString& text) {
        QInputMethodEvent event(text, {});
        QApplication::sendEvent(edit, &event);
        return edit->grab().toImage();
    };
    const int flash = QApplication::cursorFlashTime();
    QApplication::setCursorFlashTime(0);
    goInto(2);
    const QImage none = compose(QString());
    const QImage some = compose(QStringLiteral("SEC"));
    const QImage others = compose(QStringLiteral("ill"));
    compose(QString());
    QCOMPARE(edit->realText(), before + QStringLiteral("hidden") + behind);
    // Outside of the password it shows.
    keys(1, Qt::Key_Home);
    const QImage plain = compose(QStringLiteral("SEC"));
    const QImage otherPlain = compose(QStringLiteral("ill"));
    QApplication::setCursorFlashTime(flash);
    QVERIFY(some != none);
    QCOMPARE(some, others);
    QVERIFY(plain != otherPlain);
}

void TestPasswdLineEditWays::followsSlotsOfTheBaseClass()
{
    other->setFocus(); // with the focus, events would follow each of them
    edit->setCursorPosition(before.size() + 3);
    edit->insert(QStringLiteral("X"));
    QCOMPARE(edit->realText(), before + QStringLiteral("hidXden") + behind);
    QCOMPARE(edit->text(), shown(7));
    edit->backspace();
    edit->backspace();
    QCOMPARE(edit->realText(), before + QStringLiteral("hiden") + behind);
    edit->clear();
    QCOMPARE(edit->realText(), QString());
}

void TestPasswdLineEditWays::followsAnAssistiveTool()
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(edit);
    QVERIFY(interface->editableTextInterface());
    interface->editableTextInterface()->insertText(7, QStringLiteral("my"));
    QCOMPARE(edit->realText(), QStringLiteral("http://myhost/rhel/a=b/c=hidden/x"));
    QCOMPARE(edit->text(), QStringLiteral("http://myhost/rhel/a=b/c=") + mask(6) + behind);
}

void TestPasswdLineEditWays::givesAssistiveToolsTheMask()
{
    QCOMPARE(accessibleText(edit), shown(6) + QLatin1Char('|') + shown(6));
    goInto(1);
    QTest::keyClicks(edit, QStringLiteral("X"));
    QCOMPARE(accessibleText(edit), shown(7) + QLatin1Char('|') + shown(7));
    QVERIFY(edit->inputMethodHints() & Qt::ImhSensitiveData);
    QCOMPARE(edit->inputMethodQuery(Qt::ImSurroundingText).toString(), shown(7));
}

void TestPasswdLineEditWays::keepsTheRealTextFromAssistiveTools()
{
    QVERIFY(isKeptFromAssistiveTools(QStringLiteral("hidden")));
}

QTEST_MAIN(TestPasswdLineEditWays)
#include "tst_PasswdLineEditWays.moc"
