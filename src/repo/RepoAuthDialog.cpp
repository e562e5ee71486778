// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoAuthDialog.h"
#include "kit/Fonts.h"
#include "kit/HSeparator.h"
#include "kit/ScreenLimit.h"
#include "repo/ConfigText.h"
#include "repo/PasswdInput.h"
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace
{

/// Text as it stands in a file. However long a line of it is, the dialog fits on its screen.
class ValueLabel : public QLabel
{
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override { return QSize(0, QLabel::minimumSizeHint().height()); }
};

/// What stored URLs say, without the passwords that some of the same repository may have already.
QString masked(const QString& stored, const QWidget* widget)
{
    QString urls = ConfigText::toShown(stored);
    QRegularExpressionMatchIterator matches = Repo::Vantry::urlsRegExp().globalMatch(urls);
    while (matches.hasNext())
        PasswdInput::mask(urls, matches.next(), widget);
    return urls;
}

} // namespace

RepoAuth::Dialog::Dialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("VOK Authentication"));
    setAttribute(Qt::WA_ShowModal);

    auto* layout = new QVBoxLayout(this);
    auto* heading = new QLabel(tr("Some configured repositories require authentication"), this);
    heading->setFont(Fonts::makeHeader(heading->font()));
    heading->setAlignment(Qt::AlignHCenter);
    layout->addWidget(heading);
    layout->addWidget(new HSeparator(this));

    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
    const auto addValue = [this, grid](int row, const char* objectName, const QString& text) {
        grid->addWidget(new QLabel(text, this), row, 0);
        QLabel* value = new ValueLabel(this);
        value->setObjectName(QLatin1String(objectName));
        value->setTextFormat(Qt::PlainText);
        grid->addWidget(value, row, 1);
        return value;
    };
    idLabel = addValue(0, "id", tr("Identifier"));
    nameLabel = addValue(1, "name", tr("Name"));
    urlsLabel = addValue(2, "urls", tr("URLs"));
    mirrorlistLabel = addValue(3, "mirrorlist", tr("Mirror list URL"));
    grid->addWidget(new HSeparator(this), 4, 0, 1, 2);

    const auto addEdit = [this, grid](int row, const char* objectName, QLabel* key,
                                      const QString& toolTip) {
        key->setObjectName(QLatin1String(objectName) + QStringLiteral("Key"));
        key->setTextFormat(Qt::PlainText);
        auto* edit = new QLineEdit(this);
        edit->setObjectName(QLatin1String(objectName));
        edit->setToolTip(toolTip);
        grid->addWidget(key, row, 0);
        grid->addWidget(edit, row, 1);
        connect(edit, &QLineEdit::textEdited, this, &Dialog::authChanged);
        return edit;
    };
    authNameKey = new QLabel(tr("Name"), this);
    authNameEdit =
        addEdit(5, "authName", authNameKey,
                tr("Authentication name for a repository using the vantry authentication method"));
    authNameEdit->setAccessibleName(tr("Name"));
    passwordKey = new QLabel(tr("Password"), this);
    passwordEdit = addEdit(
        6, "password", passwordKey,
        tr("Authentication password for a repository using the vantry authentication method"));
    passwordEdit->setAccessibleName(tr("Password"));
    passwordEdit->setEchoMode(QLineEdit::Password);

    auto* row = new QHBoxLayout;
    layout->addStretch(1);
    layout->addLayout(row);
    row->addStretch(1);
    const auto addButton = [this, row](const QString& text, void (Dialog::*handler)()) {
        auto* button = new QPushButton(text, this);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this, handler);
        return button;
    };
    quitButton = addButton(tr("Quit"), &Dialog::handleQuit);
    disableButton = addButton(tr("Disable for Session"), &Dialog::handleDisable);
    skipAllButton = addButton(tr("Skip All"), &Dialog::handleSkipAll);
    applyAllButton = addButton(tr("Apply to All"), &Dialog::handleApplyAll);
    applyHostButton = addButton(tr("Apply to All with this Host"), &Dialog::handleApplyHost);
    okButton = addButton(tr("OK"), &Dialog::handleOK);
    okButton->setDefault(true);
}

QSize RepoAuth::Dialog::sizeHint() const
{
    return QDialog::sizeHint() + QSize(40 * fontMetrics().horizontalAdvance(QLatin1Char('n')), 0);
}

void RepoAuth::Dialog::exec(Repo::Entry* newEntry)
{
    entry = newEntry;
    idLabel->setText(ConfigText::toShown(entry->id));
    nameLabel->setText(ConfigText::toShown(entry->name));
    urlsLabel->setText(masked(entry->baseurl, this));
    mirrorlistLabel->setText(masked(entry->mirrorlist, this));

    QString nameKey;
    QString name;
    QString key;
    QString password;
    Repo::Vantry::getAuth(*entry, nameKey, name, key, password);
    authNameKey->setText(ConfigText::toShown(nameKey));
    authNameEdit->setText(ConfigText::toShown(name));
    passwordKey->setText(ConfigText::toShown(key));
    passwordEdit->setText(ConfigText::toShown(password));

    // What holds where the loop is ended without an answer, such as by the application's end.
    setResult(SkipAll);
    answered = false;
    enableAnswers(true);
    authNameEdit->setFocus();
    show();
    loop.exec();
    answered = true;
    entry = nullptr;
}

void RepoAuth::Dialog::setVisible(bool visible)
{
    if (visible) {
        QApplication::restoreOverrideCursor();
        // By itself a window gets no more than two thirds of the screen, which on a small one cuts
        // the URLs off.
        if (!testAttribute(Qt::WA_Resized))
            resize(ScreenLimit::windowSize(this));
    } else {
        QApplication::setOverrideCursor(Qt::BusyCursor);
    }
    QDialog::setVisible(visible);
}

void RepoAuth::Dialog::done(int result)
{
    // Keys and clicks that came together are all delivered before the loop is left, and the window
    // is still there for them: the first one counts.
    if (answered)
        return;
    answered = true;
    enableAnswers(false);
    setResult(result);
    loop.exit();
    Q_EMIT finished(result);
    Q_EMIT finished(result);
    if (result == Ok)
        Q_EMIT accepted();
    else if (result == SkipAll)
        Q_EMIT rejected();
}

void RepoAuth::Dialog::authChanged(const QString&)
{
    const QChar mask(style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, this));
    const QString hidden(passwordEdit->text().size(), mask);
    for (QLabel* label : {urlsLabel, mirrorlistLabel})
        label->setText(Repo::Vantry::replaceAuth(
            label->text(), authNameKey->text(), authNameEdit->text(), passwordKey->text(), hidden));
}

void RepoAuth::Dialog::setUrls()
{
    // Nothing was answered, and another URL may have what this one lacks.
    if (authNameEdit->text().isEmpty() && passwordEdit->text().isEmpty())
        return;
    // What the labels show are these, but for names and passwords.
    for (QString* urls : {&entry->baseurl, &entry->mirrorlist})
        *urls = Repo::Vantry::replaceAuth(*urls, ConfigText::toStored(authNameKey->text()),
                                          ConfigText::toStored(authNameEdit->text()),
                                          ConfigText::toStored(passwordKey->text()),
                                          ConfigText::toStored(passwordEdit->text()));
}

void RepoAuth::Dialog::answer(Result result)
{
    if (answered)
        return;
    entry = nullptr;
    done(result);
}

void RepoAuth::Dialog::answerWithUrls(Result result)
{
    // Two of these buttons stay enabled after an answer.
    if (answered || !entry)
        return;
    setUrls();
    answer(result);
}

void RepoAuth::Dialog::handleQuit()
{
    answer(Quit);
}

void RepoAuth::Dialog::handleDisable()
{
    answer(Disable);
}

void RepoAuth::Dialog::handleSkipAll()
{
    answer(SkipAll);
}

void RepoAuth::Dialog::handleApplyAll()
{
    answerWithUrls(ApplyAll);
}

void RepoAuth::Dialog::handleApplyHost()
{
    answerWithUrls(ApplyHost);
}

void RepoAuth::Dialog::handleOK()
{
    answerWithUrls(Ok);
}

void RepoAuth::Dialog::enableAnswers(bool enabled)
{
    for (QPushButton* button : {skipAllButton, quitButton, disableButton, okButton})
        button->setEnabled(enabled);
}
