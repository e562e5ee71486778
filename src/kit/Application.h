// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QApplication;

/// The one application object; it lives on the stack of main(). Null until main() has made it.
extern QApplication* application;

/// Base name of argv[0]: the prefix of every message on the terminal and the script's first
/// argument.
extern char* program;
