// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTablePattern.h"

#include <cstring>

namespace PackageTable
{

Pattern::~Pattern()
{
    if (status == 0)
        regfree(&expression);
}

void Pattern::compile(const QString& text)
{
    if (status == 0)
        regfree(&expression);

    const QByteArray utf8 = text.toUtf8();
    status = regcomp(&expression, utf8.constData(), REG_EXTENDED | REG_NOSUB);
    literal = status == 0 ? RequiredLiteral(utf8.constData()) : RequiredLiteral();
}

bool Pattern::matches(const QByteArray& utf8) const
{
    if (status != 0)
        return true;
    if (!literal.mayMatch(utf8.constData(), strlen(utf8.constData())))
        return false;
    return literal.isWhole() || regexec(&expression, utf8.constData(), 0, nullptr, 0) == 0;
}

} // namespace PackageTable
