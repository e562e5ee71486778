// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/RequiredLiteral.h"

#include <algorithm>
#include <cstring>

namespace PackageTable
{

namespace
{

/// Reads an expression from left to right. A set of texts stands for "one of these is in every
/// match"; an empty set says nothing.
class Parser
{
public:
    explicit Parser(const QByteArray& expression)
        : at(expression.constData())
        , end(at + expression.size())
    {
    }

    QList<QList<QByteArray>> parse() { return alternation(0); }

private:
    using Texts = QList<QByteArray>;

    /// One of the branches matches, so each must have its text.
    QList<Texts> alternation(int depth)
    {
        const QList<Texts> first = branch(depth);
        if (at == end || *at != '|')
            return first;
        Texts all = best(first);
        bool known = !all.isEmpty();
        while (at < end && *at == '|') {
            ++at;
            const Texts texts = best(branch(depth));
            known = known && !texts.isEmpty();
            all += texts;
        }
        return known && all.size() <= maximumTexts ? QList<Texts>{all} : QList<Texts>();
    }

    /// All parts of a branch match.
    QList<Texts> branch(int depth)
    {
        QList<Texts> sets;
        QByteArray run;
        const auto endRun = [&] {
            if (!run.isEmpty())
                sets += Texts{run};
            run.clear();
        };

        while (at < end && *at != '|' && !(*at == ')' && depth > 0)) {
            if (*at == '(') {
                endRun();
                ++at;
                const QList<Texts> inner = alternation(depth + 1);
                if (at < end)
                    ++at;
                if (quantifier() != MayBeAbsent)
                    sets += inner;
            } else if (const QByteArray character = literal(); !character.isEmpty()) {
                const Quantifier times = quantifier();
                if (times != MayBeAbsent)
                    run += character;
                if (times != Once)
                    endRun();
            } else {
                endRun();
                skipOther();
                quantifier();
            }
        }
        endRun();
        return sets;
    }

    /// The set that excludes most, by guess: the one whose shortest text is longest.
    static Texts best(const QList<Texts>& sets)
    {
        Texts best;
        for (const Texts& texts : sets) {
            if (shortest(texts) > shortest(best))
                best = texts;
        }
        return best;
    }

    static int shortest(const Texts& texts)
    {
        int length = 0;
        for (const QByteArray& text : texts)
            length = length == 0 ? text.size() : std::min(length, text.size());
        return length;
    }

    /// The next character if it stands for itself, which is then read; else an empty text.
    QByteArray literal()
    {
        if (*at == '\\') {
            if (at + 1 == end || !strchr("\\.[]{}()*+?^$|", at[1]))
                return QByteArray();
            at += 2;
            return QByteArray(1, at[-1]);
        }
        if (strchr(".[{}()*+?^$|", *at))
            return QByteArray();
        // A quantifier is about the whole of a character of several bytes.
        const char* start = at++;
        while (at < end && (static_cast<unsigned char>(*at) & 0xC0) == 0x80)
            ++at;
        return QByteArray(start, static_cast<int>(at - start));
    }

    enum Quantifier {
        Once,
        AtLeastOnce,
        MayBeAbsent,
    };

    /// Reads all quantifiers at this place; they stack. Bounds aren't looked at.
    Quantifier quantifier()
    {
        Quantifier result = Once;
        while (at < end && strchr("*+?{", *at)) {
            if (*at == '+') {
                result = std::max(result, AtLeastOnce);
            } else {
                result = MayBeAbsent;
                if (*at == '{')
                    while (at < end && *at != '}')
                        ++at;
            }
            if (at < end)
                ++at;
        }
        return result;
    }

    /// Reads what stands for something else than itself: brackets, anchors, escapes, the dot.
    void skipOther()
    {
        if (*at == '\\') {
            at = std::min(at + 2, end);
            return;
        }
        if (*at != '[') {
            ++at;
            return;
        }
        ++at;
        if (at < end && *at == '^')
            ++at;
        if (at < end && *at == ']')
            ++at;
        while (at < end && *at != ']') {
            if (*at == '[' && at + 1 < end && strchr(":.=", at[1])) {
                const char kind = at[1];
                at += 2;
                while (at + 1 < end && !(at[0] == kind && at[1] == ']'))
                    ++at;
                at = std::min(at + 2, end);
            } else {
                ++at;
            }
        }
        if (at < end)
            ++at;
    }

    /// With more, searching for each of them costs as much as matching.
    static constexpr int maximumTexts = 8;

    const char* at;
    const char* end;
};

} // namespace

RequiredLiteral::RequiredLiteral(const QByteArray& expression)
    : sets(Parser(expression).parse())
    , whole(sets == QList<QList<QByteArray>>{{expression}})
{
}

bool RequiredLiteral::mayMatch(const char* text, size_t length) const
{
    return std::all_of(sets.begin(), sets.end(), [text, length](const QList<QByteArray>& texts) {
        return std::any_of(texts.begin(), texts.end(), [text, length](const QByteArray& literal) {
            return memmem(text, length, literal.constData(), static_cast<size_t>(literal.size()));
        });
    });
}

} // namespace PackageTable
