// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/ContractTest.h"

#include <QtTest>

/// Base of the tests that run whole Applies.
class ApplyStage : public ContractTest
{
protected:
    /// Collects one available and one installed package; `apply` is what the script does.
    void collect(const QString& apply = QString())
    {
        contract->play({{"available", QJsonArray{Contract::package("new")}},
                        {"installed", QJsonArray{Contract::package("good")}},
                        {"apply", apply}});
        QVERIFY(contract->collect());
        contract->mark({{"new", Package::ActionInstall}});
        contract->forgetCalls();
    }

    OpenEngine& engine() { return contract->engine(); }
    OpenEngine::ApplyState& state() { return contract->engine().applyState; }

    /// Calls of an Apply in their order, without those that ask for data.
    QStringList road()
    {
        const QStringList data{"getBiArch", "localHdr", "hasMultiProgress", "usesPresto"};
        QStringList methods;
        const QStringList calls = contract->calls();
        for (const QString& call : calls) {
            const QString method = call.section('(', 0, 0);
            if (!data.contains(method))
                methods.append(method);
        }
        return methods;
    }

    /// Within the script's part the user says yes.
    void confirm()
    {
        contract->probe([this](const QString& method) {
            if (method == "apply")
                state().applyConfirmed = true;
        });
    }
};
