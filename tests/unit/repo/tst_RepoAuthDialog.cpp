// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Fonts.h"
#include "kit/HSeparator.h"
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/RepoAuthUser.h"

#include <QGridLayout>
#include <QScreen>
#include <QStyle>
#include <QTest>

#include <memory>

using RepoAuth::Dialog;

/// The dialog by itself.
class TestRepoAuthDialog : public QObject
{
    Q_OBJECT

private:
    /// Asks about the entry; the answers are there already.
    void ask()
    {
        if (dialog->isHidden())
            dialogs->expect("VOK Authentication").leave();
        dialog->exec(&entry);
        dialogs->verify();
    }
    QString mask(int length) const
    {
        return QString(length,
                       QChar(dialog->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter)));
    }
    QLineEdit* edit(const char* name) const { return dialog->findChild<QLineEdit*>(name); }
    static QStringList enabledButtons(const Dialog& dialog)
    {
        QStringList names;
        for (const auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->isEnabled())
                names << button->text();
        }
        return names;
    }

    std::unique_ptr<DialogDriver> dialogs;
    std::unique_ptr<RepoAuthUser> user;
    std::unique_ptr<Dialog> dialog;
    Repo::Entry entry;

private Q_SLOTS:
    void init()
    {
        dialogs = std::make_unique<DialogDriver>();
        user = std::make_unique<RepoAuthUser>();
        dialog = std::make_unique<Dialog>(nullptr);
        entry = Repo::Entry();
        entry.id = QStringLiteral("a");
        entry.name = QStringLiteral("<b>One</b> & all");
        entry.baseurl = QStringLiteral("http://one/vantry?lo%20gin=&se%2bcret=&path=os/\n"
                                       "http://two/rhel/lo%20gin=/se%2bcret=/os/");
        entry.mirrorlist = QStringLiteral("http://three/vantry?x=&y=&path=list");
    }

    void cleanup()
    {
        dialog.reset();
        user.reset();
        dialogs.reset();
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    }

    void looksAsLaidOut()
    {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("VOK Authentication"));
        QVERIFY(dialog->testAttribute(Qt::WA_ShowModal));
        const auto* heading = qobject_cast<QLabel*>(dialog->layout()->itemAt(0)->widget());
        QVERIFY(heading);
        QCOMPARE(heading->text(),
                 QStringLiteral("Some configured repositories require authentication"));
        QCOMPARE(heading->font(), Fonts::makeHeader(dialog->font()));
        QCOMPARE(heading->alignment(), Qt::Alignment(Qt::AlignHCenter));
        QVERIFY(qobject_cast<HSeparator*>(dialog->layout()->itemAt(1)->widget()));

        const auto* grid = dialog->findChild<QGridLayout*>();
        const QStringList labels = {"Identifier", "Name", "URLs",    "Mirror list URL",
                                    "",           "Name", "Password"};
        for (int row = 0; row < labels.size(); ++row) {
            const auto* label = qobject_cast<QLabel*>(grid->itemAtPosition(row, 0)->widget());
            if (row == 4)
                QVERIFY(qobject_cast<HSeparator*>(grid->itemAtPosition(4, 1)->widget()));
            else
                QCOMPARE(label->text(), labels.at(row));
        }
        QCOMPARE(edit("authName")->toolTip(),
                 QStringLiteral("Authentication name for a repository using the vantry "
                                "authentication method"));
        QCOMPARE(edit("password")->toolTip(),
                 QStringLiteral("Authentication password for a repository using the vantry "
                                "authentication method"));
        QCOMPARE(edit("authName")->echoMode(), QLineEdit::Normal);
        QCOMPARE(edit("password")->echoMode(), QLineEdit::Password);
        QCOMPARE(enabledButtons(*dialog),
                 (QStringList{"Quit", "Disable for Session", "Skip All", "Apply to All",
                              "Apply to All with this Host", "OK"}));
        QVERIFY(RepoAuthUser::button(*dialog, "OK")->isDefault());
        QCOMPARE(dialog->sizeHint().width(), dialog->layout()->totalSizeHint().width() +
                                                 40 * dialog->fontMetrics().horizontalAdvance('n'));
    }

    void showsTheRepositoryAndItsKeys()
    {
        user->answer([&](Dialog& shown) {
            QCOMPARE(RepoAuthUser::shown(shown, "id"), entry.id);
            QCOMPARE(RepoAuthUser::shown(shown, "name"), entry.name);
            QCOMPARE(shown.findChild<QLabel*>("name")->textFormat(), Qt::PlainText);
            QCOMPARE(RepoAuthUser::shown(shown, "urls"), entry.baseurl);
            QCOMPARE(RepoAuthUser::shown(shown, "mirrorlist"), entry.mirrorlist);
            QCOMPARE(RepoAuthUser::shown(shown, "authNameKey"), QStringLiteral("lo gin"));
            QCOMPARE(RepoAuthUser::shown(shown, "passwordKey"), QStringLiteral("se+cret"));
            QCOMPARE(shown.focusWidget(), edit("authName"));
            RepoAuthUser::press(shown, "Skip All");
        });
        ask();
    }

    void typedPasswordsAreShownAsPasswordCharactersAndStoredEncoded()
    {
        user->answer([&](Dialog& shown) {
            RepoAuthUser::type(shown, "authName", "m@");
            RepoAuthUser::type(shown, "password", "p&");
            QCOMPARE(RepoAuthUser::shown(shown, "urls"),
                     QStringLiteral("http://one/vantry?lo%20gin=m%40&se%2bcret=") + mask(2) +
                         "&path=os/\nhttp://two/rhel/lo%20gin=m%40/se%2bcret=" + mask(2) + "/os/");
            // The keys are the first URL's for all.
            QCOMPARE(RepoAuthUser::shown(shown, "mirrorlist"),
                     QStringLiteral("http://three/vantry?lo%20gin=m%40&se%2bcret=") + mask(2) +
                         "&path=list");
            QTest::sendKeyEvent(QTest::Click, edit("password"), Qt::Key_Adiaeresis,
                                QString(QChar(0xe4)), Qt::NoModifier);
            QVERIFY(RepoAuthUser::shown(shown, "urls").contains('=' + mask(3) + "&path="));
            QTest::keyClick(edit("password"), Qt::Key_Backspace);
            QVERIFY(RepoAuthUser::shown(shown, "urls").contains('=' + mask(2) + "&path="));
            for (const QString& text : DialogDriver::textsIn(&shown))
                QVERIFY2(!text.contains("p&") && !text.contains("p%26"), qPrintable(text));
            QVERIFY(entry.baseurl.contains("lo%20gin=&"));
            RepoAuthUser::press(shown, "OK");
        });
        ask();
        QCOMPARE(dialog->result(), 1);
        QCOMPARE(entry.baseurl,
                 QStringLiteral("http://one/vantry?lo%20gin=m%40&se%2bcret=p%26&path=os/\n"
                                "http://two/rhel/lo%20gin=m%40/se%2bcret=p%26/os/"));
        QCOMPARE(entry.mirrorlist,
                 QStringLiteral("http://three/vantry?lo%20gin=m%40&se%2bcret=p%26&path=list"));
    }

    void textsAreShownAndStoredAsUtf8()
    {
        entry.name = QString::fromLatin1("Gr\xc3\xbc\xc3\x9f"
                                         "e");
        entry.baseurl = QString::fromLatin1("http://one/vantry?l\xc3\xb6=&s=&path=\xc3\xa4/");
        const auto enter = [this](const char* field, ushort letter) {
            QTest::sendKeyEvent(QTest::Click, edit(field), Qt::Key_unknown, QString(QChar(letter)),
                                Qt::NoModifier);
        };
        user->answer([&](Dialog& shown) {
            QCOMPARE(RepoAuthUser::shown(shown, "name"), QStringLiteral("Gr\u00fc\u00dfe"));
            QCOMPARE(RepoAuthUser::shown(shown, "authNameKey"), QStringLiteral("l\u00f6"));
            enter("authName", 0xfc);
            enter("password", 0x20ac);
            QCOMPARE(
                RepoAuthUser::shown(shown, "urls"),
                QStringLiteral("http://one/vantry?l\u00f6=\u00fc&s=%1&path=\u00e4/").arg(mask(1)));
            RepoAuthUser::press(shown, "OK");
        });
        ask();
        QCOMPARE(entry.baseurl,
                 QString::fromLatin1(
                     "http://one/vantry?l\xc3\xb6=\xc3\xbc&s=\xe2\x82\xac&path=\xc3\xa4/"));
    }

    void passwordsOfOtherUrlsAreNotShown()
    {
        entry.baseurl = QStringLiteral("http://one/vantry?l=&s=&path=os/\n"
                                       "http://two/vantry?l=me&s=known&path=os/");
        entry.mirrorlist = QStringLiteral("http://three/rhel/l=me/s=known/os");
        user->answer([&](Dialog& shown) {
            QCOMPARE(RepoAuthUser::shown(shown, "urls"),
                     QStringLiteral("http://one/vantry?l=&s=&path=os/\n"
                                    "http://two/vantry?l=me&s=") +
                         mask(5) + "&path=os/");
            QCOMPARE(RepoAuthUser::shown(shown, "mirrorlist"),
                     "http://three/rhel/l=me/s=" + mask(5) + "/os");
            RepoAuthUser::press(shown, "OK");
        });
        ask();
        QVERIFY(entry.baseurl.contains("&s=known&"));
        QVERIFY(entry.mirrorlist.contains("/s=known/"));
    }

    void answers_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<int>("result");
        QTest::addColumn<bool>("stores");
        QTest::newRow("quit") << QByteArray("Quit") << 5 << false;
        QTest::newRow("disable") << QByteArray("Disable for Session") << 4 << false;
        QTest::newRow("skip") << QByteArray("Skip All") << 0 << false;
        QTest::newRow("all") << QByteArray("Apply to All") << 2 << true;
        QTest::newRow("host") << QByteArray("Apply to All with this Host") << 3 << true;
        QTest::newRow("ok") << QByteArray("OK") << 1 << true;
    }
    void answers()
    {
        QFETCH(QByteArray, button);
        QFETCH(int, result);
        QFETCH(bool, stores);
        user->answer(button, "me", "pass");
        ask();
        QCOMPARE(dialog->result(), result);
        QCOMPARE(entry.baseurl.contains("lo%20gin=me&se%2bcret=pass&"), stores);
        QCOMPARE(entry.mirrorlist.contains("=me&"), stores);
    }

    void tellsOfTheAnswerInOrder_data()
    {
        QTest::addColumn<int>("result");
        QTest::addColumn<QStringList>("signalled");
        QTest::newRow("skip") << 0 << QStringList{"finished 0", "finished 0", "rejected"};
        QTest::newRow("ok") << 1 << QStringList{"finished 1", "finished 1", "accepted"};
        QTest::newRow("all") << 2 << QStringList{"finished 2", "finished 2"};
        QTest::newRow("quit") << 5 << QStringList{"finished 5", "finished 5"};
    }
    void tellsOfTheAnswerInOrder()
    {
        QFETCH(int, result);
        QFETCH(QStringList, signalled);
        QStringList seen;
        connect(dialog.get(), &Dialog::finished, [&](int code) {
            seen << QStringLiteral("finished %1").arg(code);
            QCOMPARE(dialog->result(), code);
            QVERIFY(!RepoAuthUser::button(*dialog, "OK")->isEnabled());
        });
        connect(dialog.get(), &Dialog::accepted, [&] { seen << QStringLiteral("accepted"); });
        connect(dialog.get(), &Dialog::rejected, [&] { seen << QStringLiteral("rejected"); });
        user->answer([&](Dialog& shown) { shown.done(result); });
        ask();
        QCOMPARE(seen, signalled);
    }

    void staysOnTheScreenBetweenQuestions()
    {
        user->answer("Apply to All", "me", "pass");
        ask();
        QCOMPARE(dialog->focusWidget(), RepoAuthUser::button(*dialog, "Apply to All"));
        QVERIFY(dialog->isVisible());
        QCOMPARE(enabledButtons(*dialog),
                 (QStringList{"Apply to All", "Apply to All with this Host"}));
        entry.id = QStringLiteral("b");
        entry.baseurl = QStringLiteral("http://one/vantry?l=&s=&path=os/");
        user->answer([&](Dialog& shown) {
            QCOMPARE(enabledButtons(shown).size(), 6);
            QCOMPARE(edit("authName")->text(), QString());
            QCOMPARE(edit("password")->text(), QString());
            QCOMPARE(shown.focusWidget(), edit("authName"));
            RepoAuthUser::type(shown, "authName", "you");
            // The default button is OK again, although another one had the keyboard meanwhile.
            QTest::keyClick(shown.focusWidget(), Qt::Key_Return);
        });
        ask();
        QCOMPARE(dialog->result(), 1);
        QVERIFY(entry.baseurl.contains("?l=you&"));
        QVERIFY(dialog->isVisible());
    }

    void theFirstOfSeveralAnswersCounts()
    {
        int finished = 0;
        connect(dialog.get(), &Dialog::finished, [&] { ++finished; });
        user->answer([&](Dialog& shown) {
            RepoAuthUser::type(shown, "authName", "me");
            RepoAuthUser::press(shown, "OK");
            // What the user did in the same moment.
            RepoAuthUser::type(shown, "authName", "too late");
            RepoAuthUser::press(shown, "Apply to All");
            RepoAuthUser::press(shown, "Apply to All with this Host");
            QTest::keyClick(&shown, Qt::Key_Escape);
            shown.close();
        });
        ask();
        QCOMPARE(dialog->result(), 1);
        QCOMPARE(finished, 2);
        QVERIFY(entry.baseurl.contains("lo%20gin=me&"));
        QVERIFY(dialog->isVisible());
    }

    void nothingIsChangedAfterEscape()
    {
        const QString before = entry.baseurl;
        user->answer([&](Dialog& shown) {
            RepoAuthUser::type(shown, "authName", "me");
            QTest::keyClick(&shown, Qt::Key_Escape);
            RepoAuthUser::press(shown, "Apply to All");
        });
        ask();
        QCOMPARE(dialog->result(), 0);
        QCOMPARE(entry.baseurl, before);
    }

    void showingTakesABusyCursorAwayAndHidingBringsOneBack()
    {
        QApplication::setOverrideCursor(Qt::BusyCursor);
        user->answer([](Dialog& shown) {
            QVERIFY(!QApplication::overrideCursor());
            RepoAuthUser::press(shown, "OK");
        });
        ask();
        QVERIFY(!QApplication::overrideCursor());
        dialog->setVisible(false);
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
        QVERIFY(dialog->isHidden());
    }

    void longUrlsDontMakeTheWindowWiderThanTheScreen()
    {
        entry.baseurl = "http://one/vantry?l=&s=&path=" + QString(3000, 'x');
        user->answer([](Dialog& shown) {
            QVERIFY2(shown.width() <= shown.screen()->availableSize().width(),
                     qPrintable(QString::number(shown.width())));
            RepoAuthUser::press(shown, "OK");
        });
        ask();
    }
};

QTEST_MAIN(TestRepoAuthDialog)
#include "tst_RepoAuthDialog.moc"
