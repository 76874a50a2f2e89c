# shellcheck shell=bash
# Sourced behind common.sh by the scripts that show the window with a virtual lidar beside it. They
# build both, and begin with open_stage; what was started ends with them.

# shellcheck disable=SC2154  # top is common.sh's
bin=${bin:-$top/build/dev/root/bin}
X=0 Y=0 WIDTH=0 HEIGHT=0 # of the window, as place finds them

# open_stage: a scratch folder, in which the programs find their settings, too.
open_stage() {
    scratch=$(mktemp -d)
    children=()
    # shellcheck disable=SC2317  # called by the trap
    close_stage() {
        end_children
        rm -rf "$scratch"
    }
    trap close_stage EXIT
    trap 'exit 130' INT TERM
    use_throwaway_home "$scratch/home"
    lidar_log=$scratch/virtual_lidar.log
}

# end_children: ends the programs that run, so that others can be started.
end_children() {
    for child in "${children[@]}"; do kill "$child" 2>/dev/null || true; done
    wait "${children[@]}" 2>/dev/null || true
    children=()
}

# wait_for FILE PATTERN: the text that the pattern's group matches, as soon as the file holds it.
wait_for() {
    local found
    for _ in $(seq 200); do
        found=$(sed -nE "s/^.*$2.*\$/\\1/p" "$1" | tail -n 1)
        [ -n "$found" ] && { echo "$found"; return; }
        sleep 0.1
    done
    cat "$1" >&2
    return 1
}

# start_lidar MODEL [OPTION...]: a virtual lidar, whose address stands in the window's settings.
start_lidar() {
    local model=$1 settings=$HOME/Documents/CorvanViewDataFiles/RecvSettings.ini
    shift
    mkdir -p "${settings%/*}"
    : >"$lidar_log"
    "$bin/virtual_lidar" --model "$model" --port 0 "$@" >"$lidar_log" 2>&1 &
    children+=($!)
    # shellcheck disable=SC2034  # for scripts that end it
    lidar=$!
    wait_for "$lidar_log" '(listening on .*)' >/dev/null || die "the virtual lidar did not start"
    {
        echo '[General]'
        sed -nE 's/^listening on (.*):(.*)/device_ip_address=\1\ncmx_port=\2/p
                 s/^serial port( 485)? (\/.*)/rs485_com=\2/p
                 s/^serial port 232 (\/.*)/rs232_com=\1/p' "$lidar_log"
    } >"$settings"
}

# lay_own_model: Heron, as docs/models.md describes it, among the user's own tables.
lay_own_model() {
    local to=$XDG_CONFIG_HOME/Tevron/Config
    mkdir -p "$to/varID/Heron"
    awk -v to="$to" '
        match($0, /`Config\/site\/[^`]*`$/) { file = to "/" substr($0, RSTART + 13, RLENGTH - 14) }
        /^```/ { inside = /^```csv/; next }
        inside { print >file }' docs/models.md
}

# start_window WIDTHxHEIGHT SCALE [OPTION...]: the window, with a scene that large before it is
# enlarged, alone on a virtual screen. The program enlarges itself by what the screen is wider than
# 1920, and its scene is never smaller than 1300x800.
start_window() {
    local width=${1%x*} height=${1#*x} scale=$2 found
    shift 2
    pixels() { awk -v n="$1" -v scale="$scale" 'BEGIN { printf "%d", n * scale }'; }
    : >"$scratch/display"
    Xvfb -displayfd 3 -screen 0 "$(pixels 1920)x$(pixels 1200)x24" -nolisten tcp \
        3>"$scratch/display" 2>/dev/null &
    children+=($!)
    DISPLAY=:$(wait_for "$scratch/display" '([0-9]+)') || die "the virtual screen did not start"
    export DISPLAY QT_QUICK_BACKEND=software
    "$bin/tevron" "$@" >"$scratch/tevron.log" 2>&1 &
    children+=($!)
    timeout 30 xdotool search --sync --onlyvisible --name '^Tevron$' >"$scratch/window" || {
        cat "$scratch/tevron.log" >&2
        die "the window did not open"
    }
    found=$(tail -n 1 "$scratch/window")
    place() { eval "$(xdotool getwindowgeometry --shell "$found" | grep -E '^(X|Y|WIDTH|HEIGHT)=')"; }
    place
    if [ "$width$height" != 1300800 ]; then
        xdotool windowsize --sync "$found" $((WIDTH + $(pixels $((width - 1300))))) \
            $((HEIGHT + $(pixels $((height - 800)))))
        place
    fi
    area=${WIDTH}x$HEIGHT+$X+$Y
    settle
}

# picture: what the window shows, as a number.
picture() { import -window root -crop "$area" -depth 8 rgb:- | cksum; }

# settle: waits until the window shows the same for half a second, at most for 10 s: something in it
# may turn for ever.
settle() {
    local before='' now same=0
    for _ in $(seq 40); do
        now=$(picture)
        if [ "$now" = "$before" ]; then same=$((same + 1)); else same=0; fi
        [ $same -ge 2 ] && return
        before=$now
        sleep 0.25
    done
}

# click X Y: a place in the window, before it is enlarged.
click() { xdotool mousemove $((X + $1)) $((Y + $2)) sleep 0.2 click 1 sleep 0.3; }

press() { xdotool key --delay 60 "$@" && sleep 0.2; }

write() { xdotool type --delay 25 "$1" && sleep 0.2; }

# connect: asks the window to connect, and waits until the lidar has been asked for more than whether
# it is there. False when that does not happen.
connect() {
    local asked='^request .*: (liveness|authentication)'
    press F5
    for _ in $(seq 60); do
        grep '^request' "$lidar_log" | grep -qvE "$asked" && return
        sleep 0.1
    done
    return 1
}

# shoot FILE: the window as it is once it has settled. Nothing is under the pointer.
shoot() {
    xdotool mousemove $((X + WIDTH / 2)) $((Y + 4))
    settle
    mkdir -p "$(dirname "$1")"
    import -window root -crop "$area" +repage "$1"
}
