// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class MainWindow;

namespace CommandLine
{

/// Turns the options of `argv` into settings of `window`, in their order. An error is told on
/// standard error and ends the process through usage(). To be called after `program` is set.
void apply(MainWindow& window, int argc, char** argv);

/// Prints the help text on standard output and ends the process with status 1.
[[noreturn]] void usage();

} // namespace CommandLine
