// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QBasicTimer>
#include <QFrame>
#include <QPalette>

/// A tool tip whose content a callback makes. There is one at a time; it goes when the user does
/// anything, when the pointer enters it, and after ten seconds unless it is persistent. GUI thread
/// only.
class GeneralTip : public QFrame
{
    Q_OBJECT

public:
    /// Deletes the tip that is there.
    GeneralTip(QWidget* parent, bool persistent);
    ~GeneralTip() override;

    /// Shows a tip near global position `pos`, on the screen of `pos` or of `widget`. `setup` gets
    /// the new tip and `data`, and gives it a layout.
    static void showTip(const QPoint& pos, void (*setup)(GeneralTip* tip, void* data), void* data,
                        QWidget* widget, bool persistent);

    /// Hides the tip, and deletes it a little later.
    void hideTip();

    /// The tip that exists, hidden ones included, or null.
    static GeneralTip* it;

protected:
    void timerEvent(QTimerEvent* event) override;
    void enterEvent(QEvent* event) override;
    /// Sees all events of the application and consumes none.
    bool eventFilter(QObject* object, QEvent* event) override;

    static const QPalette tip_palette;

private:
    QBasicTimer expiryTimer;
    QBasicTimer deleteTimer;
};
