// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// Files that the script gives away to be removed.
class TestRemoveFiles : public ContractTest
{
    Q_OBJECT

    QTemporaryDir directory;

    QString make(const QString& name) const
    {
        QFile file(directory.filePath(name));
        return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
    }
    QStringList left() const
    {
        return QDir(directory.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    QStringList warnings() const
    {
        QStringList found;
        const Log::EntryList& log = contract->engine().getLogEntries();
        for (const Log::Entry& entry : log.entries) {
            if (entry.kind == Log::Warning)
                found << entry.text;
        }
        return found;
    }
    /// Lets the script ask for it.
    void remove(const QStringList& paths)
    {
        contract->engine().py(QStringLiteral("import yumIOC\nyumIOC.removeFiles(['%1'])")
                                  .arg(paths.join("', '"))
                                  .toUtf8()
                                  .constData());
    }
    /// Nothing is being removed when a cache is cleaned.
    void finish() { contract->engine().cleanHeaders(); }

private Q_SLOTS:
    void theyAreGoneWhenACacheIsCleaned()
    {
        contract->play({});
        QStringList paths;
        for (int i = 0; i < 200; ++i)
            paths << make(QStringLiteral("package %1 \u00e4.rpm").arg(i));
        make("other");
        remove(paths);
        finish();
        QCOMPARE(left(), QStringList("other"));
        QCOMPARE(warnings(), QStringList());
        QFile::remove(directory.filePath("other"));
    }

    void theNextOnesWaitForThem()
    {
        contract->play({});
        const QString first = make("first");
        const QString second = make("second");
        remove({first});
        remove({second});
        QVERIFY(!QFile::exists(first));
        finish();
        QCOMPARE(left(), QStringList());
    }

    void whatCannotBeRemovedIsTold()
    {
        contract->play({});
        const QString stuck = directory.filePath("stuck");
        QVERIFY(QDir().mkpath(stuck));
        const QString file = make("file");
        remove({stuck, directory.filePath("never there"), file});
        finish();
        QCOMPARE(left(), QStringList("stuck"));
        QCOMPARE(warnings(), QStringList("Unable to remove " + stuck + ": Is a directory"));
        QVERIFY(QDir(stuck).removeRecursively());
    }

    void argumentsThatAreNoPathsRemoveNothing_data()
    {
        QTest::addColumn<QString>("arguments");

        QTest::newRow("none") << "";
        QTest::newRow("a number") << "1";
        QTest::newRow("numbers") << "['%1', 1]";
        QTest::newRow("two") << "['%1'], []";
    }
    void argumentsThatAreNoPathsRemoveNothing()
    {
        QFETCH(QString, arguments);
        contract->play({});
        const QString file = make("file");
        contract->engine().py(QStringLiteral("import yumIOC\n"
                                             "try:\n"
                                             "    yumIOC.removeFiles(%1)\n"
                                             "    caught = None\n"
                                             "except TypeError:\n"
                                             "    caught = 'TypeError'")
                                  .arg(arguments.replace("%1", file))
                                  .toUtf8()
                                  .constData());
        QCOMPARE(contract->eval("caught"), QString("TypeError"));
        finish();
        QCOMPARE(left(), QStringList("file"));
    }
};

QTEST_MAIN(TestRemoveFiles)
#include "tst_RemoveFiles.moc"
