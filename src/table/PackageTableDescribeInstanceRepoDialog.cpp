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

/// Where passwords may stand that the URL forms' own functions don't find: in a form that is cut
/// off, has more parts than it should or stands behind a broken one, and between a URL's user name
/// and host. Of a form, all that belongs to it up to the next URL.
const QRegularExpression& strayCredentials()
{
    static const QRegularExpression expression(
        QStringLiteral("/vantry\\?(?<query>\\S*(?:[ \\t]+(?!\\w+:/)\\S+)*)"
                       "|/rhel/(?<path>[^=/\\s]*=\\S*(?:[ \\t]+(?!\\w+:/)\\S+)*)"
                       "|://[^:/\\s]*:(?<user>[^/\\s]+)@"));
    return expression;
}

/// Replaces with marks the value of each "key=value" of a form but the first, which is the user
/// name. The form is `text` from `start` up to where `end` begins.
void maskValues(QString& text, int start, int end, QChar separator, QChar mark)
{
    for (int number = 0; start < end; ++number) {
        int next = text.indexOf(separator, start);
        if (next < 0 || next > end)
            next = end;
        const int value = text.indexOf(QLatin1Char('='), start) + 1;
        const bool hasValue = value > 0 && value <= next;
        // The rest of a path isn't the form's any more.
        if (!hasValue && separator == QLatin1Char('/'))
            return;
        if (hasValue && number > 0)
            text.replace(value, next - value, QString(next - value, mark));
        start = next + 1;
    }
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
    scrollArea->setAccessibleName(entry.id);
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
    // What is masked already is as many marks behind this.
    auto matches = strayCredentials().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString query = match.captured(QStringLiteral("query"));
        if (!query.isEmpty()) {
            const int path = query.indexOf(QLatin1String("&path="));
            const int start = match.capturedStart(QStringLiteral("query"));
            maskValues(text, start, start + (path < 0 ? query.size() : path), QLatin1Char('&'),
                       mark);
        }
        const int pathLength = match.capturedLength(QStringLiteral("path"));
        if (pathLength > 0) {
            const int start = match.capturedStart(QStringLiteral("path"));
            maskValues(text, start, start + pathLength, QLatin1Char('/'), mark);
        }
        const int length = match.capturedLength(QStringLiteral("user"));
        if (length > 0)
            text.replace(match.capturedStart(QStringLiteral("user")), length,
                         QString(length, mark));
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
