// SPDX-License-Identifier: GPL-2.0-or-later
#include "Output.h"

#include <QFile>
#include <QProcess>

QString output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished())
        return program + QLatin1String(": ") + process.errorString();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QString historyStates(const QString& file)
{
    if (!QFile::exists(file))
        return QString();
    return output(VOK_PYTHON, {"-c",
                               "import sqlite3, sys\n"
                               "found = sqlite3.connect(sys.argv[1]).execute(\n"
                               "    'select state from trans where dt_end is not null')\n"
                               "print(*(state for state, in found))\n",
                               file});
}
