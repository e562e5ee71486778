// SPDX-License-Identifier: GPL-2.0-or-later
#include "log/LogWindow.h"

#include "kit/Colors.h"
#include "kit/HTextEdit.h"

#include <QAbstractEventDispatcher>
#include <QLabel>
#include <QMutexLocker>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QTextBlock>

#include <thread>

class TestLogWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void isATopLevelWindowOfItsOwn();
    void offersLevelsAndAButton();
    void anEmptyLogOpensAnEmptyWindowWithoutRunningEvents();
    void levelZeroShowsOnlyEntriesOfLevelZero();
    void skippedEntriesComeBackWhenTheLevelIsRaised();
    void kindsAreToldInWordsToo();
    void kindsHaveTheirColors_data();
    void kindsHaveTheirColors();
    void colorsAreLightenedOnADarkBackground();
    void anActionIsAHeadingWithoutMargins();
    void bracketsAndBlanksShowAsTheyAre();
    void anEntityShowsItsCharacter();
    void aMinorLineShowsAtTheTopLevelOnly();
    void newLinesShowAtOnceAndBehindTheOthers();
    void linesOfAWorkThreadArrive();
    void staysAtTheEndOnlyWhereTheUserIs();
    void aHiddenWindowHoldsNothing();
    void aLateSignalLeavesAHiddenWindowEmpty();
    void escapeHides();
    void reopensWithTheWholeLogAtTheEndAndTheSameLevel_data();
    void reopensWithTheWholeLogAtTheEndAndTheSameLevel();
    void showingTwiceRendersOnce();
    void aWriterDoesNotWaitForTheWindow();

private:
    void write(Log::Kind kind, unsigned int level, const QString& text);
    QString text() const { return m_window->findChild<HTextEdit*>()->toPlainText(); }
    QScrollBar* bar() const { return m_window->findChild<HTextEdit*>()->verticalScrollBar(); }
    QSpinBox* level() const { return m_window->findChild<QSpinBox*>(); }
    QTextBlock lastLine() const
    {
        return m_window->findChild<HTextEdit*>()->document()->lastBlock();
    }

    Log::EntryList* m_log = nullptr;
    Log::Window* m_window = nullptr;
};

void TestLogWindow::init()
{
    m_log = new Log::EntryList;
    m_window = new Log::Window(*m_log, nullptr);
}

void TestLogWindow::cleanup()
{
    delete m_window;
    delete m_log;
}

void TestLogWindow::write(Log::Kind kind, unsigned int level, const QString& text)
{
    {
        const QMutexLocker lock(&m_log->mutex);
        m_log->entries.append(Log::Entry(kind, level, text));
    }
    m_log->emitAppended();
}

void TestLogWindow::isATopLevelWindowOfItsOwn()
{
    QWidget main;
    const Log::Window window(*m_log, &main);
    QVERIFY(window.isWindow());
    QVERIFY(!window.parentWidget());
    QCOMPARE(window.windowTitle(), QString("VOK Log"));
}

void TestLogWindow::offersLevelsAndAButton()
{
    QCOMPARE(level()->minimum(), 0);
    QCOMPARE(level()->maximum(), 10);
    QCOMPARE(level()->value(), 2);
    QCOMPARE(level()->toolTip(),
             QString("Threshold beyond which more detailed log messages are omitted.\n"
                     "Higher levels show more detail.\n"
                     "The valid range is 0 .. 10.\n"
                     "The default is 2.\n"
                     "Higher levels contain debug information.\n"
                     "This corresponds to yum's debuglevel (-d) option."));
    QCOMPARE(m_window->findChild<QLabel*>()->text(), QString("Detail level"));
    const auto* edit = m_window->findChild<HTextEdit*>();
    QVERIFY(edit->isReadOnly());
    QVERIFY(edit->tabChangesFocus());
    QVERIFY(!edit->isUndoRedoEnabled());
    QCOMPARE(edit->lineWrapMode(), QTextEdit::NoWrap);
    auto* close = m_window->findChild<QPushButton*>();
    QCOMPARE(close->text(), QString("&Close"));
    QCOMPARE(close->toolTip(), QString("Close the Log Window"));
    m_window->show();
    QTest::mouseClick(close, Qt::LeftButton);
    QVERIFY(!m_window->isVisible());
}

void TestLogWindow::anEmptyLogOpensAnEmptyWindowWithoutRunningEvents()
{
    m_window->show();
    QSignalSpy ran(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake);
    m_window->appended();
    QCOMPARE(ran.count(), 0);
    QCOMPARE(text(), QString());
    write(Log::Plain, 0, "line");
    QVERIFY2(ran.count() > 0, "new text is painted at once");
}

void TestLogWindow::levelZeroShowsOnlyEntriesOfLevelZero()
{
    level()->setValue(0);
    write(Log::Action, 0, "action");
    write(Log::Plain, 1, "detail");
    write(Log::Warning, 0, "warning");
    write(Log::Error, 0, "error");
    write(Log::Output, 0, "output");
    write(Log::Output, 1, "more output");
    write(Log::Plain, 0, "plain");
    m_window->show();
    QCOMPARE(text(), QString("action\nwarning\nerror\noutput\nplain"));
}

void TestLogWindow::skippedEntriesComeBackWhenTheLevelIsRaised()
{
    m_window->show();
    write(Log::Plain, 3, "detail");
    write(Log::Plain, 0, "plain");
    QCOMPARE(text(), QString("plain"));
    m_window->appended();
    QCOMPARE(text(), QString("plain"));
    level()->setValue(3);
    QCOMPARE(text(), QString("detail\nplain"));
    level()->setValue(0);
    QCOMPARE(text(), QString("plain"));
}

void TestLogWindow::kindsHaveTheirColors_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<unsigned int>("level");
    QTest::addColumn<QString>("color");
    QTest::newRow("plain") << int(Log::Plain) << 0u << QString();
    QTest::newRow("plain, detailed") << int(Log::Plain) << 9u << QString();
    QTest::newRow("plain, minor") << int(Log::Plain) << 10u << Colors::minor();
    QTest::newRow("output") << int(Log::Output) << 0u << Colors::ok();
    QTest::newRow("output, level 10") << int(Log::Output) << 10u << Colors::ok();
    QTest::newRow("warning") << int(Log::Warning) << 0u << Colors::warning();
    QTest::newRow("error") << int(Log::Error) << 0u << Colors::error();
    QTest::newRow("action") << int(Log::Action) << 0u << Colors::action();
    QTest::newRow("unknown") << 7 << 0u << Colors::error();
}

void TestLogWindow::kindsHaveTheirColors()
{
    QFETCH(int, kind);
    QFETCH(unsigned int, level);
    QFETCH(QString, color);
    this->level()->setValue(10);
    m_window->show();
    write(static_cast<Log::Kind>(kind), level, "line");
    const QTextCharFormat format = lastLine().begin().fragment().charFormat();
    QCOMPARE(format.hasProperty(QTextFormat::ForegroundBrush), !color.isEmpty());
    if (!color.isEmpty())
        QCOMPARE(format.foreground().color(), QColor(color));
    // A colour must not run on into the next line.
    write(Log::Plain, 0, "next");
    QVERIFY(!lastLine().begin().fragment().charFormat().hasProperty(QTextFormat::ForegroundBrush));
    QCOMPARE(text(), QString("line\nnext"));
}

void TestLogWindow::colorsAreLightenedOnADarkBackground()
{
    const QColor dark(35, 38, 41);
    QPalette palette = m_window->palette();
    palette.setColor(QPalette::Base, dark);
    m_window->setPalette(palette);
    m_window->show();
    write(Log::Action, 0, "heading");
    const QColor shown = lastLine().begin().fragment().charFormat().foreground().color();
    QCOMPARE(shown, QColor(Colors::readable(Qt::blue, dark).name()));
    QVERIFY(shown.lightness() > QColor(Qt::blue).lightness());
}

void TestLogWindow::kindsAreToldInWordsToo()
{
    m_window->show();
    const auto tip = [this] { return lastLine().begin().fragment().charFormat().toolTip(); };
    write(Log::Error, 0, "went wrong");
    QCOMPARE(tip(), QString("Error"));
    write(Log::Plain, 0, "next");
    QCOMPARE(tip(), QString());
    write(Log::Warning, 0, "may go wrong");
    QCOMPARE(tip(), QString("Warning"));
    write(Log::Output, 0, "said");
    QCOMPARE(tip(), QString("Output"));
    QCOMPARE(text(), QString("went wrong\nnext\nmay go wrong\nsaid"));
}

void TestLogWindow::anActionIsAHeadingWithoutMargins()
{
    m_window->show();
    write(Log::Action, 0, "heading");
    write(Log::Plain, 0, "text");
    write(Log::Action, 0, "heading");
    const QTextBlock last = lastLine();
    QVERIFY(last.begin().fragment().charFormat().fontWeight() > QFont::Normal);
    QCOMPARE(last.previous().begin().fragment().charFormat().fontWeight(), int(QFont::Normal));
    for (QTextBlock line = last; line.isValid(); line = line.previous()) {
        QCOMPARE(line.blockFormat().topMargin(), 0.0);
        QCOMPARE(line.blockFormat().bottomMargin(), 0.0);
    }
}

void TestLogWindow::bracketsAndBlanksShowAsTheyAre()
{
    m_window->show();
    write(Log::Plain, 0, "<b>bold</b>  two\ttab > ");
    QCOMPARE(text(), QString("<b>bold</b>  two\ttab > "));
    write(Log::Action, 0, "  a  heading");
    QVERIFY2(text().endsWith("\n  a  heading"), qPrintable(text()));
    QString escaped("< >\t");
    Log::Window::htmlProtect(escaped);
    QCOMPARE(escaped, QString("&lt;&#x0020;&gt;&#x0009;"));
}

void TestLogWindow::anEntityShowsItsCharacter()
{
    m_window->show();
    write(Log::Plain, 0, "a&amp;b");
    QCOMPARE(text(), QString("a&b"));
}

void TestLogWindow::aMinorLineShowsAtTheTopLevelOnly()
{
    m_window->show();
    write(Log::Plain, 10, "minor");
    level()->setValue(9);
    QCOMPARE(text(), QString());
    level()->setValue(10);
    QCOMPARE(text(), QString("minor"));
}

void TestLogWindow::newLinesShowAtOnceAndBehindTheOthers()
{
    m_window->show();
    write(Log::Plain, 0, "one");
    QCOMPARE(text(), QString("one"));
    {
        const QMutexLocker lock(&m_log->mutex);
        m_log->entries.append(Log::Entry(Log::Plain, 0, "two"));
        m_log->entries.append(Log::Entry(Log::Plain, 0, "three"));
    }
    m_log->emitAppended();
    QCOMPARE(text(), QString("one\ntwo\nthree"));
}

void TestLogWindow::linesOfAWorkThreadArrive()
{
    m_window->show();
    std::thread worker([this] {
        for (int line = 0; line < 100; ++line)
            write(Log::Output, 0, QString::number(line));
    });
    worker.join();
    QTRY_COMPARE(text().count('\n'), 99);
    QVERIFY(text().startsWith("0\n1\n"));
    QVERIFY(text().endsWith("\n99"));
}

void TestLogWindow::staysAtTheEndOnlyWhereTheUserIs()
{
    for (int line = 0; line < 200; ++line)
        write(Log::Plain, 0, "line");
    m_window->show();
    QCOMPARE(bar()->value(), bar()->maximum());
    write(Log::Plain, 0, "last");
    QCOMPARE(bar()->value(), bar()->maximum());
    bar()->setValue(30);
    write(Log::Plain, 0, "unseen");
    QCOMPARE(bar()->value(), 30);
}

void TestLogWindow::aHiddenWindowHoldsNothing()
{
    write(Log::Plain, 0, "before");
    QCOMPARE(text(), QString());
    m_window->show();
    QCOMPARE(text(), QString("before"));
    m_window->hide();
    QCOMPARE(text(), QString());
    write(Log::Plain, 0, "meanwhile");
    level()->setValue(5);
    QCOMPARE(text(), QString());
    m_window->hide();
    m_window->show();
    QCOMPARE(text(), QString("before\nmeanwhile"));
}

void TestLogWindow::aLateSignalLeavesAHiddenWindowEmpty()
{
    m_window->show();
    std::thread worker([this] { write(Log::Plain, 0, "late"); });
    worker.join();
    m_window->hide();
    QCoreApplication::processEvents();
    QCOMPARE(text(), QString());
}

void TestLogWindow::escapeHides()
{
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window));
    QTest::keyClick(m_window->findChild<HTextEdit*>(), Qt::Key_A);
    QVERIFY(m_window->isVisible());
    QTest::keyClick(m_window->findChild<HTextEdit*>(), Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
}

void TestLogWindow::reopensWithTheWholeLogAtTheEndAndTheSameLevel_data()
{
    QTest::addColumn<int>("lines");
    QTest::newRow("short") << 200;
    // Long enough for its layout to take more than one step.
    QTest::newRow("long") << 20000;
}

void TestLogWindow::reopensWithTheWholeLogAtTheEndAndTheSameLevel()
{
    QFETCH(int, lines);
    level()->setValue(7);
    for (int line = 0; line < lines; ++line)
        m_log->entries.append(Log::Entry(Log::Plain, line % 8, QString::number(line)));
    m_window->show();
    m_window->close();
    QVERIFY(!m_window->isVisible());
    m_window->show();
    QCOMPARE(level()->value(), 7);
    QCOMPARE(m_window->findChild<HTextEdit*>()->document()->blockCount(), lines);
    QVERIFY(bar()->maximum() > lines * 5);
    QCOMPARE(bar()->value(), bar()->maximum());

    level()->setValue(8);
    QVERIFY(bar()->maximum() > lines * 5);
    QCOMPARE(bar()->value(), bar()->maximum());

    bar()->setValue(0);
    m_window->setVisible(true);
    QCOMPARE(bar()->value(), 0);
}

void TestLogWindow::showingTwiceRendersOnce()
{
    write(Log::Plain, 0, "line");
    m_window->show();
    m_window->setVisible(true);
    write(Log::Plain, 0, "next");
    QCOMPARE(text(), QString("line\nnext"));
    m_window->hide();
    m_window->show();
    write(Log::Plain, 0, "more");
    QCOMPARE(text(), QString("line\nnext\nmore"));
}

void TestLogWindow::aWriterDoesNotWaitForTheWindow()
{
    // The window runs events at the end of a rendering; the store must be free by then.
    m_window->show();
    bool free = false;
    QMetaObject::invokeMethod(
        this,
        [this, &free] {
            free = m_log->mutex.tryLock();
            if (free)
                m_log->mutex.unlock();
        },
        Qt::QueuedConnection);
    write(Log::Plain, 0, "line");
    QVERIFY(free);
}

QTEST_MAIN(TestLogWindow)
#include "tst_LogWindow.moc"
