// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/ApplyState.h"
#include "engine/Blocker.h"
#include "engine/CollectState.h"
#include "engine/EntryKey.h"
#include "engine/FileRemover.h"
#include "engine/Package.h"
#include "engine/Python.h"
#include "engine/TransactionGuard.h"
#include "log/Log.h"

#include <QByteArray>
#include <QHash>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <csignal>
#include <functional>
#include <initializer_list>
#include <memory>

class HProgressBar;
class QEventLoop;
class QThread;
class QWidget;
class SearchTexts;
class YumIOCapturers;
class YumIODialogs;

namespace Progress
{
class Object;
}

/// The one engine object: loads the script, owns all package entries and the log, and runs every
/// long operation on a work thread while the GUI thread spins a local event loop. Failures are
/// reported in a dialog and the log and give false, null or an empty text; nothing throws.
///
/// One long operation runs at a time; one that is asked for meanwhile fails without a word.
///
/// Unless stated otherwise members are for the GUI thread. Each group below is headed by the file
/// that it lives in.
class YumIO : public QObject, protected Python
{
    Q_OBJECT

public:
    using EntryKey = ::EntryKey;
    using EntryHash = QHash<EntryKey, Package::Entry*>;

    /// What a step of a collection does.
    enum RepoAct : int {
        ActMirrorList = 0,
        ActRepomd = 1,
        ActGroups = 2,
        ActContents = 3,
        ActConvert = 4,
        ActRead = 5,
    };

    using ThreadId = ::ThreadId;

    // ---- YumIO.cpp: life, work threads ----------------------------------------------------------

    YumIO();
    ~YumIO() override;

    /// Gives the engine its dialogs' parent and the two bars; none is owned. Once, before
    /// initialize().
    void setup(QWidget* parent, HProgressBar* total, HProgressBar* item);
    /// Starts the interpreter and the script. A second call with a live script object does nothing.
    bool initialize();
    /// Throws the script's object and all entries away and makes a new one.
    void clear();
    /// Drops all entries on a work thread, and with them the references to the script's objects.
    void clearEntries();
    /// Drops all entries without touching the interpreter, which is about to go.
    void clearEntriesBeforeQuit();
    /// Fills the rows anew. `usedRepos` says of repositories, by id, whether this run uses them;
    /// one that isn't named is used as configured. Blocks in a local event loop, as the two below
    /// do.
    bool collect(const QHash<QString, bool>& usedRepos);
    /// Load the file lists or change logs of the repositories, once a collection.
    bool collectFileLists();
    bool collectOtherData();
    /// Gathers what getSearchTexts() gives, once a collection. Only where the change logs are
    /// loaded; fails without a dialog where there is no room for the texts.
    bool collectSearchTexts();
    /// Carries out what the rows are marked for, after the user's review. True where the user
    /// agreed and the package manager reported no failure; the rows are out of date then. False
    /// leaves the rows and their marks as they were. Blocks in a local event loop.
    bool apply();
    /// A signal that was to end the process, but came while a transaction ran; 0 for none. The
    /// caller of apply() is to leave then.
    int pendingSignal() const { return TransactionGuard::pendingSignal(); }

    Log::EntryList& getLogEntries() { return logEntries; }
    bool areFileListsCollected() const { return fileListsCollected; }
    bool areOtherDataCollected() const { return otherDataCollected; }
    bool areSearchTextsCollected() const { return searchTexts != nullptr; }

    // ---- YumIOEntries.cpp: the rows -------------------------------------------------------------

    // There are none while entries are being cleared.

    int count() const;
    Package::EntryList::const_iterator begin() const;
    Package::EntryList::const_iterator end() const;
    Package::Entry* operator[](int row) const;

    QString getName(const Package::Entry& entry) const;
    QString getVerRel(const Package::Entry& entry) const;
    QString getRepo(const Package::Entry& entry) const;
    QString getArch(const Package::Entry& entry) const;
    QString getSize(const Package::Entry& entry) const;
    QString getSummary(const Package::Entry& entry) const;
    QString getBuildTime(const Package::Entry& entry) const;
    QString getState(const Package::Entry& entry) const;
    QString getKind(const Package::Entry& entry) const;

    // These ask the script's object and take the interpreter lock themselves.
    QString getDescription(const Package::Entry& entry);
    QString getGroup(const Package::Entry& entry);
    QString getVendor(const Package::Entry& entry);
    QString getBuildHost(const Package::Entry& entry);
    QString getSourceRpm(const Package::Entry& entry);
    QString getLicense(const Package::Entry& entry);
    QString getPackager(const Package::Entry& entry);
    QString getUrl(const Package::Entry& entry);
    QString getBinaryRpm(const Package::Entry& entry);
    QString getInstallTime(const Package::Entry& entry);
    QString getRelocations(const Package::Entry& entry);
    QString getProvides(const Package::Entry& entry);
    QString getRequires(const Package::Entry& entry);
    QString getConflicts(const Package::Entry& entry);
    QString getObsoletes(const Package::Entry& entry);
    QString getRequiredGroups(const Package::Entry& entry);
    QString getDefaultMetaPkgs(const Package::Entry& entry);
    QString getOptionalMetaPkgs(const Package::Entry& entry);
    QString getMandatoryPkgs(const Package::Entry& entry);
    QString getDefaultPkgs(const Package::Entry& entry);
    QString getOptionalPkgs(const Package::Entry& entry);
    QString getConditionalPkgs(const Package::Entry& entry);
    /// A variable of the package manager, such as "basearch".
    QString getYumVar(const QString& name);

    // ---- YumIOExtra.cpp: file lists, change logs, relations -------------------------------------

    /// What a getter does that finds its data missing.
    enum Loading {
        MayLoad,         ///< loads it, which spins a local event loop
        NotAfterFailure, ///< the same, but takes it for empty where the last load has failed
    };

    /// One path a line, sorted.
    QString getFiles(const Package::Entry& entry);
    /// The same text as UTF-8, for searching the file lists of all rows without converting them.
    QByteArray getFilesUtf8(const Package::Entry& entry, Loading loading = MayLoad);
    QString getChangeLog(const Package::Entry& entry, Loading loading = MayLoad);

    // ---- YumIOSearch.cpp: what a search looks at ------------------------------------------------

    /// UTF-8 of all fields of a package that a search looks at, but for the files, separated by
    /// NULs. Null where collectSearchTexts() hasn't gathered it.
    QByteArray getSearchTexts(const Package::Entry& entry) const;

    // ---- YumIOClean.cpp: caches and capabilities ------------------------------------------------

    QString yumVersionStr();
    /// major * 10000 + minor * 100 + patch.
    long yumVersion();
    bool hasDistribGroups();
    bool hasTransTest();
    bool hasPickledCache();
    bool hasSqliteCache();
    bool usesSqlite();
    bool usesPresto();
    bool hasMultiProgress();

    // These hold the interpreter lock to their end, without an event loop. True on success.

    bool cleanHeaders();
    bool cleanPackages();
    bool cleanXmlMetadata();
    bool cleanPickledCache();
    bool cleanSqliteCache();
    bool cleanAll();

    // ---- YumIOReport.cpp: failures and the log; any thread --------------------------------------

    /// One log entry a line of `text`.
    void log(Log::Kind kind, unsigned int level, const QString& text);
    /// Log the text and show it in a box. They come back when the user has closed that.
    void error(const QString& text);
    void warning(const QString& text);
    void error(const char* message) override;
    void warning(const char* message) override;

    // ---- YumIOCapture.cpp: captured output ------------------------------------------------------

    /// A piece of output; what is behind its last newline waits for the next piece.
    void writeStdout(const QString& text);
    void writeStderr(const QString& text);

    // ---- YumIOC.cpp: called by the script through module yumIOC ---------------------------------
    // Each takes the arguments tuple and gives a new reference, or null with TypeError set. But for
    // the two streams' they may come on a thread only that callsScript().

    bool callsScript() const;

    PyObject* stdoutWrite(PyObject* self, PyObject* args);
    PyObject* stderrWrite(PyObject* self, PyObject* args);
    PyObject* log(PyObject* self, PyObject* args);
    PyObject* errorlog(PyObject* self, PyObject* args);
    PyObject* collectProgress(PyObject* self, PyObject* args);
    PyObject* collectGrabMeterStart(PyObject* self, PyObject* args);
    PyObject* collectGrabMeterUpdate(PyObject* self, PyObject* args);
    PyObject* collectGrabMeterEnd(PyObject* self, PyObject* args);
    PyObject* collectGrabMeterFailure(PyObject* self, PyObject* args);
    PyObject* collectGrabMultiMeterStart(PyObject* self, PyObject* args);
    PyObject* collectGrabMultiMeterNew(PyObject* self, PyObject* args);
    PyObject* collectGrabMultiMeterRemove(PyObject* self, PyObject* args);
    PyObject* collectGrabMultiMeterEnd(PyObject* self, PyObject* args);
    // YumIOClean.cpp
    PyObject* removeFiles(PyObject* self, PyObject* args);
    // YumIOApplyDownload.cpp
    PyObject* applyGrabMeterStart(PyObject* self, PyObject* args);
    PyObject* applyGrabMeterUpdate(PyObject* self, PyObject* args);
    PyObject* applyGrabMeterEnd(PyObject* self, PyObject* args);
    PyObject* applyGrabMeterFailure(PyObject* self, PyObject* args);
    PyObject* applyGrabMultiMeterStart(PyObject* self, PyObject* args);
    PyObject* applyGrabMultiMeterNew(PyObject* self, PyObject* args);
    PyObject* applyGrabMultiMeterRemove(PyObject* self, PyObject* args);
    PyObject* applyGrabMultiMeterEnd(PyObject* self, PyObject* args);
    // YumIODepsolve.cpp
    PyObject* dsTsCheck(PyObject* self, PyObject* args);
    PyObject* dsRestartLoop(PyObject* self, PyObject* args);
    // YumIOReview.cpp
    PyObject* userconfirm(PyObject* self, PyObject* args);
    PyObject* reportDownloadSize(PyObject* self, PyObject* args);
    PyObject* listTransaction(PyObject* self, PyObject* args);
    PyObject* postTransactionOutput(PyObject* self, PyObject* args);
    // YumIOTransaction.cpp
    PyObject* tsInitCallback(PyObject* self, PyObject* args);
    PyObject* tsCallback(PyObject* self, PyObject* args);
    PyObject* tsEvent(PyObject* self, PyObject* args);
    PyObject* gpgsigcheck(PyObject* self, PyObject* args);

Q_SIGNALS:
    /// File lists or change logs have been loaded. Comes while the work thread may still run.
    void collectedExtraData();

public Q_SLOTS:
    /// Lets the prepared work thread go on.
    void blockerRelease();

protected:
    using ApplyState = ::ApplyState;
    using Blocker = ::Blocker;
    using CollectState = ::CollectState;

    class CollectThread;
    class CollectFileListsThread;
    class CollectOtherDataThread;
    class CollectSearchTextsThread;
    class ApplyThread;
    class ClearEntriesThread;

    // ---- YumIO.cpp ------------------------------------------------------------------------------

    /// The one place that spins a local event loop while work runs. Where work runs already the
    /// thread isn't started.
    void execWorkThread(QEventLoop& loop, QThread& thread);
    void clearEntriesReal();
    /// Gives the lock on the packages back, if it was taken. Lock held.
    void unlockPackages();
    /// The last thing after a transaction that nobody waits for any more; any thread.
    void leaveUnattended();
    /// Makes entries of a failed collection ready to be cleared; `clearingEntries` is set.
    void adoptUnpublishedEntries();
    /// Deletes all entries; their objects have been dealt with.
    void dropEntries();
    /// Makes a new `yumIO` in place of the old; null with the exception pending where that fails.
    void makeScriptObject();
    bool runScript(const QString& path);
    /// Reports why initialize() fails, whatever is pending first; false.
    bool initializeFailed(const QString& text);

    // ---- YumIOCollect.cpp: collection; work thread, lock held -----------------------------------

    bool collectReal(const QHash<QString, bool>& usedRepos);
    void useRepos(PyObject* repos, const QHash<QString, bool>& usedRepos);
    QStringList collectRepos(PyObject* repositories);
    bool collectField(EntryHash& hash, PyObject* holder, const char* field, Package::State state);
    bool collectSet(EntryHash& hash, PyObject* iterable, Package::State state);
    bool collectPkg(Package::Entry*& slot, Package::State state, PyObject* package);
    Package::Kind getPkgKind(PyObject* package);
    struct PackageRow;
    /// Reads a tuple of a package's collectRow(); false where it can't be used.
    bool readRow(PyObject* tuple, PackageRow& row);
    bool collectPkg(Package::Entry*& slot, Package::State state, PyObject* package,
                    const PackageRow& row);
    void collectPkgFields(Package::Entry& entry, PyObject* package);
    void collectPkgFields(Package::Entry& entry, PyObject* package, const PackageRow& row);
    /// One shared copy of a word that many rows have.
    QString shared(const QString& word);

    // ---- YumIOFind.cpp: entries by name ---------------------------------------------------------

    Package::Entry* findPackage(const QString& name);
    Package::Entry* findPackage(const QString& name, bool (YumIO::*predicate)(Package::Entry*));
    /// The slot of entryHash that a package of this name and architecture belongs to; made where
    /// absent, holding null then.
    Package::Entry*& findUpdateablePackage(const QString& name, const QString& arch);

    // ---- YumIOApply.cpp: the road of one Apply; work thread, lock held --------------------------

    bool applyReal();
    void resetApplyState();
    /// Fills the lists that the script gets by what the packages are marked for; false after a
    /// report.
    bool applyLists(PyObject* installs, PyObject* updates, PyObject* removes);
    /// True where the entry is to be updated and a version of its chain, itself included, hasn't
    /// been started on.
    bool hasNotStartedUpdate(Package::Entry* entry);
    bool hasNotStartedRemove(Package::Entry* entry);
    /// On true the caller owns `tsInfo` and `lists`; the seven are borrowed from `lists`.
    bool makeLists(PyObject* base, PyObject*& tsInfo, PyObject*& lists, PyObject*& updated,
                   PyObject*& installed, PyObject*& removed, PyObject*& obsoleted,
                   PyObject*& depUpdated, PyObject*& depInstalled, PyObject*& depRemoved);

    // ---- YumIOApplyGroups.cpp: group marks become package marks ---------------------------------
    // False or null on a failure that has been reported, or where the user cancelled.

    bool applyGroups();
    bool applyGrpUpdate(const Package::Entry* group);
    bool applyGrpInstall(const Package::Entry* group);
    bool applyGrpRemove(const Package::Entry* group);
    bool applyGrpConflict(const Package::Entry* group, Package::Entry* package);
    void applyGrpLog(const Package::Entry* group, const Package::Entry* package);
    void applyGrpLogWas(const Package::Entry* group, const Package::Entry* package);
    void applyGrpLogNot(const Package::Entry* group, const Package::Entry* package,
                        Package::Action action, const QString& reason);
    /// New references to sequences of package names.
    PyObject* requiredPkgs(const Package::Entry* group);
    PyObject* pkgTree(const Package::Entry* group);
    PyObject* allPkgs(const Package::Entry* group);
    /// The keys of dictionaries of a group, joined; null after a report.
    PyRef groupKeys(const Package::Entry* group, std::initializer_list<const char*> fields,
                    const QString& missing, const QString& improper);
    /// Takes the reference over, which may be null. False after a report.
    bool groupNames(PyObject* sequence, QStringList& names);

    // ---- YumIODepsolve.cpp: what the solver's log lines tell ------------------------------------

    /// A log line of the solver's, without its prefix "TSINFO: ".
    void dsTsInfo(const QString& text);
    Package::Entry* dsTsFindPkg(const QString& text);
    void dsTsNewPkg(const QString& text, Package::Entry* entry, unsigned int packages, bool header);
    void changeDepActs();
    /// Splits "[epoch:]name-version-release.arch"; false where it isn't one.
    bool parseEnvra(const QString& text, QString& name, QString& epoch, QString& version,
                    QString& release, QString& arch);
    bool parseEnvra(const QString& text, QString& name, QString& arch);

    // ---- YumIOReview.cpp: the transaction for the eye, and the question -------------------------

    QString pkgtupFormat(PyObject* pkgtup);
    QString pkgtupRepoFormat(PyObject* pkgtup, const QString& repo);
    bool displayTransactionPkgs(const QString& title, PyObject* members);
    bool displayTransactionPkgsRepo(const QString& title, PyObject* members);
    bool displayTransactionPkgsObs(const QString& title, PyObject* members);
    /// A new reference, or null.
    PyObject* findRelation(PyObject* relations, const char* relation);
    /// Adds what the members will cost to the budget, and marks their rows.
    void noteTransactionPkgs(Package::Action action, PyObject* members);
    void noteArrival(const Package::Entry& entry, bool update);
    void noteRemoval(const Package::Entry& entry, const QString& version);
    /// Null after a report.
    PyRef pkgtupOf(PyObject* member);
    /// As in Entry::verRel.
    QString memberVersion(PyObject* member);
    /// Begins the second half of an Apply, whose budget the review has made.
    void scaleTransaction();

    // ---- YumIOApplyDownload.cpp: downloads of an Apply ------------------------------------------

    /// Counts a download of so many bytes on the acts of the present stretch.
    void addDownloadActs(long long bytes);
    /// Slot of a meter of the running batch; one that was never announced gets the first. False
    /// where the batch has no such slot, and then there is nothing to show.
    bool applySlot(void* meter, unsigned int& slot);

    // ---- YumIOTransaction.cpp: rpm's transaction ------------------------------------------------

    /// From here on the system may be half changed.
    void guardTransaction();
    void addActs(quint64 acts);
    /// The next item, up to the act number that has been reached.
    void startApplyItem(const QString& label, long long maximum);
    void setApplyItem(long long value);
    /// A step before the acts of the transaction begin, which are `acts` over `span` steps.
    void startTransactionStage(const QString& label, quint64 span, quint64 acts);
    /// What preparing the transaction counts for, within all its acts.
    quint64 preparationActs() const;
    /// The entry that a package of the transaction belongs to; null where there is none.
    Package::Entry* transactionEntry(const QString& name, const QString& arch);
    void startInstall(Package::Entry& entry, const QString& label, long long total);
    /// Begins with the next version of `name` that is to go: with `mayUpdate` that of an update
    /// before that of a removal. False where there is no package of that name, after a report.
    bool startRemoval(const QString& name, bool mayUpdate, const QString& unexpected,
                      long long total);
    void callbackInstall(PyObject* key, long long total);
    /// False where the package isn't found, after a report.
    bool eventInstall(PyObject* package, bool update, long long total);

    /// Where the file of a package is or would be; null without one.
    QString getLocalPkg(PyObject* package);
    QString getLocalHdr(PyObject* package);
    QString localPath(PyObject* package, const char* method);
    // Acts that an element of the transaction counts for.
    static quint64 installActs(const Package::Entry& entry);
    static quint64 updatedActs(const Package::Entry& old);
    static quint64 removeActs(const Package::Entry& old);

    // ---- YumIOGroups.cpp: groups ----------------------------------------------------------------

    bool collectGroups(EntryHash& hash, PyObject* holder);
    bool collectGroup(Package::Entry*& slot, PyObject* group, const QString& name);
    bool upToDateGroup(const Package::Entry& entry);
    bool upToDateGroupGrps(const Package::Entry& entry, const char* field);
    bool upToDateGroupPkgs(const Package::Entry& entry, const char* field22, const char* field25);
    PyRef getGroupItem_22(const Package::Entry& entry, const char* field);
    PyRef getGroupItem_25(const Package::Entry& entry, const char* field);
    /// The items of an iterable of texts; a dictionary's are its keys.
    QStringList namesOf(PyObject* iterable);
    QString getGroupGrps(const Package::Entry& entry, const char* field);
    QString getGroupPkgs(const Package::Entry& entry, const char* field22, const char* field25);

    // ---- YumIOExtra.cpp -------------------------------------------------------------------------

    bool collectFileListsReal();
    bool collectOtherDataReal();
    bool collectExtraReal(const QString& heading, const QString& label, const QString& total,
                          const char* method, const QString& action, const QString& failure,
                          bool& flag);
    /// Paths of a package that hasn't offered them as one text.
    QStringList repositoryFiles(PyObject* package);
    QStringList installedFiles(PyObject* package);
    QString getPrco(PyObject* package, const char* prefix, const char* word);
    /// One relation of a repository package: a tuple (name, flag, (epoch, version, release)).
    QString relationText(PyObject* relation);
    QString getRpmTime(PyObject* package, const char* tag);
    QString getRpmList(PyObject* package, const char* tag);
    PyRef getRpmHdrValue(PyObject* package, const char* tag);
    QString makeSorted(QStringList& list);
    QString makeSortedUniq(QStringList& list);

    // ---- YumIOSearch.cpp ------------------------------------------------------------------------

    /// On a work thread; null where it fails.
    std::unique_ptr<SearchTexts> collectSearchTextsReal();
    QByteArray searchText(const Package::Entry& entry);

    // ---- YumIOValues.cpp: interpreter values; lock held -----------------------------------------
    // Those with "Dec" in their names release the reference that they are given.

    QString pyString(PyObject* object);
    QString pyStringDec(PyObject* object);
    QString pyStringX(PyObject* object);
    QString pyStringXDec(PyObject* object);
    QString pyMappingString(PyObject* mapping, const char* key);
    long pyTime(PyObject* object);
    long pyTimeDec(PyObject* object);
    PyObject* pyDictGetItem(PyObject* dict, const QString& key);
    const char* pyDescribe(PyObject* object);
    /// A field of a package by name; empty where the package hasn't got it. Takes the lock itself.
    QString simpleString(PyObject* object, const char* field);
    /// What simpleString() makes of the answer of returnSimple().
    QString simpleText(PyObject* value);
    /// The script's family word of an architecture; asked once a word.
    QString getBiArch(const QString& arch);
    quint64 sizeOf(PyObject* package);
    long buildTimeOf(PyObject* package);

public:
    static QString bytesFormat(unsigned long long bytes);
    static QString dateFormat(long time);
    static QString timeFormat(long time);

protected:
    // ---- YumIOClean.cpp -------------------------------------------------------------------------

    /// The answer to a question that the script is asked once: true for True alone.
    bool answer(bool& known, bool& value, const std::function<PyRef()>& ask);
    /// True where the script's method gives a tuple that begins with 0.
    bool cleanStep(const char* method);

    // ---- YumIOProgress.cpp: collection progress; work thread ------------------------------------

    /// Name of a step or file that the script passes: text, or none. Anything else reports
    /// `message`.
    QString progressText(PyObject* object, const QString& message);
    /// Size of a download; 1 where it isn't known. Anything but a number or None is reported and
    /// counts as `otherwise`.
    long long progressSize(PyObject* object, long long otherwise);
    /// The act number of a step that follows act number `from`.
    int actNumber(int from, int act);
    QString actText(RepoAct act, const QString& name);
    void setupBatch(const QString& name, RepoAct act);
    /// Slot of a running download of the batch; false after a report where the batch has no such
    /// slot.
    bool batchSlot(void* meter, const QString& message, unsigned int& slot);
    void resetCollectState();

    void collectStart(void* meter, const QString& name, RepoAct act, long value, long size);
    void collectUpdate(void* meter, long value);
    void collectEnd(void* meter, long value);
    void collectFailure(void* meter);

    // ---- YumIOReport.cpp ------------------------------------------------------------------------

    void commExceptSetup();
    bool commExceptRaised(PyObject* result, const QString& action);
    void pythonException(const QString& message);
    void pythonExceptionV(const QString& message);
    void pyExceptExpect(PyObject* exception) override;
    void pyExceptClear() override;
    void exceptionExpected() override;
    /// Where the present exception scope's lines begin in the log, or its end where there is no
    /// scope.
    int exceptionMark();
    /// Shows the error lines of the log from `mark` on.
    void showErrorsSince(int mark);
    /// Gives the dialogs of the running thread to `show`, which may block. Any thread.
    void withDialogs(const std::function<void(YumIODialogs&)>& show);
    bool reapChildren();
    void sigchldDisable();
    void sigchldRestore();

    // ---- YumIOCapture.cpp -----------------------------------------------------------------------

    void write(const QString& text, Log::Kind kind, unsigned int level, QString& partial);

    // ---- Fields ---------------------------------------------------------------------------------

    Package::EntryList entries;
    Package::EntryList noEntries; ///< stays empty; stands in for `entries` while they are torn down
    EntryHash entryHash;
    QString basearch;
    QHash<QString, Package::Entry*> bestByName;
    QSet<QString> biArchs;
    std::atomic<bool> clearingEntries{false}; ///< set on the GUI thread, cleared by the work thread
    Log::EntryList logEntries;
    int exceptLogStart = -1; ///< log length when an exception was last expected; -1 for none
    bool fileListsCollected = false;
    bool otherDataCollected = false;
    bool fileListsFailed = false; ///< the last load since the collection has; GUI thread
    bool otherDataFailed = false;
    QWidget* parentWidget = nullptr;
    YumIODialogs* dialogs = nullptr;     ///< of the thread that runs the engine; not owned
    YumIODialogs* guiDialogs = nullptr;  ///< of the GUI thread; owned
    YumIOCapturers* capturers = nullptr; ///< set only within a capture scope
    PyObject* rpmDict = nullptr;         ///< borrowed from module rpm
    PyObject* yumIOClass = nullptr;      ///< borrowed from the main module
    PyObject* yumIO = nullptr;           ///< owned; goes with the interpreter at the end
    PyObject* reposDict = nullptr;       ///< owned during a collection, null otherwise
    bool yumLocked = false;
    bool yumVersionRead = false;
    QString yumVersionText;
    bool usesSqliteKnown = false, usesSqliteValue = false;
    bool usesPrestoKnown = false, usesPrestoValue = false;
    bool hasMultiProgressKnown = false, hasMultiProgressValue = false;
    // Exception classes, borrowed from their modules; the optional ones may be null.
    PyObject* bdbQuit = nullptr;
    PyObject* yumBaseError = nullptr;
    PyObject* repoError = nullptr;
    PyObject* sqliteOperationalError = nullptr;
    PyObject* lockError = nullptr;
    PyObject* groupsError = nullptr;
    PyObject* noMoreMirrorsRepoError = nullptr;
    /// Guards the two below: the script's streams and the captured descriptors both end there.
    /// Taken before the log's mutex, and held across nothing else.
    QMutex partialMutex;
    QString stdoutPartial, stderrPartial; ///< output not yet ended by a newline
    Log::Kind stderrKind = Log::Error;
    unsigned int stderrLevel = 0;
    HProgressBar* totalBar = nullptr;
    HProgressBar* itemBar = nullptr;
    Progress::Object* progress = nullptr; ///< set only while a work thread runs

    CollectState collectState;
    ApplyState applyState;
    /// From the first sign of rpm's transaction to the end of the work that it came in.
    std::unique_ptr<TransactionGuard> transactionGuard;

    struct sigaction oldSigchld {
    };
    Blocker blocker;

private:
    std::atomic<QThread*> worker{nullptr};     ///< the work thread that runs; set by the GUI thread
    QHash<QString, QString> biArchWords;       ///< answers of getBiArch
    QSet<QString> sharedWords;                 ///< repository ids and architectures of the rows
    quint32 nextSerial = 0;                    ///< of the packages
    std::unique_ptr<SearchTexts> searchTexts;  ///< GUI thread only; goes with the entries
    FileRemover remover;                       ///< of package files after an Apply
    QSet<const Package::Entry*> groupsVisited; ///< groups whose sub-groups are being looked at
};
