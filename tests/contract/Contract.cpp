// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/Contract.h"

#include <QFile>
#include <QJsonDocument>
#include <QtTest>

#include <algorithm>

namespace
{

std::function<void(const QString&)> probeFunction;

PyObject* callProbe(PyObject*, PyObject* name)
{
    if (probeFunction)
        probeFunction(QString::fromUtf8(PyUnicode_AsUTF8(name)));
    Py_RETURN_NONE;
}

PyMethodDef probeDefinition = {"probe", callProbe, METH_O, nullptr};

void putBack(const char* name, const QByteArray& value)
{
    if (value.isNull())
        qunsetenv(name);
    else
        qputenv(name, value);
}

} // namespace

void OpenEngine::forget()
{
    yumVersionRead = false;
    yumVersionText.clear();
    usesSqliteKnown = false;
    usesPrestoKnown = false;
    hasMultiProgressKnown = false;
    yumLocked = false;
    fileListsCollected = false;
    otherDataCollected = false;
    basearch.clear();
    // The log only grows, and lengths of it are remembered nowhere between operations.
    logEntries.entries.clear();
}

Contract::Contract()
    : m_oldShare(qgetenv("VOKSHARE"))
    , m_oldDouble(qgetenv("VOK_DOUBLE"))
{
    const QByteArray path = QFile::encodeName(m_directory.filePath(QStringLiteral("told.json")));
    QFile file(QString::fromUtf8(path));
    if (!file.open(QIODevice::WriteOnly) || file.write("{}") != 2)
        qFatal("no temporary file");
    file.close();
    qputenv("VOK_DOUBLE", path);
    qputenv("VOKSHARE", VOK_DOUBLE_SHARE);
    qputenv("PYTHONDONTWRITEBYTECODE", "1");

    m_engine = std::make_unique<OpenEngine>();
    m_engine->setup(&window, &totalBar, &itemBar);
    if (!m_engine->initialize())
        qFatal("the script's double doesn't start");
    m_engine->py("import __main__");
    const PyRef function = PyRef::adopt(PyCFunction_New(&probeDefinition, nullptr));
    const PyRef main = PyRef::adopt(PyImport_ImportModule("__main__"));
    PyObject_SetAttrString(main.get(), "probe", function.get());
}

Contract::~Contract()
{
    probeFunction = nullptr;
    m_engine->clearEntriesBeforeQuit();
    m_engine.reset();
    putBack("VOKSHARE", m_oldShare);
    putBack("VOK_DOUBLE", m_oldDouble);
}

void Contract::play(const QJsonObject& told)
{
    probeFunction = nullptr;
    QFile file(QString::fromUtf8(qgetenv("VOK_DOUBLE")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("no temporary file");
    file.write(QJsonDocument(told).toJson());
    file.close();
    m_engine->clear();
    m_engine->forget();
    forgetCalls();
}

bool Contract::collect(const QHash<QString, bool>& usedRepos)
{
    return m_engine->collect(usedRepos);
}

void Contract::mark(const QHash<QString, Package::Action>& actions)
{
    for (auto action = actions.cbegin(); action != actions.cend(); ++action) {
        Package::Entry* entry = row(action.key());
        if (!entry)
            qFatal("no row %s", qPrintable(action.key()));
        entry->action = action.value();
    }
}

QString Contract::applied()
{
    const QStringList found = calls().filter(QRegularExpression(QStringLiteral("^apply\\(")));
    return found.size() == 1 ? found.first().mid(6).chopped(1) : QString();
}

void Contract::sortRows()
{
    std::sort(m_engine->entries.begin(), m_engine->entries.end(),
              [](const Package::Entry* a, const Package::Entry* b) { return a->name < b->name; });
}

QStringList Contract::calls()
{
    const QString text =
        eval(QStringLiteral("'\\n'.join('%s(%s)' % (call[0], call[1]) for call in calls)"));
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

QStringList Contract::mainCalls()
{
    QStringList all = calls();
    const QStringList minor = {QStringLiteral("getBiArch("), QStringLiteral("isBetterThan(")};
    for (const QString& start : minor)
        all = all.filter(
            QRegularExpression(QStringLiteral("^(?!%1)").arg(QRegularExpression::escape(start))));
    return all;
}

int Contract::callCount(const QString& method)
{
    return eval(QStringLiteral("str(sum(call[0] == '%1' for call in calls))").arg(method)).toInt();
}

bool Contract::calledHere(const QString& method)
{
    return eval(QStringLiteral("str(all(call[2] == threading.get_ident() for call in calls if "
                               "call[0] == '%1'))")
                    .arg(method)) == QLatin1String("True");
}

void Contract::forgetCalls()
{
    m_engine->py("calls.clear()");
}

QString Contract::eval(const QString& expression)
{
    OpenEngine::PyGILStateWrapper lock(true);
    return m_engine->pyStringDec(m_engine->pyr(expression.toUtf8().constData()).release());
}

void Contract::probe(std::function<void(const QString&)> function)
{
    probeFunction = std::move(function);
}

Package::Entry* Contract::row(const QString& name)
{
    Package::Entry* found = nullptr;
    for (Package::Entry* entry : *m_engine) {
        if (entry->name != name)
            continue;
        if (found)
            return nullptr;
        found = entry;
    }
    return found;
}

QStringList Contract::rowNames()
{
    QStringList names;
    for (const Package::Entry* entry : *m_engine)
        names.append(entry->name);
    names.sort();
    return names;
}

QStringList Contract::logTexts()
{
    QStringList texts;
    const QMutexLocker locker(&m_engine->getLogEntries().mutex);
    for (const Log::Entry& entry : qAsConst(m_engine->getLogEntries().entries))
        texts.append(entry.text);
    return texts;
}

bool Contract::logged(Log::Kind kind, unsigned int level, const QString& text)
{
    const QMutexLocker locker(&m_engine->getLogEntries().mutex);
    const auto& lines = m_engine->getLogEntries().entries;
    return std::any_of(lines.cbegin(), lines.cend(), [&](const Log::Entry& line) {
        return line.kind == kind && line.level == level && line.text == text;
    });
}

QJsonObject Contract::package(const QString& name, QJsonObject more)
{
    more.insert(QStringLiteral("name"), name);
    return more;
}

QJsonObject Contract::group(const QString& name, QJsonObject more)
{
    more.insert(QStringLiteral("name"), name);
    return more;
}

QJsonObject Contract::installed(const QString& name, const QJsonObject& header)
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("repoid"), QStringLiteral("installed")},
            {QStringLiteral("hdr"), header}};
}
