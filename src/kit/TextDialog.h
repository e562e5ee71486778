// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDialog>

class HTextEdit;

/// A modal dialog that shows a long text as it is.
class TextDialog : public QDialog
{
    Q_OBJECT

public:
    explicit TextDialog(QWidget* parent);

    /// Plain text; markup in it shows as it is.
    void setText(const QString& text);

    QSize sizeHint() const override;

private:
    HTextEdit* m_text;
};
