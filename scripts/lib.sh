# SPDX-License-Identifier: GPL-2.0-or-later
# Shared by the scripts of this folder and .ci/run: what must be installed, and how. To be sourced.
# A name with a question mark is of a package that VOK gets on without; not every system still has it.

TREE=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# The system's interpreter, never another that comes first on PATH: only the system's has the
# package manager's modules.
PYTHON=/usr/bin/python3

DEBIAN_BUILD="g++ cmake ninja-build pkg-config qtbase5-dev qt5-style-plugins? python3-dev python3-dnf python3-rpm"
DEBIAN_DEMO="rpm createrepo-c gnupg gpg-agent busybox-static dbus fonts-dejavu-core tar util-linux"
DEBIAN_DISPLAY="xvfb openbox xdotool x11-utils imagemagick"
DEBIAN_TEST="pyflakes3 appstream appstream-util desktop-file-utils librsvg2-bin shellcheck zsh strace
    qttools5-dev qttools5-dev-tools qttranslations5-l10n rpm-i18n at-spi2-core
    asciidoctor ruby-asciidoctor-pdf mandoc man-db rpmlint?"
DEBIAN_FUZZ="clang libclang-rt-dev"
DEBIAN_PACKAGE="rpm debugedit elfutils file asciidoctor ruby-asciidoctor-pdf"
DEBIAN_CHECK="clang-format clang-tidy"
FEDORA_BUILD="gcc-c++ cmake ninja-build pkgconf-pkg-config qt5-qtbase-devel qt5-qtstyleplugins? python3-devel python3-dnf
    python3-rpm"
FEDORA_DEMO="rpm-build rpm-sign createrepo_c gnupg2 busybox dbus-daemon dejavu-sans-fonts dejavu-sans-mono-fonts tar util-linux"
FEDORA_DISPLAY="xorg-x11-server-Xvfb openbox xdotool xprop xwininfo ImageMagick"
FEDORA_TEST="python3-pyflakes appstream libappstream-glib desktop-file-utils librsvg2-tools ShellCheck zsh strace
    qt5-qttools-devel qt5-qttranslations at-spi2-core
    rubygem-asciidoctor rubygem-asciidoctor-pdf mandoc man-db rpmlint?"
FEDORA_FUZZ="clang compiler-rt"
FEDORA_PACKAGE="rpm-build rubygem-asciidoctor rubygem-asciidoctor-pdf"
FEDORA_CHECK="clang-tools-extra"

# The version of the program, as CMake has it.
version_of_tree() {
    sed -n 's/^project(vok VERSION \([0-9.]*\) .*/\1/p' "$TREE/CMakeLists.txt"
}

say() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
}

die() {
    say "$@"
    exit 1
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "not root, and there is no sudo; run as root: $*"
    fi
}

# need KIND...: installs the packages of these kinds (BUILD, DEMO, DISPLAY, TEST, FUZZ, PACKAGE, CHECK) that are
# missing.
need() {
    local family kind package list missing="" optional=""
    if command -v apt-get >/dev/null; then
        family=DEBIAN
    elif command -v dnf >/dev/null; then
        family=FEDORA
    else
        say "neither apt-get nor dnf here; taking it that all is installed"
        return
    fi
    for kind in "$@"; do
        list=${family}_$kind
        for package in ${!list}; do
            if have_package $family "${package%\?}"; then
                continue
            elif [ "$package" = "${package%\?}" ]; then
                missing="$missing $package"
            else
                optional="$optional ${package%\?}"
            fi
        done
    done
    [ -n "$missing" ] || return 0
    local log=$TREE/build/install.log
    mkdir -p "$TREE/build"
    : >"$log"
    [ $family != DEBIAN ] || as_root apt-get update -qq >>"$log" 2>&1 || die_of_install "$missing"
    # Looked for only now, so that their lack costs nothing where all else is installed.
    for package in $optional; do
        ! package_exists $family "$package" || missing="$missing $package"
    done
    say "installing$missing"
    # shellcheck disable=SC2086  # a list of words
    if [ $family = DEBIAN ]; then
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
    else
        as_root dnf install -y -q --setopt=install_weak_deps=False $missing
    fi >>"$log" 2>&1 || die_of_install "$missing"
}

# die_of_install MISSING: shows the end of the log of an installation that failed.
die_of_install() {
    tail -n 20 "$TREE/build/install.log" >&2
    die "could not install$1; all of the output is in $TREE/build/install.log"
}

have_package() {
    if [ "$1" = DEBIAN ]; then
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$2" 2>/dev/null)" = installed ]
    else
        rpm -q --quiet --whatprovides "$2" >/dev/null 2>&1
    fi
}

# package_exists FAMILY PACKAGE: whether the system's repositories have it.
package_exists() {
    if [ "$1" = DEBIAN ]; then
        LC_ALL=C apt-cache policy "$2" | grep -q '^  Candidate: [^(]'
    else
        [ -n "$(dnf -q repoquery --whatprovides "$2" 2>/dev/null)" ]
    fi
}

# build PRESET [TARGET...]: configures if need be and builds, in silence as long as all goes well.
build() {
    local preset=$1 log=$TREE/build/$1.log
    shift
    mkdir -p "$TREE/build"
    local cache=()
    if command -v ccache >/dev/null; then
        cache=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    say "building ($preset)"
    if ! (cd "$TREE" && cmake --preset "$preset" "${cache[@]}" && cmake --build --preset "$preset" \
        ${1:+--target "$@"}) >"$log" 2>&1; then
        tail -n 60 "$log" >&2
        die "the build failed; all of its output is in $log"
    fi
}
