// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

bool YumIO::applyReal()
{
    blocker.block();
    return false;
}
