// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/MainWindow.h"

#include "engine/YumIO.h"
#include "kit/SystemRoot.h"
#include "repo/RepoAuthChecker.h"

#include <QMessageBox>

void MainWindow::editRepositories(bool forceReposChanged)
{
    if (!engine)
        return;
    // Whether something changed can't be told, so leaving the box always reads the list anew.
    Q_UNUSED(forceReposChanged)
    if (conf->reposDirs.isEmpty())
        conf->read(this);
    QStringList directories;
    for (const QString& directory : qAsConst(conf->reposDirs))
        directories << SystemRoot::path(directory);
    QMessageBox::information(
        this, tr("VOK Repository Editor"),
        tr("This version has no editor for repositories of its own. The configuration is in the "
           "main file\n\n%1\n\nand in the files that end in .repo in\n\n%2\n\nEdit them with a "
           "text editor. The package list is read anew when this box is closed. Repositories that "
           "are switched on or off in the files are so from the next start on.")
            .arg(QString::fromLocal8Bit(conf->fileName()), directories.join(QLatin1Char('\n'))));
    reposChanged();
}

void MainWindow::reposChanged()
{
    if (!engine)
        return;
    setReady(false);
    if (RepoAuth::Checker(this, conf.get()).quit) {
        quit();
        return;
    }
    collectAnew();
    if (mainArea->isHidden()) {
        mainArea->show();
        fitToContents();
    }
    setReady(true);
}
