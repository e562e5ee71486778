// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress/GeneralTip.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QStyle>
#include <QTimerEvent>
#include <QWindow>

namespace
{

constexpr int expiryMsecs = 10000;
constexpr int deleteMsecs = 250;

QScreen* tipScreen(const QPoint& pos, const QWidget* widget)
{
    const bool virtualDesktop = QGuiApplication::primaryScreen()->virtualSiblings().size() > 1;
    QScreen* screen = virtualDesktop ? QGuiApplication::screenAt(pos) : nullptr;
    return screen ? screen : widget->screen();
}

/// Where a tip of `size` goes that belongs to the pointer at `pos`.
QPoint tipPosition(const QPoint& pos, const QSize& size, const QRect& rect)
{
    const int right = rect.x() + rect.width();
    const int bottom = rect.y() + rect.height();
    QPoint p = pos + QPoint(2, 16);

    // To the other side of the pointer where it doesn't fit.
    if (p.x() + size.width() > right)
        p.rx() -= size.width() + 4;
    if (p.y() + size.height() > bottom)
        p.ry() -= size.height() + 24;

    if (p.y() < rect.y())
        p.setY(rect.y());
    if (p.x() + size.width() > right)
        p.setX(right - size.width());
    if (p.x() < rect.x())
        p.setX(rect.x());
    if (p.y() + size.height() > bottom)
        p.setY(bottom - size.height());
    return p;
}

bool isModifierKey(int key)
{
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Meta ||
           key == Qt::Key_Alt;
}

} // namespace

GeneralTip* GeneralTip::it = nullptr;

const QPalette GeneralTip::tip_palette(Qt::black,              // window text
                                       QColor(255, 255, 220),  // window
                                       QColor(96, 96, 96),     // light
                                       Qt::black,              // dark
                                       Qt::black,              // mid
                                       Qt::black,              // text
                                       QColor(255, 255, 220)); // base

GeneralTip::GeneralTip(QWidget* parent, bool persistent)
    : QFrame(parent, Qt::ToolTip)
{
    delete it;
    it = this;

    ensurePolished();
    setFrameStyle(QFrame::Box);
    resize(sizeHint() + QSize(1, 0));
    qApp->installEventFilter(this);
    if (!persistent)
        expiryTimer.start(expiryMsecs, this);
    setWindowOpacity(style()->styleHint(QStyle::SH_ToolTipLabel_Opacity, nullptr, this) / 255.0);
    setPalette(tip_palette);
}

GeneralTip::~GeneralTip()
{
    qApp->removeEventFilter(this);
    if (it == this)
        it = nullptr;
}

void GeneralTip::showTip(const QPoint& pos, void (*setup)(GeneralTip* tip, void* data), void* data,
                         QWidget* widget, bool persistent)
{
    QScreen* screen = tipScreen(pos, widget);
    auto* tip = new GeneralTip(nullptr, persistent);
    tip->create();
    tip->windowHandle()->setScreen(screen);

    setup(tip, data);
    // The content's size is needed now: without this the tip would grow over the edge when it is
    // shown.
    tip->resize(tip->sizeHint() + QSize(1, 0));

    tip->move(tipPosition(pos, tip->size(), screen->geometry()));
    tip->show();
}

void GeneralTip::hideTip()
{
    hide();
    deleteTimer.start(deleteMsecs, this);
}

void GeneralTip::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == expiryTimer.timerId()) {
        expiryTimer.stop();
        hideTip();
    } else if (event->timerId() == deleteTimer.timerId()) {
        deleteTimer.stop();
        deleteLater();
    } else {
        QFrame::timerEvent(event);
    }
}

void GeneralTip::enterEvent(QEvent*)
{
    hideTip();
}

bool GeneralTip::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Leave:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::Wheel:
        hideTip();
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!(key->modifiers() & Qt::KeyboardModifierMask) && !isModifierKey(key->key()))
            hideTip();
        break;
    }
    default:
        break;
    }
    return false;
}
