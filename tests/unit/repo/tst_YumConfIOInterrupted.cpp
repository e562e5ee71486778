// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QFile>
#include <QTest>

#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

/// What a program leaves that is killed while it writes: each file as it was or as it is to be, but
/// for empty lines at its end, and no file besides.
class TestYumConfIOInterrupted : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void eachFileIsOldOrNew_data();
    void eachFileIsOldOrNew();

private:
    /// Writes in a process of its own, which is killed before or behind its system call of this
    /// number. False where it came to its end before that.
    bool writeAndKill(int stop);
    void makeTree() const;
    static QByteArray trimmed(QByteArray text);
    QByteArray repeated(const QByteArray& line) const;

    int lines = 1; ///< in a section, so that the files have one page or more
    bool traced = true;
};

bool TestYumConfIOInterrupted::writeAndKill(int stop)
{
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            _exit(2);
        raise(SIGSTOP);
        _exit(write() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) {
        traced = false;
        return false;
    }
    for (int at = 0; at < stop; ++at) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
        if (WIFEXITED(status) || WIFSIGNALED(status)) {
            if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
                QTest::qFail("the writer failed by itself", __FILE__, __LINE__);
            return false;
        }
    }
    kill(child, SIGKILL);
    while (waitpid(child, &status, 0) == child && !WIFSIGNALED(status) && !WIFEXITED(status)) {
    }
    return true;
}

QByteArray TestYumConfIOInterrupted::repeated(const QByteArray& line) const
{
    return (line + '\n').repeated(lines);
}

void TestYumConfIOInterrupted::makeTree() const
{
    tree->write(mainFile, "[main]\n" + repeated("k=v") + "[m]\nname=M\n");
    tree->write(repo("longer.repo"), "[longer]\n" + repeated("k=v"));
    tree->write(repo("shorter.repo"), "[shorter]\nname=" + QByteArray(5000, 's') + "\n\n" +
                                          repeated("k=v") + "\n\n[gone]\n" + repeated("x=y"));
    tree->write(repo("same.repo"), "[same]\nenabled=0\n" + repeated("k=v"));
    tree->write(repo("unused.repo"), "[unused]\n");
    QFile::remove(tree->path(repo("new.repo")));
}

QByteArray TestYumConfIOInterrupted::trimmed(QByteArray text)
{
    while (text.endsWith('\n'))
        text.chop(1);
    return text;
}

void TestYumConfIOInterrupted::eachFileIsOldOrNew_data()
{
    QTest::addColumn<int>("lines");
    QTest::newRow("small") << 1;
    QTest::newRow("of many pages") << 20000;
}

void TestYumConfIOInterrupted::eachFileIsOldOrNew()
{
    QFETCH(int, lines);
    this->lines = lines;
    const QStringList files{mainFile,          repo("longer.repo"), repo("shorter.repo"),
                            repo("same.repo"), repo("unused.repo"), repo("new.repo")};
    makeTree();
    QMap<QString, QByteArray> before;
    for (const QString& file : files)
        before[file] = trimmed(content(file));
    QVERIFY(read());
    at("longer").name = QString(5000, 'n');
    at("shorter").name.clear();
    at("same").enabled = 2;
    at("m").name = "Main";
    io->entries << makeEntry("new", "New");
    for (const char* id : {"gone", "unused"}) {
        for (int i = 0; i < io->entries.size(); ++i) {
            if (io->entries.at(i).id == id)
                io->entries.removeAt(i);
        }
    }
    const QList<Repo::Entry> edited = io->entries;
    QVERIFY(write());
    QMap<QString, QByteArray> after;
    for (const QString& file : files)
        after[file] = trimmed(content(file));

    int mixed = 0;
    for (int stop = 0;; ++stop) {
        makeTree();
        io->entries = edited;
        if (!writeAndKill(stop)) {
            if (!traced)
                QSKIP("processes can't be traced here");
            QVERIFY2(stop > 50, "hardly a system call was met");
            break;
        }
        int isNew = 0;
        for (const QString& file : files) {
            const QByteArray text = trimmed(content(file));
            const bool justMade = file == repo("new.repo") && text.isEmpty();
            QVERIFY2(text == before[file] || text == after[file] || justMade,
                     qPrintable(QStringLiteral("%1 at %2: %3")
                                    .arg(file, QString::number(stop), QString(text.left(500)))));
            isNew += text == after[file];
        }
        mixed += isNew > 0 && isNew < files.size();
        QVERIFY(repoFiles().size() <= files.size() - 1);
        for (const QString& name : repoFiles())
            QVERIFY2(files.contains(repo(name.toLatin1())), qPrintable(name));
    }
    QVERIFY2(mixed > 10, "it was never killed between two files");
}

QTEST_MAIN(TestYumConfIOInterrupted)
#include "tst_YumConfIOInterrupted.moc"
