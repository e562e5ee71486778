// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QProgressBar>
#include <QString>

/// A progress bar that shows what it is about beside the percentage, and leaves its tool tip to
/// others.
class HProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    explicit HProgressBar(QWidget* parent = nullptr);

    void setActivity(const QString& activity);
    QString text() const override;

public Q_SLOTS:
    /// As the base, and forgets the activity.
    void reset();

Q_SIGNALS:
    /// A tool tip is asked for at `pos`, in the bar's coordinates.
    void toolTip(const QPoint& pos);

protected:
    bool event(QEvent* event) override;

    QString activity;
};
