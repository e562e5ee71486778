// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIOCapturers.h"

#include "engine/Unattended.h"
#include "engine/YumIO.h"
#include "engine/YumIOCapturersMinion.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace
{

bool redirect(int from, int to)
{
    while (dup2(from, to) < 0) {
        if (errno != EINTR && errno != EBUSY)
            return false;
    }
    return true;
}

/// What the C library still holds back belongs to where the descriptors point at present.
void flushStreams()
{
    std::fflush(stdout);
    std::fflush(stderr);
}

} // namespace

YumIOCapturers::YumIOCapturers(YumIO* engine)
    : engine(engine)
{
    setObjectName(QStringLiteral("YumIOCapturers"));
    flushStreams();
    // No program that the transaction starts is to inherit any of these but through 1 and 2.
    savedStdout = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    savedStderr = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (savedStdout < 0 || savedStderr < 0 || pipe2(stdoutPipe, O_CLOEXEC) != 0 ||
        pipe2(stderrPipe, O_CLOEXEC) != 0) {
        // The message needs descriptors too.
        closeAll();
        engine->error(tr("Unable to open pipe to capture rpm transaction output"));
        return;
    }
    stdoutRedirected = redirect(stdoutPipe[1], STDOUT_FILENO);
    stderrRedirected = stdoutRedirected && redirect(stderrPipe[1], STDERR_FILENO);
    if (!stderrRedirected) {
        if (restore())
            closeAll();
        engine->error(tr("Unable to dup2 pipe to capture rpm transaction output"));
        return;
    }
    fcntl(stdoutPipe[0], F_SETFL, O_NONBLOCK);
    fcntl(stderrPipe[0], F_SETFL, O_NONBLOCK);

    minion = new YumIOCapturersMinion(engine, std::exchange(stdoutPipe[0], -1),
                                      std::exchange(stderrPipe[0], -1));
    Unattended::setStandardError(savedStderr);
    Unattended::serve(minion);
    minion->activate();
}

YumIOCapturers::~YumIOCapturers()
{
    flushStreams();
    if (!restore()) {
        // The pipes are all that 1 and 2 lead to now: they stay, and so does their reader.
        engine->error(tr("Unable to dup2 to restore stderr"));
        return;
    }
    Unattended::setStandardError(-1);
    closeAll();
    if (!minion)
        return;
    minion->deactivate();
    minion->deleteLater();
}

bool YumIOCapturers::restore()
{
    // Both are tried: one that can be put back isn't left astray for the other.
    if (stdoutRedirected)
        stdoutRedirected = !redirect(savedStdout, STDOUT_FILENO);
    if (stderrRedirected)
        stderrRedirected = !redirect(savedStderr, STDERR_FILENO);
    return !stdoutRedirected && !stderrRedirected;
}

void YumIOCapturers::closeAll()
{
    for (int* fd : {&savedStdout, &savedStderr, &stdoutPipe[0], &stdoutPipe[1], &stderrPipe[0],
                    &stderrPipe[1]}) {
        if (*fd >= 0)
            close(std::exchange(*fd, -1));
    }
}

YumIOCapturersUser::YumIOCapturersUser(YumIOCapturers*& slot, YumIO* engine)
    : slot(slot)
    , saved(slot)
{
    slot = new YumIOCapturers(engine);
}

YumIOCapturersUser::~YumIOCapturersUser()
{
    delete slot;
    slot = saved;
}
