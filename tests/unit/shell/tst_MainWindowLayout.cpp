// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "kit/HFrameLabel.h"
#include "kit/HMenu.h"
#include "progress/HProgressBar.h"

#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

#include <sys/utsname.h>

/// What the constructor builds; no window is shown and no script started.
class TestMainWindowLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTitleNamesTheMachine()
    {
        WindowLife life;
        utsname names{};
        QCOMPARE(uname(&names), 0);
        QCOMPARE(life.window().windowTitle(),
                 QStringLiteral("VOK - ") + QString::fromLocal8Bit(names.nodename));
    }

    void theHintIsAtLeast768Wide()
    {
        WindowLife life;
        QVERIFY(life.window().sizeHint().width() >= 768);
        life.window().menuBar()->clear();
        life.window().setCentralWidget(nullptr);
        QCOMPARE(life.window().sizeHint().width(), 768);
    }

    void theHintGrowsWithTheContents()
    {
        WindowLife life;
        auto* wide = new QWidget;
        wide->setMinimumSize(1500, 20);
        life.window().setCentralWidget(wide);
        QVERIFY(life.window().sizeHint().width() >= 1500);
    }

    void theMenusHoldTheirCommandsInOrder()
    {
        WindowLife life;
        QStringList found;
        const auto menus = life.window().menuBar()->actions();
        for (QAction* title : menus) {
            QVERIFY(qobject_cast<HMenu*>(title->menu()));
            found << title->text();
            const auto items = title->menu()->actions();
            for (QAction* item : items)
                found << QStringLiteral("  ") +
                             (item->isSeparator() ? QStringLiteral("-") : item->text()) +
                             (item->shortcut().isEmpty()
                                  ? QString()
                                  : QLatin1Char(' ') + item->shortcut().toString());
        }
        const QStringList wanted{"&Program",
                                 "  &Quit Ctrl+Q",
                                 "&Windows",
                                 "  &Log Ctrl+L",
                                 "&Repositories",
                                 "  &Edit Configuration Ctrl+E",
                                 "&Cache",
                                 "  Clean Headers",
                                 "  Clean Packages",
                                 "  Clean XML Metadata",
                                 "  Clean Pickled Data",
                                 "  Clean Sqlite Data",
                                 "  -",
                                 "  Clean All",
                                 "&Help",
                                 "  Manual (html) F1",
                                 "  Manual (PDF)",
                                 "  -",
                                 "  &About"};
        QCOMPARE(found, wanted);
    }

    void theComboBoxesHoldTheirNumbers()
    {
        WindowLife life;
        const auto contents = [&](const char* name) {
            QStringList found;
            const auto* box = life.find<QComboBox>(name);
            for (int i = 0; i < box->count(); ++i)
                found
                    << QStringLiteral("%1 %2").arg(box->itemData(i).toInt()).arg(box->itemText(i));
            return found;
        };
        QCOMPARE(contents("mode"), (QStringList{"0 Filter", "1 Search"}));
        QCOMPARE(contents("state"), (QStringList{"0 View Updatable", "1 View Installable",
                                                 "2 View Removable", "3 View All"}));
    }

    void theControlsHaveTheirStartValuesAndTips()
    {
        WindowLife life;
        QCOMPARE(life.find<QLineEdit>("regexp")->text(), QStringLiteral(".*"));
        QCOMPARE(life.find<QLineEdit>("regexp")->toolTip(),
                 QStringLiteral(
                     "Regular expression filter matching textual fields visible in the table"));
        QCOMPARE(life.find<QPushButton>("filter")->text(), QStringLiteral("Filter"));
        QCOMPARE(life.find<QPushButton>("filter")->toolTip(),
                 QStringLiteral("Apply the filter specified to the left"));
        QVERIFY(life.find<QPushButton>("filter")->isDefault());
        QCOMPARE(life.find<QComboBox>("state")->toolTip(),
                 QStringLiteral("Filter for those packages which are eligible for updating,\n"
                                "for installing, or for removing; or show all packages"));
        QCOMPARE(life.find<QCheckBox>("duplicates")->text(), QStringLiteral("Include Duplicates"));
        QVERIFY(life.find<QCheckBox>("duplicates")->isChecked());
        QCOMPARE(
            life.find<QCheckBox>("duplicates")->toolTip(),
            QStringLiteral("Whether or not filter should include packages with duplicate names.\n"
                           "If unchecked, the package with the architecture closest to the base "
                           "architecture is shown."));
        QCOMPARE(life.find<QCheckBox>("groups")->text(), QStringLiteral("Include Groups"));
        QVERIFY(!life.find<QCheckBox>("groups")->isChecked());
        QCOMPARE(life.find<QCheckBox>("groups")->toolTip(),
                 QStringLiteral("Whether or not filter should include package groups"));
        QCOMPARE(
            life.find<QComboBox>("mode")->toolTip(),
            QStringLiteral(
                "Specify the method for using a regular expression to select packages in the "
                "table:\n\tFilter uses the textual fields visible in the table, as if they were "
                "separated by spaces.\n\tSearch uses all fields in packages, including list of "
                "Files, Change Log, Requires, etc.,\n\tindependently.  It is considerably slower."
                " (Must load extra data.)"));
    }

    void theButtonsHaveTheirTextsIconsAndTips_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("icon");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QString>("tip");
        QTest::newRow("describe")
            << "&Describe" << false << false
            << "Pop up a window with a detailed description of the currently selected package";
        QTest::newRow("resize") << "Re&size" << false << true
                                << "Resize the columns and window to optimal values";
        QTest::newRow("refresh")
            << "Re&fresh" << false << true
            << "Refresh the list of installed packages and packages available for update.\nUse "
               "this "
               "to check for new updates in repositories, or if any packages were installed "
               "manually.";
        QTest::newRow("setSelected")
            << "Set &Install/Update of Selected" << false << true
            << "Sets the Action for all selected packages which are Not Installed to Install, "
               "and\nsets the Action for all selected packages which are Installed but Out-of-date "
               "to Update.\nDoes not Apply Actions automatically.";
        QTest::newRow("setUpdateListed")
            << "Set &Update of Listed" << true << true
            << "Sets the Action to Update for any packages which are Installed but "
               "Out-of-date,\nand which are currently listed based on the the Mode, Filter, "
               "Search, "
               "State, Duplicates, and Groups settings.\nDoes not Apply Actions automatically.";
        QTest::newRow("clearActions")
            << "&Clear Actions" << false << true
            << "Clears all specified Actions (Updates, Installs, and Removals)";
        QTest::newRow("apply") << "&Apply Actions" << true << false
                               << "Applies the specified Actions (Updates, Installs, and Removals)";
    }

    void theButtonsHaveTheirTextsIconsAndTips()
    {
        QFETCH(QString, text);
        QFETCH(bool, icon);
        QFETCH(bool, enabled);
        QFETCH(QString, tip);
        WindowLife life;
        const auto* button = life.find<QPushButton>(QTest::currentDataTag());
        QVERIFY(button);
        QCOMPARE(button->text(), text);
        QCOMPARE(!button->icon().isNull(), icon);
        QCOMPARE(button->isEnabledTo(life.find<QWidget>("mainArea")), enabled);
        QCOMPARE(button->toolTip(), tip);
    }

    void theWindowIsBuiltNotReady()
    {
        WindowLife life;
        QVERIFY(life.find<QWidget>("mainArea")->isHidden());
        QVERIFY(!life.find<QWidget>("mainArea")->isEnabled());
        QVERIFY(!life.find<QWidget>("itemBar")->isHidden());
        QVERIFY(!life.find<QWidget>("totalBar")->isHidden());
        for (const char* text : {"Quit", "Edit Configuration", "Clean Headers", "Clean Packages",
                                 "Clean XML Metadata", "Clean Pickled Data", "Clean Sqlite Data",
                                 "Clean All", "Program", "Repositories", "Cache"})
            QVERIFY2(!life.action(QString::fromLatin1(text))->isEnabled(), text);
        for (const char* text :
             {"Log", "Manual (html)", "Manual (PDF)", "About", "Windows", "Help"})
            QVERIFY2(life.action(QString::fromLatin1(text))->isEnabled(), text);
        QCOMPARE(WindowLife::takeBusyCursors(), 1);
    }

    void theItemBarStandsAboveTheTotalBar()
    {
        WindowLife life;
        life.window().ensurePolished();
        life.window().centralWidget()->layout()->activate();
        QVERIFY(life.find<HProgressBar>("itemBar")->y() < life.find<HProgressBar>("totalBar")->y());
    }

    void aBoxSetToItsPresentValueDoesNotSignal()
    {
        WindowLife life;
        life.window();
        // Every change of a filter setting resets the model.
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        life.window().setDups(true);
        life.window().setGroups(false);
        life.window().setStateFilter(PackageTable::ViewUpdatable);
        life.window().setMode(PackageTable::ModeFilter);
        QCOMPARE(resets.size(), 0);
        life.window().setDups(false);
        QVERIFY(resets.size() > 0);
    }

    void aSettingThatChangesActsBeforeTheWindowIsShown_data()
    {
        QTest::addColumn<int>("setting");
        QTest::newRow("mode") << 0;
        QTest::newRow("state") << 1;
        QTest::newRow("duplicates") << 2;
        QTest::newRow("groups") << 3;
    }

    void aSettingThatChangesActsBeforeTheWindowIsShown()
    {
        QFETCH(int, setting);
        WindowLife life;
        life.window();
        const QSignalSpy resets(life.model(), &QAbstractItemModel::modelReset);
        if (setting == 0)
            life.window().setMode(PackageTable::ModeSearch);
        else if (setting == 1)
            life.window().setStateFilter(PackageTable::ViewAll);
        else if (setting == 2)
            life.window().setDups(false);
        else
            life.window().setGroups(true);
        QVERIFY(resets.size() > 0);
    }

    void theModeChangesButtonAndTips()
    {
        WindowLife life;
        life.window().setMode(PackageTable::ModeSearch);
        QCOMPARE(life.find<QPushButton>("filter")->text(), QStringLiteral("Search"));
        QCOMPARE(
            life.find<QPushButton>("filter")->toolTip(),
            QStringLiteral("Perform the search for the regular expression specified to the left"));
        QCOMPARE(life.find<QLineEdit>("regexp")->toolTip(),
                 QStringLiteral("Regular expression to compare to all fields of a package"));
        life.window().setMode(PackageTable::ModeFilter);
        QCOMPARE(life.find<QPushButton>("filter")->text(), QStringLiteral("Filter"));
        QCOMPARE(life.find<QLineEdit>("regexp")->toolTip(),
                 QStringLiteral(
                     "Regular expression filter matching textual fields visible in the table"));
    }

    void theWarningKeepsItsSizeWithAndWithoutText()
    {
        WindowLife life;
        auto* label = life.find<HFrameLabel>("warning");
        QCOMPARE(label->text(), QString());
        const QSize empty = label->minimumSize();
        QCOMPARE(label->maximumSize(), empty);
        label->setText(QStringLiteral("Unlisted Actions"));
        QCOMPARE(label->minimumSize(), empty);
        QCOMPARE(label->maximumSize(), empty);
        QVERIFY(label->sizeHint().width() <= empty.width());
        QVERIFY(label->sizeHint().height() <= empty.height());
    }

    void everyControlTakesTheKeyboardAndHasAName()
    {
        WindowLife life;
        QList<QWidget*> controls;
        for (const char* name :
             {"mode", "regexp", "filter", "state", "duplicates", "groups", "packages", "describe",
              "resize", "refresh", "setSelected", "setUpdateListed", "clearActions", "apply"})
            controls << life.find<QWidget>(name);
        for (QWidget* control : qAsConst(controls)) {
            QVERIFY(control);
            QVERIFY2(control->focusPolicy() & Qt::TabFocus, qPrintable(control->objectName()));
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
            QVERIFY2(accessible && !accessible->text(QAccessible::Name).isEmpty(),
                     qPrintable(control->objectName()));
        }
        // The Tab key goes through them as they are read.
        for (int i = 1; i < controls.size(); ++i) {
            QWidget* next = controls.at(i - 1)->nextInFocusChain();
            while (!controls.contains(next) && next != controls.at(i - 1))
                next = next->nextInFocusChain();
            QCOMPARE(next->objectName(), controls.at(i)->objectName());
        }
    }
};

QTEST_MAIN(TestMainWindowLayout)
#include "tst_MainWindowLayout.moc"
