// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

/// The package manager's own reader finds in files that the program wrote what was put into them.
class TestReaders : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void findWhatWasWritten_data();
    void findWhatWasWritten();
    void findTheSameBeforeAndAfterARewrite();

private:
    /// What the reader says, by identifier; fails the test where it doesn't read all of it.
    QMap<QString, QJsonObject> found() const;
};

namespace
{

/// Random entries, the same for each seed. Texts are in UTF-8, a character for each byte.
class Source
{
public:
    explicit Source(quint32 seed)
        : random(seed)
    {
    }

    int number(int below) { return random.bounded(below); }
    bool maybe() { return number(2) == 1; }
    QString word(const char* characters)
    {
        const QString all = QString::fromUtf8(characters);
        QString result;
        for (int i = 1 + number(12); i > 0; --i)
            result += all.at(number(all.size()));
        return QString::fromLatin1(result.toUtf8());
    }

    /// Without quotes around a whole name, which the reader takes away.
    Repo::Entry entry(int index)
    {
        Repo::Entry entry;
        entry.id = word("abcXYZ0189-_.:") + QString::number(index);
        for (int i = number(4); i > 0; --i)
            entry.name += QChar('n') + word("abz09=:#;%[]\"'\\,(){}éß漢") + (i > 1 ? " " : "");
        for (int i = number(4); i > 0; --i)
            entry.baseurl +=
                (entry.baseurl.isEmpty() ? "http://h/" : "\nhttp://h/") + word("abz09=:#;%[]?&@/é");
        if (maybe())
            entry.mirrorlist = "http://m/" + word("abz09=:#;%?&@/");
        entry.enabled = number(3);
        entry.gpgcheck = number(3);
        const QStringList others{
            "# " + entry.name,      "#enabled=0",        "#[x]",  "; name=x", "exclude=a*,\n\tb*",
            "metadata_expire = 7d", "#" + word("=:#é["), "proxy="};
        for (const QString& line : others) {
            if (maybe())
                entry.other += line + '\n';
        }
        return entry;
    }

private:
    QRandomGenerator random;
};

QString text(const QString& bytes)
{
    return QString::fromUtf8(bytes.toLatin1());
}

} // namespace

QMap<QString, QJsonObject> TestReaders::found() const
{
    QProcess python;
    python.start(VOK_PYTHON, {"-B", VOK_READER, tree->path(mainFile), tree->path(repoDir)});
    if (!python.waitForFinished(60000))
        QTest::qFail("the reader doesn't end", __FILE__, __LINE__);
    const QByteArray errors = python.readAllStandardError();
    if (python.exitCode() != 0)
        QTest::qFail(errors, __FILE__, __LINE__);
    QMap<QString, QJsonObject> result;
    for (const QJsonValue& repo : QJsonDocument::fromJson(python.readAllStandardOutput()).array())
        result.insert(repo["id"].toString(), repo.toObject());
    return result;
}

void TestReaders::findWhatWasWritten_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 3; ++seed)
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
}

void TestReaders::findWhatWasWritten()
{
    QFETCH(quint32, seed);
    Source source(seed);
    tree->write(mainFile, "# head\n[main]\ngpgcheck=0\n\n");
    QVERIFY(read());
    for (int i = 0; i < 200; ++i) {
        Repo::Entry entry = source.entry(i);
        entry.fileName = tree->path(
            i % 20 == 0 ? mainFile
                        : repo(QByteArray::number(source.number(10)).append(".repo").constData()));
        entry.filePosition = i;
        io->entries << entry;
    }
    QVERIFY(write());

    const QMap<QString, QJsonObject> repos = found();
    QCOMPARE(repos.size(), io->entries.size());
    for (const Repo::Entry& entry : qAsConst(io->entries)) {
        const QJsonObject repo = repos.value(entry.id);
        QVERIFY2(!repo.isEmpty(), qPrintable(entry.id));
        // Newer readers take a backslash for the sign before a character that stands for itself.
        QCOMPARE(repo["name"].toString().remove('\\'),
                 text(entry.name.isEmpty() ? entry.id : entry.name).remove('\\'));
        QJsonArray urls;
        for (const QString& url : entry.baseurl.split('\n', Qt::SkipEmptyParts))
            urls << text(url);
        QCOMPARE(repo["baseurl"].toArray(), urls);
        QCOMPARE(repo["mirrorlist"].toString(), text(entry.mirrorlist));
        QCOMPARE(repo["enabled"].toBool(), entry.enabled != 0);
        if (entry.gpgcheck != 1)
            QCOMPARE(repo["gpgcheck"].toBool(), entry.gpgcheck == 2);
        QCOMPARE(repo["excludes"].toArray().size(), entry.other.contains("exclude=") ? 2 : 0);
    }
}

void TestReaders::findTheSameBeforeAndAfterARewrite()
{
    tree->write(mainFile, "\n[main]\n# c\n\nkeepcache=1\n[m]\nname=M\nbaseurl=http://m/\n");
    tree->write(repo("x.repo"),
                "# head\n\n[x]\n# c\n\nexclude = a,\n  b\nname = Caf\xc3\xa9 = # ; \n\n"
                "enabled=0\n;c\nbaseurl = http://a/\n\thttp://b/  http://c/\n\n   \n\n"
                "[y]\ngpgcheck= 0\nmirrorlist = http://m/?a=b&c=d\n#[z]\nname=Y\n");
    const auto before = found();
    QCOMPARE(before.keys(), (QStringList{"m", "x", "y"}));
    QCOMPARE(before["x"]["baseurl"].toArray().size(), 3);
    QCOMPARE(before["x"]["enabled"].toBool(), false);
    QVERIFY(read());
    QVERIFY(write());
    QVERIFY(!content(repo("x.repo")).contains("head"));
    QCOMPARE(found(), before);
}

QTEST_MAIN(TestReaders)
#include "tst_Readers.moc"
