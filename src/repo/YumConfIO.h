// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QRegExp>
#include <QSet>
#include <QString>
#include <QStringList>

#include <cstdio>

class QWidget;

namespace Repo
{

/// One repository section of the configuration.
struct Entry {
    QString id;
    QString name;
    QString baseurl; ///< one URL a line
    QString mirrorlist;
    int enabled = 1;  ///< 0 off, 1 not stated, 2 on
    int gpgcheck = 1; ///< the same
    QString other;    ///< every other non-empty line, verbatim, each with a newline behind it
    QString fileName; ///< as it is opened, below the system root; empty for a new entry
    double filePosition = 0.0; ///< 1.0 for the first section of its file, 2.0 for the second ...
};

} // namespace Repo

/// One --enablerepo or --disablerepo of the command line.
struct YumRepoEnabled {
    YumRepoEnabled(bool enabled, const QString& wildcard)
        : enabled(enabled)
        , pattern(wildcard, Qt::CaseSensitive, QRegExp::Wildcard)
    {
    }

    bool enabled;
    QRegExp pattern; ///< matched against the whole repository id
};

/// The program's own reader and writer of the package manager's configuration: the main file and
/// the .repo files. GUI thread only; blocks it during file access. Failures are shown in a message
/// box.
///
/// Bytes of a file and characters of a text are one to one: there is no codec, and toLatin1() gives
/// back what was read.
class YumConfIO : public QObject
{
    Q_OBJECT

public:
    /// Keeps both references: `options` are the command line's overrides, `used` says for each
    /// repository id whether this run uses it.
    YumConfIO(const QList<YumRepoEnabled>& options, QHash<QString, bool>& used);

    /// Reads everything afresh. False after a report; `entries` then holds what was read so far.
    bool read(QWidget* parent);

    /// Rewrites the main file and every file that holds an entry, in place, and removes the .repo
    /// files that hold none. False where the user refused or after a report; `entries` is as it was
    /// then, but files may have been rewritten already. Otherwise `entries` lacks what the user
    /// agreed to drop, and each entry has the name of its file.
    bool write(QWidget* parent);

    /// Path of the main file below the system root, found anew at each call; valid until the next
    /// call.
    const char* fileName();

    /// Where a directory of `reposDirs` really lies: below the system root, as a path to open.
    static QString repoDirPath(const QString& directory);

    QString cachedir;
    QStringList reposDirs; ///< as the configuration names them, without the system root
    bool mainEnabled = true;
    bool mainGpgcheck = false;
    QList<Repo::Entry> entries;
    const QList<YumRepoEnabled>& usedOptions;
    QHash<QString, bool>& usedRepos;

Q_SIGNALS:
    /// At the end of a successful read.
    void changed();

protected:
    bool readConfFile(FILE* file);
    bool readRepoDir(const QString& directory);
    bool readRepoFile(FILE* file, const QString& path);
    /// 0 for a line, 1 for end of file, 2 for a reported read error.
    int readLogicalLine(FILE* file, const QString& path, QString& line);
    int readLine(FILE* file, const QString& path, QString& line);
    void unreadLine(const QString& line);
    /// Whether `line` states `option`; if so, `value` is what it states.
    static bool isOption(const QString& line, const QString& option, QString& value);
    void cleanupRead(Repo::Entry& entry);
    void applyUsedOptions(Repo::Entry& entry);
    void finishEntry(Repo::Entry& entry, bool newId);
    /// Shows `text` with the number and the meaning of errno. Virtual, so that files can be read
    /// where nobody looks at a window.
    virtual void error(const QString& text);

    /// The same for a number kept since; always false.
    bool fail(int number, const QString& text);

    /// Whether the entries can be written, with those dropped that the user agreed to lose.
    bool checkErrors();
    bool hasEmptyId() const;
    /// The ids that occur more than once, one for each pair, separated by ", ".
    QString getDuplicateId() const;
    /// Gives each entry without one a file, and each file without one a directory.
    void cleanupWrite(QList<Repo::Entry>& entries) const;
    static bool filePositionLessThan(const Repo::Entry& a, const Repo::Entry& b);
    static bool writeRepo(FILE* file, const Repo::Entry& entry);
    /// Writes all files; `used` is then the names of all that hold an entry. False after a report.
    bool writeFiles(QSet<QString>& used);
    /// Replaces the content of one file by `text`. False after a report.
    bool writeFile(const QString& path, const QByteArray& text);
    /// Removes each .repo file that isn't one of `used`, under whatever name. False after a report,
    /// at which it stops.
    bool removeUnusedFiles(QSet<QString>& used);

    QString confText;           ///< head of the main file, verbatim
    QWidget* parent = nullptr;  ///< of message boxes; not owned
    QList<QString> unreadLines; ///< read ahead, to be read first

private:
    /// The bytes that name a file in the file system.
    QByteArray pathBytes(const QString& path) const;

    QByteArray mainFile;  ///< what fileName() gave last
    QByteArray lineBytes; ///< the line being read; kept for its capacity
    /// The file at which the last read() stopped; empty if it came to its end. What wasn't read
    /// whole must not be rewritten or removed.
    QString stoppedAt;
    /// Names that don't come back from being decoded as they were.
    QHash<QString, QByteArray> oddNames;
};
