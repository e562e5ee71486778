// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QObject>

class YumIO;
class YumIOCapturersMinion;

/// While one exists, what the process writes to descriptors 1 and 2 goes to the log. Made and
/// destroyed on a work thread; the pipes are read on the GUI thread, whose event loop must run
/// meanwhile.
class YumIOCapturers : public QObject
{
    Q_OBJECT

public:
    explicit YumIOCapturers(YumIO* engine);
    ~YumIOCapturers() override;

private:
    /// Points 1 and 2 where they pointed before; false where one can't be.
    bool restore();
    void closeAll();

    YumIOCapturersMinion* minion = nullptr; ///< null where the capture couldn't be set up
    YumIO* engine;
    int savedStdout = -1;
    int savedStderr = -1;
    int stdoutPipe[2] = {-1, -1};
    int stderrPipe[2] = {-1, -1};
    bool stdoutRedirected = false;
    bool stderrRedirected = false;
};

/// Puts a YumIOCapturers into `slot` for a scope, and the old one back at the end.
class YumIOCapturersUser
{
public:
    YumIOCapturersUser(YumIOCapturers*& slot, YumIO* engine);
    ~YumIOCapturersUser();
    YumIOCapturersUser(const YumIOCapturersUser&) = delete;
    YumIOCapturersUser& operator=(const YumIOCapturersUser&) = delete;

private:
    YumIOCapturers*& slot;
    YumIOCapturers* saved;
};
