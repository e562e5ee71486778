// SPDX-License-Identifier: GPL-2.0-or-later
#include "EveryWindow.h"

#include "shell/DefaultStyle.h"
#include "shell/Language.h"
#include "support/ProcessPerTest.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QScrollArea>
#include <QtTest>

#include <cmath>

/// Whether windows fit on small screens and nothing in them is cut.
class TestGeometry : public QObject
{
    Q_OBJECT

private:
    static bool scrolls(const QWidget* widget)
    {
        for (const QWidget* around = widget->parentWidget(); around && !widget->isWindow();
             around = around->parentWidget()) {
            if (qobject_cast<const QAbstractScrollArea*>(around))
                return true;
            if (around->isWindow())
                break;
        }
        return false;
    }

    /// Texts that have less room than they want, and can't be scrolled.
    static QStringList cut(const QWidget* window)
    {
        QStringList found;
        const auto children = window->findChildren<QWidget*>();
        for (const QWidget* widget : children) {
            const auto* label = qobject_cast<const QLabel*>(widget);
            const auto* button = qobject_cast<const QAbstractButton*>(widget);
            const auto* box = qobject_cast<const QComboBox*>(widget);
            const bool shows = (label && !label->text().isEmpty()) ||
                               (button && !button->text().isEmpty()) || box ||
                               qobject_cast<const QAbstractSpinBox*>(widget);
            if (!shows || !widget->isVisible() || widget->window() != window || scrolls(widget))
                continue;
            QSize wanted = widget->sizeHint();
            // Labels of more than one line say how high they are at their width.
            if (label && label->wordWrap())
                wanted = QSize(0, label->heightForWidth(label->width()));
            // A message box whose size isn't a whole number of pixels gives its text a point less,
            // all of which is between the lines.
            const qreal scale = widget->devicePixelRatioF();
            if (label && !qFuzzyCompare(scale, std::round(scale)))
                wanted.rheight() -= 1;
            const QRect seen(widget->mapTo(window, QPoint()), widget->size());
            if (wanted.width() > widget->width() || wanted.height() > widget->height() ||
                !window->rect().contains(seen))
                found << QStringLiteral("%1 wants %2x%3, has %4x%5 at %6,%7: ")
                                 .arg(QLatin1String(widget->metaObject()->className()))
                                 .arg(wanted.width())
                                 .arg(wanted.height())
                                 .arg(widget->width())
                                 .arg(widget->height())
                                 .arg(seen.x())
                                 .arg(seen.y()) +
                             (label    ? label->text().left(60)
                              : button ? button->text()
                                       : widget->objectName());
        }
        return found;
    }

    void walk(bool german)
    {
        const QString pictures = qEnvironmentVariable("VOK_PICTURES");
        QStringList wrong;
        EveryWindow round([&](QWidget* window, const QString& name) {
            if (!window->isVisible())
                return;
            if (!pictures.isEmpty())
                window->grab().save(
                    QStringLiteral("%1/%2-%3.png").arg(pictures, german ? "de" : "en", name));
            const QSize screen = window->screen()->availableSize();
            const QSize size = window->frameGeometry().size();
            if (size.width() > screen.width() || size.height() > screen.height())
                wrong << QStringLiteral("%1 is %2x%3, the screen %4x%5")
                             .arg(name)
                             .arg(size.width())
                             .arg(size.height())
                             .arg(screen.width())
                             .arg(screen.height());
            for (const QString& text : cut(window))
                wrong << name + ": " + text;
        });
        if (german) {
            qputenv("LC_ALL", "de_DE.UTF-8");
            qunsetenv("LANGUAGE");
            Language::load(*qApp);
        }
        QVERIFY(round.walk());
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

private Q_SLOTS:
    void everyWindowFitsTheScreenAndCutsNothing() { walk(false); }
#ifdef VOK_TRANSLATIONS
    void everyGermanWindowFitsTheScreenAndCutsNothing()
    {
        walk(true);
    }
#endif
};

int main(int argc, char** argv)
{
    const DefaultStyle style(argc, argv);
    QApplication app(argc, argv);
    style.set(app, QStringLiteral("plastique"));
    TestGeometry tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Geometry.moc"
