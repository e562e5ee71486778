// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HDialog.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

class TestHDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnAndEnterNeitherPressTheDefaultButtonNorEndTheDialog()
    {
        HDialog dialog(nullptr);
        auto* edit = new QLineEdit(&dialog);
        auto* button = new QPushButton("OK", &dialog);
        auto* box = new QVBoxLayout(&dialog);
        box->addWidget(edit);
        box->addWidget(button);
        button->setDefault(true);
        QSignalSpy pressed(button, &QPushButton::clicked);
        QSignalSpy finished(&dialog, &QDialog::finished);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        edit->setFocus();
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
            QTest::keyClick(edit, key);
            QCOMPARE(pressed.count(), 0);
            QCOMPARE(finished.count(), 0);
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            dialog.keyPressEvent(&event);
            QVERIFY2(!event.isAccepted(), "the key belongs to the parent");
        }
    }

    void escapeStillEndsTheDialog()
    {
        HDialog dialog(nullptr);
        QSignalSpy rejected(&dialog, &QDialog::rejected);
        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QCOMPARE(rejected.count(), 1);
    }
};

QTEST_MAIN(TestHDialog)
#include "tst_HDialog.moc"
