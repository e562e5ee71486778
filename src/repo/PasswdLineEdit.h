// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QString>

/// A line whose text shows with the secret parts masked. The widget itself only ever holds the
/// masked text; the real one is in a twin that follows all that the user does here.
class PasswdLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    /// Masked is what `regExp` captures where it matches the whole of the text, and then the whole
    /// of what is before that. The twin gets the same parent, above this widget if there is one, so
    /// give the field its parent by a layout.
    PasswdLineEdit(const QRegularExpression& regExp, QWidget* parent);
    ~PasswdLineEdit() override;

    void setRealText(const QString& text);
    QString realText() const;

    bool event(QEvent* event) override;

public Q_SLOTS:
    /// Shows `text`, the twin's, masked. The base class's signal of this name tells of the masked
    /// text, when the real text is already the new one.
    void textChanged(const QString& text);

Q_SIGNALS:
    void realTextChanged(const QString& text);

protected:
    /// There is no context menu.
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString masked(const QString& text) const;
    QString maskedInsertion(const QString& text, int length) const;
    void forward(QEvent* event);
    void alignTwin();
    void settle();

    QRegularExpression regExp;
    QPointer<QLineEdit> real;
    QString shown;    ///< the masked text as it was last set
    int handling = 0; ///< events within each other
    bool masking = false;
};
