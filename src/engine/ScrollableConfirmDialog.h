// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDialog>

class QLabel;

/// Asks a question whose text may be longer than the screen. The two buttons accept and reject.
class ScrollableConfirmDialog : public QDialog
{
    Q_OBJECT

public:
    ScrollableConfirmDialog(const QString& text, const QString& acceptLabel,
                            const QString& rejectLabel, QWidget* parent);

private:
    QLabel* label;
};
