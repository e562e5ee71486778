// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/PasswdLineEdit.h"
#include "kit/Fonts.h"
#include "repo/PasswdInput.h"

#include <QEvent>

PasswdLineEdit::PasswdLineEdit(const QRegularExpression& regExp, QWidget* parent)
    : QLineEdit(parent)
    , regExp(QRegularExpression::anchoredPattern(regExp.pattern()),
             regExp.patternOptions() | QRegularExpression::DotMatchesEverythingOption)
    , real(new QLineEdit(parent))
{
    setFont(Fonts::makeFixed(font()));
    connect(real, &QLineEdit::textChanged, this, &PasswdLineEdit::textChanged);
    // Changes from elsewhere than events: a slot of the base class, an assistive tool.
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (handling == 0 && !masking)
            settle();
    });
    real->setFont(font());
    real->setGeometry(geometry());
    PasswdInput::hideFromAssistiveTools(real);
    setAcceptDrops(false);
    setInputMethodHints(Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
}

PasswdLineEdit::~PasswdLineEdit()
{
    delete real;
}

void PasswdLineEdit::setRealText(const QString& text)
{
    real->setText(text);
}

QString PasswdLineEdit::realText() const
{
    return real->text();
}

bool PasswdLineEdit::event(QEvent* event)
{
    // The base class's constructor and destructor send events too.
    if (!real)
        return QLineEdit::event(event);

    const bool accepts = event->type() == QEvent::KeyPress && isEnabled() && !isReadOnly();
    if (accepts)
        alignTwin();
    ++handling;
    const bool result = PasswdInput::deliver(
        event, [this](QEvent* hidden) { return QLineEdit::event(hidden); },
        [this](const QString& text, int length) { return maskedInsertion(text, length); });
    if (!real)
        return result;
    if (PasswdInput::isForTheTwin(event, accepts, text() != shown))
        forward(event);
    --handling;
    if (handling == 0)
        settle();
    return result;
}

/// Gives the twin an event that the visible widget has dealt with.
void PasswdLineEdit::forward(QEvent* event)
{
    const bool accepted = event->isAccepted();
    static_cast<QObject*>(real)->event(event);
    event->setAccepted(accepted);
}

void PasswdLineEdit::contextMenuEvent(QContextMenuEvent*) {}

void PasswdLineEdit::resizeEvent(QResizeEvent* event)
{
    QLineEdit::resizeEvent(event);
    real->setGeometry(geometry());
}

void PasswdLineEdit::textChanged(const QString& text)
{
    const QString before = QLineEdit::text();
    shown = masked(text);
    const int cursor = real->cursorPosition();
    // This also empties the visible widget's own history.
    masking = true;
    setText(shown);
    masking = false;
    setCursorPosition(cursor);
    real->setCursorPosition(cursor);
    // Whoever listens to the base class's signal may have asked for the real text too early.
    if (shown == before)
        Q_EMIT QLineEdit::textChanged(shown);
    Q_EMIT realTextChanged(real->text());
}

QString PasswdLineEdit::masked(const QString& text) const
{
    QString result = text;
    const QString valid = PasswdInput::matchable(text);
    // What matches may be the last of several passwords only.
    int end = text.size();
    while (end > 0) {
        const QRegularExpressionMatch match = regExp.match(valid.left(end));
        PasswdInput::mask(result, match, this);
        int start = 0;
        for (int i = match.lastCapturedIndex(); i > 0; --i)
            if (match.capturedStart(i) >= 0)
                start = match.capturedStart(i);
        end = start < end ? start : 0;
    }
    return result;
}

/// How the last `length` characters of `text` will show when it has replaced the selection.
QString PasswdLineEdit::maskedInsertion(const QString& text, int length) const
{
    const int start = hasSelectedText() ? selectionStart() : cursorPosition();
    QString all = real->text();
    all.replace(start, selectedText().size(), text);
    return masked(all).mid(start + text.size() - length, length);
}

/// Gives the twin the cursor and the selection that the user sees. Where they would be in the twin
/// by itself depends on how far it is scrolled and on where words end in what is masked here.
void PasswdLineEdit::alignTwin()
{
    const QString text = real->text();
    const int cursor = PasswdInput::boundary(text, cursorPosition(), real->cursorPosition());
    if (!hasSelectedText()) {
        if (cursor != cursorPosition())
            setCursorPosition(cursor);
        real->setCursorPosition(cursor);
        return;
    }
    const int end = cursorPosition() == selectionStart() ? selectionEnd() : selectionStart();
    const int anchor = PasswdInput::boundary(text, end, cursor);
    if (anchor != end || cursor != cursorPosition())
        setSelection(anchor, cursor - anchor);
    real->setSelection(anchor, cursor - anchor);
}

/// Brings the two widgets together again: what changed here and not in the twin is made up for
/// there.
void PasswdLineEdit::settle()
{
    const QString now = text();
    if (now == shown) {
        alignTwin();
        return;
    }
    const PasswdInput::Change change = PasswdInput::change(shown, now, cursorPosition());
    const QString before = real->text();
    const int start = PasswdInput::boundary(before, change.position, before.size());
    const int end = PasswdInput::boundary(before, change.position + change.removed, 0);
    real->setSelection(start, change.removed > 0 ? end - start : 0);
    real->insert(change.inserted);
    // The twin may have had no room for it.
    if (text() != shown)
        textChanged(real->text());
}
