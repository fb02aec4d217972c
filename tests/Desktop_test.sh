#!/usr/bin/env bash
# Desktop_test.sh -- drives the real desktop program on a display of its own, with a window manager
#
#   Desktop_test.sh PROGRAM-FOLDER [CASE...]
#
# Ends with 0 when all cases pass, with 77 where a tool is missing. Needs no privilege and no display; leaves nothing.
. "$(dirname "$0")/desktop.sh"
start_options=(--no-main) # the visuals window alone

# A picture that fills the window with a ramp, so that every pixel is known up to the frame: x + 3y counted from the
# bottom gives the colour.
ramp_modules() {
    modules ramp DLL/CMShift.dll DLL/CMBreed.dll DLL/SoundLevelDLL.dll TestDLL/MinimalPainter.dll=PMRotor.dll
}

# shows_ramp WIDTHxHEIGHT: the window has that size, and its picture is a ramp pixel by pixel: neither stretched, nor
# cut, nor shifted at an edge.
shows_ramp() {
    local width=${1%x*} height=${1#*x}
    shoot now && [ "$(identify -format '%wx%h' "miff:$folder/now")" = "$1" ] || return 1
    [ "$(identify -format '%k' "miff:$folder/now")" -ge 16 ] || return 1
    convert "miff:$folder/now" -crop "$((width - 3))x$((height - 1))+0+0" +repage "miff:$folder/above"
    convert "miff:$folder/now" -crop "$((width - 3))x$((height - 1))+3+1" +repage "miff:$folder/below"
    ! differ above below
}

# Right after its start the window may still ask for sizes in steps.
takes_size() {
    xdotool windowsize "$window" "${1%x*}" "${1#*x}"
    sleep 0.2
    [ "$(geometry)" = "$1" ]
}

expect_ramp_after_resize() {
    local wanted=$1
    wait_for "the window at $wanted" takes_size "$wanted"
    wait_for "a picture that fills $wanted" shows_ramp "$wanted"
}

# ends_with CODE TEXT COMMAND...: with one line on standard error that holds the text, and nothing on standard output
ends_with() {
    local code=$1 text=$2 status=0
    shift 2
    timeout "$limit" "$@" >"$folder/out" 2>"$folder/err" || status=$?
    [ $status = "$code" ] || fail "exit code $status instead of $code: $*"
    [ "$(wc -l <"$folder/err")" = 1 ] || fail "not one line on standard error: $*"
    grep -qF -e "$text" "$folder/err" || fail "standard error does not say '$text': $*"
    [ ! -s "$folder/out" ] || fail "something on standard output: $*"
}

case_moving_picture_that_ends_on_sigterm() {
    modules stock DLL/{CMShift,CMBreed,PMRotor,PMArc,PMGust,SoundLevelDLL}.dll
    start
    wait_for_window "Visuals Window"
    expect_motion
    terminate
    [ -s "$folder/data/Globals.XML" ] || fail "the settings were not saved"
}

case_no_runtime_folder_no_noise() {
    ramp_modules
    start -u XDG_RUNTIME_DIR
    wait_for_window "Visuals Window"
    terminate
    ! grep XDG_RUNTIME_DIR "$folder/err" || fail "noise about the runtime folder"
}

case_picture_follows_the_size() {
    ramp_modules
    start
    wait_for_window "Visuals Window"
    wait_for "a picture that fills the first size" shows_ramp "$(geometry)"
    expect_ramp_after_resize 701x453
    expect_ramp_after_resize 1111x640
    terminate
}

case_pixel_ratios() {
    ramp_modules
    local ratio
    for ratio in 1.5 2; do
        start QT_SCALE_FACTOR=$ratio
        wait_for_window "Visuals Window"
        expect_ramp_after_resize 900x600
        terminate
    done
}

# darkened CROP: that part of the window lies under an overlay
darkened() {
    shoot now && convert "miff:$folder/now" -crop "$1" +repage "miff:$folder/part" && [ "$(measure part maxima)" -le 300 ]
}

# choose KEY...: these keys in the context menu
choose() {
    xdotool mousemove --window "$window" 300 300 click 3
    sleep 0.5
    xdotool key --delay 60 "$@"
}

double_click() {
    xdotool mousemove --window "$window" 300 200 click --repeat 2 --delay 60 1
}

case_overlays_menu_and_full_screen() {
    ramp_modules
    start
    wait_for_window "Visuals Window"
    wait_for "a picture that fills the first size" shows_ramp 1280x720
    ! darkened 100x8+8+5 || fail "the top left is dark without an overlay"
    ! darkened 100x8+1160+706 || fail "the bottom right is dark without an overlay"
    press "$window" r
    wait_for "the metrics at the top left" darkened 100x8+8+5
    press "$window" h
    wait_for "the help at the bottom right" darkened 100x8+1160+706
    ! darkened 100x8+8+706 || fail "there is an overlay at the bottom left"
    xdotool mousemove --window "$window" 40 20 click 1
    press "$window" r
    press "$window" h
    wait_for "the end of all overlays after a click into one" shows_ramp 1280x720

    choose Down Down Down Right Down Return
    wait_for "the second window size of the menu" eval '[ $(geometry) = 720x480 ]'
    wait_for "a picture that fills it" shows_ramp 720x480
    double_click
    wait_for "a picture that fills the screen" shows_ramp 1600x1000
    press "$window" Escape
    wait_for "the size of before" shows_ramp 720x480
    double_click
    wait_for "full screen again" shows_ramp 1600x1000
    choose Down Down Down Right Return
    wait_for "a window size chosen in full screen" shows_ramp 640x480
    press "$window" s
    wait_for "a screen capture" eval 'ls "$folder"/data/ScreenShots/ScreenCapture_*.png'
    choose Up Return
    expect_good_end "the last entry of the menu"
}

case_closed_by_the_window_manager() {
    ramp_modules
    start
    wait_for_window "Visuals Window"
    wait_for "the end after a close" close_by_window_manager
    expect_good_end "a close"
}

case_destroyed_from_outside() {
    ramp_modules
    start
    wait_for_window "Visuals Window"
    expect_motion
    xdotool windowclose "$window"
    expect_good_end "the window's destruction"
}

case_minimised_and_back() {
    ramp_modules
    start
    wait_for_window "Visuals Window"
    xdotool windowminimize "$window"
    wait_for "the minimised window" eval '! find_window "Visuals Window"'
    kill -0 "$pid" || fail "the program ended when it was minimised"
    xdotool windowmap "$window"
    wait_for_window "Visuals Window"
    expect_motion
    terminate
}

notice_stands() {
    shoot now && convert "miff:$folder/now" -gravity South -crop x100+0+0 +repage "miff:$folder/band" &&
        [ "$(measure band maxima)" -gt 700 ]
}

picture_is_black() {
    shoot now && [ "$(measure now maxima)" = 0 ]
}

click_away() {
    xdotool mousemove --window "$window" 30 60 click 1
    picture_is_black
}

case_empty_module_folder() {
    modules empty DLL/SoundLevelDLL.dll
    rm "$module_folder"/*
    start
    wait_for_window "Critical file not found!"
    press "$window" Return
    wait_for_window "Visuals Window"
    wait_for "a notice at the bottom of the window" notice_stands
    grep -qF "no module was found in $module_folder" "$folder/err" || fail "standard error does not tell the folder"
    wait_for "a black window after a click on the notice" click_away
    terminate
}

case_missing_sound_library() {
    ramp_modules
    rm "$module_folder/SoundLevelDLL.dll"
    start
    wait_for_window "Critical file not found!"
    local box=$window
    grep -qF "$module_folder/SoundLevelDLL.dll" "$folder/err" || fail "standard error does not name the file"
    wait_for_window "Visuals Window"
    expect_motion
    find_window "Critical file not found!" >/dev/null || fail "the message box went away on its own"
    press "$box" Return
    wait_for "the end of the message box" eval '! find_window "Critical file not found!"'
    expect_motion
    terminate
}

case_message_box_open_at_the_end() {
    ramp_modules
    rm "$module_folder/SoundLevelDLL.dll"
    start
    wait_for_window "Critical file not found!"
    wait_for_window "Visuals Window"
    wait_for "the end after a close" close_by_window_manager
    expect_good_end "a close with a message box open"
}

case_slow_module() {
    modules slow DLL/CMShift.dll DLL/CMBreed.dll DLL/SoundLevelDLL.dll TestDLL/HostileSlow.dll=PMRotor.dll
    local ms
    for ms in 400 6000; do
        start HOSTILE_SLEEP_MS=$ms
        wait_for_window "Visuals Window"
        xdotool windowsize "$window" 640 480
        wait_for "another size of the window" eval '[ $(geometry) = 640x480 ]'
        wait_for "the end after a close" close_by_window_manager
        expect_good_end "a close beside a module that sleeps $ms ms"
    done
}

case_two_side_by_side() {
    ramp_modules
    start
    local first=$pid
    wait_for_window "Visuals Window"
    start
    local second=$pid
    wait_for_window "Visuals Window"
    pid=$first
    kill -TERM "$pid"
    wait_for "the first one's end" is_gone
    wait "$pid" || fail "the first one ended with $?"
    ls /dev/shm/PSSCDSPSharedFileMappingOF-* >/dev/null || fail "the first one took the block from the second"
    pid=$second
    wait_for_window "Visuals Window"
    expect_motion
    terminate
}

# listed ROWS: name, sound sync and favorites of the preset folder, as a run of its own finds them
listed() {
    [ "$("$bin/vorticade-render" --modules "$module_folder" --list "$folder/data/Presets" 2>/dev/null |
        sed 1d | cut -f 1,4,5 | tr '\t\n' ', ')" = "$1" ]
}

case_presets_change_while_it_runs() {
    local preset presets=$folder/data/Presets
    ramp_modules
    mkdir -p "$presets"
    for preset in a b c; do
        echo '<Source>8</Source>' >"$presets/$preset.VD"
    done
    printf '<x>\n<Favorites><Entries>1</Entries><Fave0><Name>b.VD</Name><Favor>4</Favor></Fave0></Favorites>' \
        >"$folder/data/Favorites.XML"
    start
    wait_for_window "Visuals Window"
    expect_motion
    rm "$presets/a.VD"
    mv "$presets/b.VD" "$presets/moved.VD"
    cp -p "$presets/c.VD" "$presets/new.VD"
    sleep 2 # what is noticed within that time is all that the cache can hold
    terminate
    [ "$(stat -c %s "$presets/PresetCache.dat")" = $((4 + 3 * 288)) ] || fail "the cache does not hold three presets"
    grep -q '<Name>moved.VD</Name>' "$folder/data/Favorites.XML" || fail "the count did not go along"
    rm "$folder/data/Favorites.XML"
    listed 'c.VD,Yes,0 moved.VD,Yes,4 new.VD,Yes,0 ' || fail "the list from the cache is another one"
}

case_refusals() {
    module_folder=$folder
    ends_with 2 '--bogus' "$bin/vorticade" --bogus
    ends_with 2 '--modules' "$bin/vorticade" --modules "$folder/nowhere"
    local deep=$folder/$(printf 'd%.0s' {1..120})/$(printf 'd%.0s' {1..120})
    mkdir -p "$deep"
    touch "$deep/Mine.VD"
    ends_with 2 'fewer than 260' "$bin/vorticade" "$deep/Mine.VD"
    ends_with 1 'no display' env -u DISPLAY "$bin/vorticade"
    ends_with 1 'no display' env DISPLAY=:9999 "$bin/vorticade"
    ends_with 1 'no window' env DISPLAY=:9999 QT_QPA_PLATFORM=xcb "$bin/vorticade"
    ends_with 1 'no window' env QT_QPA_PLATFORM=nonsense "$bin/vorticade"
}

run_cases "$@"
