// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "progress/Progress.h"

#include <QObject>
#include <QString>

class GeneralTip;
class HProgressBar;
class QColor;
class QLabel;
class QPoint;

namespace Progress
{

/// The GUI thread's end of an Object: sets the two bars, and shows the parallel downloads in a tip
/// over the item bar. May be made on another thread, but must be moved to the bars' before anything
/// reaches it.
class Minion : public QObject
{
    Q_OBJECT

public:
    /// The bars aren't owned and must outlive the minion.
    Minion(HProgressBar* total, HProgressBar* item);

    /// A framed label with background `colour` and a text colour that can be read on it. The caller
    /// owns it.
    static QLabel* makeLabel(const QString& text, const QColor& colour);

    /// Fills `tip` with one row a download; `data` is the minion. For GeneralTip::showTip().
    static void setupTip(GeneralTip* tip, void* data);

public Q_SLOTS:
    void startTotal(const QString& activity, Steps maximum);
    void startItem(const QString& activity, Steps total, Steps maximum);
    void changeItemActivity(const QString& activity);
    void changeItemActs(Steps total);
    void setItemValue(Steps total, Steps item);
    void endItemActs(Steps total);
    void setTotalValue(Steps total);
    /// A tip that is shown stays as it was built.
    void updateThreadsState(const ThreadsState& state);
    void reset();
    /// `pos` is in the item bar's coordinates.
    void itemProgressToolTip(const QPoint& pos);

protected:
    HProgressBar* totalBar;
    HProgressBar* itemBar;
    ThreadsState threads; ///< as last received
};

} // namespace Progress
