// SPDX-License-Identifier: GPL-2.0-or-later
#include "fuzz/Require.h"
#include "repo/ConfigText.h"
#include "repo/YumConfIO.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

namespace
{

struct FileCloser {
    void operator()(FILE* file) const { fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

/// The system of which the files are: a main file and one of repositories.
class System
{
public:
    System()
    {
        require(QDir(root.path()).mkpath(QStringLiteral("etc/repos")), "there is room for a file");
        qputenv("VOKROOT", QFile::encodeName(root.path()));
        mainFile = root.filePath(QStringLiteral("etc/yum.conf"));
        repoFile = root.filePath(QStringLiteral("etc/repos/x.repo"));
        write(mainFile, QByteArray());
    }

    static void write(const QString& path, const QByteArray& text)
    {
        QFile file(path);
        require(file.open(QIODevice::WriteOnly) && file.write(text) == text.size(),
                "files can be written");
    }
    static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString mainFile, repoFile;

private:
    QTemporaryDir root;
};

const System& theSystem()
{
    static const System system;
    return system;
}

class Configuration : public YumConfIO
{
public:
    Configuration()
        : YumConfIO(options, used)
    {
    }

    /// The same as read() does with the two files, but nothing else is looked for: what directories
    /// the main file names is up to the fuzzer.
    bool readBoth(const QByteArray& mainText, const QByteArray& repoText)
    {
        confText.clear();
        entries.clear();
        reposDirs.clear();
        return readText(mainText, [this](FILE* file) { return readConfFile(file); }) &&
               readText(repoText,
                        [this](FILE* file) { return readRepoFile(file, theSystem().repoFile); });
    }

    using YumConfIO::confText;
    using YumConfIO::unreadLines;
    QHash<QString, bool> used;
    QString reported;

protected:
    void error(const QString& text) override { reported = text; }

private:
    template<class Read> static bool readText(QByteArray text, Read read)
    {
        const FilePtr file(fmemopen(text.data(), static_cast<size_t>(text.size()), "r"));
        return read(file.get());
    }

    QList<YumRepoEnabled> options{{false, QStringLiteral("off*")}, {true, QStringLiteral("*[12]")}};
};

bool isAsRead(const Repo::Entry& a, const Repo::Entry& b)
{
    return a.id == b.id && a.name == b.name && a.baseurl == b.baseurl &&
           a.mirrorlist == b.mirrorlist && a.enabled == b.enabled && a.gpgcheck == b.gpgcheck &&
           a.other == b.other && a.fileName == b.fileName && a.filePosition == b.filePosition;
}

bool areAsRead(const QList<Repo::Entry>& a, const QList<Repo::Entry>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), isAsRead);
}

/// A character for each byte, null bytes too.
QString charactersOf(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

void keepsTheTexts(const Configuration& read, const QByteArray& mainText,
                   const QByteArray& repoText)
{
    const QString head = charactersOf(mainText) + '\n';
    require(head.startsWith(read.confText), "the head of the main file is kept as it is");
    const QString all = head + charactersOf(repoText) + '\n';
    for (const Repo::Entry& entry : read.entries) {
        require(all.contains('[' + entry.id + "]\n"), "an id is what its header says");
        for (const QString* value : {&entry.name, &entry.mirrorlist})
            require(all.contains(*value + '\n'), "a value is what its line says");
        for (const QString& line : entry.other.split('\n'))
            require(all.contains(line + '\n'), "unknown lines are kept as they are");
        require(entry.other.isEmpty() || entry.other.endsWith('\n'), "unknown lines are lines");
        require(!entry.baseurl.contains(' ') && !entry.baseurl.contains('\t'),
                "each URL is a line of its own");
        require(entry.enabled >= 0 && entry.enabled <= 2 && entry.gpgcheck >= 0 &&
                    entry.gpgcheck <= 2,
                "a switch is off, on or not there");
        require(read.used.contains(entry.id), "of each repository is known whether it is used");
    }
}

void survivesTheEye(const Repo::Entry& entry)
{
    for (const QString* text : {&entry.id, &entry.name, &entry.baseurl, &entry.other}) {
        const QString shown = ConfigText::toShown(*text);
        require(ConfigText::toShown(ConfigText::toStored(shown)) == shown,
                "what is stored is shown again");
    }
}

void writesWhatWasRead(Configuration& read)
{
    // Two of one id would be a question to the user; and behind an empty head, one called "main"
    // would be the head.
    for (int i = 0; i < read.entries.size(); ++i)
        read.entries[i].id.prepend(QString::number(i) + ' ');
    const QList<Repo::Entry> entries = read.entries;
    read.reposDirs = QStringList{QStringLiteral("/etc/repos")};
    require(read.write(nullptr), "everything can be written");
    require(areAsRead(read.entries, entries), "writing changes no entry");

    const QByteArray mainText = System::content(theSystem().mainFile);
    const QByteArray repoText = System::content(theSystem().repoFile);
    Configuration again;
    require(again.readBoth(mainText, repoText), "what was written can be read");
    require(areAsRead(again.entries, entries), "the same entries are read again");
    require(again.confText == read.confText && again.cachedir == read.cachedir &&
                again.mainEnabled == read.mainEnabled && again.mainGpgcheck == read.mainGpgcheck,
            "the same head is read again");

    again.reposDirs = read.reposDirs;
    require(again.write(nullptr) && System::content(theSystem().mainFile) == mainText &&
                System::content(theSystem().repoFile) == repoText,
            "the same is written again");
}

} // namespace

/// A main file, and behind a line "----" a file of repositories.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QByteArray separator = "----\n";
    const int at = text.indexOf(separator);
    const QByteArray mainText = at < 0 ? text : text.left(at);
    const QByteArray repoText = at < 0 ? QByteArray() : text.mid(at + separator.size());

    Configuration read;
    const bool complete = read.readBoth(mainText, repoText);
    keepsTheTexts(read, mainText, repoText);
    for (const Repo::Entry& entry : qAsConst(read.entries))
        survivesTheEye(entry);
    require(complete == read.reported.isEmpty(), "what can't be read is reported, and only that");
    if (!complete) {
        require(read.reported.startsWith("Malformed section name in line: ["),
                "only a broken header can't be read");
        return 0;
    }
    require(read.unreadLines.isEmpty(), "every line is read");

    const QList<Repo::Entry> first = read.entries;
    const QHash<QString, bool> used = read.used;
    require(read.readBoth(mainText, repoText) && areAsRead(read.entries, first) &&
                read.used == used,
            "it is read the same way twice");
    writesWhatWasRead(read);
    return 0;
}
