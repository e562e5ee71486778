// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/SystemRoot.h"
#include "repo/ConfigText.h"
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"

#include <QFile>
#include <QMessageBox>
#include <QRegularExpression>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};
using DirPtr = std::unique_ptr<DIR, DirCloser>;

/// A file in memory to print to.
class Text
{
public:
    Text()
        : m_file(open_memstream(&m_bytes, &m_size))
    {
    }
    ~Text()
    {
        if (m_file)
            fclose(m_file);
        free(m_bytes);
    }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    FILE* file() const { return m_file; }

    /// False where memory didn't suffice.
    bool finish(QByteArray& result)
    {
        const bool complete = ferror(m_file) == 0;
        const bool closed = fclose(m_file) == 0;
        m_file = nullptr;
        if (!complete || !closed)
            return false;
        result = QByteArray(m_bytes, static_cast<int>(m_size));
        return true;
    }

private:
    char* m_bytes = nullptr;
    size_t m_size = 0;
    FILE* m_file;
};

/// Not by a format: a text may hold null bytes.
void print(FILE* file, const QString& text)
{
    const QByteArray bytes = text.toLatin1();
    fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), file);
}

void printOption(FILE* file, const char* key, const QString& value)
{
    if (value.isEmpty())
        return;
    fputs(key, file);
    fputc('=', file);
    print(file, value);
    fputc('\n', file);
}

void printThreeValued(FILE* file, const char* key, int value)
{
    if (value != 1)
        printOption(file, key, value == 2 ? QStringLiteral("1") : QStringLiteral("0"));
}

QByteArray identity(const struct stat& info)
{
    return QByteArray::number(quint64(info.st_dev)) + ':' +
           QByteArray::number(quint64(info.st_ino));
}

/// One name in one directory, whatever path leads to that directory.
QByteArray place(const struct stat& directory, const QByteArray& name)
{
    return identity(directory) + '/' + name;
}

/// Where a path leads: its own place, then that of each symbolic link's target in turn.
QList<QByteArray> placesOf(QByteArray path)
{
    constexpr int maxLinks = 40;
    QList<QByteArray> result;
    for (int i = 0; i <= maxLinks; ++i) {
        const int slash = path.lastIndexOf('/');
        const QByteArray directory = slash < 0 ? QByteArray("./") : path.left(slash + 1);
        struct stat info {
        };
        if (stat(directory.constData(), &info) != 0)
            break;
        result.append(place(info, path.mid(slash + 1)));

        char target[PATH_MAX];
        const ssize_t length = readlink(path.constData(), target, sizeof target);
        if (length <= 0)
            break;
        const QByteArray next(target, static_cast<int>(length));
        path = next.startsWith('/') ? next : directory + next;
    }
    return result;
}

/// Equal for two paths by which one file is written, be it there already or not.
QByteArray fileOf(const QByteArray& path)
{
    struct stat info {
    };
    if (stat(path.constData(), &info) == 0)
        return identity(info);
    const QList<QByteArray> places = placesOf(path);
    return places.isEmpty() ? path : places.last();
}

/// Removes the file that a path leads to, but none of the links on the way.
void removeTarget(const QByteArray& path)
{
    char* const target = realpath(path.constData(), nullptr);
    if (target)
        unlink(target);
    free(target);
}

bool writeAll(int fd, const QByteArray& text)
{
    const char* next = text.constData();
    const char* const end = next + text.size();
    while (next != end) {
        const ssize_t count = write(fd, next, static_cast<size_t>(end - next));
        if (count >= 0)
            next += count;
        else if (errno != EINTR)
            return false;
    }
    return true;
}

/// Lengthens a file by empty lines, which mean nothing to who reads it meanwhile. False with errno
/// and the old length where there is no room for them.
bool lengthen(int fd, off_t from, off_t to)
{
    if (lseek(fd, from, SEEK_SET) == from &&
        writeAll(fd, QByteArray(static_cast<int>(to - from), '\n')))
        return true;
    const int failure = errno;
    if (ftruncate(fd, from) == 0)
        errno = failure;
    return false;
}

/// Overwrites rather than empties first, and has the room for all of it before it begins, so that a
/// full disk leaves the old content. What the file held or what it is to hold is in it at any time,
/// should the program be killed, but for empty lines at its end. False with errno.
bool replaceContent(int fd, const QByteArray& text)
{
    struct stat info {
    };
    if (fstat(fd, &info) != 0)
        return false;
    if (!S_ISREG(info.st_mode))
        return writeAll(fd, text);

    if (text.size() > info.st_size && !lengthen(fd, info.st_size, text.size()))
        return false;
    // In one go, together with what blanks the rest of a longer content.
    const auto size = static_cast<int>(qBound<off_t>(text.size(), info.st_size, INT_MAX / 2));
    return lseek(fd, 0, SEEK_SET) == 0 && writeAll(fd, text.leftJustified(size, '\n')) &&
           ftruncate(fd, text.size()) == 0;
}

/// Rights of a new file with this text. What holds a password is for its owner only.
mode_t rightsOf(const QByteArray& text)
{
    static const QRegularExpression inUrl(QStringLiteral("://[^/\\s]*@"));
    static const QRegularExpression option(QStringLiteral("^\\w*password\\s*[=:]"),
                                           QRegularExpression::MultilineOption);
    const QString shown = QString::fromLatin1(text);
    const bool secret = shown.contains(Repo::Vantry::urlsRegExp()) || shown.contains(inUrl) ||
                        shown.contains(option);
    return secret ? 0600 : 0666;
}

} // namespace

bool YumConfIO::write(QWidget* parent)
{
    this->parent = parent;
    const QList<Repo::Entry> before = entries;
    if (!checkErrors())
        return false;

    cleanupWrite(entries);
    QSet<QString> used;
    if (!writeFiles(used)) {
        entries = before;
        return false;
    }
    // A file that wasn't read whole, or not at all, would be missed among the entries.
    if (stoppedAt.isEmpty())
        removeUnusedFiles(used);
    return true;
}

bool YumConfIO::checkErrors()
{
    QString message;
    if (hasEmptyId())
        message = tr("A repository has no Identifier.  It will be removed.");
    const QString dups = getDuplicateId();
    if (!dups.isEmpty()) {
        if (!message.isEmpty())
            message += QLatin1Char('\n');
        message += tr("Two or more repositories have the same Identifier(s), %1.  Only one "
                      "repository will be applied for each Identifier.")
                       .arg(dups);
    }
    if (message.isEmpty())
        return true;

    QMessageBox box(QMessageBox::Critical, tr("Repository Editor"), message + tr("  Proceed?"),
                    QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    if (box.exec() != QMessageBox::Yes)
        return false;

    QSet<QString> ids;
    QList<Repo::Entry> kept;
    for (const Repo::Entry& entry : qAsConst(entries)) {
        if (entry.id.isEmpty() || ids.contains(entry.id))
            continue;
        ids.insert(entry.id);
        kept.append(entry);
    }
    entries = kept;
    return true;
}

bool YumConfIO::hasEmptyId() const
{
    return std::any_of(entries.begin(), entries.end(),
                       [](const Repo::Entry& entry) { return entry.id.isEmpty(); });
}

QString YumConfIO::getDuplicateId() const
{
    QHash<QString, int> later;
    for (const Repo::Entry& entry : entries)
        ++later[entry.id];

    QString result;
    for (const Repo::Entry& entry : entries) {
        for (int pairs = --later[entry.id]; pairs > 0; --pairs) {
            if (!result.isEmpty())
                result += QStringLiteral(", ");
            result += entry.id;
        }
    }
    return result;
}

void YumConfIO::cleanupWrite(QList<Repo::Entry>& entries) const
{
    const QString root = SystemRoot::path(QStringLiteral("/"));
    const auto isListed = [this](const QString& path) {
        return std::any_of(reposDirs.begin(), reposDirs.end(), [&path](const QString& directory) {
            return path.startsWith(repoDirPath(directory) + QLatin1Char('/'));
        });
    };

    for (Repo::Entry& entry : entries) {
        if (entry.fileName.isEmpty())
            entry.fileName = ConfigText::toShown(entry.id) + QStringLiteral(".repo");
        if (entry.fileName.startsWith(root) || isListed(entry.fileName))
            continue;
        if (entry.fileName.startsWith(QLatin1Char('/')))
            entry.fileName = SystemRoot::path(entry.fileName); // a path of that system, typed in
        else if (!reposDirs.isEmpty())
            entry.fileName = repoDirPath(reposDirs.first()) + QLatin1Char('/') + entry.fileName;
    }
}

bool YumConfIO::filePositionLessThan(const Repo::Entry& a, const Repo::Entry& b)
{
    if (a.fileName != b.fileName)
        return a.fileName < b.fileName;
    return a.filePosition < b.filePosition;
}

bool YumConfIO::writeRepo(FILE* file, const Repo::Entry& entry)
{
    QString urls = entry.baseurl;
    urls.replace(QLatin1Char('\n'), QStringLiteral("\n        "));

    fputc('[', file);
    print(file, entry.id);
    fputs("]\n", file);
    printOption(file, "name", entry.name);
    printOption(file, "baseurl", urls);
    printOption(file, "mirrorlist", entry.mirrorlist);
    printThreeValued(file, "enabled", entry.enabled);
    printThreeValued(file, "gpgcheck", entry.gpgcheck);
    print(file, entry.other);
    return ferror(file) == 0;
}

bool YumConfIO::writeFiles(QSet<QString>& used)
{
    const QString mainPath = QFile::decodeName(fileName());

    // Two names of one file make one text, or the second would overwrite the first.
    QList<Repo::Entry> sorted = entries;
    QHash<QByteArray, QString> nameOfFile;
    QHash<QString, QString> nameOf;
    nameOfFile.insert(fileOf(pathBytes(mainPath)), mainPath);
    for (Repo::Entry& entry : sorted) {
        auto name = nameOf.find(entry.fileName);
        if (name == nameOf.end()) {
            QString& first = nameOfFile[fileOf(pathBytes(entry.fileName))];
            if (first.isEmpty())
                first = entry.fileName;
            name = nameOf.insert(entry.fileName, first);
            used << entry.fileName << first;
        }
        entry.fileName = *name;
    }
    std::stable_sort(sorted.begin(), sorted.end(), filePositionLessThan);

    for (int i = 0; i < sorted.size();) {
        const QString path = sorted.at(i).fileName;
        Text text;
        if (!text.file())
            return fail(ENOMEM, tr("Unable to write repository configuration file %1").arg(path));
        if (path == mainPath)
            print(text.file(), confText);
        for (const int first = i; i < sorted.size() && sorted.at(i).fileName == path; ++i) {
            if (i != first)
                fputc('\n', text.file());
            writeRepo(text.file(), sorted.at(i));
        }
        QByteArray bytes;
        if (!text.finish(bytes))
            return fail(ENOMEM, tr("Unable to write repository configuration file %1").arg(path));
        if (!writeFile(path, bytes))
            return false;
    }
    return used.contains(mainPath) || writeFile(mainPath, confText.toLatin1());
}

bool YumConfIO::writeFile(const QString& path, const QByteArray& text)
{
    const QByteArray bytes = pathBytes(path);
    int failure = 0;
    if (!stoppedAt.isEmpty() && fileOf(pathBytes(stoppedAt)) == fileOf(bytes)) {
        failure = ECANCELED;
    } else {
        // A pipe or the like mustn't keep the window waiting for its other end.
        constexpr int flags = O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
        int fd = open(bytes.constData(), flags);
        const bool isNew = fd < 0 && errno == ENOENT;
        if (isNew)
            fd = open(bytes.constData(), flags | O_CREAT, rightsOf(text));
        if (fd < 0) {
            failure = errno;
        } else {
            if (!replaceContent(fd, text))
                failure = errno;
            if (close(fd) != 0 && failure == 0)
                failure = errno;
            if (failure != 0 && isNew)
                removeTarget(bytes);
        }
    }
    return failure == 0 ||
           fail(failure, tr("Unable to write repository configuration file %1").arg(path));
}

bool YumConfIO::fail(int number, const QString& text)
{
    errno = number;
    error(text);
    return false;
}

bool YumConfIO::removeUnusedFiles(QSet<QString>& used)
{
    QSet<QByteArray> usedPlaces;
    for (const QString& path : qAsConst(used)) {
        for (const QByteArray& place : placesOf(pathBytes(path)))
            usedPlaces.insert(place);
    }

    for (const QString& directory : qAsConst(reposDirs)) {
        const QByteArray dirPath = QFile::encodeName(repoDirPath(directory));
        const DirPtr dir(opendir(dirPath.constData()));
        struct stat dirInfo {
        };
        if (!dir || fstat(dirfd(dir.get()), &dirInfo) != 0)
            continue;

        while (const dirent* item = readdir(dir.get())) {
            const QByteArray name(item->d_name);
            if (!name.endsWith(".repo"))
                continue;
            const QByteArray bytes = dirPath + '/' + name;
            const QString path = QFile::decodeName(bytes);
            struct stat info {
            };
            if (stat(bytes.constData(), &info) != 0) {
                const int failure = errno;
                return fail(failure,
                            tr("Unable to stat repository configuration file %1").arg(path));
            }
            if (info.st_mode & S_IFDIR || usedPlaces.contains(place(dirInfo, name)))
                continue;
            if (unlink(bytes.constData()) != 0) {
                const int failure = errno;
                return fail(failure,
                            tr("Unable to unlink repository configuration file %1").arg(path));
            }
        }
    }
    return true;
}

QByteArray YumConfIO::pathBytes(const QString& path) const
{
    const auto odd = oddNames.constFind(path);
    return odd != oddNames.constEnd() ? *odd : QFile::encodeName(path);
}
