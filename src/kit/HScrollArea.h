// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QScrollArea>

/// A scroll area that asks for as much room as its widget wants, up to a bound and to what the
/// screen gives.
class HScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    /// No bound but the screen.
    explicit HScrollArea(QWidget* parent);

    explicit HScrollArea(QSize maximum, QWidget* parent);

    /// The bound as `columns` letters and `rows` lines of the widget's font; -1 in either is no
    /// bound there.
    HScrollArea(int columns, int rows, QWidget* parent);

    QSize sizeHint() const override;

    /// Gives the widget inside the size that it wants now, after its contents have changed.
    void forceResize();

    /// Width of the frame that some styles draw around the contents alone, both sides together.
    int frameOnlyAroundContentsPixels() const;

private:
    QSize m_maximum;
};
