// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Colors.h"

#include <QColor>
#include <QCoreApplication>
#include <QTest>
#include <QTranslator>

class TestColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areTheAgreedOnes_data()
    {
        QTest::addColumn<QString>("color");
        QTest::addColumn<QString>("name");
        QTest::newRow("action") << Colors::action() << "blue";
        QTest::newRow("error") << Colors::error() << "red";
        QTest::newRow("errorDisabled") << Colors::errorDisabled() << "#ffa9b8";
        QTest::newRow("warning") << Colors::warning() << "darkorange";
        QTest::newRow("minor") << Colors::minor() << "#8b5a2b";
        QTest::newRow("minorDisabled") << Colors::minorDisabled() << "#ffbd94";
        QTest::newRow("ok") << Colors::ok() << "green";
        QTest::newRow("requiredBg") << Colors::requiredBg() << "#fffacd";
        QTest::newRow("errorBg") << Colors::errorBg() << "#ff6060";
        QTest::newRow("warningBg") << Colors::warningBg() << "yellow";
        QTest::newRow("okBg") << Colors::okBg() << "lightgreen";
    }

    void areTheAgreedOnes()
    {
        QFETCH(QString, color);
        QFETCH(QString, name);
        QCOMPARE(color, name);
        QVERIFY(QColor::isValidColor(color));
    }

    void requiredFieldsStandOutUnlessDisabled()
    {
        const QPalette before(Qt::gray);
        const QPalette after = Colors::makeRequired(before);
        QCOMPARE(after.color(QPalette::Active, QPalette::Base), QColor(0xff, 0xfa, 0xcd));
        QCOMPARE(after.color(QPalette::Inactive, QPalette::Base), QColor(0xff, 0xfa, 0xcd));
        QCOMPARE(after.color(QPalette::Disabled, QPalette::Base),
                 before.color(QPalette::Disabled, QPalette::Base));
        QCOMPARE(after.color(QPalette::Window), before.color(QPalette::Window));
    }

    /// A dark theme writes in light letters, which a light field would swallow.
    void requiredFieldsAreReadableInADarkTheme()
    {
        QPalette dark(QColor(49, 54, 59));
        dark.setColor(QPalette::Base, QColor(35, 38, 41));
        dark.setColor(QPalette::Text, QColor(239, 240, 241));
        const QPalette after = Colors::makeRequired(dark);
        QCOMPARE(after.color(QPalette::Active, QPalette::Text), QColor(Qt::black));
        QCOMPARE(after.color(QPalette::Inactive, QPalette::Text), QColor(Qt::black));
        QCOMPARE(after.color(QPalette::Disabled, QPalette::Text),
                 dark.color(QPalette::Disabled, QPalette::Text));

        QPalette blue(Qt::lightGray);
        blue.setColor(QPalette::Text, Qt::darkBlue);
        QCOMPARE(Colors::makeRequired(blue).color(QPalette::Text), QColor(Qt::darkBlue));
    }

    void textIsLightenedOnDarkBackgroundsOnly_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString& name :
             {Colors::action(), Colors::error(), Colors::warning(), Colors::minor(), Colors::ok()})
            QTest::newRow(qPrintable(name)) << name;
    }

    void textIsLightenedOnDarkBackgroundsOnly()
    {
        QFETCH(QString, name);
        const QColor color(name);
        QCOMPARE(Colors::readable(color, Qt::white), color);
        QCOMPARE(Colors::readable(color, QColor("#e7e7e7")), color);
        const QColor dark(35, 38, 41);
        const QColor shown = Colors::readable(color, dark);
        QVERIFY2(qGray(shown.rgb()) >= qGray(dark.rgb()) + 45, qPrintable(shown.name()));
        QVERIFY2(qAbs(shown.hslHue() - color.hslHue()) <= 3, "still the same colour");
        QCOMPARE(Colors::readable(shown, dark), shown);
    }

    void labelsHaveABackgroundInAllGroupsAndBlackText()
    {
        const QPalette before(Qt::gray);
        const std::pair<QPalette, QString> made[] = {
            {Colors::makeError(before), Colors::errorBg()},
            {Colors::makeWarning(before), Colors::warningBg()},
            {Colors::makeOK(before), Colors::okBg()},
        };
        for (const auto& [palette, name] : made) {
            QVERIFY(qGray(QColor(name).rgb()) >= 124);
            for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
                QCOMPARE(palette.color(group, QPalette::Window), QColor(name));
                QCOMPARE(palette.color(group, QPalette::WindowText), QColor(Qt::black));
            }
        }
    }

    void aDarkerBackgroundGetsWhiteText_data()
    {
        QTest::addColumn<QString>("background");
        QTest::addColumn<QColor>("text");
        QTest::newRow("just too dark") << "#7b7b7b" << QColor(Qt::white);
        QTest::newRow("just light enough") << "#7c7c7c" << QColor(Qt::black);
    }

    void aDarkerBackgroundGetsWhiteText()
    {
        // A translation may give other colours.
        class Translator : public QTranslator
        {
        public:
            QString translate(const char* context, const char* text, const char*,
                              int) const override
            {
                const bool mine = !qstrcmp(context, "Colors") && !qstrcmp(text, "#ff6060");
                return mine ? background : QString();
            }
            bool isEmpty() const override { return false; }
            QString background;
        };
        QFETCH(QString, background);
        QFETCH(QColor, text);
        Translator translator;
        translator.background = background;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        QCOMPARE(Colors::makeError(QPalette()).color(QPalette::WindowText), text);
    }
};

QTEST_MAIN(TestColors)
#include "tst_Colors.moc"
