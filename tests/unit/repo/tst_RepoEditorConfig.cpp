// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/ConfigDialogTest.h"

/// What the form for one entry shows and says.
class TestRepoEditorConfig : public ConfigDialogTest
{
    Q_OBJECT

private Q_SLOTS:
    void isDisabledAndEmptyBeforeItsFirstEntry();
    void showsAnEntryAndGivesItBack();
    void ordersItsFields();
    void labelsWhatIsInItsGroups();
    void hasRoomForThreeLinesOfOtherOptions();
    void explainsEachField();
    void marksTheIdentifierAsRequired();
    void showsNothingButItsFields();
    void fitsASmallScreen();
    void says_data();
    void says();
    void reportsTheFirstProblemOnly();
    void showsWhatTheDefaultsAre();
    void pastingAVantryUrlEnablesItsFields_data();
    void pastingAVantryUrlEnablesItsFields();
    void aUrlWithoutValuesEnablesItsFieldsToo();
    void typingThePasswordChangesBothUrls();
    void clearingTheUrlsDisablesTheVantryFields_data();
    void clearingTheUrlsDisablesTheVantryFields();
    void showsNoPasswordAnywhere();
    void keepsOtherOptionsAsTyped();
};

void TestRepoEditorConfig::isDisabledAndEmptyBeforeItsFirstEntry()
{
    for (const QWidget* widget : fields())
        QVERIFY2(!widget->isEnabled(), qPrintable(widget->toolTip()));
    QCOMPARE(authLabels(), QStringList({"Name", "Password"}));
    for (const QLineEdit* edit : {id(), name(), authName(), authPassword(), file()})
        QCOMPARE(edit->text(), QString());
    QCOMPARE(urls()->realPlainText() + mirror()->realText() + other()->toPlainText(), QString());
    QCOMPARE(enabled()->currentIndex(), 1);
    QCOMPARE(gpgcheck()->currentIndex(), 1);
    QCOMPARE(position()->value(), 0.0);

    // Values of an earlier use go too.
    QWidget window;
    auto* grid = new QGridLayout;
    RepoEditor::Config form(grid);
    window.setLayout(grid);
    entry.baseurl = vantryUrl;
    form.setEntry(entry);
    QSignalSpy changed(&form, &RepoEditor::Config::changed);
    form.disable();
    QCOMPARE(changed.count(), 0);
    const Repo::Entry empty = form.toEntry();
    QCOMPARE(empty.id + empty.name + empty.baseurl + empty.mirrorlist + empty.other +
                 empty.fileName,
             QString());
    QCOMPARE(empty.enabled, 1);
    QCOMPARE(empty.gpgcheck, 1);
    QCOMPARE(empty.filePosition, 0.0);
}

void TestRepoEditorConfig::showsAnEntryAndGivesItBack()
{
    open();
    QCOMPARE(dialog->windowTitle(), QStringLiteral("VOK Repository Configuration"));
    QVERIFY(dialog->isModal());
    QCOMPARE(id()->text(), entry.id);
    QCOMPARE(name()->text(), entry.name);
    QCOMPARE(urls()->toPlainText(), entry.baseurl);
    QCOMPARE(mirror()->text(), entry.mirrorlist);
    QCOMPARE(enabled()->currentText(), QStringLiteral("Yes"));
    QCOMPARE(gpgcheck()->currentText(), QStringLiteral("No"));
    QCOMPARE(other()->toPlainText(), entry.other);
    QCOMPARE(file()->text(), entry.fileName);
    QCOMPARE(position()->value(), 2.5);
    QCOMPARE(position()->singleStep(), 1.0);
    QCOMPARE(position()->decimals(), 1);
    QCOMPARE(position()->minimum(), 0.0);
    for (const QWidget* widget : fields())
        QCOMPARE(widget->isEnabled(), widget != authName() && widget != authPassword());

    const Repo::Entry old = entry;
    type(name(), QStringLiteral("!"));
    press(QStringLiteral("OK"));
    QCOMPARE(entry.name, QStringLiteral("Base packages!"));
    QCOMPARE(entry.id, old.id);
    QCOMPARE(entry.baseurl, old.baseurl);
    QCOMPARE(entry.mirrorlist, old.mirrorlist);
    QCOMPARE(entry.enabled, old.enabled);
    QCOMPARE(entry.gpgcheck, old.gpgcheck);
    QCOMPARE(entry.other, old.other);
    QCOMPARE(entry.fileName, old.fileName);
    QCOMPARE(entry.filePosition, old.filePosition);
}

void TestRepoEditorConfig::ordersItsFields()
{
    auto* grid = dialog->findChild<QGridLayout*>(QString(), Qt::FindDirectChildrenOnly);
    if (!grid)
        grid = qobject_cast<QGridLayout*>(dialog->layout()->itemAt(0)->layout());
    QVERIFY(grid);
    QStringList labels;
    QStringList boxes;
    for (int row = 0; row < grid->rowCount(); ++row) {
        QLayoutItem* item = grid->itemAtPosition(row, 0);
        QVERIFY(item);
        if (const auto* label = qobject_cast<QLabel*>(item->widget()))
            labels.append(label->text());
        if (const auto* box = qobject_cast<QGroupBox*>(item->widget())) {
            boxes.append(box->title());
            QCOMPARE(grid->itemAtPosition(row, 1)->widget(), box);
        }
    }
    QCOMPARE(labels, QStringList({"Identifier", "Name", "URLs", "Mirror list URL"}));
    QCOMPARE(boxes, QStringList({"Vantry Authentication", "Repository Options",
                                 "Configuration File (expert)"}));
    QStringList buttons;
    for (const QPushButton* each : dialog->findChildren<QPushButton*>())
        buttons.append(each->text() + (each->isDefault() ? "*" : ""));
    QCOMPARE(buttons, QStringList({"Reset", "Cancel", "OK*"}));
    for (const QComboBox* combo : {enabled(), gpgcheck()}) {
        QCOMPARE(combo->count(), 3);
        QCOMPARE(combo->itemText(0), QStringLiteral("No"));
        QCOMPARE(combo->itemText(2), QStringLiteral("Yes"));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(combo->itemData(i).toInt(), i);
    }
    const QFontInfo font(other()->font());
    QVERIFY(font.fixedPitch() && font.bold());
}

void TestRepoEditorConfig::labelsWhatIsInItsGroups()
{
    QStringList labels;
    for (const QGroupBox* box : dialog->findChildren<QGroupBox*>())
        for (const QLabel* label : box->findChildren<QLabel*>())
            labels.append(label->text());
    labels.sort();
    QCOMPARE(labels, QStringList({"Check GPG Keys", "Enabled", "File", "Name",
                                  "Other Options:", "Password", "Sort Position"}));
}

void TestRepoEditorConfig::hasRoomForThreeLinesOfOtherOptions()
{
    const QFontMetrics metrics(other()->font());
    const int frame = 2 * other()->frameWidth();
    const QSize wanted(frame + 80 * metrics.horizontalAdvance('n'),
                       frame + 3 * metrics.lineSpacing());
    QCOMPARE(other()->sizeHint(), wanted.boundedTo(ScreenLimit::of(other())));
}

void TestRepoEditorConfig::explainsEachField()
{
    QCOMPARE(id()->toolTip(), QStringLiteral("Unique identifier for the repository"));
    QCOMPARE(name()->toolTip(), QStringLiteral("Description of the repository"));
    QCOMPARE(urls()->toolTip(),
             QStringLiteral("List of URLs to the repository.\nIf more than one is specified, they "
                            "all should be identical mirrors,\nand will provide redundancy if some "
                            "URLs are unreachable."));
    QCOMPARE(mirror()->toolTip(),
             QStringLiteral("URL to a file containing a list of URLs to the repository."));
    QCOMPARE(authName()->toolTip(), QStringLiteral("Authentication name for a repository using the "
                                                   "vantry authentication method"));
    QCOMPARE(authPassword()->toolTip(),
             QStringLiteral("Authentication password for a repository using the vantry "
                            "authentication method"));
    QCOMPARE(enabled()->toolTip(),
             QStringLiteral("Whether or not the repository is enabled for use"));
    QCOMPARE(gpgcheck()->toolTip(),
             QStringLiteral("Whether or not GPG key signatures of packages from the repository are "
                            "checked to ensure authenticity"));
    QCOMPARE(other()->toolTip(),
             QStringLiteral("Any other yum options for this repository.  See yum.conf(5)"));
    QCOMPARE(file()->toolTip(),
             QStringLiteral("Name of the yum configuration file into which to place this "
                            "repository configuration.\nIf left blank, defaults to the "
                            "repository's identifier"));
    QCOMPARE(position()->toolTip(),
             QStringLiteral("A numeric sort key which determines the order of this repository "
                            "configuration\nin a configuration file which contains multiple "
                            "configurations"));
    QCOMPARE(button("Reset")->toolTip(),
             QStringLiteral("Undo changes to this repository configuration"));
    QCOMPARE(button("Cancel")->toolTip(),
             QStringLiteral("Undo changes to this repository configuration and close the window"));
    QCOMPARE(
        button("OK")->toolTip(),
        QStringLiteral("Apply changes to all repository configurations, and close the window"));
}

void TestRepoEditorConfig::marksTheIdentifierAsRequired()
{
    QCOMPARE(id()->palette().color(QPalette::Active, QPalette::Base), QColor(Colors::requiredBg()));
    QVERIFY(name()->palette().color(QPalette::Active, QPalette::Base) !=
            QColor(Colors::requiredBg()));
}

void TestRepoEditorConfig::showsNothingButItsFields()
{
    open();
    // The twins of the password fields have the real text and no place on any screen.
    int lines = 0;
    int texts = 0;
    for (const QWidget* widget : QApplication::allWidgets()) {
        if (!widget->isVisible())
            continue;
        lines +=
            widget->inherits("QLineEdit") && !widget->parentWidget()->inherits("QAbstractSpinBox");
        texts += widget->inherits("QTextEdit");
    }
    QCOMPARE(lines, 6);
    QCOMPARE(texts, 2);
}

void TestRepoEditorConfig::fitsASmallScreen()
{
    open();
    QCOMPARE(dialog->size(), dialog->sizeHint()
                                 .boundedTo(ScreenLimit::of(dialog.get()))
                                 .expandedTo(dialog->minimumSizeHint()));
    // Both texts together give way by more than the one that asks for most.
    QVERIFY(dialog->sizeHint().height() - dialog->minimumSizeHint().height() >
            urls()->sizeHint().height() * 3 / 4);
    dialog->resize(700, 650);
    press(QStringLiteral("Cancel"));
    open();
    QCOMPARE(dialog->size(), QSize(700, 650));
}

void TestRepoEditorConfig::says_data()
{
    QTest::addColumn<QString>("baseurl");
    QTest::addColumn<QString>("mirrorlist");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("text");
    const QString url = QStringLiteral("http://host/");
    QTest::newRow("nothing") << url << ""
                             << "DIR/a.repo"
                             << "";
    QTest::newRow("nothing about a mirror list") << "" << url << "DIR/a.repo"
                                                 << "";
    QTest::newRow("no URL") << ""
                            << ""
                            << "DIR/a.repo"
                            << "No URLs or Mirror list URL specified";
    QTest::newRow("a file elsewhere") << url << ""
                                      << "/tmp/a.repo"
                                      << "File is not in any reposdir directory";
    QTest::newRow("a file in a directory whose name only begins so")
        << url << ""
        << "DIRx/a.repo"
        << "File is not in any reposdir directory";
    QTest::newRow("a file in the other directory") << url << ""
                                                   << "MORE/a.repo"
                                                   << "";
    QTest::newRow("a file of another suffix") << url << ""
                                              << "DIR/a.conf"
                                              << "File lacks .repo suffix";
    QTest::newRow("no file") << url << ""
                             << ""
                             << "";
    QTest::newRow("the main file") << url << ""
                                   << "MAIN"
                                   << "";
    QTest::newRow("no name") << "http://h/vantry?u=&p=b&path=/x"
                             << ""
                             << ""
                             << "No Vantry Authentication Name specified";
    QTest::newRow("no password") << "http://h/vantry?u=a&p=&path=/x"
                                 << ""
                                 << ""
                                 << "No Vantry Authentication Password specified";
    QTest::newRow("neither name nor password") << "http://h/vantry?u=&p=&path=/x"
                                               << ""
                                               << ""
                                               << "No Vantry Authentication Name specified";
    QTest::newRow("no password of a mirror list") << url << "http://h/rhel/u=a/p=/x"
                                                  << ""
                                                  << "No Vantry Authentication Password specified";
    QTest::newRow("name and password") << vantryUrl << ""
                                       << ""
                                       << "";
}

void TestRepoEditorConfig::says()
{
    QFETCH(QString, baseurl);
    QFETCH(QString, mirrorlist);
    QFETCH(QString, fileName);
    QFETCH(QString, text);
    entry.baseurl = baseurl;
    entry.mirrorlist = mirrorlist;
    entry.fileName =
        fileName.replace("DIR", YumConfIO::repoDirPath(QStringLiteral("/etc/yum.repos.d")))
            .replace("MORE", YumConfIO::repoDirPath(QStringLiteral("/more")))
            .replace("MAIN", QString::fromLatin1(conf->fileName()));
    open();
    QCOMPARE(status()->text(), text);
    if (!text.isEmpty())
        QCOMPARE(status()->palette().color(QPalette::Window), QColor(Colors::warningBg()));
}

void TestRepoEditorConfig::reportsTheFirstProblemOnly()
{
    entry = Repo::Entry();
    entry.fileName = QStringLiteral("/tmp/elsewhere");
    open();
    QCOMPARE(status()->text(), QStringLiteral("No Identifier specified"));
    QCOMPARE(status()->palette().color(QPalette::Window), QColor(Colors::errorBg()));
    type(id(), QStringLiteral("x"));
    QCOMPARE(status()->text(), QStringLiteral("No URLs or Mirror list URL specified"));
    QCOMPARE(status()->palette().color(QPalette::Window), QColor(Colors::warningBg()));
    type(mirror(), QStringLiteral("http://h/vantry?u=&p=&path=/x"));
    QCOMPARE(status()->text(), QStringLiteral("File is not in any reposdir directory"));
    clear(file());
    QTest::keyClicks(file(), YumConfIO::repoDirPath(QStringLiteral("/more")) + "/x");
    QCOMPARE(status()->text(), QStringLiteral("File lacks .repo suffix"));
    type(file(), QStringLiteral(".repo"));
    QCOMPARE(status()->text(), QStringLiteral("No Vantry Authentication Name specified"));
    type(authName(), QStringLiteral("me"));
    QCOMPARE(status()->text(), QStringLiteral("No Vantry Authentication Password specified"));
    type(authPassword(), QStringLiteral("pw"));
    QCOMPARE(status()->text(), QString());
    QCOMPARE(mirror()->realText(), QStringLiteral("http://h/vantry?u=me&p=pw&path=/x"));
}

void TestRepoEditorConfig::showsWhatTheDefaultsAre()
{
    conf->mainEnabled = false;
    conf->mainGpgcheck = true;
    open();
    QCOMPARE(enabled()->itemText(1), QStringLiteral("Default (No)"));
    QCOMPARE(gpgcheck()->itemText(1), QStringLiteral("Default (Yes)"));
    QVERIFY(!button("Reset")->isEnabled());
    dialog->reject();
    conf->mainEnabled = true;
    open();
    QCOMPARE(enabled()->itemText(1), QStringLiteral("Default (Yes)"));
}

void TestRepoEditorConfig::pastingAVantryUrlEnablesItsFields_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("query form") << vantryUrl;
    QTest::newRow("path form") << pathUrl;
}

void TestRepoEditorConfig::pastingAVantryUrlEnablesItsFields()
{
    QFETCH(QString, url);
    entry.baseurl.clear();
    entry.mirrorlist.clear();
    open();
    for (QWidget* target : {static_cast<QWidget*>(urls()), static_cast<QWidget*>(mirror())}) {
        QCOMPARE(authLabels(), QStringList({"Name", "Password"}));
        QVERIFY(!authName()->isEnabled() && !authPassword()->isEnabled());
        QApplication::clipboard()->setText(url);
        target->setFocus();
        QTest::keyClick(target, Qt::Key_V, Qt::ControlModifier);
        QVERIFY(authName()->isEnabled() && authPassword()->isEnabled());
        QCOMPARE(authLabels(), QStringList({"user", "token"}));
        QCOMPARE(authName()->text(), QStringLiteral("me"));
        QCOMPARE(authPassword()->text(), QStringLiteral("hidden"));
        clear(target);
    }
}

void TestRepoEditorConfig::aUrlWithoutValuesEnablesItsFieldsToo()
{
    // Nothing of it is masked, so it shows as it was pasted.
    entry.baseurl.clear();
    entry.mirrorlist.clear();
    open();
    QApplication::clipboard()->setText(QStringLiteral("http://h/vantry?u=&p=&path=/x"));
    mirror()->setFocus();
    QTest::keyClick(mirror(), Qt::Key_V, Qt::ControlModifier);
    QVERIFY(authName()->isEnabled() && authPassword()->isEnabled());
    QCOMPARE(authLabels(), QStringList({"u", "p"}));
}

void TestRepoEditorConfig::typingThePasswordChangesBothUrls()
{
    entry.baseurl = vantryUrl;
    entry.mirrorlist = pathUrl;
    open();
    clear(authPassword());
    QTest::keyClicks(authPassword(), QStringLiteral("s&t"));
    QCOMPARE(urls()->realPlainText(),
             QStringLiteral("http://host/vantry?user=me&token=s%26t&path=/x"));
    QCOMPARE(mirror()->realText(), QStringLiteral("http://host/rhel/user=me/token=s%26t/x"));
    QCOMPARE(urls()->toPlainText(),
             QStringLiteral("http://host/vantry?user=me&token=%1&path=/x").arg(mask(5)));
    QCOMPARE(mirror()->text(), QStringLiteral("http://host/rhel/user=me/token=%1/x").arg(mask(5)));
    QCOMPARE(authPassword()->displayText(), mask(3));
    type(authName(), QStringLiteral("!"));
    QCOMPARE(urls()->realPlainText(),
             QStringLiteral("http://host/vantry?user=me!&token=s%26t&path=/x"));
    press(QStringLiteral("OK"));
    QCOMPARE(entry.mirrorlist, QStringLiteral("http://host/rhel/user=me!/token=s%26t/x"));
}

void TestRepoEditorConfig::clearingTheUrlsDisablesTheVantryFields_data()
{
    QTest::addColumn<bool>("isMirror");
    QTest::addColumn<QString>("url");
    QTest::newRow("URLs") << false << vantryUrl;
    QTest::newRow("mirror list") << true << vantryUrl;
    QTest::newRow("mirror list with nothing masked")
        << true << "http://h/vantry?user=&token=&path=/";
}

void TestRepoEditorConfig::clearingTheUrlsDisablesTheVantryFields()
{
    QFETCH(bool, isMirror);
    QFETCH(QString, url);
    entry.baseurl = isMirror ? QString() : url;
    entry.mirrorlist = isMirror ? url : QString();
    open();
    QVERIFY(authName()->isEnabled() && authPassword()->isEnabled());
    QCOMPARE(authLabels(), QStringList({"user", "token"}));
    clear(isMirror ? static_cast<QWidget*>(mirror()) : urls());
    QVERIFY(!authName()->isEnabled() && !authPassword()->isEnabled());
    QCOMPARE(authLabels(), QStringList({"Name", "Password"}));
    QCOMPARE(authName()->text() + authPassword()->text(), QString());
}

void TestRepoEditorConfig::showsNoPasswordAnywhere()
{
    entry.baseurl = vantryUrl;
    entry.mirrorlist = pathUrl;
    open();
    for (const QWidget* widget : dialog->findChildren<QWidget*>()) {
        QVERIFY(!widget->toolTip().contains(QLatin1String("hidden")));
        QVERIFY(!widget->property("plainText").toString().contains(QLatin1String("hidden")));
        const auto* line = qobject_cast<const QLineEdit*>(widget);
        QVERIFY(!(line ? line->displayText() : widget->property("text").toString())
                     .contains(QLatin1String("hidden")));
    }
}

void TestRepoEditorConfig::keepsOtherOptionsAsTyped()
{
    open();
    clear(other());
    QTest::keyClicks(other(), QStringLiteral("cost=1"));
    QTest::keyClick(other(), Qt::Key_Return);
    QTest::keyClicks(other(), QStringLiteral("gpgkey=x"));
    press(QStringLiteral("OK"));
    QCOMPARE(entry.other, QStringLiteral("cost=1\ngpgkey=x"));
}

QTEST_MAIN(TestRepoEditorConfig)
#include "tst_RepoEditorConfig.moc"
