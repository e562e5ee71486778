// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

/// Shows, on the GUI thread, what a YumIODialogs of any thread asks for.
class YumIODialogsMinion : public QObject
{
    Q_OBJECT

public:
    /// Moves to the thread that shows the dialogs.
    explicit YumIODialogsMinion(QWidget* parent);
    ~YumIODialogsMinion() override;

    /// What a message gives that is closed without a button.
    static int closedResult(const QStringList& labels, int escapeButton);

public Q_SLOTS:
    void confirm(const QString& title, const QString& text, const QString& acceptLabel,
                 const QString& rejectLabel);
    void warning(const QString& title, const QString& text, const QString& button0,
                 const QString& button1, const QString& button2, int defaultButton,
                 int escapeButton);
    void critical(const QString& title, const QString& text, const QString& button0,
                  const QString& button1, const QString& button2, int defaultButton,
                  int escapeButton);
    void scrollable(const QString& title, const QString& text);

Q_SIGNALS:
    void setResult(int value);

private:
    void message(QMessageBox::Icon icon, const QString& title, const QString& text,
                 const QStringList& labels, int defaultButton, int escapeButton);

    /// Gives `closed` without a dialog where there is nobody to see it; false where there is.
    bool answerUnattended(int closed);
    /// Answers for the dialog that stayed behind with the GUI thread.
    void answerForOpenDialog();

    bool open = false; ///< a dialog is; its answer is `closed` if nobody can give another
    int closed = 0;
    QPointer<QWidget> parent; ///< of all dialogs; it may go before the minion
};
