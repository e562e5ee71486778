// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/DialogDriver.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

class TestDialogDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void pressesTheButtonOfAnExpectedBox();
    void drivesOneDialogOnTopOfAnother();
    void waitsForADialogThatComesLater();
    void pressesAKey();
    void reportsADialogThatNobodyExpected();
    void reportsADialogThatNeverCame();
    void reportsAnotherTitleTextOrButton();
    void reportsADialogThatDoesNotGo();

private:
    int ask(const QString& title, const QString& text);

    QStringList m_reports;
};

void TestDialogDriver::init()
{
    m_reports.clear();
}

int TestDialogDriver::ask(const QString& title, const QString& text)
{
    return QMessageBox::question(nullptr, title, text, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No);
}

void TestDialogDriver::pressesTheButtonOfAnExpectedBox()
{
    DialogDriver driver;
    driver.expect("Clean").text("Really clean?").press("Yes");
    driver.expect("Clean").textContains("clean").press("&No");
    QCOMPARE(ask("Clean", "Really clean?"), static_cast<int>(QMessageBox::Yes));
    QCOMPARE(ask("Clean", "Really clean?"), static_cast<int>(QMessageBox::No));
    QVERIFY(driver.waitUntilDone());
    QCOMPARE(driver.driven(), 2);
}

void TestDialogDriver::drivesOneDialogOnTopOfAnother()
{
    DialogDriver driver;
    int inner = 0;
    driver.expect("Outer")
        .act([this, &inner](QWidget*) { inner = ask("Inner", "Sure?"); })
        .press("Yes");
    driver.expect("Inner").text("Sure?").press("Yes");
    QCOMPARE(ask("Outer", "Go?"), static_cast<int>(QMessageBox::Yes));
    QCOMPARE(inner, static_cast<int>(QMessageBox::Yes));
    QCOMPARE(driver.driven(), 2);
}

void TestDialogDriver::waitsForADialogThatComesLater()
{
    DialogDriver driver;
    driver.expect("Later").press("Yes");
    int answer = 0;
    QTimer::singleShot(20, this, [this, &answer] { answer = ask("Later", "Now?"); });
    QVERIFY(driver.waitUntilDone());
    QTRY_COMPARE(answer, static_cast<int>(QMessageBox::Yes));
}

void TestDialogDriver::pressesAKey()
{
    DialogDriver driver;
    driver.expect("Escape").pressKey(Qt::Key_Escape);
    QCOMPARE(ask("Escape", "Out?"), static_cast<int>(QMessageBox::No));
    QCOMPARE(driver.driven(), 1);
}

void TestDialogDriver::reportsADialogThatNobodyExpected()
{
    DialogDriver driver;
    driver.setReporter([this](const QString& message) { m_reports << message; });
    ask("Surprise", "Boo");
    QCOMPARE(m_reports.size(), 1);
    QVERIFY2(m_reports[0].contains("Surprise"), qPrintable(m_reports[0]));
    QVERIFY2(m_reports[0].contains("Boo"), qPrintable(m_reports[0]));
    QCOMPARE(driver.driven(), 0);
}

void TestDialogDriver::reportsADialogThatNeverCame()
{
    {
        DialogDriver driver;
        driver.setReporter([this](const QString& message) { m_reports << message; });
        driver.expect("Missing").press("OK");
    }
    QCOMPARE(m_reports, QStringList{"the dialog \"Missing\" never came"});

    m_reports.clear();
    DialogDriver driver;
    driver.setReporter([this](const QString& message) { m_reports << message; });
    driver.expect("Missing").press("OK");
    QVERIFY(!driver.waitUntilDone(20));
    QCOMPARE(m_reports.size(), 1);
}

void TestDialogDriver::reportsAnotherTitleTextOrButton()
{
    DialogDriver driver;
    driver.setReporter([this](const QString& message) { m_reports << message; });

    driver.expect("This").press("Yes");
    QCOMPARE(ask("That", "Text"), static_cast<int>(QMessageBox::No));
    driver.expect("This").text("Text").press("Yes");
    QCOMPARE(ask("This", "Another text"), static_cast<int>(QMessageBox::No));
    driver.expect("This").textContains("none").press("Yes");
    QCOMPARE(ask("This", "Text"), static_cast<int>(QMessageBox::No));
    driver.expect("This").press("Maybe");
    QCOMPARE(ask("This", "Text"), static_cast<int>(QMessageBox::No));
    driver.expect("This")
        .act([](QWidget* window) {
            for (auto* button : window->findChildren<QPushButton*>())
                button->setEnabled(false);
        })
        .press("Yes");
    QCOMPARE(ask("This", "Text"), static_cast<int>(QMessageBox::No));

    QCOMPARE(m_reports.size(), 5);
    QVERIFY2(m_reports[0].contains("\"That\" came"), qPrintable(m_reports[0]));
    QVERIFY2(m_reports[1].contains("expected the text"), qPrintable(m_reports[1]));
    QVERIFY2(m_reports[2].contains("expected a text with"), qPrintable(m_reports[2]));
    QVERIFY2(m_reports[3].contains("no button \"Maybe\""), qPrintable(m_reports[3]));
    QVERIFY2(m_reports[4].contains("is disabled"), qPrintable(m_reports[4]));
    QCOMPARE(driver.driven(), 0);
}

void TestDialogDriver::reportsADialogThatDoesNotGo()
{
    class Stubborn : public QDialog
    {
    public:
        void reject() override {}
    };
    DialogDriver driver;
    driver.setReporter([this](const QString& message) { m_reports << message; });
    driver.setPatience(50);
    driver.expect("Stubborn").pressKey(Qt::Key_Escape);
    Stubborn dialog;
    dialog.setWindowTitle("Stubborn");
    dialog.exec();
    QCOMPARE(m_reports, QStringList{"the dialog \"Stubborn\" did not go"});
}

QTEST_MAIN(TestDialogDriver)
#include "tst_DialogDriver.moc"
