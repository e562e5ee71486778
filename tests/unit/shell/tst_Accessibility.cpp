// SPDX-License-Identifier: GPL-2.0-or-later
#include "EveryWindow.h"

#include "shell/Language.h"
#include "support/ProcessPerTest.h"
#include "table/PackageTable.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDirIterator>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QProgressBar>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTableView>
#include <QTextEdit>
#include <QtTest>

/// Whether everything can be found by name, reached by keys and told apart without colours.
class TestAccessibility : public QObject
{
    Q_OBJECT

private:
    static QString describe(const QWidget* widget)
    {
        QString found = QLatin1String(widget->metaObject()->className());
        if (!widget->objectName().isEmpty())
            found += ' ' + widget->objectName();
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
            found += " \"" + button->text() + '"';
        if (!widget->toolTip().isEmpty())
            found += " (" + widget->toolTip().section('\n', 0, 0) + ')';
        return found;
    }

    /// Parts of other widgets, which speak for them.
    static bool isPart(const QWidget* widget)
    {
        for (const QWidget* around = widget->parentWidget(); around;
             around = around->parentWidget()) {
            if (qobject_cast<const QAbstractSpinBox*>(around) ||
                qobject_cast<const QComboBox*>(around) ||
                qobject_cast<const QAbstractItemView*>(around) ||
                qobject_cast<const QMenu*>(around))
                return true;
            if (around->isWindow())
                break;
        }
        return false;
    }

    static bool isControl(const QWidget* widget)
    {
        return (widget->focusPolicy() & Qt::TabFocus) ||
               qobject_cast<const QAbstractButton*>(widget) ||
               qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget) ||
               qobject_cast<const QAbstractSpinBox*>(widget) ||
               qobject_cast<const QTextEdit*>(widget) ||
               qobject_cast<const QAbstractItemView*>(widget);
    }

    static QList<QWidget*> controls(const QWidget* window)
    {
        QList<QWidget*> found;
        const auto children = window->findChildren<QWidget*>();
        for (QWidget* widget : children) {
            if (widget->isVisible() && widget->window() == window && !isPart(widget) &&
                isControl(widget))
                found << widget;
        }
        return found;
    }

    static QString nameOf(QWidget* widget)
    {
        QAccessibleInterface* told = QAccessible::queryAccessibleInterface(widget);
        return told ? told->text(QAccessible::Name) : QString();
    }

    static QString mnemonicOf(const QString& text)
    {
        return QKeySequence::mnemonic(text).toString();
    }

    /// Keys that more than one thing in the window or menu has.
    static QStringList shared(const QMap<QString, QStringList>& users)
    {
        QStringList found;
        for (auto key = users.cbegin(); key != users.cend(); ++key) {
            if (key.value().size() > 1)
                found << key.key() + ": " + key.value().join(", ");
        }
        return found;
    }

    static QStringList sharedInMenu(const QMenu* menu)
    {
        QMap<QString, QStringList> users;
        const auto actions = menu->actions();
        for (const QAction* action : actions) {
            const QString key = mnemonicOf(action->text());
            if (!key.isEmpty())
                users[key] << action->text();
        }
        return shared(users);
    }

    static QStringList sharedKeys(const QWidget* window)
    {
        if (const auto* menu = qobject_cast<const QMenu*>(window))
            return sharedInMenu(menu);
        QMap<QString, QStringList> users;
        const auto add = [&users](const QString& key, const QString& user) {
            if (!key.isEmpty())
                users[key] << user;
        };
        QStringList found;
        const auto menus = window->findChildren<QMenu*>();
        for (const QMenu* menu : menus) {
            found << sharedInMenu(menu);
            const auto actions = menu->actions();
            for (const QAction* action : actions)
                add(action->shortcut().toString(), action->text());
        }
        if (const auto* bar = window->findChild<QMenuBar*>()) {
            const auto actions = bar->actions();
            for (const QAction* action : actions)
                add(mnemonicOf(action->text()), action->text());
        }
        const auto buttons = window->findChildren<QAbstractButton*>();
        for (const QAbstractButton* button : buttons) {
            if (button->window() == window && !isPart(button))
                add(mnemonicOf(button->text()), button->text());
        }
        const auto labels = window->findChildren<QLabel*>();
        for (const QLabel* label : labels) {
            if (label->buddy())
                add(mnemonicOf(label->text()), label->text());
        }
        const auto groups = window->findChildren<QGroupBox*>();
        for (const QGroupBox* group : groups)
            add(mnemonicOf(group->title()), group->title());
        return found + shared(users);
    }

    static void speakGerman()
    {
        qputenv("LC_ALL", "de_DE.UTF-8");
        qunsetenv("LANGUAGE");
        Language::load(*qApp);
    }

    /// What Tab comes to, until it comes round.
    static QList<QWidget*> reached(QWidget* window)
    {
        QList<QWidget*> found;
        for (int presses = 0; presses < 200; ++presses) {
            QWidget* now = QApplication::focusWidget();
            if (!now || now->window() != window)
                now = window;
            if (found.contains(now) && presses > 0 && found.first() == now)
                break;
            if (!found.contains(now))
                found << now;
            QTest::keyClick(now, Qt::Key_Tab);
        }
        return found;
    }

    /// The windows, dialogs and menus that the headers declare, with their namespaces.
    static QSet<QString> declaredWindows()
    {
        static const QRegularExpression line(
            "^(?:namespace (\\w+)|(\\}) // namespace.*|class (\\w+) : public (\\w+))$",
            QRegularExpression::MultilineOption);
        // What has no comment at its end, being short.
        static const QRegularExpression announced(
            "^namespace \\w+\n\\{\n(?:(?:class|struct) \\w+;\n)+\\}$",
            QRegularExpression::MultilineOption);
        const QSet<QString> bases{"QDialog", "HDialog", "QMenu", "QMainWindow"};
        QSet<QString> found;
        QDirIterator headers(VOK_SOURCE, {"*.h"}, QDir::Files, QDirIterator::Subdirectories);
        while (headers.hasNext()) {
            QFile header(headers.next());
            if (!header.open(QIODevice::ReadOnly))
                continue;
            QStringList place;
            auto lines = line.globalMatch(QString::fromUtf8(header.readAll()).remove(announced));
            while (lines.hasNext()) {
                const QRegularExpressionMatch match = lines.next();
                const QString name = match.captured(3);
                if (!match.captured(1).isEmpty())
                    place << match.captured(1);
                else if (!match.captured(2).isEmpty())
                    place.removeLast();
                else if (bases.contains(match.captured(4)) || name.endsWith("Window"))
                    found << (place + QStringList{name}).join("::");
            }
        }
        return found;
    }

    static inline QStringList focused;
    /// Keeps the names of the table's cells that get the keyboard.
    static void noteFocus(QAccessibleEvent* event)
    {
        if (event->type() == QAccessible::Focus && event->child() >= 0)
            focused << event->accessibleInterface()->text(QAccessible::Name);
    }

private Q_SLOTS:
    void theRoundComesToEveryKindOfWindow()
    {
        QSet<QString> met;
        EveryWindow round([&](QWidget* window, const QString&) {
            QList<const QObject*> found{window};
            // Other menus are windows to come to.
            if (const auto* bar = window->findChild<QMenuBar*>()) {
                const auto menus = bar->findChildren<QMenu*>();
                for (const QMenu* menu : menus)
                    found << menu;
            }
            for (const QObject* object : qAsConst(found)) {
                for (const QMetaObject* kind = object->metaObject(); kind;
                     kind = kind->superClass())
                    met << kind->className();
            }
        });
        QVERIFY(round.walk());
        const QSet<QString> declared = declaredWindows();
        QVERIFY2(declared.size() >= 14, qPrintable(declared.values().join(", ")));
        const QStringList missing = (declared - met).values();
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(", ")));
    }

    void everythingHasAName()
    {
        QStringList nameless;
        EveryWindow round([&](QWidget* window, const QString& name) {
            if (window->windowTitle().isEmpty() && !qobject_cast<QMenu*>(window))
                nameless << name + ": its title";
            QList<QWidget*> all = controls(window);
            const auto bars = window->findChildren<QProgressBar*>();
            for (QProgressBar* bar : bars)
                all << bar;
            for (QWidget* widget : qAsConst(all)) {
                if (nameOf(widget).isEmpty())
                    nameless << name + ": " + describe(widget);
            }
        });
        QVERIFY(round.walk());
        QVERIFY2(round.visited.size() >= 19, qPrintable(round.visited.join(", ")));
        QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join('\n')));
    }

    void everythingCanBeReachedByKeys()
    {
        QStringList unreached;
        EveryWindow round([&](QWidget* window, const QString& name) {
            if (qobject_cast<QMenu*>(window) || !window->isVisible())
                return;
            const QList<QWidget*> found = reached(window);
            const QList<QWidget*> all = controls(window);
            for (QWidget* widget : all) {
                if (widget->isEnabled() && !found.contains(widget) &&
                    !found.contains(widget->focusProxy()))
                    unreached << name + ": " + describe(widget);
            }
        });
        QVERIFY(round.walk());
        QVERIFY2(unreached.isEmpty(), qPrintable(unreached.join('\n')));
    }

    void picturesInTablesAreSaidInWords()
    {
        WindowLife life;
        QVERIFY(life.start());
        QTableView* table = life.table();
        QCOMPARE(table->accessibleDescription(), QString());
        table->setCurrentIndex(life.cell("alpha", PackageTable::ColumnName));
        const QString still("Package is available to update an out-of-date version, "
                            "Ordinary package");
        QCOMPARE(table->accessibleDescription(), still);
        QTest::keyClick(table, Qt::Key_Space);
        QCOMPARE(table->accessibleDescription(), "Update package, " + still);
        life.select("state", PackageTable::ViewAll);
        QCOMPARE(table->accessibleDescription(), QString());

        QString told;
        QString toldWithoutUse;
        life.dialogs.expect("VOK Repository Configuration Editor")
            .act([&](QWidget* window) {
                auto* list = window->findChild<QTableView*>();
                list->setCurrentIndex(list->model()->index(0, 0));
                told = list->accessibleDescription();
                QTest::keyClick(list, Qt::Key_Space);
                toldWithoutUse = list->accessibleDescription();
            })
            .press("Cancel");
        life.action("Edit Configuration")->trigger();
        QCOMPARE(told, QString("Used in this session, enabled in the configuration"));
        QCOMPARE(toldWithoutUse, QString("Not used in this session, enabled in the configuration"));
    }

    void screenReadersFollowTheCurrentCell()
    {
        WindowLife life;
        QVERIFY(life.start());
        life.select("state", PackageTable::ViewAll);
        // A person's own bus is left as it is.
        if (!qEnvironmentVariableIsSet("VOK_OWN_BUS"))
            QSKIP("wants a bus of its own");
        QProcess::execute(QStringLiteral("dbus-send"),
                          {"--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                           "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status",
                           "string:IsEnabled", "variant:boolean:true"});
        if (!QTest::qWaitFor(QAccessible::isActive, 2000))
            QSKIP("no bus for screen readers here");
        focused.clear();
        QAccessible::installUpdateHandler(noteFocus);
        life.table()->setCurrentIndex(life.cell("gamma", PackageTable::ColumnName));
        QCOMPARE(focused, QStringList{"gamma"});
        QTest::keyClick(life.table(), Qt::Key_Right);
        QCOMPARE(focused, (QStringList{"gamma", "3.0-1"}));
        QAccessible::installUpdateHandler(nullptr);
    }

    void noTwoThingsInAWindowHaveTheSameKey()
    {
        // These two texts are as they have always been. Alt+C goes from one to the other.
        const QString known = QStringLiteral("Alt+C: &Cache, &Clear Actions");
        QStringList found;
        EveryWindow round([&](QWidget* window, const QString& name) {
            for (const QString& keys : sharedKeys(window)) {
                if (keys != known)
                    found << name + ": " + keys;
            }
        });
        QVERIFY(round.walk());
        QVERIFY2(found.isEmpty(), qPrintable(found.join('\n')));
    }

    void inGermanNoTwoThingsHaveTheSameKeyEither()
    {
#ifndef VOK_TRANSLATIONS
        QSKIP("built without translations");
#else
        QStringList found;
        QStringList titles;
        EveryWindow round([&](QWidget* window, const QString& name) {
            for (const QString& keys : sharedKeys(window))
                found << name + ": " + keys;
            titles << window->windowTitle();
        });
        speakGerman();
        QVERIFY(round.walk());
        QVERIFY(titles.contains("VOK-Protokoll"));
        QVERIFY2(found.isEmpty(), qPrintable(found.join('\n')));
#endif
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestAccessibility tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_Accessibility.moc"
