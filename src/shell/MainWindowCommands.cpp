// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/MainWindow.h"

#include "engine/YumIO.h"
#include "kit/Execute.h"
#include "kit/Share.h"
#include "repo/RepoAuthChecker.h"
#include "shell/WarmUp.h"

#include <QFile>
#include <QMessageBox>

namespace
{

const char version[] = "1.11.11";

QString document(const QString& path)
{
    return path.arg(QStringLiteral("/usr/share/doc/vok-1.11.11"));
}

} // namespace

void MainWindow::apply()
{
    // While the pointer is still the usual one.
    WarmUp::once(this);
    setReady(false);
    const bool applied = engine->apply();
    // Whatever came of it: who sent that waits for the program to end.
    if (engine->pendingSignal() != 0) {
        quit();
        return;
    }
    if (applied) {
        // Packages bring configuration along.
        if (RepoAuth::Checker(this, conf.get()).quit) {
            quit();
            return;
        }
        collectAnew();
    }
    warnUnlistedActions();
    stateChanged(-1);
    setReady(true);
}

void MainWindow::cleanAndCollect(bool (YumIO::*clean)())
{
    setReady(false);
    (engine->*clean)();
    collectAnew();
    setReady(true);
}

void MainWindow::cleanHeaders()
{
    cleanAndCollect(&YumIO::cleanHeaders);
}

void MainWindow::cleanPackages()
{
    setReady(false);
    engine->cleanPackages();
    setReady(true);
}

void MainWindow::cleanXmlMetadata()
{
    cleanAndCollect(&YumIO::cleanXmlMetadata);
}

void MainWindow::cleanPickledCache()
{
    cleanAndCollect(&YumIO::cleanPickledCache);
}

void MainWindow::cleanSqliteCache()
{
    cleanAndCollect(&YumIO::cleanSqliteCache);
}

void MainWindow::cleanAll()
{
    cleanAndCollect(&YumIO::cleanAll);
}

void MainWindow::manualHtml()
{
    QByteArray browser = QFile::encodeName(Share::absolute(QStringLiteral("webbrowser")));
    QByteArray path = QFile::encodeName(document(QStringLiteral("%1/html/index.html")));
    char* const arguments[] = {browser.data(), path.data(), nullptr};
    Execute::execute(this, arguments);
}

void MainWindow::manualPdf()
{
    QByteArray viewer = QFile::encodeName(Share::absolute(QStringLiteral("mimeviewer")));
    QByteArray type("application/pdf");
    QByteArray path = QFile::encodeName(document(QStringLiteral("%1/manual.pdf")));
    char* const arguments[] = {viewer.data(), type.data(), path.data(), nullptr};
    Execute::execute(this, arguments);
}

void MainWindow::about()
{
    QMessageBox::about(
        this, tr("About"),
        tr("<h3>VOK %1</h3><hr><p>VOK, Package Steward, is a graphical user interface which allows "
           "a user to make modifications to the installed rpm packages on a system.</p>"
           "<p>Capabilities:<p><ul>"
           "<li>Install new packages or update existing packages by downloading them from a yum "
           "package repository</li>"
           "<li>Remove existing packages.</li>"
           "<li>Configure sets of repositories from which to obtain new and updated packages.</li>"
           "<li>Examine installed packages or packages available for installation or update</li>"
           "<li>Install, update, or remove groups of packages</li>"
           "<li>Install or update suites of packages</li></ul>"
           "<p>For more information see https://vok.example/.</p>")
            .arg(QLatin1String(version)));
}
