// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdLineEditTest.h"

/// What a password field shows, and the keys that edit it.
class TestPasswdLineEdit : public PasswdLineEditTest
{
    Q_OBJECT

private Q_SLOTS:
    void showsAUrlWithoutCredentialsAsItIs();
    void showsAsManyPasswordCharactersAsThePasswordHas();
    void masksThePasswordOfTheQueryForm();
    void hasNothingToMaskInAnEmptyPassword();
    void masksOnlyWhereTheWholeTextMatches();
    void tellsOfAProgramsChangeAndMasksIt();
    void tellsOfTheMaskedTextOnlyWhenTheRealOneIsThere();
    void tellsOfAChangeThatLeavesTheShownTextAsItWasTyped();
    void typingMovesBothCursorsTogether();
    void neverPaintsWhatIsTypedIntoThePassword();
    void looksTheSameWhateverThePassword();
    void neverHoldsWhatIsTypedIntoThePassword();
    void replacesASelection_data();
    void replacesASelection();
    void replacesASelectionByTheCharacterThatMasksIt();
    void removes_data();
    void removes();
    void movesWithoutLosingThePlace_data();
    void movesWithoutLosingThePlace();
    void undoBringsBackTheRealTextMasked();
    void undoBringsBackWhatWasCutOrReplaced();
    void opensNoMenuOnARightClick();
    void refusesADrag();
    void ignoresKeysWhileItIsDisabled_data();
    void ignoresKeysWhileItIsDisabled();
    void leavesNoTwinBehind();
    void letsTheTabKeyThrough();
};

void TestPasswdLineEdit::showsAUrlWithoutCredentialsAsItIs()
{
    const QString url = QStringLiteral("http://host/rhel/x");
    edit->setRealText(url);
    QCOMPARE(edit->text(), url);
    QCOMPARE(edit->realText(), url);
    QVERIFY(QFontInfo(edit->font()).fixedPitch());
}

void TestPasswdLineEdit::showsAsManyPasswordCharactersAsThePasswordHas()
{
    QCOMPARE(edit->text(), before + mask(6) + behind);
    QCOMPARE(edit->realText(), before + QStringLiteral("hidden") + behind);
}

void TestPasswdLineEdit::masksThePasswordOfTheQueryForm()
{
    edit->setRealText(QStringLiteral("http://host/vantry?a=b&c=secret&path=/x"));
    QCOMPARE(edit->text(),
             QStringLiteral("http://host/vantry?a=b&c=") + mask(6) + QStringLiteral("&path=/x"));
}

void TestPasswdLineEdit::hasNothingToMaskInAnEmptyPassword()
{
    edit->setRealText(before + behind);
    QCOMPARE(edit->text(), before + behind);
    goInto(0);
    QTest::keyClicks(edit, QStringLiteral("s"));
    QCOMPARE(edit->text(), shown(1));
}

void TestPasswdLineEdit::masksOnlyWhereTheWholeTextMatches()
{
    PasswdLineEdit field(QRegularExpression(QStringLiteral("pw=(\\w+)|a")), nullptr);
    field.setRealText(QStringLiteral("pw=abc"));
    QCOMPARE(field.text(), QStringLiteral("pw=") + mask(3));
    field.setRealText(QStringLiteral("pw=abc!"));
    QCOMPARE(field.text(), QStringLiteral("pw=abc!"));
}

void TestPasswdLineEdit::tellsOfAProgramsChangeAndMasksIt()
{
    QSignalSpy told(edit, &PasswdLineEdit::realTextChanged);
    edit->setRealText(before + QStringLiteral("new") + behind);
    QCOMPARE(told.count(), 1);
    QCOMPARE(told.at(0).at(0).toString(), before + QStringLiteral("new") + behind);
    QCOMPARE(edit->text(), shown(3));
}

void TestPasswdLineEdit::tellsOfTheMaskedTextOnlyWhenTheRealOneIsThere()
{
    QStringList masked;
    QStringList real;
    connect(edit, &QLineEdit::textChanged, edit, [&](const QString& text) {
        masked.append(text);
        real.append(edit->realText());
    });
    goInto(6);
    QTest::keyClicks(edit, QStringLiteral("S"));
    QCOMPARE(masked.last(), shown(7));
    QCOMPARE(real.last(), before + QStringLiteral("hiddenS") + behind);
    for (const QString& text : masked)
        QVERIFY2(!text.contains(QLatin1Char('S')), qPrintable(text));
}

void TestPasswdLineEdit::tellsOfAChangeThatLeavesTheShownTextAsItWasTyped()
{
    QString real = QStringLiteral("(not told)");
    connect(edit, &QLineEdit::textChanged, edit, [&] { real = edit->realText(); });
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    QCOMPARE(real, QString());
    QTest::keyClicks(edit, QStringLiteral("h"));
    QCOMPARE(real, QStringLiteral("h"));
}

void TestPasswdLineEdit::typingMovesBothCursorsTogether()
{
    goInto(3);
    int length = 6;
    for (const char key : {'1', '2', '3'}) {
        QTest::keyClick(edit, key);
        ++length;
        QCOMPARE(edit->text(), shown(length));
        QCOMPARE(edit->cursorPosition(), before.size() + length - 3);
    }
    QCOMPARE(edit->realText(), before + QStringLiteral("hid123den") + behind);
}

void TestPasswdLineEdit::neverPaintsWhatIsTypedIntoThePassword()
{
    const PasswdWatcher watcher(edit, [this] { return edit->text(); });
    goInto(6);
    for (const char key : {'S', 'E', 'C', 'R', 'E', 'T'}) {
        QTest::keyClick(edit, key);
        edit->grab();
        QTest::qWait(1); // what was asked to be painted, is
    }
    QApplication::clipboard()->setText(QStringLiteral("PASTED"));
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    edit->grab();
    keys(4, Qt::Key_Z, Qt::ControlModifier);
    edit->grab();
    QVERIFY(watcher.painted.size() > 8);
    for (const QString& text : watcher.painted)
        for (const char key : {'S', 'E', 'C', 'R', 'T', 'P', 'A', 'D'})
            QVERIFY2(!text.contains(QLatin1Char(key)), qPrintable(text));
}

void TestPasswdLineEdit::looksTheSameWhateverThePassword()
{
    QList<QImage> first;
    for (const QString& secret : {QStringLiteral("iil.1!"), QStringLiteral("WWm@Q%")}) {
        edit->setRealText(before + behind);
        goInto(0);
        for (int i = 0; i < secret.size(); ++i) {
            QTest::keyClicks(edit, secret.mid(i, 1));
            edit->deselect();
            other->setFocus(); // a cursor may or may not blink
            const QImage image = edit->grab().toImage();
            edit->setFocus();
            edit->setCursorPosition(before.size() + i + 1);
            if (first.size() <= i)
                first.append(image);
            else
                QCOMPARE(image, first.at(i));
            if (i > 0)
                QVERIFY(first.at(i) != first.at(i - 1));
        }
        QCOMPARE(edit->realText(), before + secret + behind);
    }
}

void TestPasswdLineEdit::neverHoldsWhatIsTypedIntoThePassword()
{
    QStringList held;
    connect(edit, &QLineEdit::textChanged, edit, [&] { held.append(edit->text()); });
    connect(edit, &QLineEdit::textEdited, edit, [&](const QString& text) { held.append(text); });
    goInto(2);
    QTest::keyClicks(edit, QStringLiteral("SECRET"));
    QVERIFY(!held.isEmpty());
    for (const QString& text : held)
        QVERIFY2(text.startsWith(before + mask(7)) && text.endsWith(behind), qPrintable(text));
}

void TestPasswdLineEdit::replacesASelection_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("backwards");
    QTest::newRow("within the password") << 1 << 3 << false;
    QTest::newRow("the whole password") << 0 << 6 << false;
    QTest::newRow("from its end") << 6 << 4 << true;
}

void TestPasswdLineEdit::replacesASelection()
{
    QFETCH(int, start);
    QFETCH(int, length);
    QFETCH(bool, backwards);
    goInto(start);
    keys(length, backwards ? Qt::Key_Left : Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(edit->selectedText(), mask(length));
    QTest::keyClicks(edit, QStringLiteral("XY"));
    QCOMPARE(edit->realText(), before +
                                   QStringLiteral("hidden").replace(
                                       backwards ? start - length : start, length, "XY") +
                                   behind);
    QCOMPARE(edit->text(), shown(8 - length));
    QCOMPARE(edit->cursorPosition(), before.size() + (backwards ? start - length : start) + 2);
}

void TestPasswdLineEdit::replacesASelectionByTheCharacterThatMasksIt()
{
    goInto(1);
    keys(1, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClicks(edit, QStringLiteral("X"));
    QCOMPARE(edit->realText(), before + QStringLiteral("hXdden") + behind);
    QCOMPARE(edit->text(), shown(6));
}

void TestPasswdLineEdit::removes_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    const int none = Qt::NoModifier;
    const int control = Qt::ControlModifier;
    const QString start = before;
    QTest::newRow("backspace") << 3 << int(Qt::Key_Backspace) << none << "hi"
                               << "den/x";
    QTest::newRow("delete") << 3 << int(Qt::Key_Delete) << none << "hid"
                            << "en/x";
    // Keys of X11.
    if (!QKeySequence::keyBindings(QKeySequence::DeleteEndOfLine).isEmpty())
        QTest::newRow("to the end of the line") << 3 << int(Qt::Key_K) << control << "hid"
                                                << "";
    // The letters of a mask are one word, whatever is behind it.
    QTest::newRow("a word") << 1 << int(Qt::Key_Delete) << control << "h"
                            << "/x";
    QTest::newRow("a word backwards") << 5 << int(Qt::Key_Backspace) << control << ""
                                      << "n/x";
}

void TestPasswdLineEdit::removes()
{
    QFETCH(int, index);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, left);
    QFETCH(QString, right);
    goInto(index);
    keys(1, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(edit->realText(), before + left + right);
    QCOMPARE(edit->cursorPosition(), before.size() + left.size());
    QCOMPARE(edit->text().size(), edit->realText().size());
    for (const QString& part : {QStringLiteral("hi"), QStringLiteral("en")})
        QVERIFY(right.isEmpty() || !edit->text().contains(part));
    QVERIFY(!QApplication::clipboard()->text().contains(QStringLiteral("den")));
}

void TestPasswdLineEdit::movesWithoutLosingThePlace_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    const int none = Qt::NoModifier;
    const int control = Qt::ControlModifier;
    QTest::newRow("left") << int(Qt::Key_Left) << none;
    QTest::newRow("right") << int(Qt::Key_Right) << none;
    QTest::newRow("home") << int(Qt::Key_Home) << none;
    QTest::newRow("end") << int(Qt::Key_End) << none;
    QTest::newRow("a word left") << int(Qt::Key_Left) << control;
    QTest::newRow("a word right") << int(Qt::Key_Right) << control;
    QTest::newRow("to the start of a selection") << int(Qt::Key_Left) << int(Qt::ShiftModifier);
    QTest::newRow("back over a word") << int(Qt::Key_Left) << (control | int(Qt::ShiftModifier));
}

void TestPasswdLineEdit::movesWithoutLosingThePlace()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    // Ends of words within the secret are none for the user.
    edit->setRealText(before + QStringLiteral("a-b.c+d") + behind);
    goInto(5);
    keys(1, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    const int start = edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
    const int length = edit->selectedText().size();
    QTest::keyClicks(edit, QStringLiteral("Z"));
    QString expected = before + QStringLiteral("a-b.c+d") + behind;
    expected.replace(start, length, QStringLiteral("Z"));
    QCOMPARE(edit->realText(), expected);
    QCOMPARE(edit->cursorPosition(), start + 1);
}

void TestPasswdLineEdit::undoBringsBackTheRealTextMasked()
{
    goInto(6);
    QTest::keyClicks(edit, QStringLiteral("XY"));
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(edit->realText(), before + QStringLiteral("hidden") + behind);
    QCOMPARE(edit->text(), shown(6));
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(edit->realText(), before + QStringLiteral("hiddenXY") + behind);
    QCOMPARE(edit->text(), shown(8));
    QVERIFY(!edit->isUndoAvailable());
    edit->undo();
    QCOMPARE(edit->text(), shown(8));
}

void TestPasswdLineEdit::undoBringsBackWhatWasCutOrReplaced()
{
    goInto(1);
    keys(4, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(edit, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(edit->realText(), before + QStringLiteral("hn") + behind);
    for (int i = 0; i < 3 && edit->text() != shown(6); ++i)
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(edit->realText(), before + QStringLiteral("hidden") + behind);
    QCOMPARE(edit->text(), shown(6));
}

void TestPasswdLineEdit::opensNoMenuOnARightClick()
{
    QTest::mouseClick(edit, Qt::RightButton);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, edit->rect().center(),
                           edit->mapToGlobal(edit->rect().center()));
    QApplication::sendEvent(edit, &menu);
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!edit->findChild<QMenu*>());
    QContextMenuEvent ordinary(QContextMenuEvent::Mouse, QPoint(2, 2));
    QApplication::sendEvent(other, &ordinary);
    QVERIFY(QApplication::activePopupWidget()); // such an event does open one
    QApplication::activePopupWidget()->close();
}

void TestPasswdLineEdit::refusesADrag()
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
    QVERIFY(!accepts(edit));
}

void TestPasswdLineEdit::ignoresKeysWhileItIsDisabled_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::newRow("disabled") << false;
    QTest::newRow("read-only") << true;
}

void TestPasswdLineEdit::ignoresKeysWhileItIsDisabled()
{
    QFETCH(bool, readOnly);
    if (readOnly)
        edit->setReadOnly(true);
    else
        edit->setEnabled(false);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    QApplication::sendEvent(edit, &press);
    QKeyEvent remove(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier);
    QApplication::sendEvent(edit, &remove);
    QCOMPARE(edit->realText(), before + QStringLiteral("hidden") + behind);
}

void TestPasswdLineEdit::leavesNoTwinBehind()
{
    const auto lines = [] {
        int count = 0;
        for (QWidget* widget : QApplication::allWidgets())
            count += widget->inherits("QLineEdit");
        return count;
    };
    const int there = lines();
    {
        const PasswdLineEdit field(Repo::Vantry::oneUrlRegExp(), nullptr);
        QCOMPARE(lines(), there + 2);
    }
    QCOMPARE(lines(), there);
    {
        QWidget owner;
        new PasswdLineEdit(Repo::Vantry::oneUrlRegExp(), &owner);
    }
    QCOMPARE(lines(), there);
}

void TestPasswdLineEdit::letsTheTabKeyThrough()
{
    QTest::keyClick(edit, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), other);
    QCOMPARE(edit->realText(), before + QStringLiteral("hidden") + behind);
}

QTEST_MAIN(TestPasswdLineEdit)
#include "tst_PasswdLineEdit.moc"
