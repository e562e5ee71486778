# SPDX-License-Identifier: GPL-2.0-or-later
# shellcheck shell=sh
# For webbrowser and mimeviewer, to be sourced: whose desktop this is, and what to tell that user.
# VOK runs as root on a desktop that is usually another user's. A browser is started as that user:
# with root's rights it would be a danger, have none of the user's settings, and often refuse.

have() {
    command -v "$1" >/dev/null 2>&1
}

# complain TEXT: on standard error, which nobody sees who has started VOK from a menu; so in a box, too.
complain() {
    printf '%s: %s\n' "${0##*/}" "$1" >&2
    [ -n "${DISPLAY-}${WAYLAND_DISPLAY-}" ] || return 0
    if have zenity; then
        zenity --error --no-markup --title=VOK --text="$1"
    elif have kdialog; then
        kdialog --title VOK --error "$1"
    elif have yad; then
        yad --image=dialog-error --no-markup --button=OK:0 --title=VOK --text="$1"
    elif have gxmessage; then
        gxmessage -center -title VOK "$1"
    elif have xmessage; then
        xmessage -center -title VOK "$1"
    fi >/dev/null 2>&1 || :
}

# named PATH: prints the path behind a space, for messages; nothing if no box has room for it, a terminal would
# obey it, or it is a URL in disguise, which may hold a password.
named() {
    [ "${#1}" -le 300 ] || return 0
    case $1 in
        *[[:cntrl:]]* | *@* | //*) ;;
        *) printf ' %s' "$1" ;;
    esac
}

# manual PATH: prints where a file of the manual is if it isn't where the program looks for it: beside the
# share directory that these scripts lie in, since another prefix has both. Fails for anything else.
manual() {
    case $1 in
        /usr/share/doc/vok-[0-9]*/*) ;;
        *) return 1 ;;
    esac
    case $0 in
        */*) place=$(CDPATH='' cd -- "${0%/*}" && pwd) || return 1 ;;
        *) place=$PWD ;;
    esac
    place=${place%/*}/doc/${1#/usr/share/doc/}
    [ ! -e "$1" ] && [ -e "$place" ] && printf '%s\n' "$place"
}

# is_person UID: whether that is the number of a user other than root.
is_person() {
    case $1 in
        '' | *[!0-9]* | ???????????* | 4294967295) return 1 ;;
        *[!0]*) return 0 ;;
        *) return 1 ;;
    esac
}

# session_uid: prints the number of the user whose desktop this is. Fails if that is root, or nobody
# can tell.
session_uid() {
    for uid in "${PKEXEC_UID-}" "${SUDO_UID-}"; do
        if is_person "$uid"; then
            echo "$uid"
            return 0
        fi
    done
    # Behind su: the kernel remembers who has logged in, unless it was no login.
    uid=$(cat /proc/self/loginuid 2>/dev/null) || uid=
    if [ "$uid" = 0 ]; then
        return 1
    elif is_person "$uid"; then
        echo "$uid"
        return 0
    fi
    if [ -n "${XAUTHORITY-}" ] && uid=$(stat -c %u -- "$XAUTHORITY" 2>/dev/null) && is_person "$uid"; then
        echo "$uid"
        return 0
    fi
    have loginctl && desktop_uid
}

# desktop_uid: the user of the one active graphical login on this machine, or of the one whose
# display is ours.
desktop_uid() {
    found=
    ours=${DISPLAY-}
    for session in $(loginctl list-sessions --no-legend 2>/dev/null | while read -r id rest; do echo "$id"; done); do
        uid='' active='' type='' display=''
        while IFS='=' read -r key value; do
            case $key in
                User) uid=$value ;;
                Active) active=$value ;;
                Type) type=$value ;;
                Display) display=$value ;;
            esac
        done <<PROPERTIES
$(loginctl show-session "$session" -p User -p Active -p Type -p Display 2>/dev/null)
PROPERTIES
        case $type in x11 | wayland | mir) ;; *) continue ;; esac
        is_person "$uid" || continue
        if [ -n "$display" ] && [ "${display%.*}" = "${ours%.*}" ]; then
            found=$uid
            break
        fi
        [ "$active" = yes ] || continue
        if [ -n "$found" ] && [ "$found" != "$uid" ]; then
            return 1
        fi
        found=$uid
    done
    [ -n "$found" ] && echo "$found"
}

# owned_by UID PATH
owned_by() {
    [ "$(stat -c %u -- "$2" 2>/dev/null)" = "$1" ]
}

# cookie UID HOME RUNTIME-DIRECTORY: prints the file by which that user's programs may use the display.
cookie() (
    set +f
    for file in "${XAUTHORITY-}" "$2/.Xauthority" "$3"/gdm/Xauthority "$3"/.mutter-Xwaylandauth.* "$3"/xauth_*; do
        if [ -n "$file" ] && [ -f "$file" ] && owned_by "$1" "$file"; then
            printf '%s\n' "$file"
            return 0
        fi
    done
    return 1
)

# as_session_user ARGUMENTS...: if root runs this on another user's desktop, runs this script anew as
# that user and exits; else returns. Of the environment goes along what shows windows, speaks the
# user's language and names the desktop: the rest is root's.
as_session_user() {
    [ "$(id -u 2>/dev/null)" = 0 ] || return 0
    uid=$(session_uid) || return 0
    IFS=: read -r name _ _ gid _ home shell <<ENTRY
$(getent passwd "$uid" 2>/dev/null)
ENTRY
    if [ -z "$name" ]; then
        complain "This is the desktop of the user with the number $uid, whom the system doesn't know."
        exit 1
    fi
    runtime=/run/user/$uid
    if [ -n "${XDG_RUNTIME_DIR-}" ] && owned_by "$uid" "$XDG_RUNTIME_DIR"; then
        runtime=$XDG_RUNTIME_DIR
    fi
    bus=${DBUS_SESSION_BUS_ADDRESS-}
    [ ! -S "$runtime/bus" ] || bus=unix:path=$runtime/bus
    authority=$(cookie "$uid" "$home" "$runtime") || authority=
    # It starts in another directory.
    case $0 in
        /*) script=$0 ;;
        *) script=$PWD/$0 ;;
    esac
    # Programs from bundles have their entries elsewhere, and only a login's environment says so.
    data=/usr/local/share:/usr/share:/var/lib/flatpak/exports/share:/var/lib/snapd/desktop
    data=$data:$home/.local/share/flatpak/exports/share
    set -- env -i HOME="$home" USER="$name" LOGNAME="$name" SHELL="${shell:-/bin/sh}" XDG_DATA_DIRS="$data" \
        PATH="$PATH:/usr/local/bin:/usr/bin:/bin:/snap/bin" \
        ${DISPLAY:+DISPLAY="$DISPLAY"} ${WAYLAND_DISPLAY:+WAYLAND_DISPLAY="$WAYLAND_DISPLAY"} \
        ${authority:+XAUTHORITY="$authority"} ${bus:+DBUS_SESSION_BUS_ADDRESS="$bus"} XDG_RUNTIME_DIR="$runtime" \
        ${XDG_SESSION_TYPE:+XDG_SESSION_TYPE="$XDG_SESSION_TYPE"} \
        ${XDG_CURRENT_DESKTOP:+XDG_CURRENT_DESKTOP="$XDG_CURRENT_DESKTOP"} \
        ${DESKTOP_SESSION:+DESKTOP_SESSION="$DESKTOP_SESSION"} \
        ${KDE_FULL_SESSION:+KDE_FULL_SESSION="$KDE_FULL_SESSION"} \
        ${KDE_SESSION_VERSION:+KDE_SESSION_VERSION="$KDE_SESSION_VERSION"} \
        ${LANG:+LANG="$LANG"} ${LANGUAGE:+LANGUAGE="$LANGUAGE"} ${LC_ALL:+LC_ALL="$LC_ALL"} \
        ${BROWSER:+BROWSER="$BROWSER"} \
        /bin/sh "$script" "$@"
    # Root's own directory can be closed to the user.
    cd "$home" 2>/dev/null || cd /
    if have runuser; then
        runuser -u "$name" -- "$@"
    elif have setpriv; then
        setpriv --reuid="$uid" --regid="$gid" --init-groups -- "$@"
    else
        complain "Neither runuser nor setpriv is there to start a program for the user $name."
        exit 1
    fi
    exit
}
