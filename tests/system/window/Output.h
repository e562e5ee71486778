// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// What a program writes to its standard output, without blanks around it; a complaint where it
/// can't be run.
QString output(const QString& program, const QStringList& arguments);

/// States of the whole transactions in the package manager's history, with a blank between two;
/// empty where there is no such file.
QString historyStates(const QString& file);
