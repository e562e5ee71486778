// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Colors.h"

#include <QColor>
#include <QCoreApplication>

#include <cmath>

namespace
{

// A background darker than this wants white text.
constexpr int darkest = 124;

QString tr(const char* text)
{
    return QCoreApplication::translate("Colors", text);
}

bool isDark(const QColor& color)
{
    return qGray(color.rgb()) < darkest;
}

/// How bright a colour is to the eye, from 0 to 1.
qreal luminance(const QColor& color)
{
    const auto linear = [](qreal part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QPalette makeBackground(const QPalette& palette, const QString& name)
{
    const QColor color(name);
    QPalette result(palette);
    result.setColor(QPalette::Window, color);
    result.setColor(QPalette::WindowText, isDark(color) ? Qt::white : Qt::black);
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

QColor Colors::readable(const QColor& color, const QColor& background)
{
    if (!isDark(background))
        return color;
    constexpr qreal enough = 4.5;
    constexpr qreal glare = 0.05;
    const qreal wanted = (luminance(background) + glare) * enough - glare;
    QColor result = color.toHsl();
    while (luminance(result) < wanted && result.lightness() < 255) {
        result.setHsl(result.hslHue(), result.hslSaturation(), qMin(255, result.lightness() + 4));
    }
    return result.toRgb();
}

QPalette Colors::makeRequired(const QPalette& palette)
{
    // Fields ask on every keystroke; the name is parsed once.
    static const QColor color(requiredBg());
    QPalette result(palette);
    result.setColor(QPalette::Active, QPalette::Base, color);
    result.setColor(QPalette::Inactive, QPalette::Base, color);
    // Other themes may write in light letters, on dark fields.
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        if (isDark(palette.color(group, QPalette::Text)) == isDark(color))
            result.setColor(group, QPalette::Text, isDark(color) ? Qt::white : Qt::black);
    }
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
