// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"

#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

Q_DECLARE_METATYPE(Package::Action)

namespace
{

const QString yumError = QStringLiteral("VOK Yum Error");
const QString title = QStringLiteral("Apply");

/// The question by what marked the package.
QString question(const QString& package, const QString& group, const QString& groupLabel,
                 const QString& implied, const QString& present)
{
    return QString("Package %1 is included in group %2 which was marked for %3,\n"
                   "so the package would be marked for %4,\n"
                   "but it was marked individually for %5.\n"
                   "How do you wish to proceed?")
        .arg(package, group, groupLabel, implied, present);
}

QString laterQuestion(const QString& package, const QString& group, const QString& groupLabel,
                      const QString& implied, const QString& present)
{
    return QString("Package %1 is included in group %2 which was marked for %3,\n"
                   "so the package would be marked for %4,\n"
                   "but you resolved an earlier conflict by marking it for %5.\n"
                   "How do you wish to proceed?")
        .arg(package, group, groupLabel, implied, present);
}

QString resolved(const QString& package, const QString& label)
{
    return QString("Manually resolving conflict: marking package %1 for %2").arg(package, label);
}

QStringList buttonsOf(QWidget* window)
{
    QStringList labels;
    const auto buttons = qobject_cast<QMessageBox*>(window)->buttons();
    for (const QAbstractButton* button : buttons)
        labels.append(button->text().remove('&'));
    return labels;
}

} // namespace

/// Marks of groups and packages that disagree.
class TestApplyConflict : public ContractTest
{
    Q_OBJECT

    /// Packages old (updatable), good (installed) and new (available), each in groups a and b.
    void collect(const QString& version = "4.14.0")
    {
        const QJsonObject members{{"mandatory", QJsonArray{"old", "good", "new"}}};
        contract->play(
            {{"version", version},
             {"updates", QJsonArray{Contract::package("old", {{"ver", "2-1"}})}},
             {"installed",
              QJsonArray{Contract::package("old", {{"ver", "1-1"}}), Contract::package("good")}},
             {"available", QJsonArray{Contract::package("new")}},
             {"groups", QJsonArray{Contract::group("a", members), Contract::group("b", members)}}});
        QVERIFY(contract->collect());
        contract->sortRows();
        contract->forgetCalls();
    }

    QStringList decisions() { return contract->logTexts().filter("Manually"); }

private Q_SLOTS:
    void theButtonsNameWhatTheStateImpliesAndTheMark_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<Package::Action>("group");
        QTest::addColumn<QString>("groupLabel");
        QTest::addColumn<QString>("package");
        QTest::addColumn<Package::Action>("mark");
        QTest::addColumn<QString>("implied");
        QTest::addColumn<QString>("present");
        const auto add = [](const char* what, Package::Action group, const char* groupLabel,
                            const char* package, Package::Action mark, const char* implied,
                            const char* present) {
            for (const char* version : {"2.4.3", "4.14.0"})
                QTest::newRow(qPrintable(QString("%1 %2").arg(version, what)))
                    << version << group << groupLabel << package << mark << implied << present;
        };
        add("update, old", Package::ActionUpdate, "Update", "old", Package::ActionRemove, "Update",
            "Remove");
        add("update, new", Package::ActionUpdate, "Update", "new", Package::ActionRemove, "Install",
            "Remove");
        add("update, good", Package::ActionUpdate, "Update", "good", Package::ActionRemove,
            "Remove", "Remove");
        add("install, old", Package::ActionInstall, "Install", "old", Package::ActionRemove,
            "Update", "Remove");
        // A removal speaks of what the state suggests too, not of a removal.
        add("remove, old", Package::ActionRemove, "Remove", "old", Package::ActionUpdate, "Update",
            "Update");
        add("remove, new", Package::ActionRemove, "Remove", "new", Package::ActionInstall,
            "Install", "Install");
        add("remove, good", Package::ActionRemove, "Remove", "good", Package::ActionInstall,
            "Remove", "Install");
        add("unknown mark", Package::ActionUpdate, "Update", "old", static_cast<Package::Action>(7),
            "Update", "ERROR");
    }

    void theButtonsNameWhatTheStateImpliesAndTheMark()
    {
        QFETCH(QString, version);
        QFETCH(Package::Action, group);
        QFETCH(QString, groupLabel);
        QFETCH(QString, package);
        QFETCH(Package::Action, mark);
        QFETCH(QString, implied);
        QFETCH(QString, present);
        collect(version);
        contract->mark({{"a", group}, {package, mark}});
        QStringList buttons;
        driver->expect(title)
            .text(question(package, "a", groupLabel, implied, present))
            .act([&](QWidget* window) { buttons = buttonsOf(window); })
            .press("Cancel");
        QVERIFY(!contract->apply());
        QCOMPARE(buttons, QStringList({implied, present, "Cancel"}));
    }

    void cancelEndsTheApply_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("key");
        QTest::newRow("button") << "Cancel" << 0;
        QTest::newRow("Enter") << "" << static_cast<int>(Qt::Key_Return);
        QTest::newRow("Escape") << "" << static_cast<int>(Qt::Key_Escape);
        QTest::newRow("closed") << "" << 0;
    }

    void cancelEndsTheApply()
    {
        QFETCH(QString, button);
        QFETCH(int, key);
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        auto& dialog = driver->expect(title);
        if (!button.isEmpty())
            dialog.press(button);
        else if (key)
            dialog.pressKey(static_cast<Qt::Key>(key));
        else
            dialog.act([](QWidget* window) { window->hide(); }).leave();
        QVERIFY(!contract->apply());
        QCOMPARE(contract->calls().filter(QRegularExpression("apply|flush|collect")),
                 QStringList());
        QCOMPARE(decisions(), QStringList());
        QCOMPARE(contract->row("old")->action, Package::ActionRemove);
        QCOMPARE(contract->row("a")->action, Package::ActionUpdate);
        QCOMPARE(contract->engine().progress, nullptr);
    }

    void theImpliedActionReplacesTheMark()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        driver->expect(title).press("Update");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[['old', 'old']],[]"));
        QCOMPARE(decisions(), QStringList({resolved("old", "Update")}));
        QVERIFY(contract->logged(Log::Plain, 4, resolved("old", "Update")));
        QCOMPARE(contract->row("old")->action, Package::ActionRemove);
        QCOMPARE(contract->row("old")->markedBy, nullptr);
    }

    void thePresentActionStays()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        driver->expect(title).press("Remove");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[],['old']"));
        QCOMPARE(decisions(), QStringList({resolved("old", "Remove")}));
        QCOMPARE(contract->row("old")->markedBy, nullptr);
        QCOMPARE(contract->row("new")->markedBy, contract->row("new"));
    }

    void aSecondGroupSpeaksOfTheEarlierConflict()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate},
                        {"b", Package::ActionInstall},
                        {"old", Package::ActionRemove}});
        driver->expect(title)
            .text(question("old", "a", "Update", "Update", "Remove"))
            .press("Remove");
        driver->expect(title)
            .text(laterQuestion("old", "b", "Install", "Update", "Remove"))
            .press("Update");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[['old', 'old']],[]"));
        QCOMPARE(decisions(), QStringList({resolved("old", "Remove"), resolved("old", "Update")}));
    }

    void aPackageThatAGroupMarkedCountsAsMarkedIndividually()
    {
        collect();
        contract->mark({{"a", Package::ActionInstall}, {"b", Package::ActionRemove}});
        driver->expect(title)
            .text(question("old", "b", "Remove", "Update", "Update"))
            .press("Update");
        driver->expect(title)
            .text(question("new", "b", "Remove", "Install", "Install"))
            .press("Cancel");
        QVERIFY(!contract->apply());
        QVERIFY(contract->applied().isNull());
        // What was marked so far stays until the next Apply.
        QCOMPARE(contract->row("good")->applyAction, Package::ActionRemove);
    }

    void theQuestionNamesAnotherGroupThatMarkedThePackage()
    {
        collect();
        OpenEngine::PyGILStateWrapper lock(true);
        Package::Entry* package = contract->row("old");
        Package::Entry* group = contract->row("b");
        package->applyAction = Package::ActionRemove;
        package->markedBy = contract->row("a");
        group->applyAction = Package::ActionUpdate;
        driver->expect(title)
            .text("Package old is included in group b which was marked for Update,\n"
                  "so the package would be marked for Update,\n"
                  "but it also was part of group a and so was marked for Remove.\n"
                  "How do you wish to proceed?")
            .press("Cancel");
        QVERIFY(!contract->engine().applyGroups());
        QCOMPARE(package->markedBy, contract->row("a"));
    }

    void anUnknownStateIsReported()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        contract->row("old")->state = static_cast<Package::State>(9);
        driver->expect(yumError)
            .text("Internal error: applyGrpConflict unexpected package state\n")
            .press("OK");
        QVERIFY(!contract->apply());
        QVERIFY(contract->applied().isNull());
    }

    void theNextApplyStartsFromTheMarksAgain()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        for (int i = 0; i < 2; ++i) {
            driver->expect(title)
                .text(question("old", "a", "Update", "Update", "Remove"))
                .press("Update");
            QVERIFY(!contract->apply());
        }
        QCOMPARE(contract->callCount("apply"), 2);
    }

    void workAskedForDuringTheQuestionIsRefused()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        driver->expect(title)
            .act([&](QWidget*) {
                QVERIFY(!contract->apply());
                QVERIFY(!contract->engine().collectFileLists());
                contract->engine().clear();
            })
            .press("Remove");
        QVERIFY(!contract->apply());
        QCOMPARE(contract->applied(), QString("['new'],[],['old']"));
        QCOMPARE(contract->logTexts().filter("Applying").size(), 1);
        QCOMPARE(contract->engine().count(), 5);
    }

    void theInterpreterIsFreeWhileTheQuestionIsOpen()
    {
        collect();
        contract->mark({{"a", Package::ActionUpdate}, {"old", Package::ActionRemove}});
        QString description;
        driver->expect(title)
            .act([&](QWidget*) { description = contract->eval("'the lock is free'"); })
            .press("Cancel");
        QVERIFY(!contract->apply());
        QCOMPARE(description, QString("the lock is free"));
    }
};

QTEST_MAIN(TestApplyConflict)
#include "tst_ApplyConflict.moc"
