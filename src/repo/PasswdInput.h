// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>

#include <functional>

class QEvent;
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

/// `position`, which was moved there from `from`, or where it would split a character of two code
/// units, the farther end of that character: the mask lets a cursor stop there.
int boundary(const QString& text, int position, int from);

/// A text of the same length that an expression can match. In one that isn't valid none does, and
/// its passwords would show.
QString matchable(QString text);

/// Replaces what was captured, in `text` of which `match` is a match, with password characters as
/// `widget` shows them.
void mask(QString& text, const QRegularExpressionMatch& match, const QWidget* widget);

/// Has a visible widget deal with an event as with one that has no secret in it: whatever that
/// inserts, the password characters come with it.
///
/// `deal` is the widget's own way with events; `maskedInsertion` gives how the last `length`
/// characters of a text will show when the text has replaced the selection.
bool deliver(QEvent* event, const std::function<bool(QEvent*)>& deal,
             const std::function<QString(const QString& text, int length)>& maskedInsertion);

/// Whether the twin has to see what the visible widget has dealt with: a key that edits, where that
/// accepts any. `changed` says that the visible text isn't what it was.
///
/// A key that only moves the cursor, or copies, is none of the twin's business: its own copy would
/// be of the real text.
bool isForTheTwin(const QEvent* event, bool accepts, bool changed);

/// Makes a twin a widget without a text for assistive tools. They are told of every change of a
/// text, even where it isn't on the screen.
void hideFromAssistiveTools(QWidget* twin);

} // namespace PasswdInput
