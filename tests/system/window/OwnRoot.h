// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace OwnRoot
{

/// Makes the running machine's root a copy that is this process's own, and of those that it starts
/// from then on: what they change lies in memory and is gone with them. Folders of the machine that
/// lie on other disks are empty there; `shared` ones, as they are, and those of the kernel are the
/// machine's own. To be called from the main thread; other threads stay outside.
///
/// Empty where it has worked, else what was refused; the process then still has the machine's root.
QString enter(const QStringList& shared);

} // namespace OwnRoot
