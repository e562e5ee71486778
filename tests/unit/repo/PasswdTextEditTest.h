// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/PasswdTextEdit.h"
#include "repo/Vantry.h"
#include "unit/repo/PasswdWatcher.h"

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QFontInfo>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QTextBlock>
#include <QVBoxLayout>

#include <memory>

// A query form, then a path form, each a line.
inline const QString one = QStringLiteral("http://host/vantry?a=b&c=");
inline const QString behindOne = QStringLiteral("&path=/x\n");
inline const QString two = QStringLiteral("http://host/rhel/a=b/c=");
inline const QString behindTwo = QStringLiteral("/y");

inline QString lines(const QString& first, const QString& second)
{
    return one + first + behindOne + two + second + behindTwo;
}

/// A password field in a window, with the focus.
class PasswdTextEditTest : public QObject
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
    QString shown(int first, int second) const { return lines(mask(first), mask(second)); }
    void keys(int count, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        while (count-- > 0)
            QTest::keyClick(edit, key, modifiers);
    }
    int position() const { return edit->textCursor().position(); }
    /// Puts the cursor to a position by keys.
    void go(int where)
    {
        keys(1, Qt::Key_Home, Qt::ControlModifier);
        keys(where, Qt::Key_Right);
        QCOMPARE(position(), where);
    }
    /// Where a character shows.
    QPoint place(int where)
    {
        QTextCursor cursor = edit->textCursor();
        cursor.setPosition(where);
        return edit->cursorRect(cursor).center();
    }

    std::unique_ptr<QWidget> window;
    PasswdTextEdit* edit = nullptr;
    QLineEdit* other = nullptr;
    const int inOne = one.size();
    /// Start of the second password where the first has six letters.
    const int inTwo = one.size() + 6 + behindOne.size() + two.size();
};

inline void PasswdTextEditTest::init()
{
    window = std::make_unique<QWidget>();
    auto* box = new QVBoxLayout(window.get());
    edit = new PasswdTextEdit(Repo::Vantry::urlsRegExp(), nullptr);
    box->addWidget(edit);
    other = new QLineEdit;
    box->addWidget(other);
    window->resize(800, 200);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    edit->setFocus();
    edit->setRealPlainText(lines("hidden", "covert"));
    QApplication::clipboard()->clear();
}

inline void PasswdTextEditTest::cleanup()
{
    window.reset();
}
