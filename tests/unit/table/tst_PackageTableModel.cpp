// SPDX-License-Identifier: GPL-2.0-or-later
#include "TableEngine.h"

#include "kit/Colors.h"
#include "kit/Share.h"
#include "support/DialogDriver.h"
#include "table/PackageTableModel.h"

#include <QAbstractItemModelTester>
#include <QIcon>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtWidgets/QWidget>

using namespace Package;
using namespace PackageTable;

class TestPackageTableModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keepsTheRulesOfModels();
    void hasOneRowForEachEntryAndNoChildren();
    void showsOnlyIconsInTheFirstThreeColumns();
    void takesIconsFromTheShareDirectory();
    void showsTheTextsOfAnEntry();
    void marksAVersionOnlyIfSeveralAreInstalled_data();
    void marksAVersionOnlyIfSeveralAreInstalled();
    void listsAllVersionsInTheToolTipWithoutTrailingNewline();
    void explainsActionStateAndKindInToolTips();
    void paintsByStateAndPalerIfDisabled();
    void givesRawValuesForSorting();
    void givesNothingForUnknownRolesAndPlaces();
    void namesColumnsButNotRows();
    void itemsAreSelectableAndNeverEditable();

    void setActionTellsOfTheActionCellOnly();
    void setActionIgnoresIndexesOutsideTheTable();
    void togglesThroughTheActionsOfTheState_data();
    void togglesThroughTheActionsOfTheState();
    void setSelectedMarksWhatCanBeMarked();
    void clearActionsTellsOfChangedRowsOnly();
    void clearActionsIsSilentWhereNoActionIsSet();
    void resetAnnouncesNewEntries();

    void describesARowInADialogThatIsKept();
    void describesAgainAfterTheFirstParentWasDestroyed();
    void ignoresAnInvalidIndexToDescribeOrBrowse();

private:
    QModelIndex cell(int row, int column) const { return model->index(row, column); }

    TableEngine* engine = nullptr;
    Model* model = nullptr;
};

void TestPackageTableModel::init()
{
    engine = new TableEngine;
    engine->add("updatable", StateUpdatable);
    engine->add("installable", StateInstallable, KindSuite);
    engine->add("installed", StateInstalled, KindGroup);
    model = new Model(engine);
}

void TestPackageTableModel::cleanup()
{
    delete model;
    delete engine;
}

void TestPackageTableModel::keepsTheRulesOfModels()
{
    QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model->toggleAction(cell(0, 0));
    model->setSelected({cell(0, 0), cell(1, 0), cell(2, 0)});
    model->clearActions();
    engine->removeAll();
    model->reset();
    engine->add("new", StateInstallable);
    model->reset();
    QCOMPARE(model->rowCount(), 1);
}

void TestPackageTableModel::hasOneRowForEachEntryAndNoChildren()
{
    QCOMPARE(model->rowCount(), 3);
    QCOMPARE(model->columnCount(), 9);
    QCOMPARE(model->rowCount(cell(0, 0)), 0);
    QCOMPARE(model->columnCount(cell(0, 0)), 9);
    QCOMPARE(model->getState(0), StateUpdatable);
    QCOMPARE(model->getState(2), StateInstalled);
}

void TestPackageTableModel::showsOnlyIconsInTheFirstThreeColumns()
{
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 9; ++column) {
            const bool iconic = column < ColumnName;
            QCOMPARE(cell(row, column).data().isValid(), !iconic);
            QCOMPARE(cell(row, column).data(Qt::DecorationRole).isValid(), iconic);
        }
    }
}

void TestPackageTableModel::takesIconsFromTheShareDirectory()
{
    // One colour a file, so that a pixel tells which file an icon is from.
    const QStringList files{"updateBox",  "installBox", "removeBox", "noneBox", "out-of-date",
                            "up-to-date", "suite",      "group",     "package"};
    QTemporaryDir share;
    QVERIFY(QDir(share.path()).mkdir("icons"));
    for (int i = 0; i < files.size(); ++i) {
        QImage image(16, 16, QImage::Format_RGB32);
        image.fill(qRgb(i, 0, 0));
        QVERIFY(image.save(share.filePath("icons/" + files[i] + ".png")));
    }
    const QByteArray saved = qgetenv("VOKSHARE");
    qputenv("VOKSHARE", QFile::encodeName(share.path()));
    const Model own(engine);
    qputenv("VOKSHARE", saved);

    const auto file = [&](int row, int column) {
        const auto icon = own.index(row, column).data(Qt::DecorationRole).value<QIcon>();
        return icon.isNull() ? QString("none")
                             : files.value(qRed(icon.pixmap(16).toImage().pixel(8, 8)));
    };
    QCOMPARE(file(0, ColumnState), QString("out-of-date"));
    QCOMPARE(file(1, ColumnState), QString("none"));
    QCOMPARE(file(2, ColumnState), QString("up-to-date"));
    QCOMPARE(file(0, ColumnKind), QString("package"));
    QCOMPARE(file(1, ColumnKind), QString("suite"));
    QCOMPARE(file(2, ColumnKind), QString("group"));
    const QStringList actions{"updateBox", "installBox", "removeBox", "noneBox"};
    for (int action = 0; action < 4; ++action) {
        (*engine)[0]->action = static_cast<Action>(action);
        QCOMPARE(file(0, ColumnAction), actions[action]);
    }
}

void TestPackageTableModel::showsTheTextsOfAnEntry()
{
    Entry* entry = (*engine)[0];
    entry->verRel = "2:3.4-5";
    TableEngine::setSize(entry, 3000000);
    QCOMPARE(cell(0, ColumnName).data().toString(), QString("updatable"));
    QCOMPARE(cell(0, ColumnVersion).data().toString(), QString("2:3.4-5"));
    QCOMPARE(cell(0, ColumnRepository).data().toString(), QString("base"));
    QCOMPARE(cell(0, ColumnArchitecture).data().toString(), QString("x86_64"));
    QCOMPARE(cell(0, ColumnSize).data().toString(), YumIO::bytesFormat(3000000));
    QCOMPARE(cell(0, ColumnBuildTime).data().toString(), YumIO::timeFormat(1600000000));
}

void TestPackageTableModel::marksAVersionOnlyIfSeveralAreInstalled_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("links");
    QTest::addColumn<QString>("text");

    QTest::newRow("updatable, one installed") << int(StateUpdatable) << 1 << "1.0-1";
    QTest::newRow("updatable, two installed") << int(StateUpdatable) << 2 << "1.0-1 *";
    QTest::newRow("updatable, none") << int(StateUpdatable) << 0 << "1.0-1";
    QTest::newRow("installable, alone") << int(StateInstallable) << 0 << "1.0-1";
    QTest::newRow("installable, linked") << int(StateInstallable) << 1 << "1.0-1 *";
    QTest::newRow("installed, alone") << int(StateInstalled) << 0 << "1.0-1";
    QTest::newRow("installed, linked") << int(StateInstalled) << 1 << "1.0-1 *";
}

void TestPackageTableModel::marksAVersionOnlyIfSeveralAreInstalled()
{
    QFETCH(int, state);
    QFETCH(int, links);
    QFETCH(QString, text);

    Entry* entry = engine->add("chain", static_cast<State>(state));
    for (Entry* last = entry; links > 0; --links, last = last->next)
        last->next = TableEngine::make("chain", StateInstalled);
    model->reset();
    QCOMPARE(cell(3, ColumnVersion).data().toString(), text);
}

void TestPackageTableModel::listsAllVersionsInTheToolTipWithoutTrailingNewline()
{
    Entry* entry = engine->add("chain", StateUpdatable);
    entry->verRel = "3-1";
    entry->next = TableEngine::make("chain", StateInstalled);
    entry->next->verRel = "2-1";
    entry->next->next = TableEngine::make("chain", StateInstalled);
    entry->next->next->verRel = "1-1";
    model->reset();
    QCOMPARE(cell(3, ColumnVersion).data(Qt::ToolTipRole).toString(),
             QString("Available: 3-1\nInstalled: 2-1\nInstalled: 1-1"));
    QCOMPARE(cell(1, ColumnVersion).data(Qt::ToolTipRole).toString(), QString("Available: 1.0-1"));
}

void TestPackageTableModel::explainsActionStateAndKindInToolTips()
{
    const auto tip = [this](int row, int column) {
        return cell(row, column).data(Qt::ToolTipRole).toString();
    };
    const QStringList actions{"Update package", "Install package", "Remove package"};
    for (int action = 0; action < 3; ++action) {
        (*engine)[0]->action = static_cast<Action>(action);
        QCOMPARE(tip(0, ColumnAction), actions[action]);
    }
    QVERIFY(!cell(1, ColumnAction).data(Qt::ToolTipRole).isValid());

    QCOMPARE(tip(0, ColumnState), QString("Package is available to update an out-of-date version"));
    QCOMPARE(tip(1, ColumnState), QString("Package is available for installation"));
    QCOMPARE(tip(2, ColumnState), QString("Package is installed and up-to-date"));
    QCOMPARE(tip(0, ColumnKind), QString("Ordinary package"));
    QCOMPARE(tip(1, ColumnKind), QString("Suite of packages"));
    QCOMPARE(tip(2, ColumnKind), QString("Group of packages"));
    for (int column :
         {ColumnName, ColumnRepository, ColumnArchitecture, ColumnSize, ColumnBuildTime})
        QVERIFY(!cell(0, column).data(Qt::ToolTipRole).isValid());
}

void TestPackageTableModel::paintsByStateAndPalerIfDisabled()
{
    const auto colour = [this](int row, int column) {
        return cell(row, column).data(Qt::ForegroundRole).value<QColor>();
    };
    QVERIFY(!cell(0, ColumnAction).data(Qt::ForegroundRole).isValid());
    QVERIFY(!cell(0, ColumnState).data(Qt::ForegroundRole).isValid());
    for (int column = ColumnKind; column < ColumnCount; ++column) {
        QCOMPARE(colour(0, column), QColor(Colors::error()));
        QCOMPARE(colour(1, column), QColor(Colors::minor()));
        // The palette's own, which differs between themes.
        QVERIFY(!cell(2, column).data(Qt::ForegroundRole).isValid());
    }
    model->setEnabled(false);
    QCOMPARE(colour(0, ColumnName), QColor(Colors::errorDisabled()));
    QCOMPARE(colour(1, ColumnName), QColor(Colors::minorDisabled()));
    QVERIFY(!colour(2, ColumnName).isValid());
    model->setEnabled(true);
    QCOMPARE(colour(0, ColumnName), QColor(Colors::error()));
}

void TestPackageTableModel::givesRawValuesForSorting()
{
    Entry* entry = (*engine)[1];
    entry->sizeBytes = 5000000000ULL;
    entry->buildTime = -5;
    const auto raw = [this](int column) { return cell(1, column).data(Qt::UserRole); };
    QCOMPARE(raw(ColumnAction), QVariant(int(ActionNone)));
    QCOMPARE(raw(ColumnState), QVariant(int(StateInstallable)));
    QCOMPARE(raw(ColumnKind), QVariant(int(KindSuite)));
    for (int column = ColumnName; column <= ColumnArchitecture; ++column)
        QCOMPARE(raw(column).value<Entry*>(), entry);
    QCOMPARE(raw(ColumnSize).userType(), int(QMetaType::ULongLong));
    QCOMPARE(raw(ColumnSize).toULongLong(), 5000000000ULL);
    QCOMPARE(raw(ColumnBuildTime).userType(), int(QMetaType::LongLong));
    QCOMPARE(raw(ColumnBuildTime).toLongLong(), -5LL);
}

void TestPackageTableModel::givesNothingForUnknownRolesAndPlaces()
{
    for (int column = 0; column < ColumnCount; ++column) {
        for (int role : {int(Qt::UserRole) + 1, int(Qt::TextAlignmentRole), int(Qt::FontRole),
                         int(Qt::BackgroundRole), int(Qt::EditRole), int(Qt::CheckStateRole)})
            QVERIFY2(!cell(0, column).data(role).isValid(), qPrintable(QString::number(role)));
    }
    QVERIFY(!model->data(QModelIndex()).isValid());

    // The engine's rows can go before the model is told.
    const QModelIndex last = cell(2, ColumnName);
    engine->removeAllButFirst();
    QVERIFY(!model->data(last).isValid());
}

void TestPackageTableModel::namesColumnsButNotRows()
{
    const QStringList names{"Action",     "State",        "Kind", "Name",      "Version",
                            "Repository", "Architecture", "Size", "Build Time"};
    for (int column = 0; column < ColumnCount; ++column) {
        QCOMPARE(model->headerData(column, Qt::Horizontal).toString(), names[column]);
        QVERIFY(!model->headerData(column, Qt::Horizontal, Qt::ToolTipRole).toString().isEmpty());
        QVERIFY(!model->headerData(column, Qt::Horizontal, Qt::DecorationRole).isValid());
    }
    QCOMPARE(model->headerData(4, Qt::Horizontal, Qt::ToolTipRole).toString(),
             QString("Version and release of the package as version-release;\n"
                     "If the Epoch is non-zero, includes it as epoch:version-release"));
    QVERIFY(!model->headerData(9, Qt::Horizontal).isValid());
    QVERIFY(!model->headerData(9, Qt::Horizontal, Qt::ToolTipRole).isValid());
    QVERIFY(!model->headerData(0, Qt::Vertical).isValid());
    QVERIFY(!model->headerData(0, Qt::Vertical, Qt::ToolTipRole).isValid());
}

void TestPackageTableModel::itemsAreSelectableAndNeverEditable()
{
    QVERIFY(cell(0, 0).flags() & Qt::ItemIsEnabled);
    QVERIFY(cell(0, 0).flags() & Qt::ItemIsSelectable);
    QVERIFY(!(cell(0, 0).flags() & Qt::ItemIsEditable));
}

void TestPackageTableModel::setActionTellsOfTheActionCellOnly()
{
    QSignalSpy spy(model, &Model::dataChanged);
    model->setAction(cell(1, ColumnSize), ActionInstall);
    QCOMPARE((*engine)[1]->action, ActionInstall);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toModelIndex(), cell(1, ColumnAction));
    QCOMPARE(spy[0][1].toModelIndex(), cell(1, ColumnAction));
}

void TestPackageTableModel::setActionIgnoresIndexesOutsideTheTable()
{
    QSignalSpy spy(model, &Model::dataChanged);
    const QModelIndex last = cell(2, ColumnAction);
    engine->removeAllButFirst();
    model->setAction(QModelIndex(), ActionRemove);
    model->setAction(last, ActionRemove);
    model->toggleAction(QModelIndex());
    model->toggleAction(last);
    QCOMPARE(spy.count(), 0);
    QCOMPARE((*engine)[0]->action, ActionNone);
}

void TestPackageTableModel::togglesThroughTheActionsOfTheState_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");

    const auto add = [](const char* name, int row, Action from, Action to) {
        QTest::newRow(name) << row << int(from) << int(to);
    };
    add("updatable, none", 0, ActionNone, ActionUpdate);
    add("updatable, update", 0, ActionUpdate, ActionRemove);
    add("updatable, remove", 0, ActionRemove, ActionNone);
    add("updatable, install", 0, ActionInstall, ActionNone);
    add("installable, none", 1, ActionNone, ActionInstall);
    add("installable, install", 1, ActionInstall, ActionNone);
    add("installable, remove", 1, ActionRemove, ActionNone);
    add("installed, none", 2, ActionNone, ActionRemove);
    add("installed, remove", 2, ActionRemove, ActionNone);
    add("installed, update", 2, ActionUpdate, ActionNone);
}

void TestPackageTableModel::togglesThroughTheActionsOfTheState()
{
    QFETCH(int, row);
    QFETCH(int, from);
    QFETCH(int, to);

    (*engine)[row]->action = static_cast<Action>(from);
    QSignalSpy spy(model, &Model::dataChanged);
    model->toggleAction(cell(row, ColumnName));
    QCOMPARE(int((*engine)[row]->action), to);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toModelIndex(), cell(row, ColumnAction));
}

void TestPackageTableModel::setSelectedMarksWhatCanBeMarked()
{
    (*engine)[2]->action = ActionRemove;
    QSignalSpy spy(model, &Model::dataChanged);
    model->setSelected({cell(2, 0), cell(1, 0), cell(0, 0)});
    QCOMPARE((*engine)[0]->action, ActionUpdate);
    QCOMPARE((*engine)[1]->action, ActionInstall);
    QCOMPARE((*engine)[2]->action, ActionRemove);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy[0][0].toModelIndex(), cell(1, ColumnAction));
    QCOMPARE(spy[1][0].toModelIndex(), cell(0, ColumnAction));
}

void TestPackageTableModel::clearActionsTellsOfChangedRowsOnly()
{
    (*engine)[0]->action = ActionUpdate;
    (*engine)[2]->action = ActionRemove;
    QSignalSpy spy(model, &Model::dataChanged);
    model->clearActions();
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy[0][0].toModelIndex(), cell(0, ColumnAction));
    QCOMPARE(spy[1][0].toModelIndex(), cell(2, ColumnAction));
    for (const Entry* entry : *engine)
        QCOMPARE(entry->action, ActionNone);
}

void TestPackageTableModel::clearActionsIsSilentWhereNoActionIsSet()
{
    QSignalSpy spy(model, &Model::dataChanged);
    model->clearActions();
    QCOMPARE(spy.count(), 0);
}

void TestPackageTableModel::resetAnnouncesNewEntries()
{
    QSignalSpy before(model, &Model::modelAboutToBeReset);
    QSignalSpy after(model, &Model::modelReset);
    engine->add("new", StateInstalled);
    model->reset();
    QCOMPARE(before.count(), 1);
    QCOMPARE(after.count(), 1);
    QCOMPARE(cell(3, ColumnName).data().toString(), QString("new"));
}

void TestPackageTableModel::describesARowInADialogThatIsKept()
{
    // A group's own fields need an interpreter too, so the rows are of a kind that has none.
    (*engine)[0]->kind = static_cast<Kind>(3);
    (*engine)[1]->kind = static_cast<Kind>(3);
    QWidget parent;
    QWidget* first = nullptr;
    QWidget* second = nullptr;
    DialogDriver driver;
    driver.expect("VOK Package Description")
        .text("Available for update")
        .act([&](QWidget* window) { first = window; })
        .press("Close");
    model->describe(cell(0, ColumnName), &parent);
    driver.expect("VOK Package Description")
        .text("Available for installation")
        .act([&](QWidget* window) { second = window; })
        .press("Close");
    model->describe(cell(1, ColumnName), nullptr);
    QVERIFY(driver.waitUntilDone());
    QVERIFY(first);
    QCOMPARE(second, first);
    QCOMPARE(first->parentWidget(), &parent);
}

void TestPackageTableModel::describesAgainAfterTheFirstParentWasDestroyed()
{
    (*engine)[0]->kind = static_cast<Kind>(3);
    DialogDriver driver;
    {
        QWidget parent;
        driver.expect("VOK Package Description").press("Close");
        model->describe(cell(0, ColumnName), &parent);
    }
    QWidget parent;
    driver.expect("VOK Package Description").press("Close");
    model->describe(cell(0, ColumnName), &parent);
    QVERIFY(driver.waitUntilDone());
}

void TestPackageTableModel::ignoresAnInvalidIndexToDescribeOrBrowse()
{
    DialogDriver driver; // fails the test at any dialog
    model->describe(QModelIndex(), nullptr);
    model->browse(QModelIndex(), nullptr);
    const QModelIndex last = cell(2, ColumnName);
    engine->removeAllButFirst();
    model->describe(last, nullptr);
    model->browse(last, nullptr);
    QCOMPARE(driver.driven(), 0);
}

QTEST_MAIN(TestPackageTableModel)
#include "tst_PackageTableModel.moc"
