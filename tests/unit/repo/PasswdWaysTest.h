// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "unit/repo/PasswdFieldTest.h"

/// The other ways into any password field and out of it: clipboard, mouse, input methods, slots
/// and assistive tools.
class PasswdWaysTest : public PasswdFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void pastesIntoThePassword();
    void copiesTheMaskOnly_data();
    void copiesTheMaskOnly();
    void leavesTheMaskInTheSelectionOfTheMouse();
    void pastesTheSelectionWhereTheMouseIs();
    void replacesWhatTheMouseHasSelected();
    void replacesWhatADoubleClickHasSelected();
    void typesWhereAProgramHasPutTheCursor();
    void takesTheTextOfAnInputMethod();
    void followsSlotsOfTheBaseClass();
    void followsAnAssistiveTool();
    void givesAssistiveToolsTheMask();
    void keepsTheRealTextFromAssistiveTools();
};
