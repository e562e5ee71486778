// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"
#include "Program.h"

#include "table/PackageTable.h"

#include <QCryptographicHash>
#include <QDirIterator>

#include <sys/stat.h>

namespace
{

const QString sandbox = QStringLiteral(VOK_OWN_SANDBOX);

/// All that lies in the root but the package manager's own books, sorted.
QStringList filesBelow(const QString& root)
{
    QStringList found;
    QDirIterator files(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next().mid(root.size());
        // A folder for its modules is made by the package manager's library where there is none.
        if (!path.startsWith(QLatin1String("var/")) && !path.startsWith(QLatin1String("etc/dnf")))
            found << path;
    }
    found.sort();
    return found;
}

/// What came ("+") and went ("-").
QStringList changed(const QStringList& before, const QStringList& now)
{
    QStringList lines;
    for (const QString& path : now) {
        if (!before.contains(path))
            lines << QLatin1Char('+') + path;
    }
    for (const QString& path : before) {
        if (!now.contains(path))
            lines << QLatin1Char('-') + path;
    }
    return lines;
}

QString queried(const QString& root, const QStringList& arguments)
{
    QProcess rpm;
    rpm.start(QStringLiteral("rpm"),
              QStringList{"--dbpath", root + "var/lib/rpm", "-q"} + arguments);
    rpm.waitForFinished();
    return QString::fromUtf8(rpm.readAllStandardOutput());
}

/// The sum that rpm keeps of a file's content, in the kind that has as many digits.
QString sum(const QString& path, int digits)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("unreadable");
    const auto kind = digits == 32 ? QCryptographicHash::Md5 : QCryptographicHash::Sha256;
    return QString::fromLatin1(QCryptographicHash::hash(file.readAll(), kind).toHex());
}

/// What of a package's files isn't as its database has it; empty where all are.
QStringList differences(const QString& root, const QString& package)
{
    QStringList wrong;
    const QStringList lines =
        queried(root, {"--qf", "[%{filenames}|%{filemodes:octal}|%{filedigests}|%{filelinktos}\\n]",
                       package})
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (lines.size() < 2)
        wrong << package + QStringLiteral(" has no files");
    for (const QString& line : lines) {
        const QStringList fields = line.split(QLatin1Char('|'));
        const QString path = root + fields[0].mid(1);
        struct stat status;
        if (lstat(QFile::encodeName(path), &status) != 0) {
            wrong << fields[0] + QStringLiteral(" is missing");
            continue;
        }
        if (status.st_mode != fields[1].toUInt(nullptr, 8))
            wrong << fields[0] + QStringLiteral(" has other rights");
        if (S_ISREG(status.st_mode) && sum(path, fields[2].size()) != fields[2])
            wrong << fields[0] + QStringLiteral(" has another content");
        if (S_ISLNK(status.st_mode)) {
            char target[PATH_MAX] = {};
            if (readlink(QFile::encodeName(path), target, sizeof target - 1) < 0 ||
                QFile::decodeName(target) != fields[3])
                wrong << fields[0] + QStringLiteral(" leads elsewhere");
        }
    }
    return wrong;
}

} // namespace

/// VOK as a package among others: VOK installs it, and takes it away again.
class TestOwnPackage : public QObject
{
    Q_OBJECT

private:
    /// Installs it, and finds what it needs, and what it recommends, installed with it.
    static void install(ApplySession& user)
    {
        const auto version = [&](const QString& name) {
            return user.cell(name, PackageTable::ColumnVersion).data().toString();
        };
        const QString own = version("vok");
        QVERIFY2(own.startsWith(QStringLiteral(VOK_VERSION "-")), qPrintable(own));
        QVERIFY(user.mark("vok", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.reviewed(),
                      {"Transaction to be performed:", "Install: vok " + own + " (x86_64) [own]",
                       "Performing the following to resolve dependencies:",
                       "Install: hicolor-icon-theme 1.0-1 (noarch) [ground]",
                       "Install: polkit 1.0-1 (noarch) [ground]",
                       "Install: python3-dnf 1.0-1 (noarch) [ground]",
                       "Install: python3-rpm 1.0-1 (noarch) [ground]",
                       "Install: vok-doc " + own + " (noarch) [own]"});
        COMPARE_LINES(user.changes(), {"+hicolor-icon-theme-1.0-1.noarch", "+polkit-1.0-1.noarch",
                                       "+python3-dnf-1.0-1.noarch", "+python3-rpm-1.0-1.noarch",
                                       "+vok-" + own + ".x86_64", "+vok-doc-" + own + ".noarch"});
        QCOMPARE(user.entry("vok")->state, Package::StateInstalled);
        COMPARE_LINES(differences(user.path(""), "vok"), QStringList());
        COMPARE_LINES(differences(user.path(""), "vok-doc"), QStringList());
    }

private Q_SLOTS:
    void comesWithAllItNeedsAndGoesWithoutATrace()
    {
        ApplySession user(sandbox);
        QVERIFY(user.begin());
        const QStringList files = filesBelow(user.path(""));
        const QStringList packages = user.installed();
        QVERIFY(files.contains("usr/bin/busybox"));
        QVERIFY(!files.contains("usr/bin/vok"));
        install(user);
        if (QTest::currentTestFailed())
            return;
        QVERIFY(filesBelow(user.path("")).contains("usr/bin/vok"));

        QVERIFY(user.mark("vok", "Remove"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.installed(), packages);
        COMPARE_LINES(changed(files, filesBelow(user.path(""))), QStringList());
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void theInstalledProgramRunsAndLeavesItsFilesAlone()
    {
        ApplySession user(sandbox);
        QVERIFY(user.begin());
        install(user);
        if (QTest::currentTestFailed())
            return;
        QCOMPARE(user.quit(), QString());

        const QStringList files = filesBelow(user.path(""));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VOKSHARE", user.path("usr/share/vok"));
        // Root may write everywhere, and Python would.
        environment.remove("PYTHONDONTWRITEBYTECODE");
        Program program({"--state=all"}, environment, user.path("usr/bin/vok"));
        QVERIFY(program.press("^VOK - ", "ctrl+q"));
        QCOMPARE(program.end(), QString());
        COMPARE_LINES(changed(files, filesBelow(user.path(""))), QStringList());
        COMPARE_LINES(differences(user.path(""), "vok"), QStringList());
    }
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    SandboxServer server(sandbox, {QStringLiteral(VOK_OWN_COMMAND)});
    if (!server.start())
        return 1;
    TestOwnPackage tests;
    return runEachTestInItsOwnProcess(tests, argc, argv);
}

#include "tst_OwnPackage.moc"
