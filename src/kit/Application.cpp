// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Application.h"

QApplication* application = nullptr;
char* program = nullptr;
