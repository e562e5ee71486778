// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QFrame>

/// A horizontal line between groups of fields.
class HSeparator : public QFrame
{
    Q_OBJECT

public:
    explicit HSeparator(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};
