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

# apt COMMAND...: apt-get in the system, which asks nothing: of a file that was edited it keeps what is
# there, as a person who presses Enter does.
apt() {
    quietly "${in_system[@]}" apt-get -qq -y -o Dpkg::Options::=--force-confdef "$@"
}

# install_from DIR: the packages that lie there in the system.
install_from() {
    # shellcheck disable=SC2046  # words
    apt install --no-install-recommends $(cd "$system" && printf '/%s ' ."$1"/*.deb)
}

# fails WORDS: says what is wrong.
fails() {
    printf '%s\n' "$*" >&2
    return 1
}

# try_window PICTURE: connects, with a model that ships and with one of the user's own.
try_window() {
    local model
    bin=$top/build/fresh/bin
    lay_programs "$bin"
    . script/lib/screen.sh
    open_stage
    lay_own_model
    for model in Heron Orca; do
        start_lidar "$model"
        start_window 1300x800 1 "-modulePV=$model"
        connect || { cat "$scratch/tevron.log" "$lidar_log" >&2; return 1; }
        if [ "$model" = Heron ]; then # of a model that it does not know, it shows the Orca
            grep -q ': authentication' "$lidar_log" ||
                fails "the window does not know the user's own model" || return 1
        else
            shoot "$1"
        fi
        say "Asking the $model what it is"
        "${in_system[@]}" env HOME="$HOME" tevronctl info --model "$model" \
            --host "$(wait_for "$lidar_log" 'listening on (.*:[0-9]+)')" || return 1
        end_children
    done
}

# make_later DIR: the packages again, as a later version with other tables, in DIR of the system.
make_later() {
    local package version contents=$system/later
    mkdir "$system$1"
    for package in build/package/packages/*.deb; do
        rm -rf "$contents"
        dpkg-deb -R "$package" "$contents"
        version=$(dpkg-deb -f "$package" Version)
        sed -i "s/$version/&+later/" "$contents/DEBIAN/control" # and what one wants of the other
        [ ! -d "$contents/etc" ] || echo later | tee -a "$contents"/etc/tevron/varID/O*.csv >/dev/null
        dpkg-deb -Zgzip -z1 -b "$contents" "$system$1" >/dev/null || return 1
    done
    rm -rf "$contents"
}

# try_upgrade: what a user made of the tables stays, and what nobody touched is replaced.
try_upgrade() {
    local etc=$system/etc/tevron
    make_later /later_packages || return 1
    mkdir -p "$etc/site/varID"
    echo mine | tee -a "$etc/varID/Orca.csv" >"$etc/site/varID/Mine.csv"
    install_from /later_packages || return 1
    [ "$(tail -qn 1 "$etc"/varID/{Orca.csv,Orca.csv.dpkg-dist,Osprey.csv} | xargs)" = 'mine later later' ] ||
        fails "the upgrade took an edited table, or kept one that nobody touched"
}

# left_of_them: which files of the packages lie in the system.
left_of_them() {
    find "$system" -xdev \( -path "$system$top" -o -path "$system/var/cache" \) -prune -o \
        \( -name '*tevron*' -o -name '*virtual_lidar*' \) -print | sed "s|^$system||"
}

# try_removal: what was edited outlives it, and a purge leaves only what a user has added.
try_removal() {
    local etc=$system/etc/tevron left
    apt remove tevron tevron-tools || return 1
    grep -q mine "$etc/varID/Orca.csv" || fails "the removal took an edited table" || return 1
    apt purge tevron-tools || return 1 # the other has no configuration files, and is gone
    left=$(cd "$etc" && find . -type f)
    [ "$left" = ./site/varID/Mine.csv ] || fails "left in /etc/tevron: $left" || return 1
    rm -r "$etc"
    left=$(left_of_them)
    [ -z "$left" ] || fails "left behind: $left"
}

# try_packages PICTURE: false after having said what is wrong.
try_packages() {
    mkdir "$system/packages"
    cp build/package/packages/*.deb "$system/packages"
    say "Installing the packages"
    quietly "${in_system[@]}" apt-get update -qq || return 1
    install_from /packages || return 1
    try_window "$1" || return 1
    say "Upgrading the packages"
    try_upgrade || return 1
    say "Removing the packages"
    rm -r "$system"/*packages
    try_removal
}
