// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QRegularExpression>
#include <QString>

namespace Repo
{

struct Entry;

/// Name and password of repositories that carry them in their URLs, in one of two forms:
/// "/vantry?KEY=NAME&KEY=PASSWORD&path=" or "/rhel/KEY=NAME/KEY=PASSWORD/". The keys are the
/// server's own; all four texts are percent-encoded in the URL and plain here.
namespace Vantry
{

/// Finds all four in the first such form of `url`, which may be several URLs. False where there is
/// none; the four are untouched then.
bool getAuth(const QString& url, QString& nameKey, QString& name, QString& passwordKey,
             QString& password);
/// The same for the entry's URLs, else its mirror list.
bool getAuth(const Entry& entry, QString& nameKey, QString& name, QString& passwordKey,
             QString& password);

/// `url` with all four in each such form of it. A URL of neither form comes back as it is.
QString replaceAuth(QString url, const QString& nameKey, const QString& name,
                    const QString& passwordKey, const QString& password);
/// The same with the keys that are there. Where getAuth() finds none, nothing is replaced.
QString replaceAuth(QString url, const QString& name, const QString& password);
/// The same with the keys and the name that are there.
QString replaceAuth(QString url, const QString& password);

/// Matches the whole of a text of one URL. Captures 1 and 2 are where the password is; at most one
/// of them takes part.
QRegularExpression oneUrlRegExp();
/// Matches each form in a text of several URLs, with the same captures.
QRegularExpression urlsRegExp();

} // namespace Vantry

} // namespace Repo
