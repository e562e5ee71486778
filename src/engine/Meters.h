// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "progress/Progress.h"

#include <QString>

/// What the meters of a collection and those of an Apply have in common, and what an Apply's budget
/// and its meters must agree on.
namespace Meters
{

/// Acts that the fetch of one header counts for in the stretch of the dependency check.
constexpr Steps headerActs = 10;

/// What a package counts for at least where packages come one after the other.
constexpr Steps leastDownload = 10240;

/// The bars count upward only.
inline Steps steps(long long value)
{
    return value < 0 ? 0 : static_cast<Steps>(value);
}

/// Slots of a batch, whose number the script gives; none where that is nonsense.
inline unsigned int slotCount(long long files)
{
    // 32 bits of it count.
    const auto count = static_cast<unsigned int>(steps(files));
    constexpr unsigned int most = 100000;
    return count > most ? 0 : count;
}

/// A name or path as it is to be shown, without what a URL tells a server about its user.
QString withoutVantry(QString name);

} // namespace Meters
