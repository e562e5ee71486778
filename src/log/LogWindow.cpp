// SPDX-License-Identifier: GPL-2.0-or-later
#include "log/LogWindow.h"

#include "kit/Colors.h"
#include "kit/HTextEdit.h"

#include <QAbstractTextDocumentLayout>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMutexLocker>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextCursor>
#include <QVBoxLayout>

namespace
{

constexpr int maximumLevel = 10;
constexpr int defaultLevel = 2;
// Lines of this level and beyond are of interest to developers only.
constexpr unsigned int minorLevel = 10;

QString colored(const QString& name, const QColor& background, const QString& text)
{
    const QColor given(name);
    const QColor shown = Colors::readable(given, background);
    const QString color = shown == given ? name : shown.name();
    return QStringLiteral("<font color=\"%1\">").arg(color) + text + QLatin1String("</font>");
}

QString markup(const Log::Entry& entry, const QColor& background)
{
    QString text = entry.text;
    Log::Window::htmlProtect(text);
    switch (entry.kind) {
    case Log::Plain:
        if (entry.level >= minorLevel)
            return colored(Colors::minor(), background, text);
        return QLatin1String("<font>") + text + QLatin1String("</font>");
    case Log::Output:
        return colored(Colors::ok(), background, text);
    case Log::Warning:
        return colored(Colors::warning(), background, text);
    case Log::Action:
        return QLatin1String("<h2>") + colored(Colors::action(), background, text) +
               QLatin1String("</h2>");
    case Log::Error:
        break;
    }
    return colored(Colors::error(), background, text);
}

} // namespace

Log::Window::Window(EntryList& list, QWidget* parent)
    : QWidget(nullptr)
    , m_list(list)
    , m_parent(parent)
    , m_level(new QSpinBox(this))
    , m_text(new HTextEdit(100, 24, this))
{
    setWindowTitle(tr("VOK Log"));

    m_text->setReadOnly(true);
    m_text->setUndoRedoEnabled(false);
    m_text->setLineWrapMode(QTextEdit::NoWrap);
    m_text->setWordWrapMode(QTextOption::NoWrap);
    m_text->setTabChangesFocus(true);
    // Newer versions of Qt collapse blanks even where they are written as character references.
    m_text->document()->setDefaultStyleSheet(QStringLiteral("font { white-space: pre; }"));

    m_level->setRange(0, maximumLevel);
    m_level->setValue(defaultLevel);
    m_level->setToolTip(tr("Threshold beyond which more detailed log messages are omitted.\n"
                           "Higher levels show more detail.\n"
                           "The valid range is 0 .. %1.\n"
                           "The default is %2.\n"
                           "Higher levels contain debug information.\n"
                           "This corresponds to yum's debuglevel (-d) option.")
                            .arg(maximumLevel)
                            .arg(defaultLevel));
    connect(m_level, QOverload<int>::of(&QSpinBox::valueChanged), this, &Window::levelChanged);

    m_text->setAccessibleName(tr("Messages"));
    auto* label = new QLabel(tr("Detail level"), this);
    label->setBuddy(m_level);

    auto* close = new QPushButton(tr("&Close"), this);
    close->setToolTip(tr("Close the Log Window"));
    connect(close, &QPushButton::clicked, this, &QWidget::hide);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(label);
    bottom->addWidget(m_level);
    bottom->addStretch(1);
    bottom->addWidget(close);

    auto* box = new QVBoxLayout(this);
    box->addWidget(m_text);
    box->addLayout(bottom);
}

void Log::Window::setVisible(bool visible)
{
    const bool wasVisible = isVisible();
    if (visible && !wasVisible) {
        clear();
        render();
        {
            const QMutexLocker lock(&m_list.mutex);
            connect(&m_list, &EntryList::appended, this, &Window::appended, Qt::UniqueConnection);
            m_live = true;
        }
        // What was written between the rendering and the connection has announced itself to nobody.
        render();
    }
    QWidget::setVisible(visible);
    if (visible && !wasVisible)
        scrollToEnd();
    if (!visible && wasVisible) {
        {
            const QMutexLocker lock(&m_list.mutex);
            disconnect(&m_list, &EntryList::appended, this, &Window::appended);
            // A signal of a work thread may still wait in the queue.
            m_live = false;
        }
        clear();
    }
}

void Log::Window::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        hide();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void Log::Window::htmlProtect(QString& text)
{
    text.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    text.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    // Blanks in rich text stand for themselves only as numbers.
    text.replace(QLatin1Char(' '), QLatin1String("&#x0020;"));
    text.replace(QLatin1Char('\t'), QLatin1String("&#x0009;"));
}

void Log::Window::appended()
{
    if (m_live)
        render();
}

void Log::Window::levelChanged(int)
{
    clear();
    appended();
}

void Log::Window::scrollToEnd()
{
    // Qt lays out a long text bit by bit. Asking for its size completes that, but tells nobody, and
    // the scroll bar's range would stay behind.
    QAbstractTextDocumentLayout* layout = m_text->document()->documentLayout();
    Q_EMIT layout->documentSizeChanged(layout->documentSize());
    m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum());
}

void Log::Window::clear()
{
    m_shown = 0;
    m_text->clear();
}

void Log::Window::explainColor(int kind)
{
    QTextCharFormat explained;
    switch (kind) {
    case Output:
        explained.setToolTip(tr("Output"));
        break;
    case Warning:
        explained.setToolTip(tr("Warning"));
        break;
    case Error:
        explained.setToolTip(tr("Error"));
        break;
    default:
        // A heading is told by its size.
        return;
    }
    QTextCursor line(m_text->document());
    line.movePosition(QTextCursor::End);
    line.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
    line.mergeCharFormat(explained);
}

void Log::Window::render()
{
    QList<Entry> added;
    {
        // The lines are taken under the lock and rendered without it: a writer never waits for
        // layout.
        const QMutexLocker lock(&m_list.mutex);
        if (m_list.entries.size() <= m_shown)
            return;
        added = m_list.entries.mid(m_shown);
        m_shown = m_list.entries.size();
    }

    const unsigned int level = static_cast<unsigned int>(m_level->value());
    const bool atEnd =
        m_text->verticalScrollBar()->value() >= m_text->verticalScrollBar()->maximum();
    const QColor background = m_text->palette().color(QPalette::Base);
    // One edit block for all: the text is laid out once and not line by line.
    QTextCursor cursor(m_text->document());
    cursor.beginEditBlock();
    for (const Entry& entry : qAsConst(added)) {
        if (entry.level > level)
            continue;
        m_text->appendCompact(markup(entry, background));
        explainColor(entry.kind);
    }
    cursor.endEditBlock();
    if (atEnd)
        scrollToEnd();

    // Painted at once, even in the midst of a long series of signals; no button may be pressed
    // meanwhile.
    QEventLoop loop;
    loop.processEvents(QEventLoop::ExcludeUserInputEvents);
}
