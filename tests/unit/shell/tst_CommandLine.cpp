// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Application.h"
#include "shell/CommandLine.h"
#include "shell/MainWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <getopt.h>
#include <memory>
#include <string>
#include <vector>

namespace
{

const char usageText[] =
    "usage: vok [options...]\n"
    "\n"
    "VOK, Package Steward, is a graphical user interface which allows a user\n"
    "to make modifications to the installed rpm packages on a system.\n"
    "\n"
    "options:\n"
    "\n"
    "   -h, -H, --help           display this help information\n"
    "   -m m,   --mode=m         start with the package table mode, m:\n"
    "                               filter, search\n"
    "   -e r,   --regexp=r       start with the package table regexp, r\n"
    "   -s s,   --state=s        start with the package table state, s:\n"
    "                               updatable, installable, removable, all\n"
    "   -d,     --duplicates     start with the package table omitting duplicates\n"
    "   -g,     --groups         start with the package table showing groups\n"
    "   -r,     --repo-editor    start by bringing up the repository configuration\n"
    "                            editor\n"
    "   -l,     --log            start with the log window displayed\n"
    "           --disablerepo=r  disable the specified repository, r\n"
    "           --enablerepo=r   enable the specified repository, r\n"
    "\n";

/// What the program itself, run to its end, had to say.
struct Outcome {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

Outcome run(const QStringList& arguments, bool display = true)
{
    QTemporaryDir home;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display) {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
    }
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VOK_EXECUTABLE), arguments);
    Outcome outcome;
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return outcome;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        outcome.status = process.exitCode();
    outcome.output = process.readAllStandardOutput();
    outcome.errors = process.readAllStandardError();
    return outcome;
}

/// A window that was built, given a command line and never shown.
class Window
{
public:
    explicit Window(std::vector<std::string> words)
    {
        words.insert(words.begin(), "vok");
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(&word[0]);
        const int count = static_cast<int>(argv.size());
        argv.push_back(nullptr);
        optind = 1;
        CommandLine::apply(window, count, argv.data());
    }

    int mode() const
    {
        return window.findChild<QComboBox*>(QStringLiteral("mode"))->currentIndex();
    }
    int state() const
    {
        return window.findChild<QComboBox*>(QStringLiteral("state"))->currentIndex();
    }
    QString regexp() const
    {
        return window.findChild<QLineEdit*>(QStringLiteral("regexp"))->text();
    }
    bool duplicates() const
    {
        return window.findChild<QCheckBox*>(QStringLiteral("duplicates"))->isChecked();
    }
    bool groups() const
    {
        return window.findChild<QCheckBox*>(QStringLiteral("groups"))->isChecked();
    }

    MainWindow window{nullptr};
};

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private:
    char name[4] = "vok";

private Q_SLOTS:
    void initTestCase()
    {
        application = qApp;
        program = name;
    }

    void cleanup()
    {
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    }

    void helpPrintsTheUsageAndExitsWithOne_data()
    {
        QTest::addColumn<QString>("option");
        for (const char* option : {"--help", "-h", "-H", "--he"})
            QTest::newRow(option) << QString::fromLatin1(option);
    }

    void helpPrintsTheUsageAndExitsWithOne()
    {
        QFETCH(QString, option);
        const Outcome outcome = run({option});
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.output, QByteArray(usageText));
        QCOMPARE(outcome.errors, QByteArray());
    }

    void helpNeedsNoDisplay()
    {
        for (const char* option : {"--help", "-h", "-H"}) {
            const Outcome outcome = run({QLatin1String(option)}, false);
            QCOMPARE(outcome.status, 1);
            QCOMPARE(outcome.output, QByteArray(usageText));
            QCOMPARE(outcome.errors, QByteArray());
        }
    }

    void anErrorIsToldBeforeTheUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("the letter d is refused")
            << QStringList{"-d"} << QByteArray("vok: unrecognized option letter: d\n");
        QTest::newRow("unknown letter")
            << QStringList{"-x"} << QByteArray("vok: unrecognized option letter: x\n");
        QTest::newRow("letter without its argument")
            << QStringList{"-m"} << QByteArray("vok: unrecognized option letter: m\n");
        QTest::newRow("word without its argument")
            << QStringList{"--state"} << QByteArray("vok: unrecognized option letter: s\n");
        QTest::newRow("argument to a word that takes none")
            << QStringList{"--log=yes"} << QByteArray("vok: unrecognized option letter: l\n");
        QTest::newRow("unknown word")
            << QStringList{"--frobnicate"} << QByteArray("vok: unrecogized option: --frobnicate\n");
        QTest::newRow("unknown word after a known one")
            << QStringList{"--log", "--frob"} << QByteArray("vok: unrecogized option: --frob\n");
        QTest::newRow("unknown mode")
            << QStringList{"--mode", "sort"}
            << QByteArray("vok: unrecogized argument to -m/--mode option: sort\n");
        QTest::newRow("mode of another case")
            << QStringList{"-m", "Search"}
            << QByteArray("vok: unrecogized argument to -m/--mode option: Search\n");
        QTest::newRow("more than a mode")
            << QStringList{"-m", "searching"}
            << QByteArray("vok: unrecogized argument to -m/--mode option: searching\n");
        QTest::newRow("unknown state")
            << QStringList{"-s", "broken"}
            << QByteArray("vok: unrecogized argument to -s/--state option: broken\n");
        QTest::newRow("a word that is no option")
            << QStringList{"bash"} << QByteArray("vok: unrecognized argument: bash\n");
        QTest::newRow("a word before an option stops the scan")
            << QStringList{"bash", "--mode=wrong"}
            << QByteArray("vok: unrecognized argument: bash\n");
        QTest::newRow("the first of several words")
            << QStringList{"-g", "one", "two"} << QByteArray("vok: unrecognized argument: one\n");
        QTest::newRow("what follows two dashes is no option")
            << QStringList{"--", "--log"} << QByteArray("vok: unrecognized argument: --log\n");
    }

    void anErrorIsToldBeforeTheUsage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, message);
        const Outcome outcome = run(arguments);
        QCOMPARE(outcome.errors, message);
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.output, QByteArray(usageText));
    }

    void withoutOptionsTheWindowHasItsStartValues()
    {
        const Window made({});
        QCOMPARE(made.mode(), 0);
        QCOMPARE(made.regexp(), QStringLiteral(".*"));
        QCOMPARE(made.state(), 0);
        QVERIFY(made.duplicates());
        QVERIFY(!made.groups());
        QVERIFY(!made.window.startsInRepoEditor());
        QVERIFY(!made.window.showsLogAtStart());
        QVERIFY(made.window.getRepoOverrides().isEmpty());
    }

    void duplicatesAndItsAbbreviationsUncheckTheBox_data()
    {
        QTest::addColumn<QByteArray>("option");
        for (const char* option : {"--duplicates", "--dup", "--du"})
            QTest::newRow(option) << QByteArray(option);
    }

    void duplicatesAndItsAbbreviationsUncheckTheBox()
    {
        QFETCH(QByteArray, option);
        const Window made({option.toStdString()});
        QVERIFY(!made.duplicates());
    }

    void oneLetterOfAModeIsEnough_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::addColumn<int>("mode");
        QTest::newRow("s") << QByteArray("s") << 1;
        QTest::newRow("search") << QByteArray("search") << 1;
        QTest::newRow("f") << QByteArray("f") << 0;
        QTest::newRow("empty") << QByteArray("") << 0;
    }

    void oneLetterOfAModeIsEnough()
    {
        QFETCH(QByteArray, argument);
        QFETCH(int, mode);
        QCOMPARE(Window({"--mode=" + argument.toStdString()}).mode(), mode);
        QCOMPARE(Window({"-m", argument.toStdString()}).mode(), mode);
    }

    void oneLetterOfAStateIsEnough_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::addColumn<int>("state");
        QTest::newRow("u") << QByteArray("u") << 0;
        QTest::newRow("i") << QByteArray("i") << 1;
        QTest::newRow("r") << QByteArray("r") << 2;
        QTest::newRow("a") << QByteArray("a") << 3;
        QTest::newRow("removable") << QByteArray("removable") << 2;
        QTest::newRow("empty") << QByteArray("") << 0;
    }

    void oneLetterOfAStateIsEnough()
    {
        QFETCH(QByteArray, argument);
        QFETCH(int, state);
        // Another state first, so that the first one has something to change.
        QCOMPARE(Window({"-s", "all", "--state=" + argument.toStdString()}).state(), state);
        QCOMPARE(Window({"-s", "all", "-s", argument.toStdString()}).state(), state);
    }

    void theRemainingOptionsReachTheirControls()
    {
        const Window letters({"-e", "^kernel", "-g", "-r", "-l"});
        QCOMPARE(letters.regexp(), QStringLiteral("^kernel"));
        QVERIFY(letters.groups());
        QVERIFY(letters.window.startsInRepoEditor());
        QVERIFY(letters.window.showsLogAtStart());

        const Window words({"--regexp=ö", "--groups", "--repo-editor", "--log"});
        QCOMPARE(words.regexp(), QStringLiteral("ö"));
        QVERIFY(words.groups());
        QVERIFY(words.window.startsInRepoEditor());
        QVERIFY(words.window.showsLogAtStart());
    }

    void overridesOfOneRepositoryAllStayInTheirOrder()
    {
        const Window made({"--disablerepo=*", "--enablerepo=base", "--disablerepo", "base"});
        const QList<YumRepoEnabled>& overrides = made.window.getRepoOverrides();
        QCOMPARE(overrides.size(), 3);
        QCOMPARE(overrides.at(0).enabled, false);
        QCOMPARE(overrides.at(0).pattern.pattern(), QStringLiteral("*"));
        QCOMPARE(overrides.at(1).enabled, true);
        QCOMPARE(overrides.at(1).pattern.pattern(), QStringLiteral("base"));
        QCOMPARE(overrides.at(2).enabled, false);
        QCOMPARE(overrides.at(2).pattern.pattern(), QStringLiteral("base"));
    }

    void aSearchOnTheCommandLineWaitsForTheScript()
    {
        // In this order the mode finds a real pattern, long before there is anything to load it
        // from.
        const Window made({"--regexp=kernel", "--mode=search"});
        QCOMPARE(made.mode(), 1);
    }
};

QTEST_MAIN(TestCommandLine)
#include "tst_CommandLine.moc"
