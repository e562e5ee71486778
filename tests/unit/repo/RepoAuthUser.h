// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "repo/RepoAuthDialog.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <deque>
#include <functional>

/// Plays the user who is asked for names and passwords. Each answer is given to one question; a
/// question without one fails the test and is sent away, and so do answers that nobody asked for.
class RepoAuthUser
{
public:
    using Answer = std::function<void(RepoAuth::Dialog&)>;

    RepoAuthUser()
    {
        QObject::connect(&timer, &QTimer::timeout, [this] { look(); });
        timer.start(5);
    }
    ~RepoAuthUser()
    {
        if (!answers.empty())
            QTest::qFail("the user wasn't asked often enough", __FILE__, __LINE__);
    }
    RepoAuthUser(const RepoAuthUser&) = delete;
    RepoAuthUser& operator=(const RepoAuthUser&) = delete;

    /// Types name and password, where they aren't empty, and presses a button.
    void answer(const char* button, const char* name = "", const char* password = "")
    {
        answers.emplace_back([=](RepoAuth::Dialog& dialog) {
            type(dialog, "authName", name);
            type(dialog, "password", password);
            press(dialog, button);
        });
    }
    void answer(Answer answer) { answers.push_back(std::move(answer)); }

    static void type(RepoAuth::Dialog& dialog, const char* edit, const char* text)
    {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(edit), QString::fromLatin1(text));
    }
    static QPushButton* button(const RepoAuth::Dialog& dialog, const QString& text)
    {
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text() == text)
                return button;
        }
        qFatal("no button %s", qPrintable(text));
    }
    static void press(RepoAuth::Dialog& dialog, const char* text)
    {
        QTest::mouseClick(button(dialog, QString::fromLatin1(text)), Qt::LeftButton);
    }
    static QString shown(const RepoAuth::Dialog& dialog, const char* label)
    {
        return dialog.findChild<QLabel*>(label)->text();
    }

    /// The identifiers that were asked about.
    QStringList asked;

private:
    void look()
    {
        auto* dialog = qobject_cast<RepoAuth::Dialog*>(QApplication::activeModalWidget());
        // In a nested loop, such as that of an answer which waits, the question is the same.
        if (busy || !dialog || !button(*dialog, QStringLiteral("OK"))->isEnabled())
            return;
        busy = true;
        asked << shown(*dialog, "id");
        if (answers.empty()) {
            QTest::qFail(qPrintable("unexpected question for " + asked.last()), __FILE__, __LINE__);
            dialog->reject();
        } else {
            const Answer next = answers.front();
            answers.pop_front();
            next(*dialog);
            if (button(*dialog, QStringLiteral("OK"))->isEnabled()) {
                QTest::qFail("the question stays", __FILE__, __LINE__);
                dialog->reject();
            }
        }
        busy = false;
    }

    QTimer timer;
    std::deque<Answer> answers;
    bool busy = false;
};
