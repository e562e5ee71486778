// SPDX-License-Identifier: GPL-2.0-or-later
#include "RecordedScripts.h"
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
        RecordedScripts scripts;
        WindowDriver user;
        QVERIFY(user.start());
        QVERIFY(QTest::qWaitForWindowActive(&user.window()));
        QTest::keyClick(&user.window(), Qt::Key_F1);
        QCOMPARE(scripts.call("webbrowser"), QStringList{manual + "html/index.html"});
        QVERIFY(!scripts.calledOnceMore("mimeviewer"));
        QVERIFY(user.ready());
    }

    void thePdfOpensInTheViewer()
    {
        const SandboxRoot root;
        RecordedScripts scripts;
        WindowDriver user;
        QVERIFY(user.start());
        user.action("Manual (PDF)")->trigger();
        QCOMPARE(scripts.call("mimeviewer"),
                 (QStringList{"application/pdf", manual + "manual.pdf"}));
        QVERIFY(!scripts.calledOnceMore("webbrowser"));
    }

    void theManualCanBeReadWhileTheProgramIsAtWork()
    {
        const SandboxRoot root;
        RecordedScripts scripts;
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
        QCOMPARE(scripts.call("webbrowser"), QStringList{manual + "html/index.html"});
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
