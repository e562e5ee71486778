// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "unit/repo/PasswdFieldTest.h"

/// What any password field shows, and the keys that edit it.
class PasswdKeysTest : public PasswdFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void showsAUrlWithoutCredentialsAsItIs();
    void showsAsManyPasswordCharactersAsThePasswordHas();
    void hasNothingToMaskInAnEmptyPassword();
    void tellsOfAProgramsChangeAndMasksIt();
    void tellsOfTheMaskedTextOnlyWhenTheRealOneIsThere();
    void tellsOfAChangeThatLeavesTheShownTextAsItWasTyped();
    void typingMovesBothCursorsTogether();
    void neverPaintsWhatIsTypedIntoThePassword();
    void looksTheSameWhateverThePassword();
    void replacesASelection_data();
    void replacesASelection();
    void replacesASelectionByTheCharacterThatMasksIt();
    void removes_data();
    void removes();
    void movesWithoutLosingThePlace_data();
    void movesWithoutLosingThePlace();
    void neverSplitsACharacter_data();
    void neverSplitsACharacter();
    void neverSelectsHalfACharacter();
    void masksATextThatIsNotValid();
    void undoBringsBackTheRealTextMasked();
    void undoBringsBackWhatWasCutOrReplaced();
    void opensNoMenuOnARightClick();
    void refusesADrag();
    void ignoresKeysWhileItIsDisabled_data();
    void ignoresKeysWhileItIsDisabled();
    void leavesNoTwinBehind();
};
