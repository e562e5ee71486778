// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QStringList>

class QCoreApplication;

namespace Language
{

/// The languages that the environment asks for, the first one most, each as a translation's name
/// has it and followed by itself without its country: "de_AT", "de". Ends before English, which
/// needs no translation, and is empty in the locale "C". LANGUAGE, LC_ALL, LC_MESSAGES and LANG
/// count as they do for other programs.
QStringList wanted();

/// Installs the first wanted translation that the share directory has, and Qt's own of that
/// language. To be called before any window is made.
void load(QCoreApplication& app);

} // namespace Language
