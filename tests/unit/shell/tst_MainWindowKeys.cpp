// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "support/ProcessPerTest.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

/// What the window's keys do, whichever of its widgets has the keyboard.
class TestMainWindowKeys : public QObject
{
    Q_OBJECT

private:
    static void press(QWidget* widget, const QKeySequence& shortcut)
    {
        const int keys = shortcut[0];
        const int modifiers = static_cast<int>(Qt::KeyboardModifierMask);
        QTest::keyClick(widget, static_cast<Qt::Key>(keys & ~modifiers),
                        Qt::KeyboardModifiers(keys & modifiers));
    }

    static bool show(WindowLife& life)
    {
        if (!life.start())
            return false;
        life.window().activateWindow();
        return QTest::qWaitForWindowActive(&life.window());
    }

private Q_SLOTS:
    void theMenusShortcutsWorkWhateverHasTheKeyboard()
    {
        WindowLife life;
        QVERIFY(show(life));
        life.table()->setCurrentIndex(life.cell("alpha", 1));
        QList<QAction*> commands;
        for (QAction* action : life.window().menuBar()->findChildren<QAction*>()) {
            if (action->shortcut().isEmpty())
                continue;
            // The keys are looked at, not what they lead to.
            action->disconnect(&life.window());
            commands << action;
        }
        QCOMPARE(commands.size(), 4);
        QStringList tried;
        for (QWidget* widget : life.find<QWidget>("mainArea")->findChildren<QWidget*>()) {
            if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisible() ||
                !widget->isEnabled())
                continue;
            widget->setFocus();
            QVERIFY(widget->hasFocus());
            for (QAction* action : qAsConst(commands)) {
                const QSignalSpy triggered(action, &QAction::triggered);
                press(widget, action->shortcut());
                QVERIFY2(triggered.size() == 1, qPrintable(action->shortcut().toString() + " in " +
                                                           widget->metaObject()->className()));
            }
            tried << widget->metaObject()->className();
        }
        for (const char* name :
             {"QComboBox", "QLineEdit", "QPushButton", "QCheckBox", "PackageTable::View"})
            QVERIFY2(tried.contains(name), name);
    }

    void thePatternKeepsTheCommandsOfATextField()
    {
        WindowLife life;
        QVERIFY(show(life));
        auto* pattern = life.find<QLineEdit>("regexp");
        pattern->setFocus();
        pattern->setText(QStringLiteral("alpha beta"));
        QTest::keyClick(pattern, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(pattern->selectedText(), QStringLiteral("alpha beta"));
        QTest::keyClick(pattern, Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(pattern->text(), QString());
        QTest::keyClick(pattern, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(pattern->text(), QStringLiteral("alpha beta"));
        QTest::keyClick(pattern, Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(pattern->cursorPosition(), 6);
        QTest::keyClick(pattern, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(pattern->text(), QString());
    }

    void aMenusShortcutComesBeforeThePatternsOwnUseOfIt()
    {
        WindowLife life;
        QVERIFY(show(life));
        QAction* edit = life.action("Edit Configuration");
        edit->disconnect(&life.window());
        const QSignalSpy triggered(edit, &QAction::triggered);
        // Which keys a text field takes depends on the desktop; these everywhere.
        edit->setShortcut(QKeySequence::Undo);
        auto* pattern = life.find<QLineEdit>("regexp");
        pattern->setFocus();
        QTest::keyClick(pattern, Qt::Key_X);
        const QString text = pattern->text();
        press(pattern, edit->shortcut());
        QCOMPARE(triggered.size(), 1);
        QCOMPARE(pattern->text(), text);
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    TestMainWindowKeys tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_MainWindowKeys.moc"
