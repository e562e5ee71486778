// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QBasicTimer>
#include <QProgressBar>
#include <QString>

/// A progress bar that shows what it is about beside the percentage, and leaves its tool tip to
/// others. It paints what the eye can follow: of hundreds of steps a second each one is set, but
/// few are painted.
class HProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    explicit HProgressBar(QWidget* parent = nullptr);

    void setActivity(const QString& activity);
    QString text() const override;
    /// As the base, without its painting at once, as the next.
    void setMaximum(int maximum);

public Q_SLOTS:
    void setValue(int value);
    /// As the base, and forgets the activity.
    void reset();

Q_SIGNALS:
    /// A tool tip is asked for at `pos`, in the bar's coordinates.
    void toolTip(const QPoint& pos);

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

    QString activity;

private:
    /// Runs `change`, which may have the base paint, and paints when it is time.
    template<typename Change> void quietly(Change change);
    void paintSoon();

    QBasicTimer sincePaint; ///< runs where the last painting was but a moment ago
    bool unpainted = false; ///< something has changed since
};
