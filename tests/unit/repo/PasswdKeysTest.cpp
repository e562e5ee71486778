// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdKeysTest.h"
#include "unit/repo/PasswdWatcher.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QFontInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>

void PasswdKeysTest::showsAUrlWithoutCredentialsAsItIs()
{
    const QString url = QStringLiteral("http://host/rhel/x");
    field->setReal(url);
    QCOMPARE(field->shown(), url);
    QCOMPARE(field->real(), url);
    QVERIFY(QFontInfo(field->widget()->font()).fixedPitch());
}

void PasswdKeysTest::showsAsManyPasswordCharactersAsThePasswordHas()
{
    QCOMPARE(field->shown(), shown(6));
    QCOMPARE(field->real(), real("hidden"));
}

void PasswdKeysTest::hasNothingToMaskInAnEmptyPassword()
{
    field->setReal(real(""));
    QCOMPARE(field->shown(), shown(0));
    goInto(0);
    type("s");
    QCOMPARE(field->shown(), shown(1));
}

void PasswdKeysTest::tellsOfAProgramsChangeAndMasksIt()
{
    const std::unique_ptr<QSignalSpy> told = field->spyOnRealText();
    field->setReal(real("new"));
    QVERIFY(told->count() > 0);
    QCOMPARE(field->shown(), shown(3));
}

void PasswdKeysTest::tellsOfTheMaskedTextOnlyWhenTheRealOneIsThere()
{
    QStringList shownTexts;
    QStringList realTexts;
    field->whenShownTextChanges([&] {
        shownTexts.append(field->shown());
        realTexts.append(field->real());
    });
    goInto(6);
    type("S");
    QCOMPARE(shownTexts.last(), shown(7));
    QCOMPARE(realTexts.last(), real("hiddenS"));
    for (const QString& text : qAsConst(shownTexts))
        QVERIFY2(!text.contains('S'), qPrintable(text));
}

void PasswdKeysTest::tellsOfAChangeThatLeavesTheShownTextAsItWasTyped()
{
    QString realText = QStringLiteral("(not told)");
    field->whenShownTextChanges([&] { realText = field->real(); });
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Delete);
    QCOMPARE(realText, QString());
    type("h");
    QCOMPARE(realText, QStringLiteral("h"));
}

void PasswdKeysTest::typingMovesBothCursorsTogether()
{
    goInto(3);
    int length = 6;
    for (const char* const letter : {"1", "2", "3"}) {
        type(letter);
        ++length;
        QCOMPARE(field->shown(), shown(length));
        QCOMPARE(field->position(), start() + length - 3);
    }
    QCOMPARE(field->real(), real("hid123den"));
}

void PasswdKeysTest::neverPaintsWhatIsTypedIntoThePassword()
{
    const PasswdWatcher watcher(field->canvas(), [this] { return field->shown(); });
    goInto(6);
    for (const char* const letter : {"S", "E", "C", "R", "E", "T"}) {
        type(letter);
        field->widget()->grab();
        QTest::qWait(1); // what was asked to be painted, is
    }
    QApplication::clipboard()->setText(QStringLiteral("PASTED"));
    key(Qt::Key_V, Qt::ControlModifier);
    field->widget()->grab();
    keys(4, Qt::Key_Z, Qt::ControlModifier);
    field->widget()->grab();
    QVERIFY(watcher.painted.size() > 8);
    for (const QString& text : watcher.painted)
        for (const char letter : {'S', 'E', 'C', 'R', 'T', 'P', 'A', 'D'})
            QVERIFY2(!text.contains(letter), qPrintable(text));
}

void PasswdKeysTest::looksTheSameWhateverThePassword()
{
    QList<QImage> first;
    for (const char* const secret : {"iil.1!", "WWm@Q%"}) {
        field->setReal(real(""));
        for (int i = 0; i < 6; ++i) {
            goInto(i);
            type(QString(QLatin1Char(secret[i])));
            other->setFocus(); // a cursor may or may not blink
            const QImage image = field->widget()->grab().toImage();
            field->widget()->setFocus();
            if (first.size() <= i)
                first.append(image);
            else
                QCOMPARE(image, first.at(i));
            if (i > 0)
                QVERIFY(first.at(i) != first.at(i - 1));
        }
        QCOMPARE(field->real(), real(secret));
    }
}

void PasswdKeysTest::replacesASelection_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("backwards");
    QTest::newRow("within the password") << 1 << 3 << false;
    QTest::newRow("the whole password") << 0 << 6 << false;
    QTest::newRow("from its end") << 6 << 4 << true;
}

void PasswdKeysTest::replacesASelection()
{
    QFETCH(int, index);
    QFETCH(int, length);
    QFETCH(bool, backwards);
    goInto(index);
    keys(length, backwards ? Qt::Key_Left : Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(field->selected(), mask(length));
    type("XY");
    const int from = backwards ? index - length : index;
    QCOMPARE(field->real(), real(QStringLiteral("hidden").replace(from, length, "XY")));
    QCOMPARE(field->shown(), shown(8 - length));
    QCOMPARE(field->position(), start() + from + 2);
}

void PasswdKeysTest::replacesASelectionByTheCharacterThatMasksIt()
{
    goInto(1);
    key(Qt::Key_Right, Qt::ShiftModifier);
    type("X");
    QCOMPARE(field->real(), real("hXdden"));
    QCOMPARE(field->shown(), shown(6));
}

void PasswdKeysTest::removes_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    const auto row = [](const char* name, int index, int key, int modifiers, const char* left,
                        const char* right) {
        QTest::newRow(name) << index << key << modifiers << left << right;
    };
    const int none = Qt::NoModifier;
    const int control = Qt::ControlModifier;
    row("backspace", 3, Qt::Key_Backspace, none, "h-", ".+n/x");
    row("delete", 3, Qt::Key_Delete, none, "h-d", "+n/x");
    // Keys of X11.
    if (!QKeySequence::keyBindings(QKeySequence::DeleteEndOfLine).isEmpty())
        row("to the end of the line", 3, Qt::Key_K, control, "h-d", "");
    // The letters of a mask are one word, whatever is behind it.
    row("a word", 1, Qt::Key_Delete, control, "h", "/x");
    row("a word backwards", 5, Qt::Key_Backspace, control, "", "n/x");
}

void PasswdKeysTest::removes()
{
    QFETCH(int, index);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, left);
    QFETCH(QString, right);
    field->setReal(real("h-d.+n"));
    goInto(index);
    this->key(static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(field->real(), field->head() + left + right);
    QCOMPARE(field->position(), start() + left.size());
    QCOMPARE(field->shown().size(), field->real().size());
    for (const char* const part : {"h-", ".+", "+n"}) {
        QVERIFY(right.isEmpty() || !field->shown().contains(part));
        QVERIFY(!QApplication::clipboard()->text().contains(part));
    }
}

void PasswdKeysTest::movesWithoutLosingThePlace_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    const int none = Qt::NoModifier;
    const int control = Qt::ControlModifier;
    const int shift = Qt::ShiftModifier;
    QTest::newRow("left") << int(Qt::Key_Left) << none;
    QTest::newRow("right") << int(Qt::Key_Right) << none;
    QTest::newRow("up") << int(Qt::Key_Up) << none;
    QTest::newRow("up with a selection") << int(Qt::Key_Up) << shift;
    QTest::newRow("home") << int(Qt::Key_Home) << none;
    QTest::newRow("end") << int(Qt::Key_End) << none;
    QTest::newRow("to the start of all") << int(Qt::Key_Home) << control;
    QTest::newRow("to the end of all") << int(Qt::Key_End) << control;
    QTest::newRow("a page up") << int(Qt::Key_PageUp) << none;
    QTest::newRow("a word left") << int(Qt::Key_Left) << control;
    QTest::newRow("a word right") << int(Qt::Key_Right) << control;
    QTest::newRow("to the start of a selection") << int(Qt::Key_Left) << shift;
    QTest::newRow("back over a word") << int(Qt::Key_Left) << (control | shift);
}

void PasswdKeysTest::movesWithoutLosingThePlace()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    // Ends of words within the secret are none for the user; lines wrap.
    window->resize(200, 200);
    field->setReal(real("a-b.c+d"));
    goInto(5);
    this->key(static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    const int from = field->selectionStart();
    const int length = field->selected().size();
    type("Z");
    QCOMPARE(field->real(), real("a-b.c+d").replace(from, length, "Z"));
    QCOMPARE(field->position(), from + 1);
}

void PasswdKeysTest::neverSplitsACharacter_data()
{
    QTest::addColumn<bool>("fromBehind");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("secret");
    QTest::newRow("typing before it") << true << int(Qt::Key_X) << QStringLiteral("ax\U0001f600b");
    QTest::newRow("typing behind it") << false << int(Qt::Key_X) << QStringLiteral("a\U0001f600xb");
    QTest::newRow("removing it") << false << int(Qt::Key_Backspace) << "ab";
    QTest::newRow("removing it from behind") << true << int(Qt::Key_Delete) << "ab";
}

void PasswdKeysTest::neverSplitsACharacter()
{
    QFETCH(bool, fromBehind);
    QFETCH(int, key);
    QFETCH(QString, secret);
    // Two code units, and as many password characters.
    field->setReal(real(QStringLiteral("a\U0001f600b")));
    QCOMPARE(field->shown(), shown(4));
    goInto(1);
    keys(fromBehind ? 2 : 1, Qt::Key_Right);
    keys(fromBehind ? 2 : 0, Qt::Key_Left);
    this->key(static_cast<Qt::Key>(key));
    QCOMPARE(field->real(), real(secret));
    QCOMPARE(field->shown(), shown(secret.size()));
}

void PasswdKeysTest::neverSelectsHalfACharacter()
{
    field->setReal(real(QStringLiteral("a\U0001f600b")));
    goInto(1);
    key(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(field->selected(), mask(2));
    type("X");
    QCOMPARE(field->real(), real("aXb"));
    QCOMPARE(field->shown(), shown(3));
}

void PasswdKeysTest::masksATextThatIsNotValid()
{
    const QString half = QStringLiteral("\U0001f600").left(1);
    field->setReal(real('a' + half + 'b'));
    QCOMPARE(field->shown(), shown(3));
    field->setReal(real(half) + half);
    QCOMPARE(field->shown(), shown(1) + half);
}

void PasswdKeysTest::undoBringsBackTheRealTextMasked()
{
    goInto(6);
    type("XY");
    for (int i = 0; i < 2 && field->shown() != shown(6); ++i)
        key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hidden"));
    QCOMPARE(field->shown(), shown(6));
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(field->real(), real("hiddenXY"));
    QCOMPARE(field->shown(), shown(8));
    QVERIFY(!field->hasOwnHistory());
    call("undo");
    QCOMPARE(field->shown(), shown(8));
}

void PasswdKeysTest::undoBringsBackWhatWasCutOrReplaced()
{
    goInto(1);
    keys(4, Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hn"));
    for (int i = 0; i < 3 && field->shown() != shown(6); ++i)
        key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(field->real(), real("hidden"));
    QCOMPARE(field->shown(), shown(6));
}

void PasswdKeysTest::opensNoMenuOnARightClick()
{
    const auto request = [](QWidget* target) {
        QTest::mouseClick(target, Qt::RightButton);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, target->rect().center(),
                               target->mapToGlobal(target->rect().center()));
        QApplication::sendEvent(target, &menu);
    };
    request(field->canvas());
    request(field->widget());
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!field->widget()->findChild<QMenu*>());
    request(other);
    QVERIFY(QApplication::activePopupWidget()); // such an event does open one
    QApplication::activePopupWidget()->close();
}

void PasswdKeysTest::refusesADrag()
{
    QMimeData data;
    data.setText(QStringLiteral("dragged"));
    const auto accepts = [&data](QWidget* target) {
        QDragEnterEvent enter(target->rect().center(), Qt::CopyAction | Qt::MoveAction, &data,
                              Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(target, &enter);
        return enter.isAccepted();
    };
    QVERIFY(accepts(other));
    QVERIFY(!accepts(field->canvas()));
    QVERIFY(!accepts(field->widget()));
}

void PasswdKeysTest::ignoresKeysWhileItIsDisabled_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::newRow("disabled") << false;
    QTest::newRow("read-only") << true;
}

void PasswdKeysTest::ignoresKeysWhileItIsDisabled()
{
    QFETCH(bool, readOnly);
    QVERIFY(readOnly ? field->widget()->setProperty("readOnly", true)
                     : field->widget()->setProperty("enabled", false));
    QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    QApplication::sendEvent(field->widget(), &press);
    for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) {
        QKeyEvent remove(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(field->widget(), &remove);
    }
    QCOMPARE(field->real(), real("hidden"));
}

void PasswdKeysTest::leavesNoTwinBehind()
{
    const auto count = [this] {
        int widgets = 0;
        for (const QWidget* widget : QApplication::allWidgets())
            widgets += widget->inherits(field->className());
        return widgets;
    };
    const int there = count();
    const QWidget* alone = makeField(nullptr)->widget();
    QCOMPARE(count(), there + 2);
    delete alone;
    QCOMPARE(count(), there);
    {
        QWidget owner;
        makeField(&owner);
        QCOMPARE(count(), there + 2);
    }
    QCOMPARE(count(), there);
}
