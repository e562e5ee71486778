// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/Language.h"

#include "kit/Share.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace
{

/// The locale for messages, without encoding and variant.
QString messagesLocale()
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        QString value = qEnvironmentVariable(name);
        if (!value.isEmpty())
            return value;
    }
    return QString();
}

QString bare(const QString& locale)
{
    return locale.section(QLatin1Char('.'), 0, 0).section(QLatin1Char('@'), 0, 0);
}

bool install(QCoreApplication& app, const QString& name, const QString& directory)
{
    auto translator = std::make_unique<QTranslator>(&app);
    if (!translator->load(name, directory))
        return false;
    QCoreApplication::installTranslator(translator.release());
    return true;
}

} // namespace

QStringList Language::wanted()
{
    const QString locale = bare(messagesLocale());
    if (locale.isEmpty() || locale == QLatin1String("C") || locale == QLatin1String("POSIX"))
        return {};
    QStringList asked =
        qEnvironmentVariable("LANGUAGE").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (asked.isEmpty())
        asked << locale;

    QStringList names;
    for (const QString& one : qAsConst(asked)) {
        const QString name = bare(one);
        const QString language = name.section(QLatin1Char('_'), 0, 0);
        if (language == QLatin1String("en") || language == QLatin1String("C"))
            break;
        // It becomes part of a file's name.
        if (language.isEmpty() || name.contains(QLatin1Char('/')))
            continue;
        names << name << language;
    }
    names.removeDuplicates();
    return names;
}

void Language::load(QCoreApplication& app)
{
    const QString directory = Share::absolute(QStringLiteral("translations"));
    const QStringList names = wanted();
    for (const QString& name : names) {
        // Not by the bare name, which Qt would shorten by itself, to other languages' in the end.
        if (!install(app, QStringLiteral("vok_%1.qm").arg(name), directory))
            continue;
        install(app, QStringLiteral("qtbase_%1").arg(name),
                QLibraryInfo::location(QLibraryInfo::TranslationsPath));
        return;
    }
}
