// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIODialogsMinion.h"

#include "engine/ScrollableConfirmDialog.h"
#include "engine/ScrollableErrorDialog.h"

#include <QPushButton>

YumIODialogsMinion::YumIODialogsMinion(QWidget* parent)
    : parent(parent)
{
    setObjectName(QStringLiteral("YumIODialogsMinion"));
}

void YumIODialogsMinion::confirm(const QString& title, const QString& text,
                                 const QString& acceptLabel, const QString& rejectLabel)
{
    ScrollableConfirmDialog dialog(text, acceptLabel, rejectLabel, parent);
    dialog.setWindowTitle(title);
    Q_EMIT setResult(dialog.exec());
}

void YumIODialogsMinion::warning(const QString& title, const QString& text, const QString& button0,
                                 const QString& button1, const QString& button2, int defaultButton,
                                 int escapeButton)
{
    Q_EMIT setResult(message(QMessageBox::Warning, title, text, {button0, button1, button2},
                             defaultButton, escapeButton));
}

void YumIODialogsMinion::critical(const QString& title, const QString& text, const QString& button0,
                                  const QString& button1, const QString& button2, int defaultButton,
                                  int escapeButton)
{
    Q_EMIT setResult(message(QMessageBox::Critical, title, text, {button0, button1, button2},
                             defaultButton, escapeButton));
}

void YumIODialogsMinion::scrollable(const QString& title, const QString& text)
{
    ScrollableErrorDialog dialog(text, parent);
    dialog.setWindowTitle(title);
    dialog.exec();
    Q_EMIT setResult(0);
}

int YumIODialogsMinion::message(QMessageBox::Icon icon, const QString& title, const QString& text,
                                const QStringList& labels, int defaultButton, int escapeButton)
{
    QMessageBox box(icon, title, text, QMessageBox::NoButton, parent);
    // The text is the script's or the system's, and an angle bracket in it is no markup.
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);

    QList<QAbstractButton*> buttons;
    for (int index = 0; index < labels.size(); ++index) {
        QString label = labels.at(index);
        if (index == 0 && label.isEmpty())
            label = tr("OK");
        QPushButton* button =
            label.isEmpty() ? nullptr : box.addButton(label, QMessageBox::ActionRole);
        buttons.append(button);
        if (button && index == defaultButton)
            box.setDefaultButton(button);
        if (button && index == escapeButton)
            box.setEscapeButton(button);
    }
    box.exec();
    // Closed without a button, a box with a single one counts as that one pressed.
    // One that went without a button, as when the program ends, was escaped from.
    const int pressed = buttons.indexOf(box.clickedButton());
    return pressed >= 0 ? pressed : qMax(0, escapeButton);
}
