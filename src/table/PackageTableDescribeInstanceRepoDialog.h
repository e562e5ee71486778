// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDialog>
#include <QString>

class QGridLayout;
class QHBoxLayout;
class YumIO;

namespace Repo
{
struct Entry;
}

namespace PackageTable
{
namespace Describe
{
namespace Instance
{

/// Name and URLs of a repository, with passwords masked, and a button that opens it in a browser.
class RepoDialog : public QDialog
{
    Q_OBJECT

public:
    /// Doesn't own the engine.
    RepoDialog(YumIO* yumIO, QWidget* parent);

    /// Builds the contents; exec() is to follow. The entry isn't owned, and must live until the
    /// dialog is closed.
    void config(const Repo::Entry& entry);

    /// Hiding throws the contents away.
    void setVisible(bool visible) override;

public Q_SLOTS:
    void browse();

private:
    /// Makes the row `row` and steps on to the next; an empty value has no row.
    void addPair(int& row, const QString& label, const QString& value);
    void clearContents();
    /// `urls` with each password replaced by marks.
    QString masked(const QString& urls) const;

    YumIO* m_yumIO;
    const Repo::Entry* m_entry = nullptr;
    QHBoxLayout* m_box;
    QWidget* m_contents = nullptr; ///< null while closed
    QGridLayout* m_grid = nullptr; ///< the contents'
};

} // namespace Instance
} // namespace Describe
} // namespace PackageTable
