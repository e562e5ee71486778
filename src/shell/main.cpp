// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/Application.h"
#include "kit/Share.h"
#include "shell/CommandLine.h"
#include "shell/DefaultStyle.h"
#include "shell/MainWindow.h"

#include <QApplication>
#include <QIcon>

#include <libgen.h>

namespace
{

QtMessageHandler nextHandler = nullptr;

/// Administrators work in shells of su and sudo, where the session's runtime directory is unset or
/// somebody else's. Nothing here uses it, and Qt would tell so at each start.
void dropRuntimeDirectory(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (!text.startsWith(QLatin1String("QStandardPaths: ")))
        nextHandler(type, context, text);
}

} // namespace

int main(int argc, char** argv)
{
    nextHandler = qInstallMessageHandler(dropRuntimeDirectory);
    const DefaultStyle defaultStyle(argc, argv);
    QApplication app(argc, argv);
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
