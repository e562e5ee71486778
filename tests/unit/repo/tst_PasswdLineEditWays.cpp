// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdWaysTest.h"

#include <QInputMethodEvent>

/// The other ways into a password field of one line and out of it.
class TestPasswdLineEditWays : public PasswdWaysTest
{
    Q_OBJECT

private:
    std::unique_ptr<PasswdField> makeField(QWidget* parent) const override
    {
        return std::make_unique<PasswdLineField>(parent);
    }

private Q_SLOTS:
    void typesWhereTheMouseHasClickedInAScrolledText();
    void masksWhatAnInputMethodIsComposing();
    void followsARemovalByAProgram();
};

void TestPasswdLineEditWays::typesWhereTheMouseHasClickedInAScrolledText()
{
    const QString text =
        QStringLiteral("http://") + QString(300, QLatin1Char('h')) + real("hidden");
    field->setReal(text);
    key(Qt::Key_End);
    field->widget()->grab(); // scrolls
    QTest::mouseClick(field->canvas(), Qt::LeftButton, Qt::NoModifier,
                      field->canvas()->rect().center());
    const int cursor = field->position();
    QVERIFY(cursor > 100);
    type("Z");
    QCOMPARE(field->real(), QString(text).insert(cursor, QLatin1Char('Z')));
}

void TestPasswdLineEditWays::masksWhatAnInputMethodIsComposing()
{
    const auto compose = [this](const QString& text) {
        QInputMethodEvent event(text, {});
        QApplication::sendEvent(field->widget(), &event);
        return field->widget()->grab().toImage();
    };
    const int flash = QApplication::cursorFlashTime();
    QApplication::setCursorFlashTime(0);
    goInto(2);
    const QImage none = compose(QString());
    const QImage some = compose(QStringLiteral("SEC"));
    const QImage others = compose(QStringLiteral("ill"));
    compose(QString());
    QCOMPARE(field->real(), real("hidden"));
    // Outside of the password it shows.
    key(Qt::Key_Home);
    const QImage plain = compose(QStringLiteral("SEC"));
    const QImage otherPlain = compose(QStringLiteral("ill"));
    QApplication::setCursorFlashTime(flash);
    QVERIFY(some != none);
    QCOMPARE(some, others);
    QVERIFY(plain != otherPlain);
}

void TestPasswdLineEditWays::followsARemovalByAProgram()
{
    other->setFocus(); // with the focus, events would follow each of them
    field->setPosition(start() + 3);
    qobject_cast<QLineEdit*>(field->widget())->backspace();
    QCOMPARE(field->real(), real("hiden"));
    QCOMPARE(field->shown(), shown(5));
    // All of a character.
    field->setReal(real(QStringLiteral("a\U0001f600b")));
    field->setPosition(start() + 3);
    qobject_cast<QLineEdit*>(field->widget())->backspace();
    QCOMPARE(field->real(), real("ab"));
    QCOMPARE(field->shown(), shown(2));
}

QTEST_MAIN(TestPasswdLineEditWays)
#include "tst_PasswdLineEditWays.moc"
