// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <deque>
#include <functional>

/// Plays the user in front of modal windows. As long as one exists it meets every modal window that
/// is shown: an expected one is checked and driven by its real buttons, any other fails the test
/// that met it and is sent away, so that no test hangs.
///
///     DialogDriver driver;
///     driver.expect("Clean").text("Really clean?").press("Yes");
///     window.clean();                  // comes back from the dialog by itself
///     QVERIFY(driver.waitUntilDone()); // where the dialog comes later, from the event loop
///
/// Windows are expected in the order of the calls. A window that never came fails the test when the
/// driver is verified, at the latest when it is destroyed. As a mere guard, make one without
/// expectations, for example as a local of the test function or between init() and cleanup().
class DialogDriver : public QObject
{
    Q_OBJECT

public:
    /// What is to be found in a modal window and done with it, built by chained calls.
    class Expectation
    {
    public:
        /// A text shown somewhere in the window: the whole text of a message box, a label or a text
        /// edit.
        Expectation& text(const QString& text);
        /// A part of such a text.
        Expectation& textContains(const QString& part);
        /// Runs before the button is pressed, to check or to fill in fields; the argument is the
        /// window.
        Expectation& act(std::function<void(QWidget*)> action);
        /// Presses the button of this text, "&" left out. The window must then go.
        Expectation& press(const QString& button);
        /// Presses a key instead, such as Escape. The window must then go.
        Expectation& pressKey(Qt::Key key);
        /// The window is neither pressed nor waited for: `act` or the test itself ends it.
        Expectation& leave();

    private:
        friend class DialogDriver;

        QString m_title;
        QString m_text;
        QString m_part;
        std::function<void(QWidget*)> m_action;
        QString m_button;
        Qt::Key m_key = Qt::Key_unknown;
        bool m_leave = false;
    };

    DialogDriver();
    ~DialogDriver() override;

    /// The next modal window has this title. The reference is good until the window came.
    Expectation& expect(const QString& title);

    /// Spins the event loop until all expected windows came and went; false, after a failure was
    /// reported, where that takes longer than `milliseconds`.
    bool waitUntilDone(int milliseconds = 5000);

    /// Reports the expected windows that have not come, and forgets them.
    void verify();

    /// How many windows came and were driven to their end without a failure.
    int driven() const { return m_driven; }

    /// Where failures go; by default they fail the running test.
    void setReporter(std::function<void(const QString&)> reporter);

    /// How long a window may take to go after its button was pressed.
    void setPatience(int milliseconds);

    /// All texts that a window shows: of message boxes, labels and text edits, those of hidden ones
    /// left out.
    static QStringList textsIn(const QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void meet(const QPointer<QWidget>& window);
    void drive(const QPointer<QWidget>& window, const Expectation& expectation);
    QString mismatch(const QWidget* window, const Expectation& expectation) const;
    bool press(const QPointer<QWidget>& window, const Expectation& expectation);
    void awaitEnd(const QPointer<QWidget>& window, const QString& title);
    void sendAway(const QPointer<QWidget>& window);
    void report(const QString& message);

    std::deque<Expectation> m_expected;
    std::function<void(const QString&)> m_reporter;
    int m_busy = 0; ///< windows that are being driven; one may lead to another on top of it
    int m_driven = 0;
    int m_patience = 5000;
};
