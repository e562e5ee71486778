// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/WarmUp.h"

#include "engine/ScrollableErrorDialog.h"
#include "log/LogWindow.h"

#include <QLabel>
#include <QMessageBox>
#include <QTextEdit>
#include <QToolTip>

namespace
{

/// A line of each script that has a font of its own on most systems.
QString everyScript()
{
    return QString::fromUtf8("Latin äöüßéñçżıİ “–…€” Ελληνικά Кириллица עברית العربية ไทย हिन्दी "
                             "日本語 中文 한국어 ✓→█ 😀");
}

void drawMessage(QMessageBox::Icon icon, QWidget* parent)
{
    QMessageBox box(icon, QString(), everyScript(), QMessageBox::Ok, parent);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.grab();
}

void drawLog(QWidget* parent)
{
    Log::EntryList list;
    Log::Window log(list, parent);
    // It writes what the list has only while it is visible.
    if (auto* text = log.findChild<QTextEdit*>())
        text->setHtml(QStringLiteral("<h2>%1</h2><font>%1</font>").arg(everyScript()));
    log.grab();
}

void drawToolTip()
{
    QLabel tip(everyScript());
    tip.setFont(QToolTip::font());
    tip.grab();
}

void loadPointers()
{
    QWidget window;
    // A window of the system's, which pointers are set on; it is never shown.
    window.winId();
    for (const Qt::CursorShape shape :
         {Qt::ArrowCursor, Qt::BusyCursor, Qt::WaitCursor, Qt::IBeamCursor, Qt::PointingHandCursor,
          Qt::SplitHCursor, Qt::SizeFDiagCursor, Qt::ForbiddenCursor})
        window.setCursor(shape);
}

} // namespace

void WarmUp::once(QWidget* parent)
{
    static bool done = false;
    if (done)
        return;
    done = true;
    for (const QMessageBox::Icon icon : {QMessageBox::Information, QMessageBox::Warning,
                                         QMessageBox::Critical, QMessageBox::Question})
        drawMessage(icon, parent);
    ScrollableErrorDialog(everyScript(), parent).grab();
    drawLog(parent);
    drawToolTip();
    loadPointers();
}
