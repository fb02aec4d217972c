# desktop.sh -- what tests of the real desktop program share: a display with a window manager, windows, keys, pictures
#
# Sourced by NAME_test.sh, which is called with the program's folder and perhaps the names of cases; see run_cases.
# shellcheck shell=bash
set -u

if [ $# -lt 1 ]; then
    echo "usage: ${0##*/} PROGRAM-FOLDER [CASE...]" >&2
    exit 2
fi
for tool in Xvfb openbox xdotool import; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: $tool is missing (scripts/setup test installs it)"
        exit 77
    fi
done

# The shared block has one name per user. Where the kernel lets us, /dev/shm is a private one, so that no other run of
# the program mixes in.
if [ -z "${DESKTOP_TEST_SHM:-}" ]; then
    for way in --mount "--user --map-current-user --keep-caps --mount"; do
        # shellcheck disable=SC2086
        if unshare $way mount -t tmpfs tmpfs /dev/shm 2>/dev/null; then
            DESKTOP_TEST_SHM=private exec unshare $way "$BASH" "$0" "$@"
        fi
    done
    DESKTOP_TEST_SHM=shared
elif [ "$DESKTOP_TEST_SHM" = private ]; then
    mount -t tmpfs tmpfs /dev/shm
fi

bin=$(cd "$1" && pwd)
shift
folder=$(mktemp -d "${TMPDIR:-/tmp}/vd-desktop-XXXXXX")
limit=${DESKTOP_TEST_LIMIT:-90} # seconds; only a failure takes so long
pids=()
start_options=() # of each start of the program

clean_up() {
    [ ${#pids[@]} = 0 ] || kill -9 "${pids[@]}" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 1' INT TERM

fail() {
    echo "FAILED: $case_name: $*" >&2
    [ ! -s "$folder/err" ] || sed 's/^/    stderr: /' "$folder/err" >&2
    exit 1
}

# wait_for WHAT COMMAND...: until the command succeeds
wait_for() {
    local what=$1 end=$((SECONDS + limit))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || fail "$what: not within $limit seconds"
        sleep 0.1
    done
}

start_display() {
    case_name="the display"
    mkdir -p "$folder/home" "$folder/run" "$folder/data"
    chmod 700 "$folder/run"
    unset WAYLAND_DISPLAY XAUTHORITY QT_QPA_PLATFORM QT_SCALE_FACTOR SESSION_MANAGER DBUS_SESSION_BUS_ADDRESS
    unset XDG_CONFIG_HOME XDG_DATA_HOME
    export HOME=$folder/home XDG_RUNTIME_DIR=$folder/run PULSE_SERVER=unix:$folder/no-sound LC_ALL=C.UTF-8
    # The keyboard library of X11 hands on counted texts without an end, which a strict address sanitizer minds.
    export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}strict_string_checks=0
    Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$folder/display" >/dev/null 2>&1 &
    pids+=($!)
    wait_for "Xvfb names its display" grep -q . "$folder/display"
    DISPLAY=:$(cat "$folder/display")
    export DISPLAY
    openbox >/dev/null 2>&1 &
    pids+=($!)
    wait_for "the window manager" xdotool get_num_desktops
}

# modules NAME [FILE[=NAME]...]: a module folder with these files of the build, perhaps under another name
modules() {
    local file dir=$folder/$1
    shift
    mkdir -p "$dir"
    for file in "$@"; do
        cp "$bin/${file%%=*}" "$dir/$(basename "${file##*=}")" || fail "no file ${file%%=*}"
    done
    module_folder=$dir
}

# start [ENV-ARGUMENT...]: the program on the module folder, in a changed environment; sets pid
start() {
    env "$@" "$bin/vorticade" "${start_options[@]}" --data "$folder/data" --modules "$module_folder" >"$folder/out" 2>"$folder/err" &
    pid=$!
    pids+=("$pid")
}

# find_window TITLE: the id of the program's window of that title
find_window() {
    xdotool search --all --onlyvisible --pid "$pid" --name "^$1\$" 2>/dev/null | grep -m 1 .
}

wait_for_window() {
    wait_for "a window with the title '$1'" alive_with_window "$1"
    window=$(find_window "$1")
}

alive_with_window() {
    kill -0 "$pid" 2>/dev/null || fail "the program ended on its own"
    find_window "$1"
}

is_gone() {
    ! kill -0 "$pid" 2>/dev/null
}

# After the program was asked to end, it ends with 0 and takes its shared block along.
expect_good_end() {
    local status=0
    wait_for "its end after $1" is_gone
    wait "$pid" || status=$?
    [ $status = 0 ] || fail "exit code $status after $1"
    wait_for "the end of the shared block after $1" block_is_gone
}

# Without a private /dev/shm another program of this user may hold the block.
block_is_gone() {
    ! ls /dev/shm/PSSCDSPSharedFileMappingOF-* /dev/shm/sem.JHOFNewFrameEvent-* 2>/dev/null ||
        { [ "$DESKTOP_TEST_SHM" = shared ] && grep -ls PSSCDSPSharedFileMappingOF /proc/[0-9]*/maps; }
}

terminate() {
    kill -TERM "$pid"
    expect_good_end SIGTERM
}

geometry() {
    local WINDOW X Y WIDTH HEIGHT SCREEN
    eval "$(xdotool getwindowgeometry --shell "$window")"
    echo "${WIDTH}x$HEIGHT"
}

shoot() {
    import -silent -window "$window" "miff:$folder/$1" 2>/dev/null
}

# measure FILE EXPRESSION: an ImageMagick expression over the picture, as a whole number of thousandths
measure() {
    convert "miff:$folder/$1" -format "%[fx:round(1000*($2))]" info:
}

differ() {
    [ "$(compare -metric AE "miff:$folder/$1" "miff:$folder/$2" null: 2>&1)" != 0 ]
}

# A new shot differs from the one before and is not black.
has_moved() {
    shoot now && [ "$(measure now mean)" -gt 5 ] && differ before now
}

expect_motion() {
    shoot before || fail "no screenshot of the window"
    wait_for "a picture that moves" has_moved
}

press() {
    timeout 20 xdotool windowactivate "$1" key --window 0 "$2"
}

close_by_window_manager() {
    press "$window" alt+F4
    sleep 1
    is_gone
}

# run_cases [CASE...]: the named ones, or all functions case_NAME of the script, each with an empty data folder
run_cases() {
    start_display
    [ $# -gt 0 ] || set -- $(declare -F | sed -n 's/^declare -f case_//p')
    for case_name in "$@"; do
        rm -rf "$folder/data"
        mkdir "$folder/data"
        begun=$SECONDS
        "case_$case_name" || fail "stopped"
        echo "ok $case_name ($((SECONDS - begun)) s)"
    done
}
