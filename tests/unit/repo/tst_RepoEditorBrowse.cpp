// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/MenuDriver.h"
#include "unit/repo/RepoEditorTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace RepoEditor;

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
            yumvar={"basearch": "x86_64", "arch": "ia32e", "releasever": "42"})

    def flush(self):
        pass
)";

/// Stands for the browser: writes down what it is to open, one line a call.
const char browser[] = R"(#!/bin/sh
printf '%s\n' "$1" >> "$0.said"
)";

/// An engine of a few rows.
class Engine : public YumIO
{
public:
    void add() { entries.append(new Package::Entry); }
    void removeAll()
    {
        qDeleteAll(entries);
        entries.clear();
    }
};

} // namespace

/// Browsing from the repository list, by the button and by the menu.
class TestRepoEditorBrowse : public RepoEditorTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup() { removeAll(); }

    void theButtonBrowsesTheCurrentRepository();
    void theMenuBrowsesOnlyRowsBelowTheNumberOfPackages();

private:
    void write(const QString& name, const char* content)
    {
        QFile file(share.path() + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(content) > 0);
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
    }
    /// What the browser was told, once it was told as often as this.
    QStringList said(int count)
    {
        QFile file(share.path() + "/webbrowser.said");
        QStringList lines;
        // The browser is nobody's child, so there is no end of it to wait for.
        const bool complete = QTest::qWaitFor([&] {
            if (file.open(QIODevice::ReadOnly))
                lines = QString(file.readAll()).split('\n', Qt::SkipEmptyParts);
            file.close();
            return lines.size() >= count;
        });
        return complete ? lines : lines << "and no more";
    }
    void browseByMenu(const QString& id)
    {
        MenuDriver menu("Browse Repository");
        rightClick(editor->at(id, ColumnId));
        QCOMPARE(menu.items, QStringList({"Edit", "Browse Repository"}));
    }

    QTemporaryDir share;
    QByteArray oldShare;
    Engine* engine = nullptr;
};

void TestRepoEditorBrowse::initTestCase()
{
    QVERIFY(QDir(share.path()).mkdir("python"));
    write("/python/YumIO.py", script);
    write("/webbrowser", browser);
    oldShare = qgetenv("VOKSHARE");
    qputenv("VOKSHARE", QFile::encodeName(share.path()));
    engine = new Engine;
    yumIO.reset(engine);
    const DialogDriver guard;
    QVERIFY(engine->initialize());
}

void TestRepoEditorBrowse::cleanupTestCase()
{
    yumIO.reset();
    qputenv("VOKSHARE", oldShare);
}

void TestRepoEditorBrowse::init()
{
    makeAll();
    engine->removeAll();
    QFile::remove(share.path() + "/webbrowser.said");
}

void TestRepoEditorBrowse::theButtonBrowsesTheCurrentRepository()
{
    QCOMPARE(engine->count(), 0);
    run([&] {
        dialog->browse(); // without a current row there is nothing to do
        editor->click("d");
        editor->press("Browse Repository");
        QCOMPARE(said(1), QStringList({"file:///d"}));
        editor->click("b");
        editor->press("Browse Repository");
        QCOMPARE(said(2), QStringList({"file:///d", "file:///b"}));
    });
}

void TestRepoEditorBrowse::theMenuBrowsesOnlyRowsBelowTheNumberOfPackages()
{
    run([&] {
        // In the order of the files: "e", "d", "a".
        browseByMenu("e");
        engine->add();
        engine->add();
        browseByMenu("a");
        browseByMenu("d");
        QCOMPARE(said(1), QStringList({"file:///d"}));
        engine->add();
        browseByMenu("a");
        QCOMPARE(said(2), QStringList({"file:///d", "file:///a"}));
    });
}

QTEST_MAIN(TestRepoEditorBrowse)
#include "tst_RepoEditorBrowse.moc"
