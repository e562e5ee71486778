// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIOCapturersMinion.h"

#include "engine/Python.h"
#include "engine/Unattended.h"
#include "engine/YumIO.h"

#include <QSocketNotifier>
#include <QTextCodec>
#include <QTextDecoder>
#include <QThread>

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace
{

std::unique_ptr<QTextDecoder> makeDecoder()
{
    return std::unique_ptr<QTextDecoder>(
        QTextCodec::codecForName("UTF-8")->makeDecoder(QTextCodec::IgnoreHeader));
}

} // namespace

YumIOCapturersMinion::YumIOCapturersMinion(YumIO* engine, int stdoutFd, int stderrFd)
    : engine(engine)
    , stdoutFd(stdoutFd)
    , stderrFd(stderrFd)
    , stdoutDecoder(makeDecoder())
    , stderrDecoder(makeDecoder())
{
    setObjectName(QStringLiteral("YumIOCapturersMinion"));
}

YumIOCapturersMinion::~YumIOCapturersMinion()
{
    Unattended::forget(this);
    close();
}

void YumIOCapturersMinion::activate()
{
    QMetaObject::invokeMethod(this, "initialize", Qt::QueuedConnection);
}

void YumIOCapturersMinion::deactivate()
{
    if (thread() == QThread::currentThread()) {
        finalize();
        return;
    }
    // The GUI thread may be waiting for the interpreter before it gets to the pipes.
    const Python::UnlockedWait unlocked;
    finished.acquire();
    QMetaObject::invokeMethod(this, "finalize", Qt::QueuedConnection);
    finished.acquire();
    finished.release();
}

void YumIOCapturersMinion::initialize()
{
    if (active || stdoutFd < 0)
        return;
    stdoutNotifier = new QSocketNotifier(stdoutFd, QSocketNotifier::Read, this);
    stderrNotifier = new QSocketNotifier(stderrFd, QSocketNotifier::Read, this);
    connect(stdoutNotifier, &QSocketNotifier::activated, this, &YumIOCapturersMinion::readStdout);
    connect(stderrNotifier, &QSocketNotifier::activated, this, &YumIOCapturersMinion::readStderr);
    active = true;
}

void YumIOCapturersMinion::finalize()
{
    close();
    finished.release();
}

void YumIOCapturersMinion::close()
{
    if (stdoutFd < 0)
        return;
    active = false;
    delete std::exchange(stdoutNotifier, nullptr);
    delete std::exchange(stderrNotifier, nullptr);
    readStdout();
    readStderr();
    ::close(std::exchange(stdoutFd, -1));
    ::close(std::exchange(stderrFd, -1));
}

void YumIOCapturersMinion::readStdout()
{
    const QString text = read(stdoutFd, stdoutNotifier, *stdoutDecoder);
    if (!text.isEmpty())
        engine->writeStdout(text);
}

void YumIOCapturersMinion::readStderr()
{
    const QString text = read(stderrFd, stderrNotifier, *stderrDecoder);
    if (!text.isEmpty())
        engine->writeStderr(text);
}

QString YumIOCapturersMinion::read(int fd, QSocketNotifier* notifier, QTextDecoder& decoder)
{
    // No pipe holds more than this, so the last read of a capture gets all that was written before,
    // and a writer that never pauses can't keep the GUI thread here.
    constexpr int most = 1 << 20;
    QString text;
    char buffer[16384];
    for (int total = 0; total < most;) {
        const ssize_t length = ::read(fd, buffer, sizeof buffer);
        if (length > 0) {
            text += decoder.toUnicode(buffer, static_cast<int>(length));
            total += static_cast<int>(length);
        } else if (length == 0 || errno != EINTR) {
            if (notifier && (length == 0 || errno != EAGAIN))
                notifier->setEnabled(false);
            break;
        }
    }
    return text;
}
