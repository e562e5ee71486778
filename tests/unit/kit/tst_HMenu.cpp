// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HMenu.h"

#include <QHelpEvent>
#include <QMenuBar>
#include <QTest>
#include <QToolTip>

class TestHMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void canBeTornOff();
    void showsARealToolTip();
    void leavesOutAToolTipThatRepeatsTheText();
    void showsTheToolTipOfTheDeepestOpenSubmenu();
    void showsNothingWithoutAnActiveAction();

private:
    QString toolTipOf(HMenu& menu);

    QMenuBar* m_bar = nullptr;
};

void TestHMenu::init()
{
    m_bar = new QMenuBar;
}

void TestHMenu::cleanup()
{
    QToolTip::hideText();
    delete m_bar;
}

/// The tool tip that shows after the pointer has rested on the menu.
QString TestHMenu::toolTipOf(HMenu& menu)
{
    QToolTip::hideText();
    // Hiding takes a moment.
    if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }))
        return QStringLiteral("an old tool tip");
    QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), QPoint(5, 5));
    menu.event(&event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

void TestHMenu::canBeTornOff()
{
    HMenu menu("&File", m_bar);
    QVERIFY(menu.isTearOffEnabled());
    QCOMPARE(menu.title(), QString("&File"));
    QCOMPARE(menu.parentWidget(), m_bar);
}

void TestHMenu::showsARealToolTip()
{
    HMenu menu("&Clean", m_bar);
    QAction* action = menu.addAction("Clean &Headers");
    action->setToolTip("Removes all header files from the cache");
    menu.setActiveAction(action);
    QCOMPARE(toolTipOf(menu), QString("Removes all header files from the cache"));
}

void TestHMenu::leavesOutAToolTipThatRepeatsTheText()
{
    HMenu menu("&File", m_bar);
    QAction* made = menu.addAction("&Open...");
    QCOMPARE(made->toolTip(), QString("Open"));
    menu.setActiveAction(made);
    QCOMPARE(toolTipOf(menu), QString());

    QAction* given = menu.addAction("&Save &As...");
    given->setToolTip("Save As");
    menu.setActiveAction(given);
    QCOMPARE(toolTipOf(menu), QString());

    given->setToolTip("Save &As");
    QCOMPARE(toolTipOf(menu), QString("Save &As"));
}

void TestHMenu::showsTheToolTipOfTheDeepestOpenSubmenu()
{
    HMenu menu("&Outer", m_bar);
    QMenu inner("&Inner", &menu);
    inner.menuAction()->setToolTip("The tip of the submenu");
    menu.addMenu(&inner);
    QAction* deep = inner.addAction("Deep");
    deep->setToolTip("The tip of the action");
    menu.setActiveAction(inner.menuAction());
    QCOMPARE(toolTipOf(menu), QString("The tip of the submenu"));
    inner.setActiveAction(deep);
    QCOMPARE(toolTipOf(menu), QString("The tip of the action"));
}

void TestHMenu::showsNothingWithoutAnActiveAction()
{
    HMenu menu("&File", m_bar);
    menu.addAction("Open")->setToolTip("A real tip");
    QCOMPARE(toolTipOf(menu), QString());
}

QTEST_MAIN(TestHMenu)
#include "tst_HMenu.moc"
