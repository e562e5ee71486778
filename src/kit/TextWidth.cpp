// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/TextWidth.h"

#include <QTextLayout>

#include <limits>

namespace
{

/// Latin letters, digits and punctuation, without those that Qt breaks lines at, hides or composes.
bool isSimple(ushort character)
{
    return (character >= 0x20 && character <= 0x7e) ||
           (character > 0xa0 && character <= 0x17f && character != 0xad);
}

bool isPunctuation(ushort character)
{
    const ushort letter = character | 0x20;
    return character > 0x20 && character < 0x7f && !(character >= '0' && character <= '9') &&
           !(letter >= 'a' && letter <= 'z');
}

/// Whether fonts have ligatures of three that begin or end like this, even where that of these two
/// is as wide as they are apart.
bool isPartOfLigature(ushort left, ushort right)
{
    return left == 'f' && (right == 'f' || right == 'i' || right == 'j' || right == 'l');
}

} // namespace

TextWidth::TextWidth(const QFont& font)
    : m_font(font)
    , m_metrics(font)
    // Capitals made from small letters and stretched blanks follow rules of their own.
    , m_additive(font.capitalization() == QFont::MixedCase && qFuzzyIsNull(font.wordSpacing()))
{
}

TextWidth::Bounds TextWidth::bounds(const QString& text)
{
    const Bounds none{0, std::numeric_limits<qreal>::infinity()};
    if (text.isEmpty())
        return {0, 0};
    const ushort* character = text.utf16();
    const ushort* const end = character + text.size();
    // Blanks at the end may or may not count.
    if (!m_additive || !isSimple(*character) || text.endsWith(QLatin1Char(' ')))
        return none;
    if (text.size() == 1) {
        const qreal width = advance(*character) + overhang(text);
        return {width, width};
    }

    ushort previous = *character;
    qreal previousWidth = advance(previous);
    qreal sum = previousWidth;
    qreal slack = 0;
    // The row of bound pairs that ends here: its length and its width.
    int row = 0;
    qreal rowWidth = 0;
    while (++character != end) {
        const ushort current = *character;
        if (!isSimple(current))
            return none;
        const Step& pair = step(previous, current);
        sum += pair.width;
        if (pair.bound) {
            rowWidth += row == 0 ? previousWidth + pair.width : pair.width;
            ++row;
        } else {
            if (row > 1)
                slack += rowWidth / 2;
            row = 0;
            rowWidth = 0;
        }
        previous = current;
        previousWidth = pair.width;
    }
    if (row > 1)
        slack += rowWidth / 2;

    Step& last = step(end[-2], end[-1]);
    if (last.overhang < 0)
        last.overhang = static_cast<float>(overhang(text.right(2)));
    sum += last.overhang;
    return {qMax<qreal>(0, sum - slack), sum + slack};
}

TextWidth::Step& TextWidth::step(ushort left, ushort right)
{
    const bool plain = left <= lastPlain && right <= lastPlain;
    Step& step = plain
                     ? m_plainSteps[static_cast<std::size_t>(left - firstPlain) * plainCharacters +
                                    (right - firstPlain)]
                     : m_otherSteps[static_cast<uint>(left) << 16 | right];
    if (step.width < 0)
        measure(step, left, right);
    return step;
}

void TextWidth::measure(Step& step, ushort left, ushort right)
{
    const QChar pair[] = {QChar(left), QChar(right)};
    // Two characters that join to less than the first alone would look unmeasured.
    step.width = static_cast<float>(
        qMax<qreal>(0, m_metrics.horizontalAdvance(QString(pair, 2)) - advance(left)));
    step.bound = step.width != advance(right) || (isPunctuation(left) && isPunctuation(right)) ||
                 isPartOfLigature(left, right);
}

qreal TextWidth::advance(ushort character)
{
    const auto known = m_advances.constFind(character);
    if (known != m_advances.constEnd())
        return *known;
    const qreal width = m_metrics.horizontalAdvance(QString(QChar(character)));
    m_advances.insert(character, width);
    return width;
}

/// How far the last character leans out over the place where the next one would begin.
qreal TextWidth::overhang(const QString& text) const
{
    QTextLayout layout(text, m_font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setNumColumns(text.size());
    layout.endLayout();
    return qMax<qreal>(0, line.naturalTextWidth() - m_metrics.horizontalAdvance(text));
}
