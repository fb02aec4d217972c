#!/usr/bin/env bash
# MainWindow_test.sh -- works with the main window as its user does: mouse and keys, choosers and questions
#
#   MainWindow_test.sh PROGRAM-FOLDER [CASE...]
#
# What was done is read from titles, saved presets and the settings. Ends as Desktop_test.sh does.
. "$(dirname "$0")/desktop.sh"

presets=$folder/data/Presets

# start_main [ENV-ARGUMENT...]: the program with both windows; sets main
start_main() {
    mkdir -p "$presets"
    start "$@"
    wait_for_window "Visuals Window"
    wait_for_window ".* - Vorticade"
    main=$window
    wait_for "the keyboard on the main window" focus_main
}

focus_main() {
    timeout 20 xdotool windowactivate --sync "$main"
    [ "$(xdotool getactivewindow)" = "$main" ]
}

# keys KEY...: to the main window, whose tree has the focus. What a key brings up within the program gets the next one.
keys() {
    wait_for "the main window in front" focus_main
    xdotool key --window 0 --delay 40 "$@"
}

# answer KEY...: to the box or chooser that wait_for_window found last
answer() {
    timeout 20 xdotool windowactivate --sync "$window" key --window 0 --delay 40 "$@"
}

titled() {
    [ "$(xdotool getwindowname "$main")" = "$1 - Vorticade" ]
}

wait_for_title() {
    wait_for "the title '$1'" titled "$1"
}

is_away() {
    ! find_window "$1"
}

wait_for_end_of() {
    wait_for "the end of the window '$1'" is_away "$1"
}

# choose_file WINDOW-TITLE NAME: types the name into the chooser that a command has opened
choose_file() {
    wait_for_window "$1"
    timeout 20 xdotool windowactivate --sync "$window" type --delay 40 "$2"
    sleep 0.4 # the list of names that fit comes up, and takes the keyboard over
    xdotool key --window 0 Return
}

# leave_chooser WINDOW-TITLE: Escape closes what lies over it first
leave_chooser() {
    wait_for "the end of the window '$1'" eval "xdotool key --window 0 Escape; sleep 0.3; is_away '$1'"
}

save_as() {
    keys ctrl+s
    choose_file "Save As" "$1"
}

# saved_as NAME: saves under a new name; preset is the file
saved_as() {
    save_as "$1"
    wait_for_title "$1.VD"
    preset=$presets/$1.VD
}

open_file() {
    keys ctrl+o
    choose_file Open "$1"
}

holds() {
    grep -qF "$1" "$preset" || fail "the saved preset does not hold $1"
}

# modules_of PLANE: the module files of that plane in their order, as saved
modules_of() {
    sed -n "/<Plane$1>/,/<.Plane$1>/s/.*<ModuleDLL>\(.*\)\.dll<.*/\1/p" "$preset" | tr '\n' ' '
}

expect_modules() {
    [ "$(modules_of "$1")" = "$2 " ] || fail "plane $1 holds '$(modules_of "$1")' instead of '$2'"
}

# mark: an edit that changes nothing but the mark: "Restore defaults", "This Item" on the root
mark() {
    keys Home Menu Down Right Return
    wait_for_title "$1"
}

stock_modules() {
    modules stock DLL/{CMShift,CMBreed,PMRotor,PMArc,PMGust,DEZoom,SoundLevelDLL}.dll
}

case_preset_built_with_the_keyboard_alone() {
    stock_modules
    start_main
    keys ctrl+n
    wait_for_title Tempname.VD
    keys Home Down Menu Down Right Return # "Add Plane", "RGB"
    wait_for_title '*Tempname.VD'
    keys shift+F10 Down Right Down Return # "Indexed"
    saved_as one
    holds '<NumPlanes>2</NumPlanes>'
    [ "$(grep -c '<Indexed>1' "$preset")" = 1 ] || fail "not one plane of two is indexed"
    "$bin/vorticade-render" --modules "$module_folder" --save "$folder/again.VD" "$preset" || fail "it cannot be read"
    keys Home Down Down Delete # the first plane is seen: it was the RGB one
    saved_as two
    holds '<NumPlanes>1</NumPlanes>'
    holds '<Indexed>1</Indexed>'
    terminate
    grep -qF '<Preset>two.VD</Preset>' "$folder/data/Globals.XML" || fail "the settings do not name it"
}

# The default preset: the painter of plane 1 is the thirteenth row.
rotor=(Home Down Down Down Down Down Down Down Down Down Down Down Down)

case_modules_added_moved_paused_removed() {
    stock_modules
    start_main
    keys "${rotor[@]}" Menu Down Down Return # "Pause/Resume Module Drawing"
    sleep 0.3
    titled Tempname.VD || fail "pausing marks the preset"
    keys "${rotor[@]}" Up Menu Down Right Return # "Add Module", its first: Arc
    wait_for_title '*Tempname.VD'
    saved_as added
    expect_modules 0 "CMShift CMBreed PMRotor PMArc PMGust"
    keys "${rotor[@]}" Menu Down Down Down Down Return # "Move Down"
    saved_as moved
    expect_modules 0 "CMShift CMBreed PMArc PMRotor PMGust"
    keys "${rotor[@]}" Delete
    saved_as removed
    expect_modules 0 "CMShift CMBreed PMRotor PMGust"
    keys Home Down Down Delete
    saved_as plane
    holds '<NumPlanes>1</NumPlanes>'
    expect_modules 0 "CMShift CMBreed PMArc PMGust"
    keys Home Down Down Menu Down Down Down Down Return # "Move Down" at the end of the list
    wait_for_title '*plane.VD'
    terminate
}

case_defaults_of_an_item_and_of_a_branch() {
    stock_modules
    mkdir -p "$presets"
    "$bin/vorticade-render" --modules "$module_folder" --save "$folder/plain.VD" default
    sed -e 's/.*PMRotor.dll.*/&<CallsPerFrame>3<\/CallsPerFrame>/; s/.*PMGust.dll.*/&<Duration>99<\/Duration>/' \
        "$folder/plain.VD" >"$presets/tuned.VD"
    start_main
    open_file tuned.VD
    wait_for_title tuned.VD
    keys "${rotor[@]}" Menu Down Down Down Down Down Right Return # "This Item"
    wait_for_title '*tuned.VD'
    saved_as item
    ! grep -q CallsPerFrame "$preset" || fail "the module kept its calls per frame"
    [ "$(grep -c '<Duration>99<' "$preset")" = 2 ] || fail "other modules were restored too"
    keys Home Menu Down Right Down Return # "Entire Branch"
    wait_for_title '*item.VD'
    saved_as branch
    cmp "$folder/plain.VD" "$preset" || fail "not everything was restored"
    terminate
}

# A panel by the keyboard: its boxes, its end, and the focus; then by the mouse, closed by the next click or held by "Pin".
case_panels_by_keys_and_clicks() {
    stock_modules
    start_main
    keys "${rotor[@]}" Right Down Right Down Return # Shape, Copies
    wait_for_window 'Rotor.Shape.Copies'
    wait_for "the keyboard on the panel" eval '[ "$(xdotool getactivewindow)" = "$window" ]'
    xdotool key --window 0 --delay 60 Tab Home # "Source:", "Fixed Value"
    wait_for_title '*Tempname.VD'
    xdotool key --window 0 --delay 60 Tab Tab Tab Tab
    xdotool type --delay 60 9999
    xdotool key --window 0 --delay 60 Escape # takes over what is being typed, at the limit
    wait_for_end_of 'Rotor.Shape.Copies'
    saved_as panel
    holds '<Val>12</Val>'
    keys Home
    click 130 83 1 # the root's neighbour
    wait_for_window '.*.Drawing Planes'
    [ "$(xdotool getactivewindow)" = "$main" ] || fail "a panel took the keyboard by a click"
    click 110 104 1
    wait_for_window 'Plane 1'
    wait_for_end_of '.*.Drawing Planes'
    keys Delete # its node goes, and it with it
    wait_for_end_of 'Plane 1'
    terminate
}

# click X Y BUTTON: in the main window
click() {
    wait_for "the main window in front" focus_main
    xdotool mousemove --window "$main" "$1" "$2" click "$3"
}

case_mouse_buttons_and_menus() {
    stock_modules
    start_main
    click 110 104 1 # a node's text; the keyboard shows which one it was
    keys Home Down Down
    click 60 62 3 # the root's menu; the selection stays on the plane
    xdotool key --window 0 Escape
    keys Delete
    wait_for_title '*Tempname.VD'
    saved_as mouse
    holds '<NumPlanes>1</NumPlanes>'
    click 20 33 1 # the first tool button: New
    wait_for_title Tempname.VD
    keys Home Down Menu Down Right Return
    wait_for_title '*Tempname.VD'
    click 20 33 1
    wait_for_window "Warning: Unsaved changes"
    answer Escape
    wait_for_end_of "Warning: Unsaved changes"
    titled '*Tempname.VD' || fail "Cancel changed something"
    click 54 33 1 # Open
    wait_for_window "Warning: Unsaved changes"
    answer alt+y
    choose_file Open mouse.VD
    wait_for_title mouse.VD
    terminate
}

# ask_to_close KEY: the close button asks, and this is the answer
ask_to_close() {
    wait_for "the question" eval 'press "$main" alt+F4; sleep 0.3; find_window "Warning: Unsaved changes"'
    wait_for_window "Warning: Unsaved changes"
    answer "$1"
}

case_close_asks_and_exit_does_not() {
    stock_modules
    start_main
    mark '*Tempname.VD'
    local no
    for no in alt+n Escape Return; do
        ask_to_close $no
        wait_for_end_of "Warning: Unsaved changes"
        titled '*Tempname.VD' || fail "the answer $no changed something"
    done
    ask_to_close alt+y
    expect_good_end "Yes to the question"
    start_main
    mark '*Tempname.VD'
    keys ctrl+q
    expect_good_end "Exit with changes"
    start_main
    wait_for "the end after a close without changes" eval 'press "$main" alt+F4; sleep 1; is_gone'
    expect_good_end "a close without changes"
}

case_overwriting_asks() {
    stock_modules
    start_main
    local name='<b>100%s & [*] x'
    saved_as "$name"
    echo old >"$preset"
    save_as "$name"
    wait_for "the question before it is overwritten" eval '[ $(xdotool search --all --onlyvisible --pid $pid --name "^Save As$" | wc -l) = 2 ]'
    xdotool key --window 0 Return
    sleep 0.3
    grep -q old "$preset" || fail "No overwrote it"
    leave_chooser "Save As"
    save_as "$name"
    wait_for "the question before it is overwritten" eval '[ $(xdotool search --all --onlyvisible --pid $pid --name "^Save As$" | wc -l) = 2 ]'
    xdotool key --window 0 alt+y
    wait_for "the new file" grep -q '<NumPlanes>2' "$preset"
    wait_for_title "$name.VD"
    [ -z "$(ls "$folder/home/.config" 2>/dev/null)" ] || fail "the chooser left a file of its own"
    terminate
}

expect_save_error() {
    wait_for_window Error
    answer Return
    wait_for_end_of Error
    titled '*Tempname.VD' || fail "a failed save changed the title"
}

case_failed_saves_lose_nothing() {
    stock_modules
    start_main
    mark '*Tempname.VD'
    save_as "$folder/nowhere/x"
    expect_save_error
    grep -q nowhere/x.VD "$folder/err" || fail "standard error does not say which file"
    if [ "$DESKTOP_TEST_SHM" = private ] && mkdir "$folder/full" && mount -t tmpfs -o size=4k tmpfs "$folder/full"; then
        head -c 4096 /dev/zero >"$folder/full/fill"
        save_as "$folder/full/y"
        expect_save_error
        umount "$folder/full"
    fi
    rm -r "$presets"
    saved_as_gone
    terminate
}

# The chooser begins in a folder that is there; the preset can still be saved.
saved_as_gone() {
    save_as "$folder/data/kept"
    wait_for_title kept.VD
    [ -s "$folder/data/kept.VD" ] || fail "there is no file"
}

case_files_that_are_no_presets() {
    stock_modules
    mkdir -p "$presets"
    "$bin/vorticade-render" --modules "$module_folder" --save "$presets/good.VD" default
    mkfifo "$presets/fifo.VD"
    head -c 70000 /dev/urandom >"$presets/noise.VD"
    mkdir "$presets/folder.VD"
    local deep=$folder/data/$(printf 'd%.0s' {1..130})/$(printf 'e%.0s' {1..130})
    mkdir -p "$deep"
    cp "$presets/good.VD" "$deep/deep.VD"
    start_main
    open_file fifo.VD
    wait_for "a line on the pipe" grep -q fifo.VD "$folder/err"
    open_file good.VD
    wait_for_title good.VD
    open_file folder.VD # enters the folder
    leave_chooser Open
    titled good.VD || fail "a folder replaced the preset"
    open_file nothere.VD
    wait_for_title good.VD
    leave_chooser Open
    open_file noise.VD
    wait_for "another title than good.VD" eval '! titled good.VD'
    open_file "$deep/deep.VD"
    wait_for_title deep.VD
    keys Home Down Down Delete
    wait_for_title '*deep.VD'
    terminate
}

case_termination_with_something_open() {
    stock_modules
    local open
    for open in "Menu" "alt+f" "ctrl+o" "ctrl+s"; do
        start_main
        keys $open
        sleep 0.5
        terminate
    done
    start_main
    mark '*Tempname.VD'
    ask_to_close Tab
    terminate
    start_main
    saved_as here
    save_as here
    sleep 0.7
    terminate
}

case_edits_beside_a_plane_that_hangs() {
    modules slow DLL/{CMShift,CMBreed,PMGust,SoundLevelDLL}.dll TestDLL/HostileSlow.dll=PMRotor.dll
    start_main HOSTILE_SLEEP_MS=4000
    keys "${rotor[@]}" Delete
    wait_for_title '*Tempname.VD'
    saved_as quick
    expect_modules 0 "CMShift CMBreed PMGust"
    keys Home Down Down Delete
    wait_for_title '*quick.VD'
    keys ctrl+q
    expect_good_end "Exit beside a plane that hangs"
}

size_of() {
    local WINDOW X Y WIDTH HEIGHT SCREEN
    eval "$(xdotool getwindowgeometry --shell "$1")"
    echo "$WIDTH $HEIGHT $X $Y"
}

case_places_and_sizes() {
    stock_modules
    local ratio main_size visuals
    for ratio in 1 1.5 2; do
        start_main QT_SCALE_FACTOR=$ratio
        read -ra main_size < <(size_of "$main")
        read -ra visuals < <(size_of "$(find_window "Visuals Window")")
        [ $((main_size[2] + main_size[0])) -le "${visuals[2]}" ] || fail "the picture lies under the main window"
        [ $((visuals[2] - main_size[2] - main_size[0])) -le 20 ] || fail "the picture does not begin beside the frame"
        [ $((visuals[2] + visuals[0])) -le 1602 ] || fail "the picture goes beyond the screen"
        xdotool windowsize "$main" 700 600
        wait_for "another height" eval '[ "$(size_of "$main" | cut -d " " -f 2)" = 600 ]'
        [ "$(size_of "$main" | cut -d ' ' -f 1)" = "${main_size[0]}" ] || fail "the width is not fixed"
        terminate
    done
}

case_main_window_comes_later() {
    stock_modules
    start_options=(--no-main)
    start
    start_options=()
    wait_for_window "Visuals Window"
    is_away ".* - Vorticade" || fail "there is a main window"
    xdotool mousemove --window "$window" 300 300 click 3
    sleep 0.5
    xdotool key --delay 60 Up Up Return
    wait_for_window "Tempname.VD - Vorticade"
    main=$window
    mark '*Tempname.VD'
    keys ctrl+q
    expect_good_end "Exit in the window that came later"
}

case_two_programs_side_by_side() {
    stock_modules
    start_main
    local first=$pid first_main=$main
    start_main
    mark '*Tempname.VD'
    local second=$pid second_main=$main
    main=$first_main
    titled Tempname.VD || fail "an edit in one marked the other"
    pid=$first
    keys ctrl+q
    wait_for "the end of the first" is_gone
    pid=$second main=$second_main
    saved_as second
    terminate
}

run_cases "$@"
