// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/PasswdKeysTest.h"

/// What a password field of one line shows, and the keys that edit it.
class TestPasswdLineEdit : public PasswdKeysTest
{
    Q_OBJECT

private:
    std::unique_ptr<PasswdField> makeField(QWidget* parent) const override
    {
        return std::make_unique<PasswdLineField>(parent);
    }

private Q_SLOTS:
    void masksThePasswordOfTheQueryForm();
    void masksThePasswordOfEachForm_data();
    void masksThePasswordOfEachForm();
    void masksOnlyWhereTheWholeTextMatches();
    void tellsTheRealTextOnce();
    void neverTellsWhatIsTypedIntoThePassword();
    void letsTheTabKeyThrough();
};

void TestPasswdLineEdit::masksThePasswordOfTheQueryForm()
{
    field->setReal(QStringLiteral("http://host/vantry?a=b&c=secret&path=/x"));
    QCOMPARE(field->shown(), QStringLiteral("http://host/vantry?a=b&c=%1&path=/x").arg(mask(6)));
}

void TestPasswdLineEdit::masksThePasswordOfEachForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("in one URL") << "http://h/rhel/a=b/c=%1/rhel/d=e/f=%2/vantry?g=h&i=%3&path=/x";
    QTest::newRow("in several URLs") << "http://h/vantry?a=b&c=%1&path=/x http://h/rhel/d=e/f=%2/x "
                                        "http://h/vantry?g=h&i=%3&path=/x http://h/x";
}

void TestPasswdLineEdit::masksThePasswordOfEachForm()
{
    QFETCH(QString, text);
    field->setReal(text.arg("one", "first", ""));
    QCOMPARE(field->shown(), text.arg(mask(3), mask(5), ""));
    field->setReal(text.arg("one", "first", "secret"));
    QCOMPARE(field->shown(), text.arg(mask(3), mask(5), mask(6)));
}

void TestPasswdLineEdit::masksOnlyWhereTheWholeTextMatches()
{
    PasswdLineEdit edit(QRegularExpression(QStringLiteral("pw=(\\w+)|a")), nullptr);
    edit.setRealText(QStringLiteral("pw=abc"));
    QCOMPARE(edit.text(), QStringLiteral("pw=") + mask(3));
    edit.setRealText(QStringLiteral("pw=abc!"));
    QCOMPARE(edit.text(), QStringLiteral("pw=abc!"));
}

void TestPasswdLineEdit::tellsTheRealTextOnce()
{
    const std::unique_ptr<QSignalSpy> told = field->spyOnRealText();
    field->setReal(real("new"));
    QCOMPARE(told->count(), 1);
    QCOMPARE(told->at(0).at(0).toString(), real("new"));
}

void TestPasswdLineEdit::neverTellsWhatIsTypedIntoThePassword()
{
    QStringList told;
    auto* edit = qobject_cast<QLineEdit*>(field->widget());
    for (const auto signal : {&QLineEdit::textChanged, &QLineEdit::textEdited})
        connect(edit, signal, edit, [&](const QString& text) { told.append(text); });
    goInto(2);
    type("SECRET");
    QVERIFY(told.size() >= 12);
    for (const QString& text : qAsConst(told))
        QVERIFY2(text.startsWith(field->head() + mask(7)) && text.endsWith(field->tail()),
                 qPrintable(text));
}

void TestPasswdLineEdit::letsTheTabKeyThrough()
{
    key(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), other);
    QCOMPARE(field->real(), real("hidden"));
}

QTEST_MAIN(TestPasswdLineEdit)
#include "tst_PasswdLineEdit.moc"
