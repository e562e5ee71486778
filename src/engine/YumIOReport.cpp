// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/PyRaised.h"
#include "engine/PyText.h"
#include "engine/YumIODialogs.h"

#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/wait.h>

namespace
{

/// Arguments of the two functions that the script's loggers call.
struct LogArguments {
    bool parse(PyObject* args)
    {
        long number = 0;
        if (!PyArg_ParseTuple(args, "lO&", &number, PyText::converter, &text))
            return false;
        level = static_cast<unsigned int>(std::max(number, 0L));
        return true;
    }

    unsigned int level = 0;
    QString text;
};

} // namespace

void YumIO::log(Log::Kind kind, unsigned int level, const QString& text)
{
    static const QRegularExpression errorNumber(QStringLiteral(": (\\[Errno [0-9]*\\] )"));
    QString lines = text;
    if (lines.contains(QLatin1String(": [Errno ")))
        lines.replace(errorNumber, QStringLiteral(":\n\\1"));
    {
        const QMutexLocker locker(&logEntries.mutex);
        const QStringList parts = lines.split(QLatin1Char('\n'));
        for (const QString& part : parts)
            logEntries.entries.append(Log::Entry(kind, level, part));
    }
    logEntries.emitAppended();
}

PyObject* YumIO::log(PyObject*, PyObject* args)
{
    LogArguments arguments;
    if (!arguments.parse(args))
        return nullptr;
    if (!applyState.transactionListed)
        applyState.transactionText += arguments.text + QLatin1Char('\n');
    log(Log::Plain, arguments.level, arguments.text);
    // Parsed as it came from the script, whatever the log makes of it.
    const QLatin1String solver("TSINFO: ");
    if (arguments.text.startsWith(solver))
        dsTsInfo(arguments.text.mid(solver.size()));
    Py_RETURN_NONE;
}

PyObject* YumIO::errorlog(PyObject*, PyObject* args)
{
    LogArguments arguments;
    if (!arguments.parse(args))
        return nullptr;
    if (!applyState.transactionListed)
        applyState.transactionText += arguments.text + QLatin1Char('\n');
    log(Log::Error, arguments.level, arguments.text);
    Py_RETURN_NONE;
}

void YumIO::withDialogs(const std::function<void(YumIODialogs&)>& show)
{
    // While a work thread runs, `dialogs` is that thread's, and the GUI thread has its own.
    const bool onGui = QThread::currentThread() == thread();
    YumIODialogs* own = onGui && guiDialogs ? guiDialogs : dialogs;
    if (own && own->thread() == QThread::currentThread()) {
        show(*own);
    } else if (guiDialogs) {
        YumIODialogs temporary(parentWidget);
        show(temporary);
    }
    // Before setup() there is no window to show anything in: the log has it.
}

void YumIO::error(const QString& text)
{
    log(Log::Error, 0, text);
    withDialogs([&](YumIODialogs& shown) {
        shown.critical(tr("VOK Yum Error"), text, QString(), QString(), QString(), 0, -1);
    });
}

void YumIO::warning(const QString& text)
{
    log(Log::Warning, 0, text);
    withDialogs([&](YumIODialogs& shown) {
        shown.warning(tr("VOK Yum Warning"), text, QString(), QString(), QString(), 0, -1);
    });
}

void YumIO::error(const char* message)
{
    error(QString::fromUtf8(message));
}

void YumIO::warning(const char* message)
{
    warning(QString::fromUtf8(message));
}

void YumIO::pyExceptExpect(PyObject* exception)
{
    {
        const QMutexLocker locker(&logEntries.mutex);
        exceptLogStart = logEntries.entries.size();
    }
    Python::pyExceptExpect(exception);
}

void YumIO::pyExceptClear()
{
    exceptLogStart = -1;
    Python::pyExceptClear();
}

void YumIO::exceptionExpected() {}

void YumIO::commExceptSetup()
{
    pyExceptExpect(bdbQuit);
    pyExceptExpect(yumBaseError);
    pyExceptExpect(repoError);
    pyExceptExpect(PyExc_IOError);
    pyExceptExpect(PyExc_KeyboardInterrupt);
    pyExceptExpect(PyExc_AssertionError);
    if (sqliteOperationalError)
        pyExceptExpect(sqliteOperationalError);
    if (noMoreMirrorsRepoError)
        pyExceptExpect(noMoreMirrorsRepoError);
}

bool YumIO::commExceptRaised(PyObject* result, const QString& action)
{
    const auto raised = [&](PyObject* exception) {
        return exception && pyExceptMatches(result, exception);
    };
    const auto emitWalkback = [] {
        PyRaised exception = PyRaised::take();
        exception.display();
        return exception;
    };

    if (raised(PyExc_IOError)) {
        const PyRaised exception = emitWalkback();
        const QString text = pyStringDec(pyExceptText(exception.value()).release());
        error(tr("Unable to %1: I/O Error: %2\n\nEmitting a walkback to the Log window.")
                  .arg(action, text));
        return true;
    }
    if (raised(PyExc_KeyboardInterrupt)) {
        emitWalkback();
        error(tr("Unable to %1: KeyboardInterrupt\n\n"
                 "This usually means VOK was sent signal SIGINT, SIGTERM, or similar.\n\n"
                 "But urlgrabber also can raise this error for several situations where it is "
                 "just guessing.\n"
                 "So, emitting a walkback to the Log window.")
                  .arg(action));
        return true;
    }
    if (raised(PyExc_AssertionError)) {
        emitWalkback();
        error(tr("Internal error: python assertion failed\n"
                 "When reporting this issue, please include the contents of the\n"
                 "Log window, which should contain a walkback."));
        return true;
    }
    if (raised(noMoreMirrorsRepoError)) {
        error(tr("Unable to %1: metadata unavailable from all repo mirrors:\n%2")
                  .arg(action, pyStringDec(pyExceptValuef().release())));
        return true;
    }
    if (raised(repoError) || raised(sqliteOperationalError)) {
        const QString text = pyStringDec(pyExceptValuef().release());
        if (text.contains(QLatin1String("database is locked")))
            pythonException(
                tr("Unable to %1: a repository's sqlite database was locked unexpectedly\n"
                   "On some distributions, PackageKit has been known to cause this.")
                    .arg(action));
        else
            exceptionError();
        return true;
    }
    if (raised(bdbQuit) || raised(yumBaseError)) {
        pythonExceptionV(tr("Unable to %1").arg(action));
        return true;
    }
    return false;
}

int YumIO::exceptionMark()
{
    const QMutexLocker locker(&logEntries.mutex);
    return exceptLogStart >= 0 ? exceptLogStart : logEntries.entries.size();
}

void YumIO::showErrorsSince(int mark)
{
    QStringList lines;
    {
        const QMutexLocker locker(&logEntries.mutex);
        for (int line = mark; line < logEntries.entries.size(); ++line) {
            const Log::Entry& entry = logEntries.entries.at(line);
            if (entry.kind == Log::Error && entry.level < 3)
                lines.append(entry.text);
        }
    }
    withDialogs([&](YumIODialogs& shown) {
        shown.scrollable(tr("VOK Yum Error"), lines.join(QLatin1Char('\n')));
    });
}

void YumIO::pythonException(const QString& message)
{
    const int mark = exceptionMark();
    log(Log::Error, 0, message);
    showErrorsSince(mark);
}

void YumIO::pythonExceptionV(const QString& message)
{
    const int mark = exceptionMark();
    log(Log::Error, 0, pyStringXDec(pyExceptValuef().release()));
    log(Log::Error, 0, message);
    showErrorsSince(mark);
}

bool YumIO::reapChildren()
{
    for (;;) {
        const pid_t child = waitpid(-1, nullptr, WNOHANG);
        if (child > 0) {
            log(Log::Warning, 0, tr("Reaped zombie child %1").arg(child));
            continue;
        }
        if (child == 0 || errno == ECHILD)
            return true;
        const int reason = errno;
        error(tr("Unable to reap children; errno=%1 (%2)")
                  .arg(reason)
                  .arg(QString::fromLocal8Bit(std::strerror(reason))));
        return false;
    }
}

void YumIO::sigchldDisable()
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    if (sigaction(SIGCHLD, &action, &oldSigchld) == 0)
        return;
    const int reason = errno;
    error(tr("Unable to disable SIGCHLD signal handler; errno=%1 (%2)")
              .arg(reason)
              .arg(QString::fromLocal8Bit(std::strerror(reason))));
}

void YumIO::sigchldRestore()
{
    if (sigaction(SIGCHLD, &oldSigchld, nullptr) == 0)
        return;
    const int reason = errno;
    error(tr("Unable to restore SIGCHLD signal handler; errno=%1 (%2)")
              .arg(reason)
              .arg(QString::fromLocal8Bit(std::strerror(reason))));
}
