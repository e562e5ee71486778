// SPDX-License-Identifier: GPL-2.0-or-later
#include "RecordedBrowser.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace
{

/// A file for each call, with its arguments one a line, which is there when it is whole.
const char browser[] = "#!/bin/sh\n"
                       "n=1\n"
                       "while [ -e \"$0.$n\" ]; do n=$((n + 1)); done\n"
                       "printf '%s\\n' \"$@\" > \"$0.part\"\n"
                       "mv \"$0.part\" \"$0.$n\"\n";

} // namespace

RecordedBrowser::RecordedBrowser()
    : original(qgetenv("VOKSHARE"))
{
    const QDir folder(QFile::decodeName(original));
    const QStringList names = folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString& name : names)
        QFile::link(folder.absoluteFilePath(name), share.filePath(name));
    const QString path = share.filePath(QStringLiteral("webbrowser"));
    QFile::remove(path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(browser);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("VOKSHARE", QFile::encodeName(share.path()));
}

RecordedBrowser::~RecordedBrowser()
{
    qputenv("VOKSHARE", original);
}

QString RecordedBrowser::record(int number) const
{
    return share.filePath(QStringLiteral("webbrowser.%1").arg(number));
}

QStringList RecordedBrowser::call()
{
    QFile file(record(++calls));
    if (!QTest::qWaitFor([&] { return file.exists(); }, 10000) || !file.open(QIODevice::ReadOnly))
        return QStringList();
    QStringList arguments =
        QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::KeepEmptyParts);
    arguments.removeLast();
    return arguments;
}

bool RecordedBrowser::calledOnceMore() const
{
    return QFile::exists(record(calls + 1));
}
