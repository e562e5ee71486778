// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTest>

namespace
{

const QString noId = QStringLiteral("A repository has no Identifier.  It will be removed.");

QString sameIds(const QString& ids)
{
    return QStringLiteral("Two or more repositories have the same Identifier(s), %1.  Only one "
                          "repository will be applied for each Identifier.")
        .arg(ids);
}

} // namespace

/// What the writer asks before it writes entries that are not right.
class TestYumConfIOWriteErrors : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void asksAboutAnEmptyId();
    void noLeavesAllAsItWas();
    void escapeMeansNo();
    void namesAnIdOnceForEachPair();
    void theFirstOfEachIdRemains();
    void asksAboutBothAtOnce();
    void twoEmptyIdsAreOneMatter();
    void showsIdsAsTheyAre();
};

void TestYumConfIOWriteErrors::asksAboutAnEmptyId()
{
    tree->write(repo("x.repo"), "[x]\n");
    QVERIFY(read());
    io->entries.prepend(makeEntry(""));
    io->entries.append(makeEntry("", "named"));
    QWidget* parent = nullptr;
    QMessageBox::StandardButtons buttons;
    bool noIsDefault = false;
    driver->expect(QStringLiteral("Repository Editor"))
        .text(noId + QStringLiteral("  Proceed?"))
        .act([&](QWidget* window) {
            auto* box = qobject_cast<QMessageBox*>(window);
            parent = box->parentWidget();
            buttons = box->standardButtons();
            noIsDefault = box->defaultButton() == box->button(QMessageBox::No);
        })
        .press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();
    QCOMPARE(parent, window.get());
    QCOMPARE(buttons, QMessageBox::Yes | QMessageBox::No);
    QVERIFY(noIsDefault);
    QCOMPARE(io->entries.size(), 1);
    QCOMPARE(repoFiles(), QStringList{QStringLiteral("x.repo")});
}

void TestYumConfIOWriteErrors::noLeavesAllAsItWas()
{
    const QByteArray mainText = "[main]\n[m]\n\n\n";
    const QByteArray repoText = "# head\n[x]\n\nname = X";
    tree->write(mainFile, mainText);
    tree->write(repo("x.repo"), repoText);
    tree->write(repo("empty.repo"), "");
    QVERIFY(read());
    at("x").name = QStringLiteral("changed");
    io->entries << makeEntry("") << makeEntry("new");
    driver->expect(QStringLiteral("Repository Editor")).press(QStringLiteral("No"));
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(content(mainFile), mainText);
    QCOMPARE(content(repo("x.repo")), repoText);
    QCOMPARE(repoFiles(), QStringList({QStringLiteral("empty.repo"), QStringLiteral("x.repo")}));
    QCOMPARE(io->entries.size(), 4);
    QCOMPARE(io->entries.at(3).fileName, QString());
}

void TestYumConfIOWriteErrors::escapeMeansNo()
{
    QVERIFY(read());
    io->entries << makeEntry("");
    driver->expect(QStringLiteral("Repository Editor")).pressKey(Qt::Key_Escape);
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIOWriteErrors::namesAnIdOnceForEachPair()
{
    QVERIFY(read());
    io->entries << makeEntry("a", "first") << makeEntry("b") << makeEntry("a", "second")
                << makeEntry("a", "third");
    driver->expect(QStringLiteral("Repository Editor"))
        .text(sameIds(QStringLiteral("a, a, a")) + QStringLiteral("  Proceed?"))
        .press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\nname=first\n"));
    QCOMPARE(io->entries.size(), 2);
}

void TestYumConfIOWriteErrors::theFirstOfEachIdRemains()
{
    tree->write(repo("x.repo"), "[a]\nname=1\n[b]\nname=2\n[a]\nname=3\n[b]\n");
    QVERIFY(read());
    // First in the list, though not in the file.
    io->entries.move(2, 0);
    driver->expect(QStringLiteral("Repository Editor"))
        .text(sameIds(QStringLiteral("a, b")) + QStringLiteral("  Proceed?"))
        .press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();
    QCOMPARE(content(repo("x.repo")), QByteArray("[b]\nname=2\n\n[a]\nname=3\n"));
}

void TestYumConfIOWriteErrors::asksAboutBothAtOnce()
{
    QVERIFY(read());
    io->entries << makeEntry("a") << makeEntry("") << makeEntry("a");
    driver->expect(QStringLiteral("Repository Editor"))
        .text(noId + QLatin1Char('\n') + sameIds(QStringLiteral("a")) +
              QStringLiteral("  Proceed?"))
        .press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIOWriteErrors::twoEmptyIdsAreOneMatter()
{
    QVERIFY(read());
    io->entries << makeEntry("") << makeEntry("");
    driver->expect(QStringLiteral("Repository Editor"))
        .text(noId + QStringLiteral("  Proceed?"))
        .press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();

    // Behind another pair they add nothing visible but the separator.
    io->entries << makeEntry("a") << makeEntry("a") << makeEntry("") << makeEntry("");
    driver->expect(QStringLiteral("Repository Editor"))
        .text(noId + QLatin1Char('\n') + sameIds(QStringLiteral("a, ")) +
              QStringLiteral("  Proceed?"))
        .press(QStringLiteral("Yes"));
    QVERIFY(write());
    driver->verify();
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIOWriteErrors::showsIdsAsTheyAre()
{
    QVERIFY(read());
    io->entries << makeEntry("<b>%1</b>") << makeEntry("<b>%1</b>");
    Qt::TextFormat format = Qt::AutoText;
    driver->expect(QStringLiteral("Repository Editor"))
        .text(sameIds(QStringLiteral("<b>%1</b>")) + QStringLiteral("  Proceed?"))
        .act([&format](QWidget* box) { format = qobject_cast<QMessageBox*>(box)->textFormat(); })
        .press(QStringLiteral("No"));
    QVERIFY(!write());
    driver->verify();
    QCOMPARE(format, Qt::PlainText);
}

QTEST_MAIN(TestYumConfIOWriteErrors)
#include "tst_YumConfIOWriteErrors.moc"
