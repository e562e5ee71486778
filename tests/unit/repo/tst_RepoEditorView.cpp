// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"
#include "repo/RepoEditorContextMenu.h"
#include "repo/RepoEditorModel.h"
#include "repo/RepoEditorSortFilterProxyModel.h"
#include "repo/RepoEditorView.h"
#include "repo/YumConfIO.h"
#include "support/MenuDriver.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <algorithm>
#include <memory>

using namespace RepoEditor;

/// The table of repositories, worked by mouse and keyboard. The model's order is the reverse of the
/// view's, so that a row that wasn't mapped is another one.
class TestRepoEditorView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void looksAsATableOfWholeRows();
    void sortsByTheColumnOfAClickedHeader();
    void meansTheSameColumnsAfterSectionsMoved();

    void aClickOnACheckTogglesItAtOnce();
    void aClickElsewhereTogglesNothing();
    void aClickInAMultipleSelectionTogglesThatRowAlone();
    void theSpaceBarTogglesTheCheckItIsOn();
    void theSpaceBarElsewhereTogglesNothing();
    void aDoubleClickActivates_data();
    void aDoubleClickActivates();
    void aDoubleClickBelowTheRowsDoesNothing();
    void returnDoesNothing();
    void tabLeavesTheTable();

    void currentRowIsTheModels();
    void tellsOfANewCurrentRowInTheModelsNumbers();
    void tellsThatNoRowIsCurrentAfterAReset();
    void tellsNothingOfAnotherCellInTheSameRow();
    void noRowBecomesCurrentByTheFocusAlone();
    void selectedRowsAreTheModels();
    void theKeyboardScrolls();

    void theMenuEditsTheRowUnderThePointer();
    void thereIsNoMenuOverTheChecks();
    void theMenuIsHarmlessBelowTheRows();
    void theMenuComesUpByKeyboard();

private:
    QPoint at(int sourceRow, int column) const
    {
        return view->visualRect(proxy->mapFromSource(model->index(sourceRow, column))).center();
    }
    void click(int sourceRow, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, at(sourceRow, column));
    }
    void clickHeader(int column)
    {
        QTest::mouseClick(
            view->horizontalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier,
            QPoint(view->columnViewportPosition(column) + view->columnWidth(column) / 2,
                   view->horizontalHeader()->height() / 2));
    }
    /// A press of the right button at a place of the viewport, through the window system.
    void rightClick(const QPoint& pos)
    {
        QTest::mouseClick(view->windowHandle(), Qt::RightButton, Qt::NoModifier,
                          view->viewport()->mapTo(view.get(), pos));
    }
    void add(const QString& id)
    {
        Repo::Entry entry;
        entry.id = id;
        entry.name = "Name of " + id;
        conf->entries.append(entry);
    }
    QStringList listed() const
    {
        QStringList ids;
        for (int row = 0; row < proxy->rowCount(); ++row)
            ids += proxy->index(row, ColumnId).data().toString();
        return ids;
    }

    static constexpr int c = 0, b = 1, a = 2; ///< rows of the model

    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<YumIO> yumIO;
    std::unique_ptr<YumConfIO> conf;
    std::unique_ptr<Model> model;
    std::unique_ptr<SortFilterProxyModel> proxy;
    std::unique_ptr<QAbstractItemModelTester> tester;
    std::unique_ptr<View> view;
};

void TestRepoEditorView::init()
{
    used.clear();
    yumIO = std::make_unique<YumIO>();
    conf = std::make_unique<YumConfIO>(options, used);
    for (const char* id : {"c", "b", "a"})
        add(id);
    model = std::make_unique<Model>(yumIO.get(), conf.get(), nullptr);
    proxy = std::make_unique<SortFilterProxyModel>(nullptr);
    proxy->setSourceModel(model.get());
    tester = std::make_unique<QAbstractItemModelTester>(
        proxy.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    view = std::make_unique<View>(model.get(), proxy.get(), nullptr);
    view->HTableView::sortByColumn(ColumnId);
    view->resize(500, 300);
    view->show();
    view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    view->setFocus();
}

void TestRepoEditorView::cleanup()
{
    view.reset();
    tester.reset();
    proxy.reset();
    model.reset();
    conf.reset();
    yumIO.reset();
}

void TestRepoEditorView::looksAsATableOfWholeRows()
{
    QVERIFY(!view->showGrid());
    QCOMPARE(view->selectionBehavior(), QAbstractItemView::SelectRows);
    QVERIFY(view->alternatingRowColors());
    QCOMPARE(view->contextMenuPolicy(), Qt::CustomContextMenu);
    QVERIFY(!view->tabKeyNavigation());
    QVERIFY(view->verticalHeader()->isHidden());
    QVERIFY(view->horizontalHeader()->stretchLastSection());
    QVERIFY(view->horizontalHeader()->sectionsMovable());
    QVERIFY(view->horizontalHeader()->sectionsClickable());
    QVERIFY(view->horizontalHeader()->isVisible());
    QCOMPARE(view->viewOptions().decorationPosition, QStyleOptionViewItem::Left);
    QCOMPARE(view->accessibleName(), QString("Repositories"));
    QCOMPARE(listed(), QStringList({"a", "b", "c"}));
}

void TestRepoEditorView::sortsByTheColumnOfAClickedHeader()
{
    conf->entries[a].name = "z";
    clickHeader(ColumnName);
    QCOMPARE(listed(), QStringList({"b", "c", "a"}));
    QCOMPARE(proxy->filterKeyColumn(), int(ColumnName));
    clickHeader(ColumnName);
    QCOMPARE(listed(), QStringList({"a", "c", "b"}));
    clickHeader(ColumnId);
    QCOMPARE(listed(), QStringList({"a", "b", "c"}));
    QCOMPARE(proxy->filterKeyColumn(), int(ColumnId));
}

void TestRepoEditorView::meansTheSameColumnsAfterSectionsMoved()
{
    view->horizontalHeader()->moveSection(ColumnUse, ColumnName);
    QVERIFY(view->columnViewportPosition(ColumnUse) > view->columnViewportPosition(ColumnId));
    click(a, ColumnId);
    QVERIFY(used.isEmpty());
    click(a, ColumnUse);
    QVERIFY(used.value("a"));
}

void TestRepoEditorView::aClickOnACheckTogglesItAtOnce()
{
    click(a, ColumnUse);
    QCOMPARE(used, (QHash<QString, bool>{{"a", true}}));
    click(b, ColumnEnabled);
    QCOMPARE(conf->entries.at(a).enabled, 1);
    QCOMPARE(conf->entries.at(b).enabled, 0);
    QCOMPARE(conf->entries.at(c).enabled, 1);
    click(b, ColumnEnabled);
    QCOMPARE(conf->entries.at(b).enabled, 2);
    QCOMPARE(used, (QHash<QString, bool>{{"a", true}}));
}

void TestRepoEditorView::aClickElsewhereTogglesNothing()
{
    QSignalSpy data(model.get(), &QAbstractItemModel::dataChanged);
    click(a, ColumnId);
    click(b, ColumnName);
    QCOMPARE(data.count(), 0);
    QCOMPARE(view->currentRow(), b);
}

void TestRepoEditorView::aClickInAMultipleSelectionTogglesThatRowAlone()
{
    click(a, ColumnId);
    click(c, ColumnId, Qt::ShiftModifier);
    QCOMPARE(view->selectedRows().size(), 3);
    click(b, ColumnEnabled, Qt::ControlModifier);
    QCOMPARE(conf->entries.at(a).enabled, 1);
    QCOMPARE(conf->entries.at(b).enabled, 0);
    QCOMPARE(conf->entries.at(c).enabled, 1);
}

void TestRepoEditorView::theSpaceBarTogglesTheCheckItIsOn()
{
    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_Down);
    QCOMPARE(view->currentRow(), b);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE(used, (QHash<QString, bool>{{"b", true}}));
    QTest::keyClick(view.get(), Qt::Key_Right);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE(conf->entries.at(b).enabled, 0);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE(conf->entries.at(b).enabled, 2);
    QCOMPARE(used, (QHash<QString, bool>{{"b", true}}));
}

void TestRepoEditorView::theSpaceBarElsewhereTogglesNothing()
{
    QSignalSpy data(model.get(), &QAbstractItemModel::dataChanged);
    QTest::keyClick(view.get(), Qt::Key_Space); // no current row yet
    click(a, ColumnId);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE(data.count(), 0);
}

void TestRepoEditorView::aDoubleClickActivates_data()
{
    QTest::addColumn<int>("column");
    for (int column = 0; column < ColumnCount; ++column)
        QTest::newRow(QByteArray::number(column)) << column;
}

void TestRepoEditorView::aDoubleClickActivates()
{
    QFETCH(int, column);
    QSignalSpy spy(view.get(), &View::activated);
    const QPoint pos = at(a, column);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(spy.count(), 0);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(spy.count(), 1);
    const auto index = spy[0][0].toModelIndex();
    QCOMPARE(index, model->index(a, column));
}

void TestRepoEditorView::aDoubleClickBelowTheRowsDoesNothing()
{
    QSignalSpy spy(view.get(), &View::activated);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                       QPoint(60, view->viewport()->height() - 5));
    QCOMPARE(spy.count(), 0);
    QVERIFY(used.isEmpty());
}

void TestRepoEditorView::returnDoesNothing()
{
    QSignalSpy spy(view.get(), &View::activated);
    click(a, ColumnUse);
    used.clear();
    QTest::keyClick(view.get(), Qt::Key_Return);
    QTest::keyClick(view.get(), Qt::Key_Enter);
    QCOMPARE(spy.count(), 0);
    QVERIFY(used.isEmpty());
}

void TestRepoEditorView::tabLeavesTheTable()
{
    click(a, ColumnUse);
    QTest::keyClick(view.get(), Qt::Key_Tab);
    QCOMPARE(view->currentIndex().column(), int(ColumnUse));
}

void TestRepoEditorView::currentRowIsTheModels()
{
    QCOMPARE(view->currentRow(), -1);
    view->setCurrentRow(a);
    QCOMPARE(view->currentIndex().row(), 0);
    QCOMPARE(view->currentRow(), a);
    QCOMPARE(view->selectedRows(), QModelIndexList({model->index(a, 0)}));
    view->setCurrentRow(c);
    QCOMPARE(view->currentIndex().row(), 2);
    QCOMPARE(view->selectedRows(), QModelIndexList({model->index(c, 0)}));
}

void TestRepoEditorView::tellsOfANewCurrentRowInTheModelsNumbers()
{
    QSignalSpy spy(view.get(), SIGNAL(currentChanged(int, int)));
    click(a, ColumnId);
    click(b, ColumnId);
    view->setCurrentIndex(QModelIndex());
    QCOMPARE(spy.count(), 3);
    QCOMPARE(spy[0], QVariantList({a, -1}));
    QCOMPARE(spy[1], QVariantList({b, a}));
    QCOMPARE(spy[2], QVariantList({-1, b}));
}

void TestRepoEditorView::tellsThatNoRowIsCurrentAfterAReset()
{
    click(a, ColumnId);
    QSignalSpy spy(view.get(), SIGNAL(currentChanged(int, int)));
    model->reset();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0], QVariantList({-1, a}));
    QCOMPARE(view->currentRow(), -1);
    model->reset();
    QCOMPARE(spy.count(), 1);
}

void TestRepoEditorView::tellsNothingOfAnotherCellInTheSameRow()
{
    click(a, ColumnId);
    QSignalSpy spy(view.get(), SIGNAL(currentChanged(int, int)));
    click(a, ColumnName);
    QCOMPARE(view->currentIndex().column(), int(ColumnName));
    QCOMPARE(spy.count(), 0);
}

void TestRepoEditorView::noRowBecomesCurrentByTheFocusAlone()
{
    QVERIFY(view->hasFocus());
    QCOMPARE(view->currentRow(), -1);
    QTest::keyClick(view.get(), Qt::Key_Down);
    QCOMPARE(view->currentRow(), a);
    QCOMPARE(view->selectedRows(), QModelIndexList({model->index(a, 0)}));
    view->clearFocus();
    view->setFocus();
    QCOMPARE(view->currentRow(), a);
}

void TestRepoEditorView::selectedRowsAreTheModels()
{
    click(b, ColumnId);
    click(a, ColumnName, Qt::ControlModifier);
    QList<int> rows;
    for (const QModelIndex& index : view->selectedRows()) {
        QCOMPARE(index.model(), model.get());
        rows += index.row();
    }
    std::sort(rows.begin(), rows.end());
    QCOMPARE(rows, QList<int>({b, a}));
}

void TestRepoEditorView::theKeyboardScrolls()
{
    for (int number = 0; number < 60; ++number)
        add("x" + QString::number(number));
    model->reset();
    QScrollBar* bar = view->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(view->currentIndex().row(), proxy->rowCount() - 1);
    QCOMPARE(bar->value(), bar->maximum());
    QTest::keyClick(view.get(), Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(bar->value(), 0);
    for (int press = 0; press < 30; ++press)
        QTest::keyClick(view.get(), Qt::Key_Down);
    QVERIFY(view->viewport()->rect().contains(view->visualRect(view->currentIndex())));
}

void TestRepoEditorView::theMenuEditsTheRowUnderThePointer()
{
    for (int column : {ColumnId, ColumnName}) {
        view->clearSelection();
        QSignalSpy spy(view->getContextMenu(), &ContextMenu::edit);
        MenuDriver driver("Edit");
        rightClick(at(b, column));
        QCOMPARE(driver.items, QStringList({"Edit", "Browse Repository"}));
        QCOMPARE(driver.position, view->viewport()->mapToGlobal(at(b, column)));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy[0][0].toModelIndex(), model->index(b, column));
    }
}

void TestRepoEditorView::thereIsNoMenuOverTheChecks()
{
    QSignalSpy shown(view->getContextMenu(), &QMenu::aboutToShow);
    QSignalSpy asked(view.get(), &QWidget::customContextMenuRequested);
    rightClick(at(a, ColumnUse));
    rightClick(at(a, ColumnEnabled));
    QCOMPARE(asked.count(), 2);
    QCOMPARE(shown.count(), 0);
    QVERIFY(used.isEmpty());
    QCOMPARE(conf->entries.at(a).enabled, 1);
}

void TestRepoEditorView::theMenuIsHarmlessBelowTheRows()
{
    for (const char* choice : {"Edit", "Browse Repository"}) {
        QSignalSpy spy(view->getContextMenu(), &ContextMenu::edit);
        MenuDriver driver(choice);
        rightClick(QPoint(5, view->viewport()->height() - 5));
        QCOMPARE(driver.items, QStringList({"(Edit)", "(Browse Repository)"}));
        for (QAction* action : view->getContextMenu()->actions()) {
            action->setEnabled(true);
            action->trigger();
        }
        QCOMPARE(spy.count(), 0);
    }
}

void TestRepoEditorView::theMenuComesUpByKeyboard()
{
    click(c, ColumnId);
    QSignalSpy spy(view->getContextMenu(), &ContextMenu::edit);
    const QPoint pos = view->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    MenuDriver driver("Edit");
    QContextMenuEvent event(QContextMenuEvent::Keyboard, pos, view->mapToGlobal(pos));
    QApplication::sendEvent(view.get(), &event);
    QCOMPARE(driver.items, QStringList({"Edit", "Browse Repository"}));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toModelIndex().row(), c);
}

QTEST_MAIN(TestRepoEditorView)
#include "tst_RepoEditorView.moc"
