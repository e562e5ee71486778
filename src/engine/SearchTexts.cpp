// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/SearchTexts.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr int bufferSize = 1 << 20;

int openWithoutName(const QString& directory)
{
    const QByteArray path = QFile::encodeName(directory);
    const int file = open(path.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file >= 0)
        return file;
    // Not every file system can make a file without a name.
    QByteArray name = path + "/vok-search-XXXXXX";
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0)
        unlink(name.constData());
    return named;
}

} // namespace

QStringList SearchTexts::directories()
{
    // What is below /tmp lies in memory on many systems.
    QStringList list{QStringLiteral("/var/tmp"), QDir::tempPath()};
    if (!qEnvironmentVariableIsEmpty("TMPDIR"))
        list.move(1, 0);
    return list;
}

SearchTexts::SearchTexts(const QStringList& directories)
{
    for (const QString& directory : directories) {
        file = openWithoutName(directory);
        if (file >= 0)
            break;
    }
    failed = file < 0;
    if (!failed)
        buffer.reserve(bufferSize);
}

SearchTexts::~SearchTexts()
{
    if (file >= 0)
        close(file);
}

void SearchTexts::appendField(QByteArray& text, const QByteArray& field)
{
    // A text of one empty field has no separator but isn't null.
    if (text.isNull())
        text = QByteArray("");
    else
        text += '\0';
    text.append(field.constData(), static_cast<int>(qstrlen(field.constData())));
}

bool SearchTexts::add(const Package::Entry* entry, const QByteArray& text)
{
    if (failed || (buffer.size() + text.size() > bufferSize && !flush()))
        return false;
    places.insert(entry, {written + buffer.size(), text.size()});
    buffer += text;
    return true;
}

bool SearchTexts::finish()
{
    if (!failed)
        flush();
    buffer = QByteArray();
    if (failed)
        places.clear();
    return !failed;
}

bool SearchTexts::flush()
{
    const char* at = buffer.constData();
    qint64 left = buffer.size();
    while (left > 0) {
        const ssize_t count = write(file, at, static_cast<size_t>(left));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            failed = true;
            return false;
        }
        at += count;
        left -= count;
        written += count;
    }
    buffer.resize(0);
    return true;
}

QByteArray SearchTexts::of(const Package::Entry* entry) const
{
    const auto place = places.constFind(entry);
    if (place == places.constEnd())
        return QByteArray();
    QByteArray text(place->length, Qt::Uninitialized);
    int got = 0;
    while (got < text.size()) {
        const ssize_t count = pread(file, text.data() + got, static_cast<size_t>(text.size() - got),
                                    place->offset + got);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return QByteArray();
        got += static_cast<int>(count);
    }
    return text;
}
