// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit/repo/WriteTest.h"

#include <QMap>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace
{

/// A difference can be seen in it, whatever bytes the fields hold.
QString dump(const Repo::Entry& entry)
{
    const auto quoted = [](const QString& text) {
        return QString::fromLatin1(text.toLatin1().toPercentEncoding(" =:/[]"));
    };
    return QStringLiteral("[%1] name<%2> baseurl<%3> mirrorlist<%4> enabled %5 gpgcheck %6 "
                          "other<%7> file<%8> position %9")
        .arg(quoted(entry.id), quoted(entry.name), quoted(entry.baseurl), quoted(entry.mirrorlist),
             QString::number(entry.enabled), QString::number(entry.gpgcheck), quoted(entry.other),
             entry.fileName, QString::number(entry.filePosition));
}

QStringList dumpAll(QList<Repo::Entry> entries)
{
    std::sort(entries.begin(), entries.end(), [](const Repo::Entry& a, const Repo::Entry& b) {
        return a.fileName != b.fileName ? a.fileName < b.fileName : a.filePosition < b.filePosition;
    });
    QStringList result;
    for (const Repo::Entry& entry : qAsConst(entries))
        result << dump(entry);
    return result;
}

/// The text of a section, put together without any of the writer's code.
QByteArray textOf(const Repo::Entry& entry)
{
    const char* const words[] = {"0", nullptr, "1"};
    QByteArray text = '[' + entry.id.toLatin1() + "]\n";
    if (entry.name.size())
        text += "name=" + entry.name.toLatin1() + '\n';
    if (entry.baseurl.size())
        text += "baseurl=" + entry.baseurl.toLatin1().split('\n').join("\n        ") + '\n';
    if (entry.mirrorlist.size())
        text += "mirrorlist=" + entry.mirrorlist.toLatin1() + '\n';
    if (words[entry.enabled])
        text += QByteArray("enabled=") + words[entry.enabled] + '\n';
    if (words[entry.gpgcheck])
        text += QByteArray("gpgcheck=") + words[entry.gpgcheck] + '\n';
    return text + entry.other.toLatin1();
}

/// What becomes of a file's text when it is read and written, put together without any of the
/// program's code. Empty where no section is in it, nor a head.
QByteArray rewritten(const QByteArray& text, bool isMainFile)
{
    QStringList lines = QString::fromLatin1(text.constData(), text.size()).split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    QStringList logical;
    for (const QString& line : qAsConst(lines)) {
        if (!logical.isEmpty() && (line.startsWith(' ') || line.startsWith('\t')))
            logical.last() += '\n' + line;
        else
            logical << line;
    }

    QByteArray result;
    while (isMainFile && !logical.isEmpty() &&
           (!logical.first().startsWith('[') || logical.first() == "[main]"))
        result += logical.takeFirst().toLatin1() + '\n';

    static const QRegularExpression optionLine("\\A([^:=]*?)[ \\t]*[:=][ \\t]*(.*)\\z",
                                               QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression space("[ \\t\\n]+");
    const QStringList known{"name", "baseurl", "mirrorlist", "enabled", "gpgcheck"};
    int at = 0;
    while (at < logical.size() && !logical.at(at).startsWith('['))
        ++at;
    for (bool isFirst = true; at < logical.size(); isFirst = false) {
        result += (isFirst ? "" : "\n") + logical.at(at).toLatin1() + '\n';
        QMap<QString, QString> values;
        QByteArray other;
        for (++at; at < logical.size() && !logical.at(at).startsWith('['); ++at) {
            const QRegularExpressionMatch option = optionLine.match(logical.at(at));
            if (option.hasMatch() && known.contains(option.captured(1)))
                values[option.captured(1)] = option.captured(2);
            else if (!logical.at(at).isEmpty())
                other += logical.at(at).toLatin1() + '\n';
        }
        if (values.contains("baseurl"))
            values["baseurl"].replace(space, "\n        ");
        for (const QString& flag : {QString("enabled"), QString("gpgcheck")}) {
            if (values.contains(flag))
                values[flag] = values[flag] == "0" ? "0" : "1";
        }
        for (const QString& option : known) {
            if (!values.value(option).isEmpty())
                result += (option + '=' + values[option]).toLatin1() + '\n';
        }
        result += other;
    }
    return result;
}

/// Random texts of all that a file may hold. The same in each run.
class Source
{
public:
    explicit Source(quint32 seed)
        : random(seed)
    {
    }

    int number(int below) { return random.bounded(below); }
    bool maybe() { return number(2) == 1; }

    /// Bytes of all codes but newline; some more often than others.
    QString bytes(int longest)
    {
        static const QByteArray often = " \t\r=:[]#;%\\,{}$\"'";
        QString result;
        for (int i = number(longest + 1); i > 0; --i) {
            int code = number(3) ? 'a' + number(26) : number(256);
            if (number(5) == 0)
                code = often.at(number(often.size()));
            result += QChar(code == '\n' ? 0 : code);
        }
        return result;
    }

    QString continuations()
    {
        QString result;
        for (int i = number(3); i > 0; --i)
            result += QLatin1Char('\n') +
                      QString(1 + number(3), maybe() ? QLatin1Char(' ') : QLatin1Char('\t')) +
                      bytes(8);
        return result;
    }

    /// A value as it is read: white space stands behind it, not before it.
    QString value()
    {
        QString result = bytes(20);
        while (result.startsWith(QLatin1Char(' ')) || result.startsWith(QLatin1Char('\t')))
            result.remove(0, 1);
        return result + continuations();
    }

    QString urls()
    {
        QString result = maybe() ? QString() : QStringLiteral("\n");
        for (int i = number(4); i > 0; --i)
            result += QStringLiteral("http://h") +
                      bytes(20).remove(QLatin1Char(' ')).remove(QLatin1Char('\t')) +
                      QLatin1Char('\n');
        if (result.size() > 1 && maybe())
            result.chop(1);
        return result;
    }

    QString other()
    {
        static const QStringList starts{QStringLiteral("#"),        QStringLiteral("; "),
                                        QStringLiteral("Name="),    QStringLiteral("exclude = "),
                                        QStringLiteral("#name="),   QStringLiteral("enabled_too:"),
                                        QStringLiteral("]"),        QStringLiteral("\r"),
                                        QStringLiteral("metalink"), QStringLiteral("\n enabled=0")};
        QString result;
        for (int i = number(5); i > 0; --i)
            result +=
                starts.at(number(starts.size())) + bytes(20) + continuations() + QLatin1Char('\n');
        return result;
    }

    Repo::Entry entry(int index)
    {
        Repo::Entry entry;
        entry.id = bytes(8) + QString::number(index);
        if (maybe())
            entry.name = value();
        if (maybe())
            entry.baseurl = urls();
        if (maybe())
            entry.mirrorlist = value();
        entry.enabled = number(3);
        entry.gpgcheck = number(3);
        if (maybe())
            entry.other = other();
        return entry;
    }

    /// Any lines at all, but for headers that are none. All identifiers begin with `prefix`.
    QByteArray uglyText(int lines, const QByteArray& prefix)
    {
        static const QList<QByteArray> fragments{"\n",
                                                 "\n\n",
                                                 "\r\n",
                                                 " \n",
                                                 "\t\n",
                                                 "name=x\n",
                                                 "name:\tx=y \n",
                                                 "name\t = x\r\n",
                                                 "name=\n",
                                                 " name=continued\n",
                                                 "\tenabled=0\n",
                                                 "enabled=0\n",
                                                 "enabled = 0 \n",
                                                 "enabled:1\n",
                                                 "gpgcheck=no\n",
                                                 "gpgcheck=0\n",
                                                 "gpgcheck\n",
                                                 "#enabled=0\n",
                                                 "# comment\n",
                                                 "; comment\n",
                                                 "  # continued\n",
                                                 "baseurl=a b\tc\n",
                                                 "baseurl=\n",
                                                 "baseurl= \n",
                                                 "baseurl = a \n",
                                                 "   http://h/d\n",
                                                 "        \n",
                                                 "mirrorlist=http://h/m\n",
                                                 "mirrorlist : \n",
                                                 "=\n",
                                                 ":\n",
                                                 " = \n",
                                                 "]\n",
                                                 "x]\n",
                                                 "\xc3\xa9=\xe9\n",
                                                 "a\rb\n",
                                                 "exclude=a,\n  b,\n\n  c\n",
                                                 "main]\n",
                                                 QByteArray("na\0me=x\n", 8),
                                                 QByteArray("name=x\0y\n", 9),
                                                 QByteArray("enabled=0\0\n", 11),
                                                 QByteArray("\0\n", 2),
                                                 "\xef\xbb\xbf# mark\n",
                                                 "enabled=0\n   \n",
                                                 "name=[x]\n"};
        QByteArray text;
        for (int i = 0; i < lines; ++i) {
            if (number(5) == 0)
                text += "[" + prefix + QByteArray::number(i) + "]\n" + (maybe() ? "\n" : "k=v\n");
            else if (number(8) == 0)
                text += "k" + bytes(12).toLatin1() + '\n';
            else
                text += fragments.at(number(fragments.size()));
        }
        // An indented line would continue the header.
        while (text.contains("]\n ") || text.contains("]\n\t"))
            text.replace("]\n ", "]\n\n ").replace("]\n\t", "]\n\n\t");
        if (maybe() && text.endsWith('\n') && !text.endsWith("\n\n"))
            text.chop(1);
        return text;
    }

private:
    QRandomGenerator random;
};

} // namespace

/// What is written is read again as it was, and written again as it was.
class TestYumConfIORoundTrip : public WriteTest
{
    Q_OBJECT

private Q_SLOTS:
    void writesAndReadsThousandsOfEntries_data();
    void writesAndReadsThousandsOfEntries();
    void uglyTextIsWrittenByTheGrammar_data();
    void uglyTextIsWrittenByTheGrammar();
    void oneUglyFile();
    void linesWithCarriageReturns();
    void lastLineWithoutANewline();
    void tenThousandSections();
};

void TestYumConfIORoundTrip::writesAndReadsThousandsOfEntries_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 4; ++seed)
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
}

void TestYumConfIORoundTrip::writesAndReadsThousandsOfEntries()
{
    QFETCH(quint32, seed);
    Source source(seed);
    QByteArray head = "# head\n\n[main]\nreposdir=/a,/b\n";
    for (int i = 0; i < 20; ++i)
        head += "k" + source.bytes(30).toLatin1() + source.continuations().toLatin1() + '\n';
    tree->write(mainFile, head);
    tree->makeDirectory(QStringLiteral("/a"));
    tree->makeDirectory(QStringLiteral("/b"));
    QVERIFY(read());
    QVERIFY(io->entries.isEmpty());

    QStringList files{mainFile};
    for (int i = 0; i < 40; ++i)
        files << QStringLiteral("/%1/%2.repo").arg(QLatin1Char(source.maybe() ? 'a' : 'b')).arg(i);
    QMap<QString, QList<Repo::Entry>> expected;
    for (int i = 0; i < 2000; ++i) {
        Repo::Entry entry = source.entry(i);
        entry.fileName = tree->path(files.at(source.number(files.size())));
        QList<Repo::Entry>& inFile = expected[entry.fileName];
        entry.filePosition = inFile.size() + 1;
        inFile << entry;
    }
    // In no order at all; the positions decide.
    for (const QList<Repo::Entry>& inFile : qAsConst(expected)) {
        for (const Repo::Entry& entry : inFile)
            io->entries.insert(source.number(io->entries.size() + 1), entry);
    }
    const QStringList before = dumpAll(io->entries);

    QVERIFY(write());
    QMap<QString, QByteArray> texts;
    for (const QString& file : qAsConst(files)) {
        QByteArray text = file == mainFile ? head : QByteArray();
        const QList<Repo::Entry> inFile = expected.value(tree->path(file));
        if (inFile.isEmpty() && file != mainFile)
            continue;
        for (int i = 0; i < inFile.size(); ++i)
            text += (i ? "\n" : "") + textOf(inFile.at(i));
        texts.insert(file, text);
        QCOMPARE(content(file).toPercentEncoding("\n =[]"), text.toPercentEncoding("\n =[]"));
    }

    QVERIFY(read());
    const QStringList after = dumpAll(io->entries);
    QCOMPARE(after.size(), before.size());
    for (int i = 0; i < before.size(); ++i)
        QCOMPARE(after.at(i), before.at(i));

    QVERIFY(write());
    for (auto it = texts.constBegin(); it != texts.constEnd(); ++it)
        QVERIFY2(content(it.key()) == it.value(), qPrintable(it.key()));
}

void TestYumConfIORoundTrip::uglyTextIsWrittenByTheGrammar_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 4; ++seed)
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
}

void TestYumConfIORoundTrip::uglyTextIsWrittenByTheGrammar()
{
    QFETCH(quint32, seed);
    Source source(seed);
    const auto visible = [](const QByteArray& text) { return text.toPercentEncoding("\n =[]"); };
    for (int i = 0; i < 200; ++i) {
        const QByteArray mainText = source.uglyText(20, "m");
        const QByteArray repoText = source.uglyText(source.number(80), "x");
        const QByteArray texts = visible(mainText + "----\n" + repoText);
        tree->write(mainFile, mainText);
        tree->write(repo("x.repo"), repoText);
        const QByteArray mainExpected = rewritten(mainText, true);
        const QByteArray repoExpected = rewritten(repoText, false);

        QVERIFY2(read(), texts);
        const QStringList first = dumpAll(io->entries);
        const QString head = io->confText;
        // The second time, what the first wrote.
        for (int time = 0; time < 2; ++time) {
            QVERIFY2(write(), texts);
            QVERIFY2(content(mainFile) == mainExpected,
                     texts + "\n---- became\n" + visible(content(mainFile)));
            if (repoExpected.isEmpty())
                QVERIFY2(repoFiles().isEmpty(), texts);
            else
                QVERIFY2(content(repo("x.repo")) == repoExpected,
                         texts + "\n---- became\n" + visible(content(repo("x.repo"))));
            QVERIFY2(read(), texts);
            QCOMPARE(io->confText, head);
            QCOMPARE(dumpAll(io->entries), first);
        }
    }
}

void TestYumConfIORoundTrip::oneUglyFile()
{
    tree->write(mainFile, "# c\n\n[main]\ncachedir=/c\n\t/d\n\n\n;last\n[m]\nname : \tM \n\n");
    tree->write(repo("x.repo"),
                "ignored=1\n# too\n\n"
                "[one]\n#name=no\nname=first\nname:  Caf\xc3\xa9 = \xe9 \n\n"
                "baseurl=http://a/\thttp://b/ \n  http://c/\n\n\t\n; between\n"
                "enabled=no\nenabled = 0\ngpgcheck:0 \n"
                "[t]w[o]\nexclude=a\n\n  b\nmirrorlist=http://m/\n  x\n[]]\nNAME=x\n=\n:");
    QVERIFY(read());
    QVERIFY(write());
    const QByteArray mainText = "# c\n\n[main]\ncachedir=/c\n\t/d\n\n\n;last\n[m]\nname=M \n";
    const QByteArray repoText =
        "[one]\nname=Caf\xc3\xa9 = \xe9 \nbaseurl=http://a/\n        http://b/\n        http://c/\n"
        "enabled=0\ngpgcheck=1\n#name=no\n\n\t\n; between\n"
        "\n[t]w[o]\nmirrorlist=http://m/\n  x\nexclude=a\n\n  b\n"
        "\n[]]\nNAME=x\n=\n:\n";
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(content(mainFile), mainText);
        QCOMPARE(content(repo("x.repo")), repoText);
        QVERIFY(read());
        QVERIFY(write());
    }
}

void TestYumConfIORoundTrip::linesWithCarriageReturns()
{
    // Only a header can't end in one; and "0" with one behind it isn't "0".
    tree->write(mainFile, "[main]\nk=v\r\n\r\n");
    tree->write(repo("x.repo"), "[x]\nname=X\r\n\r\nbaseurl=a\r\n  b\r\nenabled=0\r\nk=v\r\n");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\nk=v\r\n\r\n"));
    const QByteArray text = "[x]\nname=X\r\nbaseurl=a\r\n        b\r\nenabled=1\n\r\nk=v\r\n";
    QCOMPARE(content(repo("x.repo")), text);
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(repo("x.repo")), text);
}

void TestYumConfIORoundTrip::lastLineWithoutANewline()
{
    tree->write(mainFile, "[main]\nk=v");
    tree->write(repo("a.repo"), "[a]\nk=v");
    tree->write(repo("b.repo"), "[b]");
    tree->write(repo("c.repo"), "[c]\nname=C");
    QVERIFY(read());
    QVERIFY(write());
    QCOMPARE(content(mainFile), QByteArray("[main]\nk=v\n"));
    QCOMPARE(content(repo("a.repo")), QByteArray("[a]\nk=v\n"));
    QCOMPARE(content(repo("b.repo")), QByteArray("[b]\n"));
    QCOMPARE(content(repo("c.repo")), QByteArray("[c]\nname=C\n"));
}

void TestYumConfIORoundTrip::tenThousandSections()
{
    QByteArray text;
    for (int i = 0; i < 10000; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += (i ? "\n[s" : "[s") + number + "]\nname=Section " + number + "\nbaseurl=http://h/" +
                number + "\nenabled=1\n# of " + number + '\n';
    }
    tree->write(repo("x.repo"), text);
    QVERIFY(read());
    QCOMPARE(io->entries.size(), 10000);
    std::reverse(io->entries.begin(), io->entries.end());
    QVERIFY(write());
    QVERIFY(content(repo("x.repo")) == text);
}

QTEST_MAIN(TestYumConfIORoundTrip)
#include "tst_YumConfIORoundTrip.moc"
