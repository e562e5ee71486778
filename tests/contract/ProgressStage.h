// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/ContractTest.h"

#include <QSignalSpy>

#include <memory>

/// Base of the tests that call the meters' side of a collection on the GUI thread, where each step
/// can be looked at.
class ProgressStage : public ContractTest
{
protected:
    void cleanup() override
    {
        progressUser.reset();
        ContractTest::cleanup();
    }

    OpenEngine& engine() { return contract->engine(); }
    OpenEngine::CollectState& state() { return contract->engine().collectState; }

    /// A fresh engine with `repos` repositories whose progress lives on this thread.
    void open(int repos, const QJsonObject& told = {})
    {
        contract->play(told);
        state() = {};
        for (int i = 0; i < repos; ++i)
            state().repos.append(QString::number(i));
        state().contentsLabel = "contents";
        progressUser = std::make_unique<Progress::User>(engine().progress, &contract->totalBar,
                                                        &contract->itemBar);
        Progress::Object* progress = engine().progress;
        progress->startTotal("total", static_cast<Steps>(repos) * 600);
        progress->setupItemActs(static_cast<Steps>(repos) * 600, static_cast<Steps>(repos) * 6);
        itemStarts = std::make_unique<QSignalSpy>(progress, &Progress::Object::startItemSig);
        itemValues = std::make_unique<QSignalSpy>(progress, &Progress::Object::setItemValueSig);
        threads = std::make_unique<QSignalSpy>(progress, &Progress::Object::updateThreadsStateSig);
    }

    void startBatch(int files, int size)
    {
        run(QString("yumIOC.collectGrabMultiMeterStart(%1, %2)").arg(files).arg(size));
    }

    void run(const QString& code)
    {
        OpenEngine::PyGILStateWrapper lock(true);
        engine().py(code.toUtf8().constData());
    }

    static QString start(const char* meter, const QString& filename, const QString& size = "10",
                         const QString& text = "")
    {
        return QString("yumIOC.collectGrabMeterStart('%1', '%2', '', '', %3, '%4')")
            .arg(meter, filename, size, text);
    }

    /// Activities of the items begun since open().
    QStringList items()
    {
        QStringList texts;
        for (const QList<QVariant>& arguments : qAsConst(*itemStarts))
            texts.append(arguments.first().toString());
        return texts;
    }

    ThreadsState lastThreads() { return threads->last().first().value<ThreadsState>(); }
    unsigned int slotCount() { return lastThreads().count(); }
    Progress::ThreadState slot(unsigned int thread)
    {
        const ThreadsState state = lastThreads();
        return thread < state.count() ? state[thread] : Progress::ThreadState();
    }

    std::unique_ptr<Progress::User> progressUser;
    std::unique_ptr<QSignalSpy> itemStarts;
    std::unique_ptr<QSignalSpy> itemValues;
    std::unique_ptr<QSignalSpy> threads;
};
