// SPDX-License-Identifier: GPL-2.0-or-later
#include "Sandbox.h"
#include "WindowDriver.h"

#include "support/ProcessPerTest.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QtTest>

namespace
{

/// The program's data, with scripts that write down what they are called with in place of those
/// that show something.
class RecordingShare
{
public:
    RecordingShare()
        : original(qEnvironmentVariable("VOKSHARE"))
    {
        const QDir share(original);
        for (const QString& name : share.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
            const QString path = directory.filePath(name);
            if (name == QLatin1String("webbrowser") || name == QLatin1String("mimeviewer"))
                writeRecorder(path);
            else
                QFile::link(share.absoluteFilePath(name), path);
        }
        qputenv("VOKSHARE", QFile::encodeName(directory.path()));
    }
    ~RecordingShare() { qputenv("VOKSHARE", QFile::encodeName(original)); }

    /// The arguments that the script was called with last; empty as long as it wasn't.
    QStringList calledWith(const QString& script) const
    {
        QFile file(directory.filePath(script + QStringLiteral(".called")));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromLocal8Bit(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private:
    static void writeRecorder(const QString& path)
    {
        QFile file(path);
        // Whoever waits for the record shall find it whole.
        if (file.open(QIODevice::WriteOnly))
            file.write("#!/bin/sh\n"
                       "printf '%s\\n' \"$@\" >\"$0.part\" && mv \"$0.part\" \"$0.called\"\n");
        file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser);
    }

    const QString original;
    QTemporaryDir directory;
};

const QString manual = QStringLiteral("/usr/share/doc/vok-1.11.11/");

} // namespace

/// The menu Help, from the keys to the programs that show what it leads to.
class TestHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void f1ShowsThePagesInTheBrowser()
    {
        const SandboxRoot root;
        const RecordingShare share;
        WindowDriver user;
        QVERIFY(user.start());
        QVERIFY(QTest::qWaitForWindowActive(&user.window()));
        QTest::keyClick(&user.window(), Qt::Key_F1);
        QTRY_COMPARE(share.calledWith("webbrowser"), QStringList{manual + "html/index.html"});
        QVERIFY(share.calledWith("mimeviewer").isEmpty());
        QVERIFY(user.ready());
    }

    void thePdfOpensInTheViewer()
    {
        const SandboxRoot root;
        const RecordingShare share;
        WindowDriver user;
        QVERIFY(user.start());
        user.action("Manual (PDF)")->trigger();
        QTRY_COMPARE(share.calledWith("mimeviewer"),
                     (QStringList{"application/pdf", manual + "manual.pdf"}));
        QVERIFY(share.calledWith("webbrowser").isEmpty());
    }

    void theManualCanBeReadWhileTheProgramIsAtWork()
    {
        const SandboxRoot root;
        const RecordingShare share;
        WindowDriver user;
        QVERIFY(user.start());
        bool asked = false;
        // The first collection is over; the next one asks for events as soon as it has begun.
        QTimer::singleShot(0, &user.window(), [&] {
            asked = !user.ready();
            QAction* pages = user.action("Manual (html)");
            QVERIFY(pages->isEnabled());
            pages->trigger();
        });
        user.click("refresh");
        QVERIFY(asked);
        QTRY_COMPARE(share.calledWith("webbrowser"), QStringList{manual + "html/index.html"});
        QVERIFY(user.ready());
    }

    void theFirstLetterAndTheArrowsLeadToTheWindowAbout()
    {
        const SandboxRoot root;
        WindowDriver user;
        QVERIFY(user.start());
        QVERIFY(QTest::qWaitForWindowActive(&user.window()));
        user.dialogs.expect("About").textContains("VOK 1.11.11").press("OK");
        QTest::keyClick(&user.window(), Qt::Key_H, Qt::AltModifier);
        QTRY_VERIFY(QApplication::activePopupWidget());
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_A);
        QVERIFY(user.dialogs.waitUntilDone());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestHelp tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Help.moc"
