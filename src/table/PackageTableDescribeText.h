// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QLabel;
class QString;
class QWidget;

namespace PackageTable
{
namespace Describe
{

// Labels for texts that the program doesn't know. They are no markup, even where they look like it,
// and can be selected with the mouse.

QLabel* makeText(const QString& text, QWidget* parent);
/// The same in a header's font.
QLabel* makeHeader(const QString& text, QWidget* parent);
/// The same in the middle; cut where the window is too narrow for it.
QLabel* makeTitle(const QString& text, QWidget* parent);

} // namespace Describe
} // namespace PackageTable
