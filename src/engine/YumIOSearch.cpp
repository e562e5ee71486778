// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/YumIO.h"

#include "engine/SearchTexts.h"
#include "engine/YumIODialogs.h"
#include "progress/Progress.h"

#include <algorithm>

std::unique_ptr<SearchTexts> YumIO::collectSearchTextsReal()
{
    blocker.block();
    Progress::User progressUser(progress, totalBar, itemBar);
    YumIODialogsUser dialogsUser(dialogs, parentWidget);
    log(Log::Action, 0, tr("Preparing the Search"));

    // The library reads its packages page by page: in the order in which it listed them each page
    // is unpacked once, in the order of the rows nearly once a package.
    std::vector<const Package::Entry*> packages;
    for (const Package::Entry* entry : qAsConst(entries)) {
        if (entry->kind == Package::KindSuite || entry->kind == Package::KindOrdinary)
            packages.push_back(entry);
    }
    std::stable_sort(packages.begin(), packages.end(),
                     [](const Package::Entry* left, const Package::Entry* right) {
                         return left->serial < right->serial;
                     });

    const auto count = static_cast<Steps>(packages.size());
    progress->startTotal(tr("Preparing the search: Total Progress"), count);
    progress->startItem(tr("Reading packages"), count, count);
    auto texts = std::make_unique<SearchTexts>();
    bool kept = true;
    {
        PyGILStateWrapper lock(true);
        for (size_t i = 0; i < packages.size() && kept; ++i) {
            kept = texts->add(packages[i], searchText(*packages[i]));
            progress->setItemValue(static_cast<Steps>(i) + 1);
        }
    }
    if (texts->finish() && kept)
        return texts;
    log(Log::Warning, 0, tr("Unable to keep the texts to search, so searching will be slow"));
    progress->reset();
    return nullptr;
}

QByteArray YumIO::searchText(const Package::Entry& entry)
{
    QByteArray text;
    for (const QString& field :
         {getName(entry),        getVerRel(entry),    getRepo(entry),        getArch(entry),
          getSize(entry),        getSummary(entry),   getDescription(entry), getGroup(entry),
          getVendor(entry),      getBuildTime(entry), getInstallTime(entry), getBinaryRpm(entry),
          getSourceRpm(entry),   getLicense(entry),   getPackager(entry),    getUrl(entry),
          getRelocations(entry), getProvides(entry),  getRequires(entry),    getConflicts(entry),
          getObsoletes(entry),   getChangeLog(entry)})
        SearchTexts::appendField(text, field.toUtf8());
    return text;
}

QByteArray YumIO::getSearchTexts(const Package::Entry& entry) const
{
    return searchTexts ? searchTexts->of(&entry) : QByteArray();
}
