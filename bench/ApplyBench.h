// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "Measure.h"

#include <QObject>
#include <QString>

#include <memory>

class MainWindow;
class QAbstractItemModel;
class QPushButton;

/// Plays the user who installs packages in the real window, and measures how long it takes: from
/// the button to the question, and from its OK until the table is there anew.
class ApplyBench : public QObject
{
public:
    /// Installs what the table's filter lists by `pattern`.
    explicit ApplyBench(const QString& pattern);
    ~ApplyBench() override;

    /// Exit status.
    int run();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool waitUntilReady();
    /// Lists what the pattern and an entry of the box of states let through; gives their number.
    int list(int state);
    template<typename Widget> Widget* find(const char* name) const;
    /// The list of rows, whatever the filter lets through.
    QAbstractItemModel* rows() const;
    void agree(QWidget* dialog);

    QString pattern;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<Heartbeat> heartbeat;
    QElapsedTimer clock; ///< since the click on the button that was pressed last
    double toReview = 0;
    double toReviewGap = 0;
    double transaction = 0;
    bool agreed = false;
};
