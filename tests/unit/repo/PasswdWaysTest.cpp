// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdWaysTest.h"
#include "unit/repo/PasswdWatcher.h"

#include <QInputMethodEvent>
#include <QMimeData>

void PasswdWaysTest::pastesIntoThePassword()
{
    QApplication::clipboard()->setText(QStringLiteral("PASTED"));
    goInto(3);
    key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hidPASTEDden"));
    QCOMPARE(field->shown(), shown(12));
    QCOMPARE(field->position(), start() + 9);
    call("paste");
    QCOMPARE(field->real(), real("hidPASTEDPASTEDden"));
    QCOMPARE(field->shown(), shown(18));
    QCOMPARE(field->position(), start() + 15);
    QApplication::clipboard()->setText(real("new"));
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Insert, Qt::ShiftModifier);
    QCOMPARE(field->real(), real("new"));
    QCOMPARE(field->shown(), shown(3));
}

void PasswdWaysTest::copiesTheMaskOnly_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("copy") << int(Qt::Key_C) << int(Qt::ControlModifier);
    QTest::newRow("copy with Insert") << int(Qt::Key_Insert) << int(Qt::ControlModifier);
    QTest::newRow("cut") << int(Qt::Key_X) << int(Qt::ControlModifier);
    QTest::newRow("cut with Delete") << int(Qt::Key_Delete) << int(Qt::ShiftModifier);
}

void PasswdWaysTest::copiesTheMaskOnly()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    this->key(Qt::Key_A, Qt::ControlModifier);
    this->key(static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    const QClipboard* clipboard = QApplication::clipboard();
    QCOMPARE(clipboard->text(), shown(6));
    for (const QString& format : clipboard->mimeData()->formats())
        QVERIFY(!clipboard->mimeData()->data(format).contains("hidden"));
}

void PasswdWaysTest::leavesTheMaskInTheSelectionOfTheMouse()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection())
        QSKIP("this platform has no selection of the mouse");
    clipboard->setText(QStringLiteral("old"), QClipboard::Selection);
    const QPoint from = field->place(start() - 2);
    sweep(field->canvas(), from, field->place(start() + 6));
    QCOMPARE(clipboard->text(QClipboard::Selection), QStringLiteral("c=") + mask(6));
    key(Qt::Key_A, Qt::ControlModifier);
    QVERIFY(!clipboard->text(QClipboard::Selection).contains(QStringLiteral("hidden")));
}

void PasswdWaysTest::pastesTheSelectionWhereTheMouseIs()
{
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard->supportsSelection())
        QSKIP("this platform has no selection of the mouse");
    clipboard->setText(QStringLiteral("PASTED"), QClipboard::Selection);
    const QPoint where = field->place(start() + 2);
    key(Qt::Key_Home, field->toTheStart());
    QTest::mouseClick(field->canvas(), Qt::MiddleButton, Qt::NoModifier, where);
    QCOMPARE(field->real(), real("hiPASTEDdden"));
    QCOMPARE(field->shown(), shown(12));
}

void PasswdWaysTest::replacesWhatTheMouseHasSelected()
{
    const QPoint from = field->place(start() + 1);
    sweep(field->canvas(), from, field->place(start() + 5));
    QCOMPARE(field->selected(), mask(4));
    type("X");
    QCOMPARE(field->real(), real("hXn"));
    QCOMPARE(field->shown(), shown(3));
}

void PasswdWaysTest::replacesWhatADoubleClickHasSelected()
{
    field->setReal(real("a-b.c+d"));
    const QPoint where = field->place(start() + 3);
    QTest::mouseClick(field->canvas(), Qt::LeftButton, Qt::NoModifier, where);
    QTest::mouseDClick(field->canvas(), Qt::LeftButton, Qt::NoModifier, where);
    const int from = field->selectionStart();
    const int length = field->selected().size();
    QVERIFY(length > 0);
    type("X");
    QCOMPARE(field->real(), real("a-b.c+d").replace(from, length, "X"));
}

void PasswdWaysTest::typesWhereAProgramHasPutTheCursor()
{
    goInto(0);
    other->setFocus(); // with the focus, an event would tell of the cursor at once
    field->setPosition(start() + 3);
    type("X");
    QCOMPARE(field->real(), real("hidXden"));
    QCOMPARE(field->shown(), shown(7));
    QCOMPARE(field->position(), start() + 4);
}

void PasswdWaysTest::takesTheTextOfAnInputMethod()
{
    goInto(2);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("\u00e9X"));
    QApplication::sendEvent(field->widget(), &commit);
    QCOMPARE(field->real(), real(QStringLiteral("hi\u00e9Xdden")));
    QCOMPARE(field->shown(), shown(8));
    QCOMPARE(field->position(), start() + 4);
}

void PasswdWaysTest::followsSlotsOfTheBaseClass()
{
    other->setFocus(); // with the focus, events would follow each of them
    field->setPosition(start() + 3);
    field->insert(QStringLiteral("X"));
    QCOMPARE(field->real(), real("hidXden"));
    QCOMPARE(field->shown(), shown(7));
    call("clear");
    QCOMPARE(field->real(), QString());
}

void PasswdWaysTest::followsAnAssistiveTool()
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(field->widget());
    QVERIFY(interface->editableTextInterface());
    interface->editableTextInterface()->insertText(7, QStringLiteral("my"));
    QCOMPARE(field->real(), real("hidden").insert(7, "my"));
    QCOMPARE(field->shown(), shown(6).insert(7, "my"));
}

void PasswdWaysTest::givesAssistiveToolsTheMask()
{
    const QString text = shown(6);
    QVERIFY(accessibleText(field->widget()).startsWith(text + '|'));
    QVERIFY(!accessibleText(field->widget()).contains("hidden"));
    goInto(1);
    type("X");
    QVERIFY(accessibleText(field->widget()).startsWith(shown(7) + '|'));
    QVERIFY(!accessibleText(field->widget()).contains('X'));
    QVERIFY(field->widget()->inputMethodHints() & Qt::ImhSensitiveData);
    const QString around = field->widget()->inputMethodQuery(Qt::ImSurroundingText).toString();
    QVERIFY2(shown(7).endsWith(around) && around.contains(mask(7)), qPrintable(around));
}

void PasswdWaysTest::keepsTheRealTextFromAssistiveTools()
{
    QVERIFY(isKeptFromAssistiveTools(QStringLiteral("hidden")));
}
