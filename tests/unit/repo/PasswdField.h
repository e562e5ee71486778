// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/PasswdLineEdit.h"
#include "repo/PasswdTextEdit.h"
#include "repo/Vantry.h"

#include <QPoint>
#include <QSignalSpy>
#include <QStyle>
#include <QTextCursor>

#include <functional>
#include <memory>

/// A password field of either kind, for the tests that both have to pass. Its text is head(), a
/// secret and tail().
class PasswdField
{
public:
    PasswdField() = default;
    virtual ~PasswdField() = default;
    PasswdField(const PasswdField&) = delete;
    PasswdField& operator=(const PasswdField&) = delete;

    virtual QString head() const = 0;
    /// How the head shows, which may have another password.
    virtual QString shownHead() const = 0;
    static QString tail() { return QStringLiteral("/x"); }

    QString mask(int length) const
    {
        const QStyle* style = widget()->style();
        return QString(length, QChar(style->styleHint(QStyle::SH_LineEdit_PasswordCharacter,
                                                      nullptr, widget())));
    }

    virtual QWidget* widget() const = 0;
    /// What is painted and gets the mouse.
    virtual QWidget* canvas() const = 0;
    /// What both the field and its twin are.
    virtual const char* className() const = 0;
    virtual Qt::KeyboardModifiers toTheStart() const = 0; ///< with Home

    virtual void setReal(const QString& text) = 0;
    virtual QString real() const = 0;
    virtual QString shown() const = 0;
    virtual int position() const = 0;
    /// As a program would, with no event.
    virtual void setPosition(int position) = 0;
    virtual int selectionStart() const = 0; ///< the position where nothing is selected
    virtual QString selected() const = 0;
    /// Where a character shows, in a text that isn't scrolled.
    virtual QPoint place(int position) const = 0;
    /// The base class's own function.
    virtual void insert(const QString& text) = 0;
    virtual bool hasOwnHistory() const = 0;

    virtual void whenShownTextChanges(std::function<void()> then) const = 0;
    virtual std::unique_ptr<QSignalSpy> spyOnRealText() const = 0;
};

class PasswdLineField : public PasswdField
{
public:
    explicit PasswdLineField(QWidget* parent)
        : edit(new PasswdLineEdit(Repo::Vantry::oneUrlRegExp(), parent))
    {
    }

    QString head() const override { return QStringLiteral("http://host/rhel/a=b/c="); }
    QString shownHead() const override { return head(); }
    QWidget* widget() const override { return edit; }
    QWidget* canvas() const override { return edit; }
    const char* className() const override { return "QLineEdit"; }
    Qt::KeyboardModifiers toTheStart() const override { return Qt::NoModifier; }
    void setReal(const QString& text) override { edit->setRealText(text); }
    QString real() const override { return edit->realText(); }
    QString shown() const override { return edit->text(); }
    int position() const override { return edit->cursorPosition(); }
    void setPosition(int position) override { edit->setCursorPosition(position); }
    int selectionStart() const override
    {
        return edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
    }
    QString selected() const override { return edit->selectedText(); }
    QPoint place(int position) const override
    {
        edit->setCursorPosition(position);
        return edit->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    }
    void insert(const QString& text) override { edit->insert(text); }
    bool hasOwnHistory() const override { return edit->isUndoAvailable(); }
    void whenShownTextChanges(std::function<void()> then) const override
    {
        QObject::connect(edit, &QLineEdit::textChanged, edit, std::move(then));
    }
    std::unique_ptr<QSignalSpy> spyOnRealText() const override
    {
        return std::make_unique<QSignalSpy>(edit, &PasswdLineEdit::realTextChanged);
    }

    PasswdLineEdit* const edit;
};

/// The secret is in the second of two lines, each of which has a password in another form.
class PasswdTextField : public PasswdField
{
public:
    explicit PasswdTextField(QWidget* parent)
        : edit(new PasswdTextEdit(Repo::Vantry::urlsRegExp(), parent))
    {
    }

    static QString lines(const QString& first, const QString& second)
    {
        return QStringLiteral("http://host/vantry?a=b&c=") + first +
               QStringLiteral("&path=/x\nhttp://host/rhel/a=b/c=") + second;
    }
    QString head() const override { return lines(QStringLiteral("covert"), QString()); }
    QString shownHead() const override { return lines(mask(6), QString()); }
    QWidget* widget() const override { return edit; }
    QWidget* canvas() const override { return edit->viewport(); }
    const char* className() const override { return "HTextEdit"; }
    Qt::KeyboardModifiers toTheStart() const override { return Qt::ControlModifier; }
    void setReal(const QString& text) override { edit->setRealPlainText(text); }
    QString real() const override { return edit->realPlainText(); }
    QString shown() const override { return edit->toPlainText(); }
    int position() const override { return edit->textCursor().position(); }
    void setPosition(int position) override { edit->setTextCursor(cursorAt(position)); }
    int selectionStart() const override { return edit->textCursor().selectionStart(); }
    QString selected() const override { return edit->textCursor().selectedText(); }
    QPoint place(int position) const override
    {
        return edit->cursorRect(cursorAt(position)).center();
    }
    void insert(const QString& text) override { edit->insertPlainText(text); }
    bool hasOwnHistory() const override { return edit->isUndoRedoEnabled(); }
    void whenShownTextChanges(std::function<void()> then) const override
    {
        QObject::connect(edit, &QTextEdit::textChanged, edit, std::move(then));
    }
    std::unique_ptr<QSignalSpy> spyOnRealText() const override
    {
        return std::make_unique<QSignalSpy>(edit, &PasswdTextEdit::realTextChanged);
    }

    PasswdTextEdit* const edit;

private:
    QTextCursor cursorAt(int position) const
    {
        QTextCursor cursor = edit->textCursor();
        cursor.setPosition(position);
        return cursor;
    }
};
