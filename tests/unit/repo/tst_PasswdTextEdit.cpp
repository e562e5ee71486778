// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdTextEditTest.h"

/// What a password field shows, and the keys that edit it.
class TestPasswdTextEdit : public PasswdTextEditTest
{
    Q_OBJECT

private Q_SLOTS:
    void showsAUrlWithoutCredentialsAsItIs();
    void masksBothPasswordsOfTwoLines();
    void hasNothingToMaskInAnEmptyPassword();
    void masksEveryMatchAndEndsOnEmptyOnes();
    void tellsOfAProgramsChangeAndMasksIt();
    void tellsOfTheMaskedTextOnlyWhenTheRealOneIsThere();
    void isSizedInLettersAndLines();
    void wrapsAnywhere();
    void typingMovesBothCursorsTogether();
    void neverPaintsWhatIsTypedIntoThePassword();
    void looksTheSameWhateverThePassword();
    void replacesASelectionByTheCharacterThatMasksIt();
    void replacesASelectionOverLines();
    void removes_data();
    void removes();
    void removesAsMuchOfAWrappedLineAsIsSeen();
    void movesWithoutLosingThePlace_data();
    void movesWithoutLosingThePlace();
    void splitsALine();
    void undoBringsBackTheRealTextMasked();
    void undoPutsTheCursorWhereItUndid();
    void opensNoMenuOnARightClick();
    void refusesADrag();
    void ignoresKeysWhileItIsDisabled_data();
    void ignoresKeysWhileItIsDisabled();
    void leavesNoTwinBehind();
};

void TestPasswdTextEdit::showsAUrlWithoutCredentialsAsItIs()
{
    const QString urls = QStringLiteral("http://host/rhel/x\nhttp://other/x\n");
    edit->setRealPlainText(urls);
    QCOMPARE(edit->toPlainText(), urls);
    QCOMPARE(edit->realPlainText(), urls);
    QVERIFY(QFontInfo(edit->font()).fixedPitch());
    QVERIFY(QFontInfo(edit->currentFont()).fixedPitch());
}

void TestPasswdTextEdit::masksBothPasswordsOfTwoLines()
{
    QCOMPARE(edit->toPlainText(), shown(6, 6));
    QCOMPARE(edit->realPlainText(), lines("hidden", "covert"));
}

void TestPasswdTextEdit::hasNothingToMaskInAnEmptyPassword()
{
    edit->setRealPlainText(lines("", "covert"));
    QCOMPARE(edit->toPlainText(), shown(0, 6));
    go(inOne);
    QTest::keyClicks(edit, QStringLiteral("s"));
    QCOMPARE(edit->toPlainText(), shown(1, 6));
}

void TestPasswdTextEdit::masksEveryMatchAndEndsOnEmptyOnes()
{
    PasswdTextEdit field(QRegularExpression(QStringLiteral("pw=(\\w+)|x*")), nullptr);
    field.setRealPlainText(QStringLiteral("xx pw=a b pw=cd"));
    QCOMPARE(field.toPlainText(), QStringLiteral("xx pw=%1 b pw=%2").arg(mask(1), mask(2)));
}

void TestPasswdTextEdit::tellsOfAProgramsChangeAndMasksIt()
{
    QSignalSpy told(edit, &PasswdTextEdit::realTextChanged);
    edit->setRealPlainText(lines("new", "covert"));
    QVERIFY(told.count() > 0);
    QCOMPARE(edit->toPlainText(), shown(3, 6));
}

void TestPasswdTextEdit::tellsOfTheMaskedTextOnlyWhenTheRealOneIsThere()
{
    QStringList masked;
    QStringList real;
    connect(edit, &QTextEdit::textChanged, edit, [&] {
        masked.append(edit->toPlainText());
        real.append(edit->realPlainText());
    });
    go(inOne + 6);
    QTest::keyClicks(edit, QStringLiteral("S"));
    QCOMPARE(masked.last(), shown(7, 6));
    QCOMPARE(real.last(), lines("hiddenS", "covert"));
    for (const QString& text : masked)
        QVERIFY2(!text.contains(QLatin1Char('S')), qPrintable(text));
    // Also where the shown text is what was typed.
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    QCOMPARE(real.last(), QString());
}

void TestPasswdTextEdit::isSizedInLettersAndLines()
{
    const PasswdTextEdit field(Repo::Vantry::urlsRegExp(), 20, 3, nullptr);
    const QFontMetrics metrics = field.fontMetrics();
    QCOMPARE(field.sizeHint(), QSize(2 * field.frameWidth() + 20 * metrics.horizontalAdvance('n'),
                                     2 * field.frameWidth() + 3 * metrics.lineSpacing()));
}

void TestPasswdTextEdit::wrapsAnywhere()
{
    edit->setRealPlainText(QString(500, QLatin1Char('h')));
    QTRY_VERIFY(edit->document()->firstBlock().layout()->lineCount() > 1);
    QCOMPARE(edit->horizontalScrollBar()->maximum(), 0);
}

void TestPasswdTextEdit::typingMovesBothCursorsTogether()
{
    go(inTwo + 3);
    int length = 6;
    for (const char key : {'1', '2', '3'}) {
        QTest::keyClick(edit, key);
        ++length;
        QCOMPARE(edit->toPlainText(), shown(6, length));
        QCOMPARE(position(), inTwo + length - 3);
    }
    QCOMPARE(edit->realPlainText(), lines("hidden", "cov123ert"));
}

void TestPasswdTextEdit::neverPaintsWhatIsTypedIntoThePassword()
{
    const PasswdWatcher watcher(edit->viewport(), [this] { return edit->toPlainText(); });
    go(inTwo + 6);
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

void TestPasswdTextEdit::looksTheSameWhateverThePassword()
{
    QList<QImage> first;
    for (const QString& secret : {QStringLiteral("iil.1!"), QStringLiteral("WWm@Q%")}) {
        edit->setRealPlainText(lines("hidden", ""));
        go(inTwo);
        for (int i = 0; i < secret.size(); ++i) {
            QTest::keyClicks(edit, secret.mid(i, 1));
            other->setFocus(); // a cursor may or may not blink
            const QImage image = edit->grab().toImage();
            edit->setFocus();
            if (first.size() <= i)
                first.append(image);
            else
                QCOMPARE(image, first.at(i));
            if (i > 0)
                QVERIFY(first.at(i) != first.at(i - 1));
        }
        QCOMPARE(edit->realPlainText(), lines("hidden", secret));
    }
}

void TestPasswdTextEdit::replacesASelectionByTheCharacterThatMasksIt()
{
    go(inTwo + 1);
    keys(1, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClicks(edit, QStringLiteral("X"));
    QCOMPARE(edit->realPlainText(), lines("hidden", "cXvert"));
    QCOMPARE(edit->toPlainText(), shown(6, 6));
}

void TestPasswdTextEdit::replacesASelectionOverLines()
{
    go(inTwo + 2);
    keys(inTwo + 2 - inOne - 3, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClicks(edit, QStringLiteral("XY"));
    QCOMPARE(edit->realPlainText(), one + QStringLiteral("hidXYvert") + behindTwo);
    QCOMPARE(position(), inOne + 5);
    // One that is complete again hides what it has.
    QTest::keyClicks(edit, QStringLiteral("&path="));
    QCOMPARE(edit->toPlainText(), one + mask(5) + QStringLiteral("&path=vert") + behindTwo);
}

void TestPasswdTextEdit::removes_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    const int none = Qt::NoModifier;
    const int control = Qt::ControlModifier;
    QTest::newRow("backspace") << 3 << int(Qt::Key_Backspace) << none << "co"
                               << "ert/y";
    QTest::newRow("delete") << 3 << int(Qt::Key_Delete) << none << "cov"
                            << "rt/y";
    // Keys of X11.
    if (!QKeySequence::keyBindings(QKeySequence::DeleteEndOfLine).isEmpty())
        QTest::newRow("to the end of the line") << 3 << int(Qt::Key_K) << control << "cov"
                                                << "";
    if (QKeySequence::keyBindings(QKeySequence::Delete)
            .contains(QKeySequence(Qt::CTRL + Qt::Key_D)))
        QTest::newRow("delete by letter") << 3 << int(Qt::Key_D) << control << "cov"
                                          << "rt/y";
    // The letters of a mask are one word, whatever is behind it.
    QTest::newRow("a word") << 1 << int(Qt::Key_Delete) << control << "c"
                            << "/y";
    QTest::newRow("a word backwards") << 5 << int(Qt::Key_Backspace) << control << ""
                                      << "d/y";
}

void TestPasswdTextEdit::removes()
{
    QFETCH(int, index);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, left);
    QFETCH(QString, right);
    const bool words =
        modifiers == int(Qt::ControlModifier) && key != int(Qt::Key_K) && key != int(Qt::Key_D);
    if (words)
        edit->setRealPlainText(lines("hidden", "c-v.+d"));
    go(inTwo + index);
    keys(1, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(edit->realPlainText(),
             one + QStringLiteral("hidden") + behindOne + two + left + right);
    QCOMPARE(position(), inTwo + left.size());
    QCOMPARE(edit->toPlainText().size(), edit->realPlainText().size());
    QVERIFY(!QApplication::clipboard()->text().contains(QStringLiteral("ert")));
}

void TestPasswdTextEdit::removesAsMuchOfAWrappedLineAsIsSeen()
{
    const QString host = QStringLiteral("http://") + QString(200, QLatin1Char('h'));
    edit->setRealPlainText(host + two + QStringLiteral("covert") + behindTwo);
    keys(1, Qt::Key_Home, Qt::ControlModifier);
    keys(1, Qt::Key_End, Qt::ShiftModifier);
    const int seen = position();
    QVERIFY(seen > 10 && seen < host.size());
    QTest::keyClick(edit, Qt::Key_Delete);
    QCOMPARE(edit->realPlainText(), host.mid(seen) + two + QStringLiteral("covert") + behindTwo);
    QCOMPARE(edit->toPlainText(), host.mid(seen) + two + mask(6) + behindTwo);
}

void TestPasswdTextEdit::movesWithoutLosingThePlace_data()
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
    QTest::newRow("back over a word") << int(Qt::Key_Left) << (control | shift);
}

void TestPasswdTextEdit::movesWithoutLosingThePlace()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    // Ends of words within the secret are none for the user; lines wrap.
    window->resize(200, 200);
    edit->setRealPlainText(lines("hi-d.n", "a-b.c+d"));
    go(inTwo + 5);
    keys(1, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    const int start = edit->textCursor().selectionStart();
    const int length = edit->textCursor().selectionEnd() - start;
    QTest::keyClicks(edit, QStringLiteral("Z"));
    QString expected = lines("hi-d.n", "a-b.c+d");
    expected.replace(start, length, QStringLiteral("Z"));
    QCOMPARE(edit->realPlainText(), expected);
    QCOMPARE(position(), start + 1);
}

void TestPasswdTextEdit::splitsALine()
{
    go(inTwo + 3);
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(edit->realPlainText(), lines("hidden", "cov\nert"));
    QCOMPARE(edit->toPlainText(), one + mask(6) + behindOne + two + "cov\nert" + behindTwo);
    QTest::keyClick(edit, Qt::Key_Backspace);
    QCOMPARE(edit->toPlainText(), shown(6, 6));
    QTest::keyClick(edit, Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "cov\nert"));
    QCOMPARE(position(), inTwo + 4);
}

void TestPasswdTextEdit::undoBringsBackTheRealTextMasked()
{
    go(inTwo + 6);
    QTest::keyClicks(edit, QStringLiteral("XY"));
    for (int i = 0; i < 2 && edit->toPlainText() != shown(6, 6); ++i)
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covert"));
    QCOMPARE(edit->toPlainText(), shown(6, 6));
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covertXY"));
    QCOMPARE(edit->toPlainText(), shown(6, 8));
    edit->undo();
    QCOMPARE(edit->toPlainText(), shown(6, 8));
    QVERIFY(!edit->isUndoRedoEnabled());
}

void TestPasswdTextEdit::undoPutsTheCursorWhereItUndid()
{
    go(inTwo + 1);
    keys(4, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(edit, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "ct"));
    keys(1, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covert"));
    QCOMPARE(edit->toPlainText(), shown(6, 6));
    QCOMPARE(position(), inTwo + 5);
}

void TestPasswdTextEdit::opensNoMenuOnARightClick()
{
    const auto request = [](QWidget* target) {
        QTest::mouseClick(target, Qt::RightButton);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, target->rect().center(),
                               target->mapToGlobal(target->rect().center()));
        QApplication::sendEvent(target, &menu);
    };
    request(edit->viewport());
    request(edit);
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!edit->findChild<QMenu*>());
    HTextEdit ordinary(nullptr);
    ordinary.show();
    request(ordinary.viewport());
    QVERIFY(QApplication::activePopupWidget()); // such an event does open one
    QApplication::activePopupWidget()->close();
}

void TestPasswdTextEdit::refusesADrag()
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
    HTextEdit ordinary(nullptr);
    QVERIFY(accepts(ordinary.viewport()));
    QVERIFY(!accepts(edit->viewport()));
    QVERIFY(!accepts(edit));
}

void TestPasswdTextEdit::ignoresKeysWhileItIsDisabled_data()
{
    QTest::addColumn<bool>("readOnly");
    QTest::newRow("disabled") << false;
    QTest::newRow("read-only") << true;
}

void TestPasswdTextEdit::ignoresKeysWhileItIsDisabled()
{
    QFETCH(bool, readOnly);
    if (readOnly)
        edit->setReadOnly(true);
    else
        edit->setEnabled(false);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    QApplication::sendEvent(edit, &press);
    QKeyEvent remove(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(edit, &remove);
    QCOMPARE(edit->realPlainText(), lines("hidden", "covert"));
}

void TestPasswdTextEdit::leavesNoTwinBehind()
{
    const auto fields = [] {
        int count = 0;
        for (QWidget* widget : QApplication::allWidgets())
            count += widget->inherits("HTextEdit");
        return count;
    };
    const int there = fields();
    {
        const PasswdTextEdit field(Repo::Vantry::urlsRegExp(), nullptr);
        QCOMPARE(fields(), there + 2);
    }
    QCOMPARE(fields(), there);
    {
        QWidget owner;
        new PasswdTextEdit(Repo::Vantry::urlsRegExp(), &owner);
    }
    QCOMPARE(fields(), there);
}

QTEST_MAIN(TestPasswdTextEdit)
#include "tst_PasswdTextEdit.moc"
