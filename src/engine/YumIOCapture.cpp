// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/PyText.h"

void YumIO::write(const QString& text, Log::Kind kind, unsigned int level, QString& partial)
{
    {
        const QMutexLocker partialLocker(&partialMutex);
        partial += text;
        if (!text.contains(QLatin1Char('\n')))
            return;
        QStringList lines = partial.split(QLatin1Char('\n'));
        partial = lines.takeLast();

        const QMutexLocker logLocker(&logEntries.mutex);
        for (const QString& line : qAsConst(lines))
            logEntries.entries.append(Log::Entry(kind, level, line));
    }
    logEntries.emitAppended();
}

void YumIO::writeStdout(const QString& text)
{
    write(text, Log::Output, 0, stdoutPartial);
}

void YumIO::writeStderr(const QString& text)
{
    write(text, Log::Error, 0, stderrPartial);
}

PyObject* YumIO::stdoutWrite(PyObject*, PyObject* args)
{
    QString text;
    if (!PyArg_ParseTuple(args, "O&", PyText::converter, &text))
        return nullptr;
    write(text, Log::Output, 0, stdoutPartial);
    Py_RETURN_NONE;
}

PyObject* YumIO::stderrWrite(PyObject*, PyObject* args)
{
    QString text;
    if (!PyArg_ParseTuple(args, "O&", PyText::converter, &text))
        return nullptr;
    write(text, stderrKind, stderrLevel, stderrPartial);
    Py_RETURN_NONE;
}
