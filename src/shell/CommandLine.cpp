// SPDX-License-Identifier: GPL-2.0-or-later
#include "shell/CommandLine.h"

#include "kit/Application.h"
#include "shell/MainWindow.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>

namespace
{

enum { DisableRepo = 256, EnableRepo = 257 };

// "d" isn't among the letters: duplicates have a long option only.
const char shortOptions[] = "+hHm:e:s:grl";

const option longOptions[] = {
    {"help", no_argument, nullptr, 'h'},
    {"mode", required_argument, nullptr, 'm'},
    {"regexp", required_argument, nullptr, 'e'},
    {"state", required_argument, nullptr, 's'},
    {"duplicates", no_argument, nullptr, 'd'},
    {"groups", no_argument, nullptr, 'g'},
    {"repo-editor", no_argument, nullptr, 'r'},
    {"log", no_argument, nullptr, 'l'},
    {"disablerepo", required_argument, nullptr, DisableRepo},
    {"enablerepo", required_argument, nullptr, EnableRepo},
    {nullptr, 0, nullptr, 0},
};

struct Word {
    const char* text;
    int value;
};

const Word modeWords[] = {
    {"filter", PackageTable::ModeFilter},
    {"search", PackageTable::ModeSearch},
};

const Word stateWords[] = {
    {"updatable", PackageTable::ViewUpdatable},
    {"installable", PackageTable::ViewInstallable},
    {"removable", PackageTable::ViewRemovable},
    {"all", PackageTable::ViewAll},
};

/// Value of the first word that begins with `text`; without one the message, which takes the
/// program and the text, and the end of the process.
template<std::size_t Count>
int match(const Word (&words)[Count], const char* text, const char* optionNames)
{
    const std::size_t length = std::strlen(text);
    for (const Word& word : words) {
        if (std::strncmp(text, word.text, length) == 0)
            return word.value;
    }
    std::fprintf(stderr, "%s: unrecogized argument to %s option: %s\n", program, optionNames, text);
    CommandLine::usage();
}

} // namespace

void CommandLine::usage()
{
    std::printf("usage: %s [options...]\n"
                "\n"
                "VOK, Package Steward, is a graphical user interface which allows a user\n"
                "to make modifications to the installed rpm packages on a system.\n"
                "\n"
                "options:\n"
                "\n"
                "   -h, -H, --help           display this help information\n"
                "   -m m,   --mode=m         start with the package table mode, m:\n"
                "                               filter, search\n"
                "   -e r,   --regexp=r       start with the package table regexp, r\n"
                "   -s s,   --state=s        start with the package table state, s:\n"
                "                               updatable, installable, removable, all\n"
                "   -d,     --duplicates     start with the package table omitting duplicates\n"
                "   -g,     --groups         start with the package table showing groups\n"
                "   -r,     --repo-editor    start by bringing up the repository configuration\n"
                "                            editor\n"
                "   -l,     --log            start with the log window displayed\n"
                "           --disablerepo=r  disable the specified repository, r\n"
                "           --enablerepo=r   enable the specified repository, r\n"
                "\n",
                program);
    std::exit(1);
}

void CommandLine::apply(MainWindow& window, int argc, char** argv)
{
    opterr = 0;
    for (;;) {
        const int found = getopt_long(argc, argv, shortOptions, longOptions, nullptr);
        if (found == -1)
            break;
        switch (found) {
        case 'h':
        case 'H':
            usage();
        case 'm':
            window.setMode(static_cast<PackageTable::Mode>(match(modeWords, optarg, "-m/--mode")));
            break;
        case 'e':
            window.setRegexp(optarg);
            break;
        case 's':
            window.setStateFilter(
                static_cast<PackageTable::StateFilter>(match(stateWords, optarg, "-s/--state")));
            break;
        case 'd':
            window.setDups(false);
            break;
        case 'g':
            window.setGroups(true);
            break;
        case 'r':
            window.setStartInRepoEditor();
            break;
        case 'l':
            window.setLogAtStart();
            break;
        case DisableRepo:
        case EnableRepo:
            window.addRepoOverride(
                YumRepoEnabled(found == EnableRepo, QString::fromLocal8Bit(optarg)));
            break;
        default:
            if (optopt != 0)
                std::fprintf(stderr, "%s: unrecognized option letter: %c\n", program, optopt);
            else
                std::fprintf(stderr, "%s: unrecogized option: %s\n", program, argv[optind - 1]);
            usage();
        }
    }
    if (optind < argc) {
        std::fprintf(stderr, "%s: unrecognized argument: %s\n", program, argv[optind]);
        usage();
    }
}
