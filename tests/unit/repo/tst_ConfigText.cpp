// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/ConfigText.h"

#include <QTest>

namespace
{

/// As the reader gives the bytes of a file.
QString read(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

} // namespace

/// Bytes of files as texts for the eye, and texts that the user types as bytes.
class TestConfigText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsUtf8AsWhatItSays_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("ASCII") << QByteArray("Base") << QStringLiteral("Base");
        QTest::newRow("letters") << QByteArray("Gr\xc3\xbc\xc3\x9f"
                                               "e \xe2\x82\xac")
                                 << QStringLiteral("Gr\u00fc\u00dfe \u20ac");
        QTest::newRow("beyond the first plane")
            << QByteArray("\xf0\x9f\x93\xa6") << QString::fromUtf8("\xf0\x9f\x93\xa6");
        QTest::newRow("a null byte") << QByteArray("a\0\xc3\xbc", 4)
                                     << QString(QStringLiteral("a") + QChar(0) + QChar(0xfc));
        QTest::newRow("nothing") << QByteArray() << QString();
    }
    void showsUtf8AsWhatItSays()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(ConfigText::toShown(read(bytes)), text);
        QCOMPARE(ConfigText::toStored(text), read(bytes));
    }

    void showsACharacterForEachByteOfWhatIsNoUtf8_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("Latin-1") << QByteArray("Gr\xfc\xdf"
                                               "e");
        QTest::newRow("both in one") << QByteArray("\xfc and \xc3\xbc");
        QTest::newRow("cut") << QByteArray("cut \xe2\x82");
        QTest::newRow("overlong") << QByteArray("\xc0\xaf");
        QTest::newRow("a surrogate") << QByteArray("\xed\xa0\x80");
        QTest::newRow("a mark of byte order") << QByteArray("\xef\xbb\xbfname");
    }
    void showsACharacterForEachByteOfWhatIsNoUtf8()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(ConfigText::toShown(read(bytes)), read(bytes));
    }

    void givesBackWhateverWasTyped_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("letters") << QStringLiteral("Gr\u00fc\u00dfe \u20ac");
        // Each byte of it a character, which would be UTF-8 were they bytes again.
        QTest::newRow("looks like UTF-8") << QStringLiteral("\u00c3\u00bc");
        QTest::newRow("a mark of byte order within") << QStringLiteral("a\ufeff");
        QTest::newRow("a blank that doesn't break") << QStringLiteral("\u00a0");
    }
    void givesBackWhateverWasTyped()
    {
        QFETCH(QString, text);
        QCOMPARE(ConfigText::toShown(ConfigText::toStored(text)), text);
    }

    void leavesTextAloneThatIsNoneOfAFile()
    {
        const QString text = QStringLiteral("\u20ac");
        QCOMPARE(ConfigText::toShown(text), text);
    }

    void keepsWhatTheUserLeavesAlone()
    {
        // The field made one line end of two characters.
        const ConfigText::InField text(read("cost=\xfc\r\n"), QStringLiteral("cost=\u00fc\n"));
        QCOMPARE(text.stored(QStringLiteral("cost=\u00fc\n")), read("cost=\xfc\r\n"));
        QCOMPARE(text.stored(QStringLiteral("cost=\u00fc")), read("cost=\xc3\xbc"));
        QCOMPARE(ConfigText::InField().stored(QStringLiteral("\u00fc")), read("\xc3\xbc"));
    }

    void encodesOnlyUrlsThatAreNoUtf8()
    {
        QCOMPARE(ConfigText::encodedUnlessUtf8(read("http://h/\xc3\xbc%fc")),
                 read("http://h/\xc3\xbc%fc"));
        QCOMPARE(ConfigText::encodedUnlessUtf8(read("http://h/\xfc%/\x80")),
                 QStringLiteral("http://h/%fc%/%80"));
    }
};

QTEST_APPLESS_MAIN(TestConfigText)
#include "tst_ConfigText.moc"
