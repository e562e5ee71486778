// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

namespace SystemRoot
{

/// `path`, an absolute path of the system to administer, below that system's root: the environment
/// variable VOKROOT, read anew at each call. Unset or empty, the path is returned as it is.
QString path(const QString& path);

} // namespace SystemRoot
