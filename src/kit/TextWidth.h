// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QString>

#include <array>
#include <cstddef>

/// Bounds for the widths of texts in one font, far cheaper than laying the texts out.
///
/// Measured are single characters and pairs of them, each once; a text is then a sum. That is its
/// width unless characters act on more than their neighbours, as in a ligature of three. Such an
/// effect needs pairs in a row that are kerned or joined, or a row of punctuation; where a text has
/// those, the bounds part by half the width of each such row. Texts in which a character's shape
/// depends on its surroundings altogether (anything but Latin letters, digits and punctuation) have
/// no bounds.
class TextWidth
{
public:
    struct Bounds {
        qreal lower; ///< pixels; 0 without bounds
        qreal upper; ///< pixels; infinite without bounds
    };

    explicit TextWidth(const QFont& font);

    Bounds bounds(const QString& text);

private:
    // Widths come in 64ths of a pixel, which a float holds exactly.
    struct Step {
        float width = -1; ///< what the second character of a pair adds; negative while not measured
        float overhang = -1; ///< what sticks out at the end of a line; negative while not measured
        bool bound = false;  ///< kerned, joined, or otherwise not what it would add elsewhere
    };

    static constexpr ushort firstPlain = 0x20;
    static constexpr ushort lastPlain = 0x7e;
    static constexpr std::size_t plainCharacters = lastPlain - firstPlain + 1;

    Step& step(ushort left, ushort right);
    void measure(Step& step, ushort left, ushort right);
    qreal advance(ushort character);
    qreal overhang(const QString& text) const;

    const QFont m_font;
    const QFontMetricsF m_metrics;
    const bool m_additive;
    QHash<ushort, qreal> m_advances;
    std::array<Step, plainCharacters * plainCharacters> m_plainSteps;
    QHash<uint, Step> m_otherSteps;
};
