// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

namespace Share
{

/// Path of a data file of the program: the share directory, a slash and `path`. The share directory
/// is the environment variable VOKSHARE where that is set, read anew at each call, else
/// "/usr/share/vok".
QString absolute(const QString& path);

} // namespace Share
