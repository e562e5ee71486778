// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/ContractTest.h"

#include <QtTest>

#include <memory>

/// Base of the tests that call the script's side of an Apply on the GUI thread, where each step can
/// be looked at.
class MeterStage : public ContractTest
{
protected:
    /// A progress object with the numbers open that the bars see only now and then.
    class OpenProgress : public Progress::Object
    {
    public:
        using Progress::Object::actCount;
        using Progress::Object::actIndex;
        using Progress::Object::actsEnd;
        using Progress::Object::actsSpan;
        using Progress::Object::itemEnd;
        using Progress::Object::itemMaximum;
        using Progress::Object::itemStart;
        using Progress::Object::itemValue;
        using Progress::Object::Object;
        using Progress::Object::threads;
        using Progress::Object::totalValue;
    };

    void cleanup() override
    {
        engine().transactionGuard.reset();
        engine().progress = nullptr;
        progress.reset();
        ContractTest::cleanup();
    }

    OpenEngine& engine() { return contract->engine(); }
    OpenEngine::ApplyState& state() { return contract->engine().applyState; }

    /// The rows of `told`, and an Apply in a stretch of `acts` acts, a step each.
    void open(const QJsonObject& told = {}, int acts = 10000000)
    {
        contract->play(told);
        QVERIFY(contract->collect());
        state() = {};
        progress = std::make_unique<OpenProgress>(&contract->totalBar, &contract->itemBar);
        engine().progress = progress.get();
        progress->startTotal("total", static_cast<Steps>(acts));
        progress->setupItemActs(static_cast<Steps>(acts), static_cast<Steps>(acts));
        items.clear();
        QObject::connect(progress.get(), &Progress::Object::startItemSig, progress.get(),
                         [this](const QString& activity) { items.append(activity); });
        run("def raised(function, *arguments):\n"
            "    try:\n"
            "        return str(function(*arguments))\n"
            "    except Exception as trouble:\n"
            "        return type(trouble).__name__\n");
    }

    /// Runs the script's text as the script would during an Apply.
    void run(const QString& code)
    {
        OpenEngine::PyGILStateWrapper lock(true);
        engine().py(code.toUtf8().constData());
    }

    /// What a function of yumIOC returns, as text, or the name of what it raises.
    QString call(const QString& function, const QString& arguments)
    {
        return contract->eval(QString("raised(yumIOC.%1, %2)").arg(function, arguments));
    }

    quint32 act() { return state().progressAct; }

    std::unique_ptr<OpenProgress> progress;
    QStringList items; ///< activities of the items begun since open()
};
