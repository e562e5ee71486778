// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

namespace Share
{

/// Path of a data file of the program: the share directory, a slash and `path`. The share directory
/// is the environment variable VOKSHARE where that is set, read anew at each call, else
/// "/usr/share/vok".
QString absolute(const QString& path);

/// For an installation below another prefix: sets VOKSHARE to `directory`, the share directory that
/// belongs to the executable, where the variable isn't set and the script lies there. The script is
/// told in this way, too. To be called before anything asks for a path.
void settle(const QString& directory);

} // namespace Share
