// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

// The one place that includes the interpreter's header. It must come before the standard headers in
// a source file. The project builds without Qt's keyword macros, but a header of Qt's own may bring
// `slots` back, and the interpreter has members of that name.
#pragma push_macro("slots")
#undef slots
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#pragma pop_macro("slots")
