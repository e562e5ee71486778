// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>
#include <QVector>

/// What a line of the solver's log adds to the work to come.
struct TsInfo {
    struct Count {
        unsigned int packages;
        bool header; ///< whether a header may have to be fetched for it
    };

    /// Takes in a line without its prefix "TSINFO: ". False, and this is untouched, where it is
    /// none of the known.
    bool parse(const QString& text);

    QString package; ///< as the line names it
    /// What it counts for, in turn; nothing for a package that goes away, of which the name isn't
    /// told either.
    QVector<Count> counts;
};
