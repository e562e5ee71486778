// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIODialogs.h"

#include "engine/Python.h"
#include "engine/Unattended.h"
#include "engine/YumIODialogsMinion.h"

#include <QThread>

YumIODialogs::YumIODialogs(QWidget* parent)
    : minion(new YumIODialogsMinion(parent))
{
    setObjectName(QStringLiteral("YumIODialogs"));

    // Direct where both live on the GUI thread, so that the dialog runs inside the emit; queued
    // both ways where they don't.
    connect(minion, &YumIODialogsMinion::setResult, this, &YumIODialogs::setResult);
    connect(this, &YumIODialogs::confirmSig, minion, &YumIODialogsMinion::confirm);
    connect(this, &YumIODialogs::warningSig, minion, &YumIODialogsMinion::warning);
    connect(this, &YumIODialogs::criticalSig, minion, &YumIODialogsMinion::critical);
    connect(this, &YumIODialogs::scrollableSig, minion, &YumIODialogsMinion::scrollable);
}

YumIODialogs::~YumIODialogs()
{
    // At the end of the process no loop runs that would delete it later.
    if (minion->thread() == QThread::currentThread() && minion->thread()->loopLevel() == 0)
        delete minion;
    else
        minion->deleteLater();
}

int YumIODialogs::confirm(const QString& title, const QString& text, const QString& acceptLabel,
                          const QString& rejectLabel)
{
    if (Unattended::active())
        return 0;
    resultReady = false;
    Q_EMIT confirmSig(title, text, acceptLabel, rejectLabel);
    waitForResult();
    return result;
}

int YumIODialogs::warning(const QString& title, const QString& text, const QString& button0,
                          const QString& button1, const QString& button2, int defaultButton,
                          int escapeButton)
{
    if (Unattended::active())
        return YumIODialogsMinion::closedResult({button0, button1, button2}, escapeButton);
    resultReady = false;
    Q_EMIT warningSig(title, text, button0, button1, button2, defaultButton, escapeButton);
    waitForResult();
    return result;
}

int YumIODialogs::critical(const QString& title, const QString& text, const QString& button0,
                           const QString& button1, const QString& button2, int defaultButton,
                           int escapeButton)
{
    if (Unattended::active())
        return YumIODialogsMinion::closedResult({button0, button1, button2}, escapeButton);
    resultReady = false;
    Q_EMIT criticalSig(title, text, button0, button1, button2, defaultButton, escapeButton);
    waitForResult();
    return result;
}

void YumIODialogs::scrollable(const QString& title, const QString& text)
{
    if (Unattended::active())
        return;
    resultReady = false;
    Q_EMIT scrollableSig(title, text);
    waitForResult();
}

void YumIODialogs::setResult(int value)
{
    resultReady = true;
    result = value;
    waitLoop.quit();
}

void YumIODialogs::waitForResult()
{
    if (resultReady)
        return;
    // The GUI thread may be waiting for the interpreter before it gets to the dialog.
    const Python::UnlockedWait unlocked;
    waitLoop.exec(QEventLoop::ExcludeUserInputEvents);
}

YumIODialogsUser::YumIODialogsUser(YumIODialogs*& slot, QWidget* parent)
    : slot(slot)
    , saved(slot)
{
    slot = new YumIODialogs(parent);
}

YumIODialogsUser::~YumIODialogsUser()
{
    delete slot;
    slot = saved;
}
