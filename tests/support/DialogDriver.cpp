// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/DialogDriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

namespace
{

constexpr int pollMilliseconds = 5;

QString withoutMnemonic(QString text)
{
    return text.remove(QLatin1Char('&'));
}

} // namespace

DialogDriver::Expectation& DialogDriver::Expectation::text(const QString& text)
{
    m_text = text;
    return *this;
}

DialogDriver::Expectation& DialogDriver::Expectation::textContains(const QString& part)
{
    m_part = part;
    return *this;
}

DialogDriver::Expectation& DialogDriver::Expectation::act(std::function<void(QWidget*)> action)
{
    m_action = std::move(action);
    return *this;
}

DialogDriver::Expectation& DialogDriver::Expectation::press(const QString& button)
{
    m_button = button;
    return *this;
}

DialogDriver::Expectation& DialogDriver::Expectation::pressKey(Qt::Key key)
{
    m_key = key;
    return *this;
}

DialogDriver::Expectation& DialogDriver::Expectation::leave()
{
    m_leave = true;
    return *this;
}

DialogDriver::DialogDriver()
    : m_reporter(
          [](const QString& message) { QTest::qFail(qPrintable(message), __FILE__, __LINE__); })
{
    qApp->installEventFilter(this);
}

DialogDriver::~DialogDriver()
{
    verify();
}

DialogDriver::Expectation& DialogDriver::expect(const QString& title)
{
    m_expected.emplace_back();
    m_expected.back().m_title = title;
    return m_expected.back();
}

bool DialogDriver::waitUntilDone(int milliseconds)
{
    if (QTest::qWaitFor([this] { return m_expected.empty() && m_busy == 0; }, milliseconds))
        return true;
    if (m_busy > 0)
        report(QStringLiteral("a dialog is still open"));
    verify();
    return false;
}

void DialogDriver::verify()
{
    for (const Expectation& expectation : m_expected)
        report(QStringLiteral("the dialog \"%1\" never came").arg(expectation.m_title));
    m_expected.clear();
}

void DialogDriver::setReporter(std::function<void(const QString&)> reporter)
{
    m_reporter = std::move(reporter);
}

void DialogDriver::setPatience(int milliseconds)
{
    m_patience = milliseconds;
}

QStringList DialogDriver::textsIn(const QWidget* window)
{
    QStringList texts;
    if (const auto* box = qobject_cast<const QMessageBox*>(window))
        texts << box->text() << box->informativeText();
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        if (label->isVisible())
            texts << label->text();
    }
    for (const QTextEdit* edit : window->findChildren<QTextEdit*>()) {
        if (edit->isVisible())
            texts << edit->toPlainText();
    }
    for (const QPlainTextEdit* edit : window->findChildren<QPlainTextEdit*>()) {
        if (edit->isVisible())
            texts << edit->toPlainText();
    }
    texts.removeAll(QString());
    return texts;
}

bool DialogDriver::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && !event->spontaneous() && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        // The window is met in its own event loop, when it is complete.
        if (widget->isWindow() && widget->isModal()) {
            const QPointer<QWidget> window(widget);
            QTimer::singleShot(0, this, [this, window] { meet(window); });
        }
    }
    return QObject::eventFilter(watched, event);
}

void DialogDriver::meet(const QPointer<QWidget>& window)
{
    if (m_expected.empty()) {
        const bool open = window && window->isVisible();
        report(open ? QStringLiteral("a dialog that nobody expected: \"%1\": %2")
                          .arg(window->windowTitle(), textsIn(window).join(QLatin1String(" | ")))
                    : QStringLiteral("a dialog that nobody expected came and went"));
        sendAway(window);
        return;
    }
    const Expectation expectation = m_expected.front();
    m_expected.pop_front();
    ++m_busy;
    drive(window, expectation);
    --m_busy;
}

void DialogDriver::drive(const QPointer<QWidget>& window, const Expectation& expectation)
{
    if (!window || !window->isVisible()) {
        report(QStringLiteral("the dialog \"%1\" went before anybody could use it")
                   .arg(expectation.m_title));
        return;
    }
    const QString wrong = mismatch(window, expectation);
    if (!wrong.isEmpty()) {
        report(wrong);
        sendAway(window);
        return;
    }
    if (expectation.m_action)
        expectation.m_action(window);
    if (expectation.m_leave) {
        ++m_driven;
    } else if (press(window, expectation)) {
        awaitEnd(window, expectation.m_title);
    } else {
        sendAway(window);
    }
}

QString DialogDriver::mismatch(const QWidget* window, const Expectation& expectation) const
{
    if (window->windowTitle() != expectation.m_title) {
        return QStringLiteral("expected the dialog \"%1\", but \"%2\" came: %3")
            .arg(expectation.m_title, window->windowTitle(),
                 textsIn(window).join(QLatin1String(" | ")));
    }
    const QStringList texts = textsIn(window);
    if (!expectation.m_text.isEmpty() && !texts.contains(expectation.m_text)) {
        return QStringLiteral("expected the text \"%1\" in the dialog \"%2\", which says: %3")
            .arg(expectation.m_text, expectation.m_title, texts.join(QLatin1String(" | ")));
    }
    if (!expectation.m_part.isEmpty() && texts.filter(expectation.m_part).isEmpty()) {
        return QStringLiteral("expected a text with \"%1\" in the dialog \"%2\", which says: %3")
            .arg(expectation.m_part, expectation.m_title, texts.join(QLatin1String(" | ")));
    }
    return QString();
}

bool DialogDriver::press(const QPointer<QWidget>& window, const Expectation& expectation)
{
    if (expectation.m_key != Qt::Key_unknown) {
        QTest::keyClick(window.data(), expectation.m_key);
        return true;
    }
    QStringList others;
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
        if (!button->isVisible())
            continue;
        const QString text = withoutMnemonic(button->text());
        if (text != withoutMnemonic(expectation.m_button)) {
            others << text;
            continue;
        }
        if (!button->isEnabled()) {
            report(QStringLiteral("the button \"%1\" of the dialog \"%2\" is disabled")
                       .arg(text, expectation.m_title));
            return false;
        }
        QTest::mouseClick(button, Qt::LeftButton);
        return true;
    }
    report(QStringLiteral("no button \"%1\" in the dialog \"%2\", only: %3")
               .arg(expectation.m_button, expectation.m_title, others.join(QLatin1String(" | "))));
    return false;
}

void DialogDriver::awaitEnd(const QPointer<QWidget>& window, const QString& title)
{
    const auto gone = [window] { return !window || !window->isVisible(); };
    if (gone()) {
        ++m_driven;
        return;
    }
    // From here on the dialog's own event loop runs on: this function must return for it to end.
    ++m_busy;
    auto* timer = new QTimer(this);
    QElapsedTimer since;
    since.start();
    connect(timer, &QTimer::timeout, this, [this, timer, since, window, title, gone] {
        if (!gone() && since.elapsed() < m_patience)
            return;
        timer->deleteLater();
        timer->stop();
        --m_busy;
        if (gone()) {
            ++m_driven;
        } else {
            report(QStringLiteral("the dialog \"%1\" did not go").arg(title));
            sendAway(window);
        }
    });
    timer->start(pollMilliseconds);
}

void DialogDriver::sendAway(const QPointer<QWidget>& window)
{
    // As the user would first; a message box without an escape button stays, and other dialogs may.
    if (window)
        window->close();
    auto* dialog = qobject_cast<QDialog*>(window.data());
    if (dialog && dialog->isVisible())
        dialog->reject();
    if (window && window->isVisible())
        window->hide();
}

void DialogDriver::report(const QString& message)
{
    m_reporter(message);
}
