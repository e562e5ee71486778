// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDialog>

class QLabel;

/// Tells of a failure whose text may be longer than the screen.
class ScrollableErrorDialog : public QDialog
{
    Q_OBJECT

public:
    ScrollableErrorDialog(const QString& text, QWidget* parent);

private:
    QLabel* label;
};
