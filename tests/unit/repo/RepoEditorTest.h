// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/YumIO.h"
#include "kit/HFrameLabel.h"
#include "repo/YumConfIO.h"
#include "support/DialogDriver.h"
#include "unit/repo/ConfigTree.h"
#include "unit/repo/RepoEditorDriver.h"

#include <QMap>
#include <QSignalSpy>

#include <functional>
#include <memory>

/// The repository editor over real files: five repositories, "e" in the main file and "d", "a", "c"
/// and "b" in another one, in this order.
class RepoEditorTest : public QObject
{
protected:
    void makeAll();
    void removeAll();

    static constexpr const char* title = "VOK Repository Configuration Editor";
    static constexpr const char* entryTitle = "VOK Repository Configuration";

    /// Ends a dialog that a failed check has left open.
    struct Closer {
        explicit Closer(QWidget* dialog)
            : dialog(dialog)
        {
        }
        ~Closer() { dialog->close(); }
        QWidget* dialog;
    };

    /// Opens the editor, has `steps` done in it and presses a button that ends it; its result.
    int run(const std::function<void()>& steps, const QString& button = "Cancel");
    /// The next entry editor: `text` is typed into its field with this tool tip.
    void expectEntry(const QString& toolTip, const QString& text, const QString& button = "OK");
    QString status() const { return dialog->findChild<HFrameLabel*>()->text(); }
    QColor statusColour() const
    {
        return dialog->findChild<HFrameLabel*>()->palette().color(QPalette::Window);
    }
    Repo::Entry entry(const QString& id) const;
    /// All files below the root with their contents.
    QMap<QString, QByteArray> files() const;
    void rightClick(const QPoint& pos);

    const QString idTip = "Unique identifier for the repository";
    const QString nameTip = "Description of the repository";

    std::unique_ptr<ConfigTree> tree;
    std::unique_ptr<DialogDriver> driver;
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<YumIO> yumIO; ///< one for all tests, since it ends the interpreter
    std::unique_ptr<YumConfIO> conf;
    std::unique_ptr<QWidget> window;
    std::unique_ptr<RepoEditor::Dialog> dialog;
    std::unique_ptr<RepoEditorDriver> editor;
    std::unique_ptr<QSignalSpy> reposChanged;
};
