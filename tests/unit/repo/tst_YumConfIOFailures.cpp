// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/ConfigTree.h"

#include <QFile>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace
{

class Reader : public YumConfIO
{
public:
    using YumConfIO::confText;
    using YumConfIO::unreadLines;
    using YumConfIO::YumConfIO;
};

/// Root may read everything; as long as this exists the process opens files as nobody.
class AsNobody
{
public:
    AsNobody() { setfsuid(geteuid() == 0 ? 65534 : geteuid()); }
    ~AsNobody() { setfsuid(geteuid()); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
};

QString suffix(int number)
{
    return QStringLiteral("; errno = %1 (%2).")
        .arg(QString::number(number), QString::fromLocal8Bit(strerror(number)));
}

} // namespace

/// What the reader says of files that it can't read or understand.
class TestYumConfIOFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void tellsOfAMissingMainFile();
    void tellsOfAReadErrorInTheMainFile();
    void tellsOfADanglingRepoFile();
    void tellsOfARepoFileThatItMayNotOpen();
    void tellsOfAReadErrorInARepoFile();
    void aHeaderMustEndWithItsBracket_data();
    void aHeaderMustEndWithItsBracket();
    void aMalformedHeaderBeforeAnySectionIsAnError();
    void aMalformedHeaderInTheMainFileIsAnError();
    void keepsTheSectionsBeforeAMalformedHeader();
    void looksAtNoLaterFile();
    void linesLeftOverComeFirstInTheNextRead();
    void quotesALineAsItIs();

private:
    /// The next read fails with this text in a box on the window.
    void expectFailure(const QString& text);

    std::unique_ptr<ConfigTree> tree;
    std::unique_ptr<DialogDriver> driver;
    std::unique_ptr<QWidget> window;
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<Reader> io;
};

void TestYumConfIOFailures::init()
{
    tree = std::make_unique<ConfigTree>();
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\n");
    driver = std::make_unique<DialogDriver>();
    window = std::make_unique<QWidget>();
    used.clear();
    io = std::make_unique<Reader>(options, used);
}

void TestYumConfIOFailures::cleanup()
{
    io.reset();
    window.reset();
    driver.reset();
    tree.reset();
}

void TestYumConfIOFailures::expectFailure(const QString& text)
{
    QSignalSpy spy(io.get(), &YumConfIO::changed);
    QWidget* parent = nullptr;
    driver->expect(QStringLiteral("VOK Repository Editor Error"))
        .text(text)
        .act([&parent](QWidget* box) { parent = box->parentWidget(); })
        .press(QStringLiteral("OK"));
    QVERIFY(!io->read(window.get()));
    driver->verify();
    QCOMPARE(parent, window.get());
    QCOMPARE(spy.count(), 0);
}

void TestYumConfIOFailures::tellsOfAMissingMainFile()
{
    const QString path = tree->path(QStringLiteral("/etc/yum.conf"));
    QVERIFY(QFile::remove(path));
    expectFailure(QStringLiteral("Unable to read yum configuration file ") + path + suffix(ENOENT));
}

void TestYumConfIOFailures::tellsOfAReadErrorInTheMainFile()
{
    // A directory can be opened, but not read.
    tree->makeDirectory(QStringLiteral("/etc/yum/yum.conf"));
    expectFailure(QStringLiteral("Error reading repository configuration file ") +
                  tree->path(QStringLiteral("/etc/yum/yum.conf")) + suffix(EISDIR));
}

void TestYumConfIOFailures::tellsOfADanglingRepoFile()
{
    tree->link(QStringLiteral("/nowhere/at/all"), QStringLiteral("/etc/yum.repos.d/x.repo"));
    expectFailure(QStringLiteral("Unable to stat repository configuration file ") +
                  tree->path(QStringLiteral("/etc/yum.repos.d/x.repo")) + suffix(ENOENT));
}

void TestYumConfIOFailures::tellsOfARepoFileThatItMayNotOpen()
{
    const QString path = tree->path(QStringLiteral("/etc/yum.repos.d/x.repo"));
    tree->write(QStringLiteral("/etc/yum.repos.d/x.repo"), "[x]\n");
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0), 0);
    QCOMPARE(chmod(QFile::encodeName(tree->path(QString())).constData(), 0755), 0);
    const AsNobody nobody;
    expectFailure(QStringLiteral("Unable to read repository configuration file ") + path +
                  suffix(EACCES));
}

void TestYumConfIOFailures::tellsOfAReadErrorInARepoFile()
{
    // Nothing is mapped where this file begins.
    tree->link(QStringLiteral("/proc/self/mem"), QStringLiteral("/etc/yum.repos.d/x.repo"));
    expectFailure(QStringLiteral("Error reading repository configuration file ") +
                  tree->path(QStringLiteral("/etc/yum.repos.d/x.repo")) + suffix(EIO));
}

void TestYumConfIOFailures::aHeaderMustEndWithItsBracket_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("line");
    QTest::newRow("trailing blank") << QByteArray("[foo] \nname=x\n") << QStringLiteral("[foo] ");
    QTest::newRow("carriage return") << QByteArray("[foo]\r\n") << QStringLiteral("[foo]\r");
    QTest::newRow("continued") << QByteArray("[foo]\n name=x\n")
                               << QStringLiteral("[foo]\n name=x");
    QTest::newRow("no bracket") << QByteArray("[foo") << QStringLiteral("[foo");
    QTest::newRow("comment") << QByteArray("[foo] # c\n") << QStringLiteral("[foo] # c");
}

void TestYumConfIOFailures::aHeaderMustEndWithItsBracket()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, line);
    tree->write(QStringLiteral("/etc/yum.repos.d/x.repo"), content);
    expectFailure(QStringLiteral("Malformed section name in line: ") + line + suffix(0));
    QVERIFY(io->entries.isEmpty());
}

void TestYumConfIOFailures::aMalformedHeaderBeforeAnySectionIsAnError()
{
    tree->write(QStringLiteral("/etc/yum.repos.d/x.repo"), "name=x\n# c\n[bad\n[x]\n");
    expectFailure(QStringLiteral("Malformed section name in line: [bad") + suffix(0));
}

void TestYumConfIOFailures::aMalformedHeaderInTheMainFileIsAnError()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main] \ncachedir=/x\n");
    expectFailure(QStringLiteral("Malformed section name in line: [main] ") + suffix(0));
}

void TestYumConfIOFailures::keepsTheSectionsBeforeAMalformedHeader()
{
    tree->write(QStringLiteral("/etc/yum.repos.d/x.repo"), "[a]\n[b]\n[c]\n[bad\n[d]\n");
    expectFailure(QStringLiteral("Malformed section name in line: [bad") + suffix(0));
    // The section that the line ended isn't finished.
    QCOMPARE(io->entries.size(), 2);
    QCOMPARE(io->entries.at(1).id, QStringLiteral("b"));
}

void TestYumConfIOFailures::looksAtNoLaterFile()
{
    tree->write(QStringLiteral("/etc/yum.conf"), "[main]\nreposdir=/a /b\n");
    tree->write(QStringLiteral("/a/x.repo"), "[bad\n");
    tree->write(QStringLiteral("/b/x.repo"), "[worse\n");
    expectFailure(QStringLiteral("Malformed section name in line: [bad") + suffix(0));
    QVERIFY(io->entries.isEmpty());
}

void TestYumConfIOFailures::linesLeftOverComeFirstInTheNextRead()
{
    const QString repo = QStringLiteral("/etc/yum.repos.d/x.repo");
    tree->write(repo, "[foo] \nname=x\n");
    expectFailure(QStringLiteral("Malformed section name in line: [foo] ") + suffix(0));
    QCOMPARE(io->unreadLines, QList<QString>{QStringLiteral("name=x")});

    tree->write(repo, "[foo]\n");
    QVERIFY(io->read(window.get()));
    QCOMPARE(io->confText, QStringLiteral("name=x\n[main]\n"));
    QCOMPARE(io->entries.size(), 1);
}

void TestYumConfIOFailures::quotesALineAsItIs()
{
    tree->write(QStringLiteral("/etc/yum.repos.d/x.repo"), "[<b>%1 %2</b>\n");
    Qt::TextFormat format = Qt::AutoText;
    driver->expect(QStringLiteral("VOK Repository Editor Error"))
        .text(QStringLiteral("Malformed section name in line: [<b>%1 %2</b>") + suffix(0))
        .act([&format](QWidget* box) { format = qobject_cast<QMessageBox*>(box)->textFormat(); })
        .press(QStringLiteral("OK"));
    QVERIFY(!io->read(window.get()));
    driver->verify();
    QCOMPARE(format, Qt::PlainText);
}

QTEST_MAIN(TestYumConfIOFailures)
#include "tst_YumConfIOFailures.moc"
