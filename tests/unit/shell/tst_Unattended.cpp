// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>

namespace
{

const char placeVariable[] = "VOK_TEST_PLACE";
const char whoVariable[] = "VOK_TEST_WHO";

/// Waits within the transaction until the process is ending, then does what needs the GUI thread:
/// asks, and writes more than a pipe holds.
const QString transaction = QStringLiteral("import os, ctypes\n"
                                           "yumIOC.listTransaction(base())\n"
                                           "yumIOC.userconfirm()\n"
                                           "yumIOC.tsInitCallback(1)\n"
                                           "open('%1/began', 'w').close()\n"
                                           "if '%2' == 'work':\n"
                                           "    ctypes.CDLL(None).exit(0)\n"
                                           "if '%2' == 'leaving':\n"
                                           "    YumIO.unlock = lambda self: "
                                           "ctypes.CDLL(None).exit(0)\n"
                                           "yumIOC.tsCallback(256, 0, 1, 'first', None)\n"
                                           "yumIOC.tsCallback(256, 0, 1, 'second', None)\n"
                                           "os.write(1, b'x' * 99 + b'\\n')\n"
                                           "for line in range(5000):\n"
                                           "    os.write(1, b'y' * 99 + b'\\n')\n"
                                           "open('%1/done', 'w').close()\n");

int live(const QString& place, const QString& who)
{
    WindowLife life;
    life.system["apply"] = transaction.arg(place, who);
    life.play();
    if (!life.start() || !life.clickAction("alpha"))
        return 2;
    life.dialogs.expect("Apply").press("OK");
    // With the first question open: nobody answers it but the end.
    life.dialogs.expect("VOK Yum Warning").act([](QWidget*) { std::exit(0); }).leave();
    life.click("apply");
    return 3;
}

} // namespace

/// exit() while rpm changes the system.
class TestUnattended : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitWaitsForTheEndOfTheTransaction()
    {
        const QTemporaryDir place;
        QString said;
        QCOMPARE(run(place.path(), "gui", said), 1);
        QVERIFY2(QFile::exists(place.filePath("done")), qPrintable(said));
        QVERIFY2(said.contains("UNINST of second"), qPrintable(said));
    }

    void exitWithinTheEndIsTheEnd()
    {
        const QTemporaryDir place;
        QString said;
        QCOMPARE(run(place.path(), "leaving", said), 1);
        QVERIFY2(QFile::exists(place.filePath("done")), qPrintable(said));
    }

    void exitOfRpmItselfEndsTheProgramWithAWord()
    {
        const QTemporaryDir place;
        QString said;
        QCOMPARE(run(place.path(), "work", said), 1);
        QVERIFY(QFile::exists(place.filePath("began")) && !QFile::exists(place.filePath("done")));
        QVERIFY2(said.contains("the system may be half changed"), qPrintable(said));
    }

private:
    /// Status of a life that ends this way; -1 for a crash, -2 where it hangs.
    static int run(const QString& place, const QString& who, QString& said)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(placeVariable, place);
        environment.insert(whoVariable, who);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QCoreApplication::applicationFilePath(), QStringList());
        const bool finished = process.waitForFinished(20000);
        said = QString::fromUtf8(process.readAll());
        if (!finished)
            return -2;
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (qEnvironmentVariableIsSet(placeVariable))
        return live(qEnvironmentVariable(placeVariable), qEnvironmentVariable(whoVariable));
    TestUnattended tests;
    return QTest::qExec(&tests, argc, argv);
}
#include "tst_Unattended.moc"
