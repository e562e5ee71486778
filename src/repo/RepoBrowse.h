// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

class QWidget;
class YumConfIO;
class YumIO;

namespace Repo
{
struct Entry;
}

/// Opens a repository's location in an external web browser, by the script "webbrowser" of the
/// share directory. GUI thread only.
namespace RepoBrowse
{

/// Opens the entry's first URL, or its mirror list where it has none, with the architecture and
/// release variables filled in. An entry with neither is told in a box with parent `parent`, and
/// the script is started with an empty text all the same.
void browse(QWidget* parent, const Repo::Entry& entry, YumIO* yumIO);

/// The same for the first entry of `conf` with this id; an unknown id does nothing.
void browse(QWidget* parent, const QString& id, YumIO* yumIO, YumConfIO* conf);

} // namespace RepoBrowse
