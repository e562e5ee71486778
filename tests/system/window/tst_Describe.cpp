// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowSession.h"

#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTableView>
#include <QtTest>

namespace
{

/// What stands beside each label of a section of a description, by the label without its colon; the
/// section's header has none.
QMap<QString, QString> rows(const QWidget* dialog, int section = 0)
{
    QMap<QString, QString> found;
    const QWidget* widget = dialog->findChildren<QScrollArea*>().at(section)->widget();
    for (const QGridLayout* grid : widget->findChildren<QGridLayout*>()) {
        for (int row = 0; row < grid->rowCount(); ++row) {
            QLayoutItem* left = grid->itemAtPosition(row, 0);
            QLayoutItem* right = grid->itemAtPosition(row, 1);
            const QString label = qobject_cast<QLabel*>(left->widget())->text();
            QWidget* value =
                right->layout() ? right->layout()->itemAt(0)->widget() : right->widget();
            if (const auto* text = qobject_cast<QLabel*>(value))
                found[left == right ? QString() : label.chopped(1)] = text->text();
            else if (const auto* button = qobject_cast<QPushButton*>(value))
                found[label.chopped(1)] = '[' + button->text() + ']';
        }
    }
    return found;
}

QPushButton* button(const QWidget* dialog, const QString& text)
{
    for (QPushButton* candidate : dialog->findChildren<QPushButton*>()) {
        if (candidate->text() == text && candidate->isVisible())
            return candidate;
    }
    return nullptr;
}

} // namespace

/// Descriptions of real packages, with all that they lead to.
class TestDescribe : public QObject
{
    Q_OBJECT

private:
    /// Describes a listed row by the button of the window.
    static void describe(WindowSession& user, const QString& name,
                         std::function<void(QWidget*)> look)
    {
        user.table()->setCurrentIndex(user.cell(name, PackageTable::ColumnName));
        user.dialogs.expect("VOK Package Description")
            .text(name)
            .act([&](QWidget* dialog) {
                QTRY_VERIFY(
                    dialog->screen()->availableGeometry().contains(dialog->frameGeometry()));
                look(dialog);
            })
            .press("Close");
        user.click("describe");
        QVERIFY(user.dialogs.waitUntilDone());
    }

    /// Presses a button that leads to a dialog of this title with this text in it.
    static void press(WindowSession& user, QPushButton* button, const QString& title,
                      const QString& part)
    {
        QVERIFY(button);
        user.dialogs.expect(title).textContains(part).press("Close");
        QTest::mouseClick(button, Qt::LeftButton);
    }

private Q_SLOTS:
    void anInstalledPackage()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        describe(user, "chess", [&](QWidget* dialog) {
            const QMap<QString, QString> shown = rows(dialog);
            QCOMPARE(shown[QString()], QString("Installed"));
            QCOMPARE(shown["Kind"], QString("Ordinary package"));
            QCOMPARE(shown["Version"], QString("6.2-1"));
            QCOMPARE(shown["Architecture"], QString("x86_64"));
            QCOMPARE(shown["Summary"], QString("Sixty-four squares"));
            QCOMPARE(shown["Group"], QString("Games"));
            QVERIFY(!shown["Install Time"].isEmpty());
            QVERIFY2(shown["Provides"].contains("chess = 6.2-1"), qPrintable(shown["Provides"]));
            QVERIFY(!shown.contains("Repository"));
            QVERIFY(!button(dialog, "Details"));
            QCOMPARE(shown["Files"], QString("[Show]"));
            QCOMPARE(shown["Change Log"], QString("[Show]"));
            const auto buttons =
                dialog->findChildren<QScrollArea*>().first()->findChildren<QPushButton*>();
            QCOMPARE(buttons.size(), 2);
            press(user, buttons[0], "chess 6.2-1 File List", "/usr/share/doc/chess/README");
            press(user, buttons[1], "chess 6.2-1 Change Log", "* ");
        });
        QCOMPARE(user.quit(), QString());
    }

    void anUpdateWithItsInstalledVersions()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        describe(user, "kernel", [](QWidget* dialog) {
            QCOMPARE(dialog->findChildren<QScrollArea*>().size(), 3);
            QCOMPARE(rows(dialog)[QString()], QString("Available for update"));
            QCOMPARE(rows(dialog)["Version"], QString("5.10.19-1"));
            QCOMPARE(rows(dialog)["Repository"], QString("updates"));
            QStringList versions;
            for (int section : {1, 2}) {
                const QMap<QString, QString> shown = rows(dialog, section);
                QCOMPARE(shown[QString()], QString("Installed"));
                QVERIFY(!shown.contains("Summary"));
                QCOMPARE(shown["Files"], QString("[Show]"));
                versions += shown["Version"];
            }
            versions.sort();
            QCOMPARE(versions, QStringList({"5.10.12-1", "5.10.14-1"}));
        });
        QCOMPARE(user.quit(), QString());
    }

    void extraDataOfARepositoryPackageIsLoadedWhenAskedFor()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        const QString mustLoad = "Show (must load extra data)";
        describe(user, "almanac", [&](QWidget* dialog) {
            QCOMPARE(rows(dialog)[QString()], QString("Available for installation"));
            QCOMPARE(rows(dialog)["Files"], '[' + mustLoad + ']');
            QCOMPARE(rows(dialog)["Change Log"], '[' + mustLoad + ']');
            press(user, button(dialog, mustLoad), "almanac 2024-1 File List",
                  "/usr/share/doc/almanac/README");
            QCOMPARE(rows(dialog)["Files"], QString("[Show]"));
            QCOMPARE(rows(dialog)["Change Log"], '[' + mustLoad + ']');
            press(user, button(dialog, mustLoad), "almanac 2024-1 Change Log", "* ");
            QVERIFY(!button(dialog, mustLoad));
        });
        QCOMPARE(user.quit(), QString());
    }

    void aServerThatRefusesIsToldOfAndAskedAgain()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        const QString mustLoad = "Show (must load extra data)";
        const QString title = "almanac 2024-1 File List";
        describe(user, "almanac", [&](QWidget* dialog) {
            user.fail("*filelists*", "refuse");
            QString told;
            user.expectError(told, "OK");
            user.dialogs.expect(title)
                .act([](QWidget* shown) { QVERIFY(DialogDriver::textsIn(shown).isEmpty()); })
                .press("Close");
            QTest::mouseClick(button(dialog, mustLoad), Qt::LeftButton);
            QVERIFY(!told.isEmpty());
            QCOMPARE(rows(dialog)["Files"], '[' + mustLoad + ']');
            user.recover();
            press(user, button(dialog, mustLoad), title, "/usr/share/doc/almanac/README");
        });
        QCOMPARE(user.quit(), QString());
    }

    void aSuite()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        describe(user, "network-suite", [](QWidget* dialog) {
            QCOMPARE(rows(dialog)["Kind"], QString("Suite of packages"));
            QVERIFY(rows(dialog)["Requires"].contains("fetcher"));
        });
        QCOMPARE(user.quit(), QString());
    }

    void aGroup()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        user.check("groups", true);
        describe(user, "Games", [](QWidget* dialog) {
            QMap<QString, QString> shown = rows(dialog);
            QCOMPARE(shown.take(QString()), QString("Installed"));
            QCOMPARE(shown, (QMap<QString, QString>{{"Kind", "Group of packages"},
                                                    {"Mandatory Packages", "chess\nsolitaire"},
                                                    {"Default Packages", "maze"}}));
        });
        QCOMPARE(user.quit(), QString());
    }

    void theKeyboardOpensAndClosesThem()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        user.table()->setFocus();
        user.table()->setCurrentIndex(user.cell("chess", PackageTable::ColumnName));
        const auto expect = [&] {
            user.dialogs.expect("VOK Package Description")
                .text("chess")
                .act([&](QWidget* dialog) {
                    QVERIFY(QTest::qWaitForWindowActive(dialog));
                    // Escape closes what lies on top, and nothing behind it.
                    user.dialogs.expect("chess 6.2-1 File List").pressKey(Qt::Key_Escape);
                    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
                    QTest::keyClick(dialog->focusWidget(), Qt::Key_Space);
                    QVERIFY(dialog->isVisible());
                    // Nothing can be refreshed or applied behind it.
                    QCOMPARE(QApplication::activeModalWidget(), dialog);
                })
                .pressKey(Qt::Key_Escape);
        };
        expect();
        QTest::keyClick(user.table(), Qt::Key_D, Qt::AltModifier);
        QVERIFY(user.dialogs.waitUntilDone());
        expect();
        user.find<QPushButton>("describe")->setFocus();
        QTest::keyClick(user.find<QPushButton>("describe"), Qt::Key_Space);
        QVERIFY(user.dialogs.waitUntilDone());
        expect();
        user.chooseFromMenu(user.cell("chess", PackageTable::ColumnName), "Describe");
        QVERIFY(user.dialogs.waitUntilDone());
        QVERIFY(!QApplication::activeModalWidget());
        QCOMPARE(user.quit(), QString());
    }

    void afterARefreshAllIsAskedForAnew()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        const QString mustLoad = "Show (must load extra data)";
        for (int round = 0; round < 2; ++round) {
            describe(user, "almanac", [&](QWidget* dialog) {
                press(user, button(dialog, mustLoad), "almanac 2024-1 File List",
                      "/usr/share/doc/almanac/README");
                QCOMPARE(rows(dialog)["Files"], QString("[Show]"));
            });
            user.click("refresh");
            QTRY_VERIFY(user.ready());
            QVERIFY(!QApplication::activeModalWidget());
        }
        QCOMPARE(user.quit(), QString());
    }

    void afterAnApplyTheyTellOfTheNewState()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        describe(user, "chess",
                 [](QWidget* dialog) { QCOMPARE(rows(dialog)[QString()], QString("Installed")); });
        user.chooseFromMenu(user.cell("chess", PackageTable::ColumnAction), "Remove");
        user.dialogs.expect("Apply").textContains("Remove: chess").press("OK");
        user.click("apply");
        QVERIFY(user.dialogs.waitUntilDone(60000));
        QTRY_VERIFY_WITH_TIMEOUT(user.ready(), 60000);
        user.listedAll();
        describe(user, "chess", [](QWidget* dialog) {
            QCOMPARE(rows(dialog)[QString()], QString("Available for installation"));
            QVERIFY(rows(dialog).contains("Repository"));
        });
        QCOMPARE(user.quit(), QString());
    }

    void anUpdateOfAPackageThatIsInstalled()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        describe(user, "edwin", [&](QWidget* dialog) {
            QCOMPARE(dialog->findChildren<QScrollArea*>().size(), 2);
            QCOMPARE(rows(dialog)[QString()], QString("Available for update"));
            QVERIFY(rows(dialog).contains("Repository"));
            QCOMPARE(rows(dialog, 1)[QString()], QString("Installed"));
            QVERIFY(!rows(dialog, 1).contains("Repository"));
            QVERIFY(rows(dialog)["Version"] != rows(dialog, 1)["Version"]);
        });
        QCOMPARE(user.quit(), QString());
    }

    void repositoriesWithPasswordsInTheirUrls()
    {
        WindowSession user;
        const QString file = "etc/yum.repos.d/members.repo";
        user.replace(file, "user=&pass=&", "user=demo&pass=secret&");
        user.replace(file, "user=/pass=/", "user=demo/pass=secret/");
        user.replace(file, "enabled=0", "enabled=1");
        QVERIFY(user.start());
        user.listedAll();
        const int mark = QApplication::style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter);
        const QString marks(6, QChar(static_cast<ushort>(mark)));
        const auto look = [&](const QString& package, const QString& repository,
                              const QString& masked) {
            describe(user, package, [&](QWidget* dialog) {
                user.dialogs.expect("VOK Repository Description")
                    .text(repository)
                    .act([&](QWidget* shown) {
                        const QString urls = rows(shown)["URLs"];
                        QVERIFY2(urls.contains(masked) && !urls.contains("secret"),
                                 qPrintable(urls));
                        QVERIFY(!rows(shown)["Name"].isEmpty());
                        QVERIFY(!rows(shown).contains("Mirror list URL"));
                        QVERIFY(button(shown, "Browse Repository"));
                    })
                    .press("Close");
                QTest::mouseClick(button(dialog, "Details"), Qt::LeftButton);
            });
        };
        look("members-handbook", "members", "/vantry?user=demo&pass=" + marks + "&path=/");
        look("members-minutes", "minutes", "/rhel/user=demo/pass=" + marks + "/");
        QVERIFY(!user.log().contains("pass=secret"));
        QCOMPARE(user.quit(), QString());
    }

    void aRepositoryWithAMirrorList()
    {
        WindowSession user;
        QVERIFY(user.start());
        user.listedAll();
        describe(user, "almanac", [&](QWidget* dialog) {
            user.dialogs.expect("VOK Repository Description")
                .text("mirrored")
                .act([&](QWidget* shown) {
                    QVERIFY(rows(shown)["Mirror list URL"].endsWith("/mirrorlist/mirrored"));
                    QVERIFY(!rows(shown).contains("URLs"));
                })
                .press("Close");
            QTest::mouseClick(button(dialog, "Details"), Qt::LeftButton);
        });
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestDescribe tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Describe.moc"
