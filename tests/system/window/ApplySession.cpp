// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"

#include "progress/HProgressBar.h"
#include "table/PackageTable.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QWindow>

namespace
{

void failNow(const QString& message)
{
    QTest::qFail(qPrintable(message), __FILE__, __LINE__);
}

const char* const actionNames[] = {"Update", "Install", "Remove"};

/// Whether `text` has all lines of `part`, in their order.
bool hasLines(const QString& text, const QString& part)
{
    int from = 0;
    const QStringList lines = part.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        from = text.indexOf(line.trimmed(), from);
        if (from < 0)
            return false;
    }
    return true;
}

} // namespace

ApplySession::ApplySession(const QString& sandbox)
    : WindowSession(sandbox)
{
    dialogs.setReporter([this](const QString& message) {
        if (applying)
            failures << message;
        else
            failNow(message);
    });
}

ApplySession::~ApplySession()
{
    dialogs.setReporter(failNow);
}

bool ApplySession::begin()
{
    before = installed();
    if (!start())
        return false;
    select("state", PackageTable::ViewAll);
    check("groups", true);
    find<HProgressBar>("itemBar")->installEventFilter(this);
    return true;
}

bool ApplySession::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint) {
        const QString text = static_cast<HProgressBar*>(watched)->text();
        const QString activity = text.section(QStringLiteral(" ("), 0, 0);
        if (!activity.isEmpty() && !activities.contains(activity))
            activities << activity;
    }
    return false;
}

bool ApplySession::mark(const QString& name, const QString& action, const QString& arch)
{
    const QAbstractItemModel* rows = table()->model();
    for (int row = 0; row < rows->rowCount(); ++row) {
        const auto text = [&](int column) { return rows->index(row, column).data().toString(); };
        if (text(PackageTable::ColumnName) != name ||
            (!arch.isEmpty() && text(PackageTable::ColumnArchitecture) != arch))
            continue;
        return chooseFromMenu(rows->index(row, PackageTable::ColumnAction), action)
            .contains(action);
    }
    return false;
}

QStringList ApplySession::marks()
{
    QStringList marked;
    const QAbstractItemModel* rows = model();
    for (int row = 0; row < rows->rowCount(); ++row) {
        const auto* entry =
            rows->index(row, PackageTable::ColumnName).data(Qt::UserRole).value<Package::Entry*>();
        if (entry->action != Package::ActionNone)
            marked << QLatin1String(actionNames[entry->action]) + QLatin1Char(' ') + entry->name;
    }
    marked.sort();
    return marked;
}

DialogDriver::Expectation& ApplySession::expectReview(const QString& answer)
{
    review.clear();
    return dialogs.expect(QStringLiteral("Apply"))
        .act([this](QWidget* dialog) {
            // Nobody answers before a window has the keyboard, which would get lost thereby.
            const auto active = [dialog] {
                return QGuiApplication::focusWindow() == dialog->windowHandle();
            };
            if (!QTest::qWaitFor(active))
                failures << QStringLiteral("the review has no focus");
            review = DialogDriver::textsIn(dialog).join(QLatin1Char('\n'));
        })
        .press(answer);
}

bool ApplySession::apply()
{
    applying = true;
    click("apply");
    dialogs.waitUntilDone();
    applying = false;
    const bool good = failures.isEmpty();
    if (!good)
        failNow(failures.join(QLatin1Char('\n')));
    failures.clear();
    return good;
}

bool ApplySession::applyAndAnswer(const QString& answer)
{
    expectReview(answer);
    return apply();
}

bool ApplySession::applyAndFail()
{
    expectReview();
    expectError(told);
    return apply();
}

QStringList ApplySession::reviewed() const
{
    QStringList lines;
    QStringList members;
    const auto close = [&] {
        members.sort();
        lines += members;
        members.clear();
    };
    for (const QString& line : review.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(QLatin1Char('\t'))) {
            members << line.mid(1);
        } else if (!line.startsWith(QLatin1String("Total download size: "))) {
            close();
            lines << line;
        }
    }
    close();
    return lines;
}

QString ApplySession::downloadSize() const
{
    return review.section(QStringLiteral("Total download size: "), 1).section('\n', 0, 0);
}

QString ApplySession::wholeLog()
{
    log();
    logWindow()->findChild<QSpinBox*>()->setValue(10);
    return logText();
}

QStringList ApplySession::installed() const
{
    QProcess rpm;
    rpm.start(QStringLiteral("rpm"),
              {"--dbpath", path("var/lib/rpm"), "-qa", "--qf",
               "%{name}-%|epoch?{%{epoch}:}:{}|%{version}-%{release}.%{arch}\n"});
    rpm.waitForFinished();
    QStringList lines =
        QString::fromUtf8(rpm.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.sort();
    return lines;
}

QStringList ApplySession::changes()
{
    const QStringList now = installed();
    QStringList changed;
    for (const QString& package : now) {
        if (!before.contains(package))
            changed << QLatin1Char('+') + package;
    }
    for (const QString& package : qAsConst(before)) {
        if (!now.contains(package))
            changed << QLatin1Char('-') + package;
    }
    before = now;
    return changed;
}

QString ApplySession::unsettled()
{
    if (!ready())
        return QStringLiteral("the controls can't be used");
    for (const char* name : {"totalBar", "itemBar"}) {
        const auto* bar = find<HProgressBar>(name);
        if (bar->isEnabled() || !bar->text().isEmpty() || bar->value() > bar->minimum())
            return QStringLiteral("%1 shows \"%2\"").arg(QLatin1String(name), bar->text());
    }
    if (!find<QWidget>("mainArea")->isAncestorOf(window().focusWidget()))
        return QStringLiteral("nothing in the window has the keyboard");
    if (QApplication::overrideCursor())
        return QStringLiteral("the cursor is busy");
    if (find<QPushButton>("apply")->isEnabled() != !marks().isEmpty())
        return QStringLiteral("the button Apply doesn't fit the marks");
    if (!locked())
        return QStringLiteral("the lock isn't held");
    for (const char* folder : {"tmp", "var/tmp"}) {
        const QStringList rest =
            QDir(path(folder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        if (!rest.isEmpty())
            return QStringLiteral("left in the root: ") + rest.join(QLatin1Char(' '));
    }
    if (!terminal().isEmpty())
        return QStringLiteral("on the terminal: ") + QString::fromLocal8Bit(terminal());
    return QString();
}

QString ApplySession::unlogged()
{
    const QString log = this->log();
    if (!hasLines(log, told))
        return QStringLiteral("not in the log: %1\nthe log:\n%2").arg(told, log);
    return unsettled();
}
