// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/ContractTest.h"

#include <QtTest>

#include <memory>

/// Base of the tests that call the functions of an Apply up to its review on the GUI thread, where
/// each step can be looked at. Rows are collected before.
class ReviewStage : public ContractTest
{
protected:
    void cleanup() override
    {
        progressUser.reset();
        ContractTest::cleanup();
    }

    OpenEngine& engine() { return contract->engine(); }
    OpenEngine::ApplyState& state() { return contract->engine().applyState; }

    /// Collects what is told, then stands where an Apply has marked out the solver's stretch of
    /// 9900 steps, `acts` acts long, behind the 100 steps of its preparation.
    void open(const QJsonObject& told, Steps acts = 0)
    {
        contract->play(told);
        QVERIFY(contract->collect());
        contract->forgetCalls();
        {
            const QMutexLocker locker(&engine().getLogEntries().mutex);
            engine().getLogEntries().entries.clear();
        }
        state() = {};
        progressUser = std::make_unique<Progress::User>(engine().progress, &contract->totalBar,
                                                        &contract->itemBar);
        Progress::Object* progress = engine().progress;
        progress->startTotal("total", 10000);
        progress->startItem("Preparing", 100, 1);
        progress->setupItemActs(9900, acts);
        totals = std::make_unique<QSignalSpy>(progress, &Progress::Object::startTotalSig);
        items = std::make_unique<QSignalSpy>(progress, &Progress::Object::startItemSig);
        changes = std::make_unique<QSignalSpy>(progress, &Progress::Object::changeItemActsSig);
        ends = std::make_unique<QSignalSpy>(progress, &Progress::Object::endItemActsSig);
        resets = std::make_unique<QSignalSpy>(progress, &Progress::Object::resetSig);
    }

    void run(const QString& code)
    {
        OpenEngine::PyGILStateWrapper lock(true);
        engine().py(code.toUtf8().constData());
    }

    /// What a call gives the script: the value, or the name of the exception.
    QString outcome(const QString& call)
    {
        run(QString("try:\n"
                    "    outcome = repr(%1)\n"
                    "except BaseException as failure:\n"
                    "    outcome = type(failure).__name__")
                .arg(call));
        return contract->eval("outcome");
    }

    /// The row of a package that may have namesakes of other architectures.
    Package::Entry* row(const QString& name, const QString& biArch)
    {
        return engine().entryHash.value(YumIO::EntryKey(false, name, biArch));
    }

    /// A file that is there.
    QString presentFile()
    {
        QFile file(files.filePath("present.rpm"));
        return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
    }

    /// One that isn't.
    QString absentFile() { return files.filePath("absent.rpm"); }

    static QJsonObject package(const char* name, const char* version, const char* arch,
                               QJsonObject more = {})
    {
        more.insert("ver", version);
        more.insert("arch", arch);
        return Contract::package(name, more);
    }

    static QJsonObject installed(const char* name, const char* version, const char* arch,
                                 int size = 0)
    {
        return package(name, version, arch,
                       {{"size", size}, {"repoid", "installed"}, {"hdr", QJsonObject()}});
    }

    static Steps steps(const std::unique_ptr<QSignalSpy>& spy, int argument)
    {
        return spy->last().at(argument).value<Steps>();
    }

    QTemporaryDir files;
    std::unique_ptr<Progress::User> progressUser;
    std::unique_ptr<QSignalSpy> totals;
    std::unique_ptr<QSignalSpy> items;
    std::unique_ptr<QSignalSpy> changes;
    std::unique_ptr<QSignalSpy> ends;
    std::unique_ptr<QSignalSpy> resets;
};
