// SPDX-License-Identifier: GPL-2.0-or-later
#include "TableEngine.h"

#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"
#include "table/PackageTableView.h"

#include <QScrollBar>
#include <QTest>

#include <memory>

using namespace Package;
using namespace PackageTable;

/// A list that is longer than the window, worked by keyboard and mouse.
class TestPackageTableScroll : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theArrowKeysKeepTheCurrentRowInView();
    void homeAndEndGoToTheEnds();
    void aRowSetByTheProgramComesIntoView();
    void aClickOnARowThatIsCutOffLeavesItUnderThePointer();

private:
    static constexpr int rows = 200;

    bool showsCurrent() const
    {
        return view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center());
    }

    std::unique_ptr<TableEngine> engine;
    std::unique_ptr<Model> model;
    std::unique_ptr<SortFilterProxyModel> proxy;
    std::unique_ptr<View> view;
    QScrollBar* bar = nullptr;
};

void TestPackageTableScroll::init()
{
    engine = std::make_unique<TableEngine>();
    for (int row = 0; row < rows; ++row)
        engine->add(QString::number(row), StateInstallable);
    model = std::make_unique<Model>(engine.get());
    proxy = std::make_unique<SortFilterProxyModel>(ViewAll, true, true, engine.get());
    proxy->setSourceModel(model.get());
    view = std::make_unique<View>(model.get(), proxy.get());
    view->resize(900, 400);
    view->show();
    view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    view->setFocus();
    bar = view->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
}

void TestPackageTableScroll::cleanup()
{
    view.reset();
    proxy.reset();
    model.reset();
    engine.reset();
}

void TestPackageTableScroll::theArrowKeysKeepTheCurrentRowInView()
{
    QTest::keyClick(view.get(), Qt::Key_Down);
    for (int press = 0; press < 60; ++press) {
        QTest::keyClick(view.get(), Qt::Key_Down);
        QVERIFY2(showsCurrent(), qPrintable(QString::number(view->currentIndex().row())));
    }
    QVERIFY(view->currentIndex().row() > 50);
    for (int press = 0; press < 40; ++press)
        QTest::keyClick(view.get(), Qt::Key_Up);
    QVERIFY(showsCurrent());
}

void TestPackageTableScroll::homeAndEndGoToTheEnds()
{
    QTest::keyClick(view.get(), Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(view->currentIndex().row(), rows - 1);
    QCOMPARE(bar->value(), bar->maximum());
    QTest::keyClick(view.get(), Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(view->currentIndex().row(), 0);
    QCOMPARE(bar->value(), 0);
}

void TestPackageTableScroll::aRowSetByTheProgramComesIntoView()
{
    view->setCurrentIndex(proxy->index(150, 0));
    QVERIFY(showsCurrent());
}

void TestPackageTableScroll::aClickOnARowThatIsCutOffLeavesItUnderThePointer()
{
    const QPoint pos(5, view->viewport()->height() - 2);
    const QModelIndex clicked = view->indexAt(pos);
    QVERIFY(clicked.isValid());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(view->currentIndex(), clicked);
    QCOMPARE(bar->value(), 0);
    QCOMPARE(view->indexAt(pos), clicked);
}

QTEST_MAIN(TestPackageTableScroll)
#include "tst_PackageTableScroll.moc"
