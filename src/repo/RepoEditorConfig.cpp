// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoEditorConfig.h"
#include "kit/Colors.h"
#include "kit/Fonts.h"
#include "kit/HFrameLabel.h"
#include "kit/HTextEdit.h"
#include "repo/PasswdLineEdit.h"
#include "repo/PasswdTextEdit.h"
#include "repo/Vantry.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

#include <algorithm>

namespace
{

/// Items of the combo boxes, in the order of the entry's values.
enum Stated { No, Default, Yes };

void addRow(QGridLayout* layout, const QString& text, QWidget* field, const QString& toolTip)
{
    const int row = layout->count() == 0 ? 0 : layout->rowCount();
    field->setToolTip(toolTip);
    auto* label = new QLabel(text, field->parentWidget());
    label->setBuddy(field);
    layout->addWidget(label, row, 0);
    layout->addWidget(field, row, 1);
}

/// On a small screen the texts give way first, down to two lines.
void letShrink(QTextEdit* edit)
{
    edit->setMinimumHeight(2 * (edit->fontMetrics().lineSpacing() + edit->frameWidth()) +
                           static_cast<int>(2 * edit->document()->documentMargin()));
}

/// A line of a file. Fields of one line take over the ends of lines with what is pasted.
QString lineOf(QString text)
{
    static const QRegularExpression ends(QStringLiteral("\\s*[\r\n]\\s*"));
    return text.contains(ends) ? text.replace(ends, QStringLiteral(" ")).trimmed() : text;
}

QString textOf(const QLineEdit* edit)
{
    return lineOf(edit->text());
}
QString textOf(const PasswdLineEdit* edit)
{
    return lineOf(edit->realText());
}
QString textOf(const HTextEdit* edit)
{
    return edit->toPlainText();
}
QString textOf(const PasswdTextEdit* edit)
{
    return edit->realPlainText();
}

void setText(QLineEdit* edit, const QString& text)
{
    edit->setText(text);
}
void setText(PasswdLineEdit* edit, const QString& text)
{
    edit->setRealText(text);
}
void setText(HTextEdit* edit, const QString& text)
{
    edit->setPlainText(text);
}
void setText(PasswdTextEdit* edit, const QString& text)
{
    edit->setRealPlainText(text);
}

template<class Edit> ConfigText::InField show(Edit* edit, const QString& stored)
{
    setText(edit, ConfigText::toShown(stored));
    return {stored, textOf(edit)};
}

} // namespace

RepoEditor::Config::Config(QGridLayout* layout)
{
    QWidget* const parent = layout->parentWidget();

    idEdit = new QLineEdit(parent);
    idEdit->setPalette(Colors::makeRequired(idEdit->palette()));
    addRow(layout, tr("Identifier"), idEdit, tr("Unique identifier for the repository"));
    connect(idEdit, &QLineEdit::textChanged, this,
            QOverload<const QString&>::of(&Config::valueChanged));

    nameEdit = new QLineEdit(parent);
    addRow(layout, tr("Name"), nameEdit, tr("Description of the repository"));
    connect(nameEdit, &QLineEdit::textChanged, this,
            QOverload<const QString&>::of(&Config::valueChanged));

    urlsEdit = new PasswdTextEdit(Repo::Vantry::urlsRegExp(), parent);
    addRow(layout, tr("URLs"), urlsEdit,
           tr("List of URLs to the repository.\n"
              "If more than one is specified, they all should be identical mirrors,\n"
              "and will provide redundancy if some URLs are unreachable."));
    letShrink(urlsEdit);
    urlsEdit->setTabChangesFocus(true);
    connect(urlsEdit, &QTextEdit::textChanged, this, QOverload<>::of(&Config::urlChanged));

    mirrorEdit = new PasswdLineEdit(Repo::Vantry::oneUrlRegExp(), parent);
    addRow(layout, tr("Mirror list URL"), mirrorEdit,
           tr("URL to a file containing a list of URLs to the repository."));
    connect(mirrorEdit, &QLineEdit::textChanged, this,
            QOverload<const QString&>::of(&Config::urlChanged));

    for (QWidget* box : {createAuth(parent), createOptions(parent), createFileInfo(parent)})
        layout->addWidget(box, layout->rowCount(), 0, 1, 2);
}

QWidget* RepoEditor::Config::createAuth(QWidget* parent)
{
    auto* box = new QGroupBox(tr("Vantry Authentication"), parent);
    auto* layout = new QGridLayout(box);

    authNameLabel = new QLabel(tr("Name"), box);
    authNameEdit = new QLineEdit(box);
    authNameEdit->setToolTip(
        tr("Authentication name for a repository using the vantry authentication method"));
    authNameEdit->setAccessibleName(tr("Name"));
    authPasswordLabel = new QLabel(tr("Password"), box);
    authPasswordEdit = new QLineEdit(box);
    authPasswordEdit->setEchoMode(QLineEdit::Password);
    authPasswordEdit->setAccessibleName(tr("Password"));
    authPasswordEdit->setToolTip(
        tr("Authentication password for a repository using the vantry authentication method"));

    int row = 0;
    for (const auto& [label, edit] :
         {std::pair(authNameLabel, authNameEdit), std::pair(authPasswordLabel, authPasswordEdit)}) {
        // The keys of a URL are plain text.
        label->setTextFormat(Qt::PlainText);
        layout->addWidget(label, row, 0);
        layout->addWidget(edit, row, 1);
        connect(edit, &QLineEdit::textEdited, this, &Config::authChanged);
        ++row;
    }
    return box;
}

QWidget* RepoEditor::Config::createOptions(QWidget* parent)
{
    auto* box = new QGroupBox(tr("Repository Options"), parent);
    auto* layout = new QVBoxLayout(box);

    auto* simple = new QHBoxLayout;
    layout->addLayout(simple);
    simple->addLayout(createSimpleOptions(box));
    simple->addStretch();

    auto* label = new QLabel(tr("Other Options:"), box);
    layout->addWidget(label);

    otherEdit = new HTextEdit(80, 3, box);
    label->setBuddy(otherEdit);
    otherEdit->setAcceptRichText(false);
    otherEdit->setFont(Fonts::makeBold(Fonts::makeFixed(otherEdit->font())));
    otherEdit->setToolTip(tr("Any other yum options for this repository.  See yum.conf(5)"));
    letShrink(otherEdit);
    otherEdit->setTabChangesFocus(true);
    layout->addWidget(otherEdit);
    connect(otherEdit, &QTextEdit::textChanged, this, QOverload<>::of(&Config::valueChanged));
    return box;
}

QLayout* RepoEditor::Config::createSimpleOptions(QWidget* parent)
{
    auto* layout = new QGridLayout;
    enabledCombo = new QComboBox(parent);
    addRow(layout, tr("Enabled"), enabledCombo,
           tr("Whether or not the repository is enabled for use"));
    gpgcheckCombo = new QComboBox(parent);
    addRow(layout, tr("Check GPG Keys"), gpgcheckCombo,
           tr("Whether or not GPG key signatures of packages from the repository are checked to "
              "ensure authenticity"));
    for (QComboBox* combo : {enabledCombo, gpgcheckCombo}) {
        combo->addItem(tr("No"), No);
        combo->addItem(tr("Default"), Default);
        combo->addItem(tr("Yes"), Yes);
        // The item in the middle gets longer.
        combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                QOverload<int>::of(&Config::valueChanged));
    }
    return layout;
}

QWidget* RepoEditor::Config::createFileInfo(QWidget* parent)
{
    auto* box = new QGroupBox(tr("Configuration File (expert)"), parent);
    auto* layout = new QHBoxLayout(box);

    auto* fileLabel = new QLabel(tr("File"), box);
    fileEdit = new QLineEdit(box);
    fileLabel->setBuddy(fileEdit);
    fileEdit->setToolTip(tr("Name of the yum configuration file into which to place this "
                            "repository configuration.\n"
                            "If left blank, defaults to the repository's identifier"));
    connect(fileEdit, &QLineEdit::textChanged, this,
            QOverload<const QString&>::of(&Config::valueChanged));

    auto* positionLabel = new QLabel(tr("Sort Position"), box);
    positionSpin = new QDoubleSpinBox(box);
    positionLabel->setBuddy(positionSpin);
    positionSpin->setToolTip(
        tr("A numeric sort key which determines the order of this repository configuration\n"
           "in a configuration file which contains multiple configurations"));
    positionSpin->setDecimals(1);
    positionSpin->setSingleStep(1.0);
    positionSpin->setMinimum(0.0);
    positionSpin->setValue(0.0);
    connect(positionSpin, &QDoubleSpinBox::textChanged, this,
            QOverload<const QString&>::of(&Config::valueChanged));

    for (QWidget* widget :
         {static_cast<QWidget*>(fileLabel), static_cast<QWidget*>(fileEdit),
          static_cast<QWidget*>(positionLabel), static_cast<QWidget*>(positionSpin)})
        layout->addWidget(widget);
    return box;
}

void RepoEditor::Config::setDefaults(bool enabled, bool gpgcheck)
{
    const auto text = [](bool value) {
        return tr("%1 %2").arg(tr("Default"), value ? tr("(Yes)") : tr("(No)"));
    };
    enabledCombo->setItemText(Default, text(enabled));
    gpgcheckCombo->setItemText(Default, text(gpgcheck));
}

void RepoEditor::Config::disable()
{
    setEntry(Repo::Entry());
    enableFields(false);
    authNameEdit->setEnabled(false);
    authPasswordEdit->setEnabled(false);
}

void RepoEditor::Config::setEntry(const Repo::Entry& entry)
{
    inhibit = true;
    id = show(idEdit, entry.id);
    name = show(nameEdit, entry.name);
    urls = show(urlsEdit, entry.baseurl);
    mirror = show(mirrorEdit, entry.mirrorlist);
    const bool hasAuth = showAuth(entry);
    enabledCombo->setCurrentIndex(entry.enabled);
    gpgcheckCombo->setCurrentIndex(entry.gpgcheck);
    other = show(otherEdit, entry.other);
    fileEdit->setText(entry.fileName);
    positionSpin->setValue(entry.filePosition);
    inhibit = false;

    enableFields(true);
    authNameEdit->setEnabled(hasAuth);
    authPasswordEdit->setEnabled(hasAuth);
}

Repo::Entry RepoEditor::Config::toEntry() const
{
    Repo::Entry entry;
    entry.id = id.stored(textOf(idEdit));
    entry.name = name.stored(textOf(nameEdit));
    entry.baseurl = urls.stored(textOf(urlsEdit));
    entry.mirrorlist = mirror.stored(textOf(mirrorEdit));
    entry.enabled = enabledCombo->currentIndex();
    entry.gpgcheck = gpgcheckCombo->currentIndex();
    entry.other = other.stored(textOf(otherEdit));
    entry.fileName = textOf(fileEdit);
    entry.filePosition = positionSpin->value();
    return entry;
}

bool RepoEditor::Config::setStatus(YumConfIO* conf, HFrameLabel* label) const
{
    const auto error = [label](const QString& text) {
        label->setPalette(Colors::makeError(label->palette()));
        label->setText(text);
        return true;
    };
    const auto warning = [label](const QString& text) {
        label->setPalette(Colors::makeWarning(label->palette()));
        label->setText(text);
        return true;
    };

    const Repo::Entry entry = toEntry();
    if (entry.id.isEmpty())
        return error(tr("No Identifier specified"));
    if (entry.baseurl.isEmpty() && entry.mirrorlist.isEmpty())
        return warning(tr("No URLs or Mirror list URL specified"));

    const QString& file = entry.fileName;
    if (!file.isEmpty() && file != QFile::decodeName(conf->fileName())) {
        const bool inDirectory = std::any_of(
            conf->reposDirs.cbegin(), conf->reposDirs.cend(), [&file](const QString& directory) {
                return file.startsWith(YumConfIO::repoDirPath(directory) + QLatin1Char('/'));
            });
        if (!inDirectory)
            return warning(tr("File is not in any reposdir directory"));
        if (!file.endsWith(QLatin1String(".repo")))
            return warning(tr("File lacks .repo suffix"));
    }

    QString nameKey;
    QString user;
    QString passwordKey;
    QString password;
    if (Repo::Vantry::getAuth(entry, nameKey, user, passwordKey, password)) {
        if (user.isEmpty())
            return warning(tr("No Vantry Authentication Name specified"));
        if (password.isEmpty())
            return warning(tr("No Vantry Authentication Password specified"));
    }
    return false;
}

void RepoEditor::Config::setFocusOnIdentifier()
{
    idEdit->setFocus();
}

void RepoEditor::Config::authChanged(const QString&)
{
    inhibit = true;
    const Repo::Entry entry = toEntry();
    const auto replaced = [this](const QString& url) {
        // What was encoded and no UTF-8 stands there as it is now.
        return ConfigText::encodedUnlessUtf8(
            Repo::Vantry::replaceAuth(url, authName.stored(authNameEdit->text()),
                                      authPassword.stored(authPasswordEdit->text())));
    };
    urls = show(urlsEdit, replaced(entry.baseurl));
    mirror = show(mirrorEdit, replaced(entry.mirrorlist));
    inhibit = false;
    Q_EMIT changed();
}

void RepoEditor::Config::urlChanged()
{
    if (inhibit)
        return;
    const bool hasAuth = showAuth(toEntry());
    authNameEdit->setEnabled(hasAuth);
    authPasswordEdit->setEnabled(hasAuth);
    Q_EMIT changed();
}

void RepoEditor::Config::urlChanged(const QString&)
{
    urlChanged();
}

void RepoEditor::Config::valueChanged()
{
    if (!inhibit)
        Q_EMIT changed();
}

void RepoEditor::Config::valueChanged(const QString&)
{
    valueChanged();
}

void RepoEditor::Config::valueChanged(int)
{
    valueChanged();
}

bool RepoEditor::Config::showAuth(const Repo::Entry& entry)
{
    QString nameKey;
    QString user;
    QString passwordKey;
    QString password;
    const bool found = Repo::Vantry::getAuth(entry, nameKey, user, passwordKey, password);
    authNameLabel->setText(nameKey.isEmpty() ? tr("Name") : ConfigText::toShown(nameKey));
    authPasswordLabel->setText(passwordKey.isEmpty() ? tr("Password")
                                                     : ConfigText::toShown(passwordKey));
    authName = show(authNameEdit, user);
    authPassword = show(authPasswordEdit, password);
    return found;
}

/// All but the two of the vantry method, which depend on the URLs.
void RepoEditor::Config::enableFields(bool enabled)
{
    for (QWidget* field : {static_cast<QWidget*>(idEdit), static_cast<QWidget*>(nameEdit),
                           static_cast<QWidget*>(urlsEdit), static_cast<QWidget*>(mirrorEdit),
                           static_cast<QWidget*>(enabledCombo),
                           static_cast<QWidget*>(gpgcheckCombo), static_cast<QWidget*>(otherEdit),
                           static_cast<QWidget*>(fileEdit), static_cast<QWidget*>(positionSpin)})
        field->setEnabled(enabled);
}
