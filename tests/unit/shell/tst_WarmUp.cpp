// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "progress/GeneralTip.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QtTest>

#include <unistd.h>

namespace
{

const char placeVariable[] = "VOK_TEST_PICTURES";
const char rootVariable[] = "VOK_TEST_ROOT";
const QStringList pictures{"message", "log", "tip"};

const QString everyScript = QString::fromUtf8("Ж ῶ ש ع ก अ 日本 한 ✓ 😀");

void setupTip(GeneralTip* tip, void*)
{
    auto* box = new QVBoxLayout(tip);
    box->addWidget(new QLabel(everyScript, tip));
}

/// Applies, with rpm's root directory in place of the process's own while its callback runs.
/// Pictures of what is opened then for the first time go to a folder.
int takePictures(const QString& place, const QString& root)
{
    int taken = 0;
    // Put back however the process ends: the pictures lie outside.
    QDir::setCurrent(place);
    const auto keep = [&](const QString& name, QWidget* widget) {
        if (widget && widget->grab().save(name + ".png"))
            ++taken;
    };
    WindowLife life;
    life.system["apply"] = QStringLiteral("import os\n"
                                          "yumIOC.listTransaction(base())\n"
                                          "yumIOC.userconfirm()\n"
                                          "yumIOC.tsInitCallback(1)\n"
                                          "outside = os.open('/', os.O_RDONLY)\n"
                                          "os.chroot('%1')\n"
                                          "try:\n"
                                          "    yumIOC.tsCallback(256, 0, 1, '%2', None)\n"
                                          "finally:\n"
                                          "    here = os.open('.', os.O_RDONLY)\n"
                                          "    os.fchdir(outside)\n"
                                          "    os.chroot('.')\n"
                                          "    os.fchdir(here)\n")
                               .arg(root, everyScript);
    life.play();
    if (!life.start() || !life.clickAction("alpha"))
        return 2;
    life.dialogs.expect("Apply").press("OK");
    life.dialogs.expect("VOK Yum Warning")
        .act([&](QWidget* box) {
            // Without file access where the root is another one.
            if ((root != "/") == QFile::exists("/proc/self/status"))
                return;
            life.action("Log")->trigger();
            QTest::qWait(50);
            keep("message", box);
            keep("log", life.logWindow());
            GeneralTip::showTip(box->pos(), setupTip, nullptr, box, true);
            keep("tip", GeneralTip::it);
        })
        .press("OK");
    life.click("apply");
    return life.dialogs.waitUntilDone() && taken == pictures.size() ? 0 : 3;
}

} // namespace

/// What appears during a transaction under another root.
class TestWarmUp : public QObject
{
    Q_OBJECT

private:
    static int run(const QString& place, const QString& root)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(placeVariable, place);
        environment.insert(rootVariable, root);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QCoreApplication::applicationFilePath(), QStringList());
        process.waitForFinished();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

private Q_SLOTS:
    void windowsLookTheSameUnderAnotherRoot()
    {
        if (geteuid() != 0)
            QSKIP("only root may change the root directory");
        const QTemporaryDir outside, inside, root;
        QCOMPARE(run(outside.path(), "/"), 0);
        QCOMPARE(run(inside.path(), root.path()), 0);
        for (const QString& name : pictures) {
            const QImage expected(outside.filePath(name + ".png"));
            const QImage found(inside.filePath(name + ".png"));
            QVERIFY2(!expected.isNull() && !found.isNull(), qPrintable(name));
            if (expected != found && qEnvironmentVariableIsSet("VOK_TEST_KEEP")) {
                expected.save("/tmp/expected-" + name + ".png");
                found.save("/tmp/found-" + name + ".png");
            }
            QVERIFY2(expected == found, qPrintable(name));
        }
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (qEnvironmentVariableIsSet(placeVariable))
        return takePictures(qEnvironmentVariable(placeVariable),
                            qEnvironmentVariable(rootVariable));
    TestWarmUp tests;
    return QTest::qExec(&tests, argc, argv);
}
#include "tst_WarmUp.moc"
