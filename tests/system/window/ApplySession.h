// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "WindowSession.h"

#include "support/ProcessPerTest.h"

#include <QApplication>
#include <QFileInfo>
#include <QtTest>

/// QCOMPARE for lists of texts, which shows them whole.
#define COMPARE_LINES(actual, ...)                                                                 \
    QCOMPARE((actual).join('\n'), QStringList(__VA_ARGS__).join('\n'))

/// A person who marks packages, clicks Apply and answers the dialogs, on a system with more
/// packages than the demo's.
class ApplySession : public QObject, public WindowSession
{
public:
    /// Over the system that is made by command(), by default.
    explicit ApplySession(const QString& sandbox = ApplySession::sandbox());
    ~ApplySession() override;

    /// Where the system is made, and what Python runs to make and serve it.
    static QString sandbox() { return QStringLiteral(VOK_SANDBOX "-apply"); }
    static QStringList command() { return {VOK_SOURCE "/tests/system/window/apply.py"}; }

    /// Shows the window with all packages and groups listed; false if that fails.
    bool begin();

    /// Marks a listed row by the menu of its Action cell. False where it isn't listed or the menu
    /// doesn't offer that.
    bool mark(const QString& name, const QString& action, const QString& arch = QString());
    /// "Install name" and so on for each row that is marked, sorted.
    QStringList marks();

    /// Expects the review, and keeps what it says in `review`.
    DialogDriver::Expectation& expectReview(const QString& answer = QStringLiteral("OK"));
    /// Clicks Apply and waits until all is over. False where the dialogs weren't those expected.
    bool apply();
    /// The same, with the review as the only dialog.
    bool applyAndAnswer(const QString& answer = QStringLiteral("OK"));
    /// The same, with an error dialog behind the review, kept in `told`.
    bool applyAndFail();

    /// The lines of the last review, each heading's sorted, without tabs and without the line on
    /// the size of the download.
    QStringList reviewed() const;
    /// The text of that line behind its colon.
    QString downloadSize() const;
    /// All that the log has, at its highest level of detail.
    QString wholeLog();

    /// What the rpm database of the root has, as name-[epoch:]version-release.architecture, sorted.
    QStringList installed() const;
    /// What came ("+") and went ("-") since the last call, or since begin(), sorted.
    QStringList changes();

    /// Tells what isn't as it should be when an Apply is over: controls, progress bars, the lock,
    /// the terminal. Empty where all is well.
    QString unsettled();
    /// unsettled(), and the same for the log: whether it has all that was told last.
    QString unlogged();

    QString review;
    QString told;
    /// What the bar of the items said since the start, "Installing edwin" and so on, each once.
    QStringList activities;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QStringList before;
    /// What the driver of the dialogs had to report during an Apply, whose log takes all output.
    QStringList failures;
    bool applying = false;
};

/// main() of the tests of Apply.
template<typename Tests> int runApplyTests(int argc, char** argv)
{
    QApplication app(argc, argv);
    // The rpm database is forced to the disk again and again, which takes long where others use it.
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
        qputenv("TMPDIR", "/dev/shm");
    SandboxServer server(ApplySession::sandbox(), ApplySession::command());
    if (!server.start())
        return 1;
    Tests tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
