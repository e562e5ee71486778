// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QDialog>
#include <QEventLoop>

class QLabel;
class QLineEdit;
class QPushButton;

namespace Repo
{
struct Entry;
}

namespace RepoAuth
{

/// Asks for the name and the password of one repository after the other. It stays on the screen
/// between two of them: who asked hides it at the end.
class Dialog : public QDialog
{
    Q_OBJECT

public:
    enum Result {
        SkipAll = 0, ///< Escape and the frame's close button too
        Ok = 1,
        ApplyAll = 2,
        ApplyHost = 3,
        Disable = 4,
        Quit = 5
    };

    explicit Dialog(QWidget* parent);

    /// Comes back when the user has answered; result() is the answer then. The URLs of `entry`,
    /// which is borrowed until then, are changed by Ok, ApplyAll and ApplyHost.
    void exec(Repo::Entry* entry);

    /// Without a busy cursor for as long as it is shown.
    void setVisible(bool visible) override;
    QSize sizeHint() const override;

public Q_SLOTS:
    /// Gives the answer. The window stays where it is.
    void done(int result) override;

private Q_SLOTS:
    /// Shows the URLs as they would be.
    void authChanged(const QString& text);
    void handleQuit();
    void handleDisable();
    void handleSkipAll();
    void handleApplyAll();
    void handleApplyHost();
    void handleOK();

private:
    /// Puts what was typed into the entry's URLs.
    void setUrls();
    void answer(Result result);
    void answerWithUrls(Result result);
    void enableAnswers(bool enabled);

    QLabel* idLabel;
    QLabel* nameLabel;
    QLabel* urlsLabel;
    QLabel* mirrorlistLabel;
    QLabel* authNameKey;
    QLineEdit* authNameEdit;
    QLabel* passwordKey;
    QLineEdit* passwordEdit;
    QPushButton* quitButton;
    QPushButton* disableButton;
    QPushButton* skipAllButton;
    QPushButton* applyAllButton;
    QPushButton* applyHostButton;
    QPushButton* okButton;
    Repo::Entry* entry = nullptr; ///< being asked about; not owned
    bool answered = false;        ///< until the next question
    QEventLoop loop;
};

} // namespace RepoAuth
