// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/HTextEdit.h"

#include <QPointer>
#include <QRegularExpression>
#include <QString>

/// Lines of text that show with the secret parts masked. The widget itself only ever holds the
/// masked text; the real one is in a twin that follows all that the user does here.
class PasswdTextEdit : public HTextEdit
{
    Q_OBJECT

public:
    /// Masked is what `regExp` captures in each of its matches. The twin gets the same parent,
    /// above this widget if there is one, so give the field its parent by a layout.
    PasswdTextEdit(const QRegularExpression& regExp, QWidget* parent);
    /// Sized in letters and lines as its base class.
    PasswdTextEdit(const QRegularExpression& regExp, int columns, int rows, QWidget* parent);
    ~PasswdTextEdit() override;

    void setRealPlainText(const QString& text);
    QString realPlainText() const;

public Q_SLOTS:
    /// Shows the twin's text masked. The base class's signal of this name tells of the masked text,
    /// when the real text is already the new one.
    void textChanged();

Q_SIGNALS:
    void realTextChanged();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    /// There is no context menu.
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void init();
    QString masked(QString text) const;
    QString maskedInsertion(const QString& text, int length) const;
    void forward(QEvent* event);
    void alignTwin();
    void settle();

    QRegularExpression regExp;
    QPointer<HTextEdit> real;
    QString shown;    ///< the masked text as it was last set
    int handling = 0; ///< events within each other
    bool masking = false;
    bool followed = false; ///< the twin's text has changed since the event began
};
