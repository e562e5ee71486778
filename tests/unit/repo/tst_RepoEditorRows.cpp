// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Colors.h"
#include "repo/RepoEditorContextMenu.h"
#include "support/MenuDriver.h"
#include "unit/repo/RepoEditorTest.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTest>

using namespace RepoEditor;

/// What the repository editor does with single repositories.
class TestRepoEditorRows : public RepoEditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeAll(); }
    void cleanup() { removeAll(); }

    void thePermanentCheckSkipsTheDefaultValue();
    void removesTheSelectedRowsInAnyOrder_data();
    void removesTheSelectedRowsInAnyOrder();
    void removesTheSelectedRowsAfterColumnsWereMoved();
    void removesNothingWithoutASelection();
    void removingKeepsTheSessionsValue();
    void addingNothingAddsNothing();
    void aNewEntryWithoutIdentifierIsAnErrorInTheList();
    void addsAnEntryAndSelectsIt();
    void anUnchangedCopyIsNotAdded();
    void aCopyIsATwinUntilItsIdentifierIsChanged();
    void namesTheFirstOfSeveralTwins();
    void aMissingIdentifierComesBeforeTwins();
    void editsTheCurrentRow();
    void aCancelledEditChangesNothing();
    void aDoubleClickInACheckColumnEdits_data();
    void aDoubleClickInACheckColumnEdits();
    void theContextMenuEditsTheRowUnderThePointer();
    void theContextMenuIsSafeBelowTheRows();
    void applyDropsWhatTheUserAgreedTo();
};

void TestRepoEditorRows::thePermanentCheckSkipsTheDefaultValue()
{
    run([&] {
        QCOMPARE(entry("b").enabled, 1);
        QVERIFY(conf->mainEnabled);
        editor->click("b", ColumnEnabled);
        QCOMPARE(entry("b").enabled, 0);
        QVERIFY(editor->isEnabled("Apply"));
        QVERIFY(editor->isEnabled("Reset All"));
        QCOMPARE(status(), QString("Unapplied Configuration Changes"));
        QCOMPARE(statusColour(), QColor(Colors::okBg()));
        editor->click("b", ColumnEnabled);
        QCOMPARE(entry("b").enabled, 2);
        QVERIFY(used.value("b"));
    });
}

void TestRepoEditorRows::removesTheSelectedRowsInAnyOrder_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::newRow("down") << QStringList{"a", "c", "d"};
    QTest::newRow("up") << QStringList{"d", "c", "a"};
    QTest::newRow("mixed") << QStringList{"c", "d", "a"};
    QTest::newRow("mixed otherwise") << QStringList{"c", "a", "d"};
}

void TestRepoEditorRows::removesTheSelectedRowsInAnyOrder()
{
    QFETCH(QStringList, order);
    run([&] {
        for (const QString& id : order)
            editor->click(id, ColumnId, id == order.first() ? Qt::NoModifier : Qt::ControlModifier);
        QCOMPARE(editor->selected(), QStringList({"a", "c", "d"}));
        editor->press("Remove");
        QCOMPARE(editor->listed(), QStringList({"b", "e"}));
        QVERIFY(editor->selected().isEmpty());
        QVERIFY(!editor->isEnabled("Remove"));
        QCOMPARE(status(), QString("Unapplied Configuration Changes"));
        editor->press("Apply");
    });
    const auto left = files();
    QCOMPARE(left.value("etc/yum.repos.d/many.repo"),
             QByteArray("[b]\nname=B\nmirrorlist=file:///b\n"));
}

void TestRepoEditorRows::removesTheSelectedRowsAfterColumnsWereMoved()
{
    run([&] {
        editor->view->horizontalHeader()->moveSection(ColumnName, ColumnUse);
        editor->click("b");
        editor->click("c", ColumnUse, Qt::ShiftModifier);
        editor->press("Remove");
        QCOMPARE(editor->listed(), QStringList({"a", "d", "e"}));
    });
}

void TestRepoEditorRows::removesNothingWithoutASelection()
{
    run([&] {
        editor->click("a");
        editor->click("a", ColumnId, Qt::ControlModifier);
        QVERIFY(editor->selected().isEmpty());
        editor->press("Remove"); // of a row that is current, but not selected
        QCOMPARE(conf->entries.size(), 5);
        QVERIFY(!editor->isEnabled("Apply"));
    });
}

void TestRepoEditorRows::removingKeepsTheSessionsValue()
{
    run([&] {
        editor->click("d");
        editor->press("Remove");
        QVERIFY(used.value("d"));
    });
}

void TestRepoEditorRows::addingNothingAddsNothing()
{
    run([&] {
        driver->expect(entryTitle).press("OK");
        editor->press("Add");
        QCOMPARE(conf->entries.size(), 5);
        QVERIFY(!editor->isEnabled("Apply"));
        QCOMPARE(status(), QString());
    });
}

void TestRepoEditorRows::aNewEntryWithoutIdentifierIsAnErrorInTheList()
{
    run([&] {
        expectEntry(nameTip, "Nameless");
        editor->press("Add");
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e", "(new)"}));
        QVERIFY(editor->cell("(new)", ColumnId).data(Qt::FontRole).value<QFont>().italic());
        QVERIFY(!editor->cell("a", ColumnId).data(Qt::FontRole).isValid());
        QCOMPARE(status(), QString("A repository has no Identifier"));
        QCOMPARE(statusColour(), QColor(Colors::errorBg()));
        QCOMPARE(editor->selected(), QStringList({"(new)"}));
        // Nothing stands in the way of an Apply but the question.
        QVERIFY(editor->isEnabled("Apply"));
        expectEntry(idTip, "z");
        editor->press("Edit");
        QCOMPARE(status(), QString("Unapplied Configuration Changes"));
    });
}

void TestRepoEditorRows::addsAnEntryAndSelectsIt()
{
    run([&] {
        editor->click("e");
        expectEntry(idTip, "aa");
        editor->press("Add");
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e", "aa"}));
        QCOMPARE(editor->selected(), QStringList({"aa"}));
        QCOMPARE(editor->view->currentRow(), 5);
        QVERIFY(used.value("aa"));
        QCOMPARE(entry("aa").filePosition, 0.0);
        editor->press("Apply");
    });
    QCOMPARE(files().value("etc/yum.repos.d/aa.repo"), QByteArray("[aa]\n"));
}

void TestRepoEditorRows::anUnchangedCopyIsNotAdded()
{
    run([&] {
        editor->click("c");
        driver->expect(entryTitle).press("OK");
        editor->press("Copy");
        QCOMPARE(conf->entries.size(), 5);
        QVERIFY(!editor->isEnabled("Apply"));
    });
}

void TestRepoEditorRows::aCopyIsATwinUntilItsIdentifierIsChanged()
{
    run([&] {
        editor->click("c");
        expectEntry(nameTip, "Twin");
        editor->press("Copy");
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e", "c"}));
        QCOMPARE(entry("c").name, QString("C"));
        const Repo::Entry copy = conf->entries.last();
        QCOMPARE(copy.name, QString("Twin"));
        QCOMPARE(copy.baseurl, QString("file:///c"));
        QCOMPARE(copy.enabled, 2);
        QCOMPARE(copy.fileName, entry("c").fileName);
        QCOMPARE(copy.filePosition, 3.0);
        QCOMPARE(status(), QString("Two or more repositories have the Identifier, c"));
        QCOMPARE(statusColour(), QColor(Colors::errorBg()));
        QCOMPARE(editor->view->currentRow(), 5);
        expectEntry(idTip, "c2");
        editor->press("Edit");
        QCOMPARE(status(), QString("Unapplied Configuration Changes"));
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e", "c2"}));
    });
}

void TestRepoEditorRows::namesTheFirstOfSeveralTwins()
{
    tree->write("/etc/yum.repos.d/many.repo", "[x]\n[y]\n[z]\n[z]\n[y]\n");
    run([&] {
        QCOMPARE(status(), QString("Two or more repositories have the Identifier, y"));
        QVERIFY(!editor->isEnabled("Apply"));
    });
}

void TestRepoEditorRows::aMissingIdentifierComesBeforeTwins()
{
    tree->write("/etc/yum.repos.d/many.repo", "[x]\n[x]\n[]\n[]\n");
    run([&] { QCOMPARE(status(), QString("A repository has no Identifier")); });
}

void TestRepoEditorRows::editsTheCurrentRow()
{
    run([&] {
        editor->click("b");
        expectEntry(nameTip, "Beta");
        editor->press("Edit");
        QCOMPARE(entry("b").name, QString("Beta"));
        QCOMPARE(entry("b").mirrorlist, QString("file:///b"));
        QCOMPARE(entry("d").name, QString("A"));
        QCOMPARE(editor->cell("b", ColumnName).data().toString(), QString("Beta"));
        QCOMPARE(editor->selected(), QStringList({"b"}));
        QVERIFY(editor->isEnabled("Apply"));
    });
}

void TestRepoEditorRows::aCancelledEditChangesNothing()
{
    run([&] {
        editor->click("b");
        expectEntry(nameTip, "Beta", "Cancel");
        editor->press("Edit");
        QCOMPARE(entry("b").name, QString("B"));
        QVERIFY(!editor->isEnabled("Apply"));
        QCOMPARE(status(), QString());
    });
}

void TestRepoEditorRows::aDoubleClickInACheckColumnEdits_data()
{
    QTest::addColumn<int>("column");
    QTest::newRow("Sess") << int(ColumnUse);
    QTest::newRow("Perm") << int(ColumnEnabled);
    QTest::newRow("Name") << int(ColumnName);
}

void TestRepoEditorRows::aDoubleClickInACheckColumnEdits()
{
    QFETCH(int, column);
    run([&] {
        driver->expect(entryTitle)
            .act([this](QWidget* window) {
                for (const QLineEdit* edit : window->findChildren<QLineEdit*>()) {
                    if (edit->toolTip() == idTip)
                        QCOMPARE(edit->text(), QString("c"));
                }
            })
            .press("Cancel");
        editor->doubleClick("c", column);
        // The first of the two clicks is a click like any other; the second one isn't.
        QCOMPARE(used.value("c"), column != ColumnUse);
        QCOMPARE(entry("c").enabled, column == ColumnEnabled ? 0 : 2);
    });
}

void TestRepoEditorRows::theContextMenuEditsTheRowUnderThePointer()
{
    run([&] {
        editor->click("a");
        expectEntry(nameTip, "Delta");
        MenuDriver menu("Edit");
        rightClick(editor->at("d", ColumnName));
        QTRY_COMPARE(entry("d").name, QString("Delta"));
        QCOMPARE(menu.items, QStringList({"Edit", "Browse Repository"}));
    });
}

void TestRepoEditorRows::theContextMenuIsSafeBelowTheRows()
{
    run([&] {
        dialog->resize(dialog->width(), dialog->height() + 200);
        QTRY_VERIFY(editor->view->viewport()->height() > 250);
        MenuDriver menu("Edit");
        rightClick(QPoint(30, editor->view->viewport()->height() - 10));
        QCOMPARE(menu.items, QStringList({"(Edit)", "(Browse Repository)"}));
        dialog->edit(QModelIndex());
        Q_EMIT editor->view->getContextMenu()->edit(QModelIndex());
        QVERIFY(!editor->isEnabled("Apply"));
    });
}

void TestRepoEditorRows::applyDropsWhatTheUserAgreedTo()
{
    run([&] {
        expectEntry(nameTip, "Nameless");
        editor->press("Add");
        editor->click("c");
        expectEntry(nameTip, "Twin");
        editor->press("Copy");
        driver->expect("Repository Editor").press("Yes");
        editor->press("Apply");
        QCOMPARE(editor->listed(), QStringList({"a", "b", "c", "d", "e"}));
        QCOMPARE(editor->cell("c", ColumnName).data().toString(), QString("C"));
        QVERIFY(editor->selected().isEmpty());
        QVERIFY(!editor->isEnabled("Apply"));
        QCOMPARE(status(), QString());
    });
}

QTEST_MAIN(TestRepoEditorRows)
#include "tst_RepoEditorRows.moc"
