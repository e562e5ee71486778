// SPDX-License-Identifier: GPL-2.0-or-later
#include "DescribeTest.h"

#include "kit/HScrollArea.h"
#include "unit/kit/NastyTexts.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <QtTest>

namespace
{

QJsonObject ver(const QString& version)
{
    return {{"ver", version}};
}

QJsonObject installed(const QString& name, const QString& version, const QJsonObject& header = {})
{
    QJsonObject package = Contract::installed(name, header);
    package["ver"] = version;
    package["repoid"] = "installed";
    return package;
}

QJsonObject with(QJsonObject package, const QJsonObject& more)
{
    for (auto field = more.begin(); field != more.end(); ++field)
        package[field.key()] = field.value();
    return package;
}

QJsonArray relation(const QString& name)
{
    return {QJsonArray{name, QJsonValue(), QJsonValue()}};
}

QString lines(const QString& line, int count)
{
    QStringList all;
    for (int i = 0; i < count; ++i)
        all += line + QString::number(i);
    return all.join('\n');
}

} // namespace

class TestPackageTableDescribe : public DescribeTest
{
    Q_OBJECT

private Q_SLOTS:
    // ---- What is shown

    void aChainOfThreeHasALongSectionAndTwoShortOnes()
    {
        const QJsonObject packager{
            {"fields", QJsonObject{{"packager", "someone"}, {"vendor", "a vendor"}}}};
        contract->play({{"updates", QJsonArray{Contract::package("k", with(packager, ver("3-1")))}},
                        {"installed", QJsonArray{with(installed("k", "2-1"), packager),
                                                 with(installed("k", "1-1"), packager)}},
                        {"better", QJsonArray{QJsonArray{"2-1", "1-1"}, QJsonArray{"3-1", "2-1"},
                                              QJsonArray{"3-1", "1-1"}}}});
        QVERIFY(contract->collect());
        QList<QStringList> shown;
        expectDescription([&](QWidget* dialog) { shown = sections(dialog); }).text("k");
        describe("k");
        QCOMPARE(shown.size(), 3);
        QCOMPARE(shown[0].first(), QString("Available for update"));
        QVERIFY(shown[0].contains("Version: 3-1"));
        QVERIFY(shown[0].contains("Vendor: a vendor"));
        const QStringList shortLabels{"Version",  "Architecture", "Size",      "Build Time",
                                      "Packager", "Files",        "Change Log"};
        QStringList versions;
        for (int section : {1, 2}) {
            QCOMPARE(shown[section].first(), QString("Installed"));
            QCOMPARE(labels(shown[section]), shortLabels);
            versions += shown[section][1];
        }
        versions.sort();
        QCOMPARE(versions, QStringList({"Version: 1-1", "Version: 2-1"}));
    }

    void aPackageHasItsRowsInOrderAndNoneForWhatIsEmpty()
    {
        const QJsonObject fields{{"description", "d"}, {"vendor", "v"},  {"buildhost", "bh"},
                                 {"sourcerpm", "src"}, {"license", "l"}, {"packager", "p"},
                                 {"url", "u"}};
        const QJsonObject prco{{"provides", relation("pr")},
                               {"requires", relation("re")},
                               {"conflicts", relation("co")},
                               {"obsoletes", relation("ob")}};
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"fields", fields},
                                                              {"prco", prco},
                                                              {"repoid", "base"},
                                                              {"summary", "s"},
                                                              {"group", "g"},
                                                              {"relativepath", "a.rpm"}}),
                                      Contract::package("bare", {{"repoid", ""}})}}});
        QVERIFY(contract->collect());
        QStringList shown;
        const auto look = [&](QWidget* dialog) { shown = sections(dialog).first(); };
        expectDescription(look);
        describe("a");
        const Package::Entry& entry = *contract->row("a");
        QCOMPARE(shown.join('\n'), QStringList({"Available for installation",
                                                "Kind: Ordinary package",
                                                "Version: 1.0-1",
                                                "Repository: base [Details]",
                                                "Architecture: x86_64",
                                                "Size: " + entry.sizeText,
                                                "Summary: s",
                                                "Description: d",
                                                "Group: g",
                                                "Vendor: v",
                                                "Build Time: " + entry.buildTimeText,
                                                "Build Host: bh",
                                                "Binary RPM: a.rpm",
                                                "Source RPM: a.rpm",
                                                "License: l",
                                                "Packager: p",
                                                "URL: u",
                                                "Provides: pr",
                                                "Requires: re",
                                                "Conflicts: co",
                                                "Obsoletes: ob",
                                                "Files: [Show (must load extra data)]",
                                                "Change Log: [Show (must load extra data)]"})
                                       .join('\n'));
        expectDescription(look);
        describe("bare");
        QCOMPARE(labels(shown), QStringList({"Kind", "Version", "Architecture", "Size",
                                             "Build Time", "Files", "Change Log"}));
    }

    void anInstalledPackageHasNoRepositoryRow()
    {
        contract->play(
            {{"installed", QJsonArray{installed("a", "1-1",
                                                {{"INSTALLTIME", 86400},
                                                 {"PREFIXES", QJsonArray{"/usr", "/opt"}}})}}});
        QVERIFY(contract->collect());
        expectDescription([](QWidget* dialog) {
            const QStringList shown = sections(dialog).first();
            QCOMPARE(shown.first(), QString("Installed"));
            QVERIFY(!labels(shown).contains("Repository"));
            QVERIFY(!details(dialog));
            QVERIFY(shown.contains("Install Time: " + YumIO::timeFormat(86400)));
            QVERIFY(shown.contains("Relocations: /usr\n/opt"));
            QVERIFY(shown.contains("Files: [Show]"));
            QVERIFY(shown.contains("Change Log: [Show]"));
        });
        describe("a");
    }

    void aSuiteIsDescribedAsAPackage()
    {
        contract->play({{"available", QJsonArray{Contract::package("s", {{"group", "Suite"}})}}});
        QVERIFY(contract->collect());
        expectDescription([](QWidget* dialog) {
            const QStringList shown = sections(dialog).first();
            QVERIFY(shown.contains("Kind: Suite of packages"));
            QVERIFY(labels(shown).endsWith("Change Log"));
        });
        describe("s");
    }

    void aGroupHasItsMembersAndNoButtons_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("today") << "4.14.0"
                               << QStringList{"Mandatory Packages: m\nn", "Default Packages: d",
                                              "Optional Packages: o", "Conditional Packages: c"};
        QTest::newRow("before 2.5")
            << "2.4.0" << QStringList{"Required Groups: g1",   "Default MetaPkgs: m1",
                                      "Optional MetaPkgs: m2", "Mandatory Packages: m\nn",
                                      "Default Packages: d",   "Optional Packages: o"};
    }

    void aGroupHasItsMembersAndNoButtons()
    {
        QFETCH(QString, version);
        QFETCH(QStringList, rows);
        contract->play({{"version", version},
                        {"groups", QJsonArray{Contract::group(
                                       "g", {{"mandatory", QJsonArray{"n", "m"}},
                                             {"default", QJsonArray{"d"}},
                                             {"optional", QJsonArray{"o"}},
                                             {"conditional", QJsonArray{"c"}},
                                             {"groups", QJsonArray{"g1"}},
                                             {"metapkgs", QJsonArray{"m1"}},
                                             {"optionalmetapkgs", QJsonArray{"m2"}}})}}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            QCOMPARE(sections(dialog).first().join('|'),
                     (QStringList{"Available for installation", "Kind: Group of packages"} + rows)
                         .join('|'));
            QVERIFY(buttons(dialog, 0).isEmpty());
        });
        describe("g");
    }

    void anEntryOfAnotherKindHasAHeaderOnly()
    {
        contract->play({{"available", QJsonArray{Contract::package("a")}}});
        QVERIFY(contract->collect());
        contract->row("a")->kind = static_cast<Package::Kind>(3);
        expectDescription([](QWidget* dialog) {
            QCOMPARE(sections(dialog).first(), QStringList{"Available for installation"});
        });
        describe("a");
    }

    void textsAreNoMarkupAndCanBeSelected()
    {
        const QString markup = "<b>bold</b> &amp; <img src='x'> %1 &x\n<!-- gone -->";
        contract->play({{"available", QJsonArray{Contract::package(
                                          "<i>a</i>", {{"summary", markup}, {"repoid", "%2"}})}}});
        QVERIFY(contract->collect());
        driver->expect("VOK Package Description")
            .text("<i>a</i>")
            .act([&](QWidget* dialog) {
                int found = 0;
                for (const QLabel* label : dialog->findChildren<QLabel*>()) {
                    if (!label->text().contains('<') && label->text() != "%2")
                        continue;
                    ++found;
                    QCOMPARE(label->textFormat(), Qt::PlainText);
                    QVERIFY(label->textInteractionFlags() & Qt::TextSelectableByMouse);
                    if (label->text() == markup)
                        QVERIFY(label->height() < 4 * label->fontMetrics().height());
                }
                QCOMPARE(found, 3);
            })
            .press("Close");
        describe("<i>a</i>");
    }

    // ---- Extra data

    void aPressLoadsAndOnlyThatSectionTellsAtOnce()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"files", QJsonArray{"/f"}}}),
                                      Contract::package("b")}}});
        QVERIFY(contract->collect());
        Package::Entry* first = contract->row("a");
        first->next = contract->row("b");
        const QString mustLoad = "Show (must load extra data)";
        driver->expect("VOK Package Description")
            .act([&](QWidget* dialog) {
                for (int section : {0, 1}) {
                    QCOMPARE(files(dialog, section)->text(), mustLoad);
                    QCOMPARE(changeLog(dialog, section)->text(), mustLoad);
                }
                driver->expect("a 1.0-1 File List").text("/f").press("Close");
                click(files(dialog));
                QCOMPARE(files(dialog)->text(), QString("Show"));
                QCOMPARE(changeLog(dialog)->text(), mustLoad);
                QCOMPARE(files(dialog, 1)->text(), mustLoad);
            })
            .press("Close");
        describe("a");
        expectDescription([&](QWidget* dialog) {
            QCOMPARE(files(dialog, 1)->text(), QString("Show"));
            QCOMPARE(changeLog(dialog, 1)->text(), mustLoad);
        });
        describe("a");
        first->next = nullptr;
        QCOMPARE(contract->callCount("collectFileLists"), 1);
        QCOMPARE(contract->callCount("collectOtherData"), 0);
    }

    void bothTextsOfASectionAreShown()
    {
        contract->play(
            {{"available",
              QJsonArray{Contract::package(
                  "a", {{"ver", "1:2%1-3"},
                        {"files", QJsonArray{"/b", "/a"}},
                        {"changelog", QJsonArray{QJsonArray{0, "me", "did <b>it</b>"}}}})}}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            driver->expect("a 1:2%1-3 File List").text("/a\n/b").press("Close");
            click(files(dialog));
            driver->expect("a 1:2%1-3 Change Log")
                .text("* " + YumIO::dateFormat(0) + " me\ndid <b>it</b>")
                .press("Close");
            click(changeLog(dialog));
            QCOMPARE(files(dialog)->text(), QString("Show"));
            QCOMPARE(changeLog(dialog)->text(), QString("Show"));
        });
        describe("a");
    }

    void anInstalledPackageLoadsNothing()
    {
        contract->play(
            {{"installed", QJsonArray{installed("a", "1-1",
                                                {{"BASENAMES", QJsonArray{"f"}},
                                                 {"DIRNAMES", QJsonArray{"/"}},
                                                 {"DIRINDEXES", QJsonArray{0}},
                                                 {"CHANGELOGNAME", QJsonArray{"me"}},
                                                 {"CHANGELOGTIME", QJsonArray{0}},
                                                 {"CHANGELOGTEXT", QJsonArray{"did"}}})}}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            driver->expect("a 1-1 File List").text("/f").press("Close");
            click(files(dialog));
            driver->expect("a 1-1 Change Log").textContains("me\ndid").press("Close");
            click(changeLog(dialog));
        });
        describe("a");
        QCOMPARE(contract->callCount("collectFileLists"), 0);
        QCOMPARE(contract->callCount("collectOtherData"), 0);
    }

    void aFailedLoadShowsAnEmptyTextAndCanBeTriedAgain()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"files", QJsonArray{"/f"}}})}},
             {"raise", QJsonObject{{"collectFileLists",
                                    QJsonObject{{"type", "YumBaseError"}, {"text", "gone"}}}}}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            driver->expect("VOK Yum Error").textContains("gone").press("Close");
            driver->expect("a 1.0-1 File List")
                .act([](QWidget* window) { QVERIFY(DialogDriver::textsIn(window).isEmpty()); })
                .press("Close");
            click(files(dialog));
            QCOMPARE(files(dialog)->text(), QString("Show (must load extra data)"));
            driver->expect("a 1.0-1 File List").text("/f").press("Close");
            click(files(dialog));
            QCOMPARE(files(dialog)->text(), QString("Show"));
        });
        describe("a");
    }

    void itCannotBeClosedWhileItLoads()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"files", QJsonArray{"/f"}}})}}});
        QVERIFY(contract->collect());
        QPointer<QWidget> description;
        int tries = 0;
        contract->probe([&](const QString& method) {
            if (method != "collectFileLists")
                return;
            QMetaObject::invokeMethod(
                description,
                [&] {
                    QVERIFY(!close(description)->isEnabled());
                    click(close(description));
                    // The window manager's close box.
                    QVERIFY(!description->close());
                    QTest::keyClick(description, Qt::Key_Escape);
                    QTest::keyClick(description, Qt::Key_Return);
                    // Nothing else can be asked for, either.
                    for (QPushButton* button : description->findChildren<QPushButton*>())
                        click(button);
                    ++tries;
                },
                Qt::BlockingQueuedConnection);
        });
        expectDescription([&](QWidget* dialog) {
            description = dialog;
            driver->expect("a 1.0-1 File List").text("/f").press("Close");
            files(dialog)->setFocus();
            QTest::keyClick(files(dialog), Qt::Key_Space);
            QVERIFY(description && description->isVisible());
            QVERIFY(close(dialog)->isEnabled());
            QCOMPARE(dialog->focusWidget(), files(dialog));
        });
        describe("a");
        QCOMPARE(tries, 1);
        QVERIFY(!description->isVisible());
    }

    // ---- The dialog

    void contentsAreThrownAwayOnClosing()
    {
        contract->play(
            {{"available", QJsonArray{Contract::package("a", {{"files", QJsonArray{"/f"}}}),
                                      Contract::package("b")}}});
        QVERIFY(contract->collect());
        QPointer<QWidget> text;
        QPointer<QWidget> description;
        expectDescription([&](QWidget* dialog) {
            description = dialog;
            driver->expect("a 1.0-1 File List")
                .act([&](QWidget* window) { text = window; })
                .press("Close");
            click(files(dialog));
            QVERIFY(text);
        });
        describe("a");
        QVERIFY(!text);
        QVERIFY(description);
        QCOMPARE(sections(description).size(), 0);
        QCOMPARE(description->findChildren<QLabel*>().size(), 0);
        expectDescription([&](QWidget* dialog) {
            QCOMPARE(dialog, description.data());
            QCOMPARE(sections(dialog).size(), 1);
        }).text("b");
        describe("b");
    }

    void theKeyboardStartsInTheTextAndEndsAtClose()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"repoid", "base"}})}}});
        QVERIFY(contract->collect());
        driver->expect("VOK Package Description")
            .act([&](QWidget* dialog) {
                auto* area = dialog->findChild<HScrollArea*>();
                QCOMPARE(dialog->focusWidget(), static_cast<QWidget*>(area));
                QList<QWidget*> visited;
                for (int i = 0; i < 4; ++i) {
                    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
                    visited += dialog->focusWidget();
                }
                QCOMPARE(visited, (QList<QWidget*>{details(dialog), files(dialog),
                                                   changeLog(dialog), close(dialog)}));
                area->setFocus();
                QTest::keyClick(area, Qt::Key_Return);
                QVERIFY(!dialog->isVisible());
            })
            .leave();
        describe("a");
    }

    // ---- Sizes

    void longTextsFitTheScreenAndCanBeScrolledToTheirEnd()
    {
        const QString name = QString("long-name-").repeated(12);
        QJsonArray paths, changes, provides;
        for (int i = 0; i < 20000; ++i)
            paths += QString("/usr/share/a/folder%1/with/a/path/of/some/length/%1").arg(i);
        for (int i = 0; i < 5000; ++i) {
            changes += QJsonArray{i * 86400, "Some One <some.one@example.org> - 1.0",
                                  "- changed this\n- changed that"};
            provides += QJsonArray{QString("provided(%1)").arg(i), QJsonValue(), QJsonValue()};
        }
        const QJsonObject fields{{"description", lines("A line of the description ", 200)}};
        contract->play({{"available", QJsonArray{Contract::package(
                                          name, {{"files", paths},
                                                 {"changelog", changes},
                                                 {"summary", QString("long ").repeated(2000)},
                                                 {"prco", QJsonObject{{"provides", provides}}},
                                                 {"fields", fields}})}}});
        QVERIFY(contract->collect());
        QVERIFY(contract->engine().collectFileLists());
        QVERIFY(contract->engine().collectOtherData());
        const auto met = [&](QWidget* window) {
            const QSize screen = window->screen()->availableSize();
            QVERIFY(window->frameGeometry().width() <= screen.width());
            QVERIFY(window->frameGeometry().height() <= screen.height());
        };
        expectDescription([&](QWidget* dialog) {
            met(dialog);
            auto* area = dialog->findChild<HScrollArea*>();
            QVERIFY(area->widget()->height() > 5000 * area->fontMetrics().height());
            QVERIFY(area->widget()->width() > 10000 * area->fontMetrics().averageCharWidth() / 2);
            QVERIFY(QTest::qWaitForWindowActive(dialog));
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Backtab);
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Backtab);
            QCOMPARE(dialog->focusWidget(), static_cast<QWidget*>(changeLog(dialog)));
            QVERIFY(!changeLog(dialog)->visibleRegion().isEmpty());
            area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
            const QRect shown(QPoint(), area->viewport()->size());
            QVERIFY(shown.contains(changeLog(dialog)->mapTo(
                area->viewport(), QPoint(0, changeLog(dialog)->height()))));
            // The last lines are drawn, far down as they are.
            QLabel* relations = nullptr;
            for (QLabel* label : dialog->findChildren<QLabel*>()) {
                if (label->text().contains("provided(4999)"))
                    relations = label;
            }
            QVERIFY(relations);
            const QRect last(0, relations->height() - 2 * area->fontMetrics().height(), 60,
                             2 * area->fontMetrics().height());
            const QImage drawn = relations->grab(last).toImage();
            QImage empty = drawn;
            empty.fill(drawn.pixel(drawn.width() - 1, drawn.height() - 1));
            QVERIFY(drawn != empty);
            for (QPushButton* button : {files(dialog), changeLog(dialog)}) {
                const bool isFiles = button == files(dialog);
                driver->expect(name + (isFiles ? " 1.0-1 File List" : " 1.0-1 Change Log"))
                    .act([&](QWidget* window) {
                        met(window);
                        const auto* text = window->findChild<QTextEdit*>();
                        QCOMPARE(text->document()->blockCount(), isFiles ? 20000 : 5000 * 4 - 1);
                        QVERIFY(text->verticalScrollBar()->maximum() > 0);
                    })
                    .press("Close");
                click(button);
            }
        });
        describe(name);
    }

    void oddTextsAreShownAsTheyAre()
    {
        QStringList names;
        QJsonArray packages;
        for (const QString& text : Nasty::texts()) {
            // What JSON can't carry doesn't get through to here.
            if (text.isEmpty() || text.contains(QChar(0xd800)))
                continue;
            names += "odd" + QString::number(names.size());
            packages += Contract::package(
                names.last(), {{"summary", text},
                               {"changelog", QJsonArray{QJsonArray{0, "me", text}}},
                               {"fields", QJsonObject{{"description", text + '\n' + text}}}});
        }
        contract->play({{"available", packages}});
        QVERIFY(contract->collect());
        QVERIFY(contract->engine().collectOtherData());
        for (const QString& name : qAsConst(names)) {
            const Package::Entry& entry = *contract->row(name);
            expectDescription([&](QWidget* dialog) {
                const QStringList shown = sections(dialog).first();
                QVERIFY2(shown.contains("Summary: " + entry.summary), qPrintable(shown.join('|')));
                QVERIFY(shown.contains("Description: " + entry.summary + '\n' + entry.summary));
                QVERIFY(!dialog->grab().isNull());
                driver->expect(name + " 1.0-1 Change Log").textContains("me\n").press("Close");
                click(changeLog(dialog));
            });
            describe(name);
        }
    }

    void eachShowingHasItsOwnSize()
    {
        const QJsonObject fields{{"description", lines("A line of the description ", 4)}};
        contract->play({{"available", QJsonArray{Contract::package("long", {{"fields", fields}}),
                                                 Contract::package("short")}}});
        QVERIFY(contract->collect());
        QList<int> spare;
        for (const char* name : {"short", "long", "short"}) {
            expectDescription([&](QWidget* dialog) {
                const auto* area = dialog->findChild<HScrollArea*>();
                spare += area->viewport()->height() - area->widget()->height();
            });
            describe(name);
        }
        QCOMPARE(spare[2], spare[0]);
        QCOMPARE(spare[1], spare[0]);
        QVERIFY(spare[0] >= 0);
    }

    void manyVersionsFitTheScreen_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("a few") << 5;
        QTest::newRow("more than there is room for") << 500;
    }

    void manyVersionsFitTheScreen()
    {
        QFETCH(int, count);
        QJsonArray packages;
        for (int i = 1; i <= count; ++i)
            packages += installed("k", QString("%1-1").arg(i));
        contract->play({{"installed", packages}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            QCOMPARE(sections(dialog).size(), count);
            QVERIFY(dialog->height() <= dialog->screen()->availableSize().height());
            QVERIFY(dialog->width() <= dialog->screen()->availableSize().width());
            for (const HScrollArea* area : sectionAreas(dialog))
                QVERIFY(area->viewport()->height() >= 2 * area->fontMetrics().height());
            QVERIFY(dialog->rect().contains(close(dialog)->geometry()));
        });
        describe("k");
    }

    void manyVersionsAreScrolledTogether()
    {
        QJsonArray packages;
        for (int i = 1; i <= 40; ++i)
            packages += installed("k", QString("%1-1").arg(i));
        contract->play({{"installed", packages}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            QVERIFY(QTest::qWaitForWindowActive(dialog));
            // The short sections show all that they have.
            const auto areas = sectionAreas(dialog);
            for (const HScrollArea* area : areas.mid(1))
                QCOMPARE(area->verticalScrollBar()->maximum(), 0);
            QVERIFY(changeLog(dialog, 39)->visibleRegion().isEmpty());
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Backtab);
            QCOMPARE(dialog->focusWidget(), static_cast<QWidget*>(close(dialog)));
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Backtab);
            QCOMPARE(dialog->focusWidget(), static_cast<QWidget*>(changeLog(dialog, 39)));
            QCOMPARE(changeLog(dialog, 39)->visibleRegion(),
                     QRegion(changeLog(dialog, 39)->rect()));
            dialog->resize(dialog->width() + 50, dialog->height());
            QTRY_COMPARE(areas[39]->width(),
                         areas[39]->parentWidget()->contentsRect().width() - 2 * areas[39]->x());
        });
        describe("k");
    }

    void theKeyboardComesToButtonsThatAreFarDown()
    {
        const QJsonObject fields{{"description", lines("A line of the description ", 200)}};
        contract->play({{"available", QJsonArray{Contract::package("a", {{"fields", fields}})}}});
        QVERIFY(contract->collect());
        expectDescription([&](QWidget* dialog) {
            QVERIFY(QTest::qWaitForWindowActive(dialog));
            QVERIFY(changeLog(dialog)->visibleRegion().isEmpty());
            close(dialog)->setFocus();
            QTest::keyClick(close(dialog), Qt::Key_Backtab);
            QCOMPARE(dialog->focusWidget(), static_cast<QWidget*>(changeLog(dialog)));
            QCOMPARE(changeLog(dialog)->visibleRegion(), QRegion(changeLog(dialog)->rect()));
        });
        describe("a");
    }
};

QTEST_MAIN(TestPackageTableDescribe)
#include "tst_PackageTableDescribe.moc"
