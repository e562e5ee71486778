// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableDescribeInstanceArea.h"

#include "engine/YumIO.h"
#include "kit/HScrollArea.h"
#include "kit/TextDialog.h"
#include "repo/YumConfIO.h"
#include "table/PackageTableDescribeDialog.h"
#include "table/PackageTableDescribeInstanceRepoDialog.h"
#include "table/PackageTableDescribeText.h"

#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace PackageTable
{
namespace Describe
{
namespace Instance
{

namespace
{

constexpr int columns = 80;
constexpr int rows = 24;

} // namespace

Area::Area(Dialog* dialog, QVBoxLayout* box, YumIO* yumIO, const Package::Entry& entry,
           YumConfIO* conf, bool first)
    : m_dialog(dialog)
    , m_yumIO(yumIO)
    , m_entry(entry)
    , m_conf(conf)
    , m_scrollArea(new HScrollArea(columns, rows, nullptr))
{
    m_scrollArea->setFrameStyle(static_cast<int>(QFrame::Plain) | QFrame::NoFrame);
    m_widget = new QWidget(m_scrollArea);
    auto* side = new QHBoxLayout;
    m_grid = new QGridLayout;

    int row = 0;
    addHeader(row, yumIO->getState(entry));
    m_scrollArea->setAccessibleName(yumIO->getState(entry));
    if (entry.kind == Package::KindGroup) {
        addGroup(row);
    } else if (isPackage()) {
        if (first)
            addPackage(row);
        else
            addFurtherVersion(row);
        addExtraData(row);
    }
    updateButtons();

    side->addLayout(m_grid);
    side->addStretch();
    m_widget->setLayout(side);
    m_scrollArea->setWidget(m_widget);
    box->addWidget(m_scrollArea);
}

Area::~Area()
{
    delete m_repoDialog;
    delete m_textDialog;
}

bool Area::isPackage() const
{
    return m_entry.kind == Package::KindOrdinary || m_entry.kind == Package::KindSuite;
}

void Area::addGroup(int& row)
{
    addPair(row, tr("Kind"), m_yumIO->getKind(m_entry));
    addPair(row, tr("Required Groups"), m_yumIO->getRequiredGroups(m_entry));
    addPair(row, tr("Default MetaPkgs"), m_yumIO->getDefaultMetaPkgs(m_entry));
    addPair(row, tr("Optional MetaPkgs"), m_yumIO->getOptionalMetaPkgs(m_entry));
    addPair(row, tr("Mandatory Packages"), m_yumIO->getMandatoryPkgs(m_entry));
    addPair(row, tr("Default Packages"), m_yumIO->getDefaultPkgs(m_entry));
    addPair(row, tr("Optional Packages"), m_yumIO->getOptionalPkgs(m_entry));
    addPair(row, tr("Conditional Packages"), m_yumIO->getConditionalPkgs(m_entry));
}

void Area::addPackage(int& row)
{
    addPair(row, tr("Kind"), m_yumIO->getKind(m_entry));
    addPair(row, tr("Version"), m_yumIO->getVerRel(m_entry));
    const QString repo = m_yumIO->getRepo(m_entry);
    if (repo != QLatin1String("installed")) {
        const Button details = addPairButton(row, tr("Repository"), repo, tr("Details"));
        if (details.button)
            connect(details.button, &QPushButton::clicked, this, &Area::handleRepo);
    }
    addPair(row, tr("Architecture"), m_yumIO->getArch(m_entry));
    addPair(row, tr("Size"), m_yumIO->getSize(m_entry));
    addPair(row, tr("Summary"), m_yumIO->getSummary(m_entry));
    addPair(row, tr("Description"), m_yumIO->getDescription(m_entry));
    addPair(row, tr("Group"), m_yumIO->getGroup(m_entry));
    addPair(row, tr("Vendor"), m_yumIO->getVendor(m_entry));
    addPair(row, tr("Build Time"), m_yumIO->getBuildTime(m_entry));
    addPair(row, tr("Build Host"), m_yumIO->getBuildHost(m_entry));
    addPair(row, tr("Install Time"), m_yumIO->getInstallTime(m_entry));
    const QString binaryRpm = m_yumIO->getBinaryRpm(m_entry);
    addPair(row, tr("Binary RPM"), binaryRpm);
    // Deliberately the same value; what the source is called is for the table's search alone.
    addPair(row, tr("Source RPM"), binaryRpm);
    addPair(row, tr("License"), m_yumIO->getLicense(m_entry));
    addPair(row, tr("Packager"), m_yumIO->getPackager(m_entry));
    addPair(row, tr("URL"), m_yumIO->getUrl(m_entry));
    addPair(row, tr("Relocations"), m_yumIO->getRelocations(m_entry));
    addPair(row, tr("Provides"), m_yumIO->getProvides(m_entry));
    addPair(row, tr("Requires"), m_yumIO->getRequires(m_entry));
    addPair(row, tr("Conflicts"), m_yumIO->getConflicts(m_entry));
    addPair(row, tr("Obsoletes"), m_yumIO->getObsoletes(m_entry));
}

void Area::addFurtherVersion(int& row)
{
    addPair(row, tr("Version"), m_yumIO->getVerRel(m_entry));
    addPair(row, tr("Architecture"), m_yumIO->getArch(m_entry));
    addPair(row, tr("Size"), m_yumIO->getSize(m_entry));
    addPair(row, tr("Build Time"), m_yumIO->getBuildTime(m_entry));
    addPair(row, tr("Packager"), m_yumIO->getPackager(m_entry));
}

void Area::addExtraData(int& row)
{
    m_files = addButton(row, tr("Files"), tr("Show"));
    connect(m_files.button, &QPushButton::clicked, this, &Area::handleFiles);
    m_changeLog = addButton(row, tr("Change Log"), tr("Show"));
    connect(m_changeLog.button, &QPushButton::clicked, this, &Area::handleChangeLog);
}

void Area::addHeader(int& row, const QString& text)
{
    m_grid->addWidget(makeHeader(text, m_widget), row++, 0, 1, 2);
}

void Area::addLabel(int row, const QString& label)
{
    m_grid->addWidget(new QLabel(tr("%1:").arg(label), m_widget), row, 0,
                      Qt::AlignRight | Qt::AlignTop);
}

void Area::addPair(int& row, const QString& label, const QString& value)
{
    if (value.isEmpty())
        return;
    addLabel(row, label);
    m_grid->addWidget(makeText(value, m_widget), row++, 1, Qt::AlignLeft | Qt::AlignTop);
}

Area::Button Area::addButton(int& row, const QString& label, const QString& button)
{
    Button made{button, new QPushButton(button, m_widget), row};
    made.button->setAccessibleName(tr("%1: %2").arg(label, button));
    addLabel(row, label);
    m_grid->addWidget(made.button, row++, 1, Qt::AlignLeft | Qt::AlignTop);
    return made;
}

Area::Button Area::addPairButton(int& row, const QString& label, const QString& value,
                                 const QString& button)
{
    Button made{button, nullptr, row};
    if (value.isEmpty())
        return made;
    made.button = new QPushButton(button, m_widget);
    made.button->setAccessibleName(tr("%1: %2").arg(label, button));
    addLabel(row, label);
    auto* box = new QHBoxLayout;
    box->addWidget(makeText(value, m_widget), 0, Qt::AlignTop);
    box->addWidget(made.button, 0, Qt::AlignTop);
    m_grid->addLayout(box, row++, 1, Qt::AlignLeft | Qt::AlignTop);
    return made;
}

void Area::updateButtons()
{
    if (!isPackage())
        return;
    updateButton(m_files, m_yumIO->areFileListsCollected());
    updateButton(m_changeLog, m_yumIO->areOtherDataCollected());
}

void Area::updateButton(Button& button, bool collected)
{
    if (!button.button)
        return;
    const bool mustLoad = m_entry.state != Package::StateInstalled && !collected;
    button.button->setText(mustLoad ? tr("%1 (must load extra data)").arg(button.text)
                                    : button.text);
}

void Area::handleFiles()
{
    showText(tr("%1 %2 File List"),
             [](YumIO* yumIO, const Package::Entry& entry) { return yumIO->getFiles(entry); });
}

void Area::handleChangeLog()
{
    showText(tr("%1 %2 Change Log"),
             [](YumIO* yumIO, const Package::Entry& entry) { return yumIO->getChangeLog(entry); });
}

void Area::showText(const QString& title, QString (*getText)(YumIO*, const Package::Entry&))
{
    m_dialog->setReady(false);
    const QString text = getText(m_yumIO, m_entry);
    updateButtons();
    if (!m_textDialog)
        m_textDialog = new TextDialog(nullptr);
    m_textDialog->setWindowTitle(title.arg(m_yumIO->getName(m_entry), m_yumIO->getVerRel(m_entry)));
    m_textDialog->setText(text);
    m_textDialog->exec();
    m_dialog->setReady(true);
}

void Area::handleRepo()
{
    const QString id = m_yumIO->getRepo(m_entry);
    const QList<Repo::Entry> none;
    const QList<Repo::Entry>& entries = m_conf ? m_conf->entries : none;
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&id](const Repo::Entry& entry) { return entry.id == id; });
    if (found == entries.end()) {
        // Taken out of the configuration since the rows were collected.
        QMessageBox box(QMessageBox::Critical, tr("Error"),
                        tr("Repository \"%1\" is not in the configuration").arg(id),
                        QMessageBox::Ok, m_dialog);
        box.setTextFormat(Qt::PlainText);
        box.exec();
        return;
    }
    if (!m_repoDialog)
        m_repoDialog = new RepoDialog(m_yumIO, nullptr);
    m_repoDialog->config(*found);
    m_repoDialog->exec();
}

} // namespace Instance
} // namespace Describe
} // namespace PackageTable
