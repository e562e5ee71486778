// SPDX-License-Identifier: GPL-2.0-or-later
#include "DescribeBench.h"

#include "Measure.h"
#include "engine/YumIO.h"
#include "table/PackageTable.h"
#include "table/PackageTableModel.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextEdit>

#include <utility>

namespace
{

/// What one change takes until it can be seen.
double painted(QWidget* window, const std::function<void()>& change)
{
    QElapsedTimer clock;
    clock.start();
    change();
    QApplication::processEvents();
    window->repaint();
    return millisecondsOf(clock);
}

} // namespace

DescribeBench::DescribeBench(YumIO* yumIO, PackageTable::Model* model)
    : yumIO(yumIO)
    , model(model)
{
    qApp->installEventFilter(this);
}

DescribeBench::~DescribeBench() = default;

int DescribeBench::run()
{
    // Loading is another matter: the figures are those of what is there.
    if (!yumIO->collectFileLists() || !yumIO->collectOtherData())
        return 1;
    const auto nothing = [](QWidget*) {};
    // Fonts and styles are read with the first window.
    if (!describe(QStringLiteral("plain"), nothing))
        return 1;
    for (const char* const name : {"plain", "heavy", "wide", "odd", "versions"}) {
        const QByteArray prefix = QByteArray("describe.") + name;
        const auto look = [&](QWidget* dialog) {
            handle(prefix, dialog);
            if (qstrcmp(name, "heavy") == 0 || qstrcmp(name, "wide") == 0) {
                press(prefix + ".files", dialog, QStringLiteral("File List"));
                press(prefix + ".change-log", dialog, QStringLiteral("Change Log"));
            }
        };
        if (!describe(QLatin1String(name), look))
            return 1;
    }
    return 0;
}

bool DescribeBench::describe(const QString& package, const std::function<void(QWidget*)>& use)
{
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, PackageTable::ColumnName);
        if (index.data().toString() != package)
            continue;
        open(
            "describe." + package.toUtf8(), [&] { model->describe(index, nullptr); }, use);
        return true;
    }
    std::fprintf(stderr, "no package %s\n", qPrintable(package));
    return false;
}

void DescribeBench::open(const QByteArray& figure, const std::function<void()>& show,
                         const std::function<void(QWidget*)>& use)
{
    const auto outerFigure = std::exchange(this->figure, figure);
    const auto outerUse = std::exchange(this->use, use);
    clock.start();
    show();
    this->figure = outerFigure;
    this->use = outerUse;
}

bool DescribeBench::eventFilter(QObject* watched, QEvent* event)
{
    auto* dialog = qobject_cast<QDialog*>(watched);
    if (event->type() == QEvent::Show && dialog) {
        // Met in its own event loop.
        QTimer::singleShot(0, dialog, [this, dialog] {
            dialog->repaint();
            report((figure + ".open").constData(), millisecondsOf(clock), "ms");
            // It may open another dialog, which has its own.
            const auto mine = use;
            const QByteArray name = figure + ".close";
            mine(dialog);
            clock.start();
            dialog->accept();
            report(name.constData(), millisecondsOf(clock), "ms");
        });
    }
    return QObject::eventFilter(watched, event);
}

void DescribeBench::handle(const QByteArray& figure, QWidget* dialog)
{
    double slowest = 0;
    for (const QSize& size : {QSize(500, 400), QSize(1000, 700), QSize(1200, 950)})
        slowest = qMax(slowest, painted(dialog, [&] { dialog->resize(size); }));
    report((figure + ".resize").constData(), slowest, "ms");

    slowest = 0;
    const auto areas = dialog->findChildren<QAbstractScrollArea*>();
    // The first ones are as good as any of the five hundred.
    for (QAbstractScrollArea* area : areas.mid(0, 3)) {
        for (QScrollBar* bar : {area->verticalScrollBar(), area->horizontalScrollBar()}) {
            for (int part = 0; part <= 4; ++part)
                slowest = qMax(slowest,
                               painted(dialog, [&] { bar->setValue(bar->maximum() / 4 * part); }));
            slowest = qMax(slowest, painted(dialog, [&] {
                               bar->triggerAction(QAbstractSlider::SliderPageStepSub);
                           }));
            bar->setValue(0);
        }
    }
    report((figure + ".scroll").constData(), slowest, "ms");
}

void DescribeBench::press(const QByteArray& figure, QWidget* dialog, const QString& title)
{
    const auto buttons = dialog->findChildren<QPushButton*>();
    QList<QPushButton*> shows;
    for (QPushButton* button : buttons) {
        if (button->text() == QLatin1String("Show"))
            shows += button;
    }
    QPushButton* button = shows.at(title == QLatin1String("File List") ? 0 : 1);
    open(
        figure, [&] { button->click(); },
        [&](QWidget* text) {
            if (!text->windowTitle().endsWith(title))
                std::_Exit(1);
            handle(figure, text);
        });
}
