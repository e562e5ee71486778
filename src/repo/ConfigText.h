// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

/// Texts of configuration files for the eye. The reader and the writer know bytes only: a stored
/// text has a character for each byte. The package manager takes these bytes for UTF-8, and refuses
/// every repository where they aren't.
namespace ConfigText
{

/// What a stored text says: UTF-8, or a character for each byte where it is something else.
QString toShown(const QString& stored);

/// A text in UTF-8. toShown() gives it back.
QString toStored(const QString& shown);

/// A stored URL, with all but ASCII percent-encoded where it isn't UTF-8.
QString encodedUnlessUtf8(const QString& storedUrl);

/// A text that a field shows, and how it is stored. What the user leaves alone stays as it is,
/// although neither the field nor UTF-8 may be able to hold it.
class InField
{
public:
    InField() = default;
    /// `shown` is what the field made of the text.
    InField(const QString& stored, const QString& shown)
        : m_stored(stored)
        , m_shown(shown)
    {
    }

    /// How to store what the field shows now.
    QString stored(const QString& shown) const
    {
        return shown == m_shown ? m_stored : toStored(shown);
    }

private:
    QString m_stored;
    QString m_shown;
};

} // namespace ConfigText
