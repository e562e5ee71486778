// SPDX-License-Identifier: GPL-2.0-or-later
#include "RecordedScripts.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace
{

/// A file for each call, with its arguments one a line, which is there when it is whole.
const char recorder[] = "#!/bin/sh\n"
                        "n=1\n"
                        "while [ -e \"$0.$n\" ]; do n=$((n + 1)); done\n"
                        "printf '%s\\n' \"$@\" > \"$0.part\"\n"
                        "mv \"$0.part\" \"$0.$n\"\n";

} // namespace

RecordedScripts::RecordedScripts()
    : original(qgetenv("VOKSHARE"))
{
    const QDir folder(QFile::decodeName(original));
    const QStringList names = folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString& name : names)
        QFile::link(folder.absoluteFilePath(name), share.filePath(name));
    for (const char* script : {"webbrowser", "mimeviewer"}) {
        const QString path = share.filePath(QLatin1String(script));
        QFile::remove(path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(recorder);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    qputenv("VOKSHARE", QFile::encodeName(share.path()));
}

RecordedScripts::~RecordedScripts()
{
    qputenv("VOKSHARE", original);
}

QString RecordedScripts::record(const QString& script, int number) const
{
    return share.filePath(QStringLiteral("%1.%2").arg(script).arg(number));
}

QStringList RecordedScripts::call(const QString& script)
{
    QFile file(record(script, ++calls[script]));
    if (!QTest::qWaitFor([&] { return file.exists(); }, 10000) || !file.open(QIODevice::ReadOnly))
        return QStringList();
    QStringList arguments =
        QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::KeepEmptyParts);
    arguments.removeLast();
    return arguments;
}

bool RecordedScripts::calledOnceMore(const QString& script) const
{
    return QFile::exists(record(script, calls.value(script) + 1));
}
