// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowSession.h"

#include "repo/PasswdLineEdit.h"
#include "repo/PasswdTextEdit.h"
#include "repo/RepoEditorConfigDialog.h"
#include "support/ProcessPerTest.h"
#include "unit/repo/PasswdWatcher.h"
#include "unit/repo/RepoAuthUser.h"
#include "unit/repo/RepoEditorDriver.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>
#include <QtTest>

#include <functional>
#include <memory>

namespace
{

// No letter of it is one of the addresses around it, or of the markup that a clipboard may hold.
const QString secret = QStringLiteral("QXZJKG");
const QString front = QStringLiteral("http://host/vantry?user=me&pass=");
const QString back = QStringLiteral("&path=/os");

QString url(const QString& password)
{
    return front + password + back;
}

QByteArray repository()
{
    return "[closed]\nname=Closed\nbaseurl=" + url(secret).toLatin1() + '\n' + "        " +
           url(secret).toLatin1() + "\nmirrorlist=" + url(secret).toLatin1() + "\nenabled=0\n";
}

/// Keyboard and mouse of the display. A call is over when the X server has had it; what it leads to
/// is waited for.
void xdotool(const QStringList& arguments)
{
    QCOMPARE(SandboxRoot::run(QStringLiteral("xdotool"), arguments), 0);
}
void press(const QStringList& keys)
{
    xdotool(QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("10")} +
            keys);
}
void press(const QString& key, int times = 1)
{
    press(QStringList(QVector<QString>(times, key).toList()));
}
void typeText(const QString& text)
{
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("10"), text});
}
QStringList to(const QWidget* widget, const QPoint& position)
{
    const QPoint point = widget->mapToGlobal(position);
    return {QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y())};
}
void click(const QWidget* widget, const QPoint& position, int button = 1, int times = 1)
{
    xdotool(to(widget, position) + QStringList{QStringLiteral("click"), QStringLiteral("--repeat"),
                                               QString::number(times), QStringLiteral("--delay"),
                                               QStringLiteral("20"), QString::number(button)});
}
/// Draws the mouse with its left button down.
void drag(const QWidget* widget, const QPoint& from, const QPoint& where)
{
    xdotool(to(widget, from) + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")});
    xdotool(to(widget, (from + where) / 2));
    xdotool(to(widget, where));
    xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
}

/// What the tests need of the two kinds of password field.
class Field
{
public:
    virtual ~Field() = default;
    virtual QWidget* widget() const = 0;
    /// What is drawn on, and takes the mouse.
    virtual QWidget* canvas() const = 0;
    virtual QString real() const = 0;
    virtual QString shown() const = 0;
    virtual QString selected() const = 0;
    virtual int cursor() const = 0;
    /// Where a character is drawn.
    virtual QPoint place(int position) const = 0;
};

class LineField : public Field
{
public:
    explicit LineField(QWidget* dialog)
        : edit(dialog->findChild<PasswdLineEdit*>())
    {
    }
    QWidget* widget() const override { return edit; }
    QWidget* canvas() const override { return edit; }
    QString real() const override { return edit->realText(); }
    QString shown() const override { return edit->text(); }
    QString selected() const override { return edit->selectedText(); }
    int cursor() const override { return edit->cursorPosition(); }
    QPoint place(int position) const override
    {
        const int before = edit->cursorPosition();
        edit->setCursorPosition(position);
        const QPoint point = edit->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        edit->setCursorPosition(before);
        return point;
    }

private:
    PasswdLineEdit* edit;
};

/// Its second line is what is edited.
class TextField : public Field
{
public:
    explicit TextField(QWidget* dialog)
        : edit(dialog->findChild<PasswdTextEdit*>())
    {
    }
    QWidget* widget() const override { return edit; }
    QWidget* canvas() const override { return edit->viewport(); }
    QString real() const override { return line(edit->realPlainText()); }
    QString shown() const override { return line(edit->toPlainText()); }
    QString selected() const override { return edit->textCursor().selectedText(); }
    int cursor() const override { return edit->textCursor().position() - start(); }
    QPoint place(int position) const override
    {
        QTextCursor cursor = edit->textCursor();
        cursor.setPosition(start() + position);
        return edit->cursorRect(cursor).center();
    }

private:
    int start() const { return url(secret).size() + 1; }
    static QString line(const QString& text) { return text.section(QLatin1Char('\n'), 1); }

    PasswdTextEdit* edit;
};

} // namespace

/// A person at the password fields of the real program, with keyboard and mouse of a real display.
class TestPasswordFields : public QObject
{
    Q_OBJECT

private:
    static QString mask(int length)
    {
        return QString(
            length, QChar(QApplication::style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter)));
    }

    /// Opens the editor of the repository, has `steps` done there, and presses `button`.
    void edit(const std::function<void(RepoEditor::ConfigDialog*)>& steps,
              const QString& button = QStringLiteral("Cancel"))
    {
        user->window().setStartInRepoEditor();
        user->dialogs.expect("VOK Repository Configuration Editor")
            .act([&](QWidget* window) {
                auto* dialog = qobject_cast<RepoEditor::Dialog*>(window);
                QVERIFY(dialog);
                user->dialogs.expect("VOK Repository Configuration")
                    .act([&](QWidget* form) {
                        QVERIFY(QTest::qWaitForWindowActive(form));
                        steps(qobject_cast<RepoEditor::ConfigDialog*>(form));
                    })
                    .press(button);
                const RepoEditorDriver editor(dialog);
                editor.click(QStringLiteral("closed"));
                editor.press(QStringLiteral("Edit"));
            })
            .press("OK");
        QVERIFY(user->start());
        QVERIFY(user->dialogs.waitUntilDone());
    }

    /// The password of the field under test was changed to this, and only stars show.
    void is(const QString& password)
    {
        QTRY_COMPARE(field->real(), url(password));
        QCOMPARE(field->shown(), url(mask(password.size())));
    }
    /// Puts the cursor behind so many letters of the password, by keys.
    void go(int index)
    {
        press(QStringLiteral("Home"));
        press(QStringLiteral("Right"), front.size() + index);
        QTRY_COMPARE(field->cursor(), front.size() + index);
    }
    /// Nothing that was drawn, copied or told holds a letter of a password.
    void verifyNothingLeaked(const QStringList& painted)
    {
        QVERIFY(!painted.isEmpty());
        QStringList texts = painted;
        for (const auto mode : {QClipboard::Clipboard, QClipboard::Selection}) {
            const QMimeData* data = QApplication::clipboard()->mimeData(mode);
            if (!data || !QApplication::clipboard()->text(mode).contains(mask(1)))
                continue;
            for (const QString& format : data->formats())
                if (format.startsWith(QLatin1String("text/")))
                    texts << QString::fromUtf8(data->data(format));
        }
        texts << QToolTip::text() << accessibleText(field->widget());
        for (const QString& text : qAsConst(texts))
            for (const QChar c : secret)
                QVERIFY2(!text.contains(c), qPrintable(text));
    }

    /// Has `steps` done in each of the fields, one after the other.
    void inEachField(const std::function<void()>& steps)
    {
        edit([&](RepoEditor::ConfigDialog* form) {
            for (const bool lines : {false, true}) {
                if (lines)
                    field = std::make_unique<TextField>(form);
                else
                    field = std::make_unique<LineField>(form);
                QApplication::clipboard()->clear();
                QApplication::clipboard()->clear(QClipboard::Selection);
                const PasswdWatcher watcher(field->canvas(), [this] { return field->shown(); });
                // The window manager may still move the window.
                for (int tries = 0; tries < 10; ++tries) {
                    click(field->canvas(), field->place(2));
                    if (QTest::qWaitFor([this] { return field->widget()->hasFocus(); }, 500))
                        break;
                }
                QVERIFY(field->widget()->hasFocus());
                is(secret);
                steps();
                if (QTest::currentTestFailed())
                    return;
                verifyNothingLeaked(watcher.painted);
            }
        });
    }

    std::unique_ptr<WindowSession> user;
    std::unique_ptr<Field> field;

private Q_SLOTS:
    void init()
    {
        user = std::make_unique<WindowSession>();
        user->write(QStringLiteral("etc/yum.repos.d/closed.repo"), repository());
    }
    void cleanup()
    {
        field.reset();
        user.reset();
    }

    void typingAndRemovingLetters()
    {
        inEachField([this] {
            go(3);
            typeText(QStringLiteral("KQ"));
            is("QXZKQJKG");
            press("BackSpace");
            is("QXZKJKG");
            press("Delete");
            is("QXZKKG");
            press("Left", 2);
            typeText(QStringLiteral("G"));
            is("QXGZKKG");
        });
    }

    void typingAsFastAsKeysCome()
    {
        inEachField([this] {
            go(6);
            xdotool({"type", "--delay", "0", QStringLiteral("QXZJ").repeated(10)});
            is(secret + QStringLiteral("QXZJ").repeated(10));
        });
    }

    void selectingByKeysAndReplacing()
    {
        inEachField([this] {
            go(1);
            press("shift+Right", 3);
            typeText(QStringLiteral("G"));
            is("QGKG");
            press({"shift+Left", "shift+Left", "BackSpace"});
            is("KG");
            press("ctrl+a");
            QTRY_VERIFY(!field->selected().isEmpty());
            typeText(QStringLiteral("h"));
            QTRY_COMPARE(field->widget()->property(field->shown() == "h" ? "text" : "plainText"),
                         QVariant(QStringLiteral("h")));
        });
    }

    void removingWords()
    {
        inEachField([this] {
            // The letters that are seen are one word.
            go(2);
            press("ctrl+Delete");
            is("QX");
            press("ctrl+BackSpace");
            is(QString());
            press({"Q", "ctrl+Left", "Z"});
            is("ZQ");
        });
    }

    void undoingAndDoingAgain()
    {
        inEachField([this] {
            go(6);
            typeText(QStringLiteral("QX"));
            is(secret + "QX");
            press("BackSpace");
            is(secret + "Q");
            for (int i = 0; i < 4 && field->real() != url(secret); ++i) {
                const QString before = field->real();
                press("ctrl+z");
                QTRY_VERIFY(field->real() != before);
            }
            is(secret);
            press("ctrl+shift+z");
            QTRY_VERIFY(field->real() != url(secret));
            QCOMPARE(field->shown(), url(mask(field->real().size() - url(QString()).size())));
        });
    }

    void copyingGivesTheStars()
    {
        inEachField([this] {
            go(1);
            press("shift+Right", 4);
            press("ctrl+c");
            QTRY_COMPARE(QApplication::clipboard()->text(), mask(4));
            press("ctrl+x");
            is("QG");
            QCOMPARE(QApplication::clipboard()->text(), mask(4));
        });
    }

    void pastingTakesTheTextAsItIs()
    {
        inEachField([this] {
            QApplication::clipboard()->setText(QStringLiteral("GKJ"));
            go(3);
            press("ctrl+v");
            is("QXZGKJJKG");
            press("shift+Insert");
            is("QXZGKJGKJJKG");
            press("shift+Left", 6);
            press("ctrl+v");
            is("QXZGKJJKG");
        });
    }

    void theMiddleButtonPastesWhereItIsPressed()
    {
        inEachField([this] {
            QApplication::clipboard()->setText(QStringLiteral("GKJ"), QClipboard::Selection);
            click(field->canvas(), field->place(front.size() + 2), 2);
            is("QXGKJZJKG");
            QTRY_COMPARE(field->cursor(), front.size() + 5);
        });
    }

    void selectingByTheMouseAndReplacing()
    {
        inEachField([this] {
            drag(field->canvas(), field->place(front.size() + 1), field->place(front.size() + 4));
            QTRY_COMPARE(field->selected(), mask(3));
            QTRY_COMPARE(QApplication::clipboard()->text(QClipboard::Selection), mask(3));
            typeText(QStringLiteral("G"));
            is("QGKG");
            click(field->canvas(), field->place(front.size() + 2), 1, 2);
            QTRY_VERIFY(field->selected().contains(mask(4)));
            press("Delete");
            QTRY_COMPARE(field->shown(), field->real());
        });
    }

    void draggingTheSelectionMovesTheStarsNowhereInTheRealText()
    {
        inEachField([this] {
            drag(field->canvas(), field->place(front.size() + 1), field->place(front.size() + 4));
            QTRY_COMPARE(field->selected(), mask(3));
            // The field itself refuses what is dragged out of it.
            drag(field->canvas(), field->place(front.size() + 2), field->place(2));
            QTest::qWait(300);
            press("End");
            QTRY_COMPARE(field->cursor(), field->real().size());
            is(secret);
        });
    }

    void lettersOfAnyKindAreWhatThePackageManagerReads()
    {
        const QString name = QStringLiteral("Gr\u00fc\u00dfe \u20ac");
        edit(
            [&](RepoEditor::ConfigDialog* form) {
                QLineEdit* edited = nullptr;
                for (QLineEdit* line : form->findChildren<QLineEdit*>())
                    if (line->toolTip() == QLatin1String("Description of the repository"))
                        edited = line;
                QVERIFY(edited);
                edited->setFocus();
                press("End");
                // The display's keyboard has no such letters.
                QApplication::clipboard()->setText(name);
                press("ctrl+v");
                QTRY_COMPARE(edited->text(), QString("Closed" + name));
                field = std::make_unique<LineField>(form);
                field->widget()->setFocus();
                go(0);
                QApplication::clipboard()->setText(QStringLiteral("\u20ac"));
                press("ctrl+v");
                is(QChar(0x20ac) + secret);
            },
            QStringLiteral("OK"));
        const QString script =
            QStringLiteral("import sys, libdnf\n"
                           "parser = libdnf.conf.ConfigParser()\n"
                           "parser.read(sys.argv[1])\n"
                           "closed = parser.getData()['closed']\n"
                           "assert closed['name'] == sys.argv[2], closed['name']\n"
                           "assert sys.argv[3] in closed['mirrorlist']\n");
        QCOMPARE(SandboxRoot::run(QStringLiteral(VOK_PYTHON),
                                  {"-c", script, user->path("etc/yum.repos.d/closed.repo"),
                                   "Closed" + name, url(QChar(0x20ac) + secret)}),
                 0);
    }

    void theDialogForCredentialsShowsNoneOfThePassword()
    {
        user->write(
            QStringLiteral("etc/yum.repos.d/closed.repo"),
            "[closed]\nname=Closed\nskip_if_unavailable=1\nbaseurl=file:///none/vantry?user=&"
            "pass=&path=/os\nenabled=1\n");
        RepoAuthUser asked;
        user->dialogs.expect("VOK Authentication").leave();
        QStringList painted;
        asked.answer([&](RepoAuth::Dialog& dialog) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            auto* password = dialog.findChild<QLineEdit*>("password");
            auto* urls = dialog.findChild<QLabel*>("urls");
            const PasswdWatcher onField(password, [&] { return password->displayText(); });
            const PasswdWatcher onLabel(urls, [&] { return urls->text(); });
            press("Tab");
            QTRY_VERIFY(password->hasFocus());
            typeText(secret);
            QTRY_COMPARE(password->text(), secret);
            press({"BackSpace", "Left", "shift+Left"});
            QApplication::clipboard()->setText(QStringLiteral("GKJ"));
            press("ctrl+v");
            QTRY_COMPARE(password->text(), QStringLiteral("QXZGKJK"));
            press({"ctrl+a", "ctrl+c"});
            press("End");
            QTRY_COMPARE(password->cursorPosition(), 7);
            QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("GKJ"));
            QTRY_VERIFY(urls->text().contains(mask(7)));
            painted = onField.painted + onLabel.painted;
            painted << accessibleText(password) << accessibleText(urls);
            RepoAuthUser::press(dialog, "OK");
        });
        QVERIFY(user->start());
        QVERIFY(!painted.isEmpty());
        for (const QString& text : qAsConst(painted))
            for (const QChar c : secret)
                QVERIFY2(!text.contains(c), qPrintable(text));
        QFile file(user->path(QStringLiteral("etc/yum.repos.d/closed.repo")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("&pass=QXZGKJK&"));
    }

    void theRightButtonOpensNoMenu()
    {
        inEachField([this] {
            click(field->canvas(), field->place(front.size() + 2), 3);
            press("End");
            QTRY_COMPARE(field->cursor(), url(secret).size());
            QVERIFY(!QApplication::activePopupWidget());
            is(secret);
        });
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server;
    if (!server.start())
        return 1;
    TestPasswordFields tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}
#include "tst_PasswordFields.moc"
