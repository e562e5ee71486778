// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableDescribeDialog.h"

#include "engine/YumIO.h"
#include "kit/HScrollArea.h"
#include "kit/HSeparator.h"
#include "kit/ScreenLimit.h"
#include "table/PackageTableDescribeInstanceArea.h"
#include "table/PackageTableDescribeText.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace PackageTable
{
namespace Describe
{

using Instance::Area;

Dialog::Dialog(QWidget* parent)
    : QDialog(parent)
    , m_box(new QHBoxLayout)
    , m_close(new QPushButton(tr("Close"), this))
{
    setWindowTitle(tr("VOK Package Description"));
    setAttribute(Qt::WA_ShowModal);

    m_close->setDefault(true);
    connect(m_close, &QPushButton::clicked, this, &Dialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_close);

    auto* box = new QVBoxLayout(this);
    box->addLayout(m_box);
    box->addLayout(buttons);

    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { reveal(now); });
}

Dialog::~Dialog()
{
    // The keyboard leaves a child when half of this is gone.
    disconnect(qApp, nullptr, this, nullptr);
    clearContents();
}

void Dialog::config(YumIO* yumIO, const Package::Entry& entry, YumConfIO* conf)
{
    clearContents();
    m_contents = new QWidget(this);
    auto* box = new QVBoxLayout;
    box->addWidget(makeTitle(yumIO->getName(entry), m_contents));
    box->addWidget(new HSeparator(m_contents));

    m_areas.append(new Area(this, box, yumIO, entry, conf, true));
    for (const Package::Entry* next = entry.next; next; next = next->next) {
        box->addWidget(new HSeparator(m_contents));
        m_areas.append(new Area(this, box, yumIO, *next, conf, false));
    }

    m_contents->setLayout(box);
    if (!haveRoom())
        scrollSections();
    m_box->addWidget(m_contents);
    orderTabs();
    // By itself a window gets no more than two thirds of the screen, which leaves next to nothing
    // to the short sections.
    layout()->activate();
    resize(ScreenLimit::windowSize(this));
}

bool Dialog::haveRoom() const
{
    constexpr int lines = 6;
    return m_areas.size() * lines * fontMetrics().height() < ScreenLimit::of(this).height();
}

void Dialog::scrollSections()
{
    for (QScrollArea* area : m_contents->findChildren<QScrollArea*>())
        area->setMinimumHeight(area->sizeHint().height());
    auto* all = new HScrollArea(this);
    all->setFrameStyle(static_cast<int>(QFrame::Plain) | QFrame::NoFrame);
    all->setFocusPolicy(Qt::NoFocus);
    all->setWidgetResizable(true);
    all->setWidget(m_contents);
    m_contents = all;
}

void Dialog::reveal(QWidget* widget)
{
    if (!m_contents || !m_contents->isAncestorOf(widget))
        return;
    for (QWidget* parent = widget->parentWidget(); parent != this;
         parent = parent->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(parent))
            area->ensureWidgetVisible(widget);
    }
}

void Dialog::orderTabs()
{
    QWidget* first = nullptr;
    QWidget* last = nullptr;
    for (QWidget* widget : m_contents->findChildren<QWidget*>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus))
            continue;
        if (!first)
            first = widget;
        last = widget;
    }
    if (!first)
        return;
    setTabOrder(last, m_close);
    first->setFocus();
}

void Dialog::setReady(bool ready)
{
    m_ready = ready;
    if (!ready)
        m_focusWhenReady = focusWidget();
    if (m_contents) {
        for (QPushButton* button : m_contents->findChildren<QPushButton*>())
            button->setEnabled(ready);
    }
    m_close->setEnabled(ready);
    // A button that is disabled gives the keyboard away.
    if (ready && m_focusWhenReady)
        m_focusWhenReady->setFocus();
}

void Dialog::setVisible(bool visible)
{
    if (!visible)
        clearContents();
    QDialog::setVisible(visible);
}

void Dialog::closeEvent(QCloseEvent* event)
{
    if (m_ready)
        QDialog::closeEvent(event);
    else
        event->ignore();
}

void Dialog::done(int result)
{
    if (m_ready)
        QDialog::done(result);
}

void Dialog::clearContents()
{
    if (m_contents) {
        m_box->removeWidget(m_contents);
        delete m_contents;
        m_contents = nullptr;
    }
    qDeleteAll(m_areas);
    m_areas.clear();
}

} // namespace Describe
} // namespace PackageTable
