// SPDX-License-Identifier: GPL-2.0-or-later
#include "table/PackageTableDescription.h"

#include "engine/YumIO.h"

#include <QCoreApplication>

namespace PackageTable
{

namespace
{

class Writer
{
    Q_DECLARE_TR_FUNCTIONS(PackageTable::Writer)

public:
    void heading(const QString& heading)
    {
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += heading + QLatin1Char('\n');
    }

    void line(const QString& label, const QString& value)
    {
        if (!value.isEmpty())
            text += tr("%1: %2\n").arg(label, value);
    }

    void block(const QString& label, const QString& value)
    {
        if (!value.isEmpty())
            text += tr("\n%1:\n%2\n").arg(label, value);
    }

    void group(YumIO& yumIO, const Package::Entry& entry);
    void package(YumIO& yumIO, const Package::Entry& entry);
    void furtherVersion(YumIO& yumIO, const Package::Entry& entry);

    QString text;
};

void Writer::group(YumIO& yumIO, const Package::Entry& entry)
{
    line(tr("Kind"), yumIO.getKind(entry));
    block(tr("Required Groups"), yumIO.getRequiredGroups(entry));
    block(tr("Default MetaPkgs"), yumIO.getDefaultMetaPkgs(entry));
    block(tr("Optional MetaPkgs"), yumIO.getOptionalMetaPkgs(entry));
    block(tr("Mandatory Packages"), yumIO.getMandatoryPkgs(entry));
    block(tr("Default Packages"), yumIO.getDefaultPkgs(entry));
    block(tr("Optional Packages"), yumIO.getOptionalPkgs(entry));
    block(tr("Conditional Packages"), yumIO.getConditionalPkgs(entry));
}

void Writer::package(YumIO& yumIO, const Package::Entry& entry)
{
    line(tr("Kind"), yumIO.getKind(entry));
    line(tr("Version"), yumIO.getVerRel(entry));
    line(tr("Repository"), yumIO.getRepo(entry));
    line(tr("Architecture"), yumIO.getArch(entry));
    line(tr("Size"), yumIO.getSize(entry));
    line(tr("Summary"), yumIO.getSummary(entry));
    line(tr("Group"), yumIO.getGroup(entry));
    line(tr("Vendor"), yumIO.getVendor(entry));
    line(tr("Build Time"), yumIO.getBuildTime(entry));
    line(tr("Build Host"), yumIO.getBuildHost(entry));
    line(tr("Install Time"), yumIO.getInstallTime(entry));
    line(tr("Binary RPM"), yumIO.getBinaryRpm(entry));
    line(tr("Source RPM"), yumIO.getSourceRpm(entry));
    line(tr("License"), yumIO.getLicense(entry));
    line(tr("Packager"), yumIO.getPackager(entry));
    line(tr("URL"), yumIO.getUrl(entry));
    block(tr("Description"), yumIO.getDescription(entry));
    block(tr("Relocations"), yumIO.getRelocations(entry));
    block(tr("Provides"), yumIO.getProvides(entry));
    block(tr("Requires"), yumIO.getRequires(entry));
    block(tr("Conflicts"), yumIO.getConflicts(entry));
    block(tr("Obsoletes"), yumIO.getObsoletes(entry));
    // An installed package has these two at hand; of another one they may cost a download.
    const bool installed = entry.state == Package::StateInstalled;
    if (installed || yumIO.areFileListsCollected())
        block(tr("Files"), yumIO.getFiles(entry));
    if (installed || yumIO.areOtherDataCollected())
        block(tr("Change Log"), yumIO.getChangeLog(entry));
}

void Writer::furtherVersion(YumIO& yumIO, const Package::Entry& entry)
{
    heading(yumIO.getState(entry));
    line(tr("Version"), yumIO.getVerRel(entry));
    line(tr("Architecture"), yumIO.getArch(entry));
    line(tr("Size"), yumIO.getSize(entry));
    line(tr("Build Time"), yumIO.getBuildTime(entry));
    line(tr("Packager"), yumIO.getPackager(entry));
}

} // namespace

QString description(YumIO& yumIO, const Package::Entry& entry)
{
    Writer writer;
    writer.heading(yumIO.getName(entry));
    writer.heading(yumIO.getState(entry));
    switch (entry.kind) {
    case Package::KindGroup:
        writer.group(yumIO, entry);
        break;
    case Package::KindSuite:
    case Package::KindOrdinary:
        writer.package(yumIO, entry);
        break;
    }
    for (const Package::Entry* version = entry.next; version; version = version->next)
        writer.furtherVersion(yumIO, *version);
    return writer.text;
}

} // namespace PackageTable
