// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QObject;

/// Runs each test function of `tests` in a process of its own, since an interpreter starts once a
/// process, and a main window ends it. Called with names of test functions, it runs those, here.
/// Returns the status for main().
int runEachTestInItsOwnProcess(QObject& tests, int argc, char** argv);
