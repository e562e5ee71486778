// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QMenu>

class QMenuBar;

/// A menu that can be torn off and shows the tool tips of its actions, those that only repeat the
/// action's text left out.
class HMenu : public QMenu
{
    Q_OBJECT

public:
    HMenu(const QString& title, QMenuBar* parent);

    bool event(QEvent* event) override;
};
