// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"

#include <QObject>
#include <QString>

class HScrollArea;
class QGridLayout;
class QPushButton;
class QVBoxLayout;
class QWidget;
class TextDialog;
class YumConfIO;
class YumIO;

namespace PackageTable
{
namespace Describe
{

class Dialog;

namespace Instance
{

class RepoDialog;

/// The section of one entry: a row for each field that has a value, and buttons for what is loaded
/// or looked up only when asked for. The dialog owns it; its widgets are the dialog's contents'.
class Area : public QObject
{
    Q_OBJECT

public:
    /// Puts the section behind what is in `box`. `first` is a full section, the others are short.
    Area(Dialog* dialog, QVBoxLayout* box, YumIO* yumIO, const Package::Entry& entry,
         YumConfIO* conf, bool first);
    ~Area() override;

public Q_SLOTS:
    void handleRepo();
    /// These two may load extra data, which spins a local event loop.
    void handleFiles();
    void handleChangeLog();

private:
    struct Button {
        QString text; ///< without the remark that data must be loaded
        QPushButton* button = nullptr;
        int row = 0;
    };

    // Each makes the row `row` and steps on to the next; a pair with an empty value has no row.

    void addHeader(int& row, const QString& text);
    void addPair(int& row, const QString& label, const QString& value);
    Button addButton(int& row, const QString& label, const QString& button);
    Button addPairButton(int& row, const QString& label, const QString& value,
                         const QString& button);

    void addGroup(int& row);
    void addPackage(int& row);
    void addFurtherVersion(int& row);
    void addExtraData(int& row);
    void addLabel(int row, const QString& label);
    bool isPackage() const;

    /// Tells on the buttons what costs a load.
    void updateButtons();
    void updateButton(Button& button, bool collected);
    /// Shows what `getText` gives; `title` takes the name and the version.
    void showText(const QString& title, QString (*getText)(YumIO*, const Package::Entry&));

    Dialog* m_dialog;
    YumIO* m_yumIO;
    const Package::Entry& m_entry;
    YumConfIO* m_conf;
    RepoDialog* m_repoDialog = nullptr; ///< made when first needed; owned
    TextDialog* m_textDialog = nullptr; ///< the same
    QWidget* m_widget;
    QGridLayout* m_grid;
    HScrollArea* m_scrollArea;
    Button m_files;
    Button m_changeLog;
};

} // namespace Instance
} // namespace Describe
} // namespace PackageTable
