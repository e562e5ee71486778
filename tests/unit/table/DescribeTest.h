// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "contract/ContractTest.h"

#include "repo/YumConfIO.h"
#include "table/PackageTableModel.h"

#include <QPushButton>
#include <QStringList>

class HScrollArea;

/// A test class that describes rows of the double's collection in the real dialog.
class DescribeTest : public ContractTest
{
    Q_OBJECT

protected:
    /// The sections, from top to bottom.
    static QList<HScrollArea*> sectionAreas(const QWidget* dialog);
    /// What each section of a description or repository dialog says: its header, if any, and then
    /// "Label: value", "Label: [button]" or "Label: value [button]" for each row of the grid.
    static QList<QStringList> sections(const QWidget* dialog);
    /// The labels of a section's rows.
    static QStringList labels(const QStringList& section);

    /// The buttons of a section, which has "Details" in front where it has a repository.
    static QList<QPushButton*> buttons(const QWidget* dialog, int section);
    /// The button of the row "Files" or "Change Log" of a section.
    static QPushButton* files(const QWidget* dialog, int section = 0);
    static QPushButton* changeLog(const QWidget* dialog, int section = 0);
    static QPushButton* details(const QWidget* dialog);
    static QPushButton* close(const QWidget* dialog);
    static void click(QPushButton* button);

    /// Describes the row of this name; comes back when the dialog is closed.
    void describe(const QString& name);
    /// Expects the description, which `act` then looks at.
    DialogDriver::Expectation& expectDescription(std::function<void(QWidget*)> act);

    QHash<QString, bool> used;
    std::unique_ptr<YumConfIO> conf; ///< of the model; none by default
    std::unique_ptr<PackageTable::Model> model;

protected Q_SLOTS:
    void cleanup() override;
};
