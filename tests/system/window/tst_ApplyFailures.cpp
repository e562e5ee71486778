// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"
#include "SmallDisk.h"

#include <QProcess>

/// What can't be done is told in words, leaves the marks for another try, and costs nothing else.
class TestApplyFailures : public QObject
{
    Q_OBJECT

private:
    /// The last Apply told of all of this, changed nothing and left the marks.
    static void failedWith(ApplySession& user, const QStringList& parts, const QStringList& marks)
    {
        for (const QString& part : parts)
            QVERIFY2(user.told.contains(part), qPrintable(part + " isn't in: " + user.told));
        QVERIFY2(!user.told.contains("Traceback") && !user.told.contains("Internal error"),
                 qPrintable(user.told));
        COMPARE_LINES(user.changes(), QStringList());
        COMPARE_LINES(user.marks(), marks);
        QCOMPARE(user.unlogged(), QString());
    }

    /// The last Apply told of a failure of this package, and made this change for all that.
    static void isDoneAllTheSame(ApplySession& user, const QString& package, const QString& change)
    {
        QVERIFY2(user.told.contains(package + "-1.0-1.noarch") &&
                     user.told.contains("What was done stays done"),
                 qPrintable(user.told));
        COMPARE_LINES(user.changes(), {change});
        QCOMPARE(user.unlogged(), QString());
        user.click("refresh");
        QCOMPARE(user.entry(package)->state,
                 change.startsWith('+') ? Package::StateInstalled : Package::StateInstallable);
    }

    /// Another Apply works as if nothing had been.
    static void stillWorks(ApplySession& user)
    {
        user.click("clearActions");
        QVERIFY(user.mark("maze", "Remove"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), QStringList{"-maze-0.9-1.noarch"});
        COMPARE_LINES(user.marks(), QStringList());
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

private Q_SLOTS:
    void aRequirementThatNobodyMeets()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("trouble-broken", "Install"));
        for (int times = 0; times < 2; ++times) {
            user.expectError(user.told);
            QVERIFY(user.apply());
            failedWith(user,
                       {"nothing provides unobtainium >= 3 needed by trouble-broken-1.0-1.noarch"},
                       {"Install trouble-broken"});
        }
        stillWorks(user);
    }

    void aConflictOfPackages()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("web-rival", "Install"));
        user.expectError(user.told);
        QVERIFY(user.apply());
        failedWith(user, {"web-rival", "conflicts with fetcher"}, {"Install web-rival"});
        stillWorks(user);
    }

    void aProtectedPackage()
    {
        ApplySession user;
        user.configure("etc/yum.conf", "main", "protected_packages=chess\n");
        QVERIFY(user.begin());
        QVERIFY(user.mark("chess", "Remove"));
        user.expectError(user.told);
        QVERIFY(user.apply());
        failedWith(user, {"protected packages", "chess"}, {"Remove chess"});
        stillWorks(user);
    }

    void aFileOfTwoNewPackages()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("trouble-clash-a", "Install"));
        QVERIFY(user.mark("trouble-clash-b", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(
            user,
            {"/usr/share/clash", "trouble-clash-a-1.0-1.noarch", "trouble-clash-b-1.0-1.noarch"},
            {"Install trouble-clash-a", "Install trouble-clash-b"});
        QVERIFY(user.mark("trouble-clash-b", "No Action"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), QStringList{"+trouble-clash-a-1.0-1.noarch"});
        stillWorks(user);
    }

    void aFileOfAnInstalledPackage()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("case-thief", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"/usr/share/case-owned", "case-thief-1.0-1.noarch", "case-owner"},
                   {"Install case-thief"});
        stillWorks(user);
    }

    void aScriptletThatForbidsTheInstallation()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("trouble-pre", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"trouble-pre"}, {"Install trouble-pre"});
        const QString log = user.log();
        QVERIFY2(log.contains("this system is not good enough"), qPrintable(log));
        stillWorks(user);
    }

    void oneOfSeveralForbidsItsInstallation()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("trouble-pre", "Install"));
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.applyAndFail());
        QVERIFY2(user.told.contains("trouble-pre"), qPrintable(user.told));
        COMPARE_LINES(user.changes(), QStringList{"+wordsmith-4.2-1.x86_64"});
        QCOMPARE(user.unlogged(), QString());
        user.click("refresh");
        stillWorks(user);
    }

    void aScriptletThatFailsBehindTheInstallation()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("trouble-post", "Install"));
        QVERIFY(user.applyAndFail());
        isDoneAllTheSame(user, "trouble-post", "+trouble-post-1.0-1.noarch");
        QVERIFY(user.log().contains("could not finish"));
        stillWorks(user);
    }

    void aScriptletThatForbidsTheRemoval()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("case-preun", "Remove"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"case-preun"}, {"Remove case-preun"});
        QVERIFY(user.log().contains("I will not go"));
        stillWorks(user);
    }

    void aScriptletThatFailsBehindTheRemoval()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("case-postun", "Remove"));
        QVERIFY(user.applyAndFail());
        isDoneAllTheSame(user, "case-postun", "-case-postun-1.0-1.noarch");
        QVERIFY(user.log().contains("gone with a curse"));
        stillWorks(user);
    }

    void scriptletsThatTalkAreHeard()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("trouble-noisy", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), QStringList{"+trouble-noisy-1.0-1.noarch"});
        QVERIFY(user.mark("trouble-noisy", "Remove"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), QStringList{"-trouble-noisy-1.0-1.noarch"});
        const QString log = user.log();
        for (const char* line : {"noisy pre: on the output", "noisy pre: on the error output",
                                 "noisy post: line 1 of 3, 100%", "noisy post: line 3 of 3, 100%",
                                 "noisy post: grüße", "noisy preun", "noisy postun"})
            QVERIFY2(log.count(QString::fromUtf8(line)) == 1, qPrintable(line + ('\n' + log)));
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void aDiskWithoutRoomForThePackage()
    {
        ApplySession user;
        const SmallDisk disk(user.path("usr/share/big"), 4);
        if (!disk.mounted())
            QSKIP("the rights to mount a small disk are missing here");
        QVERIFY(user.begin());
        QVERIFY(user.mark("case-big", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"case-big-1.0-1.noarch", "usr/share/big"}, {"Install case-big"});
        stillWorks(user);
    }

    void aDiskWithoutRoomForTheDownload()
    {
        ApplySession user;
        const SmallDisk disk(user.path("var/cache/yum"), 6);
        if (!disk.mounted())
            QSKIP("the rights to mount a small disk are missing here");
        QVERIFY(user.begin());
        QVERIFY(user.mark("case-big", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"space"}, {"Install case-big"});
        stillWorks(user);
    }

    void anotherProgramIsAtThePackages()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        {
            // As rpm holds it while it runs a transaction.
            QProcess other;
            other.start(VOK_PYTHON, {"-c",
                                     "import fcntl, sys\n"
                                     "lock = open(sys.argv[1], 'w')\n"
                                     "fcntl.lockf(lock, fcntl.LOCK_EX)\n"
                                     "print('held', flush=True)\n"
                                     "sys.stdin.read()",
                                     user.path("var/lib/rpm/.rpm.lock")});
            QVERIFY(other.waitForReadyRead());
            user.expectError(user.told);
            QVERIFY(user.apply());
            failedWith(user, {QString::number(other.processId())}, {"Install wordsmith"});
            other.closeWriteChannel();
            QVERIFY(other.waitForFinished());
        }
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+wordsmith-4.2-1.x86_64"});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void whatFailedIsDoneAtTheSecondTry()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("wordsmith", "Install"));
        QVERIFY(user.mark("edwin", "Update"));
        QVERIFY(user.mark("maze", "Remove"));
        QVERIFY(user.mark("trouble-broken", "Install"));
        user.expectError(user.told);
        QVERIFY(user.apply());
        failedWith(user, {"trouble-broken"},
                   {"Install trouble-broken", "Install wordsmith", "Remove maze", "Update edwin"});
        QVERIFY(user.mark("trouble-broken", "No Action"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "+wordsmith-4.2-1.x86_64",
                                                   "-edwin-8.1-1.x86_64", "-maze-0.9-1.noarch"}));
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    return runApplyTests<TestApplyFailures>(argc, argv);
}
#include "tst_ApplyFailures.moc"
