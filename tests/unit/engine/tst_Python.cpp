// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Python.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <thread>

namespace
{

/// Keeps what is reported, and opens what is protected.
class Probe : public Python
{
public:
    using Python::initialized;
    using Python::main_dict;

    void error(const char* message) override { errors.append(QString::fromUtf8(message)); }
    void warning(const char* message) override { warnings.append(QString::fromUtf8(message)); }
    void exceptionExpected() override { ++expectedSeen; }

    /// The reports so far, which are forgotten.
    QStringList takeErrors() { return std::exchange(errors, {}); }

    long number(const char* expression)
    {
        const PyRef value = pyr(expression);
        return value ? PyLong_AsLong(value.get()) : -1;
    }

    QStringList errors;
    QStringList warnings;
    int expectedSeen = 0;
};

const QString walkbackReport =
    QStringLiteral("Internal error: python exception occurred from C code.\n"
                   "When reporting this issue, please include the contents of the\n"
                   "Log window, which should contain a walkback.");

} // namespace

class TestPython : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void ignoresTheEnvironment();
    void keepsTheInterpretersOwnSigintHandler();
    void initializingAgainDoesNothing();
    void runsCodeOfAnyLength();
    void reportsAFailingExpression();
    void textOfNoneIsNullWithoutAReport();
    void textOfAStringOrBytes();
    void textOfAnythingElseIsReported();
    void looksUpDottedNames();
    void quietLookupLeavesNoTrace();
    void lookupReportsThePartThatIsMissing();
    void callOfAMissingNameIsReportedTwice();
    void callPassesArguments();
    void callOfSomethingNotCallableIsReported();
    void methodOfANullObjectIsReported();
    void missingMethodIsReportedAndTheErrorStays();
    void methodThatIsNoMethodIsReported();
    void assignsAndReadsValues();
    void assigningToWhatIsNoModuleIsReported();
    void expectedExceptionStaysPending();
    void unexpectedExceptionShowsAWalkback();
    void onlyTheTopScopeCounts();
    void emptyStackMeansInternalError();
    void matchesNothingForAGivenResult();
    void expectingNullIsReported();
    void exceptionTextPrefersTheValueAttribute();
    void internalErrorWithoutAnExceptionSaysSo();
    void knowsTheVersion();
    void debuggerGetsTheObjectAndTheTerminal();
    void lockNestsAndGoesToAnotherThread();
    void inactiveLockWrapperDoesNotLock();
    void callsKeepReferenceCounts();
    void failuresKeepReferenceCounts();

private:
    Probe python;
    QTemporaryDir planted;
};

void TestPython::initTestCase()
{
    // What another interpreter's user may have in the environment.
    QFile module(planted.filePath(QStringLiteral("vokplanted.py")));
    QVERIFY(module.open(QIODevice::WriteOnly));
    module.write("here = True\n");
    module.close();
    QFile signalModule(planted.filePath(QStringLiteral("signal.py")));
    QVERIFY(signalModule.open(QIODevice::WriteOnly));
    signalModule.write("raise ImportError('planted')\n");
    signalModule.close();
    qputenv("PYTHONPATH", QFile::encodeName(planted.path()));
    qputenv("PYTHONHOME", "/nonexistent");

    // The interpreter leaves a signal alone that its parent had it ignore.
    std::signal(SIGINT, SIG_DFL);

    QVERIFY(!Probe::initialized);
    QVERIFY(python.initialize());
    QCOMPARE(python.takeErrors(), QStringList());
    QVERIFY(Probe::initialized);
    QVERIFY(Probe::main_dict);
    python.py("import sys, io\n"
              "class Thing:\n"
              "    data = 7\n"
              "    def give(self, *args): return args\n"
              "    def fail(self): raise KeyError('gone')\n"
              "    def me(self): return self\n"
              "class WithValue(Exception):\n"
              "    def __init__(self, value): self.value = value\n"
              "def failing(): raise ValueError('bad value')\n"
              "def add(a, b): return a + b\n"
              "thing = Thing()\n"
              "table = {'inner': {'leaf': 5}}\n");
}

void TestPython::cleanup()
{
    QCOMPARE(python.takeErrors(), QStringList());
    QVERIFY(!PyErr_Occurred());
    python.expectedSeen = 0;
}

void TestPython::ignoresTheEnvironment()
{
    QVERIFY(!python.pyLookup("vokplanted", true));
    QVERIFY(python.pyLookup("os", true));
    QCOMPARE(python.number("sys.flags.ignore_environment"), 1L);
    QCOMPARE(python.number("sys.flags.no_user_site"), 1L);
}

void TestPython::keepsTheInterpretersOwnSigintHandler()
{
    const auto handler = [] {
        struct sigaction action = {};
        sigaction(SIGINT, nullptr, &action);
        return action.sa_handler;
    };
    QCOMPARE(python.number("defaultSigIntSigaction is signal.default_int_handler"), 1L);
    python.setEnablePythonSIGINTHandler(false);
    QVERIFY(handler() == SIG_DFL);
    python.setEnablePythonSIGINTHandler(true);
    QVERIFY(handler() != SIG_DFL);
    QCOMPARE(python.number("signal.getsignal(signal.SIGINT) is defaultSigIntSigaction"), 1L);
    python.setEnablePythonSIGINTHandler(false);
}

void TestPython::initializingAgainDoesNothing()
{
    PyObject* const dict = Probe::main_dict;
    python.py("kept = defaultSigIntSigaction; defaultSigIntSigaction = 11");
    QVERIFY(python.initialize());
    QCOMPARE(Probe::main_dict, dict);
    QCOMPARE(python.number("defaultSigIntSigaction"), 11L);
    python.py("defaultSigIntSigaction = kept; del kept");
}

void TestPython::runsCodeOfAnyLength()
{
    const QByteArray text(20000, 'x');
    python.pyf("long = '%s'; count = %d", text.constData(), 3);
    QCOMPARE(python.number("len(long) + count"), 20003L);
    const PyRef length = python.pyrf("len('%s')", text.constData());
    QCOMPARE(PyLong_AsLong(length.get()), 20000L);
}

void TestPython::reportsAFailingExpression()
{
    python.pyExceptStart();
    python.pyExceptExpect(PyExc_NameError);
    const PyRef value = python.pyr("nosuchname");
    QVERIFY(!value);
    QVERIFY(python.pyExceptMatches(value.get(), PyExc_NameError));
    python.pyExceptClear();
}

void TestPython::textOfNoneIsNullWithoutAReport()
{
    QVERIFY(!python.pyString(Py_None));
    QCOMPARE(python.takeErrors(), QStringList());
}

void TestPython::textOfAStringOrBytes()
{
    const PyRef text = python.pyr("'gr\\u00fcn'");
    QCOMPARE(python.pyString(text.get()), "gr\xc3\xbcn");
    const PyRef bytes = python.pyr("b'raw'");
    QCOMPARE(python.pyString(bytes.get()), "raw");
}

void TestPython::textOfAnythingElseIsReported()
{
    QVERIFY(!python.pyString(nullptr));
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: pyString passed NULL python object\n")));
    python.py("sys.stderr = io.StringIO()");
    const PyRef number = python.pyr("5");
    QVERIFY(!python.pyString(number.get()));
    QCOMPARE(python.takeErrors(), QStringList(walkbackReport));
    QCOMPARE(python.number("'TypeError' in sys.stderr.getvalue()"), 1L);
    python.py("sys.stderr = sys.__stderr__");
}

void TestPython::looksUpDottedNames()
{
    QCOMPARE(python.pyLookup("__builtins__.str", false),
             reinterpret_cast<PyObject*>(&PyUnicode_Type));
    QCOMPARE(PyLong_AsLong(python.pyLookup("table.inner.leaf", false)), 5L);
    // Imported by the lookup itself.
    QVERIFY(python.pyLookup("bdb.BdbQuit", false));
    // Attributes of plain objects are out of reach.
    QVERIFY(!python.pyLookup("thing.data", true));
}

void TestPython::quietLookupLeavesNoTrace()
{
    for (const char* name :
         {"nosuchmodule", "nosuchmodule.part", "sys.nosuchname", "sys.version.x"}) {
        QVERIFY2(!python.pyLookup(name, true), name);
        QVERIFY2(!PyErr_Occurred(), name);
        QVERIFY2(python.errors.isEmpty(), name);
    }
}

void TestPython::lookupReportsThePartThatIsMissing()
{
    QVERIFY(!python.pyLookup("sys.nosuchname.more", false));
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: nosuchname not found\n")));
    QVERIFY(!PyErr_Occurred());
}

void TestPython::callOfAMissingNameIsReportedTwice()
{
    QVERIFY(!python.pyCall("sys.nosuchcall", "()"));
    QCOMPARE(python.takeErrors(),
             QStringList({QStringLiteral("Internal error: nosuchcall not found\n"),
                          QStringLiteral("Internal error: sys.nosuchcall not found\n")}));
}

void TestPython::callPassesArguments()
{
    const PyRef sum = python.pyCall("add", "(ss)", "ab", "cd");
    QCOMPARE(python.pyString(sum.get()), "abcd");
    PyObject* thing = python.pyLookup("thing", false);
    const PyRef tuple = python.pyMethodCall(thing, "give", "(i,O)", 3, thing);
    QCOMPARE(PyTuple_Size(tuple.get()), Py_ssize_t(2));
    QCOMPARE(PyTuple_GetItem(tuple.get(), 1), thing);
    const PyRef none = python.pyMethodCall(thing, "give", "()");
    QCOMPARE(PyTuple_Size(none.get()), Py_ssize_t(0));
}

void TestPython::callOfSomethingNotCallableIsReported()
{
    QVERIFY(!python.pyCall("sys.hexversion", "()"));
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: sys.hexversion not callable\n")));
}

void TestPython::methodOfANullObjectIsReported()
{
    QVERIFY(!python.pyMethodCall(nullptr, "lock", "()"));
    QCOMPARE(
        python.takeErrors(),
        QStringList(QStringLiteral("Internal error: method lock call attemped with NULL self\n")));
    QVERIFY(!PyErr_Occurred());
}

void TestPython::missingMethodIsReportedAndTheErrorStays()
{
    QVERIFY(!python.pyMethodCall(python.pyLookup("thing", false), "nosuch", "()"));
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: method nosuch not found\n")));
    QVERIFY(PyErr_ExceptionMatches(PyExc_AttributeError));
    PyErr_Clear();
}

void TestPython::methodThatIsNoMethodIsReported()
{
    QVERIFY(!python.pyMethodCall(python.pyLookup("thing", false), "data", "()"));
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: method data not callable\n")));
}

void TestPython::assignsAndReadsValues()
{
    const PyRef value = PyRef::adopt(PyLong_FromLong(42));
    python.pyAssign("sys", "vokvalue", value.get());
    QCOMPARE(python.number("sys.vokvalue"), 42L);
    QCOMPARE(python.pyValue("sys", "vokvalue"), value.get());
    python.pyAssign("table.inner", "other", value.get());
    QCOMPARE(python.pyValue("table.inner", "other"), value.get());
    python.pyAssignGlobal("vokglobal", value.get());
    QCOMPARE(python.number("vokglobal"), 42L);

    // An absent name is no failure, an absent module is.
    QVERIFY(!python.pyValue("sys", "nosuchvalue"));
    QCOMPARE(python.takeErrors(), QStringList());
    QVERIFY(!python.pyValue("nosuchmodule", "value"));
    QCOMPARE(python.takeErrors(),
             QStringList({QStringLiteral("Internal error: nosuchmodule not found\n"),
                          QStringLiteral("Internal error: nosuchmodule not found\n")}));
}

void TestPython::assigningToWhatIsNoModuleIsReported()
{
    python.py("sys.stderr = io.StringIO()");
    python.pyAssign("marker2", "x", Py_None);
    QCOMPARE(python.takeErrors().size(), 2);
    python.py("notadict = 5");
    python.pyAssign("notadict", "x", Py_None);
    QCOMPARE(python.takeErrors(), QStringList(walkbackReport));
    python.py("sys.stderr = sys.__stderr__");
}

void TestPython::expectedExceptionStaysPending()
{
    python.pyExceptStart();
    python.pyExceptExpect(PyExc_OSError);
    python.pyExceptExpect(PyExc_ValueError);
    const PyRef result = python.pyCall("failing", "()");
    QVERIFY(!result);
    QCOMPARE(python.expectedSeen, 1);
    QVERIFY(PyErr_Occurred());
    QVERIFY(python.pyExceptMatches(result.get(), PyExc_ValueError));
    QVERIFY(!python.pyExceptMatches(result.get(), PyExc_OSError));
    QCOMPARE(python.pyString(python.pyExceptValuef().get()), "bad value");
    QVERIFY(python.pyExceptMatches(result.get(), PyExc_ValueError));
    QCOMPARE(python.takeErrors(), QStringList());
    python.pyExceptClear();
    QVERIFY(!PyErr_Occurred());
}

void TestPython::unexpectedExceptionShowsAWalkback()
{
    python.py("sys.stderr = io.StringIO()");
    python.pyExceptStart();
    python.pyExceptExpect(PyExc_KeyError);
    const PyRef result = python.pyCall("failing", "()");
    QVERIFY(!result);
    QCOMPARE(python.expectedSeen, 0);
    QVERIFY(!python.pyExceptMatches(result.get(), PyExc_ValueError));
    QVERIFY(!PyErr_Occurred());
    python.pyExceptClear();
    QCOMPARE(python.takeErrors(), QStringList(walkbackReport));
    const PyRef written = python.pyr("sys.stderr.getvalue()");
    const QString walkback = QString::fromUtf8(python.pyString(written.get()));
    QVERIFY2(walkback.startsWith(QStringLiteral("Traceback")), qPrintable(walkback));
    QVERIFY2(walkback.endsWith(QStringLiteral("ValueError: bad value\n")), qPrintable(walkback));
    python.py("sys.stderr = sys.__stderr__");
}

void TestPython::onlyTheTopScopeCounts()
{
    python.py("sys.stderr = io.StringIO()");
    python.pyExceptStart();
    python.pyExceptExpect(PyExc_ValueError);
    python.pyExceptStart();
    QVERIFY(!python.pyCall("failing", "()"));
    QCOMPARE(python.takeErrors(), QStringList(walkbackReport));
    python.pyExceptClear();
    // The outer scope is back.
    QVERIFY(!python.pyCall("failing", "()"));
    QCOMPARE(python.takeErrors(), QStringList());
    python.pyExceptClear();
    python.py("sys.stderr = sys.__stderr__");
}

void TestPython::emptyStackMeansInternalError()
{
    python.py("sys.stderr = io.StringIO()");
    QVERIFY(!python.pyCall("failing", "()"));
    QCOMPARE(python.expectedSeen, 0);
    QCOMPARE(python.takeErrors(), QStringList(walkbackReport));
    python.py("sys.stderr = sys.__stderr__");
}

void TestPython::matchesNothingForAGivenResult()
{
    QVERIFY(!python.pyExceptMatches(nullptr, PyExc_ValueError));
    PyErr_SetString(PyExc_ValueError, "pending");
    QVERIFY(python.pyExceptMatches(nullptr, PyExc_ValueError));
    QVERIFY(!python.pyExceptMatches(Py_None, PyExc_ValueError));
    PyErr_Clear();
}

void TestPython::expectingNullIsReported()
{
    python.pyExceptStart();
    python.pyExceptExpect(nullptr);
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: pyExceptExpect called with NULL\n")));
    python.pyExceptExpect(PyExc_ValueError);
    QVERIFY(!python.pyCall("failing", "()"));
    QCOMPARE(python.expectedSeen, 1);
    python.pyExceptClear();
}

void TestPython::exceptionTextPrefersTheValueAttribute()
{
    const PyRef raised = python.pyr("WithValue('message of the manager')");
    PyErr_SetObject(python.pyLookup("WithValue", false), raised.get());
    QCOMPARE(python.pyString(python.pyExceptValuef().get()), "message of the manager");
    QCOMPARE(python.pyExceptValue().get(), raised.get());
    QVERIFY(PyErr_Occurred());
    PyErr_Clear();
    QVERIFY(!python.pyExceptValue());
    QVERIFY(!python.pyExceptValuef());
}

void TestPython::internalErrorWithoutAnExceptionSaysSo()
{
    python.exceptionError();
    QCOMPARE(python.takeErrors(),
             QStringList(QStringLiteral("Internal error: python exception occurred, but exception "
                                        "information was empty.")));
}

void TestPython::knowsTheVersion()
{
    QCOMPARE(python.pyVersion() >> 16, long(PY_VERSION_HEX >> 16));
}

void TestPython::debuggerGetsTheObjectAndTheTerminal()
{
    python.py("import pdb\n"
              "entered = []\n"
              "pdb.set_trace = lambda: entered.append(dbg)\n"
              "sys.stdout = io.StringIO()");
    PyObject* thing = python.pyLookup("thing", false);
    PyErr_SetString(PyExc_ValueError, "pending");
    python.pyDebug(thing);
    QCOMPARE(python.number("entered == [thing]"), 1L);
    QCOMPARE(python.number("sys.stdout is sys.__stdout__"), 1L);
}

void TestPython::lockNestsAndGoesToAnotherThread()
{
    QVERIFY(PyGILState_Check());
    long seen = 0;
    {
        Python::PyThreadStateWrapper away;
        QVERIFY(!PyGILState_Check());
        std::thread other([&] {
            Python::PyGILStateWrapper lock(true);
            Python::PyGILStateWrapper nested(true);
            seen = python.number("6 * 7");
            nested.release();
            // Still held by the outer one.
            if (!PyGILState_Check())
                seen = -1;
            lock.release();
            if (PyGILState_Check())
                seen = -2;
            lock.ensure();
            if (!PyGILState_Check())
                seen = -3;
        });
        other.join();
        Python::PyGILStateWrapper back(true);
        QVERIFY(PyGILState_Check());
    }
    QCOMPARE(seen, 42L);
    QVERIFY(PyGILState_Check());
}

void TestPython::inactiveLockWrapperDoesNotLock()
{
    Python::PyThreadStateWrapper away;
    Python::PyGILStateWrapper lock(false);
    QVERIFY(!PyGILState_Check());
    lock.ensure();
    QVERIFY(!PyGILState_Check());
}

void TestPython::callsKeepReferenceCounts()
{
    PyObject* thing = python.pyLookup("thing", false);
    PyObject* add = python.pyLookup("add", false);
    PyObject* sys = python.pyLookup("sys", false);
    const PyRef text = python.pyr("'a text of its own'");
    const Py_ssize_t before[] = {Py_REFCNT(thing), Py_REFCNT(add), Py_REFCNT(sys),
                                 Py_REFCNT(text.get())};
    for (int round = 0; round < 1000; ++round) {
        QVERIFY(python.pyMethodCall(thing, "give", "(O)", text.get()));
        QCOMPARE(python.pyMethodCall(thing, "me", "()").get(), thing);
        QVERIFY(python.pyCall("add", "(OO)", text.get(), text.get()));
        QVERIFY(python.pyString(text.get()));
        python.pyAssign("sys", "vokvalue", text.get());
        QCOMPARE(python.pyValue("sys", "vokvalue"), text.get());
        python.pyAssign("sys", "vokvalue", Py_None);
        QVERIFY(!python.pyLookup("sys.nosuchname", true));
        QVERIFY(python.pyr("thing"));
    }
    const Py_ssize_t after[] = {Py_REFCNT(thing), Py_REFCNT(add), Py_REFCNT(sys),
                                Py_REFCNT(text.get())};
    for (int item = 0; item < 4; ++item)
        QVERIFY2(before[item] == after[item], qPrintable(QString::number(item)));
}

void TestPython::failuresKeepReferenceCounts()
{
    python.py("import gc\nkept = KeyError('kept')\ndef again(): raise kept\n");
    PyObject* thing = python.pyLookup("thing", false);
    PyObject* kept = python.pyLookup("kept", false);
    const auto once = [&] {
        python.pyExceptStart();
        python.pyExceptExpect(PyExc_KeyError);
        QVERIFY(!python.pyCall("again", "()"));
        QCOMPARE(python.pyExceptValue().get(), kept);
        QVERIFY(python.pyExceptValuef());
        python.pyExceptClear();
        QVERIFY(!python.pyMethodCall(thing, "fail", "(O)", thing));
        python.py("kept.__traceback__ = None");
    };
    python.py("sys.stderr = io.StringIO()");
    once();
    const Py_ssize_t before[] = {Py_REFCNT(thing), Py_REFCNT(kept), Py_REFCNT(PyExc_KeyError)};
    for (int round = 0; round < 1000; ++round)
        once();
    python.py("gc.collect()");
    python.takeErrors();
    QVERIFY2(qAbs(Py_REFCNT(PyExc_KeyError) - before[2]) < 10, "the exception's class is kept");
    QCOMPARE(Py_REFCNT(kept), before[1]);
    // The last failure, kept by the interpreter for its user, may hold one.
    QVERIFY2(qAbs(Py_REFCNT(thing) - before[0]) < 3, "the method's object is kept");
    python.py("sys.stderr = sys.__stderr__");
}

QTEST_MAIN(TestPython)
#include "tst_Python.moc"
