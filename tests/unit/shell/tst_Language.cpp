// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "shell/Language.h"
#include "support/ProcessPerTest.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QLibraryInfo>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTranslator>
#include <QtTest>

/// Which language the window speaks.
class TestLanguage : public QObject
{
    Q_OBJECT

private:
    static void setLocale(const char* locale, const char* languages)
    {
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"})
            qunsetenv(name);
        qputenv("LC_ALL", locale);
        if (languages)
            qputenv("LANGUAGE", languages);
    }

    static QStringList menus(WindowLife& life)
    {
        QStringList titles;
        const auto actions = life.window().menuBar()->actions();
        for (const QAction* action : actions)
            titles << action->text();
        return titles;
    }

private Q_SLOTS:
    void cleanup() { qDeleteAll(qApp->findChildren<QTranslator*>()); }

    void theEnvironmentNamesTheLanguages_data()
    {
        QTest::addColumn<QByteArray>("locale");
        QTest::addColumn<QByteArray>("languages");
        QTest::addColumn<QStringList>("wanted");
        using Names = QStringList;
        const auto row = [](const char* name, const char* locale, const char* languages,
                            const Names& wanted) {
            QTest::newRow(name) << QByteArray(locale) << QByteArray(languages) << wanted;
        };
        row("a country's", "de_AT.UTF-8", "", {"de_AT", "de"});
        row("a variant", "de_DE@euro", "", {"de_DE", "de"});
        row("a language alone", "de", "", {"de"});
        row("C", "C", "", {});
        row("C with an encoding", "C.UTF-8", "", {});
        row("POSIX", "POSIX", "", {});
        row("none", "", "", {});
        row("English", "en_GB.UTF-8", "", {});
        row("the list comes before the locale", "en_US.UTF-8", "de:fr", {"de", "fr"});
        row("the list counts for nothing in C", "C", "de", {});
        row("nothing is wanted behind English", "de_DE.UTF-8", "en_US:de", {});
        row("a language before English", "de_DE.UTF-8", "fr:en:de", {"fr"});
        row("no way out of the folder", "../../etc/de", "", {});
    }
    void theEnvironmentNamesTheLanguages()
    {
        QFETCH(QByteArray, locale);
        QFETCH(QByteArray, languages);
        QFETCH(QStringList, wanted);
        setLocale(locale.constData(), languages.constData());
        QCOMPARE(Language::wanted(), wanted);
    }

    void theLocaleComesFromTheFirstVariableThatIsSet()
    {
        setLocale("", nullptr);
        qputenv("LANG", "fr_FR.UTF-8");
        QCOMPARE(Language::wanted(), (QStringList{"fr_FR", "fr"}));
        qputenv("LC_MESSAGES", "de_DE.UTF-8");
        QCOMPARE(Language::wanted(), (QStringList{"de_DE", "de"}));
        qputenv("LC_ALL", "C");
        QCOMPARE(Language::wanted(), QStringList());
    }

    void aWindowSpeaksTheLanguageOfTheLocale_data()
    {
        const QStringList german{"&Programm", "&Fenster", "Paket&quellen", "&Cache", "&Hilfe"};
        const QStringList english{"&Program", "&Windows", "&Repositories", "&Cache", "&Help"};
        QTest::addColumn<QByteArray>("locale");
        QTest::addColumn<QStringList>("titles");
        QTest::newRow("German") << QByteArray("de_DE.UTF-8") << german;
        QTest::newRow("German of another country") << QByteArray("de_CH.UTF-8") << german;
        QTest::newRow("C") << QByteArray("C.UTF-8") << english;
        QTest::newRow("English") << QByteArray("en_US.UTF-8") << english;
        QTest::newRow("one that nobody knows") << QByteArray("tlh_XX.UTF-8") << english;
    }
    void aWindowSpeaksTheLanguageOfTheLocale()
    {
#ifndef VOK_TRANSLATIONS
        QSKIP("built without translations");
#else
        QFETCH(QByteArray, locale);
        QFETCH(QStringList, titles);
        WindowLife life;
        QVERIFY(QFile::link(QStringLiteral(VOK_TRANSLATIONS), life.sharePath("translations")));
        setLocale(locale.constData(), nullptr);
        Language::load(*qApp);
        QCOMPARE(menus(life), titles);
#endif
    }

    void qtsOwnButtonsSpeakIt()
    {
#ifndef VOK_TRANSLATIONS
        QSKIP("built without translations");
#else
        if (!QFile::exists(QLibraryInfo::location(QLibraryInfo::TranslationsPath) +
                           "/qtbase_de.qm"))
            QSKIP("Qt's own translations aren't installed");
        WindowLife life;
        QVERIFY(QFile::link(QStringLiteral(VOK_TRANSLATIONS), life.sharePath("translations")));
        setLocale("de_DE.UTF-8", nullptr);
        Language::load(*qApp);
        const QDialogButtonBox box(QDialogButtonBox::Cancel);
        QCOMPARE(box.button(QDialogButtonBox::Cancel)->text().remove('&'),
                 QStringLiteral("Abbrechen"));
#endif
    }

    void withoutTheTranslationQtsOwnStaysAway()
    {
        WindowLife life;
        setLocale("de_DE.UTF-8", nullptr);
        Language::load(*qApp);
        const QDialogButtonBox box(QDialogButtonBox::Cancel);
        QCOMPARE(box.button(QDialogButtonBox::Cancel)->text().remove('&'),
                 QStringLiteral("Cancel"));
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestLanguage tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Language.moc"
