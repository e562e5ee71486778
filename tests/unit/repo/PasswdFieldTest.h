// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "unit/repo/PasswdField.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

/// A password field in a window, with the focus and the secret "hidden".
class PasswdFieldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    virtual std::unique_ptr<PasswdField> makeField(QWidget* parent) const = 0;

    QString mask(int length) const { return field->mask(length); }
    /// The real text with a secret.
    QString real(const QString& secret) const { return field->head() + secret + field->tail(); }
    /// How it shows with a secret of a length.
    QString shown(int length) const { return field->shownHead() + mask(length) + field->tail(); }
    int start() const { return field->head().size(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(field->widget(), key, modifiers);
    }
    void keys(int count, Qt::Key each, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        while (count-- > 0)
            key(each, modifiers);
    }
    void type(const QString& text) { QTest::keyClicks(field->widget(), text); }
    /// Puts the cursor behind `index` characters of the secret, by keys.
    void goInto(int index)
    {
        key(Qt::Key_Home, field->toTheStart());
        keys(start() + index, Qt::Key_Right);
        QCOMPARE(field->position(), start() + index);
    }
    void call(const char* slot) { QVERIFY(QMetaObject::invokeMethod(field->widget(), slot)); }

    std::unique_ptr<QWidget> window;
    std::unique_ptr<PasswdField> field;
    QLineEdit* other = nullptr;
};

inline void PasswdFieldTest::init()
{
    window = std::make_unique<QWidget>();
    auto* box = new QVBoxLayout(window.get());
    field = makeField(nullptr);
    box->addWidget(field->widget());
    other = new QLineEdit;
    box->addWidget(other);
    window->resize(800, 200);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    field->widget()->setFocus();
    field->setReal(real(QStringLiteral("hidden")));
    QApplication::clipboard()->clear();
}

inline void PasswdFieldTest::cleanup()
{
    field.reset();
    window.reset();
}
