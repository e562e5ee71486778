// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/RepoEditorTest.h"

#include <QDir>
#include <QDirIterator>
#include <QLineEdit>
#include <QTest>

using namespace RepoEditor;

void RepoEditorTest::makeAll()
{
    tree = std::make_unique<ConfigTree>();
    // A rewrite of the first would change it; the order of the list is neither that of reading nor
    // of the names.
    tree->write("/etc/yum.conf", "[main]\ncachedir=/var/cache/yum\n\n\n[e]\n\nname=Epsilon\n"
                                 "baseurl=file:///e\n");
    tree->write("/etc/yum.repos.d/many.repo",
                "[d]\nname=A\nbaseurl=file:///d\n[a]\nname=D\nbaseurl=file:///a\nenabled=0\n"
                "[c]\nname=C\nbaseurl=file:///c\nenabled=1\n[b]\nname=B\nmirrorlist=file:///b\n");
    driver = std::make_unique<DialogDriver>();
    used.clear();
    if (!yumIO)
        yumIO = std::make_unique<YumIO>();
    conf = std::make_unique<YumConfIO>(options, used);
    window = std::make_unique<QWidget>();
    dialog = std::make_unique<Dialog>(yumIO.get(), conf.get(), window.get());
    editor = std::make_unique<RepoEditorDriver>(dialog.get());
    reposChanged = std::make_unique<QSignalSpy>(dialog.get(), &Dialog::reposChanged);
}

void RepoEditorTest::removeAll()
{
    reposChanged.reset();
    editor.reset();
    dialog.reset();
    window.reset();
    conf.reset();
    driver.reset();
    tree.reset();
}

int RepoEditorTest::run(const std::function<void()>& steps, const QString& button)
{
    driver->expect(title).act([steps](QWidget*) { steps(); }).press(button);
    const int result = dialog->exec();
    driver->verify();
    return result;
}

void RepoEditorTest::expectEntry(const QString& toolTip, const QString& text, const QString& button)
{
    driver->expect(entryTitle)
        .act([=](QWidget* window) {
            for (QLineEdit* edit : window->findChildren<QLineEdit*>()) {
                if (edit->toolTip() != toolTip || !edit->isVisible())
                    continue;
                edit->setFocus();
                edit->selectAll();
                QTest::keyClicks(edit, text);
                return;
            }
            QTest::qFail(qPrintable("no field " + toolTip), __FILE__, __LINE__);
        })
        .press(button);
}

Repo::Entry RepoEditorTest::entry(const QString& id) const
{
    for (const Repo::Entry& entry : qAsConst(conf->entries)) {
        if (entry.id == id)
            return entry;
    }
    QTest::qFail(qPrintable("no entry " + id), __FILE__, __LINE__);
    return Repo::Entry();
}

QMap<QString, QByteArray> RepoEditorTest::files() const
{
    QMap<QString, QByteArray> files;
    for (QDirIterator it(tree->path("/"), QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            files.insert(file.fileName().mid(tree->path("/").size()), file.readAll());
    }
    return files;
}

void RepoEditorTest::rightClick(const QPoint& pos)
{
    QTest::mouseClick(dialog->windowHandle(), Qt::RightButton, Qt::NoModifier,
                      editor->view->viewport()->mapTo(dialog.get(), pos));
}
