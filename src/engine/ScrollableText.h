// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QStyle>

class QLabel;
class QString;
class QVBoxLayout;
class QWidget;

/// What the scrollable dialogs have in common.
namespace ScrollableText
{

/// Adds to `layout`, a dialog's, an icon of the style beside a label with `text` that scrolls where
/// the text is longer than the screen. Returns the label, which the dialog owns.
QLabel* add(QVBoxLayout* layout, QStyle::StandardPixmap icon, const QString& text);

/// Gives a dialog that is complete the size that shows its text, as far as the screen goes.
void fit(QWidget* dialog);

} // namespace ScrollableText
