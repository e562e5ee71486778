// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/ScrollableConfirmDialog.h"

#include "engine/ScrollableText.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

ScrollableConfirmDialog::ScrollableConfirmDialog(const QString& text, const QString& acceptLabel,
                                                 const QString& rejectLabel, QWidget* parent)
    : QDialog(parent)
{
    setAttribute(Qt::WA_ShowModal);
    auto* layout = new QVBoxLayout(this);
    label = ScrollableText::add(layout, QStyle::SP_MessageBoxQuestion, text);

    auto* accepting = new QPushButton(acceptLabel);
    auto* rejecting = new QPushButton(rejectLabel);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(accepting);
    buttons->addWidget(rejecting);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    connect(accepting, &QPushButton::clicked, this, &QDialog::accept);
    connect(rejecting, &QPushButton::clicked, this, &QDialog::reject);
    ScrollableText::fit(this);
}
