// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

#include <memory>

class QWidget;
class YumConfIO;

namespace Repo
{
struct Entry;
}

namespace RepoAuth
{

class Dialog;

/// One check that every repository in use has the name and the password that its URLs want. The
/// user is asked for what is missing, and the answers are written to the files.
class Checker
{
public:
    struct Auth {
        QString name;
        QString password;
    };

    /// Reads the configuration into `conf` and does the whole check; runs an event loop as long as
    /// the user is asked.
    Checker(QWidget* parent, YumConfIO* conf);
    ~Checker();
    Checker(const Checker&) = delete;
    Checker& operator=(const Checker&) = delete;

    /// Puts `auth` into all URLs of `entry`.
    static void replace(Repo::Entry& entry, const Auth& auth);

    bool quit = false;    ///< the user chose to quit the program
    bool changed = false; ///< credentials of some repository changed

private:
    /// Walks the repositories until the user has had enough.
    void askAll(QWidget* parent, YumConfIO* conf);

    std::unique_ptr<Dialog> dialog; ///< made when it is needed first
};

} // namespace RepoAuth
