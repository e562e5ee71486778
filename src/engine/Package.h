// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/PythonHeader.h"

#include <QList>
#include <QMetaType>
#include <QString>

namespace Package
{

enum Action : qint32 {
    ActionUpdate = 0,
    ActionInstall = 1,
    ActionRemove = 2,
    ActionNone = 3,
};

enum State : qint32 {
    StateUpdatable = 0,   ///< installed, a newer version is available; a group: not up to date
    StateInstallable = 1, ///< available, not installed
    StateInstalled = 2,   ///< installed and up to date
};

enum Kind : qint32 {
    KindSuite = 0, ///< a package whose rpm group is exactly "Suite"
    KindGroup = 1,
    KindOrdinary = 2,
};

/// One row of the package table: what the table shows as plain values, and the script's object for
/// everything else. Owned by YumIO. Written on a work thread before it is published, then read-only
/// but for `action`, which the GUI thread sets.
struct Entry {
    Entry() = default;
    /// Deletes the chain behind it. An entry should hold no object by then: the reference is given
    /// up under the interpreter lock beforehand. One that does is told on standard error, once a
    /// process.
    ~Entry();
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    Action action = ActionNone;
    State state = StateInstallable;
    Kind kind = KindOrdinary;
    QString name;
    QString verRel;
    QString repo;
    QString arch;
    QString biArch; ///< family word of `arch`
    quint64 sizeBytes = 0;
    QString sizeText;
    QString summary;
    long buildTime = 0; ///< seconds since the epoch
    QString buildTimeText;
    PyObject* pyObject = nullptr; ///< owned reference; released by YumIO while the lock is held
    bool duplicate = false;       ///< another entry of the same name was judged better
    Entry* next = nullptr;        ///< owned; further installed packages of the same key

    // Meaningful only while actions are being applied.
    Action applyAction = ActionNone;
    Entry* markedBy = nullptr; ///< not owned
    bool started = false;

    quint32 serial = 0; ///< place among the packages in the order in which the script listed them
};

/// Owns its members.
class EntryList : public QList<Entry*>
{
public:
    EntryList() = default;
    ~EntryList();
    EntryList(const EntryList&) = delete;
    EntryList& operator=(const EntryList&) = delete;
};

} // namespace Package

Q_DECLARE_METATYPE(Package::Entry*)
