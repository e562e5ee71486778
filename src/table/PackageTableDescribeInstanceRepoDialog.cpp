// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableDescribeInstanceRepoDialog.h"

#include "kit/HScrollArea.h"
#include "kit/HSeparator.h"
#include "repo/RepoBrowse.h"
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"
#include "table/PackageTableDescribeText.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyle>
#include <QVBoxLayout>

namespace PackageTable
{
namespace Describe
{
namespace Instance
{

namespace
{

/// Passwords where the URL forms' own functions don't look: of a form that is cut off or that
/// stands behind a broken one, and between a URL's user name and host.
const QRegularExpression& strayPasswords()
{
    static const QRegularExpression expression(
        QStringLiteral("(?:/vantry\\?[^=&\\s]*=[^&\\s]*&[^=&\\s]*=(?<query>[^&\\s]+)"
                       "|/rhel/[^=/\\s]*=[^/\\s]*/[^=/\\s]*=(?<path>[^/\\s]+)"
                       "|://[^:/\\s]*:(?<user>[^/\\s]+)@)"));
    return expression;
}

} // namespace

RepoDialog::RepoDialog(YumIO* yumIO, QWidget* parent)
    : QDialog(parent)
    , m_yumIO(yumIO)
    , m_box(new QHBoxLayout)
{
    setWindowTitle(tr("VOK Repository Description"));
    setAttribute(Qt::WA_ShowModal);

    auto* browseButton = new QPushButton(tr("Browse Repository"), this);
    browseButton->setToolTip(tr("Browse the first URL specified for the selected repository using "
                                "an external web browser"));
    connect(browseButton, &QPushButton::clicked, this, &RepoDialog::browse);
    auto* closeButton = new QPushButton(tr("Close"), this);
    closeButton->setDefault(true);
    connect(closeButton, &QPushButton::clicked, this, &RepoDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(browseButton);
    buttons->addStretch(1);
    buttons->addWidget(closeButton);

    auto* box = new QVBoxLayout(this);
    box->addLayout(m_box);
    box->addLayout(buttons);
}

void RepoDialog::config(const Repo::Entry& entry)
{
    clearContents();
    m_contents = new QWidget(this);
    auto* box = new QVBoxLayout;

    box->addWidget(makeTitle(entry.id, m_contents));
    box->addWidget(new HSeparator(m_contents));

    // Long URLs, and many of them, are scrolled rather than making the dialog larger than the
    // screen.
    auto* scrollArea = new HScrollArea(m_contents);
    scrollArea->setFrameStyle(static_cast<int>(QFrame::Plain) | QFrame::NoFrame);
    auto* widget = new QWidget(scrollArea);
    m_grid = new QGridLayout;
    widget->setLayout(m_grid);
    int row = 0;
    addPair(row, tr("Name"), entry.name);
    addPair(row, tr("URLs"), masked(entry.baseurl));
    addPair(row, tr("Mirror list URL"), masked(entry.mirrorlist));
    scrollArea->setWidget(widget);
    box->addWidget(scrollArea);

    m_contents->setLayout(box);
    m_box->addWidget(m_contents);
    m_entry = &entry;
}

void RepoDialog::addPair(int& row, const QString& label, const QString& value)
{
    if (value.isEmpty())
        return;
    QWidget* parent = m_grid->parentWidget();
    m_grid->addWidget(new QLabel(tr("%1:").arg(label), parent), row, 0,
                      Qt::AlignRight | Qt::AlignTop);
    m_grid->addWidget(makeText(value, parent), row++, 1, Qt::AlignLeft | Qt::AlignTop);
}

QString RepoDialog::masked(const QString& urls) const
{
    const QChar mark(
        static_cast<ushort>(style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter)));
    QString text = urls;
    QString nameKey, name, passwordKey, password;
    if (Repo::Vantry::getAuth(text, nameKey, name, passwordKey, password))
        text = Repo::Vantry::replaceAuth(text, nameKey, name, passwordKey,
                                         QString(password.size(), mark));
    // What is masked already is marks before and behind this.
    auto matches = strayPasswords().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        for (const char* const group : {"query", "path", "user"}) {
            const int length = match.capturedLength(QLatin1String(group));
            if (length > 0)
                text.replace(match.capturedStart(QLatin1String(group)), length,
                             QString(length, mark));
        }
    }
    return text;
}

void RepoDialog::setVisible(bool visible)
{
    if (!visible)
        clearContents();
    QDialog::setVisible(visible);
}

void RepoDialog::clearContents()
{
    if (!m_contents)
        return;
    m_box->removeWidget(m_contents);
    delete m_contents;
    m_contents = nullptr;
    m_grid = nullptr;
}

void RepoDialog::browse()
{
    RepoBrowse::browse(this, *m_entry, m_yumIO);
}

} // namespace Instance
} // namespace Describe
} // namespace PackageTable
