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
    explicit YumIODialogsMinion(QWidget* parent);

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
    int message(QMessageBox::Icon icon, const QString& title, const QString& text,
                const QStringList& labels, int defaultButton, int escapeButton);

    QPointer<QWidget> parent; ///< of all dialogs; it may go before the minion
};
