// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/ConfigTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

ConfigTree::ConfigTree()
    : oldRoot(qgetenv("VOKROOT"))
    , hadRoot(qEnvironmentVariableIsSet("VOKROOT"))
{
    qputenv("VOKROOT", QFile::encodeName(root.path()));
}

ConfigTree::~ConfigTree()
{
    if (hadRoot)
        qputenv("VOKROOT", oldRoot);
    else
        qunsetenv("VOKROOT");
}

QString ConfigTree::path(const QString& path) const
{
    return root.path() + path;
}

void ConfigTree::write(const QString& path, const QByteArray& content) const
{
    makeDirectory(QFileInfo(path).path());
    QFile file(this->path(path));
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(file.fileName()));
    QCOMPARE(file.write(content), qint64(content.size()));
}

void ConfigTree::makeDirectory(const QString& path) const
{
    QVERIFY(QDir().mkpath(this->path(path)));
}

void ConfigTree::link(const QString& target, const QString& path) const
{
    makeDirectory(QFileInfo(path).path());
    QVERIFY(QFile::link(target, this->path(path)));
}
