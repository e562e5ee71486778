// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/MainWindow.h"

#include "engine/YumIO.h"
#include "repo/RepoAuthChecker.h"
#include "repo/RepoEditorDialog.h"

void MainWindow::editRepositories(bool forceReposChanged)
{
    if (!engine)
        return;
    if (!repoEditor) {
        repoEditor = new RepoEditor::Dialog(engine, conf.get(), this);
        connect(repoEditor, &RepoEditor::Dialog::reposChanged, this, &MainWindow::reposChanged);
    }
    repoEditor->forceReposChanged = forceReposChanged;
    repoEditor->exec();
    // Where the files can't be read there is nothing to edit or to leave, but a window to use.
    if (forceReposChanged && engine && mainArea->isHidden())
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
