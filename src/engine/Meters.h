// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "progress/Progress.h"

#include <QString>

/// What the meters of a collection and those of an Apply have in common.
namespace Meters
{

/// The bars count upward only.
inline Steps steps(long long value)
{
    return value < 0 ? 0 : static_cast<Steps>(value);
}

/// A name or path as it is to be shown, without what a URL tells a server about its user.
QString withoutVantry(QString name);

} // namespace Meters
