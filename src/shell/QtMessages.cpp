// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/QtMessages.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace
{

struct Message {
    QtMsgType type;
    QByteArray category;
    QString text;
};

QtMessageHandler nextHandler = nullptr;
const char* name = "";
bool started = false;
QList<Message> held;

[[noreturn]] void endWithoutApplication(const QString& reason)
{
    QString text = reason;
    const QString noDisplay = QStringLiteral("could not connect to display");
    for (const Message& message : qAsConst(held)) {
        if (!message.text.startsWith(noDisplay))
            continue;
        const QString display = message.text.mid(noDisplay.size()).trimmed();
        text = display.isEmpty() ? QStringLiteral("cannot open the display: DISPLAY is not set")
                                 : QStringLiteral("cannot open the display ") + display;
    }
    std::fprintf(stderr, "%s: %s\n", name, text.trimmed().toLocal8Bit().constData());
    std::fflush(stderr);
    // Qt would abort, and leave a core file of nothing but a wrong setting. The half-made
    // application must not be destroyed.
    std::_Exit(1);
}

void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // Administrators work in shells of su and sudo, where the session's runtime directory is unset
    // or somebody else's. Nothing here uses it, and Qt would tell so at each start.
    if (text.startsWith(QLatin1String("QStandardPaths: ")))
        return;
    // The window manager took a window's frame away while Qt asked for its place.
    if (text.startsWith(QLatin1String("QXcbConnection: XCB error: 3 (BadWindow)")))
        return;
    if (started) {
        nextHandler(type, context, text);
        return;
    }
    if (type == QtFatalMsg)
        endWithoutApplication(text);
    held.append({type, context.category, text});
}

} // namespace

void QtMessages::filter(const char* program)
{
    name = program;
    started = false;
    nextHandler = qInstallMessageHandler(handle);
}

void QtMessages::applicationStarted()
{
    started = true;
    for (const Message& message : qAsConst(held)) {
        const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
        nextHandler(message.type, context, message.text);
    }
    held.clear();
}
