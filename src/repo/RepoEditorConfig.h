// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/ConfigText.h"
#include "repo/YumConfIO.h"

#include <QObject>

class HFrameLabel;
class HTextEdit;
class PasswdLineEdit;
class PasswdTextEdit;
class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QLayout;
class QLineEdit;

namespace RepoEditor
{

/// The form for one repository entry. It is no widget itself: it puts its fields into a layout, and
/// deals with what they say.
///
/// Name and password of the vantry method are fields of their own, but only another view of the
/// URLs: there they are read, and there they are written.
class Config : public QObject
{
    Q_OBJECT

public:
    /// Fills `layout`, which must not be in a widget yet: twins of the password fields would
    /// otherwise come to lie on that widget.
    explicit Config(QGridLayout* layout);

    /// What the items "Default" stand for.
    void setDefaults(bool enabled, bool gpgcheck);

    /// Empties all fields and disables them until the next setEntry().
    void disable();

    void setEntry(const Repo::Entry& entry);
    Repo::Entry toEntry() const;

    /// Puts the first thing that is wrong with the fields into `label`; where nothing is, leaves
    /// the label alone and returns false.
    bool setStatus(YumConfIO* conf, HFrameLabel* label) const;

    void setFocusOnIdentifier();

public Q_SLOTS:
    void authChanged(const QString& text);
    void urlChanged();
    void urlChanged(const QString& text);
    void valueChanged();
    void valueChanged(const QString& text);
    void valueChanged(int index);

Q_SIGNALS:
    /// The user has changed something.
    void changed();

private:
    QWidget* createAuth(QWidget* parent);
    QWidget* createOptions(QWidget* parent);
    QLayout* createSimpleOptions(QWidget* parent);
    QWidget* createFileInfo(QWidget* parent);
    /// Shows name and password of the entry's URLs; true where it has some.
    bool showAuth(const Repo::Entry& entry);
    void enableFields(bool enabled);

    bool inhibit = false; ///< the program itself is changing fields
    QLineEdit* idEdit;
    QLineEdit* nameEdit;
    PasswdTextEdit* urlsEdit;
    PasswdLineEdit* mirrorEdit;
    QLabel* authNameLabel = nullptr;
    QLineEdit* authNameEdit = nullptr;
    QLabel* authPasswordLabel = nullptr;
    QLineEdit* authPasswordEdit = nullptr;
    QComboBox* enabledCombo = nullptr;
    QComboBox* gpgcheckCombo = nullptr;
    HTextEdit* otherEdit = nullptr;
    QLineEdit* fileEdit = nullptr;
    QDoubleSpinBox* positionSpin = nullptr;

    ConfigText::InField id;
    ConfigText::InField name;
    ConfigText::InField urls;
    ConfigText::InField mirror;
    ConfigText::InField authName;
    ConfigText::InField authPassword;
    ConfigText::InField other;
};

} // namespace RepoEditor
