// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QStyle>

class QLabel;
class QString;
class QVBoxLayout;

/// The upper part of the scrollable dialogs.
namespace ScrollableText
{

/// Adds to `layout`, a dialog's, an icon of the style beside a label with `text` that scrolls where
/// the text is longer than the screen. Returns the label, which the dialog owns.
QLabel* add(QVBoxLayout* layout, QStyle::StandardPixmap icon, const QString& text);

} // namespace ScrollableText
