// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/DefaultStyle.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

#include <cstring>

namespace
{

bool namesStyle(const char* argument)
{
    // Qt takes its options with one dash or two.
    if (std::strncmp(argument, "--", 2) == 0)
        ++argument;
    return std::strncmp(argument, "-style=", 7) == 0 || std::strcmp(argument, "-style") == 0;
}

} // namespace

DefaultStyle::DefaultStyle(int argc, const char* const* argv)
{
    for (int i = 1; i < argc; ++i) {
        if (namesStyle(argv[i])) {
            chosen = true;
            return;
        }
    }
    QSettings settings(QSettings::UserScope, QStringLiteral("Trolltech"), QString());
    settings.beginGroup(QStringLiteral("Qt"));
    chosen = settings.contains(QStringLiteral("style"));
}

void DefaultStyle::set(QApplication& application, const QString& name) const
{
    if (chosen)
        return;
    QStyle* style = QStyleFactory::create(name);
    if (!style)
        style = QStyleFactory::create(QStringLiteral("fusion"));
    application.setStyle(style);
    application.setPalette(style->standardPalette());
}
