# SPDX-License-Identifier: GPL-2.0-or-later
# shellcheck shell=bash
# Completion of vok and vok-launcher in bash.

# The repositories in the files that VOK reads, one a line. Reads only; what can't be read is passed over.
_vok_repositories() {
    local root=${VOKROOT-} main line directory file directories="/etc/yum.repos.d /etc/yum/repos.d"
    main=$root/etc/yum/yum.conf
    [[ -e $main ]] || main=$root/etc/yum.conf
    local reposdir='^reposdir[[:space:]]*=[[:space:]]*(.+)$' section='^\[([[:alnum:]._:@+-]+)\]'
    local -a files=("$main")
    if [[ -r $main ]]; then
        while IFS= read -r line || [[ $line ]]; do
            [[ $line =~ $reposdir ]] && directories=${BASH_REMATCH[1]//,/ }
        done <"$main"
    fi
    local -a list
    read -ra list <<<"$directories"
    for directory in "${list[@]}"; do
        for file in "$root$directory"/*.repo; do
            files+=("$file")
        done
    done
    for file in "${files[@]}"; do
        [[ -f $file && -r $file ]] || continue
        while IFS= read -r line || [[ $line ]]; do
            [[ $line =~ $section && ${BASH_REMATCH[1]} != main ]] && printf '%s\n' "${BASH_REMATCH[1]}"
        done <"$file"
    done 2>/dev/null
    return 0
}

_vok() {
    # Not the shell's words: it breaks them at "=" and ":", and both are in what is completed here.
    local line=${COMP_LINE:0:COMP_POINT} current previous
    current=${line##*[[:space:]]}
    line=${line%"$current"}
    line=${line%"${line##*[![:space:]]}"}
    previous=${line##*[[:space:]]}

    local option=$previous value=$current before=
    if [[ $current == --*=* ]]; then
        option=${current%%=*}
        value=${current#*=}
        before=$option=
    fi
    local -a words=()
    case $option in
        -m | --mode) words=(filter search) ;;
        -s | --state) words=(updatable installable removable all) ;;
        --enablerepo | --disablerepo) mapfile -t words < <(_vok_repositories) ;;
        -e | --regexp) ;;
        *)
            value=$current
            before=
            words=(-h -H --help -m --mode= -e --regexp= -s --state= --duplicates -g --groups -r --repo-editor -l --log
                --enablerepo= --disablerepo=)
            ;;
    esac

    # The shell replaces what stands behind the last character that breaks words.
    local kept='' rest=$current word
    while [[ $rest == *[=:]* ]]; do
        word=${rest%%[=:]*}
        [[ $COMP_WORDBREAKS == *"${rest:${#word}:1}"* ]] && kept=${current:0:${#current}-${#rest}+${#word}+1}
        rest=${rest:${#word}+1}
    done
    COMPREPLY=()
    for word in "${words[@]}"; do
        [[ $word == "$value"* ]] || continue
        word=$before$word
        COMPREPLY+=("${word#"$kept"}")
    done
    [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
    return 0
}

complete -F _vok vok vok-launcher
