// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/YumConfIO.h"
#include "kit/SystemRoot.h"

#include <QFile>
#include <QMessageBox>
#include <QRegularExpression>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace
{

struct FileCloser {
    void operator()(FILE* file) const { fclose(file); }
};
struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;
using DirPtr = std::unique_ptr<DIR, DirCloser>;

/// A pipe or the like is read as far as it goes, rather than that the window waits for its other
/// end. Null with errno.
FilePtr openToRead(const QByteArray& path)
{
    const int fd = open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    return FilePtr(fd < 0 ? nullptr : fdopen(fd, "r"));
}

enum ReadResult { Line = 0, EndOfFile = 1, ReadError = 2 };

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

/// Any other word than "0" means true.
bool isTrue(const QString& value)
{
    return value != QLatin1String("0");
}

int threeValued(const QString& value)
{
    return isTrue(value) ? 2 : 0;
}

} // namespace

YumConfIO::YumConfIO(const QList<YumRepoEnabled>& options, QHash<QString, bool>& used)
    : usedOptions(options)
    , usedRepos(used)
{
}

const char* YumConfIO::fileName()
{
    struct stat info {
    };
    mainFile = QFile::encodeName(SystemRoot::path(QStringLiteral("/etc/yum/yum.conf")));
    if (stat(mainFile.constData(), &info) != 0)
        mainFile = QFile::encodeName(SystemRoot::path(QStringLiteral("/etc/yum.conf")));
    return mainFile.constData();
}

QString YumConfIO::repoDirPath(const QString& directory)
{
    // The configuration's characters are bytes; a path's are decoded ones.
    return SystemRoot::path(QFile::decodeName(directory.toLatin1()));
}

bool YumConfIO::read(QWidget* parent)
{
    this->parent = parent;
    confText.clear();
    cachedir = QStringLiteral("/var/cache/yum");
    reposDirs = QStringList{QStringLiteral("/etc/yum.repos.d"), QStringLiteral("/etc/yum/repos.d")};
    mainEnabled = true;
    mainGpgcheck = false;
    entries.clear();
    oddNames.clear();

    {
        const QString path = QFile::decodeName(fileName());
        stoppedAt = path;
        const FilePtr file = openToRead(mainFile);
        if (!file) {
            error(tr("Unable to read yum configuration file %1").arg(path));
            return false;
        }
        if (!readConfFile(file.get()))
            return false;
    }

    for (const QString& directory : qAsConst(reposDirs)) {
        if (!readRepoDir(directory))
            return false;
    }
    stoppedAt.clear();

    Q_EMIT changed();
    return true;
}

bool YumConfIO::readRepoDir(const QString& directory)
{
    constexpr char suffix[] = ".repo";
    constexpr size_t suffixLength = sizeof suffix - 1;

    const QByteArray dirPath = QFile::encodeName(repoDirPath(directory));
    const DirPtr dir(opendir(dirPath.constData()));
    if (!dir)
        return true;

    while (const dirent* item = readdir(dir.get())) {
        const size_t length = strlen(item->d_name);
        if (length < suffixLength || strcmp(item->d_name + length - suffixLength, suffix) != 0)
            continue;

        const QByteArray bytes = dirPath + '/' + item->d_name;
        const QString path = QFile::decodeName(bytes);
        if (QFile::encodeName(path) != bytes)
            oddNames.insert(path, bytes);
        stoppedAt = path;
        struct stat info {
        };
        if (stat(bytes.constData(), &info) != 0) {
            error(tr("Unable to stat repository configuration file %1").arg(path));
            return false;
        }
        if (info.st_mode & S_IFDIR)
            continue;

        const FilePtr file = openToRead(bytes);
        if (!file) {
            error(tr("Unable to read repository configuration file %1").arg(path));
            return false;
        }
        if (!readRepoFile(file.get(), path))
            return false;
    }
    return true;
}

bool YumConfIO::readConfFile(FILE* file)
{
    const QString path = QFile::decodeName(fileName());
    QString line;
    QString value;

    for (;;) {
        switch (readLogicalLine(file, path, line)) {
        case ReadError:
            return false;
        case EndOfFile:
            return readRepoFile(file, path);
        default:
            break;
        }

        if (line == QLatin1String("[main]")) {
            // Only the head of the part that follows.
        } else if (line.startsWith(QLatin1Char('['))) {
            unreadLine(line);
            return readRepoFile(file, path);
        } else if (isOption(line, QStringLiteral("cachedir"), value)) {
            cachedir = value;
        } else if (isOption(line, QStringLiteral("reposdir"), value)) {
            reposDirs = value.replace(QLatin1Char(','), QLatin1Char(' '))
                            .split(QLatin1Char(' '), Qt::SkipEmptyParts);
        } else if (isOption(line, QStringLiteral("enabled"), value)) {
            mainEnabled = isTrue(value);
        } else if (isOption(line, QStringLiteral("gpgcheck"), value)) {
            mainGpgcheck = isTrue(value);
        }
        confText += line;
        confText += QLatin1Char('\n');
    }
}

bool YumConfIO::readRepoFile(FILE* file, const QString& path)
{
    Repo::Entry entry;
    entry.fileName = path;
    bool seenSection = false;
    bool newId = false;
    QString line;
    QString value;

    for (;;) {
        switch (readLogicalLine(file, path, line)) {
        case ReadError:
            return false;
        case EndOfFile:
            if (seenSection) {
                finishEntry(entry, newId);
                entries.append(entry);
            }
            return true;
        default:
            break;
        }

        if (line.startsWith(QLatin1Char('['))) {
            if (!line.endsWith(QLatin1Char(']'))) {
                error(tr("Malformed section name in line: %1").arg(line));
                return false;
            }
            if (seenSection) {
                finishEntry(entry, newId);
                entries.append(entry);
            }
            const double position = entry.filePosition + 1.0;
            entry = Repo::Entry();
            entry.id = line.mid(1, line.size() - 2);
            entry.fileName = path;
            entry.filePosition = position;
            newId = !usedRepos.contains(entry.id);
            if (newId)
                usedRepos.insert(entry.id, mainEnabled);
            seenSection = true;
        } else if (isOption(line, QStringLiteral("name"), value)) {
            entry.name = value;
        } else if (isOption(line, QStringLiteral("baseurl"), value)) {
            entry.baseurl = value;
        } else if (isOption(line, QStringLiteral("mirrorlist"), value)) {
            entry.mirrorlist = value;
        } else if (isOption(line, QStringLiteral("enabled"), value)) {
            entry.enabled = threeValued(value);
            if (newId)
                usedRepos.insert(entry.id, entry.enabled == 2);
        } else if (isOption(line, QStringLiteral("gpgcheck"), value)) {
            entry.gpgcheck = threeValued(value);
        } else if (!line.isEmpty()) {
            entry.other += line;
            entry.other += QLatin1Char('\n');
        }
    }
}

int YumConfIO::readLogicalLine(FILE* file, const QString& path, QString& line)
{
    if (!unreadLines.isEmpty()) {
        line = unreadLines.takeFirst();
        // What follows it was read already, so it has no continuation that isn't part of it.
        if (!unreadLines.isEmpty())
            return Line;
    } else {
        const int result = readLine(file, path, line);
        if (result != Line)
            return result;
    }

    QString next;
    for (;;) {
        switch (readLine(file, path, next)) {
        case ReadError:
            return ReadError;
        case EndOfFile:
            unreadLines.clear();
            return Line;
        default:
            break;
        }
        if (next.isEmpty() || !isBlank(next.at(0))) {
            unreadLines.append(next);
            return Line;
        }
        line += QLatin1Char('\n');
        line += next;
    }
}

int YumConfIO::readLine(FILE* file, const QString& path, QString& line)
{
    lineBytes.resize(0);
    int failure = 0;
    bool ended = false;
    for (;;) {
        errno = 0;
        const int byte = fgetc(file);
        if (byte == EOF) {
            failure = errno;
            ended = true;
            break;
        }
        if (byte == '\n')
            break;
        lineBytes.append(static_cast<char>(byte));
    }
    line = QString::fromLatin1(lineBytes.constData(), lineBytes.size()); // null bytes too

    if (failure != 0) {
        const QString text = tr("Error reading repository configuration file %1").arg(path);
        errno = failure;
        error(text);
        return ReadError;
    }
    return ended && line.isEmpty() ? EndOfFile : Line;
}

void YumConfIO::unreadLine(const QString& line)
{
    unreadLines.prepend(line);
}

bool YumConfIO::isOption(const QString& line, const QString& option, QString& value)
{
    const auto isSeparator = [](QChar c) { return c == QLatin1Char(':') || c == QLatin1Char('='); };

    const int size = line.size();
    int separator = 0;
    while (separator < size && !isSeparator(line.at(separator)))
        ++separator;
    if (separator == size)
        return false;

    int keyEnd = separator;
    while (keyEnd > 0 && isBlank(line.at(keyEnd - 1)))
        --keyEnd;
    if (line.leftRef(keyEnd) != option)
        return false;

    int start = separator + 1;
    while (start < size && isBlank(line.at(start)))
        ++start;
    value = line.mid(start);
    return true;
}

void YumConfIO::finishEntry(Repo::Entry& entry, bool newId)
{
    cleanupRead(entry);
    if (newId)
        applyUsedOptions(entry);
}

void YumConfIO::cleanupRead(Repo::Entry& entry)
{
    static const QRegularExpression space(QStringLiteral("[ \t\n]+"));
    entry.baseurl.replace(space, QStringLiteral("\n"));
}

void YumConfIO::applyUsedOptions(Repo::Entry& entry)
{
    for (const YumRepoEnabled& option : usedOptions) {
        if (option.pattern.exactMatch(entry.id))
            usedRepos.insert(entry.id, option.enabled);
    }
}

void YumConfIO::error(const QString& text)
{
    const int number = errno;
    const QString suffix =
        tr("; errno = %1 (%2).")
            .arg(QString::number(number), QString::fromLocal8Bit(strerror(number)));
    // Not as markup: the text may quote a line of a file.
    QMessageBox box(QMessageBox::Critical, tr("VOK Repository Editor Error"), text + suffix,
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
