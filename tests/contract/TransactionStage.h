// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/MeterStage.h"

/// An Apply whose transaction is about to run, over these rows:
///   fresh   can be installed, 100,000 bytes
///   tiny    can be installed, 100 bytes
///   kernel  an update of 50,000 bytes over two old versions, of 600,000 and 40,000
///   triple  an update over three old versions
///   gone    installed, 30,000 bytes
///   twice   two installed versions, of 30,000 and 7 bytes
/// None is marked. A twentieth of the acts of the transaction is 1000.
class TransactionStage : public MeterStage
{
protected:
    static QJsonObject sized(QJsonObject package, int size, const QString& version = "1-1")
    {
        package.insert("size", size);
        package.insert("ver", version);
        return package;
    }

    void openTransaction(const QJsonObject& more = {})
    {
        const auto old = [](const char* name, int size, const char* version) {
            return sized(Contract::installed(name), size, version);
        };
        QJsonObject told{
            {"available", QJsonArray{sized(Contract::package("fresh"), 100000),
                                     sized(Contract::package("tiny"), 100)}},
            {"updates", QJsonArray{sized(Contract::package("kernel"), 50000, "9-1"),
                                   sized(Contract::package("triple"), 50000, "9-1")}},
            {"installed", QJsonArray{old("kernel", 600000, "2-1"), old("kernel", 40000, "1-1"),
                                     old("triple", 100, "3-1"), old("triple", 200, "2-1"),
                                     old("triple", 300, "1-1"), old("gone", 30000, "1-1"),
                                     old("twice", 30000, "2-1"), old("twice", 7, "1-1")}},
        };
        for (auto key = more.begin(); key != more.end(); ++key)
            told.insert(key.key(), key.value());
        open(told);
        state().transactionActs = 20019;
        QVERIFY(contract->row("kernel") && contract->row("triple") && contract->row("twice"));
    }

    void mark(const char* name, Package::Action action)
    {
        Package::Entry* entry = contract->row(name);
        QVERIFY(entry);
        entry->applyAction = action;
    }

    /// Versions of the row that rpm has begun with, the head first.
    QStringList started(const char* name)
    {
        QStringList versions;
        for (const Package::Entry* entry = contract->row(name); entry; entry = entry->next) {
            if (entry->started)
                versions.append(entry->verRel);
        }
        return versions;
    }

    quint32 actsOf(const std::function<void()>& step)
    {
        const quint32 before = act();
        step();
        return act() - before;
    }

    void expectWarning(const QString& text)
    {
        driver->expect("VOK Yum Warning").text(text).press("OK");
    }

    void expectError(const QString& text)
    {
        driver->expect("VOK Yum Error").text(text).press("OK");
    }
};
