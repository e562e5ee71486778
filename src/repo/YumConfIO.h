// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

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
    QString fileName; ///< empty for a new entry
    double filePosition = 0.0;
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

/// The program's own reader of the package manager's configuration: the main file and the .repo files.
/// GUI thread only; blocks it during file access. Failures are shown in a message box.
class YumConfIO : public QObject
{
    Q_OBJECT

public:
    /// Keeps both references: `options` are the command line's overrides, `used` says for each
    /// repository id whether this run uses it.
    YumConfIO(const QList<YumRepoEnabled>& options, QHash<QString, bool>& used);

    /// Reads everything afresh. False after a report; `entries` then holds what was read so far.
    bool read(QWidget* parent);

    /// Path of the main file, found anew at each call; valid until the next call.
    const char* fileName();

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
    bool readRepoFile(FILE* file, const QString& path);
    /// 0 for a line, 1 for end of file, 2 for a reported read error.
    int readLogicalLine(FILE* file, const QString& path, QString& line);
    int readLine(FILE* file, const QString& path, QString& line);
    void unreadLine(const QString& line);
    static bool isOption(const QString& line, const QString& option, QString& value);
    void cleanupRead(Repo::Entry& entry);
    void applyUsedOptions(Repo::Entry& entry);
    void error(const QString& text);

    QString confText; ///< head of the main file, verbatim
    QWidget* parent = nullptr;
    QList<QString> unreadLines;

private:
    QByteArray mainFile;
};
