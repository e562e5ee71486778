// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/TextDialog.h"

#include "kit/HTextEdit.h"
#include "kit/ScreenLimit.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

TextDialog::TextDialog(QWidget* parent)
    : QDialog(parent)
    , m_text(new HTextEdit(80, 24, this))
{
    setAttribute(Qt::WA_ShowModal);

    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QTextEdit::NoWrap);
    m_text->setWordWrapMode(QTextOption::NoWrap);
    m_text->setTabChangesFocus(true);
    m_text->setAccessibleName(tr("Text"));

    auto* close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(close);

    auto* box = new QVBoxLayout(this);
    box->addWidget(m_text);
    box->addLayout(buttons);
}

void TextDialog::setText(const QString& text)
{
    m_text->setPlainText(text);
}

QSize TextDialog::sizeHint() const
{
    // The text alone may take all that the screen allows; margins and the button come on top of it.
    return QDialog::sizeHint().boundedTo(ScreenLimit::of(this));
}
