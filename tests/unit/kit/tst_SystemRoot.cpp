// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/SystemRoot.h"

#include <QTest>

class TestSystemRoot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("VOKROOT"); }

    void leavesThePathAloneWithoutARoot()
    {
        qunsetenv("VOKROOT");
        QCOMPARE(SystemRoot::path("/etc/a"), QString("/etc/a"));
        qputenv("VOKROOT", "");
        QCOMPARE(SystemRoot::path("/etc/a"), QString("/etc/a"));
    }

    void putsThePathUnderTheRoot()
    {
        qputenv("VOKROOT", "/sandbox");
        QCOMPARE(SystemRoot::path("/etc/a"), QString("/sandbox/etc/a"));
    }

    void joinsWithOneSlash()
    {
        qputenv("VOKROOT", "/sandbox//");
        QCOMPARE(SystemRoot::path("/etc/a"), QString("/sandbox/etc/a"));
        qputenv("VOKROOT", "/");
        QCOMPARE(SystemRoot::path("/etc/a"), QString("/etc/a"));
    }
};

QTEST_GUILESS_MAIN(TestSystemRoot)
#include "tst_SystemRoot.moc"
