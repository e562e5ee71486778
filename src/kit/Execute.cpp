// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Execute.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

QString tr(const char* text)
{
    return QCoreApplication::translate("Execute", text);
}

/// The grandchild: becomes the program. Only its own descriptors may be used here; buffered streams
/// are copies of the parent's and would be written twice.
[[noreturn]] void become(char* const* argv)
{
    execv(argv[0], argv);
    const int error = errno;
    dprintf(STDERR_FILENO, "execv(\"%s\", ...) failed; errno = %u (%s)\n", argv[0],
            static_cast<unsigned int>(error), strerror(error));
    _exit(1);
}

/// The child: leaves the program to a process of its own, which nobody has to wait for.
[[noreturn]] void handOver(char* const* argv)
{
    const pid_t pid = fork();
    if (pid == 0)
        become(argv);
    if (pid < 0) {
        const int error = errno;
        dprintf(STDERR_FILENO, "second fork() failed; errno = %u (%s)\n",
                static_cast<unsigned int>(error), strerror(error));
        _exit(1);
    }
    _exit(0);
}

} // namespace

void Execute::execute(QWidget* parent, char* const* argv)
{
    const pid_t pid = fork();
    if (pid == 0)
        handOver(argv);
    if (pid < 0) {
        const int error = errno;
        QMessageBox::critical(parent, tr("Help"),
                              tr("fork() failed; errno = %1 (%2)")
                                  .arg(error)
                                  .arg(QString::fromLocal8Bit(strerror(error))),
                              QMessageBox::Ok);
        return;
    }
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}
