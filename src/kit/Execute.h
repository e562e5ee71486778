// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QWidget;

namespace Execute
{

/// Starts argv[0] with the null-terminated vector `argv` and forgets it: the new process is no
/// child of this one and leaves no zombie. A failed fork is shown in a box with parent `parent`; a
/// program that can't be started is told on standard error only.
void execute(QWidget* parent, char* const* argv);

} // namespace Execute
