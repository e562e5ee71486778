// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdTextEditTest.h"

/// The other ways into a password field and out of it: clipboard, mouse, input methods, slots and
/// assistive tools.
class TestPasswdTextEditWays : public PasswdTextEditTest
{
    Q_OBJECT

private Q_SLOTS:
    void pastesIntoThePassword();
    void pastesRichTextPlain();
    void copiesTheMaskOnly_data();
    void copiesTheMaskOnly();
    void leavesTheMaskInTheSelectionOfTheMouse();
    void pastesTheSelectionWhereTheMouseIs();
    void typesWhereTheMouseHasClickedInAScrolledText();
    void staysScrolledWhileTyping();
    void replacesWhatTheMouseHasSelected();
    void replacesWhatADoubleClickHasSelected();
    void takesTheTextOfAnInputMethod();
    void masksWhatAnInputMethodIsComposing();
    void followsSlotsOfTheBaseClass();
    void followsAnAssistiveTool();
    void givesAssistiveToolsTheMask();
    void keepsTheRealTextFromAssistiveTools();
};

void TestPasswdTextEditWays::pastesIntoThePassword()
{
    QApplication::clipboard()->setText(QStringLiteral("PASTED"));
    go(inTwo + 3);
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covPASTEDert"));
    QCOMPARE(edit->toPlainText(), shown(6, 12));
    QCOMPARE(position(), inTwo + 9);
    edit->paste();
    QCOMPARE(edit->realPlainText(), lines("hidden", "covPASTEDPASTEDert"));
    QCOMPARE(edit->toPlainText(), shown(6, 18));
    QCOMPARE(position(), inTwo + 15);
    QApplication::clipboard()->setText(lines("first", "second"));
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Insert, Qt::ShiftModifier);
    QCOMPARE(edit->realPlainText(), lines("first", "second"));
    QCOMPARE(edit->toPlainText(), shown(5, 6));
}

void TestPasswdTextEditWays::pastesRichTextPlain()
{
    auto* data = new QMimeData;
    data->setHtml(QStringLiteral("<h1>G<b>r</b>eat</h1>"));
    data->setText(QStringLiteral("BIG"));
    QApplication::clipboard()->setMimeData(data);
    go(inTwo + 3);
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covBIGert"));
    QCOMPARE(edit->toPlainText(), shown(6, 9));
    QVERIFY(QFontInfo(edit->currentFont()).fixedPitch());
}

void TestPasswdTextEditWays::copiesTheMaskOnly_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("copy") << int(Qt::Key_C) << int(Qt::ControlModifier);
    QTest::newRow("copy with Insert") << int(Qt::Key_Insert) << int(Qt::ControlModifier);
    QTest::newRow("cut") << int(Qt::Key_X) << int(Qt::ControlModifier);
    QTest::newRow("cut with Delete") << int(Qt::Key_Delete) << int(Qt::ShiftModifier);
}

void TestPasswdTextEditWays::copiesTheMaskOnly()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(QApplication::clipboard()->text(), shown(6, 6));
    for (const QString& format : QApplication::clipboard()->mimeData()->formats())
        QVERIFY(!QApplication::clipboard()->mimeData()->data(format).contains("hidden"));
}

void TestPasswdTextEditWays::leavesTheMaskInTheSelectionOfTheMouse()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection())
        QSKIP("this platform has no selection of the mouse");
    clipboard->setText(QStringLiteral("old"), QClipboard::Selection);
    sweep(edit->viewport(), place(inTwo - 2), place(inTwo + 6));
    QCOMPARE(clipboard->text(QClipboard::Selection), QStringLiteral("c=") + mask(6));
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(!clipboard->text(QClipboard::Selection).contains(QStringLiteral("hidden")));
}

void TestPasswdTextEditWays::pastesTheSelectionWhereTheMouseIs()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection())
        QSKIP("this platform has no selection of the mouse");
    clipboard->setText(QStringLiteral("PASTED"), QClipboard::Selection);
    keys(1, Qt::Key_Home, Qt::ControlModifier);
    QTest::mouseClick(edit->viewport(), Qt::MiddleButton, Qt::NoModifier, place(inTwo + 2));
    QCOMPARE(edit->realPlainText(), lines("hidden", "coPASTEDvert"));
    QCOMPARE(edit->toPlainText(), shown(6, 12));
}

void TestPasswdTextEditWays::typesWhereTheMouseHasClickedInAScrolledText()
{
    QString text = QStringLiteral("http://host/x\n").repeated(50) + lines("hidden", "covert");
    edit->setRealPlainText(text);
    keys(1, Qt::Key_End, Qt::ControlModifier);
    edit->grab(); // scrolls
    QVERIFY(edit->verticalScrollBar()->value() > 0);
    QTest::mouseClick(edit->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 30));
    const int cursor = position();
    QVERIFY(cursor > 100);
    QTest::keyClicks(edit, QStringLiteral("Z"));
    QCOMPARE(edit->realPlainText(), text.insert(cursor, QLatin1Char('Z')));
}

void TestPasswdTextEditWays::staysScrolledWhileTyping()
{
    edit->setRealPlainText(QStringLiteral("http://host/x\n").repeated(50));
    keys(1, Qt::Key_End, Qt::ControlModifier);
    edit->grab();
    QTest::mouseClick(edit->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 30));
    const int scrolled = edit->verticalScrollBar()->value();
    QVERIFY(scrolled > 0);
    QTest::keyClicks(edit, QStringLiteral("Z"));
    edit->grab();
    QCOMPARE(edit->verticalScrollBar()->value(), scrolled);
}

void TestPasswdTextEditWays::replacesWhatTheMouseHasSelected()
{
    sweep(edit->viewport(), place(inTwo + 1), place(inTwo + 5));
    QCOMPARE(edit->textCursor().selectedText(), mask(4));
    QTest::keyClicks(edit, QStringLiteral("X"));
    QCOMPARE(edit->realPlainText(), lines("hidden", "cXt"));
    QCOMPARE(edit->toPlainText(), shown(6, 3));
}

void TestPasswdTextEditWays::replacesWhatADoubleClickHasSelected()
{
    edit->setRealPlainText(lines("hidden", "a-b.c+d"));
    QTest::mouseClick(edit->viewport(), Qt::LeftButton, Qt::NoModifier, place(inTwo + 3));
    QTest::mouseDClick(edit->viewport(), Qt::LeftButton, Qt::NoModifier, place(inTwo + 3));
    const int start = edit->textCursor().selectionStart();
    const int length = edit->textCursor().selectionEnd() - start;
    QVERIFY(length > 0);
    QTest::keyClicks(edit, QStringLiteral("X"));
    QString expected = lines("hidden", "a-b.c+d");
    QCOMPARE(edit->realPlainText(), expected.replace(start, length, QStringLiteral("X")));
}

void TestPasswdTextEditWays::takesTheTextOfAnInputMethod()
{
    go(inTwo + 2);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("\u00e9X"));
    QApplication::sendEvent(edit, &commit);
    QCOMPARE(edit->realPlainText(), lines("hidden", QStringLiteral("co\u00e9Xvert")));
    QCOMPARE(edit->toPlainText(), shown(6, 8));
    QCOMPARE(position(), inTwo + 4);
}

void TestPasswdTextEditWays::masksWhatAnInputMethodIsComposing()
{
    go(inTwo + 2);
    QInputMethodEvent compose(QStringLiteral("SEC"), {});
    QApplication::sendEvent(edit, &compose);
    QCOMPARE(edit->document()->findBlock(inTwo).layout()->preeditAreaText(), mask(3));
    QInputMethodEvent end(QString(), {});
    QApplication::sendEvent(edit, &end);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covert"));

    // Outside of the password it shows.
    keys(1, Qt::Key_Home);
    QApplication::sendEvent(edit, &compose);
    QCOMPARE(edit->document()->findBlock(inTwo).layout()->preeditAreaText(), QStringLiteral("SEC"));
}

void TestPasswdTextEditWays::followsSlotsOfTheBaseClass()
{
    go(inTwo + 3);
    other->setFocus(); // with the focus, events would follow each of them
    edit->insertPlainText(QStringLiteral("X"));
    QCOMPARE(edit->realPlainText(), lines("hidden", "covXert"));
    QCOMPARE(edit->toPlainText(), shown(6, 7));
    edit->append(QStringLiteral("http://host/"));
    QCOMPARE(edit->realPlainText(), lines("hidden", "covXert") + QStringLiteral("\nhttp://host/"));
    QCOMPARE(edit->toPlainText(), shown(6, 7) + QStringLiteral("\nhttp://host/"));
    edit->clear();
    QCOMPARE(edit->realPlainText(), QString());
}

void TestPasswdTextEditWays::followsAnAssistiveTool()
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(edit);
    QVERIFY(interface->editableTextInterface());
    interface->editableTextInterface()->insertText(7, QStringLiteral("my"));
    QCOMPARE(edit->realPlainText(), lines("hidden", "covert").insert(7, QStringLiteral("my")));
    QCOMPARE(edit->toPlainText(), shown(6, 6).insert(7, QStringLiteral("my")));
}

void TestPasswdTextEditWays::givesAssistiveToolsTheMask()
{
    QVERIFY(accessibleText(edit).contains(mask(6)));
    for (const char* secret : {"hidden", "covert"})
        QVERIFY(!accessibleText(edit).contains(QLatin1String(secret)));
    go(inTwo + 1);
    QTest::keyClicks(edit, QStringLiteral("X"));
    QVERIFY(accessibleText(edit).contains(mask(7)));
    QVERIFY(!accessibleText(edit).contains(QLatin1Char('X')));
    QVERIFY(edit->inputMethodHints() & Qt::ImhSensitiveData);
    QCOMPARE(edit->inputMethodQuery(Qt::ImSurroundingText).toString(), two + mask(7) + behindTwo);
}

void TestPasswdTextEditWays::keepsTheRealTextFromAssistiveTools()
{
    QVERIFY(isKeptFromAssistiveTools(QStringLiteral("covert")));
}

QTEST_MAIN(TestPasswdTextEditWays)
#include "tst_PasswdTextEditWays.moc"
