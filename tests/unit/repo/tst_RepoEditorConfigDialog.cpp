// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/ConfigDialogTest.h"

/// How the dialog for one entry ends and begins.
class TestRepoEditorConfigDialog : public ConfigDialogTest
{
    Q_OBJECT

private Q_SLOTS:
    void okWithNothingChangedLeavesAllAlone();
    void okWritesTheEntryAndItsUse_data();
    void okWritesTheEntryAndItsUse();
    void aNewIdentifierIsUsedBesideTheOldOne();
    void cancelLeavesAllAlone();
    void escapeLeavesAllAlone();
    void resetIsEnabledByChangesOnly_data();
    void resetIsEnabledByChangesOnly();
    void resetPutsTheEntryBack();
    void okWorksWithAWarning();
    void returnDoesNotEndIt();
    void startsInTheIdentifierEachTime();
    void takesOneEntryAfterAnother();
};

void TestRepoEditorConfigDialog::okWithNothingChangedLeavesAllAlone()
{
    used.insert(entry.id, false);
    entry.filePosition = 2.55; // not what the field would give back
    open();
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    press(QStringLiteral("OK"));
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toInt(), 0);
    QCOMPARE(entry.filePosition, 2.55);
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("base"), false}}));
}

void TestRepoEditorConfigDialog::okWritesTheEntryAndItsUse_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("mainEnabled");
    QTest::addColumn<bool>("isUsed");
    QTest::newRow("no") << "No" << 0 << true << false;
    QTest::newRow("default, on") << "Default (Yes)" << 1 << true << true;
    QTest::newRow("default, off") << "Default (No)" << 1 << false << false;
    QTest::newRow("yes") << "Yes" << 2 << false << true;
}

void TestRepoEditorConfigDialog::okWritesTheEntryAndItsUse()
{
    QFETCH(QString, choice);
    QFETCH(int, value);
    QFETCH(bool, mainEnabled);
    QFETCH(bool, isUsed);
    conf->mainEnabled = mainEnabled;
    used.insert(entry.id, !isUsed);
    entry.enabled = value == 2 ? 0 : 2;
    open();
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    enabled()->setFocus();
    QTest::keyClick(enabled(), Qt::Key_Home);
    for (int i = 0; i < 3 && enabled()->currentText() != choice; ++i)
        QTest::keyClick(enabled(), Qt::Key_Down);
    QCOMPARE(enabled()->currentText(), choice);
    type(name(), QStringLiteral("+"));
    press(QStringLiteral("OK"));
    QCOMPARE(finished.at(0).at(0).toInt(), 1);
    QCOMPARE(entry.enabled, value);
    QCOMPARE(entry.name, QStringLiteral("Base packages+"));
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("base"), isUsed}}));
}

void TestRepoEditorConfigDialog::aNewIdentifierIsUsedBesideTheOldOne()
{
    used.insert(entry.id, false);
    open();
    clear(id());
    QTest::keyClicks(id(), QStringLiteral("new"));
    press(QStringLiteral("OK"));
    QCOMPARE(entry.id, QStringLiteral("new"));
    QCOMPARE(used, (QHash<QString, bool>{{QStringLiteral("base"), false},
                                         {QStringLiteral("new"), true}}));
}

void TestRepoEditorConfigDialog::cancelLeavesAllAlone()
{
    open();
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    type(id(), QStringLiteral("x"));
    press(QStringLiteral("Cancel"));
    QCOMPARE(finished.at(0).at(0).toInt(), 0);
    QCOMPARE(entry.id, QStringLiteral("base"));
    QVERIFY(used.isEmpty());
}

void TestRepoEditorConfigDialog::escapeLeavesAllAlone()
{
    open();
    type(id(), QStringLiteral("x"));
    QTest::keyClick(id(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(entry.id, QStringLiteral("base"));
}

void TestRepoEditorConfigDialog::resetIsEnabledByChangesOnly_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < 11; ++i)
        QTest::newRow(qPrintable(QString::number(i))) << i;
}

void TestRepoEditorConfigDialog::resetIsEnabledByChangesOnly()
{
    QFETCH(int, index);
    entry.baseurl = vantryUrl;
    entry.enabled = 1;
    entry.gpgcheck = 1;
    open();
    QVERIFY(!button("Reset")->isEnabled());
    QWidget* target = fields().at(index);
    if (qobject_cast<QComboBox*>(target) || qobject_cast<QDoubleSpinBox*>(target))
        QTest::keyClick(target, Qt::Key_Up);
    else
        type(target, QStringLiteral("1"));
    QVERIFY(button("Reset")->isEnabled());
    press(QStringLiteral("Reset"));
    QVERIFY(!button("Reset")->isEnabled());
}

void TestRepoEditorConfigDialog::resetPutsTheEntryBack()
{
    open();
    clear(id());
    QCOMPARE(status()->text(), QStringLiteral("No Identifier specified"));
    clear(urls());
    clear(mirror());
    press(QStringLiteral("Reset"));
    QCOMPARE(id()->text(), QStringLiteral("base"));
    QCOMPARE(urls()->realPlainText(), entry.baseurl);
    QCOMPARE(status()->text(), QString());
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    press(QStringLiteral("OK"));
    QCOMPARE(finished.at(0).at(0).toInt(), 0);
    QCOMPARE(entry.id, QStringLiteral("base"));
}

void TestRepoEditorConfigDialog::okWorksWithAWarning()
{
    open();
    clear(file());
    QTest::keyClicks(file(), QStringLiteral("/tmp/elsewhere.repo"));
    QCOMPARE(status()->text(), QStringLiteral("File is not in any reposdir directory"));
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    press(QStringLiteral("OK"));
    QCOMPARE(finished.at(0).at(0).toInt(), 1);
    QCOMPARE(entry.fileName, QStringLiteral("/tmp/elsewhere.repo"));
}

void TestRepoEditorConfigDialog::returnDoesNotEndIt()
{
    open();
    for (QWidget* target : {static_cast<QWidget*>(id()), static_cast<QWidget*>(mirror()),
                            static_cast<QWidget*>(file())}) {
        target->setFocus();
        QTest::keyClick(target, Qt::Key_Return);
        QVERIFY(dialog->isVisible());
    }
}

void TestRepoEditorConfigDialog::startsInTheIdentifierEachTime()
{
    open();
    QCOMPARE(dialog->focusWidget(), id());
    file()->setFocus();
    type(id(), QStringLiteral("x"));
    file()->setFocus();
    press(QStringLiteral("Cancel"));
    open();
    QCOMPARE(dialog->focusWidget(), id());
    QCOMPARE(id()->text(), QStringLiteral("base"));
    QVERIFY(!button("Reset")->isEnabled());
}

void TestRepoEditorConfigDialog::takesOneEntryAfterAnother()
{
    entry.baseurl = vantryUrl;
    open();
    QVERIFY(authName()->isEnabled());
    press(QStringLiteral("Cancel"));
    Repo::Entry next;
    dialog->setEntry(&next);
    QCOMPARE(authLabels(), QStringList({"Name", "Password"}));
    QCOMPARE(authName()->text() + authPassword()->text() + urls()->realPlainText(), QString());
    QVERIFY(!authName()->isEnabled());
    QCOMPARE(status()->text(), QStringLiteral("No Identifier specified"));
}

QTEST_MAIN(TestRepoEditorConfigDialog)
#include "tst_RepoEditorConfigDialog.moc"
