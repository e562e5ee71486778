// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/DefaultStyle.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QtTest>

#include <initializer_list>
#include <vector>

namespace
{

const QString wanted = QStringLiteral("plastique");

DefaultStyle made(std::initializer_list<const char*> arguments)
{
    std::vector<const char*> argv{"vok"};
    argv.insert(argv.end(), arguments);
    return DefaultStyle(static_cast<int>(argv.size()), argv.data());
}

} // namespace

class TestDefaultStyle : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir settings;

    void writeSetting(const QString& key, const QString& value)
    {
        QSettings file(QSettings::UserScope, QStringLiteral("Trolltech"), QString());
        file.setValue(key, value);
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(settings.isValid());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
        QSettings(QSettings::UserScope, QStringLiteral("Trolltech"), QString()).clear();
        QApplication::setStyle(QStringLiteral("windows"));
    }

    void withoutAChoiceTheStyleAndItsPaletteAreSet()
    {
        if (!QStyleFactory::keys().contains(wanted, Qt::CaseInsensitive))
            QSKIP("no such style on this machine");
        made({"--log"}).set(*qApp, wanted);
        QCOMPARE(QApplication::style()->objectName(), wanted);
        QCOMPARE(QApplication::palette(), QApplication::style()->standardPalette());
    }

    void aMissingStyleFallsBackToQtsOwn()
    {
        made({}).set(*qApp, QStringLiteral("no such style"));
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
        QCOMPARE(QApplication::palette(), QApplication::style()->standardPalette());
    }

    void aStyleOnTheCommandLineWins_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::newRow("with its name") << QByteArray("-style=windows");
        QTest::newRow("name to follow") << QByteArray("-style");
        QTest::newRow("two dashes") << QByteArray("--style=windows");
        QTest::newRow("two dashes, name to follow") << QByteArray("--style");
    }

    void aStyleOnTheCommandLineWins()
    {
        QFETCH(QByteArray, argument);
        const QStyle* before = QApplication::style();
        made({"--log", argument.constData(), "windows"}).set(*qApp, wanted);
        QCOMPARE(QApplication::style(), before);
    }

    void anArgumentThatOnlyBeginsLikeItIsNoChoice_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::newRow("longer word") << QByteArray("-styles");
        QTest::newRow("state") << QByteArray("-state");
        QTest::newRow("no dash") << QByteArray("style=windows");
    }

    void anArgumentThatOnlyBeginsLikeItIsNoChoice()
    {
        QFETCH(QByteArray, argument);
        made({argument.constData()}).set(*qApp, QStringLiteral("fusion"));
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
    }

    void theProgramsOwnNameIsNoChoice()
    {
        const char* argv[] = {"-style=windows"};
        DefaultStyle(1, argv).set(*qApp, QStringLiteral("fusion"));
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
    }

    void aStyleKeyInQtsSettingsWins()
    {
        writeSetting(QStringLiteral("Qt/style"), QStringLiteral("windows"));
        const QStyle* before = QApplication::style();
        made({}).set(*qApp, wanted);
        QCOMPARE(QApplication::style(), before);
    }

    void otherKeysOfQtsSettingsAreNoChoice()
    {
        writeSetting(QStringLiteral("Qt/font"), QStringLiteral("Sans,10"));
        writeSetting(QStringLiteral("style"), QStringLiteral("windows"));
        made({}).set(*qApp, QStringLiteral("fusion"));
        QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
    }
};

QTEST_MAIN(TestDefaultStyle)
#include "tst_DefaultStyle.moc"
