// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class QApplication;
class QString;

/// Remembers whether the user has named a widget style, so that the program's own choice gives way
/// to it. To be made before the QApplication, which strips its own options from the command line.
class DefaultStyle
{
public:
    DefaultStyle(int argc, const char* const* argv);

    /// Gives the application the style `name` and that style's standard palette, unless the user
    /// has chosen one. Qt's own "fusion" stands in where there is no style of that name.
    void set(QApplication& application, const QString& name) const;

private:
    bool chosen = false;
};
