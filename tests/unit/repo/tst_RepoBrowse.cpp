// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"
#include "repo/RepoBrowse.h"
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <memory>

namespace
{

/// As much of the script as has the variables.
const char script[] = R"(
import sys
import types

yum = types.ModuleType("yum")
yum.Errors = types.ModuleType("yum.Errors")
for name in ("YumBaseError", "LockError", "GroupsError", "RepoError", "NoMoreMirrorsRepoError"):
    setattr(yum.Errors, name, type(name, (Exception,), {}))
sys.modules["yum"] = yum
sys.modules["yum.Errors"] = yum.Errors


class YumIO:
    def __init__(self):
        self.conf = types.SimpleNamespace(
            yumvar={"basearch": "x86_64", "arch": "ia32e", "releasever": "42", "uuid": "never"})

    def flush(self):
        pass
)";

/// Stands for the browser: writes down how it was called, one line a call.
const char browser[] = R"(#!/bin/sh
printf '%s|%s\n' "$#" "$1" >> "$0.said"
)";

} // namespace

class TestRepoBrowse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void opensTheEntrysUrl_data();
    void opensTheEntrysUrl();
    void opensTheMirrorListWhereThereIsNoUrl();
    void passesBytesOfTheFileOn();
    void aRepositoryWithoutUrlIsToldAndStartsTheScriptAllTheSame();
    void findsTheFirstEntryOfAnId();
    void anUnknownIdDoesNothing();

private:
    void writeFile(const QString& name, const char* content, bool executable);
    QString saidPath() const { return share.filePath(QStringLiteral("webbrowser.said")); }
    /// What the browser was called with, "<number of arguments>|<first>", a line for each call.
    QByteArray said();

    QTemporaryDir share;
    QByteArray oldShare;
    std::unique_ptr<YumIO> yumIO;
    std::unique_ptr<DialogDriver> driver;
    QWidget window;
};

void TestRepoBrowse::writeFile(const QString& name, const char* content, bool executable)
{
    QFile file(share.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(content) > 0);
    if (executable)
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
}

void TestRepoBrowse::initTestCase()
{
    QVERIFY(QDir(share.path()).mkdir(QStringLiteral("python")));
    writeFile(QStringLiteral("python/YumIO.py"), script, false);
    writeFile(QStringLiteral("webbrowser"), browser, true);
    oldShare = qgetenv("VOKSHARE");
    qputenv("VOKSHARE", QFile::encodeName(share.path()));
    yumIO = std::make_unique<YumIO>();
    const DialogDriver guard;
    QVERIFY(yumIO->initialize());
}

void TestRepoBrowse::cleanupTestCase()
{
    yumIO.reset();
    qputenv("VOKSHARE", oldShare);
}

void TestRepoBrowse::init()
{
    QFile::remove(saidPath());
    driver = std::make_unique<DialogDriver>();
}

void TestRepoBrowse::cleanup()
{
    driver.reset();
}

QByteArray TestRepoBrowse::said()
{
    QFile file(saidPath());
    // The browser is nobody's child, so there is no end of it to wait for.
    if (!QTest::qWaitFor([&file] { return file.size() > 0; }) || !file.open(QIODevice::ReadOnly))
        return "nothing";
    return file.readAll().trimmed();
}

void TestRepoBrowse::opensTheEntrysUrl_data()
{
    QTest::addColumn<QString>("baseurl");
    QTest::addColumn<QByteArray>("url");
    QTest::newRow("one") << "http://h/a" << QByteArray("http://h/a");
    QTest::newRow("first of three")
        << "http://h/a\nhttp://h/b\nhttp://h/c" << QByteArray("http://h/a");
    QTest::newRow("white space first") << "\n \thttp://h/a\nhttp://h/b" << QByteArray("http://h/a");
    QTest::newRow("both architectures") << "http://h/$basearch/$arch/$releasever/$arch"
                                        << QByteArray("http://h/x86_64/ia32e/42/ia32e");
    QTest::newRow("other variables and case")
        << "http://h/$uuid/$Arch/$BASEARCH" << QByteArray("http://h/$uuid/$Arch/$BASEARCH");
    QTest::newRow("credentials") << "http://user:p%40ss@h/a?b=c&d"
                                 << QByteArray("http://user:p%40ss@h/a?b=c&d");
    QTest::newRow("nothing for the shell")
        << "http://h/`id`;$(id)'\"" << QByteArray("http://h/`id`;$(id)'\"");
}

void TestRepoBrowse::opensTheEntrysUrl()
{
    QFETCH(QString, baseurl);
    QFETCH(QByteArray, url);
    Repo::Entry entry;
    entry.baseurl = baseurl;
    entry.mirrorlist = QStringLiteral("http://mirrors/");
    RepoBrowse::browse(&window, entry, yumIO.get());
    QCOMPARE(said(), "1|" + url);
}

void TestRepoBrowse::opensTheMirrorListWhereThereIsNoUrl()
{
    Repo::Entry entry;
    entry.mirrorlist = QStringLiteral("http://mirrors/?r=$releasever&a=$basearch second");
    RepoBrowse::browse(&window, entry, yumIO.get());
    QCOMPARE(said(), QByteArray("1|http://mirrors/?r=42&a=x86_64 second"));
}

void TestRepoBrowse::passesBytesOfTheFileOn()
{
    const QByteArray bytes("http://h/\xc3\xa9\xff");
    Repo::Entry entry;
    entry.baseurl = QString::fromLatin1(bytes);
    RepoBrowse::browse(&window, entry, yumIO.get());
    QCOMPARE(said(), "1|" + bytes);
}

void TestRepoBrowse::aRepositoryWithoutUrlIsToldAndStartsTheScriptAllTheSame()
{
    QWidget* parent = nullptr;
    bool startedBefore = false;
    driver->expect(QStringLiteral("Error"))
        .text(QStringLiteral("Repository configuration has no URL"))
        .act([&](QWidget* box) {
            parent = box->parentWidget();
            startedBefore = QFile::exists(saidPath());
        })
        .press(QStringLiteral("OK"));
    RepoBrowse::browse(&window, Repo::Entry(), yumIO.get());
    driver->verify();
    QCOMPARE(parent, &window);
    QVERIFY(!startedBefore);
    QCOMPARE(said(), QByteArray("1|"));
}

void TestRepoBrowse::findsTheFirstEntryOfAnId()
{
    const QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    YumConfIO conf(options, used);
    for (const char* id : {"other", "wanted", "wanted"}) {
        Repo::Entry entry;
        entry.id = QString::fromLatin1(id);
        entry.baseurl = QStringLiteral("http://h/%1").arg(conf.entries.size());
        conf.entries.append(entry);
    }
    RepoBrowse::browse(&window, QStringLiteral("wanted"), yumIO.get(), &conf);
    QCOMPARE(said(), QByteArray("1|http://h/1"));
}

void TestRepoBrowse::anUnknownIdDoesNothing()
{
    const QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    YumConfIO conf(options, used);
    RepoBrowse::browse(&window, QStringLiteral("gone"), yumIO.get(), &conf);
    Repo::Entry entry;
    entry.id = QStringLiteral("there");
    entry.baseurl = QStringLiteral("http://h/there");
    conf.entries.append(entry);
    RepoBrowse::browse(&window, QStringLiteral("gone"), yumIO.get(), &conf);

    // A browser started by mistake had a head start on this one.
    entry.baseurl = QStringLiteral("http://h/next");
    RepoBrowse::browse(&window, entry, yumIO.get());
    QCOMPARE(said(), QByteArray("1|http://h/next"));
}

QTEST_MAIN(TestRepoBrowse)
#include "tst_RepoBrowse.moc"
