# lib.sh -- what the scripts share; sourced, with the repository root as working folder afterwards

# shellcheck shell=bash
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
root=$PWD
jobs=$(nproc 2>/dev/null || echo 2)

say() {
    printf '%s\n' "$*" >&2
}

# For what the user can mend; a wrong command line ends with 2 through usage_error.
fail() {
    say "${0##*/}: $*"
    exit 1
}

usage_error() {
    say "${0##*/}: $* (--help tells the options)"
    exit 2
}

# configure FOLDER CMAKE-ARGUMENT...: CMake's chatter is shown only when it fails.
configure() {
    local folder=$1 log
    shift
    mkdir -p "$folder"
    log=$folder/configure.log
    cmake "$@" >"$log" 2>&1 && return
    cat "$log" >&2
    fail "CMake could not configure $folder"
}

# build FOLDER [TARGET...]
build() {
    local folder=$1
    shift
    if [ $# -gt 0 ]; then
        set -- --target "$@"
    fi
    cmake --build "$folder" --parallel "$jobs" "$@" || fail "the build in $folder failed"
}
