// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QEventLoop>
#include <QObject>
#include <QString>

class QWidget;
class YumIODialogsMinion;

/// Dialogs that any thread may open and that block it until the user has answered. One call at a
/// time. The object belongs to the thread that made it; the dialogs appear on the GUI thread. Where
/// nobody can be asked any more (see Unattended) each is answered at once as if closed.
class YumIODialogs : public QObject
{
    Q_OBJECT

public:
    explicit YumIODialogs(QWidget* parent);
    ~YumIODialogs() override;

    /// 1 accepted, 0 rejected or closed.
    int confirm(const QString& title, const QString& text, const QString& acceptLabel,
                const QString& rejectLabel);
    /// Index of the button pressed. An empty label leaves a button out; three empty ones give "OK".
    int warning(const QString& title, const QString& text, const QString& button0,
                const QString& button1, const QString& button2, int defaultButton,
                int escapeButton);
    int critical(const QString& title, const QString& text, const QString& button0,
                 const QString& button1, const QString& button2, int defaultButton,
                 int escapeButton);
    /// A text of any length, with one button.
    void scrollable(const QString& title, const QString& text);

public Q_SLOTS:
    /// The answer, which ends the wait.
    void setResult(int value);

Q_SIGNALS:
    void confirmSig(const QString& title, const QString& text, const QString& acceptLabel,
                    const QString& rejectLabel);
    void warningSig(const QString& title, const QString& text, const QString& button0,
                    const QString& button1, const QString& button2, int defaultButton,
                    int escapeButton);
    void criticalSig(const QString& title, const QString& text, const QString& button0,
                     const QString& button1, const QString& button2, int defaultButton,
                     int escapeButton);
    void scrollableSig(const QString& title, const QString& text);

private:
    void waitForResult();

    YumIODialogsMinion* minion;
    QEventLoop waitLoop;
    bool resultReady = false;
    int result = 0;
};

/// Puts a YumIODialogs of the running thread into `slot` for a scope, and the old one back at the
/// end.
class YumIODialogsUser
{
public:
    YumIODialogsUser(YumIODialogs*& slot, QWidget* parent);
    ~YumIODialogsUser();
    YumIODialogsUser(const YumIODialogsUser&) = delete;
    YumIODialogsUser& operator=(const YumIODialogsUser&) = delete;

private:
    YumIODialogs*& slot;
    YumIODialogs* saved;
};
