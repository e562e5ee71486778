// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

/// The colours that all windows share, as texts that both QColor and rich text markup understand.
namespace Colors
{

QString action();        ///< headings in the log
QString error();         ///< errors; out-of-date rows
QString errorDisabled(); ///< out-of-date rows while the table is disabled
QString warning();       ///< warnings in the log
QString minor();         ///< minor log lines; rows of available packages
QString minorDisabled(); ///< rows of available packages while the table is disabled
QString ok();            ///< captured output in the log
QString requiredBg();    ///< background of a required field
QString errorBg();       ///< background of an error label
QString warningBg();     ///< background of a warning label
QString okBg();          ///< background of a good-news label

/// A text colour as it is to be drawn on a background: itself on a light one, for which all of
/// these are made, and on a dark one so much lighter that it can be read.
QColor readable(const QColor& color, const QColor& background);

/// The palette of a field that must be filled in. A disabled field keeps its usual look.
QPalette makeRequired(const QPalette& palette);

/// Palettes of labels with a coloured background, the text black or white, whichever is readable.
QPalette makeError(const QPalette& palette);
QPalette makeWarning(const QPalette& palette);
QPalette makeOK(const QPalette& palette);

} // namespace Colors
