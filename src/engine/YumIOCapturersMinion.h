// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QObject>
#include <QSemaphore>

#include <memory>

class QSocketNotifier;
class QTextDecoder;
class YumIO;

/// Reads, on the GUI thread, the pipes that captured output comes through.
class YumIOCapturersMinion : public QObject
{
    Q_OBJECT

public:
    /// Takes over the two descriptors, read ends that don't block.
    YumIOCapturersMinion(YumIO* engine, int stdoutFd, int stderrFd);
    ~YumIOCapturersMinion() override;

    /// Starts reading on the minion's thread; returns at once.
    void activate();
    /// Returns when all that has been written so far is in the log and reading has ended. The write
    /// ends must be closed. Any thread; the minion's must be running its event loop.
    void deactivate();

    Q_INVOKABLE void initialize();
    Q_INVOKABLE void finalize();

public Q_SLOTS:
    void readStdout();
    void readStderr();

private:
    /// What is there to be read. At the end of the stream the notifier is switched off: it would
    /// fire for ever.
    QString read(int fd, QSocketNotifier* notifier, QTextDecoder& decoder);
    void close();

    YumIO* engine;
    bool active = false;
    int stdoutFd;
    int stderrFd;
    QSocketNotifier* stdoutNotifier = nullptr;
    QSocketNotifier* stderrNotifier = nullptr;
    // A character may come in two pieces.
    std::unique_ptr<QTextDecoder> stdoutDecoder;
    std::unique_ptr<QTextDecoder> stderrDecoder;
    QSemaphore finished{1};
};
