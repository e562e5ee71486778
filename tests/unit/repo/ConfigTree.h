// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A temporary system root with configuration files in it, which the program administers as long as
/// this exists.
class ConfigTree
{
public:
    ConfigTree();
    ~ConfigTree();
    ConfigTree(const ConfigTree&) = delete;
    ConfigTree& operator=(const ConfigTree&) = delete;

    /// Where `path`, an absolute path of the system, really lies.
    QString path(const QString& path) const;
    /// Makes a file with all directories above it; fails the test where it can't.
    void write(const QString& path, const QByteArray& content) const;
    void makeDirectory(const QString& path) const;
    void link(const QString& target, const QString& path) const;

private:
    QTemporaryDir root;
    QByteArray oldRoot;
    bool hadRoot;
};
