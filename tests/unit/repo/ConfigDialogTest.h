// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "kit/Colors.h"
#include "kit/HFrameLabel.h"
#include "kit/HTextEdit.h"
#include "kit/ScreenLimit.h"
#include "repo/PasswdLineEdit.h"
#include "repo/PasswdTextEdit.h"
#include "repo/RepoEditorConfig.h"
#include "repo/RepoEditorConfigDialog.h"
#include "unit/repo/ConfigTree.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFontInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>

#include <memory>

inline const QString vantryUrl = QStringLiteral("http://host/vantry?user=me&token=hidden&path=/x");
inline const QString pathUrl = QStringLiteral("http://host/rhel/user=me/token=hidden/x");

/// The dialog for one entry, used by keyboard and mouse.
class ConfigDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    template<class T> T* field(const char* part) const
    {
        T* found = nullptr;
        for (T* candidate : dialog->findChildren<T*>())
            if (candidate->toolTip().contains(QLatin1String(part)))
                found = candidate;
        if (!found)
            qFatal("no field \"%s\"", part);
        return found;
    }
    QLineEdit* id() const { return field<QLineEdit>("Unique identifier"); }
    QLineEdit* name() const { return field<QLineEdit>("Description of"); }
    PasswdTextEdit* urls() const { return field<PasswdTextEdit>("List of URLs"); }
    PasswdLineEdit* mirror() const { return field<PasswdLineEdit>("URL to a file"); }
    QLineEdit* authName() const { return field<QLineEdit>("Authentication name"); }
    QLineEdit* authPassword() const { return field<QLineEdit>("Authentication password"); }
    QComboBox* enabled() const { return field<QComboBox>("repository is enabled"); }
    QComboBox* gpgcheck() const { return field<QComboBox>("GPG key"); }
    HTextEdit* other() const { return field<HTextEdit>("Any other yum"); }
    QLineEdit* file() const { return field<QLineEdit>("Name of the yum"); }
    QDoubleSpinBox* position() const { return field<QDoubleSpinBox>("sort key"); }
    QList<QWidget*> fields() const
    {
        return {id(),      name(),     urls(),  mirror(), authName(), authPassword(),
                enabled(), gpgcheck(), other(), file(),   position()};
    }
    HFrameLabel* status() const { return dialog->findChild<HFrameLabel*>(); }
    QPushButton* button(const QString& text) const
    {
        for (QPushButton* candidate : dialog->findChildren<QPushButton*>())
            if (candidate->text() == text)
                return candidate;
        qFatal("no button \"%s\"", qPrintable(text));
    }
    QStringList authLabels() const
    {
        QStringList texts;
        for (const QGroupBox* box : dialog->findChildren<QGroupBox*>())
            if (box->title() == QLatin1String("Vantry Authentication"))
                for (const QLabel* label : box->findChildren<QLabel*>())
                    texts.append(label->text());
        return texts;
    }
    void open()
    {
        dialog->setEntry(&entry);
        dialog->open();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    }
    void press(const QString& text) { QTest::mouseClick(button(text), Qt::LeftButton); }
    static void type(QWidget* into, const QString& text)
    {
        into->setFocus();
        QTest::keyClick(into, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(into, text);
    }
    static void clear(QWidget* into)
    {
        into->setFocus();
        QTest::keyClick(into, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(into, Qt::Key_Delete);
    }
    static QString mask(int length)
    {
        return QString(
            length, QChar(QApplication::style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter)));
    }

    std::unique_ptr<ConfigTree> tree;
    QList<YumRepoEnabled> options;
    QHash<QString, bool> used;
    std::unique_ptr<YumConfIO> conf;
    Repo::Entry entry;
    std::unique_ptr<RepoEditor::ConfigDialog> dialog;
};

inline void ConfigDialogTest::init()
{
    tree = std::make_unique<ConfigTree>();
    tree->makeDirectory(QStringLiteral("/etc/yum"));
    tree->write(QStringLiteral("/etc/yum/yum.conf"), "[main]\n");
    used.clear();
    conf = std::make_unique<YumConfIO>(options, used);
    conf->reposDirs = QStringList{QStringLiteral("/etc/yum.repos.d"), QStringLiteral("/more")};
    entry = Repo::Entry();
    entry.id = QStringLiteral("base");
    entry.name = QStringLiteral("Base packages");
    entry.baseurl = QStringLiteral("http://host/base\nhttp://other/base");
    entry.mirrorlist = QStringLiteral("http://mirrors/base");
    entry.enabled = 2;
    entry.gpgcheck = 0;
    entry.other = QStringLiteral("cost=5\npriority=3\n");
    entry.fileName =
        YumConfIO::repoDirPath(QStringLiteral("/etc/yum.repos.d")) + QStringLiteral("/base.repo");
    entry.filePosition = 2.5;
    dialog = std::make_unique<RepoEditor::ConfigDialog>(conf.get(), nullptr);
}

inline void ConfigDialogTest::cleanup()
{
    dialog.reset();
    conf.reset();
    tree.reset();
}
