// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoAuthChecker.h"
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/ConfigTree.h"
#include "unit/repo/RepoAuthUser.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QWidget>

#include <memory>

using RepoAuth::Checker;

namespace
{

const QString repoFile = QStringLiteral("/etc/yum.repos.d/a.repo");
const char title[] = "VOK Authentication";

QByteArray url(const char* host, const char* name = "", const char* password = "")
{
    return QByteArray("http://") + host + "/vantry?login=" + name + "&secret=" + password +
           "&path=os/";
}

QByteArray section(const char* id, const QByteArray& baseurl, const char* more = "enabled=1\n")
{
    return QByteArray("[") + id + "]\nname=The " + id + "\nbaseurl=" + baseurl + '\n' + more + '\n';
}

} // namespace

/// The check over real files and through the real dialog.
class TestRepoAuthChecker : public QObject
{
    Q_OBJECT

private:
    void write(const QByteArray& content)
    {
        // The writer puts an empty line between two sections, and none at the end.
        tree->write(repoFile, content.chopped(1));
        QFile file(tree->path(repoFile));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    }
    QByteArray content() const
    {
        QFile file(tree->path(repoFile));
        return file.open(QIODevice::ReadOnly) ? file.readAll() + '\n' : "no file";
    }
    bool isWritten() const { return QFileInfo(tree->path(repoFile)).lastModified() != longAgo; }
    /// The check, in which the dialog comes up at most once.
    std::unique_ptr<Checker> check(bool asks = true)
    {
        if (asks)
            dialogs->expect(title).leave();
        auto checker = std::make_unique<Checker>(window.get(), io.get());
        const auto children = window->findChildren<RepoAuth::Dialog*>();
        if (children.size() != (asks ? 1 : 0))
            QTest::qFail("the dialog is made when it is needed", __FILE__, __LINE__);
        for (const RepoAuth::Dialog* dialog : children) {
            if (dialog->isVisible())
                QTest::qFail("the dialog stays at the end", __FILE__, __LINE__);
        }
        dialogs->verify();
        return checker;
    }
    QString baseurl(const char* id) const
    {
        for (const Repo::Entry& entry : qAsConst(io->entries)) {
            if (entry.id == QLatin1String(id))
                return entry.baseurl;
        }
        return QStringLiteral("no such repository");
    }

    const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1000000000);
    std::unique_ptr<ConfigTree> tree;
    std::unique_ptr<DialogDriver> dialogs;
    std::unique_ptr<RepoAuthUser> user;
    std::unique_ptr<QWidget> window;
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<YumConfIO> io;

private Q_SLOTS:
    void init()
    {
        tree = std::make_unique<ConfigTree>();
        tree->write("/etc/yum.conf", "[main]\n");
        dialogs = std::make_unique<DialogDriver>();
        user = std::make_unique<RepoAuthUser>();
        window = std::make_unique<QWidget>();
        window->show();
        used.clear();
        io = std::make_unique<YumConfIO>(options, used);
        // What the window does while it isn't ready.
        QApplication::setOverrideCursor(Qt::BusyCursor);
    }

    void cleanup()
    {
        io.reset();
        window.reset();
        user.reset();
        dialogs.reset();
        tree.reset();
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    }

    void noRepositoryInNeedMakesNoDialogAndWritesNothing()
    {
        const QByteArray text =
            section("plain", "http://one/os") + section("full", url("one", "me", "pass")) +
            section("named", url("one", "me")) + section("secret", url("one", "", "pass"));
        write(text);
        const auto checker = check(false);
        QCOMPARE(io->entries.size(), 4);
        QVERIFY(!checker->quit);
        QVERIFY(!checker->changed);
        QVERIFY(!isWritten());
        QCOMPARE(content(), text);
        QVERIFY(QApplication::overrideCursor());
    }

    void aRepositoryOutOfUseIsPassedOver()
    {
        write(section("off", url("one"), "enabled=0\n") + section("on", url("two")));
        user->answer("Apply to All", "me", "pass");
        const auto checker = check();
        QCOMPARE(user->asked, QStringList{"on"});
        QCOMPARE(content(), section("off", url("one"), "enabled=0\n") +
                                section("on", url("two", "me", "pass")));
        QVERIFY(!io->usedRepos.value("off"));
    }

    void anAnswerIsWrittenIntoTheFile()
    {
        write(section("a", url("one"), "enabled=1\nkeep=this\n"));
        user->answer("OK", "me", "pa ss&/%");
        const auto checker = check();
        QVERIFY(checker->changed);
        QVERIFY(!checker->quit);
        QCOMPARE(content(),
                 section("a", url("one", "me", "pa%20ss%26%2f%25"), "enabled=1\nkeep=this\n"));
        QCOMPARE(baseurl("a"), QString(url("one", "me", "pa%20ss%26%2f%25")));
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
    }

    void anAnswerThatIsOnlyANameOrAPasswordIsAChange_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("password");
        QTest::newRow("name") << QByteArray("me") << QByteArray();
        QTest::newRow("password") << QByteArray() << QByteArray("pass");
    }
    void anAnswerThatIsOnlyANameOrAPasswordIsAChange()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, password);
        write(section("a", url("one")));
        user->answer("OK", name, password);
        QVERIFY(check()->changed);
        QCOMPARE(content(), section("a", url("one", name, password)));
    }

    void okWithBothFieldsEmptyChangesNothing()
    {
        const QByteArray text = section("a", url("one")) + section("b", url("one"));
        write(text);
        user->answer("OK");
        user->answer("OK");
        const auto checker = check();
        QCOMPARE(user->asked, (QStringList{"a", "b"}));
        QVERIFY(!checker->changed);
        QVERIFY(!isWritten());
        QCOMPARE(baseurl("a"), QString(url("one")));
    }

    void okWithBothFieldsEmptyKeepsTheCredentialsOfAnotherUrl()
    {
        write(section("a", url("one") + "\n  " + url("two", "other", "pass")) +
              section("b", url("one")));
        user->answer("OK");
        user->answer("OK", "me", "word");
        QVERIFY(check()->changed);
        QCOMPARE(baseurl("a"), QString(url("one") + '\n' + url("two", "other", "pass")));
        QVERIFY(content().contains("login=other&secret=pass&"));
    }

    void eachRepositoryIsAskedAboutAfterOk()
    {
        write(section("a", url("one")) + section("b", url("one")));
        user->answer("OK", "me", "first");
        user->answer("OK", "you", "second");
        check();
        QCOMPARE(content(), section("a", url("one", "me", "first")) +
                                section("b", url("one", "you", "second")));
    }

    void oneAnswerServesTheRepositoriesOfItsHost()
    {
        write(section("a", url("one")) + section("b", url("two")) + section("c", url("one")) +
              section("d", "http://three/vantry/\nmirrorlist=" + url("one")));
        user->answer("Apply to All with this Host", "me", "pass");
        user->answer("OK", "you", "word");
        // The host is that of its URL, which comes before the mirror list's.
        user->answer("OK");
        const auto checker = check();
        QCOMPARE(user->asked, (QStringList{"a", "b", "d"}));
        QVERIFY(checker->changed);
        QCOMPARE(content(), section("a", url("one", "me", "pass")) +
                                section("b", url("two", "you", "word")) +
                                section("c", url("one", "me", "pass")) +
                                section("d", "http://three/vantry/\nmirrorlist=" + url("one")));
    }

    void repositoriesWithoutAHostShareOneAnswer()
    {
        const auto hostless = [](const char* name, const char* password) {
            return QByteArray("file:/vantry?login=") + name + "&secret=" + password + "&path=os/";
        };
        write(section("a", hostless("", "")) + section("b", url("one")) +
              section("c", hostless("", "")));
        user->answer("Apply to All with this Host", "me", "pass");
        user->answer("OK");
        check();
        QCOMPARE(user->asked, (QStringList{"a", "b"}));
        QCOMPARE(content(), section("a", hostless("me", "pass")) + section("b", url("one")) +
                                section("c", hostless("me", "pass")));
    }

    void theMirrorListNamesTheHostWhereThereIsNoUrl()
    {
        const auto mirrored = [](const char* id, const QByteArray& list) {
            return QByteArray("[") + id + "]\nname=The " + id + "\nmirrorlist=" + list +
                   "\nenabled=1\n\n";
        };
        write(mirrored("a", url("one")) + mirrored("b", url("two")) + section("c", url("one")));
        user->answer("Apply to All with this Host", "me", "pass");
        user->answer("OK");
        check();
        QCOMPARE(user->asked, (QStringList{"a", "b"}));
        QCOMPARE(content(), mirrored("a", url("one", "me", "pass")) + mirrored("b", url("two")) +
                                section("c", url("one", "me", "pass")));
    }

    void oneAnswerServesAllWithTheKeysOfEach()
    {
        write(section("a", url("one")) + section("full", url("one", "old", "older")) +
              section("b", "http://two/rhel/user=/word=/os"));
        user->answer("Apply to All", "me", "p/w");
        QVERIFY(check()->changed);
        QCOMPARE(user->asked, QStringList{"a"});
        QCOMPARE(content(), section("a", url("one", "me", "p%2fw")) +
                                section("full", url("one", "old", "older")) +
                                section("b", "http://two/rhel/user=me/word=p%2fw/os"));
    }

    void anAnswerServesTheMirrorListOfALaterRepositoryToo_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::newRow("all") << QByteArray("Apply to All");
        QTest::newRow("host") << QByteArray("Apply to All with this Host");
    }
    void anAnswerServesTheMirrorListOfALaterRepositoryToo()
    {
        QFETCH(QByteArray, button);
        const auto both = [](const char* name, const char* password) {
            return section("b", url("one", name, password) +
                                    "\nmirrorlist=" + url("two", name, password));
        };
        write(section("a", url("one")) + both("", ""));
        user->answer(button, "me", "pass");
        check();
        QCOMPARE(user->asked, QStringList{"a"});
        QCOMPARE(content(), section("a", url("one", "me", "pass")) + both("me", "pass"));
    }

    void anEmptyAnswerForAllChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::newRow("all") << QByteArray("Apply to All");
        QTest::newRow("host") << QByteArray("Apply to All with this Host");
    }
    void anEmptyAnswerForAllChangesNothing()
    {
        QFETCH(QByteArray, button);
        write(section("a", url("one")) + section("b", url("one")));
        user->answer(button);
        QVERIFY(!check()->changed);
        QCOMPARE(user->asked, QStringList{"a"});
        QVERIFY(!isWritten());
        QCOMPARE(baseurl("b"), QString(url("one")));
    }

    void disablingHoldsForTheSessionOnly()
    {
        const QByteArray text = section("a", url("one")) + section("b", url("one"));
        write(text);
        user->answer("Disable for Session", "typed", "invain");
        user->answer("OK");
        QVERIFY(!check()->changed);
        QCOMPARE(user->asked, (QStringList{"a", "b"}));
        QVERIFY(!io->usedRepos.value("a"));
        QVERIFY(io->usedRepos.value("b"));
        QCOMPARE(io->entries.first().enabled, 2);
        QVERIFY(!isWritten());
        QCOMPARE(baseurl("a"), QString(url("one")));

        // Nor does the same run ask again.
        user->answer("OK");
        check();
        QCOMPARE(user->asked, (QStringList{"a", "b", "b"}));
    }

    void skippingLeavesTheRestInUseAndEmpty()
    {
        write(section("a", url("one")) + section("b", url("two")) + section("c", url("three")));
        user->answer("OK", "me", "pass");
        user->answer("Skip All", "typed", "invain");
        const auto checker = check();
        QCOMPARE(user->asked, (QStringList{"a", "b"}));
        QVERIFY(!checker->quit);
        QVERIFY(checker->changed);
        for (const char* id : {"a", "b", "c"})
            QVERIFY2(io->usedRepos.value(id), id);
        QCOMPARE(content(), section("a", url("one", "me", "pass")) + section("b", url("two")) +
                                section("c", url("three")));
    }

    void escapeAndTheCloseButtonSkip_data()
    {
        QTest::addColumn<bool>("key");
        QTest::newRow("Escape") << true;
        QTest::newRow("close") << false;
    }
    void escapeAndTheCloseButtonSkip()
    {
        QFETCH(bool, key);
        write(section("a", url("one")) + section("b", url("two")));
        user->answer([&](RepoAuth::Dialog& dialog) {
            if (key)
                QTest::keyClick(&dialog, Qt::Key_Escape);
            else
                dialog.close();
            QCOMPARE(dialog.result(), 0);
        });
        const auto checker = check();
        QCOMPARE(user->asked, QStringList{"a"});
        QVERIFY(!checker->quit);
        QVERIFY(!checker->changed);
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
    }

    void quittingAfterAnAnswerWritesTheAnswer()
    {
        write(section("a", url("one")) + section("b", url("two")) + section("c", url("two")));
        user->answer("OK", "me", "pass");
        user->answer("Quit", "typed", "invain");
        const auto checker = check();
        QCOMPARE(user->asked, (QStringList{"a", "b"}));
        QVERIFY(checker->quit);
        QVERIFY(checker->changed);
        QCOMPARE(content(), section("a", url("one", "me", "pass")) + section("b", url("two")) +
                                section("c", url("two")));
    }

    void quittingAtOnceWritesNothing()
    {
        write(section("a", url("one")));
        user->answer("Quit");
        const auto checker = check();
        QVERIFY(checker->quit);
        QVERIFY(!checker->changed);
        QVERIFY(!isWritten());
    }

    void oneAnswerChangesBothUrlsOfARepository()
    {
        write(section("a", url("one") + "\n  " + url("two")));
        user->answer("OK", "me", "pass");
        check();
        QCOMPARE(baseurl("a"), QString(url("one", "me", "pass") + '\n' + url("two", "me", "pass")));
        QCOMPARE(content().count("login=me&secret=pass&"), 2);
    }

    void theBusyCursorIsGoneForEachQuestion()
    {
        write(section("a", url("one")) + section("b", url("two")));
        for (int i = 0; i < 2; ++i) {
            user->answer([](RepoAuth::Dialog& dialog) {
                QVERIFY(!QApplication::overrideCursor());
                RepoAuthUser::press(dialog, "OK");
            });
        }
        check();
        QVERIFY(QApplication::overrideCursor());
        QApplication::restoreOverrideCursor();
        QVERIFY(!QApplication::overrideCursor());
    }

    void whatWasReadBeforeAFailureIsChecked()
    {
        tree->write("/etc/yum.conf", "[main]\n" + section("a", url("one")));
        tree->write(repoFile, "[broken\n");
        dialogs->expect("VOK Repository Editor Error").press("OK");
        user->answer("Disable for Session");
        check();
        QCOMPARE(user->asked, QStringList{"a"});
    }

    void theEndOfTheApplicationIsNoAnswer()
    {
        write(section("a", url("one")) + section("b", url("two")) + section("c", url("two")));
        user->answer("OK", "me", "pass");
        user->answer("Disable for Session");
        user->answer([](RepoAuth::Dialog& dialog) {
            QCoreApplication::quit();
            // For the user of this test, who is asked once for each question.
            RepoAuthUser::button(dialog, "OK")->setEnabled(false);
        });
        QVERIFY(check()->changed);
        QCOMPARE(user->asked, (QStringList{"a", "b", "c"}));
        QVERIFY(!io->usedRepos.value("b"));
        QVERIFY(io->usedRepos.value("c"));
        QVERIFY(content().contains("login=me&secret=pass&"));
    }
};

QTEST_MAIN(TestRepoAuthChecker)
#include "tst_RepoAuthChecker.moc"
