// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/TransactionGuard.h"
#include "kit/Application.h"
#include "kit/Share.h"
#include "shell/CommandLine.h"
#include "shell/DefaultStyle.h"
#include "shell/Language.h"
#include "shell/MainWindow.h"
#include "shell/QtMessages.h"

#include <QApplication>
#include <QIcon>

#include <libgen.h>

namespace
{

/// Whether all that is asked for is the help text, which can be read without a display, too.
bool wantsHelpOnly(int argc, char** argv)
{
    if (argc != 2)
        return false;
    const QLatin1String option(argv[1]);
    return option == QLatin1String("--help") || option == QLatin1String("-h") ||
           option == QLatin1String("-H");
}

int run(int& argc, char** argv)
{
    QtMessages::filter(basename(argv[0]));
    if (wantsHelpOnly(argc, argv) && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const DefaultStyle defaultStyle(argc, argv);
    // Icons with all of the dots that the screen has.
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    Share::settle(QCoreApplication::applicationDirPath() + QStringLiteral("/" VOK_SHARE_FROM_BIN));
    Language::load(app);
    QtMessages::applicationStarted();
    defaultStyle.set(app, QStringLiteral("plastique"));
    QApplication::setWindowIcon(QIcon(Share::absolute(QStringLiteral("pixmaps/vok.icon.png"))));
    // The main window says when the program is over: it has an engine to stop first, and a log
    // window that outlives the main window's frame must not keep the process, nor its closing end
    // it.
    QApplication::setQuitOnLastWindowClosed(false);

    application = &app;
    program = basename(argv[0]);

    // Stays to the end of the process; its engine goes with MainWindow::quit().
    static MainWindow* window = new MainWindow(nullptr);
    QObject::connect(window, &MainWindow::left, &app, &QApplication::quit);
    CommandLine::apply(*window, argc, argv);
    window->show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const int status = run(argc, argv);
    TransactionGuard::obeyPendingSignal();
    return status;
}
