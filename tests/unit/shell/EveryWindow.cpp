// SPDX-License-Identifier: GPL-2.0-or-later
#include "EveryWindow.h"

#include "engine/ScrollableErrorDialog.h"
#include "engine/YumIODialogsMinion.h"
#include "table/PackageTable.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QtTest>

namespace
{

enum Menus { Program, Windows, Repositories, Cache, Help };

/// Gives a window the keyboard, and waits until it and one of its widgets, if any can, has it.
bool takesKeys(QWidget* window)
{
    window->activateWindow();
    return QTest::qWaitFor([window] {
        return window->isActiveWindow() && (!window->focusWidget() || QApplication::focusWidget());
    });
}

} // namespace

EveryWindow::EveryWindow(Visit visit)
    : visitor(std::move(visit))
{
#ifdef VOK_TRANSLATIONS
    QFile::link(QStringLiteral(VOK_TRANSLATIONS), life.sharePath(QStringLiteral("translations")));
#endif
    life.system["repos"] =
        QJsonObject{{"base", QJsonObject{{"enabled", 1}}}, {"closed", QJsonObject{{"enabled", 1}}}};
    life.system["apply"] = QStringLiteral("yumIOC.listTransaction(base())\nyumIOC.userconfirm()");
    life.play();
    WindowLife::writeFile(life.rootPath(QStringLiteral("etc/yum.repos.d/closed.repo")),
                          "[closed]\nname=Closed\n"
                          "baseurl=http://packages.example.org/vantry?user=&pass=&path=/releases/"
                          "38/Everything/x86_64/os\n"
                          "mirrorlist=https://mirrors.example.org/mirrorlist?repo=38&arch=x86_64\n"
                          "enabled=1\n");
}

void EveryWindow::visit(QWidget* window, const QString& name)
{
    if (window->isVisible() && !qobject_cast<QMenu*>(window)) {
        QVERIFY2(takesKeys(window), qPrintable(name));
    }
    // Layouts that were just changed settle first.
    QCoreApplication::processEvents();
    visited << name;
    visitor(window, name);
}

QString EveryWindow::text(const char* context, const char* english)
{
    return QCoreApplication::translate(context, english);
}

QAction* EveryWindow::menuItem(int menu, int item)
{
    return life.window().menuBar()->actions().at(menu)->menu()->actions().at(item);
}

void EveryWindow::meet(const char* context, const char* title, const QString& name,
                       std::function<void(QWidget*)> work)
{
    meetTitled(text(context, title), name, std::move(work));
}

void EveryWindow::meetTitled(const QString& title, const QString& name,
                             std::function<void(QWidget*)> work)
{
    life.dialogs.expect(title)
        .act([this, name, work](QWidget* window) {
            visit(window, name);
            if (work)
                work(window);
        })
        .pressKey(Qt::Key_Escape);
}

void EveryWindow::press(QWidget* window, const QString& button, int which)
{
    const auto buttons = window->findChildren<QPushButton*>();
    for (QPushButton* candidate : buttons) {
        if (candidate->isVisible() && candidate->text() == button && which-- == 0) {
            QTest::mouseClick(candidate, Qt::LeftButton);
            return;
        }
    }
    QTest::qFail(qPrintable("no button " + button), __FILE__, __LINE__);
}

void EveryWindow::visitMenu(QTableView* table, const QModelIndex& cell, const QString& name)
{
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        const QPointer<QWidget> menu = QApplication::activePopupWidget();
        if (!menu)
            return;
        look.stop();
        visit(menu, name);
        if (menu)
            menu->close();
    });
    look.start(5);
    table->scrollTo(cell);
    Q_EMIT table->customContextMenuRequested(table->visualRect(cell).center());
}

bool EveryWindow::walk()
{
    start();
    if (QTest::currentTestFailed())
        return false;
    description();
    repositories();
    messages();
    return !QTest::currentTestFailed();
}

void EveryWindow::start()
{
    visit(&life.window(), QStringLiteral("main window before the start"));
    meet("RepoAuth::Dialog", "VOK Authentication", QStringLiteral("authentication"));
    QVERIFY(life.start());
    life.select("state", PackageTable::ViewAll);
    life.check("groups", true);
    visit(&life.window(), QStringLiteral("main window"));

    menuItem(Windows, 0)->trigger();
    QPointer<QWidget> log = life.logWindow();
    QVERIFY(log);
    visit(log, QStringLiteral("log"));
    log->close();
}

void EveryWindow::description()
{
    const char* const area = "PackageTable::Describe::Instance::Area";
    life.table()->setCurrentIndex(life.cell(QStringLiteral("alpha"), PackageTable::ColumnName));
    meet("PackageTable::Describe::Dialog", "VOK Package Description",
         QStringLiteral("package description"), [=](QWidget* window) {
             meet("PackageTable::Describe::Instance::RepoDialog", "VOK Repository Description",
                  QStringLiteral("repository description"));
             press(window, text(area, "Details"));
             // The second section is the installed version, whose files are known.
             meetTitled(text(area, "%1 %2 File List").arg("alpha", "1.0-1"),
                        QStringLiteral("text"));
             press(window, text(area, "Show"));
         });
    life.click("describe");
    life.table()->setCurrentIndex(life.cell(QStringLiteral("tools"), PackageTable::ColumnName));
    meet("PackageTable::Describe::Dialog", "VOK Package Description",
         QStringLiteral("group description"));
    life.click("describe");
    visitMenu(life.table(), life.cell(QStringLiteral("alpha"), PackageTable::ColumnAction),
              QStringLiteral("menu of an action"));
    visitMenu(life.table(), life.cell(QStringLiteral("alpha"), PackageTable::ColumnName),
              QStringLiteral("menu of a package"));
}

void EveryWindow::repositories()
{
    const char* const editor = "RepoEditor::Dialog";
    meet(editor, "VOK Repository Configuration Editor", QStringLiteral("repositories"),
         [=](QWidget* window) {
             auto* list = window->findChild<QTableView*>();
             // The last one that a person would look at: the one with credentials.
             list->setCurrentIndex(list->model()->index(list->model()->rowCount() - 1, 2));
             visit(window, QStringLiteral("repositories with one selected"));
             visitMenu(list, list->currentIndex(), QStringLiteral("menu of a repository"));
             meet("RepoEditor::ConfigDialog", "VOK Repository Configuration",
                  QStringLiteral("repository"));
             press(window, text(editor, "Edit"));
             QVERIFY(takesKeys(window));
             meet("RepoEditor::ConfigDialog", "VOK Repository Configuration",
                  QStringLiteral("new repository"));
             press(window, text(editor, "Add"));
         });
    menuItem(Repositories, 0)->trigger();
}

void EveryWindow::messages()
{
    meet("MainWindow", "About", QStringLiteral("about"));
    menuItem(Help, 3)->trigger();

    life.clickAction(QStringLiteral("alpha"));
    life.filter(QStringLiteral("beta"));
    visit(&life.window(), QStringLiteral("main window with unlisted actions"));
    const QString apply = text("YumIO", "Apply");
    meetTitled(apply, QStringLiteral("review"));
    life.click("apply");

    YumIODialogsMinion minion(&life.window());
    meetTitled(apply, QStringLiteral("conflict"));
    minion.critical(apply,
                    text("YumIO", "Package %1 is included in group %2 which was marked for %3,\n"
                                  "so the package would be marked for %4,\n"
                                  "but it was marked individually for %5.\n"
                                  "How do you wish to proceed?"),
                    text("YumIO", "Update"), text("YumIO", "Install"), text("YumIO", "Cancel"), 2,
                    2);
    const QString error = text("YumIO", "VOK Yum Error");
    meetTitled(error, QStringLiteral("error"));
    minion.scrollable(error, QStringLiteral("First line of what went wrong\n").repeated(80) +
                                 QString(200, QLatin1Char('w')));
}
