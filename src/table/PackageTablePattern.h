// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "table/RequiredLiteral.h"

#include <QByteArray>
#include <QString>

#include <regex.h>

namespace PackageTable
{

/// A compiled POSIX extended regular expression, case-sensitive, over UTF-8 text.
class Pattern
{
public:
    Pattern() = default;
    ~Pattern();
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    /// Replaces what was compiled before.
    void compile(const QString& expression);

    /// Whether the expression is found anywhere in the text, up to its first NUL. True for
    /// everything as long as no expression compiled.
    bool matches(const QByteArray& utf8) const;
    /// Whether one of the texts that NULs separate matches by itself.
    bool matchesAny(const QByteArray& texts) const;

    /// Whether the matcher is the fast one, which knows bytes only.
    bool isBytewise() const { return bytewise; }

private:
    bool matchesText(const char* text, size_t length) const;

    int status =
        -1; ///< regcomp's result; 0 means that `expression` is valid, -1 that nothing was compiled
    regex_t expression;
    RequiredLiteral literal;
    bool bytewise = false;
    bool spansTexts = false; ///< may take several texts at once: no match begins, ends or passes
                             ///< where one ends
};

} // namespace PackageTable
