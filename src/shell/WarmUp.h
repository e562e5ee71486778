// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QWidget;

/// rpm changes the root directory of the whole process while it works on a system that lies
/// elsewhere. What the windows may show for the first time then has to have read its files before.
namespace WarmUp
{

/// Draws once a process, where nobody sees it, what may appear during a transaction: icons of
/// messages, fonts with the characters that texts may have, the log, and pointers.
void once(QWidget* parent);

} // namespace WarmUp
