#!/usr/bin/env bash
# What an installation and a build keep of tables and keys, with a project that has nothing else.
#   install_test.sh SOURCE_FOLDER
set -euo pipefail

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
source=$scratch/source
prefix=$scratch/prefix
config=$prefix/Config

fail() { printf 'lines %s: %s\n' "${BASH_LINENO[*]}" "$*" >&2; sed 's/^/    /' "$scratch/said" >&2; exit 1; }
run() { "$@" >"$scratch/said" 2>&1 || fail "failed: $*"; }
build() { run cmake -E env CMAKE_GENERATOR=Ninja cmake -S "$source" -B "$scratch/build" && run cmake --build "$scratch/build"; }
install() { run cmake --install "$scratch/build" --prefix "${1:-$prefix}"; }
says() { grep -qE "$1" "$scratch/said" || fail "does not say $1"; }
mute() { ! grep -vE '^-- (Up-to-date|Install configuration)' "$scratch/said" || fail "says more"; }
holds() { [ "$(cat "$1")" = "$2" ] || fail "$1 holds $(cat "$1")"; }
same() { cmp -s "$1" "$2" || fail "$1 is not $2"; }
gone() { [ ! -e "$1" ] || fail "$1 is there"; }
mode() { [ "$(stat -c %a "$1")" = "$2" ] || fail "$1 has the mode $(stat -c %a "$1")"; }

mkdir "$source"
cp -r "$1/Config" "$1/cmake" "$source"
rm -rf "$source/Config/site"
cat >"$source/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(tables LANGUAGES NONE)
set(TEVRON_ROOT_DIR ${PROJECT_BINARY_DIR}/root)
add_subdirectory(Config)
END
ships=$source/Config
built=$scratch/build/root/Config
mkdir -p "$ships/site/varID"
echo mine >"$ships/site/varID/Mine.csv"
chmod 640 "$ships/auth_keys.ini"

# The first one: everything, with the mode that it has, and a folder for the users.
build
same "$built/varID/Orca.csv" "$ships/varID/Orca.csv"
holds "$built/site/varID/Mine.csv" mine
install
diff -r -x CMakeLists.txt -x 'site*' -x .shipped "$ships" "$config" || fail "not everything is there"
[ "$(ls "$config/site")" = README.txt ] || fail "site holds $(ls "$config/site")"
mode "$config/auth_keys.ini" 640
(cd "$config" && run sha256sum --check --strict .shipped)

# Users edit, close, link and take away; another version changes the same and other files.
edit() { echo "# edited" >>"$1"; }
edit "$config/varID/Orca.csv"
edit "$config/varID/Lumo.csv"
edit "$config/varID/Orca/Monitor_A1.csv"
chmod 600 "$config/auth_keys.ini" "$config/varID/Orca.csv"
mv "$config/auth_config.csv" "$scratch/elsewhere.csv"
ln -s "$scratch/elsewhere.csv" "$config/auth_config.csv"
rm "$config/varID/Osprey.csv"
echo own >"$config/varID/Own.csv"
echo note >"$config/site/README.txt"
echo own >"$config/site/auth_keys.ini"
cp "$config/varID/Orca.csv" "$scratch/edited.csv"
install
says 'Kept: .*/Orca.csv \(edited\)$'
gone "$config/varID/Orca.csv.new"
for table in auth_keys.ini auth_config.csv varID/Orca.csv varID/Osprey/Monitor_C1.csv; do
    echo "# version 2" >>"$ships/$table"
done
touch "$built/varID/Own.csv"
build
same "$built/varID/Orca.csv" "$ships/varID/Orca.csv"
rm "$ships"/varID/Orca/Monitor_*.csv "$ships/site/varID/Mine.csv"
build
gone "$built/varID/Orca/Monitor_A1.csv"
gone "$built/site/varID/Mine.csv"
[ -e "$built/varID/Own.csv" ] || fail "the build removed what it did not put there"
install
same "$config/auth_keys.ini" "$ships/auth_keys.ini"
mode "$config/auth_keys.ini" 600
same "$config/varID/Orca.csv" "$scratch/edited.csv"
same "$config/varID/Orca.csv.new" "$ships/varID/Orca.csv"
mode "$config/varID/Orca.csv.new" 600
says 'Kept: .*/Orca.csv \(edited\); what ships now is varID/Orca.csv.new'
[ -L "$config/auth_config.csv" ] || fail "the link is gone"
same "$config/auth_config.csv.new" "$ships/auth_config.csv"
same "$config/varID/Osprey.csv" "$ships/varID/Osprey.csv"
same "$config/varID/Osprey/Monitor_C1.csv" "$ships/varID/Osprey/Monitor_C1.csv"
gone "$config/varID/Orca/Monitor_B2.csv"
says 'Kept: .*/Orca/Monitor_A1.csv \(edited\), which ships no more'
holds "$config/varID/Own.csv" own
holds "$config/site/README.txt" note
holds "$config/site/auth_keys.ini" own
gone "$config/site/varID"
[ "$(find "$config" -name '*.new' | wc -l)" -eq 2 ] || fail "$(find "$config" -name '*.new')"

# What was taken over counts as shipped again.
mv "$config/varID/Orca.csv.new" "$config/varID/Orca.csv"
cp "$ships/varID/Lumo.csv" "$config/varID/Lumo.csv"
rm "$config/auth_config.csv"
install
gone "$config/auth_config.csv.new"
install
mute

# Interrupted behind one file, with another one half written; then a newer version.
before=$(cat "$config/.shipped")
echo "# version 3" >>"$ships/varID/Orca.csv"
install
echo "$before" >"$config/.shipped"
(cd "$ships" && sha256sum varID/Orca.csv) >"$config/.shipping"
mkdir "$config/.incoming"
echo half >"$config/.incoming/Lumo.csv"
echo "# version 4" | tee -a "$ships/varID/Orca.csv" >>"$ships/varID/Lumo.csv"
install
same "$config/varID/Orca.csv" "$ships/varID/Orca.csv"
same "$config/varID/Lumo.csv" "$ships/varID/Lumo.csv"
gone "$config/.incoming"
gone "$config/.shipping"

# An installation from before all this; every difference is somebody's.
rm "$config/.shipped"
edit "$config/varID/Lumo.csv"
install
same "$config/varID/Lumo.csv.new" "$ships/varID/Lumo.csv"
gone "$config/varID/Orca.csv.new"

DESTDIR=$scratch/staged install "$scratch/opt"
same "$scratch/staged$scratch/opt/Config/varID/Orca.csv" "$ships/varID/Orca.csv"
gone "$scratch/opt"
