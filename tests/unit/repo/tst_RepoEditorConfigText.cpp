// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorModel.h"
#include "unit/repo/ConfigDialogTest.h"

#include <QAccessible>
#include <QFile>

namespace
{

const QString repoFile = QStringLiteral("/etc/yum.repos.d/base.repo");

} // namespace

/// Texts that aren't ASCII, or no single line, between a file and the form.
class TestRepoEditorConfigText : public ConfigDialogTest
{
    Q_OBJECT

private:
    /// Keys for letters that no key of the test library has.
    static void enter(QWidget* into, const QString& text)
    {
        into->setFocus();
        QTest::keyClick(into, Qt::Key_End, Qt::ControlModifier);
        for (const QChar c : text)
            QTest::sendKeyEvent(QTest::Click, into, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
    static void paste(QWidget* into, const QString& text)
    {
        QApplication::clipboard()->setText(text);
        into->setFocus();
        QTest::keyClick(into, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(into, Qt::Key_V, Qt::ControlModifier);
    }
    QByteArray content(const QString& path = repoFile) const
    {
        QFile file(tree->path(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file";
    }
    /// Reads the file, has `change` done to its only repository, and writes it again.
    template<class Change> void edit(const QByteArray& text, Change change)
    {
        tree->write(repoFile, text);
        QVERIFY(conf->read(nullptr));
        QCOMPARE(conf->entries.size(), 1);
        dialog->setEntry(&conf->entries.first());
        dialog->open();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        change();
        press(QStringLiteral("OK"));
        QVERIFY(!dialog->isVisible());
        QVERIFY(conf->write(nullptr));
    }

private Q_SLOTS:
    void whatIsTypedIsWrittenAsUtf8AndReadAgain()
    {
        const QString text = QStringLiteral("Gr\u00fc\u00dfe \u20ac \u65e5");
        edit("[base]\nbaseurl=http://h/x\nenabled=1\n", [&] {
            enter(name(), text);
            enter(urls(), QStringLiteral("\u00e4"));
            enter(mirror(), QStringLiteral("http://h/\u20ac"));
            enter(other(), QStringLiteral("# \u00e0"));
        });
        QCOMPARE(content(), QByteArray("[base]\nname=Grüße € 日\nbaseurl=http://h/xä\n"
                                       "mirrorlist=http://h/€\nenabled=1\n# à"));
        QVERIFY(conf->read(nullptr));
        dialog->setEntry(&conf->entries.first());
        QCOMPARE(name()->text(), text);
        QCOMPARE(urls()->realPlainText(), QStringLiteral("http://h/x\u00e4"));
        QCOMPARE(mirror()->realText(), QStringLiteral("http://h/\u20ac"));
        QCOMPARE(other()->toPlainText(), QStringLiteral("# \u00e0\n"));
    }

    void utf8IsEditedAsTheTextThatItIs()
    {
        edit("[base]\nname=Grüße\nenabled=1\n# été\n", [&] {
            QCOMPARE(name()->text(), QStringLiteral("Gr\u00fc\u00dfe"));
            QCOMPARE(other()->toPlainText(), QStringLiteral("# \u00e9t\u00e9\n"));
            name()->setFocus();
            QTest::keyClick(name(), Qt::Key_End);
            QTest::keyClick(name(), Qt::Key_Backspace);
            QTest::keyClick(name(), Qt::Key_Backspace);
        });
        QCOMPARE(content(), QByteArray("[base]\nname=Grü\nenabled=1\n# été\n"));
    }

    void whatIsLeftAloneKeepsItsBytes_data()
    {
        QTest::addColumn<QByteArray>("rest");
        QTest::newRow("UTF-8") << QByteArray("name=Grüße €\nbaseurl=http://h/日\n# à\n");
        QTest::newRow("Latin-1") << QByteArray("name=Gr\xfc\xdf\nbaseurl=http://h/\xe9\n# \xa0\n");
        QTest::newRow("both") << QByteArray("name=\xfc\xc3\xbc\nmirrorlist=http://\xff\xc3\xbc\n");
        QTest::newRow("ends of lines of another system")
            << QByteArray("name=Base\r\nbaseurl=http://h/x\r\nproxy=_none_\r\n");
        QTest::newRow("further lines") << QByteArray("name=Base\n  and more\n"
                                                     "mirrorlist=http://h/\n  http://g/\n");
        QTest::newRow("blanks and controls")
            << QByteArray("name=a\tb\x01 \nbaseurl=http://h/\xc2\xa0y\n# \xe2\x80\xa8\x0c.\n");
        QTest::newRow("more than a line has room for")
            << QByteArray("name=" + QByteArray(40000, 'n') + "\nmirrorlist=http://" +
                          QByteArray(40000, 'h') + "\n");
    }
    void whatIsLeftAloneKeepsItsBytes()
    {
        QFETCH(QByteArray, rest);
        edit("[base]\n" + rest, [&] {
            clear(id());
            type(id(), QStringLiteral("new"));
        });
        QCOMPARE(content(), "[new]\n" + rest);
    }

    void aTextThatIsNoUtf8BecomesSoWhenItIsChanged()
    {
        edit("[base]\nname=Gr\xfc\xdf\n", [&] { type(name(), QStringLiteral("e")); });
        QCOMPARE(content(), QByteArray("[base]\nname=Grüße\n"));
    }

    void anIdentifierNamesItsFileAsItWasTyped()
    {
        edit("[base]\nname=Base\n", [&] {
            clear(id());
            enter(id(), QStringLiteral("gr\u00f6\u20ac"));
            clear(file());
        });
        QCOMPARE(content(QStringLiteral("/etc/yum.repos.d/gr\u00f6\u20ac.repo")),
                 QByteArray("[grö€]\nname=Base\n"));
    }

    void theListShowsNamesAsTheyWereTyped()
    {
        tree->write(repoFile, "[gr\xc3\xb6]\nname=Gr\xc3\xbc\xc3\x9f"
                              "e \xe2\x82\xac\n");
        QVERIFY(conf->read(nullptr));
        const RepoEditor::Model model(nullptr, conf.get(), nullptr);
        QCOMPARE(model.index(0, RepoEditor::ColumnId).data().toString(),
                 QStringLiteral("gr\u00f6"));
        QCOMPARE(model.index(0, RepoEditor::ColumnName).data().toString(),
                 QStringLiteral("Gr\u00fc\u00dfe \u20ac"));
    }

    void credentialsAreWrittenAsUtf8()
    {
        edit("[base]\nbaseurl=http://h/vantry?u=&p=&path=/x\n", [&] {
            enter(authName(), QStringLiteral("J\u00fcrg"));
            enter(authPassword(), QStringLiteral("\u20ac"));
            QCOMPARE(urls()->toPlainText(),
                     QStringLiteral("http://h/vantry?u=J\u00fcrg&p=%1&path=/x").arg(mask(1)));
        });
        QCOMPARE(content(), QByteArray("[base]\nbaseurl=http://h/vantry?u=Jürg&p=€&path=/x\n"));
        QVERIFY(conf->read(nullptr));
        dialog->setEntry(&conf->entries.first());
        QCOMPARE(authName()->text(), QStringLiteral("J\u00fcrg"));
        QCOMPARE(authPassword()->text(), QStringLiteral("\u20ac"));
    }

    void aNewNameKeepsThePassword_data()
    {
        QTest::addColumn<QByteArray>("password");
        QTest::addColumn<QByteArray>("kept");
        QTest::newRow("UTF-8") << QByteArray("%c3%bc") << QByteArray("ü");
        QTest::newRow("as it is") << QByteArray("ü") << QByteArray("ü");
        // Raw, these bytes would keep the package manager from reading any repository.
        QTest::newRow("Latin-1") << QByteArray("%fc%41") << QByteArray("%fcA");
    }
    void aNewNameKeepsThePassword()
    {
        QFETCH(QByteArray, password);
        QFETCH(QByteArray, kept);
        edit("[base]\nbaseurl=http://h/vantry?u=me&p=" + password + "&path=/x\n", [&] {
            enter(authName(), QStringLiteral("2"));
            enter(authName(), QStringLiteral("3"));
        });
        QCOMPARE(content(), "[base]\nbaseurl=http://h/vantry?u=me23&p=" + kept + "&path=/x\n");
    }

    void pastedEndsOfLinesDontMakeLinesOfTheFile()
    {
        edit("[old]\n", [&] {
            paste(id(), QStringLiteral("base\n"));
            paste(name(), QStringLiteral("Base\r\n[evil]\nenabled=1\n"));
            paste(mirror(), QStringLiteral("\nhttp://h/list\n"));
            paste(file(), tree->path(repoFile) + QLatin1Char('\n'));
        });
        QCOMPARE(content(),
                 QByteArray("[base]\nname=Base [evil] enabled=1\nmirrorlist=http://h/list\n"));
    }

    void twoPastedLinesAreTwoUrls()
    {
        edit("[base]\n", [&] { paste(urls(), QStringLiteral("http://h/\nhttp://g/")); });
        QCOMPARE(content(), QByteArray("[base]\nbaseurl=http://h/\n        http://g/\n"));
    }

    void tellsAssistiveToolsNoPassword()
    {
        entry.baseurl = vantryUrl;
        entry.mirrorlist = pathUrl;
        open();
        type(authPassword(), QStringLiteral("SECRET"));
        QTextCursor cursor = urls()->textCursor();
        cursor.setPosition(urls()->toPlainText().indexOf(mask(1)) + 1);
        urls()->setTextCursor(cursor);
        mirror()->setCursorPosition(mirror()->text().indexOf(mask(1)) + 1);
        for (QWidget* target : {static_cast<QWidget*>(urls()), static_cast<QWidget*>(mirror())}) {
            target->setFocus();
            QTest::keyClicks(target, QStringLiteral("MORE"));
        }
        const QString password = QStringLiteral("hMOREiddenSECRET");
        QCOMPARE(authPassword()->text(), password);
        QVERIFY(mirror()->realText().contains(password));
        int withMask = 0;
        for (QWidget* widget : QApplication::allWidgets()) {
            QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
            if (!interface)
                continue;
            QStringList texts;
            for (const QAccessible::Text kind :
                 {QAccessible::Name, QAccessible::Description, QAccessible::Value,
                  QAccessible::Help, QAccessible::Accelerator})
                texts << interface->text(kind);
            if (QAccessibleTextInterface* text = interface->textInterface())
                texts << text->text(0, text->characterCount());
            for (const QString& text : qAsConst(texts))
                QVERIFY2(!text.contains(QLatin1String("idden")) &&
                             !text.contains(QLatin1String("MORE")),
                         widget->metaObject()->className());
            withMask += texts.join(QString()).contains(mask(password.size()));
        }
        QVERIFY(withMask >= 2);
    }

    void assistiveToolsNameEachField()
    {
        open();
        const auto nameOf = [](QWidget* field) {
            return QAccessible::queryAccessibleInterface(field)->text(QAccessible::Name);
        };
        QCOMPARE(nameOf(urls()), QStringLiteral("URLs"));
        QCOMPARE(nameOf(mirror()), QStringLiteral("Mirror list URL"));
        QCOMPARE(nameOf(authName()), QStringLiteral("Name"));
        QCOMPARE(nameOf(authPassword()), QStringLiteral("Password"));
        // Whatever the keys of the URL.
        dialog->close();
        entry.baseurl = vantryUrl;
        open();
        QCOMPARE(nameOf(authPassword()), QStringLiteral("Password"));
    }
};

QTEST_MAIN(TestRepoEditorConfigText)
#include "tst_RepoEditorConfigText.moc"
