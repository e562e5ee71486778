// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDialog>

/// A dialog that Return and Enter don't end: they belong to the fields in it.
class HDialog : public QDialog
{
    Q_OBJECT

public:
    explicit HDialog(QWidget* parent);

    void keyPressEvent(QKeyEvent* event) override;
};
