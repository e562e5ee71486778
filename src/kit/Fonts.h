// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QFont>

/// Fonts made from a widget's own; each function returns a changed copy.
namespace Fonts
{

/// Bold, sans serif, one and a half times the size.
QFont makeHeader(const QFont& font);

/// Fixed pitch, of the first of a few families that the system has; the last of them where it has
/// none.
QFont makeFixed(const QFont& font);

QFont makeBold(const QFont& font);

} // namespace Fonts
