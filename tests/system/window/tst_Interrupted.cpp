// SPDX-License-Identifier: GPL-2.0-or-later
#include "Display.h"
#include "Output.h"
#include "Program.h"
#include "Sandbox.h"

#include "support/ProcessPerTest.h"

#include <QCoreApplication>
#include <QtTest>

#include <csignal>

namespace
{

const QString sandbox = QStringLiteral(VOK_SANDBOX "-interrupted");

/// Somebody who marks an update with the keyboard, applies it, and is interrupted.
class Interrupted
{
public:
    explicit Interrupted(const QString& name)
        : name(name)
        , root(sandbox)
        , shown(display.start())
        , program({"--regexp=" + name})
    {
    }

    ~Interrupted()
    {
        // A scriptlet that still waits is not to wait for ever.
        goOn();
    }

    /// The review is there.
    bool review() { return shown && pressUntil("alt+u", "alt+a", "^Apply$"); }

    /// The user has agreed.
    bool agree() { return review() && program.press(QStringLiteral("^Apply$"), "Return"); }

    /// The scriptlet runs, in the middle of rpm's transaction.
    bool run()
    {
        return agree() && QTest::qWaitFor([&] { return QFile::exists(root.path("began")); }, 20000);
    }

    bool windowShows(const QString& title)
    {
        return QTest::qWaitFor(
            [&] {
                return !output("xdotool", {"search", "--onlyvisible", "--name", title}).isEmpty();
            },
            20000);
    }

    void goOn()
    {
        QFile file(root.path("go"));
        file.open(QIODevice::WriteOnly);
    }

    void send(int number) { ::kill(static_cast<pid_t>(program.process.processId()), number); }

    /// No signal waits for a thread to take it.
    bool taken() const
    {
        QFile file(QStringLiteral("/proc/%1/status").arg(program.process.processId()));
        return file.open(QIODevice::ReadOnly) &&
               file.readAll().contains("\nShdPnd:\t0000000000000000\n");
    }

    /// Empty where the parent sees that this signal ended it.
    QString endedBy(int number)
    {
        program.process.waitForFinished(20000);
        if (program.process.state() != QProcess::NotRunning)
            return QStringLiteral("it still runs");
        if (program.process.exitStatus() != QProcess::CrashExit)
            return QStringLiteral("it ended with status %1").arg(program.process.exitCode());
        if (program.process.exitCode() != number)
            return QStringLiteral("signal %1 ended it").arg(program.process.exitCode());
        return QString();
    }

    /// "NAME-VERSION" of what the database has by this name.
    QString installed(const QString& package) const
    {
        return output("rpm", {"--dbpath", root.path("var/lib/rpm"), "-q", "--qf",
                              "%{name}-%{version} ", package});
    }
    QString installed() const { return installed(name); }

    /// Whole transactions that the history has, with their states.
    QString history() const { return historyStates(root.path("var/lib/dnf/history.sqlite")); }

    /// Nothing was changed, and the next one finds no obstacle.
    void verifyUntouched()
    {
        QCOMPARE(installed(), name + "-1.0");
        QCOMPARE(history(), QString());
        verifyLockIsFree();
    }

    /// The transaction ran to its end, and the books say so.
    void verifyDone()
    {
        QCOMPARE(installed(), name + "-2.0");
        QCOMPARE(history(), QStringLiteral("1"));
        verifyLockIsGone();
    }

    void verifyLockIsGone() { QVERIFY(!root.locked()); }

    /// Gone, or left by a process that is gone.
    void verifyLockIsFree()
    {
        QFile file(root.path("var/lib/dnf/rpmdb_lock.pid"));
        if (!file.open(QIODevice::ReadOnly))
            return;
        QVERIFY(!QFile::exists("/proc/" + QString::fromLatin1(file.readAll().trimmed())));
    }

    /// Tells the server of the repositories something; what it answers, empty where it doesn't.
    QString tellServer(const QStringList& arguments)
    {
        QFile file(root.path("etc/yum.repos.d/demo.repo"));
        const QString text =
            file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        const QString url = QRegularExpression("http://[^/\\s]*").match(text).captured();
        qputenv("PYTHONPATH", VOK_SOURCE);
        return output(VOK_PYTHON, QStringList{"-m", "demo", "control", url} + arguments);
    }

    /// The file is being downloaded, and will be for ever.
    bool download()
    {
        const int before = requests();
        return tellServer({"--fail", "*/big-2.0*", "stall"}).contains("stall") && agree() &&
               QTest::qWaitFor([&] { return requests() > before; }, 20000);
    }

    const QString name;
    Display display;
    SandboxRoot root;
    bool shown;
    Program program;

private:
    int requests()
    {
        const QRegularExpression count("big-2.0-1.noarch.rpm\": (\\d+)");
        return count.match(tellServer({})).captured(1).toInt();
    }

    /// Keys are refused while the program is busy, so they are pressed until the window is there.
    bool pressUntil(const QString& mark, const QString& apply, const QString& title)
    {
        for (int tries = 0; tries < 60; ++tries) {
            const QString main = output("xdotool", {"search", "--onlyvisible", "--name", "^VOK - "})
                                     .section('\n', 0, 0);
            if (!main.isEmpty()) {
                // Not waited for: when the dialog is there it is that which becomes active.
                QProcess::execute("xdotool", {"windowactivate", main});
                QProcess::execute("xdotool", {"key", mark});
                QProcess::execute("xdotool", {"key", apply});
            }
            if (QTest::qWaitFor(
                    [&] {
                        return !output("xdotool", {"search", "--onlyvisible", "--name", title})
                                    .isEmpty();
                    },
                    1000))
                return true;
        }
        return false;
    }
};

} // namespace

/// Whatever happens to the program or its display, a transaction that has begun is finished and
/// recorded, and one that hasn't is left alone.
class TestInterrupted : public QObject
{
    Q_OBJECT

private:
    static void eachSignal()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

private Q_SLOTS:
    void aSignalAtTheReviewEndsTheProgramAtOnce_data() { eachSignal(); }
    void aSignalAtTheReviewEndsTheProgramAtOnce()
    {
        QFETCH(int, number);
        Interrupted user("waits");
        QVERIFY(user.review());
        user.send(number);
        QCOMPARE(user.endedBy(number), QString());
        user.verifyUntouched();
    }

    void aSignalInTheDownloadEndsTheProgramBeforeAnythingIsChanged_data() { eachSignal(); }
    void aSignalInTheDownloadEndsTheProgramBeforeAnythingIsChanged()
    {
        QFETCH(int, number);
        Interrupted user("big");
        QVERIFY(user.download());
        user.send(number);
        // The library takes SIGINT for itself while it downloads, and the program tells.
        if (number == SIGINT) {
            QVERIFY(user.windowShows("^VOK Yum Error$"));
            QVERIFY(user.program.press("^VOK Yum Error$", "Return"));
            QVERIFY(user.program.press("^VOK - ", "ctrl+q"));
            QCOMPARE(user.program.end(), QString());
        } else {
            QCOMPARE(user.endedBy(number), QString());
        }
        QVERIFY(!user.tellServer({"--recover"}).isEmpty());
        user.verifyUntouched();
    }

    void aSignalInTheRunWaitsForItsEnd_data() { eachSignal(); }
    void aSignalInTheRunWaitsForItsEnd()
    {
        QFETCH(int, number);
        Interrupted user("waits");
        QVERIFY(user.run());
        user.send(number);
        QTRY_VERIFY(user.taken());
        user.send(number == SIGINT ? SIGTERM : SIGINT);
        // Long enough for a signal that isn't held off.
        QVERIFY(!user.program.process.waitForFinished(500));
        user.goOn();
        QCOMPARE(user.endedBy(number), QString());
        user.verifyDone();
    }

    void scriptletsKnowNothingOfTheGuard()
    {
        Interrupted user("waits");
        QVERIFY(user.run());
        QFile file(user.root.path("signals"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("TERM 143\nHUP 129\n"));
        user.goOn();
        QVERIFY(user.program.press("^VOK - ", "ctrl+q"));
        QCOMPARE(user.program.end(), QString());
        user.verifyDone();
    }

    void theDisplayGoesAtTheReview()
    {
        Interrupted user("waits");
        QVERIFY(user.review());
        user.display.kill();
        QCOMPARE(user.program.end(1), QString());
        user.verifyUntouched();
    }

    void theDisplayGoesInTheDownload()
    {
        Interrupted user("big");
        QVERIFY(user.download());
        user.display.kill();
        QCOMPARE(user.program.end(1), QString());
        QVERIFY(user.program.process.readAllStandardError().contains("nothing was changed"));
        QVERIFY(!user.tellServer({"--recover"}).isEmpty());
        user.verifyUntouched();
    }

    void theDisplayGoesInTheRun()
    {
        Interrupted user("waits");
        QVERIFY(user.run());
        user.display.kill();
        QVERIFY(!user.program.process.waitForFinished(500));
        user.goOn();
        QCOMPARE(user.program.end(1), QString());
        user.verifyDone();
    }

    void theDisplayGoesWhileAnErrorIsShown()
    {
        Interrupted user("waits|refuses");
        QVERIFY(user.run());
        user.goOn();
        QVERIFY(user.windowShows("^VOK Yum (Error|Warning)$"));
        user.display.kill();
        QCOMPARE(user.program.end(1), QString());
        QCOMPARE(user.installed("waits"), QString("waits-2.0"));
        QCOMPARE(user.installed("refuses"), QString("refuses-1.0"));
        QVERIFY(!user.history().isEmpty());
        user.verifyLockIsGone();
        // Whoever started the program learns what there was nobody to read.
        const QString told = QString::fromUtf8(user.program.process.readAllStandardError());
        QVERIFY2(told.contains("refuses"), qPrintable(told));
    }

    void anErrorAfterTheDisplayIsAnsweredByItself()
    {
        Interrupted user("waits|refuses");
        QVERIFY(user.run());
        user.display.kill();
        QVERIFY(!user.program.process.waitForFinished(500));
        user.goOn();
        QCOMPARE(user.program.end(1), QString());
        QCOMPARE(user.installed("waits"), QString("waits-2.0"));
        user.verifyLockIsGone();
        const QString told = QString::fromUtf8(user.program.process.readAllStandardError());
        QVERIFY2(told.contains("refuses"), qPrintable(told));
    }
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    SandboxServer server(sandbox, {VOK_SOURCE "/tests/system/window/interrupted.py"});
    if (!server.start())
        return 1;
    TestInterrupted tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Interrupted.moc"
