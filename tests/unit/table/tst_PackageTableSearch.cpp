// SPDX-License-Identifier: GPL-2.0-or-later
#include "TableEngine.h"

#include "progress/HProgressBar.h"
#include "table/PackageTableModel.h"
#include "table/PackageTableSortFilterProxyModel.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Package;
using namespace PackageTable;

/// An engine over an interpreter whose packages note what they are asked.
class ScriptedEngine : public TableEngine
{
public:
    bool start()
    {
        if (!Python::initialize())
            return false;
        // As after a load of the extra data, by a package manager that has groups of its own.
        fileListsCollected = true;
        otherDataCollected = true;
        yumVersionRead = true;
        yumVersionText = QStringLiteral("4.0.0");
        PyGILStateWrapper lock(true);
        py(R"(
asked = []

class FakePackage:
    relativepath = 'p'
    prco = True
    files = True
    changelog = True

    def __init__(self, **fields):
        self.fields = fields

    def value(self, field):
        asked.append(field)
        return self.fields.get(field, '')

    def returnSimple(self, field):
        return self.value(field)

    def returnPrco(self, word):
        return [(self.value(word), None, None)]

    def returnFileEntries(self, kind):
        return self.value('files').split()

    def returnChangelog(self):
        return [(0, 'someone', self.value('changelog'))]

class FakeGroup:
    def __init__(self, **fields):
        self.fields = fields

    def __getattr__(self, field):
        asked.append(field)
        return self.fields.get(field, [])
)");
        return true;
    }

    Entry* addPackage(const QString& name, const char* expression, Kind kind = KindOrdinary)
    {
        Entry* entry = add(name, StateInstallable, kind);
        PyGILStateWrapper lock(true);
        entry->pyObject = pyr(expression).release();
        return entry;
    }

    /// What was asked of all packages since the last call.
    QStringList takeAsked()
    {
        PyGILStateWrapper lock(true);
        const PyRef text = pyr("' '.join(asked)");
        py("asked.clear()");
        return QString::fromUtf8(Python::pyString(text.get())).split(' ', Qt::SkipEmptyParts);
    }

    void setExtraDataCollected(bool collected)
    {
        fileListsCollected = collected;
        otherDataCollected = collected;
    }

    void setExtraDataFailed()
    {
        fileListsFailed = true;
        otherDataFailed = true;
    }

    QStringList logTexts()
    {
        QStringList texts;
        const QMutexLocker locker(&logEntries.mutex);
        for (const Log::Entry& entry : qAsConst(logEntries.entries))
            texts += entry.text;
        return texts;
    }

    ~ScriptedEngine() override
    {
        PyGILStateWrapper lock(true);
        for (Entry* entry : qAsConst(entries))
            Py_CLEAR(entry->pyObject);
    }
};

class TestPackageTableSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void matchesEachFieldOfAPackage_data();
    void matchesEachFieldOfAPackage();
    void matchesEachFieldOfAGroup_data();
    void matchesEachFieldOfAGroup();
    void asksForTheFieldsInTheirOrder();
    void asksForNoFieldBehindTheFirstMatch();
    void asksOnceForEachPattern();
    void asksNothingOfRowsThatAnotherTestRejects();
    void doesNotMatchAcrossFields();
    void matchesCaseSensitively();

    void preparedTextsAreAskedOfNobody();
    void preparedTextsDoNotMatchAcrossFields();
    void preparedTextsGiveTheSameVerdicts();
    void aFailedLoadIsNotTriedForEachRow();

private:
    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < proxy->rowCount(); ++row)
            names += proxy->index(row, ColumnName).data().toString();
        return names;
    }

    /// Names of the packages, each once, that a pattern lists.
    QStringList found(const QString& pattern)
    {
        proxy->setFilterRegExp(pattern);
        QStringList names = listed();
        names.sort();
        return names;
    }

    QWidget window;
    HProgressBar totalBar;
    HProgressBar itemBar;
    ScriptedEngine* engine = nullptr;
    Model* model = nullptr;
    SortFilterProxyModel* proxy = nullptr;
};

static const QStringList packageFields{
    "description", "group",    "vendor",   "relativepath", "sourcerpm", "license", "packager",
    "url",         "provides", "requires", "conflicts",    "obsoletes", "files",   "changelog"};
static const QStringList groupFields{"mandatory_packages", "default_packages", "optional_packages",
                                     "conditional_packages"};

void TestPackageTableSearch::init()
{
    engine = new ScriptedEngine;
    QVERIFY(engine->start());
    engine->setup(&window, &totalBar, &itemBar);
    model = new Model(engine);
    proxy = new SortFilterProxyModel(ViewAll, true, true, engine);
    proxy->setSourceModel(model);
    proxy->setMode(ModeSearch);
    engine->takeAsked();
}

void TestPackageTableSearch::cleanup()
{
    delete proxy;
    delete model;
    delete engine;
}

void TestPackageTableSearch::matchesEachFieldOfAPackage_data()
{
    QTest::addColumn<QString>("field");
    for (const QString& field : packageFields)
        QTest::newRow(qPrintable(field)) << field;
}

void TestPackageTableSearch::matchesEachFieldOfAPackage()
{
    QFETCH(QString, field);
    engine->addPackage("with", qPrintable(QString("FakePackage(%1='xNeedlex')").arg(field)));
    engine->addPackage("without", "FakePackage()", KindSuite);
    proxy->setFilterRegExp("Needle");
    QCOMPARE(listed(), QStringList({"with"}));
}

void TestPackageTableSearch::matchesEachFieldOfAGroup_data()
{
    QTest::addColumn<QString>("field");
    for (const QString& field : groupFields)
        QTest::newRow(qPrintable(field)) << field;
}

void TestPackageTableSearch::matchesEachFieldOfAGroup()
{
    QFETCH(QString, field);
    engine->addPackage("with", qPrintable(QString("FakeGroup(%1=['a', 'Needle'])").arg(field)),
                       KindGroup);
    engine->addPackage("without", "FakeGroup()", KindGroup);
    proxy->setFilterRegExp("^Needle.a$"); // a list is one text, an item a line
    QCOMPARE(listed(), QStringList({"with"}));
}

void TestPackageTableSearch::asksForTheFieldsInTheirOrder()
{
    engine->addPackage("package", "FakePackage()");
    proxy->setFilterRegExp("Needle");
    QCOMPARE(engine->takeAsked(), packageFields);

    engine->addPackage("group", "FakeGroup()", KindGroup);
    proxy->setStateFilter(ViewAll);
    model->reset();
    proxy->clearCache();
    engine->takeAsked();
    QVERIFY(!proxy->filterAcceptsRow(1, QModelIndex()));
    QCOMPARE(engine->takeAsked(), groupFields);
}

void TestPackageTableSearch::asksForNoFieldBehindTheFirstMatch()
{
    engine->addPackage("package", "FakePackage(vendor='Needle')");
    proxy->setFilterRegExp("package");
    QCOMPARE(engine->takeAsked(), QStringList());
    proxy->setFilterRegExp("Needle");
    QCOMPARE(engine->takeAsked(), QStringList({"description", "group", "vendor"}));
}

void TestPackageTableSearch::asksOnceForEachPattern()
{
    engine->addPackage("package", "FakePackage()");
    model->reset();
    proxy->setFilterRegExp("Needle");
    QCOMPARE(proxy->rowCount(), 0);
    proxy->sort(ColumnSize);
    QCOMPARE(engine->takeAsked().count("vendor"), 1);
    proxy->setGroupsFilter(false);
    QCOMPARE(proxy->rowCount(), 0);
    QCOMPARE(engine->takeAsked().count("vendor"), 1);
}

void TestPackageTableSearch::asksNothingOfRowsThatAnotherTestRejects()
{
    engine->addPackage("package", "FakePackage()")->duplicate = true;
    proxy->setDupsFilter(false);
    proxy->setFilterRegExp("Needle");
    QCOMPARE(engine->takeAsked(), QStringList());
}

void TestPackageTableSearch::doesNotMatchAcrossFields()
{
    engine->addPackage("bash", "FakePackage(description='end', group='start')")->verRel = "5.0-1";
    for (const char* pattern : {"bash 5", "bash5", "bash.5", "end.?start", "endstart"}) {
        proxy->setFilterRegExp(pattern);
        QCOMPARE(listed(), QStringList());
    }
    proxy->setFilterRegExp("^start$");
    QCOMPARE(listed(), QStringList({"bash"}));
}

void TestPackageTableSearch::matchesCaseSensitively()
{
    engine->addPackage("bash", "FakePackage(description='Apple')");
    proxy->setFilterRegExp("apple");
    QCOMPARE(listed(), QStringList());
    proxy->setFilterRegExp("Apple");
    QCOMPARE(listed(), QStringList({"bash"}));
}

void TestPackageTableSearch::preparedTextsAreAskedOfNobody()
{
    engine->addPackage("with", "FakePackage(description='a', changelog='xNeedlex')");
    engine->addPackage("files", "FakePackage(files='/bin/Needle /bin/other')");
    engine->addPackage("without", "FakePackage()", KindSuite);
    engine->addPackage("group", "FakeGroup(default_packages=['Needle'])", KindGroup);
    QVERIFY(engine->collectSearchTexts());
    engine->takeAsked();
    QCOMPARE(found("Needle"), QStringList({"files", "group", "with"}));
    QStringList asked = engine->takeAsked();
    QCOMPARE(asked.removeAll("files"), 2);
    // Groups are few, and prepared in no way.
    QCOMPARE(asked, QStringList({"mandatory_packages", "default_packages"}));
}

void TestPackageTableSearch::preparedTextsDoNotMatchAcrossFields()
{
    engine->addPackage("bash", "FakePackage(description='end', group='start')")->verRel = "5.0-1";
    QVERIFY(engine->collectSearchTexts());
    for (const char* pattern :
         {"bash 5", "bash5", "bash.5", "end.?start", "endstart", "end[^x]start", "end[^x]*start"}) {
        proxy->setFilterRegExp(pattern);
        QCOMPARE(listed(), QStringList());
    }
    for (const char* pattern : {"^start$", "^bash$", "end$", "^end"}) {
        proxy->setFilterRegExp(pattern);
        QCOMPARE(listed(), QStringList({"bash"}));
    }
}

void TestPackageTableSearch::preparedTextsGiveTheSameVerdicts()
{
    // Texts of few characters, with line ends, letters of several bytes, NULs and nothing at all.
    const QStringList pieces{"a", "b", "/", "1", ".", "\\n", "\\xe9", "\\u20ac", "\\x00", "ab"};
    QRandomGenerator random(20010203);
    const auto compose = [&random](const QStringList& from, int count) {
        QString text;
        for (int i = 0; i < count; ++i)
            text += from[random.bounded(from.size())];
        return text;
    };
    for (int i = 0; i < 30; ++i) {
        QString fields;
        for (const QString& field : packageFields)
            fields += QString("%1='%2',").arg(field, compose(pieces, random.bounded(4)));
        Entry* entry =
            engine->addPackage(QString("p%1").arg(i), qPrintable("FakePackage(" + fields + ")"),
                               random.bounded(2) ? KindOrdinary : KindSuite);
        entry->summary = compose({"a", "b", "\n", QString::fromUtf8("\xc3\xa9")}, 3);
    }
    model->reset();

    QStringList patterns{"^$", "q*", "^\n", "ab", "(", "[^a]", "[^ab]*$"};
    const QStringList parts{"a", "b", "/",  "[0-9]", ".", ".*", "[^a]*",
                            "+", "^", "$",  "[ab]",  "|", "\n", QString::fromUtf8("\xc3\xa9"),
                            "(", ")", "{2}"};
    while (patterns.size() < 400)
        patterns += compose(parts, 3 + random.bounded(6));

    QList<QStringList> expected;
    int some = 0;
    for (const QString& pattern : qAsConst(patterns)) {
        expected += found(pattern);
        some += !expected.last().isEmpty() && expected.last().size() < 30;
    }
    QVERIFY2(some > 30, qPrintable(QString::number(some)));
    QVERIFY(engine->collectSearchTexts());
    for (int i = 0; i < patterns.size(); ++i)
        QVERIFY2(found(patterns[i]) == expected[i], qPrintable(patterns[i]));
}

void TestPackageTableSearch::aFailedLoadIsNotTriedForEachRow()
{
    for (int i = 0; i < 3; ++i)
        engine->addPackage("package", "FakePackage(files='/bin/Needle', changelog='Needle')");
    engine->setExtraDataCollected(false);
    engine->setExtraDataFailed();
    QCOMPARE(found("Needle"), QStringList());
    QVERIFY(!engine->takeAsked().contains("files"));
    QCOMPARE(engine->logTexts(), QStringList());
    // What isn't there is an empty text, as it is after a load that failed.
    QCOMPARE(found("^(Needle)?$").size(), 3);
    engine->setExtraDataCollected(true);
    QCOMPARE(found("Needle").size(), 3);
}

QTEST_MAIN(TestPackageTableSearch)
#include "tst_PackageTableSearch.moc"
