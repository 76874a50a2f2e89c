# shellcheck shell=bash
# Sourced by script/fresh: the packages of script/package in the bare system. The tools that look at
# the window run outside, so that nothing of theirs helps it to run; /tmp is shared with them.

# shellcheck disable=SC2154  # top, system and packages are script/fresh's
in_system=(script/lib/enter "$system" / "$packages:/var/cache/apt/archives" /tmp:/tmp --)

# lay_programs DIR: commands there that start the installed programs.
lay_programs() {
    local program
    mkdir -p "$1"
    for program in tevron virtual_lidar; do
        {
            echo '#!/bin/bash'
            printf 'cd %q || exit\n%s env' "$top" "$(printf ' %q' "${in_system[@]}")"
            # shellcheck disable=SC2016  # for the script that is written
            {
                printf ' %s="$%s"' HOME HOME DISPLAY DISPLAY QT_QUICK_BACKEND QT_QUICK_BACKEND
                printf ' %s "$@" &\n' "$program"
                # What waits for the system's processes is deaf to SIGTERM.
                printf 'trap "kill -KILL $!" TERM\nwait\n'
            }
        } >"$1/$program"
        chmod +x "$1/$program"
    done
}

# left_of_them: which files of the packages lie in the system.
left_of_them() {
    find "$system" -xdev \( -path "$system$top" -o -path "$system/var/cache" \) -prune -o \
        \( -name '*tevron*' -o -name '*virtual_lidar*' \) -print | sed "s|^$system||"
}

# try_packages PICTURE: false after having said what is wrong.
try_packages() {
    local left
    mkdir "$system/packages"
    cp build/package/packages/*.deb "$system/packages"
    say "Installing the packages"
    quietly "${in_system[@]}" sh -c 'apt-get update -qq && apt-get install -y -qq --no-install-recommends /packages/*.deb' ||
        return 1

    bin=$top/build/fresh/bin
    lay_programs "$bin"
    . script/lib/screen.sh
    open_stage
    start_lidar Orca
    start_window 1300x800 1 -modulePV=Orca
    connect || { cat "$scratch/tevron.log" "$lidar_log" >&2; return 1; }
    shoot "$1"
    say "Asking the lidar what it is"
    "${in_system[@]}" tevronctl info --model Orca \
        --host "$(wait_for "$lidar_log" 'listening on (.*:[0-9]+)')" || return 1
    end_children

    say "Removing the packages"
    rm -r "$system/packages"
    quietly "${in_system[@]}" apt-get purge -y -qq tevron tevron-tools || return 1
    left=$(left_of_them)
    [ -z "$left" ] || { printf 'left behind:\n%s\n' "$left" >&2; return 1; }
}
