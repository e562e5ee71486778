// SPDX-License-Identifier: GPL-2.0-or-later
#include "repo/RepoAuthChecker.h"
#include "kit/URL.h"
#include "repo/RepoAuthDialog.h"
#include "repo/Vantry.h"
#include "repo/YumConfIO.h"

#include <QHash>

namespace
{

bool getAuth(const Repo::Entry& entry, RepoAuth::Checker::Auth& auth)
{
    QString nameKey;
    QString passwordKey;
    return Repo::Vantry::getAuth(entry, nameKey, auth.name, passwordKey, auth.password);
}

QString hostOf(const Repo::Entry& entry)
{
    const QString host = URL::getHost(entry.baseurl);
    return host.isEmpty() ? URL::getHost(entry.mirrorlist) : host;
}

} // namespace

RepoAuth::Checker::Checker(QWidget* parent, YumConfIO* conf)
{
    // After a failure, which was reported, what was read is checked all the same.
    conf->read(parent);
    askAll(parent, conf);
    if (dialog)
        dialog->setVisible(false);
    if (changed)
        conf->write(parent);
}

RepoAuth::Checker::~Checker() = default;

void RepoAuth::Checker::replace(Repo::Entry& entry, const Auth& auth)
{
    entry.baseurl = Repo::Vantry::replaceAuth(entry.baseurl, auth.name, auth.password);
    entry.mirrorlist = Repo::Vantry::replaceAuth(entry.mirrorlist, auth.name, auth.password);
}

void RepoAuth::Checker::askAll(QWidget* parent, YumConfIO* conf)
{
    QHash<QString, Auth> hosts;
    std::unique_ptr<Auth> all;
    for (Repo::Entry& entry : conf->entries) {
        if (!conf->usedRepos.value(entry.id))
            continue;
        Auth old;
        if (!getAuth(entry, old) || !old.name.isEmpty() || !old.password.isEmpty())
            continue;
        if (all) {
            replace(entry, *all);
            continue;
        }
        const QString host = hostOf(entry);
        const auto known = hosts.constFind(host);
        if (known != hosts.constEnd()) {
            replace(entry, *known);
            continue;
        }

        if (!dialog)
            dialog = std::make_unique<Dialog>(parent);
        dialog->exec(&entry);
        const int answer = dialog->result();
        if (answer == Dialog::Quit) {
            quit = true;
            return;
        }
        if (answer == Dialog::SkipAll)
            return;
        if (answer == Dialog::Disable) {
            conf->usedRepos[entry.id] = false;
            continue;
        }
        Auth given;
        getAuth(entry, given);
        if (given.name != old.name || given.password != old.password)
            changed = true;
        if (answer == Dialog::ApplyAll)
            all = std::make_unique<Auth>(given);
        else if (answer == Dialog::ApplyHost)
            hosts.insert(host, given);
    }
}
