// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "WindowDriver.h"

#include <QJsonObject>
#include <QTemporaryDir>

/// A main window over the double of the script, with a share directory and a system root of its
/// own.
class WindowLife : public WindowDriver
{
public:
    WindowLife();

    /// What the double plays from its next start or collection on. A first system is there already.
    QJsonObject system;
    void play();

    QString sharePath(const QString& path) const { return share.filePath(path); }
    QString rootPath(const QString& path) const { return root.filePath(path); }
    /// Makes the folders that it needs.
    static void writeFile(const QString& path, const QByteArray& text, bool executable = false);
    /// The script is this text instead of the double.
    void useScript(const QByteArray& text);

    /// Names of the methods that the program has called on the double since the last call of this.
    QStringList calls();

private:
    QTemporaryDir share;
    QTemporaryDir root;
};
