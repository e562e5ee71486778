// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/ConfigTree.h"

#include <QObject>
#include <QWidget>

#include <memory>

/// What tests of the writer share: a system root with a main file and an empty repository directory
/// in it, and the reader and writer that administers it.
class WriteTest : public QObject
{
    Q_OBJECT

protected:
    const QString mainFile = QStringLiteral("/etc/yum.conf");
    const QString repoDir = QStringLiteral("/etc/yum.repos.d");

    class Writer : public YumConfIO
    {
    public:
        using YumConfIO::confText;
        using YumConfIO::YumConfIO;
    };

    static Repo::Entry makeEntry(const char* id, const char* name = "");

    /// Where the file of this name in the repository directory is in the system.
    QString repo(const char* name) const;
    QByteArray content(const QString& path) const;
    /// The names of all that is in the repository directory, sorted.
    QStringList repoFiles() const;
    /// The first entry of this id, which must be there.
    Repo::Entry& at(const char* id);
    bool read() { return io->read(window.get()); }
    bool write() { return io->write(window.get()); }

    std::unique_ptr<ConfigTree> tree;
    std::unique_ptr<DialogDriver> driver;
    std::unique_ptr<QWidget> window;
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<Writer> io;

private Q_SLOTS:
    void init();
    void cleanup();
};
