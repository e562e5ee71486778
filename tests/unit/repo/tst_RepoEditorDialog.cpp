// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Colors.h"
#include "unit/repo/RepoEditorTest.h"

#include <QApplication>
#include <QHeaderView>
#include <QTest>

using namespace RepoEditor;

/// The repository editor as a window: what it opens with, keeps, takes back and writes.
class TestRepoEditorDialog : public RepoEditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeAll(); }
    void cleanup() { removeAll(); }

    void looksAsLaidOut();
    void opensWithNothingSelectedAndNothingToApply();
    void opensSortedByIdentifierEachTime();
    void numbersInIdentifiersSortAsNumbers();
    void showsAllOfAFewRepositories();
    void aSessionChangeIsNothingToApply();
    void cancelPutsTheSessionBack_data();
    void cancelPutsTheSessionBack();
    void cancelTakesConfigurationChangesBack();
    void escapeAndClosingAreCancel_data();
    void escapeAndClosingAreCancel();
    void aForcedLeaveSignalsWithoutAChange();
    void leavingSignalsOnce();
    void resetAllKeepsTheSelectedRepository();
    void resetAllSelectsNothingIfTheRepositoryIsGone();
    void resetAllPutsTheSessionBack();
    void applyLeavesNoRowSelected();
    void applyKeepsTheSessionsChanges();
    void applyRefusedByTheUserStaysOpen();
    void aFailedApplyKeepsTheTableTrue();
    void okWritesAndCloses();
    void okWithoutAChangeWritesNothing();
    void okStaysOpenIfWritingFails();
    void aFailedReadShowsNothing_data();
    void aFailedReadShowsNothing();
    void aFailedReadComesBackAfterAGoodOne();
    void aFailedReadInResetAllKeepsTheTableTrue();
    void returnNeitherAppliesNorCloses();
    void worksByKeyboardAlone();
};

void TestRepoEditorDialog::looksAsLaidOut()
{
    const QMap<QString, QString> toolTips{
        {"Browse Repository", "Browse the first URL specified for the selected repository using an "
                              "external web browser"},
        {"Edit", "Edit the selected repository configuration"},
        {"Add", "Create a new repository configuration from scratch"},
        {"Copy", "Create a new repository configuration based on the selected repository"},
        {"Remove", "Remove the selected repository configuration"},
        {"Reset All", "Undo changes to all repository configurations since the last Apply or "
                      "opening of the dialog"},
        {"Cancel", "Undo changes to all repository configurations since the last Apply or opening "
                   "of the dialog, and close the window"},
        {"Apply", "Apply changes to all repository configurations, but do not close the window"},
        {"OK", "Apply changes to all repository configurations, and close the window"},
    };
    run([&] {
        QVERIFY(dialog->isModal());
        QVERIFY(dialog->testAttribute(Qt::WA_ShowModal));
        int row = 0, column = -1;
        for (const char* text : {"Browse Repository", "Edit", "Add", "Copy", "Remove", "Reset All",
                                 "Cancel", "Apply", "OK"}) {
            const QPushButton* button = editor->button(text);
            QCOMPARE(button->toolTip(), toolTips.value(text));
            QCOMPARE(button->isDefault(), button->text() == "Apply");
            QVERIFY(button->y() > editor->view->geometry().bottom());
            QVERIFY(button->y() > row || (button->y() == row && button->x() > column));
            row = button->y();
            column = button->x();
        }
    });
}

void TestRepoEditorDialog::opensWithNothingSelectedAndNothingToApply()
{
    run([&] {
        QVERIFY(editor->selected().isEmpty());
        QTRY_VERIFY(dialog->isActiveWindow());
        QCOMPARE(QApplication::focusWidget(), editor->view);
        QCOMPARE(editor->view->currentRow(), -1);
        for (const char* text :
             {"Browse Repository", "Edit", "Copy", "Remove", "Reset All", "Apply"})
            QVERIFY2(!editor->isEnabled(text), text);
        for (const char* text : {"Add", "Cancel", "OK"})
            QVERIFY2(editor->isEnabled(text), text);
        QCOMPARE(status(), QString());
        editor->click("c");
        for (const char* text : {"Browse Repository", "Edit", "Copy", "Remove"})
            QVERIFY2(editor->isEnabled(text), text);
    });
    run([&] { QVERIFY2(!editor->isEnabled("Edit"), "opened again"); });
}

void TestRepoEditorDialog::opensSortedByIdentifierEachTime()
{
    for (int time = 0; time < 2; ++time) {
        run([&] {
            QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e"}));
            const QHeaderView* header = editor->view->horizontalHeader();
            const auto clickHeader = [&](int column) {
                QTest::mouseClick(
                    header->viewport(), Qt::LeftButton, Qt::NoModifier,
                    QPoint(header->sectionViewportPosition(column) + 10, header->height() / 2));
            };
            clickHeader(ColumnName);
            QCOMPARE(editor->listed(), QStringList({"d", "b", "c", "a", "e"}));
            clickHeader(ColumnId);
            clickHeader(ColumnId);
            QCOMPARE(editor->listed(), QStringList({"e", "d", "c", "b", "a"}));
        });
    }
}

void TestRepoEditorDialog::numbersInIdentifiersSortAsNumbers()
{
    tree->write("/etc/yum.repos.d/many.repo", "[a10]\n[a2]\n[a1]\n");
    run([&] { QCOMPARE(editor->listed(), QStringList({"a1", "a2", "a10", "e"})); });
}

void TestRepoEditorDialog::showsAllOfAFewRepositories()
{
    run([&] {
        const QRect viewport = editor->view->viewport()->rect();
        for (const char* id : {"a", "e"}) {
            for (int column = 0; column < ColumnCount; ++column)
                QVERIFY(viewport.contains(editor->view->visualRect(editor->cell(id, column))));
        }
    });
}

void TestRepoEditorDialog::aSessionChangeIsNothingToApply()
{
    const auto before = files();
    QCOMPARE(run(
                 [&] {
                     editor->click("a", ColumnUse);
                     QVERIFY(!editor->isEnabled("Apply"));
                     QVERIFY(!editor->isEnabled("Reset All"));
                     QCOMPARE(status(), QString());
                 },
                 "OK"),
             int(QDialog::Accepted));
    QVERIFY(used.value("a"));
    QCOMPARE(files(), before);
    QCOMPARE(reposChanged->count(), 1);
    run([] {}, "OK");
    QCOMPARE(reposChanged->count(), 1);
}

void TestRepoEditorDialog::cancelPutsTheSessionBack_data()
{
    QTest::addColumn<bool>("force");
    QTest::addColumn<bool>("apply");
    QTest::addColumn<int>("signalled");
    QTest::newRow("plainly") << false << false << 0;
    QTest::newRow("forced") << true << false << 1;
    QTest::newRow("after an Apply") << false << true << 1;
}

void TestRepoEditorDialog::cancelPutsTheSessionBack()
{
    QFETCH(bool, force);
    QFETCH(bool, apply);
    dialog->forceReposChanged = force;
    QCOMPARE(run([&] {
                 editor->click("c", ColumnUse);
                 QVERIFY(!used.value("c"));
                 if (apply) {
                     editor->click("a", ColumnEnabled);
                     editor->press("Apply");
                 }
             }),
             int(QDialog::Rejected));
    QVERIFY(used.value("c"));
    QTEST(reposChanged->count(), "signalled");
}

void TestRepoEditorDialog::cancelTakesConfigurationChangesBack()
{
    const auto before = files();
    run([&] {
        editor->click("c", ColumnEnabled);
        editor->click("d");
        editor->press("Remove");
        QCOMPARE(conf->entries.size(), 4);
    });
    QCOMPARE(files(), before);
    QCOMPARE(conf->entries.size(), 5);
    QCOMPARE(entry("c").enabled, 2);
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::escapeAndClosingAreCancel_data()
{
    QTest::addColumn<bool>("escape");
    QTest::newRow("Escape") << true;
    QTest::newRow("closed") << false;
}

void TestRepoEditorDialog::escapeAndClosingAreCancel()
{
    QFETCH(bool, escape);
    driver->expect(title)
        .act([&](QWidget* shown) {
            const Closer closer(shown);
            editor->click("c", ColumnUse);
            editor->click("d");
            editor->press("Remove");
            if (escape)
                QTest::keyClick(editor->view, Qt::Key_Escape);
            else
                shown->close();
        })
        .leave();
    QCOMPARE(dialog->exec(), int(QDialog::Rejected));
    QVERIFY(used.value("c"));
    QCOMPARE(conf->entries.size(), 5);
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::aForcedLeaveSignalsWithoutAChange()
{
    dialog->forceReposChanged = true;
    run([] {}, "OK");
    QCOMPARE(reposChanged->count(), 1);
    dialog->forceReposChanged = false;
    run([] {}, "OK");
    QCOMPARE(reposChanged->count(), 1);
}

void TestRepoEditorDialog::leavingSignalsOnce()
{
    connect(dialog.get(), &Dialog::reposChanged, dialog.get(),
            [this] { QVERIFY2(!dialog->isVisible(), "signalled before it went"); });
    run([&] { editor->click("a", ColumnUse); }, "OK");
    dialog->hide();
    QCOMPARE(reposChanged->count(), 1);
}

void TestRepoEditorDialog::resetAllKeepsTheSelectedRepository()
{
    run([&] {
        editor->click("d", ColumnEnabled);
        editor->click("a");
        editor->press("Remove");
        editor->click("c");
        editor->press("Reset All");
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e"}));
        QCOMPARE(editor->selected(), QStringList({"c"}));
        QVERIFY(editor->isEnabled("Edit"));
        QCOMPARE(entry("d").enabled, 1);
        QVERIFY(!editor->isEnabled("Reset All"));
        QVERIFY(!editor->isEnabled("Apply"));
        QCOMPARE(status(), QString());
    });
}

void TestRepoEditorDialog::resetAllSelectsNothingIfTheRepositoryIsGone()
{
    run([&] {
        expectEntry(idTip, "z");
        editor->press("Add");
        QCOMPARE(editor->selected(), QStringList({"z"}));
        editor->press("Reset All");
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e"}));
        QVERIFY(editor->selected().isEmpty());
        QVERIFY(!editor->isEnabled("Edit"));
    });
}

void TestRepoEditorDialog::resetAllPutsTheSessionBack()
{
    run(
        [&] {
            editor->click("c", ColumnUse);
            editor->click("c", ColumnEnabled);
            editor->press("Reset All");
            QVERIFY(used.value("c"));
        },
        "OK");
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::applyLeavesNoRowSelected()
{
    run([&] {
        editor->click("c");
        editor->click("c", ColumnEnabled);
        editor->press("Apply");
        QVERIFY(dialog->isVisible());
        QVERIFY(editor->selected().isEmpty());
        QCOMPARE(editor->view->currentRow(), -1);
        for (const char* text :
             {"Browse Repository", "Edit", "Copy", "Remove", "Reset All", "Apply"})
            QVERIFY2(!editor->isEnabled(text), text);
        QCOMPARE(status(), QString());
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e"}));
        QVERIFY(files()
                    .value("etc/yum.repos.d/many.repo")
                    .contains("[c]\nname=C\n"
                              "baseurl=file:///c\n"
                              "enabled=0\n"));
        QCOMPARE(reposChanged->count(), 0);
    });
    QCOMPARE(reposChanged->count(), 1);
}

void TestRepoEditorDialog::applyKeepsTheSessionsChanges()
{
    run(
        [&] {
            editor->click("a", ColumnUse);
            editor->click("c", ColumnEnabled);
            editor->press("Apply");
            QVERIFY(used.value("a"));
        },
        "OK");
    QVERIFY(used.value("a"));
    QCOMPARE(reposChanged->count(), 1);
}

void TestRepoEditorDialog::applyRefusedByTheUserStaysOpen()
{
    const auto before = files();
    run([&] {
        expectEntry(nameTip, "Nameless");
        editor->press("Add");
        for (const char* button : {"Apply", "OK"}) {
            driver->expect("Repository Editor").press("No");
            editor->press(button);
            QVERIFY(dialog->isVisible());
            QVERIFY(editor->isEnabled("Apply"));
            QCOMPARE(editor->selected(), QStringList({"(new)"}));
            QCOMPARE(status(), QString("A repository has no Identifier"));
        }
        QCOMPARE(files(), before);
    });
    QCOMPARE(files(), before);
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::aFailedApplyKeepsTheTableTrue()
{
    run([&] {
        expectEntry(nameTip, "Nameless");
        editor->press("Add");
        conf->entries[0].fileName = tree->path("/nowhere/x.repo");
        driver->expect("Repository Editor").press("Yes");
        driver->expect("VOK Repository Editor Error")
            .act([&](QWidget*) { editor->view->viewport()->grab(); })
            .press("OK");
        editor->press("Apply");
        QCOMPARE(editor->view->model()->rowCount(), conf->entries.size());
        QVERIFY(editor->isEnabled("Apply"));
        QVERIFY(editor->isEnabled("Reset All"));
    });
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::okWritesAndCloses()
{
    QCOMPARE(run([&] { editor->click("c", ColumnEnabled); }, "OK"), int(QDialog::Accepted));
    QVERIFY(files().value("etc/yum.repos.d/many.repo").contains("file:///c\nenabled=0\n"));
    QCOMPARE(reposChanged->count(), 1);
}

void TestRepoEditorDialog::okWithoutAChangeWritesNothing()
{
    const auto before = files();
    QCOMPARE(run([] {}, "OK"), int(QDialog::Accepted));
    QCOMPARE(files(), before);
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::okStaysOpenIfWritingFails()
{
    run([&] {
        editor->click("c", ColumnEnabled);
        conf->entries[0].fileName = tree->path("/nowhere/x.repo");
        driver->expect("VOK Repository Editor Error")
            .textContains("Unable to write repository configuration file")
            .press("OK");
        editor->press("OK");
        QVERIFY(dialog->isVisible());
        QVERIFY(editor->isEnabled("Apply"));
    });
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::aFailedReadShowsNothing_data()
{
    QTest::addColumn<bool>("force");
    QTest::newRow("plainly") << false;
    QTest::newRow("forced") << true;
}

void TestRepoEditorDialog::aFailedReadShowsNothing()
{
    QFETCH(bool, force);
    tree->write("/etc/yum.repos.d/many.repo", "[x]\n[broken\n");
    dialog->forceReposChanged = force;
    driver->expect("VOK Repository Editor Error")
        .textContains("Malformed section name in line: [broken")
        .act([this](QWidget* box) { QCOMPARE(box->parentWidget(), window.get()); })
        .press("OK");
    QCOMPARE(dialog->exec(), int(QDialog::Rejected));
    QVERIFY(!dialog->isVisible());
    QCOMPARE(reposChanged->count(), 0);
}

void TestRepoEditorDialog::aFailedReadComesBackAfterAGoodOne()
{
    run([&] { editor->click("a", ColumnUse); }, "OK");
    QCOMPARE(reposChanged->count(), 1);
    tree->write("/etc/yum.repos.d/many.repo", "[broken\n");
    for (int time = 0; time < 2; ++time) {
        driver->expect("VOK Repository Editor Error").press("OK");
        QCOMPARE(dialog->exec(), int(QDialog::Rejected));
        QVERIFY(!dialog->isVisible());
    }
    QCOMPARE(reposChanged->count(), 1);
    tree->write("/etc/yum.repos.d/many.repo", "[x]\n");
    run([&] { QCOMPARE(editor->listed(), QStringList({"e", "x"})); });
}

void TestRepoEditorDialog::aFailedReadInResetAllKeepsTheTableTrue()
{
    run([&] {
        editor->click("c", ColumnEnabled);
        tree->write("/etc/yum.repos.d/many.repo", "[x]\n[broken\n");
        driver->expect("VOK Repository Editor Error")
            .act([&](QWidget* box) {
                QCOMPARE(box->parentWidget(), dialog.get());
                editor->view->viewport()->grab(); // rows that are gone, before the table knows
            })
            .press("OK");
        editor->press("Reset All");
        QCOMPARE(editor->listed(), QStringList({"e"}));
        tree->write("/etc/yum.repos.d/many.repo", "[x]\n");
    });
}

void TestRepoEditorDialog::returnNeitherAppliesNorCloses()
{
    const auto before = files();
    run([&] {
        editor->click("c", ColumnEnabled);
        QCOMPARE(dialog->focusWidget(), editor->view);
        for (Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            QTest::keyClick(editor->view, key);
            QTest::keyClick(dialog.get(), key);
        }
        QVERIFY(dialog->isVisible());
        QVERIFY(editor->isEnabled("Apply"));
    });
    QCOMPARE(files(), before);
}

void TestRepoEditorDialog::worksByKeyboardAlone()
{
    const auto key = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    driver->expect(title)
        .act([&](QWidget* shown) {
            const Closer closer(shown);
            QTRY_COMPARE(QApplication::focusWidget(), editor->view);
            key(Qt::Key_Down);
            key(Qt::Key_Down);
            QCOMPARE(editor->selected(), QStringList({"b"}));
            key(Qt::Key_Right);
            key(Qt::Key_Space);
            QCOMPARE(entry("b").enabled, 0);
            key(Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), editor->button("Browse Repository"));
            key(Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), editor->button("Edit"));
            expectEntry(nameTip, "Beta");
            key(Qt::Key_Return);
            QCOMPARE(entry("b").name, QString("Beta"));
            dialog->activateWindow(); // there is no window manager to do it
            QTRY_COMPARE(QApplication::focusWidget(), editor->button("Edit"));
            for (const char* next :
                 {"Add", "Copy", "Remove", "Reset All", "Cancel", "Apply", "OK"}) {
                key(Qt::Key_Tab);
                QCOMPARE(QApplication::focusWidget(), editor->button(next));
            }
            key(Qt::Key_Space);
        })
        .leave();
    QCOMPARE(dialog->exec(), int(QDialog::Accepted));
    const QByteArray text = files().value("etc/yum.repos.d/many.repo");
    QVERIFY2(text.contains("[b]\nname=Beta\nmirrorlist=file:///b\nenabled=0\n"), text);
}

QTEST_MAIN(TestRepoEditorDialog)
#include "tst_RepoEditorDialog.moc"
