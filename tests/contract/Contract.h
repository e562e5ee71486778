// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/YumIO.h"
#include "progress/HProgressBar.h"
#include "progress/Progress.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QWidget>

#include <functional>
#include <memory>

/// The engine with everything open that these tests look at.
class OpenEngine : public YumIO
{
public:
    using YumIO::allPkgs;
    using YumIO::applyGroups;
    using YumIO::applyReal;
    using YumIO::ApplyState;
    using YumIO::applyState;
    using YumIO::basearch;
    using YumIO::bestByName;
    using YumIO::biArchs;
    using YumIO::capturers;
    using YumIO::clearEntriesReal;
    using YumIO::clearingEntries;
    using YumIO::collectEnd;
    using YumIO::collectFailure;
    using YumIO::collectGroup;
    using YumIO::collectPkg;
    using YumIO::collectStart;
    using YumIO::CollectState;
    using YumIO::collectState;
    using YumIO::collectUpdate;
    using YumIO::displayTransactionPkgsObs;
    using YumIO::dsTsFindPkg;
    using YumIO::dsTsInfo;
    using YumIO::dsTsNewPkg;
    using YumIO::entries;
    using YumIO::entryHash;
    using YumIO::findPackage;
    using YumIO::findRelation;
    using YumIO::findUpdateablePackage;
    using YumIO::getGroupItem_22;
    using YumIO::getGroupItem_25;
    using YumIO::getLocalHdr;
    using YumIO::getLocalPkg;
    using YumIO::getPrco;
    using YumIO::getRpmHdrValue;
    using YumIO::hasNotStartedRemove;
    using YumIO::hasNotStartedUpdate;
    using YumIO::installActs;
    using YumIO::makeLists;
    using YumIO::noteTransactionPkgs;
    using YumIO::parseEnvra;
    using YumIO::pkgTree;
    using YumIO::pkgtupFormat;
    using YumIO::pkgtupRepoFormat;
    using YumIO::progress;
    using YumIO::py;
    using YumIO::PyGILStateWrapper;
    using YumIO::pyr;
    using YumIO::pyStringDec;
    using YumIO::removeActs;
    using YumIO::requiredPkgs;
    using YumIO::rpmDict;
    using YumIO::transactionGuard;
    using YumIO::updatedActs;
    using YumIO::upToDateGroup;
    using YumIO::yumIO;
    using YumIO::yumLocked;

    /// Forgets all that the engine asked of the package manager once.
    void forget();
    bool isI686(Package::Entry* entry) { return entry->arch == QLatin1String("i686"); }
};

/// One engine and the double of its script for a test class: the interpreter starts once a process.
/// Each test function tells the double what to be by play().
class Contract
{
public:
    Contract();
    /// Ends the interpreter and puts the environment back.
    ~Contract();

    /// Writes what the double is to be, makes a new instance of it and clears the engine. No
    /// entries, no calls and no log lines are left.
    void play(const QJsonObject& told);
    bool collect(const QHash<QString, bool>& usedRepos = {});

    /// Marks rows by name.
    void mark(const QHash<QString, Package::Action>& actions);
    bool apply() { return m_engine->apply(); }
    /// Arguments of the call of the script's apply, as "[installs],[pairs of updates],[removes]",
    /// each name in quotes; null where there wasn't exactly one.
    QString applied();
    /// Puts the rows in the order of their names, which a collection leaves open.
    void sortRows();

    /// Methods that the engine called since play(), with their arguments: "enableRepo(base)".
    QStringList calls();
    /// The same without getBiArch and isBetterThan, whose number is nobody's business.
    QStringList mainCalls();
    int callCount(const QString& method);
    /// Whether each call of `method` came on the thread that runs this.
    bool calledHere(const QString& method);
    void forgetCalls();

    /// Text of a Python expression over the script's globals.
    QString eval(const QString& expression);
    /// Runs with each call of the script, on the thread of the call, until the next play().
    void probe(std::function<void(const QString& method)> function);

    /// The row of a package or group; null where there is none, or more than one.
    Package::Entry* row(const QString& name);
    QStringList rowNames();
    QStringList logTexts();
    /// Whether the log has this line of this kind and level.
    bool logged(Log::Kind kind, unsigned int level, const QString& text);

    OpenEngine& engine() { return *m_engine; }
    HProgressBar totalBar;
    HProgressBar itemBar;
    QWidget window;

    static QJsonObject package(const QString& name, QJsonObject more = {});
    static QJsonObject group(const QString& name, QJsonObject more = {});
    /// An installed package: one with a header.
    static QJsonObject installed(const QString& name, const QJsonObject& header = {});

private:
    QTemporaryDir m_directory;
    QByteArray m_oldShare;
    QByteArray m_oldDouble;
    std::unique_ptr<OpenEngine> m_engine;
};
