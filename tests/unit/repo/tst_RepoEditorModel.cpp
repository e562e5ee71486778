// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"
#include "repo/RepoEditorModel.h"
#include "repo/RepoEditorSortFilterProxyModel.h"
#include "repo/YumConfIO.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include <memory>

using namespace RepoEditor;

/// The model of the repository list, and the order of its rows.
class TestRepoEditorModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsIdentifierAndName();
    void aMissingIdentifierIsNewInItalics();
    void checksTheSessionsUse();
    void checksWhatIsConfigured_data();
    void checksWhatIsConfigured();
    void toolTipsOfBothChecksSpeakOfTheSession();
    void answersNoOtherRole();
    void headersAnswerHorizontallyAlone();
    void headerTexts_data();
    void headerTexts();

    void togglesUseOfTheSessionAlone();
    void togglesUseOfTwinsTogether();
    void togglesEnabledByWhatIsShown_data();
    void togglesEnabledByWhatIsShown();
    void togglesNothingForAnInvalidIndex();
    void addsRowsAtTheEnd();
    void removesARow();
    void aRowThatIsGoneHasNoData();
    void announcesAWholeRow();

    void sortsNaturally_data();
    void sortsNaturally();
    void sortsOtherColumnsAsTheBaseDoes();
    void sortsOtherValuesThanTextsAsTheBaseDoes();
    void keepsARowInPlaceUntilTheUserSorts();
    void keepsTheOrderOverAReset();

private:
    void add(const QString& id, const QString& name = QString(), int enabled = 1)
    {
        Repo::Entry entry;
        entry.id = id;
        entry.name = name;
        entry.enabled = enabled;
        conf->entries.append(entry);
    }
    QVariant data(int row, int column, int role = Qt::DisplayRole) const
    {
        return model->index(row, column).data(role);
    }
    bool isChecked(int row, int column) const
    {
        const QImage check =
            QIcon(qEnvironmentVariable("VOKSHARE") + "/icons/checkBox.png").pixmap(16).toImage();
        const QImage none =
            QIcon(qEnvironmentVariable("VOKSHARE") + "/icons/noneBox.png").pixmap(16).toImage();
        const QImage shown =
            data(row, column, Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
        if (check.isNull() || check == none || (shown != check && shown != none))
            QTest::qFail("neither checked nor unchecked", __FILE__, __LINE__);
        return shown == check;
    }
    QStringList listed(const QAbstractItemModel& proxy) const
    {
        QStringList ids;
        for (int row = 0; row < proxy.rowCount(); ++row)
            ids += proxy.index(row, ColumnId).data().toString();
        return ids;
    }

    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<YumIO> yumIO;
    std::unique_ptr<YumConfIO> conf;
    std::unique_ptr<Model> model;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

void TestRepoEditorModel::init()
{
    used.clear();
    yumIO = std::make_unique<YumIO>();
    conf = std::make_unique<YumConfIO>(options, used);
    model = std::make_unique<Model>(yumIO.get(), conf.get(), nullptr);
    tester = std::make_unique<QAbstractItemModelTester>(
        model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
}

void TestRepoEditorModel::cleanup()
{
    tester.reset();
    model.reset();
    conf.reset();
    yumIO.reset();
}

void TestRepoEditorModel::showsIdentifierAndName()
{
    QCOMPARE(model->columnCount(), 4);
    QCOMPARE(model->rowCount(), 0);
    add("base", "The base");
    add("extras");
    model->reset();
    QCOMPARE(model->rowCount(), 2);
    QVERIFY(!data(0, ColumnUse).isValid());
    QVERIFY(!data(0, ColumnEnabled).isValid());
    QCOMPARE(data(0, ColumnId).toString(), QString("base"));
    QCOMPARE(data(0, ColumnName).toString(), QString("The base"));
    QCOMPARE(data(1, ColumnName), QVariant(QString()));
    QCOMPARE(model->createIndex(1), model->index(1, 0));
}

void TestRepoEditorModel::aMissingIdentifierIsNewInItalics()
{
    add("");
    add("base");
    model->reset();
    QFont font;
    font.setPointSize(23);
    model->setViewFont(font);
    QCOMPARE(data(0, ColumnId).toString(), QString("(new)"));
    const QFont shown = data(0, ColumnId, Qt::FontRole).value<QFont>();
    QCOMPARE(shown.pointSize(), 23);
    QVERIFY(shown.italic());
    QVERIFY(!data(0, ColumnName, Qt::FontRole).isValid());
    QVERIFY(!data(1, ColumnId, Qt::FontRole).isValid());
}

void TestRepoEditorModel::checksTheSessionsUse()
{
    add("on", "", 0);
    add("off", "", 2);
    add("unknown", "", 2);
    used = {{"on", true}, {"off", false}};
    model->reset();
    QVERIFY(isChecked(0, ColumnUse));
    QVERIFY(!isChecked(1, ColumnUse));
    QVERIFY(!isChecked(2, ColumnUse));
    QVERIFY2(!used.contains("unknown"), "looking must not change the table");
}

void TestRepoEditorModel::checksWhatIsConfigured_data()
{
    QTest::addColumn<int>("enabled");
    QTest::addColumn<bool>("mainEnabled");
    QTest::addColumn<bool>("checked");
    QTest::newRow("off") << 0 << true << false;
    QTest::newRow("default, on") << 1 << true << true;
    QTest::newRow("default, off") << 1 << false << false;
    QTest::newRow("on") << 2 << false << true;
}

void TestRepoEditorModel::checksWhatIsConfigured()
{
    QFETCH(int, enabled);
    QFETCH(bool, mainEnabled);
    add("x", "", enabled);
    model->reset();
    conf->mainEnabled = mainEnabled;
    QTEST(isChecked(0, ColumnEnabled), "checked");
}

void TestRepoEditorModel::toolTipsOfBothChecksSpeakOfTheSession()
{
    add("on", "", 0);
    add("off", "", 2);
    used = {{"on", true}, {"off", false}};
    model->reset();
    QCOMPARE(data(0, ColumnUse, Qt::ToolTipRole).toString(),
             QString("Repository is enabled for this session"));
    QCOMPARE(data(1, ColumnUse, Qt::ToolTipRole).toString(),
             QString("Repository is not enabled for this session"));
    QCOMPARE(data(0, ColumnEnabled, Qt::ToolTipRole).toString(),
             QString("Repository is configured to be enabled"));
    QCOMPARE(data(1, ColumnEnabled, Qt::ToolTipRole).toString(),
             QString("Repository is not configured to be enabled"));
    QVERIFY(!data(0, ColumnId, Qt::ToolTipRole).isValid());
    QVERIFY(!data(0, ColumnName, Qt::ToolTipRole).isValid());
}

void TestRepoEditorModel::answersNoOtherRole()
{
    add("");
    model->reset();
    for (int role = 0; role < Qt::UserRole + 2; ++role) {
        if (role == Qt::DisplayRole || role == Qt::DecorationRole || role == Qt::ToolTipRole ||
            role == Qt::FontRole)
            continue;
        for (int column = 0; column < ColumnCount; ++column)
            QVERIFY2(!data(0, column, role).isValid(), QByteArray::number(role));
    }
    QVERIFY(!data(0, ColumnId, Qt::DecorationRole).isValid());
    QVERIFY(!data(0, ColumnName, Qt::DecorationRole).isValid());
}

void TestRepoEditorModel::headersAnswerHorizontallyAlone()
{
    QVERIFY(!model->headerData(2, Qt::Vertical, Qt::DisplayRole).isValid());
    QVERIFY(!model->headerData(2, Qt::Vertical, Qt::ToolTipRole).isValid());
    QVERIFY(!model->headerData(2, Qt::Horizontal, Qt::DecorationRole).isValid());
    QVERIFY(!model->headerData(4, Qt::Horizontal, Qt::DisplayRole).isValid());
}

void TestRepoEditorModel::headerTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("0") << "Sess"
                       << "Whether or not the repository is used during this session.\n"
                          "It overrides the persistent Enabled flag in the repository "
                          "configuration.";
    QTest::newRow("1") << "Perm"
                       << "Whether or not the repository is configured to be enabled by default.\n"
                          "It can be overridden for a particular session.";
    QTest::newRow("2") << "Identifier"
                       << "Unique identifier for the repository";
    QTest::newRow("3") << "Name"
                       << "Description of the repository";
}

void TestRepoEditorModel::headerTexts()
{
    const int section = QByteArray(QTest::currentDataTag()).toInt();
    QTEST(model->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString(), "text");
    QTEST(model->headerData(section, Qt::Horizontal, Qt::ToolTipRole).toString(), "toolTip");
}

void TestRepoEditorModel::togglesUseOfTheSessionAlone()
{
    add("a");
    add("b", "", 0);
    model->reset();
    QSignalSpy data(model.get(), &QAbstractItemModel::dataChanged);
    QSignalSpy use(model.get(), &Model::useChanged);
    QSignalSpy config(model.get(), &Model::configChanged);
    model->toggleUse(model->index(1, ColumnUse));
    QCOMPARE(used, (QHash<QString, bool>{{"b", true}}));
    QCOMPARE(conf->entries.at(1).enabled, 0);
    QCOMPARE(data.count(), 1);
    QCOMPARE(data[0][0].toModelIndex(), model->index(1, ColumnUse));
    QCOMPARE(data[0][1].toModelIndex(), model->index(1, ColumnUse));
    QCOMPARE(use.count(), 1);
    model->toggleUse(model->index(1, ColumnUse));
    QCOMPARE(used, (QHash<QString, bool>{{"b", false}}));
    QCOMPARE(config.count(), 0);
}

void TestRepoEditorModel::togglesUseOfTwinsTogether()
{
    add("a");
    add("b");
    add("a");
    model->reset();
    QSignalSpy data(model.get(), &QAbstractItemModel::dataChanged);
    QSignalSpy use(model.get(), &Model::useChanged);
    model->toggleUse(model->index(2, ColumnUse));
    QCOMPARE(use.count(), 1);
    QCOMPARE(data.count(), 2);
    QCOMPARE(data[0][0].toModelIndex(), model->index(0, ColumnUse));
    QCOMPARE(data[1][0].toModelIndex(), model->index(2, ColumnUse));
    QVERIFY(isChecked(0, ColumnUse));
    QVERIFY(!isChecked(1, ColumnUse));
    QVERIFY(isChecked(2, ColumnUse));
}

void TestRepoEditorModel::togglesEnabledByWhatIsShown_data()
{
    QTest::addColumn<int>("enabled");
    QTest::addColumn<bool>("mainEnabled");
    QTest::addColumn<int>("once");
    QTest::addColumn<int>("twice");
    QTest::newRow("off") << 0 << true << 2 << 0;
    QTest::newRow("default, on") << 1 << true << 0 << 2;
    QTest::newRow("default, off") << 1 << false << 2 << 0;
    QTest::newRow("on") << 2 << false << 0 << 2;
}

void TestRepoEditorModel::togglesEnabledByWhatIsShown()
{
    QFETCH(int, enabled);
    QFETCH(bool, mainEnabled);
    add("w");
    add("x", "", enabled);
    used = {{"x", false}};
    model->reset();
    conf->mainEnabled = mainEnabled;
    QSignalSpy data(model.get(), &QAbstractItemModel::dataChanged);
    QSignalSpy use(model.get(), &Model::useChanged);
    QSignalSpy config(model.get(), &Model::configChanged);
    model->toggleEnabled(model->index(1, ColumnEnabled));
    QTEST(conf->entries.at(1).enabled, "once");
    QCOMPARE(data.count(), 1);
    QCOMPARE(data[0][0].toModelIndex(), model->index(1, ColumnEnabled));
    QCOMPARE(data[0][1].toModelIndex(), model->index(1, ColumnEnabled));
    QCOMPARE(config.count(), 1);
    model->toggleEnabled(model->index(1, ColumnEnabled));
    QTEST(conf->entries.at(1).enabled, "twice");
    QCOMPARE(conf->entries.at(0).enabled, 1);
    QCOMPARE(use.count(), 0);
    QCOMPARE(used, (QHash<QString, bool>{{"x", false}}));
}

void TestRepoEditorModel::togglesNothingForAnInvalidIndex()
{
    add("x");
    model->reset();
    const QModelIndex stale = model->index(0, ColumnUse);
    QSignalSpy use(model.get(), &Model::useChanged);
    QSignalSpy config(model.get(), &Model::configChanged);
    model->toggleUse(QModelIndex());
    model->toggleEnabled(QModelIndex());
    model->browse(QModelIndex(), nullptr);
    conf->entries.clear();
    model->toggleUse(stale);
    model->toggleEnabled(stale);
    model->browse(stale, nullptr);
    QCOMPARE(use.count(), 0);
    QCOMPARE(config.count(), 0);
    QVERIFY(used.isEmpty());
    model->reset();
}

void TestRepoEditorModel::addsRowsAtTheEnd()
{
    add("x");
    model->reset();
    QSignalSpy inserted(model.get(), &QAbstractItemModel::rowsInserted);
    Repo::Entry entry;
    entry.id = "a";
    QCOMPARE(model->addRow(entry), 1);
    QCOMPARE(conf->entries.at(1).id, QString("a"));
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted[0][1].toInt(), 1);
}

void TestRepoEditorModel::removesARow()
{
    add("a");
    add("b");
    used = {{"b", true}};
    model->reset();
    QSignalSpy removed(model.get(), &QAbstractItemModel::rowsRemoved);
    QVERIFY(!model->removeRow(2, QModelIndex()));
    QVERIFY(!model->removeRow(-1, QModelIndex()));
    QCOMPARE(removed.count(), 0);
    QVERIFY(model->removeRow(1, QModelIndex()));
    QCOMPARE(removed.count(), 1);
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(conf->entries.at(0).id, QString("a"));
    QCOMPARE(used, (QHash<QString, bool>{{"b", true}}));
}

void TestRepoEditorModel::aRowThatIsGoneHasNoData()
{
    add("a");
    add("b");
    model->reset();
    const QModelIndex last = model->index(1, ColumnId);
    conf->entries.removeLast();
    for (int role : {Qt::DisplayRole, Qt::DecorationRole, Qt::ToolTipRole, Qt::FontRole})
        QVERIFY(!model->data(last, role).isValid());
    model->reset();
}

void TestRepoEditorModel::announcesAWholeRow()
{
    add("a");
    add("b");
    model->reset();
    QSignalSpy data(model.get(), &QAbstractItemModel::dataChanged);
    model->dataChanged(1);
    QCOMPARE(data.count(), 1);
    QCOMPARE(data[0][0].toModelIndex(), model->index(1, 0));
    QCOMPARE(data[0][1].toModelIndex(), model->index(1, 3));
}

void TestRepoEditorModel::sortsNaturally_data()
{
    // The order in the list, then as sorted.
    QTest::addColumn<QStringList>("given");
    QTest::addColumn<QStringList>("sorted");
    const auto row = [](const char* name, const QStringList& given, const QStringList& sorted) {
        QTest::newRow(name) << given << sorted;
    };
    row("numbers", {"a10", "a2", "a1"}, {"a1", "a2", "a10"});
    row("nine and ten", {"repo10", "repo9"}, {"repo9", "repo10"});
    row("leading zeros are equal", {"a1", "a01", "a001"}, {"a1", "a01", "a001"});
    row("equal the other way round", {"a001", "a1", "a01"}, {"a001", "a1", "a01"});
    row("behind the number", {"a1z", "a1b", "a1"}, {"a1", "a1b", "a1z"});
    row("second number", {"f9-u10", "f9-u9", "f10-u1"}, {"f9-u9", "f9-u10", "f10-u1"});
    row("zero and nothing are equal", {"a0", "a", "a00"}, {"a0", "a", "a00"});
    row("numbers first", {"a", "10", "9"}, {"9", "10", "a"});
    row("capitals first", {"a1", "Z2"}, {"Z2", "a1"});
    row("longer text", {"ab1", "a2"}, {"a2", "ab1"});
    row("above 32 bits", {"a10000000001", "a9999999999"}, {"a9999999999", "a10000000001"});
    row("above 64 bits counts nothing", {"a1", "a99999999999999999999"},
        {"a99999999999999999999", "a1"});
}

void TestRepoEditorModel::sortsNaturally()
{
    QFETCH(QStringList, given);
    for (const QString& id : given)
        add(id, id);
    model->reset();
    SortFilterProxyModel proxy(nullptr);
    proxy.setSourceModel(model.get());
    proxy.sort(ColumnId);
    QTEST(listed(proxy), "sorted");
    proxy.sort(ColumnUse);
    proxy.sort(ColumnName);
    QTEST(listed(proxy), "sorted");
}

void TestRepoEditorModel::sortsOtherColumnsAsTheBaseDoes()
{
    QStandardItemModel items(0, 5);
    for (const char* text : {"a10", "a9", "a1"}) {
        QList<QStandardItem*> row;
        for (int column = 0; column < 5; ++column)
            row += new QStandardItem(QString(text));
        items.appendRow(row);
    }
    SortFilterProxyModel proxy(nullptr);
    proxy.setSourceModel(&items);
    for (int column : {0, 1, 4}) {
        proxy.sort(column);
        QCOMPARE(listed(proxy), QStringList({"a1", "a10", "a9"}));
    }
    for (int column : {2, 3}) {
        proxy.sort(column);
        QCOMPARE(listed(proxy), QStringList({"a1", "a9", "a10"}));
    }
}

void TestRepoEditorModel::sortsOtherValuesThanTextsAsTheBaseDoes()
{
    QStandardItemModel items(3, 4);
    items.setData(items.index(0, 2), 1.75);
    items.setData(items.index(1, 2), 1.5);
    items.setData(items.index(2, 2), -1.0);
    SortFilterProxyModel proxy(nullptr);
    proxy.setSourceModel(&items);
    proxy.sort(2);
    QCOMPARE(listed(proxy), QStringList({"-1", "1.5", "1.75"}));
}

void TestRepoEditorModel::keepsARowInPlaceUntilTheUserSorts()
{
    add("a");
    add("c");
    model->reset();
    SortFilterProxyModel proxy(nullptr);
    proxy.setSourceModel(model.get());
    proxy.sort(ColumnId);
    conf->entries[0].id = "d";
    model->dataChanged(0);
    QCOMPARE(listed(proxy), QStringList({"d", "c"}));
    Repo::Entry entry;
    entry.id = "b";
    model->addRow(entry);
    QCOMPARE(listed(proxy), QStringList({"d", "c", "b"}));
    proxy.sort(ColumnId);
    QCOMPARE(listed(proxy), QStringList({"b", "c", "d"}));
}

void TestRepoEditorModel::keepsTheOrderOverAReset()
{
    SortFilterProxyModel proxy(nullptr);
    proxy.setSourceModel(model.get());
    proxy.sort(ColumnId, Qt::DescendingOrder); // with nothing in it
    add("a9");
    add("a10");
    model->reset();
    QCOMPARE(listed(proxy), QStringList({"a10", "a9"}));
    add("a11");
    model->reset();
    QCOMPARE(listed(proxy), QStringList({"a11", "a10", "a9"}));
}

QTEST_MAIN(TestRepoEditorModel)
#include "tst_RepoEditorModel.moc"
