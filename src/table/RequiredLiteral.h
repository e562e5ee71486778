// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QList>

namespace PackageTable
{

/// Literal texts of which every match of a POSIX extended regular expression contains at least one.
/// A text without any of them needs no matcher, which is many times slower than a search for bytes.
///
/// Knows a part of the syntax only; what it doesn't know makes it say less, never more.
class RequiredLiteral
{
public:
    RequiredLiteral() = default;
    /// The expression must be one that compiles.
    explicit RequiredLiteral(const QByteArray& expression);

    /// False if no match is possible.
    bool mayMatch(const char* text, size_t length) const;
    /// Whether mayMatch() is the verdict already: the expression is nothing but one literal text.
    bool isWhole() const { return whole; }
    /// Of each of these sets every match contains at least one text.
    const QList<QList<QByteArray>>& required() const { return sets; }

private:
    QList<QList<QByteArray>> sets;
    bool whole = false;
};

} // namespace PackageTable
