// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/Contract.h"
#include "support/DialogDriver.h"

#include <QObject>

#include <memory>

/// A test class over the double of the script: one engine for the class, and in each test function
/// every dialog must have been expected.
class ContractTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<Contract> contract;
    std::unique_ptr<DialogDriver> driver;

protected Q_SLOTS:
    virtual void cleanup()
    {
        driver->verify();
        driver.reset();
    }

private Q_SLOTS:
    void initTestCase() { contract = std::make_unique<Contract>(); }
    void cleanupTestCase() { contract.reset(); }
    void init() { driver = std::make_unique<DialogDriver>(); }
};
