// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

class YumIO;

namespace PackageTable
{
class Model;
}

/// Plays the user who looks at descriptions, and measures how long each takes to be there, painted,
/// and to follow a change of its size and the scroll bars.
class DescribeBench : public QObject
{
public:
    /// Owns nothing. The rows are those that `bench/describe.py` makes.
    DescribeBench(YumIO* yumIO, PackageTable::Model* model);
    ~DescribeBench() override;

    /// Exit status.
    int run();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Opens what `show` shows, and has `use` use the dialog before it is closed.
    void open(const QByteArray& figure, const std::function<void()>& show,
              const std::function<void(QWidget*)>& use);
    bool describe(const QString& package, const std::function<void(QWidget*)>& use);
    /// The slowest of a few changes of the window's size, and of the way down each section.
    static void handle(const QByteArray& figure, QWidget* dialog);
    void press(const QByteArray& figure, QWidget* dialog, const QString& title);

    YumIO* yumIO;
    PackageTable::Model* model;
    QElapsedTimer clock; ///< since what is to be opened was asked for
    QByteArray figure;
    std::function<void(QWidget*)> use;
};
