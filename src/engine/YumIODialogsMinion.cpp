// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIODialogsMinion.h"

#include "engine/ScrollableConfirmDialog.h"
#include "engine/ScrollableErrorDialog.h"
#include "engine/Unattended.h"

#include <QPushButton>

YumIODialogsMinion::YumIODialogsMinion(QWidget* parent)
    : parent(parent)
{
    setObjectName(QStringLiteral("YumIODialogsMinion"));
    Unattended::serve(this, [this] { answerForOpenDialog(); });
}

YumIODialogsMinion::~YumIODialogsMinion()
{
    Unattended::forget(this);
}

int YumIODialogsMinion::closedResult(const QStringList& labels, int escapeButton)
{
    const bool there =
        escapeButton > 0 && escapeButton < labels.size() && !labels.at(escapeButton).isEmpty();
    // A box with a single button counts as that one pressed.
    return there ? escapeButton : 0;
}

bool YumIODialogsMinion::answerUnattended(int result)
{
    closed = result;
    if (!Unattended::active()) {
        open = true;
        return false;
    }
    Q_EMIT setResult(closed);
    return true;
}

void YumIODialogsMinion::answerForOpenDialog()
{
    if (!open)
        return;
    open = false;
    Q_EMIT setResult(closed);
}

void YumIODialogsMinion::confirm(const QString& title, const QString& text,
                                 const QString& acceptLabel, const QString& rejectLabel)
{
    if (answerUnattended(0))
        return;
    ScrollableConfirmDialog dialog(text, acceptLabel, rejectLabel, parent);
    dialog.setWindowTitle(title);
    const int result = dialog.exec();
    open = false;
    Q_EMIT setResult(result);
}

void YumIODialogsMinion::warning(const QString& title, const QString& text, const QString& button0,
                                 const QString& button1, const QString& button2, int defaultButton,
                                 int escapeButton)
{
    message(QMessageBox::Warning, title, text, {button0, button1, button2}, defaultButton,
            escapeButton);
}

void YumIODialogsMinion::critical(const QString& title, const QString& text, const QString& button0,
                                  const QString& button1, const QString& button2, int defaultButton,
                                  int escapeButton)
{
    message(QMessageBox::Critical, title, text, {button0, button1, button2}, defaultButton,
            escapeButton);
}

void YumIODialogsMinion::scrollable(const QString& title, const QString& text)
{
    if (answerUnattended(0))
        return;
    ScrollableErrorDialog dialog(text, parent);
    dialog.setWindowTitle(title);
    dialog.exec();
    open = false;
    Q_EMIT setResult(0);
}

void YumIODialogsMinion::message(QMessageBox::Icon icon, const QString& title, const QString& text,
                                 const QStringList& labels, int defaultButton, int escapeButton)
{
    if (answerUnattended(closedResult(labels, escapeButton)))
        return;
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
    open = false;
    // One that went without a button, as when the program ends, was escaped from.
    const int pressed = buttons.indexOf(box.clickedButton());
    Q_EMIT setResult(pressed >= 0 ? pressed : closed);
}
