// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QString;

namespace Envra
{

/// Splits "[epoch:]name-version-release.arch". `epoch` is null where there is none. False, and the
/// results are untouched, where `text` isn't of that form.
bool parse(const QString& text, QString& name, QString& epoch, QString& version, QString& release,
           QString& arch);

} // namespace Envra
