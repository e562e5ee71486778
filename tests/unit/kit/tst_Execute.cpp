// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Execute.h"
#include "support/DialogDriver.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// Which of the coming fork() calls fails, counted from 1 and over the child processes too; 0 for
/// none.
int failingFork = 0;
int forks = 0;

} // namespace

// The linker finds this one before the C library's.
extern "C" pid_t fork() noexcept
{
    if (++forks == failingFork) {
        errno = EAGAIN;
        return -1;
    }
    using Fork = pid_t (*)();
    return reinterpret_cast<Fork>(dlsym(RTLD_NEXT, "fork"))();
}

class TestExecute : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void handsArgumentsOnAsTheyAre();
    void leavesNoChildBehind();
    void tellsOfAProgramThatCannotBeStarted();
    void showsAFailedFork();
    void tellsOfAFailedSecondFork();

private:
    QByteArray script(const QByteArray& body);
    QByteArray contents(const QString& name) const;
    QByteArray standardErrorOf(char* const* argv);

    QTemporaryDir m_directory;
};

void TestExecute::init()
{
    failingFork = 0;
    forks = 0;
    for (const char* name : {"out", "err", "script"})
        QFile::remove(m_directory.filePath(name));
}

/// Writes a script that runs `body` with its standard output in a file which appears as "out" when
/// it is complete.
QByteArray TestExecute::script(const QByteArray& body)
{
    QFile file(m_directory.filePath("script"));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no script");
    const QByteArray directory = QFile::encodeName(m_directory.path());
    file.write("#!/bin/sh\n{ " + body + "; } >" + directory + "/part\nmv " + directory + "/part " +
               directory + "/out\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return QFile::encodeName(file.fileName());
}

QByteArray TestExecute::contents(const QString& name) const
{
    QFile file(m_directory.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a start of `argv` writes to standard error.
QByteArray TestExecute::standardErrorOf(char* const* argv)
{
    const int saved = dup(STDERR_FILENO);
    const QByteArray name = QFile::encodeName(m_directory.filePath("err"));
    const int file = open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, STDERR_FILENO);
    close(file);
    Execute::execute(nullptr, argv);
    dup2(saved, STDERR_FILENO);
    close(saved);
    const bool complete = QTest::qWaitFor([this] { return contents("err").endsWith('\n'); });
    return complete ? contents("err") : QByteArray();
}

void TestExecute::handsArgumentsOnAsTheyAre()
{
    QByteArray path = script("for a; do printf '<%s>\\n' \"$a\"; done");
    QByteArray arguments[] = {"two words", "", "$HOME; echo x > y", "*", "'\"\\", "\xc3\xa4"};
    QByteArray expected;
    std::vector<char*> argv{path.data()};
    for (QByteArray& argument : arguments) {
        argv.push_back(argument.data());
        expected += '<' + argument + ">\n";
    }
    argv.push_back(nullptr);

    Execute::execute(nullptr, argv.data());
    QTRY_VERIFY(QFile::exists(m_directory.filePath("out")));
    QCOMPARE(contents("out"), expected);
}

void TestExecute::leavesNoChildBehind()
{
    QByteArray path = script("echo $PPID");
    char* const argv[] = {path.data(), nullptr};
    Execute::execute(nullptr, argv);

    errno = 0;
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
    QCOMPARE(errno, ECHILD);

    QTRY_VERIFY(QFile::exists(m_directory.filePath("out")));
    QVERIFY(contents("out").trimmed().toInt() != getpid());
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
}

void TestExecute::tellsOfAProgramThatCannotBeStarted()
{
    QByteArray path = "/nonexistent/program";
    char* const argv[] = {path.data(), nullptr};
    QCOMPARE(standardErrorOf(argv),
             QByteArray("execv(\"/nonexistent/program\", ...) failed; errno = 2 (No such file or "
                        "directory)\n"));
}

void TestExecute::showsAFailedFork()
{
    QByteArray path = "/nonexistent/program";
    char* const argv[] = {path.data(), nullptr};
    failingFork = 1;
    DialogDriver driver;
    driver.expect("Help")
        .text(QString("fork() failed; errno = %1 (Resource temporarily unavailable)").arg(EAGAIN))
        .press("OK");
    Execute::execute(nullptr, argv);
    QCOMPARE(driver.driven(), 1);
}

void TestExecute::tellsOfAFailedSecondFork()
{
    QByteArray path = "/nonexistent/program";
    char* const argv[] = {path.data(), nullptr};
    failingFork = 2;
    QCOMPARE(standardErrorOf(argv),
             QByteArray("second fork() failed; errno = 11 (Resource temporarily unavailable)\n"));
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
}

QTEST_MAIN(TestExecute)
#include "tst_Execute.moc"
