// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Colors.h"

#include <QColor>
#include <QCoreApplication>

namespace
{

// A background darker than this wants white text.
constexpr int darkest = 124;

QString tr(const char* text)
{
    return QCoreApplication::translate("Colors", text);
}

QPalette makeBackground(const QPalette& palette, const QString& name)
{
    const QColor color(name);
    QPalette result(palette);
    result.setColor(QPalette::Window, color);
    result.setColor(QPalette::WindowText, qGray(color.rgb()) < darkest ? Qt::white : Qt::black);
    return result;
}

} // namespace

QString Colors::action()
{
    return tr("blue");
}
QString Colors::error()
{
    return tr("red");
}
QString Colors::errorDisabled()
{
    return tr("#ffa9b8");
}
QString Colors::warning()
{
    return tr("darkorange");
}
QString Colors::minor()
{
    return tr("#8b5a2b");
}
QString Colors::minorDisabled()
{
    return tr("#ffbd94");
}
QString Colors::ok()
{
    return tr("green");
}
QString Colors::requiredBg()
{
    return tr("#fffacd");
}
QString Colors::errorBg()
{
    return tr("#ff6060");
}
QString Colors::warningBg()
{
    return tr("yellow");
}
QString Colors::okBg()
{
    return tr("lightgreen");
}

QPalette Colors::makeRequired(const QPalette& palette)
{
    // Fields ask on every keystroke; the name is parsed once.
    static const QColor color(requiredBg());
    QPalette result(palette);
    result.setColor(QPalette::Active, QPalette::Base, color);
    result.setColor(QPalette::Inactive, QPalette::Base, color);
    return result;
}

QPalette Colors::makeError(const QPalette& palette)
{
    return makeBackground(palette, errorBg());
}

QPalette Colors::makeWarning(const QPalette& palette)
{
    return makeBackground(palette, warningBg());
}

QPalette Colors::makeOK(const QPalette& palette)
{
    return makeBackground(palette, okBg());
}
