// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

class YumIO;

/// The module `yumIOC`, by which the script calls back into the engine. Needs the interpreter lock.
class YumIOC
{
public:
    /// Makes `engine` the one that the functions call, and `import yumIOC` work. False, with the
    /// error pending, where the interpreter can't make the module.
    static bool initialize(YumIO* engine);

    /// Forgets `engine`, if it is the one: a function called later, while the interpreter ends,
    /// does nothing. Needs no lock.
    static void finalize(YumIO* engine);
};
