// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Envra.h"
#include "engine/TsInfo.h"
#include "fuzz/Require.h"

#include <QString>

namespace
{

const QString untouched = QStringLiteral("untouched");

/// Whether there is a dot with two dashes before it, none of the three at the start.
bool isEnvra(const QString& text)
{
    const int dot = text.lastIndexOf(QLatin1Char('.'));
    return dot > 0 && text.mid(1, dot - 1).count(QLatin1Char('-')) >= 2;
}

void splitsAnEnvra(const QString& text)
{
    QString name = untouched, epoch = untouched, version = untouched;
    QString release = untouched, arch = untouched;
    if (!Envra::parse(text, name, epoch, version, release, arch)) {
        require(!isEnvra(text), "what has all separators is split");
        for (const QString& part : {name, epoch, version, release, arch})
            require(part == untouched, "nothing is given where the text isn't split");
        return;
    }
    require(isEnvra(text), "what lacks a separator isn't split");
    QString whole = name + '-' + version + '-' + release + '.' + arch;
    if (!epoch.isNull())
        whole.prepend(epoch + ':');
    require(whole == text, "the parts make the text");
    require(!name.contains(':'), "the epoch ends at the last colon before the version");
    require(!version.contains('-') && !release.contains('-'), "the name ends at the last dashes");
    require(!arch.contains('.'), "the architecture begins at the last dot");
}

void takesInALine(const QString& line)
{
    TsInfo info;
    info.package = untouched;
    info.counts = {{7, false}};
    if (!info.parse(line)) {
        require(info.package == untouched && info.counts.size() == 1,
                "an unknown line tells nothing");
        require(line.startsWith("Updating ") || line.startsWith("Obsoleting ") ||
                    line.startsWith("Marking ") || !line.contains(" marked as erase"),
                "what is to be erased is expected");
        return;
    }
    if (info.counts.isEmpty()) {
        require(line.contains(" marked as erase"), "only what goes away counts for nothing");
        require(info.package.isEmpty(), "what goes away isn't named");
        return;
    }
    unsigned int packages = 0;
    unsigned int headers = 0;
    for (const TsInfo::Count& count : qAsConst(info.counts)) {
        packages += count.packages;
        headers += count.header ? 1 : 0;
    }
    require(packages == 1 || packages == 2, "a line counts for one package or two");
    require(headers == 1, "a line counts for one header");
    require(line.section(' ', 1, 1) == info.package, "a line counts for its second word");
    splitsAnEnvra(info.package);
}

} // namespace

/// A line of the solver's log, without its prefix.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    const QString line =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    takesInALine(line);
    splitsAnEnvra(line);
    return 0;
}
