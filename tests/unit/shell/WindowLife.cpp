// SPDX-License-Identifier: GPL-2.0-or-later
#include "WindowLife.h"

#include "engine/PyRef.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace
{

QJsonObject package(const char* name, const char* version, const char* repository,
                    const char* architecture = "x86_64")
{
    return {{"name", name},         {"ver", version},  {"repoid", repository},
            {"arch", architecture}, {"size", 100'000}, {"summary", name}};
}

QJsonObject installed(const char* name, const char* version, const char* architecture = "x86_64")
{
    QJsonObject made = package(name, version, "installed", architecture);
    made["hdr"] = QJsonObject();
    return made;
}

/// Updates: alpha. Installable: beta in two architectures. Up to date: gamma. A group: tools.
QJsonObject smallSystem()
{
    QJsonObject searched = package("beta", "1.0-1", "base");
    searched["files"] = QJsonArray{"/usr/bin/needle"};
    return {
        {"updates", QJsonArray{package("alpha", "2.0-1", "base")}},
        {"installed", QJsonArray{installed("alpha", "1.0-1"), installed("gamma", "3.0-1")}},
        {"available", QJsonArray{searched, package("beta", "1.0-1", "base", "i686")}},
        {"better", QJsonArray()},
        {"groups", QJsonArray{QJsonObject{{"name", "tools"}, {"mandatory", QJsonArray{"beta"}}}}},
    };
}

} // namespace

WindowLife::WindowLife()
    : system(smallSystem())
{
    QFile::link(QStringLiteral(VOK_DOUBLE_SHARE "/python"), sharePath(QStringLiteral("python")));
    QFile::link(QStringLiteral(VOK_SHARE "/icons"), sharePath(QStringLiteral("icons")));
    writeFile(rootPath(QStringLiteral("etc/yum.conf")), "[main]\ncachedir=/var/cache/steward\n");
    writeFile(rootPath(QStringLiteral("etc/yum.repos.d/base.repo")),
              "[base]\nname=Base\nbaseurl=file:///base\nenabled=1\n");
    qputenv("VOKSHARE", QFile::encodeName(share.path()));
    qputenv("VOKROOT", QFile::encodeName(root.path()));
    qputenv("VOK_DOUBLE", QFile::encodeName(rootPath(QStringLiteral("double.json"))));
    play();
}

void WindowLife::play()
{
    writeFile(rootPath(QStringLiteral("double.json")), QJsonDocument(system).toJson());
}

void WindowLife::writeFile(const QString& path, const QByteArray& text, bool executable)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write(text);
    if (executable)
        file.setPermissions(file.permissions() | QFile::ExeOwner);
}

void WindowLife::useScript(const QByteArray& text)
{
    QFile::remove(sharePath(QStringLiteral("python")));
    writeFile(sharePath(QStringLiteral("python/YumIO.py")), text);
}

QStringList WindowLife::calls()
{
    // The GUI thread holds the interpreter lock while no work runs.
    PyObject* globals = PyModule_GetDict(PyImport_AddModule("__main__"));
    const PyRef names = PyRef::adopt(
        PyRun_String("' '.join(call[0] for call in calls)", Py_eval_input, globals, globals));
    PyRef::adopt(PyRun_String("calls.clear()", Py_eval_input, globals, globals));
    return QString::fromUtf8(PyUnicode_AsUTF8(names.get()))
        .split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
