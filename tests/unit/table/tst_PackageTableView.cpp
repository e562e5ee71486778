// SPDX-License-Identifier: GPL-2.0-or-later
#include "TableEngine.h"

#include "support/DialogDriver.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"
#include "table/PackageTableView.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using namespace Package;
using namespace PackageTable;

/// Plays the user in front of the next popup menu; fails the test if none comes.
class MenuDriver
{
public:
    /// Chooses the item of this text with the mouse, or sends the menu away if there is none.
    explicit MenuDriver(const QString& choice = QString())
        : choice(choice)
    {
        QObject::connect(&timer, &QTimer::timeout, [this] { meet(); });
        timer.start(5);
    }
    ~MenuDriver()
    {
        if (!met)
            QTest::qFail("no menu came up", __FILE__, __LINE__);
    }

    /// The visible items; those that can't be chosen are in parentheses.
    QStringList items;
    QMenu* menu = nullptr;
    std::function<void(QMenu*)> act;

private:
    void meet()
    {
        menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu || met)
            return;
        met = true;
        timer.stop();
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions()) {
            if (!action->isVisible())
                continue;
            items += action->isEnabled() ? action->text() : '(' + action->text() + ')';
            if (action->text() == choice)
                chosen = action;
        }
        if (act)
            act(menu);
        if (chosen)
            QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                              menu->actionGeometry(chosen).center());
        else
            QTest::keyClick(menu, Qt::Key_Escape);
        if (menu->isVisible()) {
            QTest::qFail("the menu stays", __FILE__, __LINE__);
            menu->close();
        }
    }

    QTimer timer;
    QString choice;
    bool met = false;
};

class TestPackageTableView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void looksAsATableOfWholeRows();
    void startsSortedByKind();
    void showsNoSortArrow();
    void sortsByTheColumnOfAClickedHeader();
    void meansTheSameColumnsAfterSectionsMoved();
    void showsHeaderToolTipsOfTheModel();

    void aClickOnTheActionCellStepsTheAction();
    void aClickElsewhereOnlySelects();
    void aClickInAMultipleSelectionTogglesThatRowAlone();
    void theSpaceBarStepsTheActionOfTheCurrentRow();
    void theSpaceBarWithoutACurrentRowDoesNothing();
    void otherKeysStayTheirs();
    void aDisabledTableTakesNoClicks();

    void tellsOfANewCurrentRowInTheModelsNumbers();
    void tellsThatNoRowIsCurrentAfterAReset();
    void tellsNothingOfAnotherCellInTheSameRow();
    void selectedRowsAreTheModels();

    void theActionMenuActsOnTheRowUnderThePointer_data();
    void theActionMenuActsOnTheRowUnderThePointer();
    void theActionMenuAddsUpWhatTheSelectionAllows();
    void theActionMenuLeavesRowsThatDoNotAcceptTheAction();
    void theActionMenuIgnoresThePointerIfThereIsASelection();
    void theActionMenuIsKeptAndSignalsEvenIfNothingIsChosen();
    void theActionMenuComesUpByKeyboardToo();
    void theOtherMenuBrowsesInTheRepositoryColumnOnly();
    void theOtherMenuComesUpBelowTheLastRow();
    void theOtherMenuDescribesTheRowUnderThePointer();

    void describesTheCurrentRow();
    void handsItsEnabledStateToTheModel();
    void sizesColumnsForRowsThatAreNotListed();
    void resizingKeepsFilteringOffIfItWasOff();
    void hasAnAccessibleName();

private:
    /// The middle of a cell on screen, by the model's row.
    QPoint at(int sourceRow, int column) const
    {
        return view->visualRect(proxy->mapFromSource(model->index(sourceRow, column))).center();
    }
    void click(int sourceRow, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, at(sourceRow, column));
    }
    /// A press of the right button at a place of the viewport, through the window system.
    void rightClick(const QPoint& pos)
    {
        const QPoint inWindow = view->viewport()->mapTo(view->window(), pos);
        QTest::mouseClick(view->window()->windowHandle(), Qt::RightButton, Qt::NoModifier,
                          inWindow);
    }
    void select(const QList<int>& sourceRows)
    {
        view->clearSelection();
        for (int row : sourceRows)
            view->selectionModel()->select(proxy->mapFromSource(model->index(row, 0)),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < proxy->rowCount(); ++row)
            names += proxy->index(row, ColumnName).data().toString();
        return names;
    }

    // Rows of the model; the view starts with the order b, c, a.
    static constexpr int a = 0, b = 1, c = 2;

    std::unique_ptr<TableEngine> engine;
    std::unique_ptr<Model> model;
    std::unique_ptr<SortFilterProxyModel> proxy;
    std::unique_ptr<View> view;
};

void TestPackageTableView::init()
{
    engine = std::make_unique<TableEngine>();
    engine->add("a", StateUpdatable);
    engine->add("b", StateInstallable, KindSuite);
    engine->add("c", StateInstalled, KindGroup);
    model = std::make_unique<Model>(engine.get());
    proxy = std::make_unique<SortFilterProxyModel>(ViewAll, true, true, engine.get());
    proxy->setSourceModel(model.get());
    view = std::make_unique<View>(model.get(), proxy.get());
    view->resize(900, 400);
    view->show();
    view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    view->setFocus();
}

void TestPackageTableView::cleanup()
{
    view.reset();
    proxy.reset();
    model.reset();
    engine.reset();
}

void TestPackageTableView::looksAsATableOfWholeRows()
{
    QVERIFY(!view->showGrid());
    QCOMPARE(view->gridStyle(), Qt::NoPen);
    QCOMPARE(view->selectionBehavior(), QAbstractItemView::SelectRows);
    QVERIFY(view->alternatingRowColors());
    QCOMPARE(view->contextMenuPolicy(), Qt::CustomContextMenu);
    QVERIFY(view->verticalHeader()->isHidden());
    QCOMPARE(view->horizontalHeader()->selectionBehavior(), QAbstractItemView::SelectColumns);
    QVERIFY(view->horizontalHeader()->sectionsMovable());
    QVERIFY(view->horizontalHeader()->sectionsClickable());
    QVERIFY(view->horizontalHeader()->isVisible());
}

void TestPackageTableView::startsSortedByKind()
{
    QCOMPARE(proxy->sortColumn(), int(ColumnKind));
    QCOMPARE(proxy->sortOrder(), Qt::AscendingOrder);
    QCOMPARE(proxy->filterKeyColumn(), int(ColumnKind));
    QCOMPARE(listed(), QStringList({"b", "c", "a"}));
}

void TestPackageTableView::showsNoSortArrow()
{
    QVERIFY(!view->horizontalHeader()->isSortIndicatorShown());
    QTest::mouseClick(view->horizontalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(view->columnViewportPosition(ColumnName) + 20, 5));
    QVERIFY(!view->horizontalHeader()->isSortIndicatorShown());
}

void TestPackageTableView::sortsByTheColumnOfAClickedHeader()
{
    const auto clickHeader = [this](int column) {
        QTest::mouseClick(
            view->horizontalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier,
            QPoint(view->columnViewportPosition(column) + view->columnWidth(column) / 2,
                   view->horizontalHeader()->height() / 2));
    };
    clickHeader(ColumnName);
    QCOMPARE(listed(), QStringList({"a", "b", "c"}));
    QCOMPARE(proxy->filterKeyColumn(), int(ColumnName));
    clickHeader(ColumnName);
    QCOMPARE(listed(), QStringList({"c", "b", "a"}));
    clickHeader(ColumnName);
    QCOMPARE(listed(), QStringList({"a", "b", "c"}));
    clickHeader(ColumnState);
    QCOMPARE(proxy->sortColumn(), int(ColumnState));
    QCOMPARE(proxy->sortOrder(), Qt::AscendingOrder);
    QCOMPARE(proxy->filterKeyColumn(), int(ColumnState));
}

void TestPackageTableView::meansTheSameColumnsAfterSectionsMoved()
{
    view->horizontalHeader()->moveSection(ColumnAction, ColumnSize);
    QVERIFY(view->columnViewportPosition(ColumnAction) > view->columnViewportPosition(ColumnName));
    click(a, ColumnState); // the leftmost one now
    QCOMPARE((*engine)[a]->action, ActionNone);
    click(a, ColumnAction);
    QCOMPARE((*engine)[a]->action, ActionUpdate);

    view->clearSelection();
    MenuDriver action("&Remove");
    rightClick(at(a, ColumnAction));
    QCOMPARE(action.items, QStringList({"&Update", "(&Install)", "&Remove", "&No Action"}));
    QCOMPARE((*engine)[a]->action, ActionRemove);
    MenuDriver other;
    rightClick(at(a, ColumnState));
    QCOMPARE(other.items, QStringList({"&Describe"}));
}

void TestPackageTableView::showsHeaderToolTipsOfTheModel()
{
    QCOMPARE(view->horizontalHeader()
                 ->model()
                 ->headerData(ColumnSize, Qt::Horizontal, Qt::ToolTipRole)
                 .toString(),
             QString("Size of the package"));
}

void TestPackageTableView::aClickOnTheActionCellStepsTheAction()
{
    QSignalSpy spy(view.get(), &View::stateChanged);
    for (Action expected : {ActionUpdate, ActionRemove, ActionNone}) {
        click(a, ColumnAction);
        QCOMPARE((*engine)[a]->action, expected);
    }
    QCOMPARE(spy.count(), 3);
    QCOMPARE(spy[0][0].toInt(), a);
    click(c, ColumnAction);
    QCOMPARE((*engine)[c]->action, ActionRemove);
    QCOMPARE(spy[3][0].toInt(), c);
}

void TestPackageTableView::aClickElsewhereOnlySelects()
{
    QSignalSpy spy(view.get(), &View::stateChanged);
    for (int column = ColumnState; column < ColumnCount; ++column) {
        view->clearSelection();
        view->scrollTo(proxy->mapFromSource(model->index(b, column)));
        click(b, column);
        QCOMPARE(view->selectedRows().size(), 1);
    }
    QCOMPARE((*engine)[b]->action, ActionNone);
    QCOMPARE(spy.count(), 0);
}

void TestPackageTableView::aClickInAMultipleSelectionTogglesThatRowAlone()
{
    select({a, b, c});
    click(c, ColumnAction);
    QCOMPARE((*engine)[a]->action, ActionNone);
    QCOMPARE((*engine)[b]->action, ActionNone);
    QCOMPARE((*engine)[c]->action, ActionRemove);
    select({a, b, c});
    click(b, ColumnAction, Qt::ControlModifier);
    QCOMPARE((*engine)[a]->action, ActionNone);
    QCOMPARE((*engine)[b]->action, ActionInstall);
}

void TestPackageTableView::theSpaceBarStepsTheActionOfTheCurrentRow()
{
    click(a, ColumnName);
    QSignalSpy spy(view.get(), &View::stateChanged);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE((*engine)[a]->action, ActionUpdate);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE((*engine)[a]->action, ActionRemove);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy[1][0].toInt(), a);
    QTest::keyClick(view.get(), Qt::Key_Up);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE((*engine)[c]->action, ActionRemove);
    QCOMPARE(spy[2][0].toInt(), c);
}

void TestPackageTableView::theSpaceBarWithoutACurrentRowDoesNothing()
{
    view->setCurrentIndex(QModelIndex());
    QSignalSpy spy(view.get(), &View::stateChanged);
    QTest::keyClick(view.get(), Qt::Key_Space);
    QCOMPARE(spy.count(), 0);
}

void TestPackageTableView::otherKeysStayTheirs()
{
    click(b, ColumnName);
    QTest::keyClick(view.get(), Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE((*engine)[b]->action, ActionNone);
    QVERIFY(view->selectedRows().isEmpty());
    QTest::keyClick(view.get(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(view->selectedRows().size(), 3);
}

void TestPackageTableView::aDisabledTableTakesNoClicks()
{
    view->setEnabled(false);
    QTest::mouseClick(view->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      view->viewport()->mapTo(view.get(), at(a, ColumnAction)));
    QCOMPARE((*engine)[a]->action, ActionNone);
}

void TestPackageTableView::tellsOfANewCurrentRowInTheModelsNumbers()
{
    click(b, ColumnName);
    QSignalSpy spy(view.get(), SIGNAL(currentChanged(int, int)));
    click(a, ColumnName);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toInt(), a);
    QCOMPARE(spy[0][1].toInt(), b);
    view->setCurrentIndex(QModelIndex());
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy[1][0].toInt(), -1);
    QCOMPARE(spy[1][1].toInt(), a);
}

void TestPackageTableView::tellsThatNoRowIsCurrentAfterAReset()
{
    view->setCurrentIndex(QModelIndex());
    QSignalSpy spy(view.get(), SIGNAL(currentChanged(int, int)));
    model->reset();
    QCOMPARE(spy.count(), 0);
    click(b, ColumnName);
    spy.clear();
    model->reset();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toInt(), -1);
    QCOMPARE(spy[0][1].toInt(), b);
    model->reset();
    QCOMPARE(spy.count(), 1);
}

void TestPackageTableView::tellsNothingOfAnotherCellInTheSameRow()
{
    click(b, ColumnName);
    QSignalSpy spy(view.get(), SIGNAL(currentChanged(int, int)));
    click(b, ColumnVersion);
    QCOMPARE(view->currentIndex().column(), int(ColumnVersion));
    QCOMPARE(spy.count(), 0);
}

void TestPackageTableView::selectedRowsAreTheModels()
{
    click(b, ColumnName);
    click(a, ColumnName, Qt::ControlModifier);
    QList<int> rows;
    for (const QModelIndex& index : view->selectedRows()) {
        QCOMPARE(index.model(), model.get());
        rows += index.row();
    }
    std::sort(rows.begin(), rows.end());
    QCOMPARE(rows, QList<int>({a, b}));
}

void TestPackageTableView::theActionMenuActsOnTheRowUnderThePointer_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("choice");
    QTest::addColumn<int>("action");

    const QStringList updatable{"&Update", "(&Install)", "&Remove", "&No Action"};
    const QStringList installable{"(&Update)", "&Install", "(&Remove)", "&No Action"};
    const QStringList installed{"(&Update)", "(&Install)", "&Remove", "&No Action"};
    QTest::newRow("update") << a << updatable << "&Update" << int(ActionUpdate);
    QTest::newRow("remove an updatable one") << a << updatable << "&Remove" << int(ActionRemove);
    QTest::newRow("install") << b << installable << "&Install" << int(ActionInstall);
    QTest::newRow("remove") << c << installed << "&Remove" << int(ActionRemove);
    QTest::newRow("none") << a << updatable << "&No Action" << int(ActionNone);
}

void TestPackageTableView::theActionMenuActsOnTheRowUnderThePointer()
{
    QFETCH(int, row);
    QFETCH(QStringList, items);
    QFETCH(QString, choice);
    QFETCH(int, action);

    if (action == ActionNone)
        (*engine)[row]->action = ActionUpdate;
    view->clearSelection();
    QSignalSpy spy(view.get(), &View::stateChanged);
    MenuDriver driver(choice);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at(row, ColumnAction),
                            view->viewport()->mapToGlobal(at(row, ColumnAction)));
    QApplication::sendEvent(view->viewport(), &event);
    QCOMPARE(driver.items, items);
    QCOMPARE(int((*engine)[row]->action), action);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toInt(), -1);
}

void TestPackageTableView::theActionMenuAddsUpWhatTheSelectionAllows()
{
    click(b, ColumnName);
    click(c, ColumnName, Qt::ControlModifier);
    MenuDriver driver("&Install");
    rightClick(at(c, ColumnAction));
    QCOMPARE(driver.items, QStringList({"(&Update)", "&Install", "&Remove", "&No Action"}));
    QCOMPARE((*engine)[a]->action, ActionNone);
    QCOMPARE((*engine)[b]->action, ActionInstall);
    QCOMPARE((*engine)[c]->action, ActionNone);
}

void TestPackageTableView::theActionMenuLeavesRowsThatDoNotAcceptTheAction()
{
    select({a, b, c});
    (*engine)[b]->action = ActionInstall;
    {
        MenuDriver driver("&Remove");
        rightClick(at(a, ColumnAction));
    }
    QCOMPARE((*engine)[a]->action, ActionRemove);
    QCOMPARE((*engine)[b]->action, ActionInstall);
    QCOMPARE((*engine)[c]->action, ActionRemove);
    {
        MenuDriver driver("&No Action");
        rightClick(at(a, ColumnAction));
    }
    for (const Entry* entry : *engine)
        QCOMPARE(entry->action, ActionNone);
}

void TestPackageTableView::theActionMenuIgnoresThePointerIfThereIsASelection()
{
    select({b});
    // By event, since a press outside the selection would select.
    MenuDriver driver("&Install");
    QContextMenuEvent event(QContextMenuEvent::Other, at(a, ColumnAction),
                            view->viewport()->mapToGlobal(at(a, ColumnAction)));
    QApplication::sendEvent(view->viewport(), &event);
    QCOMPARE(driver.items, QStringList({"(&Update)", "&Install", "(&Remove)", "&No Action"}));
    QCOMPARE((*engine)[b]->action, ActionInstall);
    QCOMPARE((*engine)[a]->action, ActionNone);
}

void TestPackageTableView::theActionMenuIsKeptAndSignalsEvenIfNothingIsChosen()
{
    QSignalSpy spy(view.get(), &View::stateChanged);
    MenuDriver first;
    rightClick(at(a, ColumnAction));
    MenuDriver second;
    rightClick(at(b, ColumnAction));
    QCOMPARE(second.menu, first.menu);
    QCOMPARE(spy.count(), 2);
    QCOMPARE((*engine)[a]->action, ActionNone);
}

void TestPackageTableView::theActionMenuComesUpByKeyboardToo()
{
    click(a, ColumnName);
    view->setCurrentIndex(proxy->mapFromSource(model->index(c, ColumnAction)));
    const QPoint pos = view->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    MenuDriver driver("&Remove");
    QContextMenuEvent event(QContextMenuEvent::Keyboard, pos, view->mapToGlobal(pos));
    QApplication::sendEvent(view.get(), &event);
    QCOMPARE(driver.items, QStringList({"(&Update)", "(&Install)", "&Remove", "&No Action"}));
    QCOMPARE((*engine)[c]->action, ActionRemove);
}

void TestPackageTableView::theOtherMenuBrowsesInTheRepositoryColumnOnly()
{
    QSignalSpy spy(view.get(), &View::stateChanged);
    for (int column = ColumnState; column <= ColumnArchitecture; ++column) {
        MenuDriver driver;
        rightClick(at(a, column));
        QCOMPARE(driver.items, column == ColumnRepository
                                   ? QStringList({"&Describe", "Browse Repository"})
                                   : QStringList({"&Describe"}));
    }
    QCOMPARE(spy.count(), 0);
}

void TestPackageTableView::theOtherMenuComesUpBelowTheLastRow()
{
    DialogDriver noDialog;
    MenuDriver driver("&Describe");
    rightClick(QPoint(5, view->viewport()->height() - 5));
    QCOMPARE(driver.items, QStringList({"&Describe"}));
    QCOMPARE(noDialog.driven(), 0);
}

void TestPackageTableView::theOtherMenuDescribesTheRowUnderThePointer()
{
    (*engine)[a]->kind = static_cast<Kind>(3); // needs no interpreter
    DialogDriver dialog;
    dialog.expect("VOK Package Description").text("a").press("Close");
    MenuDriver driver("&Describe");
    rightClick(at(a, ColumnName));
    QVERIFY(dialog.waitUntilDone());
}

void TestPackageTableView::describesTheCurrentRow()
{
    (*engine)[b]->kind = static_cast<Kind>(3);
    click(b, ColumnName);
    DialogDriver dialog;
    dialog.expect("VOK Package Description").text("b").press("Close");
    view->describe();
    QVERIFY(dialog.waitUntilDone());
    view->setCurrentIndex(QModelIndex());
    view->describe();
    QCOMPARE(dialog.driven(), 1);
}

void TestPackageTableView::handsItsEnabledStateToTheModel()
{
    const auto colour = [this] {
        return model->index(a, ColumnName).data(Qt::ForegroundRole).value<QColor>();
    };
    const QColor enabled = colour();
    view->setEnabled(false);
    QVERIFY(colour() != enabled);
    view->setEnabled(true);
    QCOMPARE(colour(), enabled);
}

void TestPackageTableView::sizesColumnsForRowsThatAreNotListed()
{
    engine->add("a package with quite a long name, so that its column becomes wide",
                StateInstalled);
    model->reset();
    proxy->setStateFilter(ViewUpdatable);
    QSignalSpy reset(model.get(), &Model::modelReset);
    view->resizeColumnsToContents();
    QCOMPARE(reset.count(), 2);
    QVERIFY(proxy->getFilter());
    QCOMPARE(listed(), QStringList({"a"}));
    const int width = view->columnWidth(ColumnName);
    QVERIFY(width > view->fontMetrics().horizontalAdvance((*engine)[3]->name));
    proxy->setStateFilter(ViewAll);
    QCOMPARE(view->columnWidth(ColumnName), width);
}

void TestPackageTableView::resizingKeepsFilteringOffIfItWasOff()
{
    proxy->setFilter(false);
    QSignalSpy reset(model.get(), &Model::modelReset);
    view->resizeColumnsToContents();
    QVERIFY(!proxy->getFilter());
    QCOMPARE(reset.count(), 0);
}

void TestPackageTableView::hasAnAccessibleName()
{
    QCOMPARE(view->accessibleName(), QString("Packages"));
}

QTEST_MAIN(TestPackageTableView)
#include "tst_PackageTableView.moc"
