// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/ProgressMinion.h"
#include "progress/GeneralTip.h"
#include "progress/HProgressBar.h"

#include <QColor>
#include <QGridLayout>
#include <QLabel>

namespace Progress
{

namespace
{

constexpr QColor notStartedColor(255, 140, 0);
constexpr QColor retryingColor(255, 140, 0);
constexpr QColor inProgressColor(255, 255, 0);
constexpr QColor completeColor(144, 238, 144);

/// Above this many, complete downloads share one row.
constexpr unsigned int completeRowsMax = 20;

/// The bars count in int: the low 32 bits are taken.
int barSteps(Steps steps)
{
    return static_cast<int>(static_cast<quint32>(steps));
}

/// Activities hold names from outside, which must not be read as markup.
QLabel* makeActivity(const QString& activity)
{
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setText(activity);
    return label;
}

} // namespace

Minion::Minion(HProgressBar* total, HProgressBar* item)
    : totalBar(total)
    , itemBar(item)
{
    setObjectName(QStringLiteral("progressMinion"));
    connect(itemBar, &HProgressBar::toolTip, this, &Minion::itemProgressToolTip);
}

void Minion::startTotal(const QString& activity, Steps maximum)
{
    totalBar->setActivity(activity);
    totalBar->setMaximum(barSteps(maximum));
    totalBar->setValue(0);
    totalBar->setEnabled(true);
    itemBar->reset();
    itemBar->setEnabled(false);
}

void Minion::startItem(const QString& activity, Steps total, Steps maximum)
{
    totalBar->setValue(barSteps(total));
    itemBar->setActivity(activity);
    itemBar->setMaximum(barSteps(maximum));
    itemBar->setValue(0);
    itemBar->setEnabled(true);
}

void Minion::changeItemActivity(const QString& activity)
{
    itemBar->setActivity(activity);
}

void Minion::changeItemActs(Steps total)
{
    totalBar->setValue(barSteps(total));
}

void Minion::setItemValue(Steps total, Steps item)
{
    totalBar->setValue(barSteps(total));
    itemBar->setValue(barSteps(item));
}

void Minion::endItemActs(Steps total)
{
    totalBar->setValue(barSteps(total));
}

void Minion::setTotalValue(Steps total)
{
    totalBar->setValue(barSteps(total));
}

void Minion::updateThreadsState(const ThreadsState& state)
{
    threads = state;
}

void Minion::reset()
{
    HProgressBar* const bars[] = {totalBar, itemBar};
    for (HProgressBar* bar : bars) {
        bar->setMinimum(0);
        bar->setMaximum(1);
    }
    for (HProgressBar* bar : bars)
        bar->reset();
    for (HProgressBar* bar : bars)
        bar->setEnabled(false);
}

void Minion::itemProgressToolTip(const QPoint& pos)
{
    if (threads.count() == 0)
        return;
    GeneralTip::showTip(itemBar->mapToGlobal(pos), setupTip, this, itemBar, true);
}

QLabel* Minion::makeLabel(const QString& text, const QColor& colour)
{
    constexpr int darkBelow = 124;

    auto* label = new QLabel(text);
    label->setFrameShape(QFrame::StyledPanel);
    label->setFrameShadow(QFrame::Plain);
    label->setAutoFillBackground(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::Window, colour);
    palette.setColor(QPalette::WindowText, qGray(colour.rgb()) < darkBelow ? Qt::white : Qt::black);
    label->setPalette(palette);
    return label;
}

void Minion::setupTip(GeneralTip* tip, void* data)
{
    const ThreadsState& threads = static_cast<const Minion*>(data)->threads;

    auto* layout = new QGridLayout(tip);
    layout->setContentsMargins(4, 4, 4, 4);
    int row = 0;
    const auto addRow = [layout, &row](QLabel* text, QLabel* state) {
        layout->addWidget(text, row, 0);
        layout->addWidget(state, row, 1);
        ++row;
    };

    unsigned int complete = 0;
    unsigned int notStarted = 0;
    for (unsigned int i = 0; i < threads.count(); ++i) {
        if (threads[i].state == ThreadState::Complete)
            ++complete;
        else if (threads[i].state == ThreadState::NotStarted)
            ++notStarted;
    }

    const bool manyComplete = complete > completeRowsMax;
    if (manyComplete)
        addRow(new QLabel(tr("%1 downloads").arg(complete)),
               makeLabel(tr("Complete"), completeColor));

    for (unsigned int i = 0; i < threads.count(); ++i) {
        const ThreadState& slot = threads[i];
        QLabel* state = nullptr;
        switch (slot.state) {
        case ThreadState::NotStarted:
            continue;
        case ThreadState::Retrying:
            state = makeLabel(tr("Retrying"), retryingColor);
            state->setFrameStyle(QFrame::Box);
            break;
        case ThreadState::InProgress:
            if (slot.maximum == 1)
                state = makeLabel(tr("In Progress"), inProgressColor);
            else
                // The third is the plain ratio, and the doubled sign stays doubled on the screen.
                state = makeLabel(
                    tr("%1 / %2 (%3%%)")
                        .arg(slot.value)
                        .arg(slot.maximum)
                        .arg(static_cast<double>(slot.value) / static_cast<double>(slot.maximum)),
                    inProgressColor);
            break;
        case ThreadState::Complete:
            if (manyComplete)
                continue;
            state = makeLabel(tr("Complete"), completeColor);
            state->setFrameStyle(QFrame::Box);
            break;
        }
        addRow(makeActivity(slot.activity), state);
    }

    if (notStarted != 0)
        addRow(new QLabel(tr("%1 downloads").arg(notStarted)),
               makeLabel(tr("Not Started Yet"), notStartedColor));
}

} // namespace Progress
