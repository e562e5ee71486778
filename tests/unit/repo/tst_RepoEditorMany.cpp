// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/RepoEditorTest.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

using namespace RepoEditor;

/// The editor with two thousand repositories: what it does, and that nobody waits for it.
class TestRepoEditorMany : public RepoEditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeAll();
        for (int file = 0; file < 20; ++file) {
            QByteArray text;
            for (int i = file; i < count; i += 20) {
                const QByteArray number = QByteArray::number(i);
                text += "[r" + number + "]\nname=Repository " + QByteArray::number(count - i) +
                        "\nbaseurl=http://h/" + number + "\n\n";
            }
            tree->write(QString("/etc/yum.repos.d/%1.repo").arg(file), text);
        }
        QFile::remove(tree->path("/etc/yum.repos.d/many.repo"));
        tree->write("/etc/yum.conf", "[main]\n");
    }
    void cleanup() { removeAll(); }

    void opensSortsAndTogglesAtOnce();
    void removesManyAtOnce();
    void aFailedApplyKeepsAllEdits();
    void scrollsToTheRowOfAnAddedEntry();

private:
    static constexpr int count = 2000;
    /// Does it, lets the window paint, and tells how long that took.
    void quickly(const char* what, const std::function<void()>& action) const
    {
        QElapsedTimer timer;
        timer.start();
        action();
        dialog->grab();
        qInfo("%s: %lld ms", what, timer.elapsed());
    }
    void clickHeader(int column) const
    {
        QHeaderView* header = editor->view->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(header->sectionViewportPosition(column) + 5, 5));
    }
};

void TestRepoEditorMany::opensSortsAndTogglesAtOnce()
{
    QElapsedTimer opening;
    opening.start();
    run([&] {
        qInfo("opening: %lld ms", opening.elapsed());
        QCOMPARE(editor->view->model()->rowCount(), count);
        QCOMPARE(editor->listed().mid(0, 3), QStringList({"r0", "r1", "r2"}));
        quickly("sorting by name", [&] { clickHeader(ColumnName); });
        QCOMPARE(editor->listed().constFirst(), QString("r1999"));
        quickly("sorting backwards", [&] { clickHeader(ColumnName); });
        QCOMPARE(editor->listed().constFirst(), QString("r0"));
        quickly("sorting by the check", [&] { clickHeader(ColumnUse); });
        quickly("toggling a hundred", [&] {
            for (int row = 0; row < 50; ++row) {
                for (int column : {ColumnUse, ColumnEnabled})
                    QTest::mouseClick(
                        editor->view->viewport(), Qt::LeftButton, Qt::NoModifier,
                        editor->view->visualRect(editor->view->model()->index(row % 5, column))
                            .center());
            }
        });
        quickly("walking down", [&] {
            for (int press = 0; press < 200; ++press)
                QTest::keyClick(editor->view, Qt::Key_Down);
        });
        quickly("to the end",
                [&] { QTest::keyClick(editor->view, Qt::Key_End, Qt::ControlModifier); });
        QScrollBar* bar = editor->view->verticalScrollBar();
        QCOMPARE(bar->value(), bar->maximum());
        quickly("Reset All", [&] { editor->press("Reset All"); });
    });
}

void TestRepoEditorMany::removesManyAtOnce()
{
    run([&] {
        // Every second row, which makes as many pieces as there can be.
        quickly("selecting", [&] {
            QItemSelection selection;
            for (int row = 1; row < count; row += 2)
                selection.select(editor->view->model()->index(row, 0),
                                 editor->view->model()->index(row, ColumnName));
            editor->view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
            editor->view->selectionModel()->setCurrentIndex(editor->view->model()->index(1, 0),
                                                            QItemSelectionModel::NoUpdate);
        });
        quickly("removing a thousand apart", [&] { editor->press("Remove"); });
        QCOMPARE(conf->entries.size(), count / 2);
        for (const Repo::Entry& entry : qAsConst(conf->entries))
            QVERIFY2(entry.id.midRef(1).toInt() % 2 == 0, qPrintable(entry.id));
        QCOMPARE(editor->listed().mid(0, 3), QStringList({"r0", "r2", "r4"}));

        editor->click("r0");
        QTest::keyClick(editor->view, Qt::Key_A, Qt::ControlModifier);
        quickly("removing all that is left", [&] { editor->press("Remove"); });
        QVERIFY(conf->entries.isEmpty());
        QVERIFY(!editor->isEnabled("Remove"));
        quickly("writing", [&] { editor->press("Apply"); });
        QCOMPARE(files().keys(), QStringList{"etc/yum.conf"});
    });
}

void TestRepoEditorMany::aFailedApplyKeepsAllEdits()
{
    run([&] {
        expectEntry(idTip, "added");
        editor->press("Add");
        editor->click("r7", ColumnEnabled);
        editor->click("r3");
        expectEntry(nameTip, "Three");
        editor->press("Edit");
        editor->click("r5");
        editor->press("Remove");
        const QString directory = tree->path("/etc/yum.repos.d/added.repo");
        QVERIFY(QDir().mkpath(directory));
        for (const char* button : {"Apply", "OK"}) {
            driver->expect("VOK Repository Editor Error")
                .textContains("Unable to write repository configuration file " + directory)
                .press("OK");
            editor->press(button);
            QVERIFY(dialog->isVisible());
            QCOMPARE(status(), QString("Unapplied Configuration Changes"));
            QCOMPARE(conf->entries.size(), count);
            QVERIFY(editor->listed().contains("added"));
            QVERIFY(!editor->listed().contains("r5"));
            QCOMPARE(entry("r7").enabled, 0);
            QCOMPARE(entry("r3").name, QString("Three"));
            QCOMPARE(editor->cell("r3", ColumnName).data().toString(), QString("Three"));
        }
        QVERIFY(QDir().rmdir(directory));
        editor->press("Apply");
        QCOMPARE(status(), QString());
    });
    const auto written = files();
    QVERIFY(written.value("etc/yum.repos.d/added.repo").startsWith("[added]\n"));
    QVERIFY(written.value("etc/yum.repos.d/3.repo").startsWith("[r3]\nname=Three\n"));
    QVERIFY(written.value("etc/yum.repos.d/7.repo").contains("enabled=0\n"));
    QVERIFY(!written.value("etc/yum.repos.d/5.repo").contains("[r5]"));
}

void TestRepoEditorMany::scrollsToTheRowOfAnAddedEntry()
{
    run([&] {
        expectEntry(idTip, "zz");
        editor->press("Add");
        QCOMPARE(editor->selected(), QStringList{"zz"});
        QVERIFY(editor->view->viewport()->rect().contains(
            editor->view->visualRect(editor->view->currentIndex()).center()));
    });
}

QTEST_MAIN(TestRepoEditorMany)
#include "tst_RepoEditorMany.moc"
