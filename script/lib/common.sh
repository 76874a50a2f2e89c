# shellcheck shell=bash
# Sourced by the scripts beside it.

# tell_help: the remarks at the head of the script, as --help of each.
tell_help() { sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$script"; }

script=$(realpath "$0")
case ${1:-} in -h | --help) tell_help; exit 0 ;; esac

# shellcheck disable=SC2034  # for the scripts that take file names
caller=$PWD
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$top" || exit 1

say() { printf '\n== %s\n' "$*" >&2; }
die() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 1; }

# The same object for every language of messages, so that script/fresh finds what was built outside.
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:+$CCACHE_SLOPPINESS,}locale
# And for every clone, so that the next one compiles what it changed alone.
export CCACHE_BASEDIR=$top CCACHE_NOHASHDIR=1

# scratch_in_memory: what the programs write for a while waits for no disk.
scratch_in_memory() { [ ! -w /dev/shm ] || export TMPDIR=/dev/shm; }

# build PRESET [TARGET...]: configures and builds quietly; the whole output only when it fails.
build() {
    local preset=$1 log
    shift
    log=$(mktemp)
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        die "the build with preset $preset failed"
    fi
    rm -f "$log"
}

# use_throwaway_home DIR: from here on programs keep their settings below DIR, and the settings of
# whoever runs this are out of reach. The display's credentials stay where they are.
use_throwaway_home() {
    export XAUTHORITY="${XAUTHORITY:-$HOME/.Xauthority}"
    export CCACHE_DIR="${CCACHE_DIR:-$HOME/.cache/ccache}"
    export HOME="$1" XDG_CONFIG_HOME="$1/.config" XDG_CACHE_HOME="$1/.cache"
    export XDG_DATA_HOME="$1/.local/share"
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME" "$XDG_DATA_HOME"
}
