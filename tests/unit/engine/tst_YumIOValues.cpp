// SPDX-License-Identifier: GPL-2.0-or-later
#include "EngineProbe.h"

#include "engine/YumIODialogs.h"
#include "support/DialogDriver.h"

#include <QtTest>

#include <ctime>

namespace
{

const QByteArray script = ScriptShare::preamble() + R"(
class Package:
    def __init__(self, size=None, fields={}):
        if size is not None: self.size = size
        self.fields = fields
    def returnSimple(self, field): return self.fields[field]

class MethodPackage(Package):
    def size(self): return self.result

def sized(value):
    package = MethodPackage()
    package.result = value
    return package

class Word(str): pass
class Number(int): pass

asked = []
class YumIO:
    def getBiArch(self, arch):
        asked.append(arch)
        if arch == 'broken': raise RuntimeError('no word')
        return {'i686': 'i386'}.get(arch, arch)
    def flush(self): pass
)";

QString understood(const char* what)
{
    return QStringLiteral("2 0 Internal error: ") + QLatin1String(what);
}

} // namespace

class TestYumIOValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void bytesFormat_data();
    void bytesFormat();
    void timeAndDate();
    void textOfStringsOfEveryWidth();
    void bytesWithoutMeaningBecomeReplacements();
    void loneSurrogatesDoNotFail();
    void textOfNoneIsEmptyWithoutAWord();
    void textOfNullWarns();
    void warningIsShownInABox();
    void textOfAnIntegerWarnsButTheTolerantFormGivesDigits();
    void listsAndTuples();
    void emptyListGivesNoParentheses();
    void integersBeyondTheMachine();
    void valueWithoutATextWarns();
    void mappingString();
    void dictionaryItemByNonAsciiKey();
    void times();
    void sizes();
    void missingSizeWarnsAndLeavesNothingPending();
    void fieldLosesTrailingNewlinesOnly();
    void missingFieldIsEmptyWithNoWord();
    void otherFailureOfAFieldIsAnInternalError();
    void buildTime();
    void familyWordIsAskedOnce();
    void familyWordIsAskedAnewOfANewScriptObject();
    void failingFamilyWordIsReportedOnce();
    void describe();
    void releasesWhatItIsGiven();

private:
    PyRef make(const char* expression) { return engine.pyr(expression); }

    std::unique_ptr<ScriptShare> share;
    EngineProbe engine;
};

void TestYumIOValues::initTestCase()
{
    qputenv("TZ", "UTC");
    tzset();
    share = std::make_unique<ScriptShare>(script);
    QVERIFY(engine.initialize());
    QCOMPARE(engine.takeLog(), QStringList());
}

void TestYumIOValues::cleanup()
{
    QCOMPARE(engine.takeLog(), QStringList());
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOValues::bytesFormat_data()
{
    QTest::addColumn<unsigned long long>("bytes");
    QTest::addColumn<QString>("text");
    const auto row = [](unsigned long long bytes, const char* text) {
        QTest::addRow("%llu", bytes) << bytes << QString::fromLatin1(text);
    };
    row(0, "0b");
    row(5, "5.0b");
    row(9, "9.0b");
    row(10, "10b");
    row(999, "999b");
    row(1000, "1.0Kb");
    row(10188, "9.9Kb");
    row(10189, "10Kb");
    row(10240, "10Kb");
    row(1023999, "1000Kb");
    row(1024000, "1.0Mb");
    row(1000ULL << 20, "1.0Gb");
    row((1000ULL << 20) - 1, "1000Mb");
    row(1000ULL << 30, "1.0Tb");
    row(1000ULL << 40, "1.0Pb");
    row(1000ULL << 50, "1.0Eb");
    row((1000ULL << 50) - 1, "1000Pb");
    row(~0ULL, "16Eb");
}

void TestYumIOValues::bytesFormat()
{
    QFETCH(unsigned long long, bytes);
    QTEST(YumIO::bytesFormat(bytes), "text");
}

void TestYumIOValues::timeAndDate()
{
    QCOMPARE(YumIO::timeFormat(741476948), QStringLiteral("Wed Jun 30 21:49:08 1993"));
    QCOMPARE(YumIO::dateFormat(741476948), QStringLiteral("Wed Jun 30 1993"));
    QCOMPARE(YumIO::dateFormat(0), QStringLiteral("Thu Jan  1 1970"));
    // A time that the system's calendar doesn't reach has no text.
    QCOMPARE(YumIO::timeFormat(std::numeric_limits<long>::max()), QString());
    QCOMPARE(YumIO::dateFormat(std::numeric_limits<long>::max()), QString());
}

void TestYumIOValues::textOfStringsOfEveryWidth()
{
    QCOMPARE(engine.pyString(make("'plain'").get()), QStringLiteral("plain"));
    QCOMPARE(engine.pyString(make("''").get()), QString());
    QCOMPARE(engine.pyString(make("'gr\\u00fcn'").get()), QString::fromUtf8("gr\xc3\xbcn"));
    QCOMPARE(engine.pyString(make("'\\u65e5\\u672c'").get()),
             QString::fromUtf8("\xe6\x97\xa5\xe6\x9c\xac"));
    QCOMPARE(engine.pyString(make("'a\\U0001f4e6b'").get()), QString::fromUtf8("a\xf0\x9f\x93\xa6"
                                                                               "b"));
    QCOMPARE(engine.pyString(make("b'gr\\xc3\\xbcn'").get()), QString::fromUtf8("gr\xc3\xbcn"));
    QCOMPARE(engine.pyString(make("Word('word')").get()), QStringLiteral("word"));
    QCOMPARE(engine.pyString(make("'a\\0b'").get()).size(), 3);
}

void TestYumIOValues::bytesWithoutMeaningBecomeReplacements()
{
    QCOMPARE(engine.pyString(make("b'gr\\xfcn'").get()),
             QStringLiteral("gr") + QChar(QChar::ReplacementCharacter) + QLatin1Char('n'));
}

void TestYumIOValues::loneSurrogatesDoNotFail()
{
    const QString text =
        engine.pyString(make("b'gr\\xfcn'.decode('utf-8', 'surrogateescape')").get());
    QCOMPARE(text.size(), 4);
    QCOMPARE(text.at(3), QLatin1Char('n'));
    QCOMPARE(engine.pyString(make("'\\udcfc\\U0001f4e6n'").get()).right(1), QStringLiteral("n"));
}

void TestYumIOValues::textOfNoneIsEmptyWithoutAWord()
{
    QCOMPARE(engine.pyString(Py_None), QString());
    QCOMPARE(engine.takeLog(), QStringList());
}

void TestYumIOValues::textOfNullWarns()
{
    QCOMPARE(engine.pyString(nullptr), QString());
    QCOMPARE(engine.takeLog(), QStringList(understood("YumIO::pyString called with NULL")));
    QCOMPARE(engine.pyStringDec(nullptr), QString());
    QCOMPARE(engine.takeLog(), QStringList(understood("YumIO::pyString called with NULL")));
}

void TestYumIOValues::warningIsShownInABox()
{
    QWidget parent;
    YumIODialogs* const before = engine.dialogs;
    {
        YumIODialogsUser user(engine.dialogs, &parent);
        DialogDriver driver;
        driver.expect(QStringLiteral("VOK Yum Warning"))
            .text(QStringLiteral("Internal error: YumIO::pyString called with NULL"))
            .press(QStringLiteral("OK"));
        engine.pyString(nullptr);
        QCOMPARE(driver.driven(), 1);
    }
    QCOMPARE(engine.dialogs, before);
    QCOMPARE(engine.takeLog().size(), 1);
}

void TestYumIOValues::textOfAnIntegerWarnsButTheTolerantFormGivesDigits()
{
    QCOMPARE(engine.pyString(make("17").get()), QString());
    QCOMPARE(engine.takeLog(), QStringList(understood("YumIO::pyString did not understand type")));
    QCOMPARE(engine.pyStringX(make("17").get()), QStringLiteral("17"));
    QCOMPARE(engine.pyStringX(make("Number(-3)").get()), QStringLiteral("-3"));
    QCOMPARE(engine.pyStringX(make("'text'").get()), QStringLiteral("text"));
    QCOMPARE(engine.pyStringX(make("b'text'").get()), QStringLiteral("text"));
}

void TestYumIOValues::listsAndTuples()
{
    QCOMPARE(engine.pyStringX(make("['a', 5, ('b', b'c')]").get()),
             QStringLiteral("(a,\n 5,\n (b,c))"));
    QCOMPARE(engine.pyStringX(make("('a', ['b', 'c'], 'd')").get()),
             QStringLiteral("(a,(b,\n c),d)"));
}

void TestYumIOValues::emptyListGivesNoParentheses()
{
    QCOMPARE(engine.pyStringX(make("[]").get()), QString());
    QCOMPARE(engine.pyStringX(make("()").get()), QString());
    QCOMPARE(engine.pyStringX(make("['']").get()), QStringLiteral("()"));
}

void TestYumIOValues::integersBeyondTheMachine()
{
    QCOMPARE(engine.pyStringX(make("2 ** 63 - 1").get()), QStringLiteral("9223372036854775807"));
    QCOMPARE(engine.pyStringX(make("2 ** 70").get()), QStringLiteral("1180591620717411303424"));
    QCOMPARE(engine.pyTime(make("2 ** 70").get()), 0L);
    QCOMPARE(engine.takeLog(), QStringList(understood("time not understood")));
}

void TestYumIOValues::valueWithoutATextWarns()
{
    QCOMPARE(engine.pyStringX(make("3.5").get()), QString());
    QCOMPARE(engine.takeLog(), QStringList(understood("YumIO::pyStringX did not understand type")));
}

void TestYumIOValues::mappingString()
{
    QCOMPARE(engine.pyMappingString(make("{'basearch': 'x86_64'}").get(), "basearch"),
             QStringLiteral("x86_64"));
}

void TestYumIOValues::dictionaryItemByNonAsciiKey()
{
    const PyRef dict = make("{'gr\\u00fcn': 'green'}");
    QCOMPARE(engine.pyString(engine.pyDictGetItem(dict.get(), QString::fromUtf8("gr\xc3\xbcn"))),
             QStringLiteral("green"));
    QVERIFY(!engine.pyDictGetItem(dict.get(), QStringLiteral("red")));
}

void TestYumIOValues::times()
{
    QCOMPARE(engine.pyTime(make("741476948").get()), 741476948L);
    QCOMPARE(engine.pyTime(make("'741476948'").get()), 741476948L);
    QCOMPARE(engine.pyTimeDec(make("b'7'").release()), 7L);
    QCOMPARE(engine.takeLog(), QStringList());

    engine.pyTime(make("'99999999999999999999999'").get());
    QCOMPARE(engine.takeLog(),
             QStringList(understood("time not understood: 99999999999999999999999")));
    QCOMPARE(engine.pyTime(Py_None), 0L);
    QCOMPARE(engine.pyTimeDec(nullptr), 0L);
    QCOMPARE(engine.takeLog(),
             QStringList({understood("time not understood"), understood("time not understood")}));
}

void TestYumIOValues::sizes()
{
    QCOMPARE(engine.sizeOf(make("Package(12345)").get()), quint64(12345));
    QCOMPARE(engine.sizeOf(make("Package(2 ** 40)").get()), quint64(1) << 40);
    QCOMPARE(engine.sizeOf(make("Package('12345')").get()), quint64(12345));
    QCOMPARE(engine.sizeOf(make("sized(77)").get()), quint64(77));
    QCOMPARE(engine.sizeOf(make("sized('78')").get()), quint64(78));
    QCOMPARE(engine.takeLog(), QStringList());

    QCOMPARE(engine.sizeOf(make("sized(None)").get()), quint64(0));
    QCOMPARE(engine.takeLog(), QStringList(understood("package size result not understood")));
    QCOMPARE(engine.sizeOf(make("Package(1.5)").get()), quint64(0));
    QCOMPARE(engine.takeLog(), QStringList(understood("package size not understood")));
    engine.sizeOf(make("Package('99999999999999999999999')").get());
    QCOMPARE(engine.takeLog(),
             QStringList(understood("package size not understood: 99999999999999999999999")));
}

void TestYumIOValues::missingSizeWarnsAndLeavesNothingPending()
{
    QCOMPARE(engine.sizeOf(make("Package()").get()), quint64(0));
    QCOMPARE(engine.takeLog(), QStringList(understood("package size not understood")));
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOValues::fieldLosesTrailingNewlinesOnly()
{
    const PyRef package = make("Package(1, {'two': 'a\\n\\nb \\n\\n', 'none': None, 'n': '\\n\\n',"
                               " 'count': 5, 'list': ['x', 'y\\n']})");
    QCOMPARE(engine.simpleString(package.get(), "two"), QStringLiteral("a\n\nb "));
    QCOMPARE(engine.simpleString(package.get(), "n"), QString());
    QCOMPARE(engine.simpleString(package.get(), "none"), QString());
    QCOMPARE(engine.simpleString(package.get(), "count"), QStringLiteral("5"));
    QCOMPARE(engine.simpleString(package.get(), "list"), QStringLiteral("(x,\n y\n)"));
}

void TestYumIOValues::missingFieldIsEmptyWithNoWord()
{
    QCOMPARE(engine.simpleString(make("Package()").get(), "vendor"), QString());
    QCOMPARE(engine.takeLog(), QStringList());
    QVERIFY(!PyErr_Occurred());
}

void TestYumIOValues::otherFailureOfAFieldIsAnInternalError()
{
    QCOMPARE(engine.simpleString(make("Package(1, None)").get(), "vendor"), QString());
    const QStringList lines = engine.takeLog();
    QVERIFY2(lines.contains(
                 QStringLiteral("3 0 Internal error: python exception occurred from C code.")),
             qPrintable(lines.join('\n')));
}

void TestYumIOValues::buildTime()
{
    QCOMPARE(engine.buildTimeOf(make("Package(1, {'buildtime': '5'})").get()), 5L);
    QCOMPARE(engine.buildTimeOf(make("Package(1, {'buildtime': 6})").get()), 6L);
}

void TestYumIOValues::familyWordIsAskedOnce()
{
    engine.py("del asked[:]");
    QCOMPARE(engine.getBiArch(QStringLiteral("i686")), QStringLiteral("i386"));
    QCOMPARE(engine.getBiArch(QStringLiteral("i686")), QStringLiteral("i386"));
    QCOMPARE(engine.getBiArch(QStringLiteral("noarch")), QStringLiteral("noarch"));
    QCOMPARE(engine.pyStringXDec(make("asked").release()), QStringLiteral("(i686,\n noarch)"));
}

void TestYumIOValues::familyWordIsAskedAnewOfANewScriptObject()
{
    engine.getBiArch(QStringLiteral("i686"));
    engine.py("del asked[:]");
    engine.clear();
    engine.getBiArch(QStringLiteral("i686"));
    QCOMPARE(engine.pyStringXDec(make("asked").release()), QStringLiteral("(i686)"));
}

void TestYumIOValues::failingFamilyWordIsReportedOnce()
{
    QCOMPARE(engine.getBiArch(QStringLiteral("broken")), QString());
    QVERIFY(!engine.takeLog().isEmpty());
    QCOMPARE(engine.getBiArch(QStringLiteral("broken")), QString());
    QCOMPARE(engine.takeLog(), QStringList());
}

void TestYumIOValues::describe()
{
    QCOMPARE(engine.pyDescribe(Py_None), "*None*");
    QCOMPARE(engine.pyDescribe(make("'text'").get()), "text");
    QCOMPARE(engine.pyDescribe(make("12").get()), "12");
    QCOMPARE(engine.pyDescribe(make("YumBaseError('x')").get()), "x(*Obj*)");
}

void TestYumIOValues::releasesWhatItIsGiven()
{
    const PyRef text = make("'a text of its own'");
    const PyRef number = make("12345678");
    const PyRef package = make("Package('9', {'f': 'value of its own'})");
    const auto counts = [&] {
        return std::vector<Py_ssize_t>{Py_REFCNT(text.get()), Py_REFCNT(number.get()),
                                       Py_REFCNT(package.get())};
    };
    const auto before = counts();
    for (int round = 0; round < 1000; ++round) {
        Py_INCREF(text.get());
        engine.pyStringDec(text.get());
        Py_INCREF(text.get());
        engine.pyStringXDec(text.get());
        Py_INCREF(number.get());
        engine.pyTimeDec(number.get());
        engine.pyString(text.get());
        engine.pyStringX(number.get());
        engine.sizeOf(package.get());
        engine.simpleString(package.get(), "f");
        engine.simpleString(package.get(), "missing");
    }
    QVERIFY(counts() == before);
}

QTEST_MAIN(TestYumIOValues)
#include "tst_YumIOValues.moc"
