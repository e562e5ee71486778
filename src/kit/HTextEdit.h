// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QTextEdit>

/// A text edit that is sized in letters and lines, and tells when the user is done with it.
class HTextEdit : public QTextEdit
{
    Q_OBJECT

public:
    explicit HTextEdit(QWidget* parent);

    /// Plans for `columns` letters and `rows` lines of the widget's font; -1 leaves that direction
    /// to Qt.
    HTextEdit(int columns, int rows, QWidget* parent);

    QSize sizeHint() const override;
    void focusOutEvent(QFocusEvent* event) override;

    /// Appends `text`, plain or rich, as paragraphs of which the last has no margin above and
    /// below.
    void appendCompact(const QString& text);

Q_SIGNALS:
    /// The focus went elsewhere, not merely to a popup of this edit.
    void editingFinished();

private:
    int m_columns = -1;
    int m_rows = -1;
};
