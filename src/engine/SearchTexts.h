// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>

namespace Package
{
struct Entry;
}

/// What a search looks at in the packages, a text an entry, kept in a file without a name that goes
/// with this object: too much for memory, and too slow to ask of the package manager's library in
/// the order of the rows.
class SearchTexts
{
public:
    /// Places for the file, best first: not in memory, if that can be had.
    static QStringList directories();

    /// Takes the first directory in which a file can be made.
    explicit SearchTexts(const QStringList& directories = SearchTexts::directories());
    ~SearchTexts();
    SearchTexts(const SearchTexts&) = delete;
    SearchTexts& operator=(const SearchTexts&) = delete;

    /// Joins a field to the text of an entry. A field counts up to its first NUL, as it does for
    /// the matcher, so that a NUL always separates two fields.
    static void appendField(QByteArray& text, const QByteArray& field);

    /// Keeps a text, once an entry. False from the first failure to write on.
    bool add(const Package::Entry* entry, const QByteArray& text);
    /// Ends writing. False if anything is missing; then the object is of no use.
    bool finish();

    /// The text of an entry; null if there is none or it can't be read. After finish() only.
    QByteArray of(const Package::Entry* entry) const;

private:
    struct Place {
        qint64 offset;
        int length;
    };

    bool flush();

    QHash<const Package::Entry*, Place> places;
    QByteArray buffer; ///< what isn't written yet
    qint64 written = 0;
    int file = -1;
    bool failed = false;
};
