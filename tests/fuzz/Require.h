// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the run if `holds` is false, so that the fuzzer keeps the input and tells of it.
inline void require(bool holds, const char* promise)
{
    if (holds)
        return;
    fprintf(stderr, "Doesn't hold: %s\n", promise);
    abort();
}
