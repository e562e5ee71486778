// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/ScrollableText.h"

#include "kit/HScrollArea.h"
#include "kit/ScreenLimit.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

QLabel* ScrollableText::add(QVBoxLayout* layout, QStyle::StandardPixmap icon, const QString& text)
{
    const QStyle* style = layout->parentWidget()->style();
    auto* image = new QLabel;
    const int size = style->pixelMetric(QStyle::PM_MessageBoxIconSize);
    image->setPixmap(style->standardIcon(icon).pixmap(size));

    auto* label = new QLabel(text);
    // Package names and errors of the system, where an angle bracket is no markup.
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* area = new HScrollArea(nullptr);
    area->setFrameStyle(QFrame::Plain | QFrame::NoFrame);
    area->setWidget(label);
    // Screen readers say the beginning, and the rest as its description.
    area->setAccessibleName(text.section(QLatin1Char('\n'), 0, 0, QString::SectionSkipEmpty));
    area->setAccessibleDescription(text);

    auto* upper = new QHBoxLayout;
    upper->addWidget(image, 0, Qt::AlignTop);
    upper->addWidget(area, 1);
    layout->addLayout(upper, 1);
    return label;
}

void ScrollableText::fit(QWidget* dialog)
{
    // Left to itself, the first size of a window stops at two thirds of the screen.
    dialog->ensurePolished();
    dialog->resize(ScreenLimit::windowSize(dialog));
}
