// SPDX-License-Identifier: GPL-2.0-or-later
#include "Hand.h"
#include "RecordedScripts.h"
#include "RoadUser.h"

#include "kit/Application.h"
#include "shell/CommandLine.h"
#include "support/MenuDriver.h"
#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

namespace
{

const char mainFile[] = "[main]\n"
                        "cachedir=/var/cache/yum\n"
                        "# what somebody thought\n"
                        "plugins=0\n";

/// The only repository at first.
QByteArray only(const QByteArray& url)
{
    return "[base]\n"
           "name=Demonstration 9 - $basearch\n"
           "baseurl=" +
           url +
           "/repos/base\n"
           "enabled=1\n"
           "gpgcheck=0\n"
           "# and of this\n"
           "metadata_expire=1h\n";
}

/// A person's system with one repository, and another one to be added, which is served below a name
/// that has the architecture in it.
class Newcomer : public RoadUser
{
public:
    Newcomer()
    {
        useRepositories(only(url()));
        write("etc/yum.conf", mainFile);
        QVERIFY(QFile::link(repository("testing"), workshop()));
    }
    ~Newcomer() override { QFile::remove(workshop()); }

    /// As with these words on the command line.
    void command(const char* option)
    {
        char* words[] = {program, const_cast<char*>(option), nullptr};
        CommandLine::apply(window(), 2, words);
    }

    /// The first URL that is typed, and what the browser gets.
    QString typed() const { return url() + "/repos/workshop-$basearch"; }
    QString expanded() const
    {
        return typed().replace("$basearch", QSysInfo::currentCpuArchitecture());
    }

    /// Adds the repository in the editor's dialog, by keys where there are any.
    void add(const RepoEditorDriver& editor)
    {
        expectEntry([this](QWidget* dialog) {
            QVERIFY(qobject_cast<QLineEdit*>(dialog->focusWidget()));
            Hand::type("workshop");
            Hand::press({"Tab"});
            Hand::type("The Workshop");
            Hand::press({"Tab"});
            Hand::type(typed());
            Hand::press({"Return"});
            Hand::type(url() + "/repos/testing");
            // Over the URL of a mirror list and whether it is enabled to the check of keys.
            Hand::press({"Tab", "Tab", "Tab", "Home", "Tab"});
            Hand::type("# new here");
            Hand::press({"Return"});
            QTRY_COMPARE(dialog->findChildren<QComboBox*>().at(1)->currentText(), QString("No"));
            QTRY_VERIFY(DialogDriver::textsIn(dialog).contains("# new here\n"));
        });
        QVERIFY(meets([&] { Hand::click(editor.button("Add")); }));
        QTRY_COMPARE(editor.listed(), QStringList({"base", "workshop"}));
        QTRY_COMPARE(editor.selected(), QStringList{"workshop"});
        QVERIFY(DialogDriver::textsIn(editor.dialog).contains("Unapplied Configuration Changes"));
    }

    /// The editor of repositories, opened by its keys.
    bool edit(std::function<void(const RepoEditorDriver&)> work, const QString& leaveBy = "OK")
    {
        expectEditor(std::move(work), leaveBy);
        Hand::press({"ctrl+e"});
        return over();
    }

    bool toggleUse()
    {
        return edit([](const RepoEditorDriver& editor) {
            const QModelIndex use = editor.cell("workshop", RepoEditor::ColumnUse);
            const QString before = use.data(Qt::ToolTipRole).toString();
            Hand::click(editor.view->viewport(), editor.at("workshop", RepoEditor::ColumnUse));
            QTRY_VERIFY(use.data(Qt::ToolTipRole).toString() != before);
            QVERIFY(!editor.isEnabled("Apply"));
        });
    }

private:
    static QString workshop()
    {
        return repository("workshop-" + QSysInfo::currentCpuArchitecture());
    }
};

QPushButton* button(const QWidget* dialog, const QString& text)
{
    for (QPushButton* candidate : dialog->findChildren<QPushButton*>()) {
        if (candidate->text() == text)
            return candidate;
    }
    return nullptr;
}

} // namespace

/// The whole way of a repository, from its first character to its removal, with the display's own
/// mouse and keyboard.
class TestRepositoryRoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRepositoryIsAddedUsedAndRemoved()
    {
        RecordedScripts browser;
        Newcomer user;
        const QMap<QString, QByteArray> before = user.files();
        user.command("--repo-editor");
        user.expectEditor([&](const RepoEditorDriver& editor) {
            QCOMPARE(editor.listed(), QStringList{"base"});
            QVERIFY(user.find<QWidget>("mainArea")->isHidden());
            user.add(editor);
            QCOMPARE(user.files(), before);
        });
        QVERIFY(user.start());
        QVERIFY(user.over());

        QMap<QString, QByteArray> files = user.files();
        const QByteArray written = files.take("workshop.repo");
        QCOMPARE(written.mid(written.indexOf('\n') + 1), "[workshop]\n"
                                                         "name=The Workshop\n"
                                                         "baseurl=" +
                                                             user.typed().toLatin1() +
                                                             "\n        " + user.url() +
                                                             "/repos/testing\n"
                                                             "gpgcheck=0\n"
                                                             "# new here\n");
        QCOMPARE(files, before);
        const QMap<QString, QByteArray> with = user.files();

        Hand::click(user.find<QComboBox>("state"));
        Hand::press({"End", "Return"});
        QTRY_VERIFY(user.listed().contains("prototype"));
        QCOMPARE(user.entry("prototype")->state, Package::StateInstallable);
        QVERIFY(user.repositories().contains("workshop"));

        // Out of use for this run, which no file knows.
        QVERIFY(user.toggleUse());
        QVERIFY(!user.listed().contains("prototype"));
        QVERIFY(user.listed().contains("wordsmith"));
        const QSignalSpy collected(user.model(), &QAbstractItemModel::modelReset);
        Hand::click(user.find<QPushButton>("refresh"));
        QTRY_VERIFY(collected.size() == 1 && user.ready());
        QVERIFY(!user.listed().contains("prototype"));
        QVERIFY(!user.repositories().contains("workshop"));
        QCOMPARE(user.files(), with);
        QVERIFY(user.toggleUse());
        QVERIFY(user.listed().contains("prototype"));
        QCOMPARE(user.files(), with);

        // What it is, and where it comes from.
        user.clickCell("prototype", PackageTable::ColumnName);
        QTRY_VERIFY(user.find<QPushButton>("describe")->isEnabled());
        user.dialogs.expect("VOK Package Description")
            .text("prototype")
            .act([&](QWidget* dialog) {
                QVERIFY(RoadUser::isActive(dialog));
                QVERIFY(DialogDriver::textsIn(dialog).contains("workshop"));
                user.dialogs.expect("VOK Repository Description")
                    .text("The Workshop")
                    .act([&](QWidget* shown) {
                        QVERIFY(RoadUser::isActive(shown));
                        QVERIFY(DialogDriver::textsIn(shown).contains(
                            user.typed() + '\n' + user.url() + "/repos/testing"));
                        Hand::click(button(shown, "Browse Repository"));
                        QCOMPARE(browser.call(), QStringList{user.expanded()});
                        Hand::press({"Escape"});
                    })
                    .leave();
                QVERIFY(user.meets([&] { Hand::click(button(dialog, "Details")); }));
                QTRY_VERIFY(dialog->isActiveWindow());
                Hand::press({"Escape"});
            })
            .leave();
        Hand::click(user.find<QPushButton>("describe"));
        QVERIFY(user.over());
        {
            const MenuDriver menu("Browse Repository");
            user.clickCell("prototype", PackageTable::ColumnRepository, Qt::RightButton);
            QCOMPARE(browser.call(), QStringList{user.expanded()});
            QCOMPARE(menu.items, QStringList({"&Describe", "Browse Repository"}));
        }

        // And away with it, by way of the menu.
        user.expectEditor([&](const RepoEditorDriver& editor) {
            Hand::click(editor.view->viewport(), editor.at("workshop", RepoEditor::ColumnId));
            QTRY_VERIFY(editor.isEnabled("Browse Repository"));
            Hand::click(editor.button("Browse Repository"));
            QCOMPARE(browser.call(), QStringList{user.expanded()});
            Hand::click(editor.button("Remove"));
            QTRY_COMPARE(editor.listed(), QStringList{"base"});
            QCOMPARE(user.files(), with);
            Hand::click(editor.button("Apply"));
            QTRY_VERIFY(!editor.isEnabled("Apply"));
            QCOMPARE(user.files(), before);
        });
        Hand::press({"alt+r", "Return"});
        QVERIFY(user.over());
        QVERIFY(!user.listed().contains("prototype"));
        QVERIFY(user.listed().contains("wordsmith"));
        QCOMPARE(user.files(), before);
        QVERIFY(!browser.calledOnceMore());
        QCOMPARE(user.quit(), QString());
    }

    void theKeysOfTheEditorWorkInThePattern()
    {
        Newcomer user;
        QVERIFY(user.start());
        auto* pattern = user.find<QLineEdit>("regexp");
        Hand::click(pattern);
        QTRY_VERIFY(pattern->hasFocus());
        QVERIFY(user.edit([](const RepoEditorDriver&) {}, "Cancel"));
        QTRY_VERIFY(pattern->hasFocus());
        // Those of a text field are left to it.
        Hand::press({"ctrl+a", "ctrl+x"});
        Hand::type("^chess$");
        Hand::press({"Return"});
        QTRY_COMPARE(pattern->text(), QString("^chess$"));
        QCOMPARE(user.quit(), QString());
    }

    void aCancelledEditorLeavesFilesAndTableAlone()
    {
        Newcomer user;
        const QMap<QString, QByteArray> before = user.files();
        QVERIFY(user.start());
        user.listedAll();
        const QStringList listed = user.listed();
        const QSignalSpy collected(user.model(), &QAbstractItemModel::modelReset);
        QVERIFY(user.edit([&](const RepoEditorDriver& editor) { user.add(editor); }, "Cancel"));
        QCOMPARE(user.files(), before);
        QCOMPARE(collected.size(), 0);
        QVERIFY(user.edit([](const RepoEditorDriver& editor) {
            QCOMPARE(editor.listed(), QStringList{"base"});
        }));
        QCOMPARE(user.listed(), listed);
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestRepositoryRoad tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_RepositoryRoad.moc"
