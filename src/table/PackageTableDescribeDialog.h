// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "engine/Package.h"

#include <QDialog>
#include <QList>
#include <QPointer>

class QHBoxLayout;
class QPushButton;
class YumConfIO;
class YumIO;

namespace PackageTable
{
namespace Describe
{

namespace Instance
{
class Area;
}

/// All that is known about one row: a section for its entry, and a shorter one for each further
/// version in its chain. What it shows is made anew for each showing.
///
/// It can't be closed while a section loads what it wants to show: that section would go with it.
class Dialog : public QDialog
{
    Q_OBJECT

public:
    explicit Dialog(QWidget* parent);
    ~Dialog() override;

    /// Builds the contents; exec() is to follow. Nothing is owned, and the entry must live until
    /// the dialog is closed.
    void config(YumIO* yumIO, const Package::Entry& entry, YumConfIO* conf);

    /// False while a section is busy: no button can be pressed then.
    void setReady(bool ready);

    /// Hiding throws the contents away.
    void setVisible(bool visible) override;
    void closeEvent(QCloseEvent* event) override;
    void done(int result) override;

private:
    void clearContents();
    /// Whether the window can give each section a few lines.
    bool haveRoom() const;
    /// Gives each section what it asks for, and scrolls the sections together.
    void scrollSections();
    /// Scrolls a widget that has got the keyboard to where it can be seen.
    void reveal(QWidget* widget);
    /// The keyboard starts in the first section, which it scrolls, and comes to "Close" last.
    void orderTabs();

    QHBoxLayout* m_box;
    QWidget* m_contents = nullptr;  ///< null while closed
    QList<Instance::Area*> m_areas; ///< owned
    bool m_ready = true;
    QPointer<QWidget> m_focusWhenReady;
    QPushButton* m_close;
};

} // namespace Describe
} // namespace PackageTable
