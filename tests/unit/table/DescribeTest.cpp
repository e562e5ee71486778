// SPDX-License-Identifier: GPL-2.0-or-later
#include "DescribeTest.h"

#include "kit/HScrollArea.h"
#include "table/PackageTable.h"

#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QtTest>

namespace
{

/// Labels and buttons of a cell, from left to right.
QStringList cellTexts(const QLayoutItem* item)
{
    QStringList texts;
    if (!item)
        return texts;
    if (const QLayout* layout = const_cast<QLayoutItem*>(item)->layout()) {
        for (int i = 0; i < layout->count(); ++i)
            texts += cellTexts(layout->itemAt(i));
    }
    QWidget* widget = const_cast<QLayoutItem*>(item)->widget();
    if (const auto* label = qobject_cast<QLabel*>(widget))
        texts += label->text();
    if (const auto* button = qobject_cast<QPushButton*>(widget))
        texts += '[' + button->text() + ']';
    return texts;
}

} // namespace

QList<HScrollArea*> DescribeTest::sectionAreas(const QWidget* dialog)
{
    QList<HScrollArea*> areas = dialog->findChildren<HScrollArea*>();
    // The one around all of them, where there is one, has others in it.
    if (!areas.isEmpty() && areas.first()->findChild<HScrollArea*>())
        areas.removeFirst();
    return areas;
}

QList<QStringList> DescribeTest::sections(const QWidget* dialog)
{
    QList<QStringList> all;
    for (const HScrollArea* area : sectionAreas(dialog)) {
        const auto* grid = area->widget()->findChild<QGridLayout*>();
        if (!grid)
            grid = qobject_cast<QGridLayout*>(area->widget()->layout());
        QStringList rows;
        for (int row = 0; row < grid->rowCount(); ++row) {
            const QStringList left = cellTexts(grid->itemAtPosition(row, 0));
            const QStringList right = cellTexts(grid->itemAtPosition(row, 1));
            rows += left == right ? left.join(' ') : (left + right).join(' ');
        }
        rows.removeAll(QString());
        all += rows;
    }
    return all;
}

QStringList DescribeTest::labels(const QStringList& section)
{
    QStringList all;
    for (const QString& row : section) {
        if (row.contains(": "))
            all += row.section(": ", 0, 0);
    }
    return all;
}

QList<QPushButton*> DescribeTest::buttons(const QWidget* dialog, int section)
{
    return sectionAreas(dialog).at(section)->findChildren<QPushButton*>();
}

QPushButton* DescribeTest::files(const QWidget* dialog, int section)
{
    return buttons(dialog, section).rbegin()[1];
}

QPushButton* DescribeTest::changeLog(const QWidget* dialog, int section)
{
    return buttons(dialog, section).last();
}

QPushButton* DescribeTest::details(const QWidget* dialog)
{
    for (QPushButton* button : buttons(dialog, 0)) {
        if (button->text() == "Details")
            return button;
    }
    return nullptr;
}

QPushButton* DescribeTest::close(const QWidget* dialog)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == "Close")
            return button;
    }
    return nullptr;
}

void DescribeTest::click(QPushButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton);
}

void DescribeTest::describe(const QString& name)
{
    if (!model)
        model = std::make_unique<PackageTable::Model>(&contract->engine());
    model->setYumConfIO(conf.get());
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, PackageTable::ColumnName);
        if (index.data().toString() == name) {
            model->describe(index, &contract->window);
            return;
        }
    }
    QFAIL(qPrintable("no row " + name));
}

DialogDriver::Expectation& DescribeTest::expectDescription(std::function<void(QWidget*)> act)
{
    return driver->expect("VOK Package Description").act(std::move(act)).press("Close");
}

void DescribeTest::cleanup()
{
    qDeleteAll(contract->window.findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly));
    model.reset();
    conf.reset();
    ContractTest::cleanup();
}
