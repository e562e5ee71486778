// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QRegExp>
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

/// The program's own reader of the package manager's configuration: the main file and the .repo
/// files. GUI thread only; blocks it during file access. Failures are shown in a message box.
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
    /// Shows `text` with the number and the meaning of errno.
    void error(const QString& text);

    QString confText;           ///< head of the main file, verbatim
    QWidget* parent = nullptr;  ///< of message boxes; not owned
    QList<QString> unreadLines; ///< read ahead, to be read first

private:
    QByteArray mainFile;  ///< what fileName() gave last
    QByteArray lineBytes; ///< the line being read; kept for its capacity
};
