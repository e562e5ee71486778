// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

class QKeyEvent;
class QRegularExpressionMatch;
class QWidget;

/// What the password fields of one line and of several have in common. Each is two widgets: the
/// user sees one with the passwords masked, and a twin that is never shown has the real text. Both
/// texts have the same length.
namespace PasswdInput
{

/// What became of a text between two moments.
struct Change {
    int position;
    int removed; ///< characters behind `position` that are gone
    QString inserted;
};

/// The smallest change that makes `after` of `before`. Where several do, since password characters
/// are all the same, it is the one that leaves the cursor behind it, at `cursor` in `after`.
Change change(const QString& before, const QString& after, int cursor);

/// Replaces what was captured, in `text` of which `match` is a match, with password characters as
/// `widget` shows them.
void mask(QString& text, const QRegularExpressionMatch& match, const QWidget* widget);

/// Whether a key inserts its own text.
bool isTyped(const QKeyEvent* key);

/// Whether a key brings back text of the past, which only the twin knows.
bool isOfHistory(const QKeyEvent* key);

/// Whether a key does something that a widget must not do by itself if it has the real text or
/// isn't on the screen: put text into the clipboard, or remove words or lines as they are seen.
bool isForTheVisible(const QKeyEvent* key);

/// Makes a twin a widget without a text for assistive tools. They are told of every change of a
/// text, even where it isn't on the screen.
void hideFromAssistiveTools(QWidget* twin);

} // namespace PasswdInput
