// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"

#include "table/PackageTable.h"

#include <QComboBox>

namespace
{

const QString performed = QStringLiteral("Transaction to be performed:");
const QString dependencies = QStringLiteral("Performing the following to resolve dependencies:");
const QString others = QStringLiteral("Other Transactions:");

} // namespace

/// What a person asks for is what happens, and the review tells of all of it before.
class TestApplyChanges : public QObject
{
    Q_OBJECT

private:
    /// Applies and finds all well then: these lines in the review, these changes of the system, and
    /// nothing marked any more.
    static void becomes(ApplySession& user, const QStringList& review, const QStringList& changes)
    {
        QStringList before;
        bool locked = false;
        user.dialogs.expect("Apply")
            .act([&](QWidget* dialog) {
                user.review = DialogDriver::textsIn(dialog).join('\n');
                before = user.changes();
                locked = user.locked();
            })
            .press("OK");
        QVERIFY(user.apply());
        COMPARE_LINES(user.reviewed(), review);
        COMPARE_LINES(before, QStringList());
        QVERIFY(locked);
        COMPARE_LINES(user.changes(), changes);
        COMPARE_LINES(user.marks(), QStringList());
        QCOMPARE(user.unsettled(), QString());
        const QString log = user.log();
        QVERIFY2(log.contains("\nApplying\n") && log.contains("\nApplying: OK\n"), qPrintable(log));
    }

    static QString version(ApplySession& user, const QString& name)
    {
        return user.cell(name, PackageTable::ColumnVersion).data().toString();
    }

private Q_SLOTS:
    void aDependencyChainIsInstalledWhole()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("chain-one", "Install"));
        becomes(user,
                {performed, "Install: chain-one 1.0-1 (x86_64) [extras]", dependencies,
                 "Install: chain-five 1.0-1 (x86_64) [extras]",
                 "Install: chain-four 1.0-1 (x86_64) [extras]",
                 "Install: chain-three 1.0-1 (x86_64) [extras]",
                 "Install: chain-two 1.0-1 (x86_64) [extras]"},
                {"+chain-five-1.0-1.x86_64", "+chain-four-1.0-1.x86_64", "+chain-one-1.0-1.x86_64",
                 "+chain-three-1.0-1.x86_64", "+chain-two-1.0-1.x86_64"});
        QVERIFY2(QRegularExpression("^[1-9][0-9]*Kb$").match(user.downloadSize()).hasMatch(),
                 qPrintable(user.downloadSize()));
        QCOMPARE(user.entry("chain-four")->state, Package::StateInstalled);
        QVERIFY(QFile::exists(user.path("usr/lib64/chain-five/data")));
        QCOMPARE(user.quit(), QString());
    }

    void aRequirementOnAFileBringsItsPackage()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("case-needs-file", "Install"));
        becomes(user,
                {performed, "Install: case-needs-file 1.0-1 (noarch) [cases]", dependencies,
                 "Install: tabular 7.4-1 (x86_64) [base]"},
                {"+case-needs-file-1.0-1.noarch", "+tabular-7.4-1.x86_64"});
        QCOMPARE(user.quit(), QString());
    }

    void whatCameAsADependencyGoesWithItsUser()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("chain-four", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+chain-five-1.0-1.x86_64", "+chain-four-1.0-1.x86_64"});
        QVERIFY(user.mark("chain-four", "Remove"));
        becomes(user,
                {performed, "Remove: chain-four 1.0-1 (x86_64)", dependencies,
                 "Remove: chain-five 1.0-1 (x86_64)"},
                {"-chain-five-1.0-1.x86_64", "-chain-four-1.0-1.x86_64"});
        QCOMPARE(user.quit(), QString());
    }

    void whatCameAsADependencyStaysWhereThatIsWanted()
    {
        ApplySession user;
        user.configure("etc/yum.conf", "main", "clean_requirements_on_remove=0\n");
        QVERIFY(user.begin());
        QVERIFY(user.mark("chain-four", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+chain-five-1.0-1.x86_64", "+chain-four-1.0-1.x86_64"});
        QVERIFY(user.mark("chain-four", "Remove"));
        becomes(user, {performed, "Remove: chain-four 1.0-1 (x86_64)"},
                {"-chain-four-1.0-1.x86_64"});
        QCOMPARE(user.quit(), QString());
    }

    void anUpdateReplacesTheInstalledVersion()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("edwin", "Update"));
        becomes(user, {performed, "Update: edwin 9.0-1 (x86_64) [updates]"},
                {"+edwin-9.0-1.x86_64", "-edwin-8.1-1.x86_64"});
        QCOMPARE(user.entry("edwin")->state, Package::StateInstalled);
        QCOMPARE(version(user, "edwin"), QStringLiteral("9.0-1"));
        QVERIFY(user.wholeLog().contains("Updating edwin"));
        QCOMPARE(user.quit(), QString());
    }

    void allUpdatesThatAreListed()
    {
        ApplySession user;
        QVERIFY(user.begin());
        user.check("groups", false);
        user.select("state", PackageTable::ViewUpdatable);
        QVERIFY(user.listed().size() > 5);
        user.click("setUpdateListed");
        becomes(user,
                {performed, "Install: kernel 5.10.19-1 (x86_64) [updates]",
                 "Update: debugger 13.2-1 (x86_64) [updates]",
                 "Update: edwin 9.0-1 (x86_64) [updates]",
                 "Update: fetcher 8.0-1 (x86_64) [mirrored]",
                 "Update: libcipher 1:1.1.1-5 (x86_64) [updates]",
                 "Update: libglow 2.4.3-1 (i686) [updates]",
                 "Update: libglow 2.4.3-1 (x86_64) [updates]",
                 "Update: named-libs 32:9.18-2 (x86_64) [updates]",
                 "Update: named-server 32:9.18-2 (x86_64) [updates]",
                 "Update: network-suite 1.1-1 (noarch) [updates]",
                 "Update: timezones 2024a-1 (noarch) [updates]"},
                {"+debugger-13.2-1.x86_64",
                 "+edwin-9.0-1.x86_64",
                 "+fetcher-8.0-1.x86_64",
                 "+kernel-5.10.19-1.x86_64",
                 "+libcipher-1:1.1.1-5.x86_64",
                 "+libglow-2.4.3-1.i686",
                 "+libglow-2.4.3-1.x86_64",
                 "+named-libs-32:9.18-2.x86_64",
                 "+named-server-32:9.18-2.x86_64",
                 "+network-suite-1.1-1.noarch",
                 "+timezones-2024a-1.noarch",
                 "-debugger-13.1-1.x86_64",
                 "-edwin-8.1-1.x86_64",
                 "-fetcher-7.88-1.x86_64",
                 "-libcipher-1:1.1.1-3.x86_64",
                 "-libglow-2.4.1-1.i686",
                 "-libglow-2.4.1-1.x86_64",
                 "-named-libs-32:9.18-1.x86_64",
                 "-named-server-32:9.18-1.x86_64",
                 "-network-suite-1.0-1.noarch",
                 "-timezones-2023c-1.noarch"});
        COMPARE_LINES(user.listed(), QStringList());
        QCOMPARE(user.quit(), QString());
    }

    void aRemovalTakesWhatNeedsThePackage()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("libcipher", "Remove"));
        becomes(user,
                {performed, "Remove: libcipher 1:1.1.1-3 (x86_64)", dependencies,
                 "Remove: fetcher 7.88-1 (x86_64)", "Remove: network-suite 1.0-1 (noarch)",
                 "Remove: postbote 2.0-1 (x86_64)"},
                {"-fetcher-7.88-1.x86_64", "-libcipher-1:1.1.1-3.x86_64",
                 "-network-suite-1.0-1.noarch", "-postbote-2.0-1.x86_64"});
        QCOMPARE(user.downloadSize(), QStringLiteral("0b"));
        QVERIFY(!QFile::exists(user.path("usr/lib64/fetcher/data")));
        QCOMPARE(user.entry("fetcher")->state, Package::StateInstallable);
        QCOMPARE(user.quit(), QString());
    }

    void installUpdateAndRemovalInOne()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.mark("timezones", "Update"));
        QVERIFY(user.mark("maze", "Remove"));
        COMPARE_LINES(user.marks(),
                      (QStringList{"Install wordsmith", "Remove maze", "Update timezones"}));
        becomes(user,
                {performed, "Install: wordsmith 4.2-1 (x86_64) [base]",
                 "Remove: maze 0.9-1 (noarch)", "Update: timezones 2024a-1 (noarch) [updates]"},
                {"+timezones-2024a-1.noarch", "+wordsmith-4.2-1.x86_64", "-maze-0.9-1.noarch",
                 "-timezones-2023c-1.noarch"});
        QCOMPARE(user.quit(), QString());
    }

    void aSuiteBringsItsPackages()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("office-suite", "Install"));
        QVERIFY(user.mark("network-suite", "Update"));
        becomes(
            user,
            {performed, "Install: office-suite 7.4-1 (noarch) [base]",
             "Update: network-suite 1.1-1 (noarch) [updates]", dependencies,
             "Install: slideshow 7.4-1 (x86_64) [base]", "Install: tabular 7.4-1 (x86_64) [base]",
             "Install: wordsmith 4.2-1 (x86_64) [base]"},
            {"+network-suite-1.1-1.noarch", "+office-suite-7.4-1.noarch", "+slideshow-7.4-1.x86_64",
             "+tabular-7.4-1.x86_64", "+wordsmith-4.2-1.x86_64", "-network-suite-1.0-1.noarch"});
        QCOMPARE(user.quit(), QString());
    }

    void aFurtherVersionIsInstalledBesideTheOthers()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("kernel", "Update"));
        becomes(user, {performed, "Install: kernel 5.10.19-1 (x86_64) [updates]"},
                {"+kernel-5.10.19-1.x86_64"});
        for (const char* file : {"boot/vmlinuz-5.10.12", "boot/vmlinuz-5.10.19"})
            QVERIFY2(QFile::exists(user.path(file)), file);
        QCOMPARE(user.quit(), QString());
    }

    void theOldestVersionGoesWhereTheirNumberIsLimited()
    {
        ApplySession user;
        user.replace("etc/yum.conf", "installonly_limit=3", "installonly_limit=2");
        QVERIFY(user.begin());
        QVERIFY(user.mark("kernel", "Update"));
        becomes(user,
                {performed, "Install: kernel 5.10.19-1 (x86_64) [updates]", dependencies,
                 "Remove: kernel 5.10.12-1 (x86_64)"},
                {"+kernel-5.10.19-1.x86_64", "-kernel-5.10.12-1.x86_64"});
        QCOMPARE(user.quit(), QString());
    }

    void aRowOfSeveralVersionsIsRemovedWhole()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("kernel", "Remove"));
        becomes(
            user,
            {performed, "Remove: kernel 5.10.12-1 (x86_64)", "Remove: kernel 5.10.14-1 (x86_64)"},
            {"-kernel-5.10.12-1.x86_64", "-kernel-5.10.14-1.x86_64"});
        QCOMPARE(user.entry("kernel")->state, Package::StateInstallable);
        QCOMPARE(user.quit(), QString());
    }

    void anEpochIsTold()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("named-libs", "Update"));
        becomes(user,
                {performed, "Update: named-libs 32:9.18-2 (x86_64) [updates]", dependencies,
                 "Update: named-server 32:9.18-2 (x86_64) [updates]"},
                {"+named-libs-32:9.18-2.x86_64", "+named-server-32:9.18-2.x86_64",
                 "-named-libs-32:9.18-1.x86_64", "-named-server-32:9.18-1.x86_64"});
        QCOMPARE(version(user, "named-server"), QStringLiteral("32:9.18-2"));
        QCOMPARE(user.quit(), QString());
    }

    void aPackageThatReplacesAnother()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("postbox", "Install"));
        becomes(user,
                {performed, "Install: postbox 3.0-1 (x86_64) [updates]", others,
                 "Obsoleting: postbote 2.0-1 (x86_64) with postbox 3.0-1 (x86_64)"},
                {"+postbox-3.0-1.x86_64", "-postbote-2.0-1.x86_64"});
        QCOMPARE(user.quit(), QString());
    }

    void onePackageInTwoArchitectures()
    {
        ApplySession user;
        QVERIFY(user.begin());
        for (const char* arch : {"x86_64", "i686"})
            QVERIFY(user.mark("libglow", "Update", arch));
        becomes(user,
                {performed, "Update: libglow 2.4.3-1 (i686) [updates]",
                 "Update: libglow 2.4.3-1 (x86_64) [updates]"},
                {"+libglow-2.4.3-1.i686", "+libglow-2.4.3-1.x86_64", "-libglow-2.4.1-1.i686",
                 "-libglow-2.4.1-1.x86_64"});
        QVERIFY(user.mark("libglow", "Remove", "i686"));
        becomes(user, {performed, "Remove: libglow 2.4.3-1 (i686)"}, {"-libglow-2.4.3-1.i686"});
        QVERIFY(user.mark("case-pair", "Install", "i686"));
        becomes(user, {performed, "Install: case-pair 1.0-1 (i686) [cases]"},
                {"+case-pair-1.0-1.i686"});
        QVERIFY(user.mark("case-pair", "Install", "x86_64"));
        becomes(user, {performed, "Install: case-pair 1.0-1 (x86_64) [cases]"},
                {"+case-pair-1.0-1.x86_64"});
        QCOMPARE(user.quit(), QString());
    }

    void aMarkedRowThatIsNotListedCounts()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("maze", "Remove"));
        user.filter("^edwin$");
        becomes(user, {performed, "Remove: maze 0.9-1 (noarch)"}, {"-maze-0.9-1.noarch"});
        QCOMPARE(user.quit(), QString());
    }

    void cancelAtTheReviewChangesNothing()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.mark("maze", "Remove"));
        const QStringList marks = user.marks();
        const Package::Entry* entry = user.entry("maze");
        QVERIFY(user.applyAndAnswer("Cancel"));
        COMPARE_LINES(user.changes(), QStringList());
        COMPARE_LINES(user.marks(), marks);
        // The table isn't made anew.
        QCOMPARE(user.entry("maze"), entry);
        QVERIFY(user.log().contains("Not Applying: Canceled"));
        QCOMPARE(user.unsettled(), QString());
        // Closing the dialog is a Cancel, too.
        user.expectReview().pressKey(Qt::Key_Escape);
        QVERIFY(user.apply());
        COMPARE_LINES(user.changes(), QStringList());
        COMPARE_LINES(user.marks(), marks);
        becomes(
            user,
            {performed, "Install: wordsmith 4.2-1 (x86_64) [base]", "Remove: maze 0.9-1 (noarch)"},
            {"+wordsmith-4.2-1.x86_64", "-maze-0.9-1.noarch"});
        QCOMPARE(user.quit(), QString());
    }

    void marksThatOthersHaveCarriedOut()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("maze", "Remove"));
        QCOMPARE(SandboxRoot::run("rpm", {"--dbpath", user.path("var/lib/rpm"), "-e", "--justdb",
                                          "--nodeps", "--noscripts", "maze"}),
                 0);
        user.changes();
        user.expectError(user.told);
        QVERIFY(user.apply());
        QVERIFY2(user.told.contains("maze-0.9-1.noarch is not installed any more"),
                 qPrintable(user.told));
        COMPARE_LINES(user.changes(), QStringList());
        COMPARE_LINES(user.marks(), QStringList{"Remove maze"});
        QCOMPARE(user.unlogged(), QString());
        user.click("refresh");
        QVERIFY(user.mark("maze", "Install"));
        becomes(user, {performed, "Install: maze 0.9-1 (noarch) [base]"}, {"+maze-0.9-1.noarch"});
        QCOMPARE(user.quit(), QString());
    }

    void applyWithNothingMarked()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("maze", "Remove"));
        // The marks go, and the button stays as it is.
        user.click("refresh");
        COMPARE_LINES(user.marks(), QStringList());
        user.expectError(user.told);
        QVERIFY(user.apply());
        COMPARE_LINES(user.changes(), QStringList());
        QVERIFY2(user.told.contains("package is marked"), qPrintable(user.told));
        QCOMPARE(user.unlogged(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void manyAppliesInOneRun()
    {
        ApplySession user;
        QVERIFY(user.begin());
        const auto descriptors = [] {
            return QDir("/proc/self/fd").entryList(QDir::Files | QDir::System).size();
        };
        int open = 0;
        for (int round = 0; round < 10; ++round) {
            const bool remove = round % 2 == 0;
            QVERIFY(user.mark("solitaire", remove ? "Remove" : "Install"));
            QVERIFY(user.applyAndAnswer());
            COMPARE_LINES(user.changes(),
                          QStringList{QString(remove ? "-" : "+") + "solitaire-3.3-1.noarch"});
            QCOMPARE(user.unsettled(), QString());
            user.click("refresh");
            if (round == 3)
                open = descriptors();
        }
        QCOMPARE(descriptors(), open);
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    return runApplyTests<TestApplyChanges>(argc, argv);
}
#include "tst_ApplyChanges.moc"
