// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QDir>
#include <QFile>
#include <QTest>

Repo::Entry WriteTest::makeEntry(const char* id, const char* name)
{
    Repo::Entry entry;
    entry.id = QLatin1String(id);
    entry.name = QLatin1String(name);
    return entry;
}

QString WriteTest::repo(const char* name) const
{
    return repoDir + QLatin1Char('/') + QLatin1String(name);
}

void WriteTest::init()
{
    tree = std::make_unique<ConfigTree>();
    tree->write(mainFile, "[main]\n");
    tree->makeDirectory(repoDir);
    driver = std::make_unique<DialogDriver>();
    window = std::make_unique<QWidget>();
    used.clear();
    io = std::make_unique<Writer>(options, used);
}

void WriteTest::cleanup()
{
    io.reset();
    window.reset();
    driver.reset();
    tree.reset();
}

QByteArray WriteTest::content(const QString& path) const
{
    QFile file(tree->path(path));
    if (!file.open(QIODevice::ReadOnly))
        return "no such file: " + path.toUtf8();
    return file.readAll();
}

QStringList WriteTest::repoFiles() const
{
    return QDir(tree->path(repoDir))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

Repo::Entry& WriteTest::at(const char* id)
{
    for (Repo::Entry& entry : io->entries) {
        if (entry.id == QLatin1String(id))
            return entry;
    }
    qFatal("no entry %s", id);
}
