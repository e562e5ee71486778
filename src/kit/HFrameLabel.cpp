// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HFrameLabel.h"

#include <QHBoxLayout>
#include <QLabel>

HFrameLabel::HFrameLabel(QWidget* parent, Qt::WindowFlags flags)
    : HFrameLabel(QString(), parent, flags)
{
}

HFrameLabel::HFrameLabel(const QString& text, QWidget* parent, Qt::WindowFlags flags)
    : QFrame(parent, flags)
    , m_box(new QHBoxLayout(this))
    , m_label(new QLabel(this))
    , m_emptyPalette(palette())
    , m_textPalette(palette())
{
    setFrameShadow(QFrame::Plain);
    setAutoFillBackground(true);
    m_box->setContentsMargins(2, 2, 2, 2);
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setTextFormat(Qt::PlainText);
    m_box->addWidget(m_label);
    m_label->show();
    HFrameLabel::setText(text);
}

QString HFrameLabel::text() const
{
    return m_label->text();
}

void HFrameLabel::setText(const QString& text)
{
    m_label->setText(text);
    setFrameShape(text.isEmpty() ? QFrame::NoFrame : QFrame::StyledPanel);
    QFrame::setPalette(text.isEmpty() ? m_emptyPalette : m_textPalette);
}

void HFrameLabel::setPalette(const QPalette& palette)
{
    m_textPalette = palette;
    if (!m_label->text().isEmpty())
        QFrame::setPalette(palette);
}
