// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"

#include <QString>

class YumIO;

namespace PackageTable
{

/// All that is known about an entry as plain text: a line for each field that has a value, then the
/// longer texts and lists. Loads no extra data: file list and change log are part of it only where
/// they are at hand.
QString description(YumIO& yumIO, const Package::Entry& entry);

} // namespace PackageTable
