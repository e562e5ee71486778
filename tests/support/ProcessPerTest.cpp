// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/ProcessPerTest.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QProcess>
#include <QStringList>
#include <QtTest>

#include <cstdio>

namespace
{

QStringList testFunctions(const QObject& tests)
{
    const QStringList others{QStringLiteral("initTestCase"), QStringLiteral("cleanupTestCase"),
                             QStringLiteral("init"), QStringLiteral("cleanup")};
    QStringList names;
    const QMetaObject* meta = tests.metaObject();
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        const QString name = QString::fromLatin1(method.name());
        if (method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private &&
            method.parameterCount() == 0 && !others.contains(name) &&
            !name.endsWith(QLatin1String("_data")))
            names << name;
    }
    return names;
}

} // namespace

int runEachTestInItsOwnProcess(QObject& tests, int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] != '-')
            return QTest::qExec(&tests, argc, argv);
    }
    int failures = 0;
    const QStringList names = testFunctions(tests);
    for (const QString& name : names) {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QCoreApplication::applicationFilePath(), QCoreApplication::arguments().mid(1)
                                                                   << name);
        const bool finished = process.waitForFinished(60000);
        if (!finished) {
            process.kill();
            process.waitForFinished();
        }
        std::fputs(process.readAll().constData(), stdout);
        if (!finished || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            std::printf("FAIL!  : %s in a process of its own: %s\n", qPrintable(name),
                        !finished                                      ? "took too long"
                        : process.exitStatus() != QProcess::NormalExit ? "crashed"
                                                                       : "failed");
            ++failures;
        }
    }
    std::printf("%d of %d test functions failed\n", failures, static_cast<int>(names.size()));
    return failures;
}
