// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QFrame>
#include <QPalette>

class QHBoxLayout;
class QLabel;

/// A centred text in a frame; frame and colour show only while there is text.
class HFrameLabel : public QFrame
{
    Q_OBJECT

public:
    explicit HFrameLabel(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    explicit HFrameLabel(const QString& text, QWidget* parent = nullptr,
                         Qt::WindowFlags flags = Qt::WindowFlags());

    QString text() const;

    virtual void setText(const QString& text);

    /// The palette for a label with text. It shows at once where there is text, else with the next
    /// one.
    virtual void setPalette(const QPalette& palette);

private:
    QHBoxLayout* m_box;
    QLabel* m_label;
    QPalette m_emptyPalette;
    QPalette m_textPalette;
};
