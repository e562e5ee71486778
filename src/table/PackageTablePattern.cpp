// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTablePattern.h"

#include <clocale>
#include <cstring>

#include <locale.h>

namespace PackageTable
{

namespace
{

/// Whether an expression finds the same in valid UTF-8 when each byte is taken for a character.
///
/// What stands for ASCII characters only does: no other character has such a byte in it. So do "."
/// and a bracket expression that excludes ASCII characters, if "*" follows: both take any part of
/// another character, so where a match byte by byte cuts one in two, a match in whole characters
/// gives that character to one side and nothing of it to the other, each of which may be empty.
class ByteRule
{
public:
    explicit ByteRule(const QByteArray& expression)
        : at(expression.constData())
        , end(at + expression.size())
        , same(check())
    {
    }

    bool holds() const { return same; }
    /// Whether the verdict depends on where a text ends, or a NUL can be part of a match.
    bool seesEnds() const { return ends; }

private:
    bool check()
    {
        while (at < end) {
            switch (*at) {
            case '\\':
                // Whatever isn't a character that has lost its meaning may be a back-reference or
                // an expression about words.
                if (at + 1 == end || !strchr("\\.[]{}()*+?^$|", at[1]))
                    return false;
                at += 2;
                break;
            case '.':
                ++at;
                if (at == end || *at != '*')
                    return false;
                break;
            case '[':
                if (!bracket())
                    return false;
                break;
            case '^':
            case '$':
                ends = true;
                ++at;
                break;
            default:
                if (!isAscii(*at))
                    return false;
                ++at;
            }
        }
        return true;
    }

    bool bracket()
    {
        ++at;
        const bool excludes = at < end && *at == '^';
        if (excludes)
            ++at;
        for (bool first = true; at < end && (first || *at != ']'); first = false) {
            if (!isAscii(*at) || (*at == '[' && at + 1 < end && strchr(":.=", at[1])))
                return false;
            ++at;
        }
        if (at == end)
            return false;
        ++at;
        if (!excludes)
            return true;
        ends = true;
        return at < end && *at == '*';
    }

    static bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

    const char* at;
    const char* end;
    bool ends = false;
    bool same;
};

/// The "C" locale for the calling thread, for a scope.
class PlainLocale
{
public:
    PlainLocale()
        : saved(uselocale(plain()))
    {
    }
    ~PlainLocale() { uselocale(saved); }
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;

private:
    /// Made once a process. A null one leaves the locale as it is.
    static locale_t plain()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t saved;
};

constexpr int flags = REG_EXTENDED | REG_NOSUB;

} // namespace

Pattern::~Pattern()
{
    if (status == 0)
        regfree(&expression);
}

void Pattern::compile(const QString& text)
{
    if (status == 0)
        regfree(&expression);

    // Up to its first NUL, which is all that the matcher sees.
    const QByteArray all = text.toUtf8();
    const QByteArray utf8(all.constData());
    const ByteRule rule(utf8);
    bytewise = false;
    if (rule.holds()) {
        // A compiled expression keeps the kind of characters that it was compiled for. With those
        // of UTF-8 the matcher goes the long way wherever a range is met. "[a-f]" is a range of
        // ASCII characters then, whatever lies between the two in the user's language.
        const PlainLocale scope;
        status = regcomp(&expression, utf8.constData(), flags);
        bytewise = status == 0;
    }
    // There are ranges that only the order of a language has.
    if (!bytewise)
        status = regcomp(&expression, utf8.constData(), flags);
    spansTexts = bytewise && !rule.seesEnds();
    literal = status == 0 ? RequiredLiteral(utf8) : RequiredLiteral();
}

bool Pattern::matches(const QByteArray& utf8) const
{
    if (status != 0)
        return true;
    return matchesText(utf8.constData(), strlen(utf8.constData()));
}

bool Pattern::matchesAny(const QByteArray& texts) const
{
    if (status != 0)
        return true;
    const char* at = texts.constData();
    const char* const end = at + texts.size();
    // A literal holds no NUL, so where it is found it is found within one text.
    if (!literal.mayMatch(at, static_cast<size_t>(texts.size())))
        return false;
    if (literal.isWhole())
        return true;
    if (spansTexts) {
        regmatch_t range;
        range.rm_so = 0;
        range.rm_eo = texts.size();
        return regexec(&expression, at, 0, &range, REG_STARTEND) == 0;
    }
    for (;;) {
        const size_t length = strlen(at);
        if (matchesText(at, length))
            return true;
        at += length;
        if (at >= end)
            return false;
        ++at;
    }
}

bool Pattern::matchesText(const char* text, size_t length) const
{
    if (!literal.mayMatch(text, length))
        return false;
    return literal.isWhole() || regexec(&expression, text, 0, nullptr, 0) == 0;
}

} // namespace PackageTable
