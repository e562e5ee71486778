// SPDX-License-Identifier: GPL-2.0-or-later
#include "Output.h"
#include "OwnRoot.h"
#include "Program.h"
#include "Sandbox.h"

#include "support/ProcessPerTest.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QtTest>

#include <grp.h>
#include <memory>
#include <unistd.h>

namespace
{

const QString sandbox = QStringLiteral(VOK_SANDBOX "-realroot");
const char mainWindow[] = "^VOK - ";
const char logWindow[] = "^VOK Log$";
const char reviewWindow[] = "^Apply$";
/// From the pattern, which has the keyboard at first.
const QStringList toTheTable{"Tab", "Tab", "Tab", "Tab", "Tab"};

/// Somebody in front of the machine that is administered. Its packages are the sandbox's; of files
/// it has its own, too.
class Administrator
{
public:
    explicit Administrator(bool superuser = true)
    {
        refused = OwnRoot::enter(
            {"/tmp/.X11-unix", VOK_SOURCE, QFileInfo(QStringLiteral(VOK_SANDBOX)).path()});
        if (!refused.isEmpty())
            return;
        const QStringList folders{"/etc/yum",     "/etc/yum.repos.d", "/var/lib/rpm",
                                  "/var/lib/dnf", "/var/cache/yum",   QDir::homePath() + "/.rpmdb",
                                  "/.rpmdb"};
        for (const QString& folder : folders)
            QDir(folder).removeRecursively();
        for (const char* part : {"/etc", "/usr", "/var/lib/rpm"}) {
            QDir().mkpath(part);
            SandboxRoot::run("cp", {"-a", sandbox + "/root" + part + "/.", part});
        }
        QDir().mkpath(home);
        qputenv("HOME", home);
        qunsetenv("VOKROOT");
        if (superuser)
            return;
        constexpr uid_t nobody = 65534;
        QDir().mkpath("/var/lib/dnf");
        if (chown(home, nobody, nobody) != 0 || setgroups(0, nullptr) != 0 ||
            setresgid(nobody, nobody, 0) != 0 || setresuid(nobody, nobody, 0) != 0)
            refused = QStringLiteral("the rights stay");
    }

    ~Administrator()
    {
        program.reset();
        // What the process keeps for itself, its children don't have.
        if (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0)
            qWarning("the rights are lost");
    }

    /// Starts the program with these packages in the table, and goes there when it is shown.
    bool start(const QString& names)
    {
        program = std::make_unique<Program>(QStringList{"--state=all", "--regexp=" + names});
        // Before that there are but progress bars.
        const auto high = [] {
            const QString geometry =
                output("xdotool", {"getwindowgeometry", "--shell", window(mainWindow)});
            return geometry.section("HEIGHT=", 1).section('\n', 0, 0).toInt() > 250;
        };
        // Keys that come while it is still busy are lost.
        if (!QTest::qWaitFor(high, 20000) || !QTest::qWaitFor([this] { return idle(); }, 20000))
            return false;
        type(mainWindow, toTheTable);
        return true;
    }

    /// Whether the program needs no processor for a while.
    bool idle() const
    {
        const auto ticks = [this] {
            QFile file(QStringLiteral("/proc/%1/stat").arg(program->process.processId()));
            const QList<QByteArray> fields =
                file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QList<QByteArray>();
            return fields.value(13).toLong() + fields.value(14).toLong();
        };
        const long before = ticks();
        QTest::qWait(300);
        return ticks() - before <= 1;
    }

    static QString window(const QString& title)
    {
        return output("xdotool", {"search", "--onlyvisible", "--name", title}).section('\n', 0, 0);
    }

    static bool shows(const QString& title)
    {
        return QTest::qWaitFor([&] { return !window(title).isEmpty(); }, 20000);
    }

    static void type(const QString& title, const QStringList& keys)
    {
        // Not waited for: what a key opens becomes active.
        QProcess::execute("xdotool", {"windowactivate", window(title)});
        QProcess::execute("xdotool", QStringList{"key", "--delay", "20"} + keys);
    }

    /// Marks by keys and applies, until a dialog is there. The program refuses keys while it is
    /// busy.
    static bool apply(const QStringList& marks, const char* dialog = reviewWindow)
    {
        const auto there = [&] { return !window(dialog).isEmpty(); };
        for (int tries = 0; tries < 20; ++tries) {
            type(mainWindow, marks);
            for (int asked = 0; asked < 3; ++asked) {
                type(mainWindow, {"alt+a"});
                if (QTest::qWaitFor(there, 700))
                    return true;
            }
        }
        return false;
    }

    bool answer(const char* title, const char* key) { return program->press(title, key); }

    /// What the log's window shows, once that has `text`; else what it shows at last.
    static QString log(const QString& text)
    {
        QString copied;
        type(mainWindow, {"ctrl+l"});
        if (!shows(logWindow))
            return QString();
        for (int tries = 0; tries < 20 && !copied.contains(text); ++tries) {
            // On to the next part of the window, until it is the text.
            type(logWindow, {"Tab", "ctrl+a", "ctrl+c"});
            QTest::qWait(100);
            const QString now = QGuiApplication::clipboard()->text();
            if (now.size() > copied.size())
                copied = now;
        }
        // A search for other windows fails while one goes away.
        type(logWindow, {"alt+c"});
        const auto closed = [] { return window(logWindow).isEmpty(); };
        return QTest::qWaitFor(closed, 10000) ? copied : QString();
    }

    /// NAME-VERSION of what the machine's database has of these.
    static QString installed(const QString& names)
    {
        const QString found = output(
            "rpm", QStringList{"--dbpath", "/var/lib/rpm", "-q", "--qf", "%{name}-%{version}\n"} +
                       names.split(' '));
        return found.split('\n').filter(QRegularExpression("^[^ ]*$")).join(' ');
    }

    /// States of the whole transactions that the history has.
    static QString history()
    {
        return historyStates(QStringLiteral("/var/lib/dnf/history.sqlite"));
    }

    static bool locked() { return QFile::exists("/var/lib/dnf/rpmdb_lock.pid"); }

    QString quit()
    {
        if (!answer(mainWindow, "ctrl+q"))
            return QStringLiteral("it doesn't quit");
        const QString status = program->end();
        if (!status.isEmpty())
            return status;
        if (locked())
            return QStringLiteral("the lock is still held");
        return QString::fromLocal8Bit(program->process.readAllStandardError());
    }

    static constexpr char home[] = "/home/somebody";
    std::unique_ptr<Program> program;
    /// Why the machine can't be administered without harm; empty: it can.
    QString refused;
};

} // namespace

/// The system to administer is the one that the program runs on.
class TestRealRoot : public QObject
{
    Q_OBJECT

private:
    /// Installs a signed package, whose key is to be trusted, with a home of this name; null: none.
    static void importKey(const char* home)
    {
        Administrator user;
        if (!user.refused.isEmpty())
            QSKIP(qPrintable(user.refused));
        if (home)
            qputenv("HOME", home);
        else
            qunsetenv("HOME");
        QVERIFY(user.start("sealed"));
        QVERIFY(user.apply({"ctrl+Home", "space"}));
        QVERIFY(user.answer(reviewWindow, "Return"));
        QVERIFY(user.answer("^Query$", "Return"));
        QTRY_COMPARE_WITH_TIMEOUT(user.installed("sealed"), QString("sealed-1.0"), 20000);
        QVERIFY(user.installed("gpg-pubkey").startsWith("gpg-pubkey-"));
        QCOMPARE(user.quit(), QString());
        for (const char* folder : {"/root", "", Administrator::home})
            QVERIFY2(!QFile::exists(QLatin1String(folder) + "/.rpmdb"), folder);
    }

private Q_SLOTS:
    void changesAreMade()
    {
        Administrator user;
        if (!user.refused.isEmpty())
            QSKIP(qPrintable(user.refused));
        const QString names = "adds library bettered dropped";
        QVERIFY(user.start("adds|bettered|dropped|later"));
        QVERIFY(user.locked());
        QVERIFY(user.apply({"alt+u", "ctrl+Home", "space", "Down", "Down", "space"}));
        QCOMPARE(user.installed(names), QString("bettered-1.0 dropped-1.0"));
        QVERIFY(user.answer(reviewWindow, "Return"));

        // In the middle of rpm's transaction the program has time for its user.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/began"), 20000);
        QVERIFY(user.log("adds: here I am").contains("adds: here I am"));
        QVERIFY(QFile("/go").open(QIODevice::WriteOnly));
        QTRY_COMPARE_WITH_TIMEOUT(user.installed(names),
                                  QString("adds-1.0 library-1.0 bettered-2.0"), 20000);
        QCOMPARE(
            output("rpm", {"--dbpath", "/var/lib/rpm", "--verify", "adds", "library", "bettered"}),
            QString());
        QVERIFY(QFile::exists("/usr/lib/library/data"));
        QVERIFY(!QFile::exists("/usr/lib/dropped"));

        // What was dropped isn't offered any more, so this is the last row.
        QVERIFY(user.apply({"ctrl+End", "space"}));
        QVERIFY(user.answer(reviewWindow, "Return"));
        QTRY_COMPARE_WITH_TIMEOUT(user.installed("later"), QString("later-1.0"), 20000);
        const QString log = user.log("Installing later");
        for (const char* line : {"adds: not without a sigh", "bettered: in place of the old one",
                                 "dropped: good bye", "Installing later"})
            QVERIFY2(log.contains(line), qPrintable(QLatin1String(line) + " isn't in: " + log));
        QCOMPARE(user.quit(), QString());
        QCOMPARE(user.history(), QString("1 1"));
        QVERIFY(!QFile::exists(QLatin1String(Administrator::home) + "/.rpmdb"));
    }

    void aKeyComesIntoTheMachinesDatabase() { importKey(Administrator::home); }
    void aHomeThatEndsWithASlash() { importKey("/home/somebody/"); }
    void aHomeThatIsNotThere() { importKey("/nowhere"); }
    void anEmptyHome() { importKey(""); }
    void noHome() { importKey(nullptr); }

    void anOrdinaryUserLooksAtIt()
    {
        Administrator user(false);
        if (!user.refused.isEmpty())
            QSKIP(qPrintable(user.refused));
        const QString before = output("ls", {"-lR", "/var/lib/rpm", "/var/lib/dnf", "/etc"});
        QVERIFY(user.start("bettered"));
        for (int tries = 0; tries < 2; ++tries) {
            // The second time the mark is still there.
            QVERIFY(user.apply(tries == 0 ? QStringList{"alt+u"} : QStringList{"ctrl+Home"},
                               "^VOK Yum Error$"));
            QVERIFY(user.answer("^VOK Yum Error$", "Return"));
        }
        const QString told = "superuser privileges (under the root user on most systems)";
        const QString log = user.log(told);
        QVERIFY2(log.contains(told) && log.contains("Nothing has changed"), qPrintable(log));
        // Nothing else was wrong.
        QVERIFY2(!log.contains("denied"), qPrintable(log));
        QCOMPARE(user.quit(), QString());
        QCOMPARE(user.installed("bettered"), QString("bettered-1.0"));
        QCOMPARE(output("ls", {"-lR", "/var/lib/rpm", "/var/lib/dnf", "/etc"}), before);
        QVERIFY(!QFile::exists("/var/cache/yum"));
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server(sandbox, {VOK_SOURCE "/tests/system/window/realroot.py"});
    if (!server.start())
        return 1;
    TestRealRoot tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_RealRoot.moc"
