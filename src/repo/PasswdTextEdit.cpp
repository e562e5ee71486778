// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/PasswdTextEdit.h"
#include "kit/Fonts.h"
#include "repo/PasswdInput.h"

#include <QEvent>
#include <QScrollBar>
#include <QTextCursor>

namespace
{

void select(QTextEdit* edit, int anchor, int position)
{
    QTextCursor cursor(edit->document());
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    edit->setTextCursor(cursor);
}

} // namespace

PasswdTextEdit::PasswdTextEdit(const QRegularExpression& regExp, QWidget* parent)
    : HTextEdit(parent)
    , regExp(regExp)
    , real(new HTextEdit(parent))
{
    init();
}

PasswdTextEdit::PasswdTextEdit(const QRegularExpression& regExp, int columns, int rows,
                               QWidget* parent)
    : HTextEdit(columns, rows, parent)
    , regExp(regExp)
    , real(new HTextEdit(columns, rows, parent))
{
    init();
}

PasswdTextEdit::~PasswdTextEdit()
{
    delete real;
}

void PasswdTextEdit::init()
{
    setWordWrapMode(QTextOption::WrapAnywhere);
    setFont(Fonts::makeFixed(font()));
    setCurrentFont(font());
    connect(real, &QTextEdit::textChanged, this, &PasswdTextEdit::textChanged);
    // Changes from elsewhere than events: a slot of the base class, an assistive tool, the end of
    // a drag.
    connect(this, &QTextEdit::textChanged, this, [this] {
        if (handling == 0 && !masking)
            settle();
    });
    real->setFont(font());
    real->setGeometry(geometry());
    PasswdInput::hideFromAssistiveTools(real);
    setAcceptDrops(false);
    // What is kept is text; the formats of what is pasted would last until the next change only.
    setAcceptRichText(false);
    real->setAcceptRichText(false);
    // The history is the twin's.
    setUndoRedoEnabled(false);
    setInputMethodHints(inputMethodHints() | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                        Qt::ImhNoAutoUppercase);
}

void PasswdTextEdit::setRealPlainText(const QString& text)
{
    real->setPlainText(text);
}

QString PasswdTextEdit::realPlainText() const
{
    return real->toPlainText();
}

bool PasswdTextEdit::event(QEvent* event)
{
    // The base class's constructor and destructor send events too.
    if (!real)
        return HTextEdit::event(event);

    const bool accepts = event->type() == QEvent::KeyPress && isEnabled() && !isReadOnly();
    if (accepts)
        alignTwin();
    ++handling;
    const bool result = PasswdInput::deliver(
        event, [this](QEvent* hidden) { return HTextEdit::event(hidden); },
        [this](const QString& text, int length) { return maskedInsertion(text, length); });
    if (!real)
        return result;
    if (PasswdInput::isForTheTwin(event, accepts, toPlainText() != shown))
        forward(event);
    --handling;
    if (handling == 0 && !masking)
        settle();
    return result;
}

/// The mouse: what it selects is passed on to the twin, which is scrolled and wrapped otherwise.
bool PasswdTextEdit::viewportEvent(QEvent* event)
{
    if (!real)
        return HTextEdit::viewportEvent(event);
    ++handling;
    const bool result = HTextEdit::viewportEvent(event);
    --handling;
    if (real && handling == 0 && !masking)
        settle();
    return result;
}

/// Gives the twin an event that the visible widget has dealt with.
void PasswdTextEdit::forward(QEvent* event)
{
    const bool accepted = event->isAccepted();
    followed = false;
    static_cast<QObject*>(real)->event(event);
    event->setAccepted(accepted);
    // An undo moves the cursor only after it has told of the text.
    if (followed)
        select(this, real->textCursor().anchor(), real->textCursor().position());
}

void PasswdTextEdit::contextMenuEvent(QContextMenuEvent*) {}

void PasswdTextEdit::resizeEvent(QResizeEvent* event)
{
    HTextEdit::resizeEvent(event);
    if (real)
        real->setGeometry(geometry());
}

void PasswdTextEdit::textChanged()
{
    shown = masked(real->toPlainText());
    const int cursor = real->textCursor().position();
    const int scrolled = verticalScrollBar()->value();
    masking = true;
    setPlainText(shown);
    masking = false;
    select(this, cursor, cursor);
    // A new text shows from its start.
    verticalScrollBar()->setValue(scrolled);
    ensureCursorVisible();
    followed = true;
    Q_EMIT realTextChanged();
}

QString PasswdTextEdit::masked(QString text) const
{
    const QString valid = PasswdInput::matchable(text);
    for (int from = 0; from <= text.size();) {
        const QRegularExpressionMatch match = regExp.match(valid, from);
        if (!match.hasMatch())
            break;
        from = match.capturedEnd() + (match.capturedLength() == 0 ? 1 : 0);
        PasswdInput::mask(text, match, this);
    }
    return text;
}

/// How the last `length` characters of `text` will show when it has replaced the selection.
QString PasswdTextEdit::maskedInsertion(const QString& text, int length) const
{
    const QTextCursor cursor = textCursor();
    const int start = cursor.selectionStart();
    QString all = real->toPlainText();
    all.replace(start, cursor.selectionEnd() - start, text);
    return masked(all).mid(start + text.size() - length, length);
}

/// Gives the twin the cursor and the selection that the user sees.
void PasswdTextEdit::alignTwin()
{
    const QTextCursor here = textCursor();
    const QTextCursor there = real->textCursor();
    const QString text = real->toPlainText();
    const int position = PasswdInput::boundary(text, here.position(), there.position());
    const int anchor =
        here.hasSelection() ? PasswdInput::boundary(text, here.anchor(), position) : position;
    if (here.anchor() != anchor || here.position() != position)
        select(this, anchor, position);
    if (there.anchor() != anchor || there.position() != position)
        select(real, anchor, position);
}

/// Brings the two widgets together again: what changed here and not in the twin is made up for
/// there.
void PasswdTextEdit::settle()
{
    const QString now = toPlainText();
    if (now == shown) {
        alignTwin();
        return;
    }
    const int position = textCursor().position();
    const PasswdInput::Change change = PasswdInput::change(shown, now, position);
    QTextCursor edit(real->document());
    const QString before = real->toPlainText();
    const int start = PasswdInput::boundary(before, change.position, before.size());
    const int end = PasswdInput::boundary(before, change.position + change.removed, 0);
    edit.setPosition(start);
    edit.setPosition(change.removed > 0 ? end : start, QTextCursor::KeepAnchor);
    edit.insertText(change.inserted);
    select(this, position, position);
    alignTwin();
}
