// SPDX-License-Identifier: GPL-2.0-or-later
#include "WrittenRepository.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QtTest>

namespace
{

void writeFile(const QString& path, const QByteArray& text)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write(text);
}

QByteArray digest(const QByteArray& text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
}

} // namespace

QByteArray WrittenRepository::listing(const QByteArray& package, const QByteArray& summary)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<metadata xmlns=\"http://linux.duke.edu/metadata/common\""
           " xmlns:rpm=\"http://linux.duke.edu/metadata/rpm\" packages=\"1\">\n"
           "<package type=\"rpm\"><name>" +
           package +
           "</name><arch>noarch</arch><version epoch=\"0\" ver=\"1.0\" rel=\"1\"/>"
           "<checksum type=\"sha256\" pkgid=\"YES\">" +
           digest(package) + "</checksum><summary>" + summary +
           "</summary><description/><packager/><url/><time file=\"1705320000\" "
           "build=\"1705320000\"/><size package=\"1000\" installed=\"1000\" archive=\"1000\"/>"
           "<location href=\"" +
           package +
           "-1.0-1.noarch.rpm\"/><format><rpm:license>MIT</rpm:license>"
           "<rpm:group>Unspecified</rpm:group></format></package>\n</metadata>\n";
}

void WrittenRepository::write(const QString& directory, const QByteArray& contents)
{
    QVERIFY(QDir().mkpath(directory + "/repodata"));
    writeFile(directory + "/repodata/primary.xml", contents);
    const QByteArray checksum = "<checksum type=\"sha256\">" + digest(contents) + "</checksum>";
    const QByteArray size = QByteArray::number(contents.size());
    writeFile(directory + "/repodata/repomd.xml",
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<repomd xmlns=\"http://linux.duke.edu/metadata/repo\"><revision>1</revision>\n"
              "<data type=\"primary\">" +
                  checksum +
                  "<location href=\"repodata/primary.xml\"/><timestamp>1705320000</timestamp>"
                  "<size>" +
                  size + "</size></data>\n</repomd>\n");
}
