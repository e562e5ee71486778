// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowSession.h"

#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace
{

const char made[] = "VOK_TEXTS_MADE";
const char sandbox[] = VOK_SANDBOX "-texts";

/// Packages of every kind of text, by the sandbox's maker, each installed and available.
const QStringList kinds{"rtl",    "combining", "astral", "control",   "invisible",
                        "markup", "latin1",    "cut",    "surrogates"};

QStringList everyName()
{
    QStringList names;
    for (const QString& kind : kinds)
        names << "text-" + kind + "-installed"
              << "text-" + kind + "-available";
    names.sort();
    return names;
}

} // namespace

/// Packages whose texts are any Unicode or none at all show without a word of complaint.
class TestBadTexts : public QObject
{
    Q_OBJECT

private:
    static QString summary(WindowSession& user, const QString& name)
    {
        const Package::Entry* entry = user.entry(name);
        return entry ? entry->summary : QStringLiteral("not there");
    }

    /// As WindowDriver's, which has keys for ASCII only.
    static void filter(WindowSession& user, const QString& pattern)
    {
        auto* edit = user.find<QLineEdit>("regexp");
        edit->setText(pattern);
        QTest::keyClick(edit, Qt::Key_Return);
    }

private Q_SLOTS:
    void theTableShowsThem()
    {
        WindowSession user(sandbox);
        QVERIFY(user.start());
        QCOMPARE(user.listedAll(), everyName());
        for (const char* where : {"installed", "available"}) {
            const auto shown = [&](const char* kind) {
                return summary(user, QStringLiteral("text-%1-%2").arg(kind, where));
            };
            QCOMPARE(shown("rtl"), QString::fromUtf8("שלום עולם and مرحبا بالعالم"));
            QCOMPARE(shown("combining"),
                     QString::fromUtf8("Zalgo: a\u0300\u0301\u0302\u0303\u0304e\u0323\u0324\u0325 "
                                       "\u0301"));
            QCOMPARE(
                shown("astral"),
                QString::fromUtf8("😀 𝔘𝔫𝔦𝔠𝔬𝔡𝔢 👩‍👩‍👧 𓀀"));
            QCOMPARE(shown("markup"), QString("<b>bold</b> &amp; <img src='x'> %1 %s {} \\n"));
            QCOMPARE(shown("latin1"), QString::fromUtf8("café ÿþ"));
            QVERIFY2(shown("control").startsWith("bell ") && shown("control").contains("escape "),
                     qPrintable(shown("control")));
            QVERIFY2(shown("cut").startsWith("ends in the middle of one: "),
                     qPrintable(shown("cut")));
            QVERIFY2(shown("surrogates").contains(", overlong"), qPrintable(shown("surrogates")));
        }
        QCOMPARE(user.quit(), QString());
    }

    void theTableIsPaintedInEveryColumn()
    {
        WindowSession user(sandbox);
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        for (int column = 0; column < PackageTable::ColumnCount; ++column) {
            user.table()->sortByColumn(column, Qt::AscendingOrder);
            QVERIFY(!user.table()->grab().isNull());
            QCOMPARE(user.listed(), everyName());
        }
        user.click("resize");
        QVERIFY(user.ready());
        QCOMPARE(user.quit(), QString());
    }

    void theirDescriptionsOpen()
    {
        WindowSession user(sandbox);
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        for (const QString& name : everyName()) {
            user.table()->setCurrentIndex(user.cell(name, PackageTable::ColumnName));
            user.dialogs.expect("VOK Package Description")
                .text(name)
                .act([&](QWidget* dialog) {
                    const QStringList texts = DialogDriver::textsIn(dialog);
                    QVERIFY2(texts.contains("Summary:") && texts.contains("Description:"),
                             qPrintable(name + ": " + texts.join("|")));
                    QVERIFY2(!texts.join("").contains(QChar(0)), qPrintable(name));
                    QVERIFY(!dialog->grab().isNull());
                    user.dialogs.expect(name + " 1.0-1 Change Log")
                        .textContains("* ")
                        .press("Close");
                    QTest::mouseClick(dialog->findChildren<QPushButton*>().last(), Qt::LeftButton);
                })
                .press("Close");
            user.click("describe");
            QVERIFY(user.dialogs.waitUntilDone());
        }
        QCOMPARE(user.quit(), QString());
    }

    void patternsFindThem()
    {
        WindowSession user(sandbox);
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        user.select("mode", PackageTable::ModeSearch);
        filter(user, QString::fromUtf8("שלום"));
        QCOMPARE(user.listed(), (QStringList{"text-rtl-available", "text-rtl-installed"}));
        filter(user, QString::fromUtf8("𝔘𝔫𝔦.*👩"));
        QCOMPARE(user.listed(), (QStringList{"text-astral-available", "text-astral-installed"}));
        filter(user, QString::fromUtf8("a\u0300"));
        QCOMPARE(user.listed(),
                 (QStringList{"text-combining-available", "text-combining-installed"}));
        user.filter("overlong");
        QCOMPARE(user.listed(),
                 (QStringList{"text-surrogates-available", "text-surrogates-installed"}));
        QVERIFY(user.ready());
        QCOMPARE(user.quit(), QString());
    }

    void aPatternThatIsNoneListsEverything()
    {
        WindowSession user(sandbox);
        QVERIFY(user.start());
        user.select("state", PackageTable::ViewAll);
        for (const char* pattern : {"(", "[a", "*", "a{2", "\\"}) {
            user.filter("markup");
            QCOMPARE(user.listed().size(), 2);
            user.filter(pattern);
            QVERIFY2(user.listed() == everyName(), pattern);
        }
        user.select("mode", PackageTable::ModeSearch);
        user.filter("(");
        QCOMPARE(user.listed(), everyName());
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (!qEnvironmentVariableIsSet(made)) {
        qputenv("PYTHONPATH", VOK_SOURCE);
        if (SandboxRoot::run(VOK_PYTHON, {VOK_SOURCE "/tests/system/window/texts.py", sandbox}) !=
            0)
            return 1;
        qunsetenv("PYTHONPATH");
        qputenv(made, "1");
    }
    TestBadTexts tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_BadTexts.moc"
