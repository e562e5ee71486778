// SPDX-License-Identifier: GPL-2.0-or-later
#include "RoadUser.h"

#include "Hand.h"

#include "table/PackageTable.h"

#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace
{

/// Clicks a button of a dialog by its text; sends the dialog away when the test has failed.
void clickButton(QDialog* dialog, const QString& text)
{
    if (QTest::currentTestFailed()) {
        dialog->reject();
        return;
    }
    for (const QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() != text || button->window() != dialog)
            continue;
        QVERIFY2(button->isVisible() && button->isEnabled(), qPrintable(text));
        Hand::click(button);
        return;
    }
    QTest::qFail(qPrintable("no button " + text), __FILE__, __LINE__);
}

} // namespace

QByteArray RoadUser::url() const
{
    QFile file(sandboxPath() + QStringLiteral("/url"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

QMap<QString, QByteArray> RoadUser::files() const
{
    QMap<QString, QByteArray> found;
    for (const char* folder : {"etc", "etc/yum.repos.d"}) {
        QDirIterator files(path(QString::fromLatin1(folder)), QDir::Files | QDir::Hidden);
        while (files.hasNext()) {
            QFile file(files.next());
            if (qstrcmp(folder, "etc") == 0 && files.fileName() != QLatin1String("yum.conf"))
                continue;
            if (!file.open(QIODevice::ReadOnly))
                QTest::qFail(qPrintable(file.fileName()), __FILE__, __LINE__);
            found[files.fileName()] = QByteArray::number(static_cast<int>(file.permissions()), 16) +
                                      '\n' + file.readAll();
        }
    }
    return found;
}

bool RoadUser::isActive(QWidget* window)
{
    return QTest::qWaitForWindowExposed(window, 20000) &&
           QTest::qWaitForWindowActive(window, 20000);
}

void RoadUser::expectEditor(std::function<void(const RepoEditorDriver&)> work,
                            const QString& leaveBy)
{
    dialogs.expect(QStringLiteral("VOK Repository Configuration Editor"))
        .act([work = std::move(work), leaveBy](QWidget* window) {
            auto* dialog = qobject_cast<RepoEditor::Dialog*>(window);
            QVERIFY(dialog && isActive(dialog));
            work(RepoEditorDriver(dialog));
            clickButton(dialog, leaveBy);
        })
        .leave();
}

void RoadUser::expectEntry(std::function<void(QWidget*)> work, const QString& leaveBy)
{
    dialogs.expect(QStringLiteral("VOK Repository Configuration"))
        .act([work = std::move(work), leaveBy](QWidget* dialog) {
            QVERIFY(isActive(dialog));
            work(dialog);
            clickButton(qobject_cast<QDialog*>(dialog), leaveBy);
        })
        .leave();
}

bool RoadUser::meets(const std::function<void()>& action)
{
    const int before = dialogs.driven();
    action();
    // The dialog's own event loop runs within this one.
    return QTest::qWaitFor([&] { return dialogs.driven() > before; }, 20000);
}

bool RoadUser::over()
{
    return dialogs.waitUntilDone(20000) && QTest::qWaitFor([this] { return ready(); }, 20000);
}

void RoadUser::clickCell(const QString& package, int column, Qt::MouseButton button)
{
    const QModelIndex index = cell(package, column);
    QVERIFY2(index.isValid(), qPrintable(package));
    table()->scrollTo(index);
    Hand::click(table()->viewport(), table()->visualRect(index).center(), button);
}

QStringList RoadUser::repositories()
{
    QStringList found;
    for (int row = 0; row < model()->rowCount(); ++row)
        found << model()->index(row, PackageTable::ColumnRepository).data().toString();
    found.removeDuplicates();
    found.sort();
    return found;
}
