// SPDX-License-Identifier: GPL-2.0-or-later
#include "Program.h"
#include "WindowSession.h"

#include "support/ProcessPerTest.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

/// The real share directory, copied to be damaged; the environment names the copy.
class DamagedShare
{
public:
    DamagedShare()
    {
        SandboxRoot::run("cp", {"-a", qEnvironmentVariable("VOKSHARE") + "/.", directory.path()});
        qputenv("VOKSHARE", QFile::encodeName(directory.path()));
    }

    QString path(const QString& path) const { return directory.filePath(path); }
    void append(const QString& file, const QByteArray& text) const
    {
        QFile script(path(file));
        QVERIFY2(script.exists() && script.open(QIODevice::Append), qPrintable(file));
        script.write(text);
    }

private:
    QTemporaryDir directory;
};

/// Shows the window, which the script's failure ends again.
bool endsByItself(WindowSession& user)
{
    QSignalSpy left(&user.window(), &MainWindow::left);
    user.window().show();
    return (left.size() == 1 || left.wait(20000)) && user.dialogs.waitUntilDone() &&
           !user.window().isVisible() && !user.locked();
}

} // namespace

/// Starts that come to nothing, each with its message and a proper end.
class TestBadScript : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMissingScript()
    {
        const DamagedShare share;
        WindowSession user;
        QVERIFY(QFile::remove(share.path("python/YumIO.py")));
        user.dialogs.expect("VOK Yum Error")
            .text("Internal error: unable to open YumIO.py")
            .press("OK");
        QVERIFY(endsByItself(user));
        QCOMPARE(user.terminal(), QByteArray());
    }

    void aScriptThatIsNoPython()
    {
        const DamagedShare share;
        WindowSession user;
        share.append("python/YumIO.py", "\n    def half a line(\n");
        user.dialogs.expect("VOK Yum Error")
            .text("Internal error: unable to execute YumIO.py")
            .press("OK");
        QVERIFY(endsByItself(user));
        const QByteArray terminal = user.terminal();
        QVERIFY2(terminal.contains("File \"YumIO.py\", line ") && terminal.contains("Error: "),
                 terminal.constData());
    }

    void aModuleOfTheScriptThatIsNoPython()
    {
        const DamagedShare share;
        WindowSession user;
        share.append("python/steward/session.py", "\n    def half a line(\n");
        user.dialogs.expect("VOK Yum Error")
            .text("Internal error: unable to execute YumIO.py")
            .press("OK");
        QVERIFY(endsByItself(user));
        const QByteArray terminal = user.terminal();
        QVERIFY2(terminal.contains("/python/steward/session.py\", line "), terminal.constData());
    }

    void aScriptWithoutItsClass()
    {
        const DamagedShare share;
        WindowSession user;
        share.append("python/YumIO.py", "\n\ndel YumIO\n");
        user.dialogs.expect("VOK Yum Error")
            .text("Internal error: cannot find python YumIO")
            .press("OK");
        QVERIFY(endsByItself(user));
        QCOMPARE(user.terminal(), QByteArray());
    }

    void aConstructorThatRaises()
    {
        const DamagedShare share;
        WindowSession user;
        share.append("python/YumIO.py", "\n    def __init__(self):\n"
                                        "        raise ValueError('no <luck> today')\n");
        // Only the log, which a person may have asked for, has the script's own words.
        user.window().setLogAtStart();
        QString log;
        user.dialogs.expect("VOK Yum Error")
            .text("Internal error: python exception occurred from C code.\n"
                  "When reporting this issue, please include the contents of the\n"
                  "Log window, which should contain a walkback.")
            .act([&](QWidget*) { log = user.logText(); })
            .press("OK");
        user.dialogs.expect("VOK Yum Error")
            .text("Internal error: cannot create python yumIO")
            .press("OK");
        QVERIFY(endsByItself(user));
        QVERIFY2(log.contains("\nValueError: no <luck> today\n"), qPrintable(log));
        QCOMPARE(user.terminal(), QByteArray());
    }

    void aConstructorThatExits()
    {
        const DamagedShare share;
        WindowSession user;
        share.append("python/YumIO.py", "\n    def __init__(self):\n"
                                        "        yumIOC.errorlog(0, 'only for <root>')\n"
                                        "        sys.exit(3)\n"
                                        "import yumIOC\n");
        user.dialogs.expect("VOK Yum Error")
            .text("only for <root>\nUnable to initialize")
            .press("Close");
        QVERIFY(endsByItself(user));
        QCOMPARE(user.terminal(), QByteArray());
    }

    void theProgramEndsWithItsScriptMissing()
    {
        const DamagedShare share;
        const SandboxRoot root;
        QVERIFY(QDir(share.path("python")).removeRecursively());
        Program vok;
        QVERIFY(vok.press("^VOK Yum Error$", "Return"));
        QCOMPARE(vok.end(), QString());
        QCOMPARE(vok.process.readAllStandardOutput(), QByteArray());
        QCOMPARE(vok.process.readAllStandardError(), QByteArray());
    }

    void theProgramEndsWithAScriptThatExits()
    {
        const DamagedShare share;
        const SandboxRoot root;
        share.append("python/YumIO.py", "\n    def __init__(self):\n        sys.exit(3)\n");
        Program vok;
        QVERIFY(vok.press("^VOK Yum Error$", "Escape"));
        QCOMPARE(vok.end(), QString());
        QCOMPARE(vok.process.readAllStandardOutput(), QByteArray());
        QCOMPARE(vok.process.readAllStandardError(), QByteArray());
    }

    void withoutADisplayTheProgramSaysSo()
    {
        const SandboxRoot root;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        Program vok({}, environment);
        QCOMPARE(vok.end(1), QString());
        QCOMPARE(vok.process.readAllStandardOutput(), QByteArray());
        QCOMPARE(vok.process.readAllStandardError(),
                 QByteArray("vok: cannot open the display: DISPLAY is not set\n"));
    }

    void aDisplayThatNobodyServesIsNamed()
    {
        const SandboxRoot root;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", "localhost:4242");
        Program vok({"--log"}, environment);
        QCOMPARE(vok.end(1), QString());
        QCOMPARE(vok.process.readAllStandardOutput(), QByteArray());
        QCOMPARE(vok.process.readAllStandardError(),
                 QByteArray("vok: cannot open the display localhost:4242\n"));
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestBadScript tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_BadScript.moc"
