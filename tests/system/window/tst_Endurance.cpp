// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowSession.h"
#include "WrittenRepository.h"

#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProgressBar>
#include <QtTest>

#include <sys/resource.h>
#include <unistd.h>

namespace
{

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

/// What some twenty refreshes may leave behind, in MB. The address sanitizer holds freed memory
/// back to catch its use, so there the limit finds only what is far too much.
#if defined(__SANITIZE_ADDRESS__)
const double growthAllowed = 300;
#else
const double growthAllowed = 8;
#endif

/// Memory in use, in megabytes.
double memory()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toDouble() *
           static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

QByteArray number(int repository)
{
    return QByteArray::number(repository).rightJustified(4, '0');
}

/// All the values that the total's bar takes.
class Totals
{
public:
    explicit Totals(WindowSession& user)
    {
        const auto* bar = user.find<QProgressBar>("totalBar");
        QObject::connect(bar, &QProgressBar::valueChanged, [this](int value) { values << value; });
    }

    QVector<int> values;
};

} // namespace

/// More of everything than a day brings: nothing piles up.
class TestEndurance : public QObject
{
    Q_OBJECT

private:
    static constexpr int repositories = 1000;

    /// A thousand sections of one file, each with a package of its own.
    static void makeManyRepositories(WindowSession& user, const QString& folder,
                                     const QByteArray& url)
    {
        QByteArray sections;
        for (int at = 0; at < repositories; ++at) {
            const QByteArray id = "repo-" + number(at);
            WrittenRepository::write(folder + '/' + id,
                                     WrittenRepository::listing("package-" + number(at), "One"));
            sections += '[' + id + "]\nname=Repository " + number(at) + "\nbaseurl=" + url + '/' +
                        id + "\ngpgcheck=0\n";
        }
        user.useRepositories(sections);
    }

private Q_SLOTS:
    void aThousandRepositories()
    {
        WindowSession user;
        const QString folder = user.path("srv");
        makeManyRepositories(user, folder, "file://" + QFile::encodeName(folder));
        // A quarter of what is usual, where each repository costs an open file.
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 256;
        QCOMPARE(setrlimit(RLIMIT_NOFILE, &limit), 0);
        const Totals totals(user);
        user.window().setStateFilter(PackageTable::ViewInstallable);
        user.window().show();
        QTRY_VERIFY_WITH_TIMEOUT(user.ready(), 40000);
        QCOMPARE(user.listed().size(), repositories);
        QCOMPARE(user.listed().first(), QStringLiteral("package-0000"));
        QCOMPARE(user.listed().last(), QStringLiteral("package-0999"));
        // The stretch of the repositories goes up in steps of less than a hundredth.
        QCOMPARE(totals.values.first(), 0);
        QCOMPARE(totals.values.last(), 23000);
        for (int at = 1; at < totals.values.size(); ++at) {
            const int value = totals.values[at];
            const int step = value - totals.values[at - 1];
            const bool reading = value > 1000 && value <= 15000;
            QVERIFY2(step > 0 && (step < 140 || !reading), QByteArray::number(value).constData());
        }
        const int before = openDescriptors();
        user.click("refresh");
        QCOMPARE(user.listed().size(), repositories);
        QCOMPARE(openDescriptors(), before);
        QCOMPARE(user.quit(), QString());
    }

    void twentyRefreshes()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        const QStringList listed = user.listed();
        // Caches fill up at first, the interpreter's and the allocator's among them.
        for (int times = 0; times < 5; ++times)
            user.click("refresh");
        const int descriptors = openDescriptors();
        const double megabytes = memory();
        for (int times = 0; times < 20; ++times) {
            user.click("refresh");
            QVERIFY(user.ready());
        }
        QCOMPARE(user.listed(), listed);
        QCOMPARE(openDescriptors(), descriptors);
        const double growth = memory() - megabytes;
        qInfo("memory grew by %.1f MB from %.1f MB", growth, megabytes);
        QVERIFY(growth < growthAllowed);
        QCOMPARE(user.quit(), QString());
    }

    void twentyRefreshesThatFail()
    {
        WindowSession user;
        user.fail("/repos/updates/*", "404");
        QString told;
        user.expectError(told);
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        const auto refresh = [&] {
            told.clear();
            user.expectError(told);
            user.click("refresh");
            return user.dialogs.waitUntilDone() && told.contains("'updates'") && user.ready();
        };
        for (int times = 0; times < 5; ++times)
            QVERIFY(refresh());
        const int descriptors = openDescriptors();
        const double megabytes = memory();
        for (int times = 0; times < 20; ++times)
            QVERIFY(refresh());
        QCOMPARE(openDescriptors(), descriptors);
        const double growth = memory() - megabytes;
        qInfo("memory grew by %.1f MB from %.1f MB", growth, megabytes);
        QVERIFY(growth < growthAllowed);
        user.recover();
        user.click("refresh");
        QVERIFY(user.listed().contains("postbox"));
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    // Each repository's cache is forced to the disk, which takes long where others use it.
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
        qputenv("TMPDIR", "/dev/shm");
    SandboxServer server;
    if (!server.start())
        return 1;
    TestEndurance tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Endurance.moc"
