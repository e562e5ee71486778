// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// Repositories that are written down as text, without packages behind them.
namespace WrittenRepository
{

/// The contents of a repository that lists one noarch package.
QByteArray listing(const QByteArray& package, const QByteArray& summary);

/// Makes the folder and writes the contents and an index with their true checksum.
void write(const QString& directory, const QByteArray& contents);

} // namespace WrittenRepository
