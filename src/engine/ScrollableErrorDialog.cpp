// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/ScrollableErrorDialog.h"

#include "engine/ScrollableText.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

ScrollableErrorDialog::ScrollableErrorDialog(const QString& text, QWidget* parent)
    : QDialog(parent)
{
    setAttribute(Qt::WA_ShowModal);
    auto* layout = new QVBoxLayout(this);
    label = ScrollableText::add(layout, QStyle::SP_MessageBoxCritical, text);

    auto* closing = new QPushButton(tr("Close"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(closing);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    connect(closing, &QPushButton::clicked, this, &QDialog::accept);
    ScrollableText::fit(this);
}
