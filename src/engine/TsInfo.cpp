// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/TsInfo.h"

namespace
{

/// Cuts `text` off at its first blank; false where it has none.
bool cutToWord(QString& text)
{
    const int blank = text.indexOf(QLatin1Char(' '));
    if (blank < 0)
        return false;
    text.truncate(blank);
    return true;
}

} // namespace

bool TsInfo::parse(const QString& text)
{
    const QLatin1String updating("Updating ");
    const QLatin1String obsoleting("Obsoleting ");
    const QLatin1String marking("Marking ");

    QString word;
    if (text.startsWith(updating)) {
        word = text.mid(updating.size());
        if (!cutToWord(word))
            return false;
        counts = {{2, true}};
    } else if (text.startsWith(obsoleting)) {
        word = text.mid(obsoleting.size());
        if (!word.contains(QLatin1String(" with ")) || !cutToWord(word))
            return false;
        // Both halves of the line count for its first package, once without and once with a header;
        // the name behind " with " is never looked at. Kept so: it is an estimate of the work to
        // come, and the script's lines are made with this way of counting in mind.
        counts = {{1, false}, {1, true}};
    } else if (text.startsWith(marking)) {
        word = text.mid(marking.size());
        if (!cutToWord(word))
            return false;
        counts = {{text.contains(QLatin1String(" update ")) ? 2U : 1U, true}};
    } else if (text.contains(QLatin1String(" marked as erase"))) {
        // What goes away adds no work to the solver's.
        counts.clear();
    } else {
        return false;
    }
    package = word;
    return true;
}
