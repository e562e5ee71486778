// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Share.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestShare : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_saved = qgetenv("VOKSHARE"); }
    void cleanup() { qputenv("VOKSHARE", m_saved); }

    void isTheInstalledDirectoryWithoutTheVariable()
    {
        qunsetenv("VOKSHARE");
        QCOMPARE(Share::absolute("icons/a.png"), QString("/usr/share/vok/icons/a.png"));
    }

    void followsTheVariableAtEachCall()
    {
        qputenv("VOKSHARE", "/one");
        QCOMPARE(Share::absolute("a"), QString("/one/a"));
        qputenv("VOKSHARE", "/two");
        QCOMPARE(Share::absolute("a"), QString("/two/a"));
    }

    void addsASlashEvenWhereTheVariableEndsInOne()
    {
        qputenv("VOKSHARE", "/one/");
        QCOMPARE(Share::absolute("a"), QString("/one//a"));
    }

    void countsAnEmptyVariableAsSet()
    {
        qputenv("VOKSHARE", "");
        QCOMPARE(Share::absolute("a"), QString("/a"));
    }

    void takesPercentSignsAsTheyAre()
    {
        qputenv("VOKSHARE", "/100%2");
        QCOMPARE(Share::absolute("%1"), QString("/100%2/%1"));
    }

    void settlesOnAnotherDirectoryThatHoldsTheScript()
    {
        QTemporaryDir prefix;
        QVERIFY(QDir(prefix.path()).mkpath(QStringLiteral("share/vok/python")));
        qunsetenv("VOKSHARE");
        Share::settle(prefix.filePath("bin/../share/vok"));
        QCOMPARE(Share::absolute("a"), QString("/usr/share/vok/a"));
        QFile script(prefix.filePath("share/vok/python/YumIO.py"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        Share::settle(prefix.filePath("bin/../share/vok"));
        QCOMPARE(Share::absolute("a"), prefix.filePath("share/vok/a"));
    }

    void settlesOnNothingWhereTheVariableIsSet()
    {
        QTemporaryDir prefix;
        QVERIFY(QDir(prefix.path()).mkpath(QStringLiteral("python")));
        QFile script(prefix.filePath("python/YumIO.py"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        for (const char* value : {"/one", ""}) {
            qputenv("VOKSHARE", value);
            Share::settle(prefix.path());
            QCOMPARE(qgetenv("VOKSHARE"), QByteArray(value));
        }
    }

    void leavesTheVariableAloneForTheUsualDirectory()
    {
        qunsetenv("VOKSHARE");
        Share::settle(QStringLiteral("/usr/bin/../share/vok"));
        QVERIFY(!qEnvironmentVariableIsSet("VOKSHARE"));
    }

private:
    QByteArray m_saved;
};

QTEST_GUILESS_MAIN(TestShare)
#include "tst_Share.moc"
