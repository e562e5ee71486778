// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

/// What of Qt's own messages reaches the terminal.
namespace QtMessages
{

/// From here on Qt's talk about the session's runtime directory is dropped, and a start without a
/// usable display ends the process with one line, under the name `program`, and status 1. To be
/// called before the QApplication is made; the name must stay.
void filter(const char* program);

/// The QApplication is there: what was held back until it is known whether it can be made is shown.
void applicationStarted();

} // namespace QtMessages
