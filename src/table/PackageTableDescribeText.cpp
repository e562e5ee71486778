// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableDescribeText.h"

#include "kit/Fonts.h"

#include <QLabel>
#include <QString>

namespace PackageTable
{

QLabel* Describe::makeText(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setText(text);
    return label;
}

QLabel* Describe::makeHeader(const QString& text, QWidget* parent)
{
    QLabel* label = makeText(text, parent);
    label->setFont(Fonts::makeHeader(label->font()));
    return label;
}

QLabel* Describe::makeTitle(const QString& text, QWidget* parent)
{
    QLabel* label = makeHeader(text, parent);
    label->setAlignment(Qt::AlignHCenter);
    label->setMinimumWidth(1);
    return label;
}

} // namespace PackageTable
