// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HSeparator.h"

HSeparator::HSeparator(QWidget* parent)
    : QFrame(parent)
{
    setFrameShape(QFrame::HLine);
    setFrameShadow(QFrame::Sunken);
}
