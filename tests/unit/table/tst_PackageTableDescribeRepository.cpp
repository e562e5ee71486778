// SPDX-License-Identifier: GPL-2.0-or-later
#include "DescribeTest.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QStyle>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace
{

const QString title = QStringLiteral("VOK Repository Description");

/// Stands for the browser: writes down what it is to open.
const char browser[] = "#!/bin/sh\nprintf '%s' \"$1\" > \"$0.new\" && mv \"$0.new\" \"$0.said\"\n";

} // namespace

/// "Details" of a row's repository.
class TestPackageTableDescribeRepository : public DescribeTest
{
    Q_OBJECT

private:
    static QString marks(int count)
    {
        const int mark = QApplication::style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter);
        return QString(count, QChar(static_cast<ushort>(mark)));
    }

    static Repo::Entry repository(const QString& baseurl, const QString& mirrorlist = QString())
    {
        Repo::Entry entry;
        entry.id = "base";
        entry.name = "The base";
        entry.baseurl = baseurl;
        entry.mirrorlist = mirrorlist;
        return entry;
    }

    /// Describes a package of the repository "base" and presses "Details", for `look` to look at.
    void showDetails(const QList<Repo::Entry>& entries, std::function<void(QWidget*)> look)
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"repoid", "base"}})}}});
        QVERIFY(contract->collect());
        conf = std::make_unique<YumConfIO>(QList<YumRepoEnabled>(), used);
        conf->entries = entries;
        expectDescription([&](QWidget* dialog) {
            driver->expect(title).text("base").act(look).press("Close");
            click(details(dialog));
        });
        describe("a");
    }

private Q_SLOTS:
    void urlsWithoutCredentialsAreShownAsTheyStand_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("plain") << "http://example.org/repos/$basearch/?a=b&c=d#e";
        QTest::newRow("several")
            << "http://example.org/1\nftp://example.org:8080/2%41\nfile:///srv/@x";
        QTest::newRow("almost") << "http://example.org/rhel/7/x86_64/os/\nhttp://h:80/a@b\n"
                                   "http://h/rhel/a=b/c/d=e\nhttp://h/vantry?user=me";
    }

    void urlsWithoutCredentialsAreShownAsTheyStand()
    {
        QFETCH(QString, url);
        showDetails({repository(url, url)}, [&](QWidget* dialog) {
            QCOMPARE(sections(dialog).first().join('|'),
                     "Name: The base|URLs: " + url + "|Mirror list URL: " + url);
        });
    }

    void whatIsEmptyHasNoRow()
    {
        showDetails({repository("http://example.org/")}, [](QWidget* dialog) {
            QCOMPARE(sections(dialog).first(),
                     QStringList({"Name: The base", "URLs: http://example.org/"}));
        });
        Repo::Entry entry = repository(QString(), "http://example.org/list");
        entry.name.clear();
        showDetails({entry}, [](QWidget* dialog) {
            QCOMPARE(sections(dialog).first(),
                     QStringList({"Mirror list URL: http://example.org/list"}));
        });
    }

    void passwordsAreMasked_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("shown");
        QTest::newRow("query") << "http://h/vantry?user=me&pass=secret&path=/x"
                               << "http://h/vantry?user=me&pass=" + marks(6) + "&path=/x";
        QTest::newRow("path") << "http://h/rhel/user=me/pass=secret/x"
                              << "http://h/rhel/user=me/pass=" + marks(6) + "/x";
        QTest::newRow("encoded") << "http://h/vantry?user=m%20e&pass=secr%26et&path=/x"
                                 << "http://h/vantry?user=m%20e&pass=" + marks(7) + "&path=/x";
        QTest::newRow("empty") << "http://h/vantry?user=&pass=&path=/x"
                               << "http://h/vantry?user=&pass=&path=/x";
        QTest::newRow("several") << "http://h/rhel/user=me/pass=secret/1\nhttp://h/2\n"
                                    "http://h/vantry?user=me&pass=secret&path=/3"
                                 << "http://h/rhel/user=me/pass=" + marks(6) +
                                        "/1\nhttp://h/2\nhttp://h/vantry?user=me&pass=" + marks(6) +
                                        "&path=/3";
        // Where the form's own functions find nothing.
        QTest::newRow("behind a broken form")
            << "http://h/vantry?\nhttp://h/rhel/user=me/pass=secret/x"
            << "http://h/vantry?\nhttp://h/rhel/user=me/pass=" + marks(6) + "/x";
        QTest::newRow("cut off") << "http://h/vantry?user=me&pass=secret"
                                 << "http://h/vantry?user=me&pass=" + marks(6);
        QTest::newRow("cut off path") << "http://h/rhel/user=me/pass=secret"
                                      << "http://h/rhel/user=me/pass=" + marks(6);
        QTest::newRow("with a blank") << "http://h/vantry?user=me&pass=sec ret&path=/x"
                                      << "http://h/vantry?user=me&pass=" + marks(7) + "&path=/x";
        QTest::newRow("with a blank in a path")
            << "http://h/rhel/user=me/pass=sec ret/x=y"
            << "http://h/rhel/user=me/pass=" + marks(7) + "/x=" + marks(1);
        QTest::newRow("more parts")
            << "http://h/vantry?user=me&x=y&pass=secret&path=/a=b&c=d"
            << "http://h/vantry?user=me&x=" + marks(1) + "&pass=" + marks(6) + "&path=/a=b&c=d";
        QTest::newRow("a name without value")
            << "http://h/vantry?user&pass=secret&path=/x"
            << "http://h/vantry?user&pass=" + marks(6) + "&path=/x";
        QTest::newRow("on one line")
            << "http://h/vantry?user=me&pass=secret http://h/rhel/user=me/pass=secret file:///x=y"
            << "http://h/vantry?user=me&pass=" + marks(6) +
                   " http://h/rhel/user=me/pass=" + marks(6) + " file:///x=y";
        QTest::newRow("of the host and of a form")
            << "http://me:secret@h/vantry?user=me&pass=secret&path=/x"
            << "http://me:" + marks(6) + "@h/vantry?user=me&pass=" + marks(6) + "&path=/x";
        QTest::newRow("of the host") << "http://me:secret@h:80/x"
                                     << "http://me:" + marks(6) + "@h:80/x";
    }

    void passwordsAreMasked()
    {
        QFETCH(QString, url);
        QFETCH(QString, shown);
        showDetails({repository(url, url)}, [&](QWidget* dialog) {
            QCOMPARE(sections(dialog).first().join('|'),
                     "Name: The base|URLs: " + shown + "|Mirror list URL: " + shown);
            for (const QWidget* widget : dialog->findChildren<QWidget*>())
                QVERIFY(!widget->toolTip().contains("secret"));
        });
        QVERIFY(!contract->logTexts().join('\n').contains("secret"));
        QCOMPARE(conf->entries.first().baseurl, url);
    }

    void theFirstEntryOfTheIdIsShown()
    {
        Repo::Entry other = repository("http://other/");
        other.id = "base2";
        showDetails({other, repository("http://first/"), repository("http://second/")},
                    [](QWidget* dialog) {
                        QVERIFY(sections(dialog).first().contains("URLs: http://first/"));
                    });
    }

    void aRepositoryThatIsGoneIsToldOf_data()
    {
        QTest::addColumn<bool>("configured");
        QTest::newRow("no such repository") << true;
        QTest::newRow("no configuration") << false;
    }

    void aRepositoryThatIsGoneIsToldOf()
    {
        QFETCH(bool, configured);
        const QString id = "<b>gone</b>";
        contract->play({{"available", QJsonArray{Contract::package("a", {{"repoid", id}})}}});
        QVERIFY(contract->collect());
        conf = std::make_unique<YumConfIO>(QList<YumRepoEnabled>(), used);
        conf->entries = {repository("http://example.org/")};
        expectDescription([&](QWidget* dialog) {
            driver->expect("Error")
                .text("Repository \"" + id + "\" is not in the configuration")
                .act([](QWidget* box) {
                    QCOMPARE(qobject_cast<QMessageBox*>(box)->textFormat(), Qt::PlainText);
                })
                .press("OK");
            click(details(dialog));
            QVERIFY(close(dialog)->isEnabled());
        });
        if (!configured)
            conf.reset();
        describe("a");
    }

    void textsAreNoMarkupAndCanBeSelected()
    {
        Repo::Entry entry = repository("<u>url</u>");
        entry.name = "<b>name</b>";
        showDetails({entry}, [](QWidget* dialog) {
            for (const char* text : {"base", "<b>name</b>", "<u>url</u>"}) {
                const auto labels = dialog->findChildren<QLabel*>();
                const auto label = std::find_if(labels.begin(), labels.end(), [&](QLabel* label) {
                    return label->text() == text;
                });
                QVERIFY(label != labels.end());
                QCOMPARE((*label)->textFormat(), Qt::PlainText);
                QVERIFY((*label)->textInteractionFlags() & Qt::TextSelectableByMouse);
            }
        });
    }

    void longUrlsFitTheScreen()
    {
        const QString url = "http://example.org/" + QString("folder/").repeated(100);
        showDetails({repository(QStringList(QVector<QString>(100, url).toList()).join('\n'))},
                    [](QWidget* dialog) {
                        const QSize screen = dialog->screen()->availableSize();
                        QVERIFY(dialog->width() <= screen.width());
                        QVERIFY(dialog->height() <= screen.height());
                    });
    }

    void theFirstUrlIsBrowsed()
    {
        QTemporaryDir share;
        QFile script(share.filePath("webbrowser"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        QVERIFY(script.write(browser) > 0);
        QVERIFY(script.setPermissions(script.permissions() | QFile::ExeOwner | QFile::ExeUser));
        script.close();
        const QByteArray oldShare = qgetenv("VOKSHARE");
        showDetails({repository("http://h/vantry?user=me&pass=secret&path=/x\nhttp://h/2")},
                    [&](QWidget* dialog) {
                        QPushButton* button = nullptr;
                        for (QPushButton* candidate : dialog->findChildren<QPushButton*>()) {
                            if (candidate->text() == "Browse Repository")
                                button = candidate;
                        }
                        QVERIFY(button);
                        QCOMPARE(button->toolTip(),
                                 QString("Browse the first URL specified for the selected "
                                         "repository using an external web browser"));
                        qputenv("VOKSHARE", QFile::encodeName(share.path()));
                        click(button);
                        qputenv("VOKSHARE", oldShare);
                        QVERIFY(dialog->isVisible());
                    });
        QFile said(share.filePath("webbrowser.said"));
        QTRY_VERIFY(said.exists());
        QVERIFY(said.open(QIODevice::ReadOnly));
        // The browser is the one that gets the password.
        QCOMPARE(said.readAll(), QByteArray("http://h/vantry?user=me&pass=secret&path=/x"));
    }

    void itIsThrownAwayWithTheDescription()
    {
        QPointer<QWidget> shown;
        showDetails({repository("http://example.org/")}, [&](QWidget* dialog) { shown = dialog; });
        QVERIFY(!shown);
    }

    void itCanBeShownAgain()
    {
        contract->play({{"available", QJsonArray{Contract::package("a", {{"repoid", "base"}})}}});
        QVERIFY(contract->collect());
        conf = std::make_unique<YumConfIO>(QList<YumRepoEnabled>(), used);
        conf->entries = {repository("http://example.org/")};
        expectDescription([&](QWidget* dialog) {
            QPointer<QWidget> first;
            for (int i = 0; i < 2; ++i) {
                driver->expect(title)
                    .act([&](QWidget* shown) {
                        QVERIFY(!first || first == shown);
                        first = shown;
                        QCOMPARE(sections(shown).size(), 1);
                    })
                    .press("Close");
                click(details(dialog));
                QCOMPARE(sections(first).size(), 0);
            }
        });
        describe("a");
    }
};

QTEST_MAIN(TestPackageTableDescribeRepository)
#include "tst_PackageTableDescribeRepository.moc"
