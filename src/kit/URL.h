// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

namespace URL
{

/// The text between "://" and the next slash of `url`, user name, password and port included; empty
/// where the first colon isn't followed by two slashes.
QString getHost(const QString& url);

} // namespace URL
