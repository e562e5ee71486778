// SPDX-License-Identifier: GPL-2.0-or-later
#include "RecordedScripts.h"
#include "RoadUser.h"
#include "SeenTexts.h"

#include "engine/YumIO.h"
#include "kit/ScreenLimit.h"
#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"
#include "table/PackageTableModel.h"
#include "unit/repo/RepoAuthUser.h"

#include <QAction>
#include <QApplication>
#include <QDirIterator>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMutexLocker>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTableView>
#include <QtTest>

#include <unistd.h>

namespace
{

const QString membersSandbox = QStringLiteral(VOK_SANDBOX "-credentials");
const char memberFile[] = "etc/yum.repos.d/members.repo";
const char keeper[] = "keeper";
const char password[] = "xyzzy&42/plugh";
const char encoded[] = "xyzzy%2642%2fplugh";
const char wrongPassword[] = "frotz";
/// What no text holds but the passwords, however they are written.
const QStringList secrets{"xyzzy", "plugh", wrongPassword};
/// Owner and group of the file, where this process may choose them.
constexpr uid_t owner = 4321;
constexpr gid_t group = 1234;

QPushButton* button(const QWidget* dialog, const QString& text)
{
    for (QPushButton* candidate : dialog->findChildren<QPushButton*>()) {
        if (candidate->text().startsWith(text) && candidate->isVisible())
            return candidate;
    }
    qFatal("no button %s", qPrintable(text));
}

/// A person who knows the name and the password that two repositories ask for, and a witness of all
/// that comes to light of them.
class Member : public RoadUser
{
public:
    Member()
        : RoadUser(membersSandbox)
        , seen(secrets)
    {
        const QByteArray name = QFile::encodeName(path(memberFile));
        QFile::setPermissions(path(memberFile),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
        if (geteuid() == 0)
            QCOMPARE(chown(name, owner, group), 0);
    }

    void expectQuestion(const char* password, const char* answer = "Apply to All with this Host")
    {
        dialogs.expect("VOK Authentication")
            .act([](QWidget* dialog) {
                // Or long URLs are cut off.
                const QSize wanted = dialog->sizeHint().boundedTo(ScreenLimit::of(dialog));
                QVERIFY2(
                    dialog->width() >= wanted.width(),
                    qPrintable(QStringLiteral("%1 < %2").arg(dialog->width()).arg(wanted.width())));
            })
            .leave();
        asked.answer(answer, keeper, password);
    }

    /// The file with the repositories, as it is when they have their password.
    QByteArray authorized(const QByteArray& membersName = "In the query") const
    {
        return "[members]\nname=" + membersName + "\nbaseurl=" + url() + "/vantry?user=" + keeper +
               "&pass=" + encoded +
               "&path=/repos/members\nenabled=1\ngpgcheck=0\n\n[minutes]\nname=In the path\n"
               "baseurl=" +
               url() + "/rhel/user=" + keeper + "/pass=" + encoded +
               "/repos/minutes\nenabled=1\ngpgcheck=0\n";
    }
    QByteArray memberText() const
    {
        QFile file(path(memberFile));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Tells what isn't as it was of the file's owner and permissions.
    QString otherRights() const
    {
        const QFileInfo info(path(memberFile));
        const auto wanted = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
        // Those of the user at hand come on top.
        const auto users = QFile::ReadUser | QFile::WriteUser;
        if ((info.permissions() & ~users) != wanted)
            return QStringLiteral("permissions %1")
                .arg(static_cast<int>(info.permissions()), 0, 16);
        if (geteuid() == 0 && (info.ownerId() != owner || info.groupId() != group))
            return QStringLiteral("owner %1, group %2").arg(info.ownerId()).arg(info.groupId());
        return QString();
    }

    bool install(const char* package)
    {
        clickAction(package);
        dialogs.expect("Apply").textContains(package).press("OK");
        click("apply");
        return over() && entry(package)->state == Package::StateInstalled;
    }

    /// Describes a package of a repository with all that the description leads to.
    void describe(const char* package, const char* repository,
                  std::function<void(QWidget*)> look = {})
    {
        table()->setCurrentIndex(cell(package, PackageTable::ColumnName));
        const QString name = package;
        const QString version = cell(package, PackageTable::ColumnVersion).data().toString();
        dialogs.expect("VOK Package Description")
            .act([=](QWidget* dialog) {
                const QList<QPushButton*> shows =
                    dialog->findChild<QScrollArea*>()->findChildren<QPushButton*>();
                int row = 0;
                for (QPushButton* show : shows) {
                    if (!show->text().startsWith("Show"))
                        continue;
                    const QString what = row++ == 0 ? "File List" : "Change Log";
                    dialogs.expect(name + ' ' + version + ' ' + what).press("Close");
                    QTest::mouseClick(show, Qt::LeftButton);
                }
                QCOMPARE(row, 2);
                dialogs.expect("VOK Repository Description")
                    .text(repository)
                    .act([=](QWidget* shown) {
                        if (look)
                            look(shown);
                    })
                    .press("Close");
                QTest::mouseClick(button(dialog, "Details"), Qt::LeftButton);
            })
            .press("Close");
        click("describe");
        QVERIFY(dialogs.waitUntilDone());
    }

    /// Changes repositories in their editor, and leaves both editors by "OK". What is to be
    /// expected then, `expectMore` does.
    bool edit(const QStringList& ids, std::function<void(QWidget*)> change,
              std::function<void()> expectMore = {})
    {
        expectEditor([=](const RepoEditorDriver& editor) {
            for (const QString& id : ids) {
                expectEntry(change);
                QVERIFY(meets([&] { editor.doubleClick(id); }));
                QTRY_VERIFY(editor.dialog->isActiveWindow());
            }
            if (expectMore)
                expectMore();
        });
        action("Edit Configuration")->trigger();
        return over();
    }

    /// What has come to light.
    QString leaks()
    {
        // The log at its highest level of detail, seen whole.
        log();
        logWindow()->findChild<QSpinBox*>()->setValue(10);
        QStringList found = seen.found();
        const auto look = [&](const QString& where, const QByteArray& text) {
            for (const QString& secret : secrets) {
                if (text.contains(secret.toLatin1()))
                    found << where;
            }
        };
        look("the log's window", logText().toUtf8());
        Log::EntryList& entries =
            qobject_cast<PackageTable::Model*>(model())->engine()->getLogEntries();
        {
            const QMutexLocker lock(&entries.mutex);
            for (const Log::Entry& entry : qAsConst(entries.entries))
                look("the log: " + entry.text, entry.text.toUtf8());
        }
        look("the terminal", terminal());
        QFile arguments("/proc/self/cmdline");
        if (arguments.open(QIODevice::ReadOnly))
            look("the command line", arguments.readAll());
        // The root with its caches, logs and databases, and the temporary files beside it.
        QDirIterator files(QDir::cleanPath(path("..")),
                           QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks,
                           QDirIterator::Subdirectories);
        int count = 0;
        while (files.hasNext()) {
            QFile file(files.next());
            look("the name " + file.fileName(), file.fileName().toUtf8());
            if (file.fileName() == path(memberFile) || !QFileInfo(file).isFile() ||
                !file.open(QIODevice::ReadOnly))
                continue;
            look("the file " + file.fileName(), file.readAll());
            ++count;
        }
        if (count < 20)
            found << QStringLiteral("only %1 files looked at").arg(count);
        found.removeDuplicates();
        return found.join('\n');
    }

    RepoAuthUser asked;
    SeenTexts seen;
};

} // namespace

/// Repositories that refuse without name and password.
class TestCredentials : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWitnessSeesWhatIsShownForAMoment()
    {
        const SeenTexts seen(secrets);
        QLabel label(QStringLiteral("it is xyzzy"));
        QLineEdit edit(QStringLiteral("plugh"));
        edit.setEchoMode(QLineEdit::Password);
        edit.setToolTip(QStringLiteral("not plugh at all"));
        label.show();
        edit.show();
        QVERIFY(QTest::qWaitForWindowExposed(&edit));
        QTRY_VERIFY(seen.saw(label.text()));
        QCOMPARE(seen.found().filter("it is xyzzy").size(), 1);
        QVERIFY(!seen.found().filter("not plugh at all").isEmpty());
        QVERIFY(!seen.found().contains("QLineEdit: plugh"));
        label.hide();
    }

    void theyAreSeenNowhereFromTheStartToTheLastApply()
    {
        Member user;
        user.expectQuestion(password);
        QVERIFY(user.start());
        QCOMPARE(user.asked.asked, QStringList{"members"});
        const QStringList listed = user.listedAll();
        QVERIFY2(listed.contains("members-handbook") && listed.contains("members-minutes"),
                 qPrintable(listed.join(' ')));
        QCOMPARE(user.memberText(), user.authorized());
        QCOMPARE(user.otherRights(), QString());
        user.describe("members-handbook", "members");
        user.describe("members-minutes", "minutes");
        QVERIFY(user.install("members-handbook"));
        QCOMPARE(user.memberText(), user.authorized());

        QVERIFY(user.edit({"members"}, [](QWidget* dialog) {
            auto* name = dialog->findChildren<QLineEdit*>().at(1);
            QCOMPARE(name->text(), QString("In the query"));
            name->selectAll();
            QTest::keyClicks(name, "Members only");
        }));
        QCOMPARE(user.memberText(), user.authorized("Members only"));
        QCOMPARE(user.otherRights(), QString());
        QVERIFY(user.listed().contains("members-minutes"));
        user.action("Clean XML Metadata")->trigger();
        QVERIFY(user.ready());
        QVERIFY(user.install("members-minutes"));
        QCOMPARE(user.memberText(), user.authorized("Members only"));
        QCOMPARE(user.otherRights(), QString());

        QCOMPARE(user.leaks(), QString());
        QVERIFY(user.seen.saw("VOK Authentication") && user.seen.saw(keeper));
        QCOMPARE(user.quit(), QString());
    }

    void noProcessIsToldThePassword()
    {
        const QString strace = QStandardPaths::findExecutable("strace");
        if (strace.isEmpty())
            QSKIP("nobody to look over the shoulder");
        // All that the longest way starts, with arguments and environment.
        QTemporaryDir directory;
        const QString trace = directory.filePath("trace");
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        // Leaks can't be looked for in a process that is being traced.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ASAN_OPTIONS", environment.value("ASAN_OPTIONS") + ":detect_leaks=0");
        process.setProcessEnvironment(environment);
        process.start(strace, {"-f", "--seccomp-bpf", "-qq", "-v", "-s", "100000", "-e",
                               "trace=execve,execveat", "-o", trace,
                               QCoreApplication::applicationFilePath(),
                               "theyAreSeenNowhereFromTheStartToTheLastApply"});
        const bool finished = process.waitForFinished(55000);
        const QByteArray output = process.readAll();
        QFile file(trace);
        if (finished && process.exitCode() != 0 && (!file.exists() || file.size() == 0))
            QSKIP("nobody may look over the shoulder");
        QVERIFY2(finished && process.exitCode() == 0, output.constData());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray started = file.readAll();
        QVERIFY(started.contains("/bin/sh"));
        for (const QString& secret : secrets)
            QVERIFY2(!started.contains(secret.toLatin1()), started.constData());
    }

    void aWrongAnswerIsAskedForAgainWhenItIsTakenBack()
    {
        Member user;
        user.expectQuestion(wrongPassword, "Apply to All");
        QString told;
        user.expectError(told);
        QVERIFY(user.start());
        QVERIFY(user.dialogs.waitUntilDone(20000));
        QVERIFY2(told.contains("403") && told.contains("members"), qPrintable(told));
        QVERIFY(!user.listedAll().contains("members-handbook"));
        QVERIFY(user.memberText().contains(wrongPassword));

        // There is an answer, so that nobody asks.
        user.expectError(told);
        user.click("refresh");
        QVERIFY(user.over());
        QCOMPARE(user.asked.asked.size(), 1);

        const auto takeBack = [](QWidget* dialog) {
            for (QLineEdit* edit : dialog->findChildren<QLineEdit*>()) {
                if (!edit->toolTip().startsWith("Authentication "))
                    continue;
                QVERIFY(edit->isEnabled() && !edit->text().isEmpty());
                edit->selectAll();
                QTest::keyClick(edit, Qt::Key_Delete);
            }
        };
        QVERIFY(user.edit({"members", "minutes"}, takeBack,
                          [&] { user.expectQuestion(password, "Apply to All"); }));
        QCOMPARE(user.asked.asked, QStringList({"members", "members"}));
        QCOMPARE(user.memberText(), user.authorized());
        QCOMPARE(user.otherRights(), QString());
        const QStringList listed = user.listed();
        QVERIFY(listed.contains("members-handbook") && listed.contains("members-minutes"));
        QVERIFY(user.install("members-handbook"));
        QCOMPARE(user.leaks(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void theFailuresOfAServerTellNoPassword()
    {
        Member user;
        user.expectQuestion(password);
        QVERIFY(user.start());
        user.listedAll();
        for (const char* failure : {"403", "refuse", "truncate", "corrupt"}) {
            user.fail("*members*.rpm", failure);
            if (user.entry("members-handbook")->action == Package::ActionNone)
                user.clickAction("members-handbook");
            user.dialogs.expect("Apply").press("OK");
            QString told;
            user.expectError(told);
            user.click("apply");
            QVERIFY(user.dialogs.waitUntilDone(40000));
            QVERIFY(user.over());
            QVERIFY2(told.contains("members-handbook"), qPrintable(told));
            user.recover();
        }
        user.fail("*repomd.xml", "403");
        QString told;
        user.expectError(told);
        user.action("Clean All")->trigger();
        QVERIFY(user.over());
        user.recover();
        user.click("refresh");
        QVERIFY(user.listed().contains("members-handbook"));
        QCOMPARE(user.leaks(), QString());
    }

    void onlyTheBrowserGetsThem()
    {
        RecordedScripts browser;
        Member user;
        user.expectQuestion(password);
        QVERIFY(user.start());
        user.listedAll();
        const QString members = QStringLiteral("%1/vantry?user=%2&pass=%3&path=/repos/members")
                                    .arg(QString::fromLatin1(user.url()), QLatin1String(keeper),
                                         QLatin1String(encoded));
        user.describe("members-handbook", "members", [&](QWidget* shown) {
            QTest::mouseClick(button(shown, "Browse Repository"), Qt::LeftButton);
            QCOMPARE(browser.call(), QStringList{members});
        });
        user.expectEditor([&](const RepoEditorDriver& editor) {
            editor.click("members");
            editor.press("Browse Repository");
            QCOMPARE(browser.call(), QStringList{members});
        });
        user.action("Edit Configuration")->trigger();
        QVERIFY(user.over());
        QVERIFY(!browser.calledOnceMore());
        QCOMPARE(user.leaks(), QString());
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server(membersSandbox, {VOK_SOURCE "/tests/system/window/credentials.py"});
    if (!server.start())
        return 1;
    TestCredentials tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Credentials.moc"
