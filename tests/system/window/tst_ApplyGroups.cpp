// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"

#include <QAbstractButton>

/// A marked group becomes marks on its packages, and the user settles what contradicts.
class TestApplyGroups : public QObject
{
    Q_OBJECT

private:
    /// Expects the question about a package of a group, with these buttons beside "Cancel".
    static void expectConflict(ApplySession& user, const QString& question,
                               const QStringList& buttons, const QString& answer)
    {
        user.dialogs.expect("Apply")
            .textContains(question)
            .act([buttons](QWidget* dialog) {
                QStringList texts;
                for (const auto* button : dialog->findChildren<QAbstractButton*>()) {
                    if (button->isVisible())
                        texts << button->text().remove('&');
                }
                texts.sort();
                COMPARE_LINES(texts, buttons);
            })
            .press(answer);
    }

    static QString edwinQuestion(const QString& group, const QString& groupAction,
                                 const QString& action)
    {
        return QString("Package edwin is included in group %1 which was marked for %2,\nso the "
                       "package would be marked for Update,\nbut it was marked individually for "
                       "%3.\nHow do you wish to proceed?")
            .arg(group, groupAction, action);
    }

private Q_SLOTS:
    void aGroupIsInstalled()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Desktop", "Install"));
        COMPARE_LINES(user.marks(), QStringList{"Install Desktop"});
        QVERIFY(user.applyAndAnswer());
        // What is optional in the group stays away.
        COMPARE_LINES(
            user.reviewed(),
            (QStringList{"Transaction to be performed:", "Install: browser 115.4-1 (x86_64) [base]",
                         "Install: desktop-icons 42-1 (noarch) [base]",
                         "Install: desktop-shell 42.1-1 (x86_64) [base]",
                         "Install: wallpapers 9-1 (noarch) [base]"}));
        COMPARE_LINES(user.changes(),
                      (QStringList{"+browser-115.4-1.x86_64", "+desktop-icons-42-1.noarch",
                                   "+desktop-shell-42.1-1.x86_64", "+wallpapers-9-1.noarch"}));
        COMPARE_LINES(user.marks(), QStringList());
        QCOMPARE(user.entry("Desktop")->state, Package::StateInstalled);
        QVERIFY(
            user.wholeLog().contains("For group Desktop, marking package wallpapers for Install"));
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void aGroupIsUpdated()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Editors", "Update"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(
            user.reviewed(),
            (QStringList{"Transaction to be performed:", "Install: wordsmith 4.2-1 (x86_64) [base]",
                         "Update: edwin 9.0-1 (x86_64) [updates]"}));
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "+wordsmith-4.2-1.x86_64",
                                                   "-edwin-8.1-1.x86_64"}));
        QCOMPARE(user.entry("Editors")->state, Package::StateInstalled);
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void aGroupIsRemoved()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Games", "Remove"));
        QVERIFY(user.mark("chess", "Remove"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"-chess-6.2-1.x86_64", "-maze-0.9-1.noarch",
                                                   "-solitaire-3.3-1.noarch"}));
        QCOMPARE(user.entry("Games")->state, Package::StateInstallable);
        QVERIFY(user.wholeLog().contains("For group Games, marking package chess for Remove"));
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void theAnswerOfTheGroupWins()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Editors", "Update"));
        QVERIFY(user.mark("edwin", "Remove"));
        expectConflict(user, edwinQuestion("Editors", "Update", "Remove"),
                       {"Cancel", "Remove", "Update"}, "Update");
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "+wordsmith-4.2-1.x86_64",
                                                   "-edwin-8.1-1.x86_64"}));
        QVERIFY(user.wholeLog().contains(
            "Manually resolving conflict: marking package edwin for Update"));
        QCOMPARE(user.quit(), QString());
    }

    void theAnswerOfThePackageWins()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Editors", "Update"));
        QVERIFY(user.mark("edwin", "Remove"));
        expectConflict(user, edwinQuestion("Editors", "Update", "Remove"),
                       {"Cancel", "Remove", "Update"}, "Remove");
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(
            user.reviewed(),
            (QStringList{"Transaction to be performed:", "Install: wordsmith 4.2-1 (x86_64) [base]",
                         "Remove: edwin 8.1-1 (x86_64)"}));
        COMPARE_LINES(user.changes(),
                      (QStringList{"+wordsmith-4.2-1.x86_64", "-edwin-8.1-1.x86_64"}));
        QVERIFY(user.wholeLog().contains(
            "Manually resolving conflict: marking package edwin for Remove"));
        QCOMPARE(user.quit(), QString());
    }

    void cancelAtTheQuestionEndsTheApply()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Editors", "Update"));
        QVERIFY(user.mark("edwin", "Remove"));
        const QStringList marks = user.marks();
        expectConflict(user, edwinQuestion("Editors", "Update", "Remove"),
                       {"Cancel", "Remove", "Update"}, "Cancel");
        QVERIFY(user.apply());
        user.dialogs.expect("Apply").textContains("How do you wish").pressKey(Qt::Key_Escape);
        QVERIFY(user.apply());
        // Enter is a Cancel as well.
        user.dialogs.expect("Apply").textContains("How do you wish").pressKey(Qt::Key_Return);
        QVERIFY(user.apply());
        COMPARE_LINES(user.changes(), QStringList());
        COMPARE_LINES(user.marks(), marks);
        QCOMPARE(user.unsettled(), QString());
        // Without the contradiction it goes well.
        QVERIFY(user.mark("edwin", "No Action"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "+wordsmith-4.2-1.x86_64",
                                                   "-edwin-8.1-1.x86_64"}));
        QCOMPARE(user.quit(), QString());
    }

    void aGroupToRemoveMeetsAnUpdate()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Editors", "Remove"));
        QVERIFY(user.mark("edwin", "Update"));
        expectConflict(user, edwinQuestion("Editors", "Remove", "Update"),
                       {"Cancel", "Update", "Update"}, "Update");
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "-edwin-8.1-1.x86_64",
                                                   "-pager-590-1.x86_64"}));
        QCOMPARE(user.quit(), QString());
    }

    void twoGroupsOfOnePackage()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("First Pair", "Install"));
        QVERIFY(user.mark("Second Pair", "Update"));
        QVERIFY(user.mark("edwin", "Remove"));
        // Either group may come first. One member of "First Pair" is in no repository: nobody
        // misses it.
        expectConflict(user, "but it was marked individually for Remove.\nHow do you",
                       {"Cancel", "Remove", "Update"}, "Remove");
        expectConflict(user,
                       "but you resolved an earlier conflict by marking it for Remove.\n"
                       "How do you wish to proceed?",
                       {"Cancel", "Remove", "Update"}, "Update");
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "-edwin-8.1-1.x86_64"}));
        const QString log = user.wholeLog();
        QVERIFY(log.indexOf("marking package edwin for Remove") <
                log.indexOf("marking package edwin for Update"));
        QVERIFY2(!log.contains("no-such-package"), qPrintable(log));
        QCOMPARE(user.quit(), QString());
    }

    void aGroupAndItsMarkedPackagesAgree()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("Editors", "Update"));
        QVERIFY(user.mark("edwin", "Update"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), (QStringList{"+edwin-9.0-1.x86_64", "+wordsmith-4.2-1.x86_64",
                                                   "-edwin-8.1-1.x86_64"}));
        QVERIFY(user.wholeLog().contains(
            "For group Editors, package edwin already was marked for Update"));
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    return runApplyTests<TestApplyGroups>(argc, argv);
}
#include "tst_ApplyGroups.moc"
