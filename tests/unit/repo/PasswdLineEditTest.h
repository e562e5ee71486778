// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/PasswdLineEdit.h"
#include "repo/Vantry.h"
#include "unit/repo/PasswdWatcher.h"

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QFontInfo>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

inline const QString before = QStringLiteral("http://host/rhel/a=b/c=");
inline const QString behind = QStringLiteral("/x");

/// A password field in a window, with the focus.
class PasswdLineEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    QString mask(int length) const
    {
        return QString(length, QChar(edit->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter,
                                                              nullptr, edit)));
    }
    QString shown(int length) const { return before + mask(length) + behind; }
    void keys(int count, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        while (count-- > 0)
            QTest::keyClick(edit, key, modifiers);
    }
    /// Puts the cursor behind `index` characters of the password, by keys.
    void goInto(int index)
    {
        keys(1, Qt::Key_Home);
        keys(before.size() + index, Qt::Key_Right);
    }
    /// Where a character shows, in a text that isn't scrolled.
    QPoint place(int position)
    {
        edit->setCursorPosition(position);
        return edit->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    }

    std::unique_ptr<QWidget> window;
    PasswdLineEdit* edit = nullptr;
    QLineEdit* other = nullptr;
};

inline void PasswdLineEditTest::init()
{
    window = std::make_unique<QWidget>();
    auto* box = new QVBoxLayout(window.get());
    edit = new PasswdLineEdit(Repo::Vantry::oneUrlRegExp(), nullptr);
    box->addWidget(edit);
    other = new QLineEdit;
    box->addWidget(other);
    window->resize(800, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    edit->setFocus();
    edit->setRealText(before + QStringLiteral("hidden") + behind);
    QApplication::clipboard()->clear();
}

inline void PasswdLineEditTest::cleanup()
{
    window.reset();
}
