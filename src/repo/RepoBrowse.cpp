// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoBrowse.h"
#include "engine/YumIO.h"
#include "kit/Execute.h"
#include "kit/Share.h"
#include "repo/YumConfIO.h"

#include <QCoreApplication>
#include <QFile>
#include <QMessageBox>
#include <QRegExp>

#include <algorithm>

void RepoBrowse::browse(QWidget* parent, const Repo::Entry& entry, YumIO* yumIO)
{
    QString url;
    if (!entry.baseurl.isEmpty())
        url =
            entry.baseurl.section(QRegExp(QStringLiteral("\\s+")), 0, 0, QString::SectionSkipEmpty);
    else if (!entry.mirrorlist.isEmpty())
        url = entry.mirrorlist;
    else
        // No return: the script copes with an empty URL.
        QMessageBox::critical(
            parent, QCoreApplication::translate("RepoBrowse", "Error"),
            QCoreApplication::translate("RepoBrowse", "Repository configuration has no URL"),
            QMessageBox::Ok);

    {
        const Python::PyGILStateWrapper lock(true);
        for (const char* name : {"basearch", "arch", "releasever"}) {
            const QString variable = QString::fromLatin1(name);
            url.replace(QLatin1Char('$') + variable, yumIO->getYumVar(variable));
        }
    }

    QByteArray script = QFile::encodeName(Share::absolute(QStringLiteral("webbrowser")));
    QByteArray address = url.toLatin1(); // the bytes that stand in the file
    char* const argv[] = {script.data(), address.data(), nullptr};
    Execute::execute(parent, argv);
}

void RepoBrowse::browse(QWidget* parent, const QString& id, YumIO* yumIO, YumConfIO* conf)
{
    const auto entry =
        std::find_if(conf->entries.constBegin(), conf->entries.constEnd(),
                     [&id](const Repo::Entry& candidate) { return candidate.id == id; });
    if (entry != conf->entries.constEnd())
        browse(parent, *entry, yumIO);
}
