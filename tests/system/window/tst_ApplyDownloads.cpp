// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"

#include "progress/GeneralTip.h"
#include "table/PackageTable.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QLabel>
#include <QProgressBar>
#include <QTableView>
#include <QTimer>

/// The files of the packages come from where they can be had, whole and right, or not at all.
class TestApplyDownloads : public QObject
{
    Q_OBJECT

private:
    /// The first Apply fails and tells of all of this; the same marks go well when the server does.
    static void failsAndRecovers(ApplySession& user, const QStringList& parts)
    {
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.mark("maze", "Remove"));
        QVERIFY(user.applyAndFail());
        for (const QString& part : parts)
            QVERIFY2(user.told.contains(part), qPrintable(part + " isn't in: " + user.told));
        QVERIFY2(!user.told.contains("Traceback") && !user.told.contains("Internal error"),
                 qPrintable(user.told));
        COMPARE_LINES(user.changes(), {});
        COMPARE_LINES(user.marks(), {"Install wordsmith", "Remove maze"});
        QCOMPARE(user.unlogged(), QString());
        user.recover();
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+wordsmith-4.2-1.x86_64", "-maze-0.9-1.noarch"});
        COMPARE_LINES(user.marks(), {});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    static QStringList cachedPackages(const ApplySession& user)
    {
        QStringList names;
        QDirIterator files(user.path("var/cache/yum"), {"*.rpm"}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            names << files.fileName();
        }
        names.sort();
        return names;
    }

private Q_SLOTS:
    void aPackageThatTheServerLacks()
    {
        ApplySession user;
        user.fail("*/wordsmith-*.rpm", "404");
        failsAndRecovers(user, {"wordsmith-4.2-1.x86_64.rpm", "404"});
    }

    void aConnectionThatIsReset()
    {
        ApplySession user;
        user.fail("*/wordsmith-*.rpm", "refuse");
        failsAndRecovers(user, {"wordsmith-4.2-1.x86_64.rpm"});
    }

    void aPackageThatIsCut()
    {
        ApplySession user;
        user.fail("*/wordsmith-*.rpm", "truncate");
        failsAndRecovers(user, {"wordsmith-4.2-1.x86_64.rpm"});
    }

    void aPackageWithTheWrongChecksum()
    {
        ApplySession user;
        user.fail("*/wordsmith-*.rpm", "corrupt");
        failsAndRecovers(user, {"wordsmith-4.2-1.x86_64.rpm", "checksum"});
    }

    void aServerThatHangs()
    {
        ApplySession user;
        user.configure("etc/yum.conf", "main", "timeout=2\n");
        user.fail("*/wordsmith-*.rpm", "hang");
        failsAndRecovers(user, {"wordsmith-4.2-1.x86_64.rpm"});
    }

    void aServerThatStopsInTheMiddle()
    {
        ApplySession user;
        user.configure("etc/yum.conf", "main", "timeout=2\n");
        user.fail("*/wordsmith-*.rpm", "stall");
        failsAndRecovers(user, {"wordsmith-4.2-1.x86_64.rpm"});
    }

    void aPackageBehindNameAndPassword()
    {
        ApplySession user;
        user.fail("*/members-bulletin-*.rpm", "404");
        QVERIFY(user.begin());
        QVERIFY(user.mark("members-bulletin", "Install"));
        QVERIFY(user.applyAndFail());
        QVERIFY2(user.told.contains("members-bulletin-1.3-1.noarch.rpm") &&
                     !user.told.contains("secret"),
                 qPrintable(user.told));
        user.recover();
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+members-bulletin-1.3-1.noarch"});
        QVERIFY(!user.wholeLog().contains("secret"));
        QCOMPARE(user.quit(), QString());
    }

    void allPackagesThatFailAreNamed()
    {
        ApplySession user;
        user.fail("*/chain-t*.rpm", "404");
        QVERIFY(user.begin());
        QVERIFY(user.mark("chain-one", "Install"));
        QVERIFY(user.applyAndFail());
        for (const char* name : {"chain-two", "chain-three"})
            QVERIFY2(user.told.contains(name), qPrintable(user.told));
        QVERIFY2(!user.told.contains("chain-five"), qPrintable(user.told));
        COMPARE_LINES(user.changes(), {});
        QCOMPARE(user.unlogged(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void theNextMirrorHasIt()
    {
        ApplySession user;
        // The first mirror of the one list is dead by itself, the next has nothing.
        user.fail("/mirror/1/mirrored/*.rpm", "404");
        user.fail("/repos/extras/*.rpm", "404");
        user.fail("/mirror/1/extras/*.rpm", "corrupt");
        QVERIFY(user.begin());
        QVERIFY(user.mark("almanac", "Install"));
        QVERIFY(user.mark("chain-five", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+almanac-2024-1.noarch", "+chain-five-1.0-1.x86_64"});
        COMPARE_LINES(user.marks(), {});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void noMirrorHasIt()
    {
        ApplySession user;
        user.fail("/mirror/*/mirrored/*.rpm", "404");
        QVERIFY(user.begin());
        QVERIFY(user.mark("almanac", "Install"));
        QVERIFY(user.applyAndFail());
        QVERIFY2(user.told.contains("almanac-2024-1.noarch.rpm"), qPrintable(user.told));
        COMPARE_LINES(user.changes(), {});
        COMPARE_LINES(user.marks(), {"Install almanac"});
        QCOMPARE(user.unlogged(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void whatIsInTheCacheIsNotFetchedAgain()
    {
        ApplySession user;
        user.replace("etc/yum.conf", "keepcache=0", "keepcache=1");
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(cachedPackages(user), {"wordsmith-4.2-1.x86_64.rpm"});
        QVERIFY(user.mark("wordsmith", "Remove"));
        QVERIFY(user.applyAndAnswer());
        user.activities.clear();
        // The server would refuse to give it.
        user.fail("*.rpm", "404");
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.activities.filter("Downloading"), {});
        QCOMPARE(user.downloadSize(), QStringLiteral("0b"));
        COMPARE_LINES(user.changes(), {"+wordsmith-4.2-1.x86_64"});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void aCachedPackageThatIsSpoiltIsFetchedAgain()
    {
        ApplySession user;
        user.replace("etc/yum.conf", "keepcache=0", "keepcache=1");
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.applyAndAnswer());
        QVERIFY(user.mark("wordsmith", "Remove"));
        QVERIFY(user.applyAndAnswer());
        QDirIterator files(user.path("var/cache/yum"), {"wordsmith*.rpm"}, QDir::Files,
                           QDirIterator::Subdirectories);
        QVERIFY(files.hasNext());
        QFile file(files.next());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.seek(file.size() / 2));
        file.write("spoilt");
        file.close();
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+wordsmith-4.2-1.x86_64"});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void nothingIsKeptUnlessAskedFor()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.applyAndAnswer());
        // They go while the table is made.
        QTRY_COMPARE(cachedPackages(user), QStringList());
        QCOMPARE(user.quit(), QString());
    }

    void aSlowDownloadCanBeWatched()
    {
        ApplySession user;
        QVERIFY(user.begin());
        user.slowDown(400000);
        for (const char* name : {"desktop-icons", "desktop-sounds", "wordsmith"})
            QVERIFY(user.mark(name, "Install"));
        auto* bar = user.find<QProgressBar>("itemBar");
        QStringList tip;
        QVector<int> values;
        connect(bar, &QProgressBar::valueChanged, bar, [&](int value) {
            values << value;
            if (!user.activities.filter("Downloading").isEmpty() && tip.isEmpty() &&
                value > bar->maximum() / 3) {
                QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), bar->mapToGlobal(QPoint(5, 5)));
                QApplication::sendEvent(bar, &help);
                for (QWidget* widget : QApplication::topLevelWidgets()) {
                    if (qobject_cast<GeneralTip*>(widget) && widget->isVisible())
                        tip = DialogDriver::textsIn(widget);
                }
            }
        });
        QVERIFY(user.applyAndAnswer());
        // One line for each file, with what there is of it.
        for (const char* name : {"desktop-icons", "desktop-sounds", "wordsmith"})
            QVERIFY2(tip.filter(name).size() == 1, qPrintable(tip.join('|')));
        QVERIFY2(tip.size() == 6, qPrintable(tip.join('|')));
        QVERIFY(values.size() > 20);
        QVERIFY2(user.activities.contains("Downloading 3 packages"),
                 qPrintable(user.activities.join('|')));
        QCOMPARE(user.changes().size(), 3);
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void fiveHundredPackages()
    {
        ApplySession user;
        user.replace("etc/yum.repos.d/cases.repo", "enabled=0", "enabled=1");
        QVERIFY(user.begin());
        user.filter("many-[0-9]");
        QCOMPARE(user.listed().size(), 500);
        user.table()->selectAll();
        user.click("setSelected");
        QCOMPARE(user.marks().size(), 500);
        QElapsedTimer since;
        since.start();
        QVERIFY(user.applyAndAnswer());
        qInfo("500 packages in %d ms", static_cast<int>(since.elapsed()));
        QCOMPARE(user.reviewed().size(), 501);
        QCOMPARE(user.changes().size(), 500);
        COMPARE_LINES(user.marks(), {});
        QCOMPARE(user.unsettled(), QString());
        user.select("state", PackageTable::ViewInstallable);
        COMPARE_LINES(user.listed(), {});
        user.select("state", PackageTable::ViewRemovable);
        QCOMPARE(user.listed().size(), 500);
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    return runApplyTests<TestApplyDownloads>(argc, argv);
}
#include "tst_ApplyDownloads.moc"
