#!/usr/bin/env bash
# Template_test.sh -- follows the guide for module authors outside of the tree: its listings, its commands, its module
#
# Usage: Template_test.sh BIN, the folder of the programs
set -u

bin=$(cd "$1" && pwd) || exit 1
tree=$(cd "$(dirname "$0")/.." && pwd)
guide=$tree/docs/MODULES.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$tree/docs/template" "$work/module" && cp -r "$tree/include" "$work/include" && cd "$work" || exit 1
mkdir stock && cp "$bin"/DLL/*.dll stock || exit 1
failures=0

expect() {
    local what=$1
    shift
    "$@" || {
        echo "FAILED: $what"
        failures=$((failures + 1))
    }
}

# The guide's code blocks of a language, one file each: NAME-1, NAME-2...
blocks() {
    awk -v language="$1" -v name="$2" '
        $0 == "```" { inside = 0 }
        inside { print >(name "-" n) }
        $0 == "```" language { inside = 1; n++ }' "$guide"
}

# render FOLDER PRESET NAME OPTION...: NAME gets the pixels of the frames, and NAME.log what was said.
render() {
    local folder=$1 preset=$2 name=$3
    shift 3
    "$bin/vorticade-render" --data "$tree/data" --modules "$folder" --size 160x128 --out - "$@" "$preset" \
        >"$name" 2>"$name.log"
}

frame=$((160 * 128 * 4))
# The number of bytes that are not 0 in frame $2 of file $1, counted from 1.
lit() {
    tail -c +$((($2 - 1) * frame + 1)) "$1" | head -c $frame | tr -d '\0' | wc -c
}

# The number of bytes in which frames $2 and $3 of file $1 differ.
changed() {
    cmp -l <(tail -c +$((($2 - 1) * frame + 1)) "$1" | head -c $frame) \
        <(tail -c +$((($3 - 1) * frame + 1)) "$1" | head -c $frame) | wc -l
}

# Two seconds of 8-bit samples from standard input as a sound file.
wave() {
    printf 'RIFF\xa4\x3e\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x40\x1f\0\0\x01\0\x08\0data\x80\x3e\0\0'
    head -c 16000
}

entry_points='ModuleBuildControlStructure
ModuleCleanUp
ModuleDestroyControlStructure
ModuleDrawFrame
ModuleGetDescription
ModuleInitialize
ModulePreInitialize
ModuleResolveIndexedPlane'

# The module at the path does what the guide says of it.
check_module() {
    local module=$1 what=$2 lines
    rm -rf with && cp -r stock with && cp "$module" with/ || failures=$((failures + 1))
    expect "$what: only entry points are seen" \
        [ "$(nm -D --defined-only "$module" | sed 's/.* //' | LC_ALL=C sort)" = "$entry_points" ]
    expect "$what: the preset renders" render with module/Sunflower.VD frames --warmup 20 --frames 30
    expect "$what: nothing is missing" [ ! -s frames.log ]
    lines="$(lit frames 1) bytes lit, $(changed frames 1 30) changed"
    expect "$what: it is not black: $lines" [ "$(lit frames 1)" -gt $((frame / 20)) ]
    expect "$what: it moves: $lines" [ "$(changed frames 1 30)" -gt $((frame / 20)) ]
}

blocks cpp code
blocks xml preset
expect "the guide's listing is the template" cmp code-1 module/PMSunflower.cpp
expect "it has under a hundred lines" [ "$(wc -l <module/PMSunflower.cpp)" -lt 100 ]
expect "the guide's preset is the template's" cmp preset-1 module/Sunflower.VD
expect "the guide has examples" [ -s code-2 ]

command=$(sed -n 's/^    \(g++ .*-o PMSunflower\.dll\)$/\1/p' "$guide")
expect "the guide has one compile command" [ "$(wc -l <<<"$command")" = 1 ]
for compiler in g++ clang++; do
    command -v $compiler >/dev/null || continue
    rm -rf build-$compiler oneline-$compiler
    CXX=$compiler cmake -G Ninja -S module -B build-$compiler -DVORTICADE_INCLUDE="$work/include" \
        -DCMAKE_COMPILE_WARNING_AS_ERROR=ON >log 2>&1 && cmake --build build-$compiler >>log 2>&1 || cat log
    check_module build-$compiler/PMSunflower.dll "CMake and $compiler"

    mkdir oneline-$compiler && cp -r module/PMSunflower.cpp include oneline-$compiler/
    expect "$compiler takes the one line" \
        env -C oneline-$compiler bash -c "${command/#g++/$compiler} -Werror -Wno-unused-command-line-argument"
    check_module oneline-$compiler/PMSunflower.dll "one line of $compiler"

    for example in code-[2-9]*; do
        { printf '#include "module.h"\n#include <cstring>\n' && cat "$example"; } >example.cpp
        expect "$compiler takes $example of the guide" \
            $compiler -std=c++20 -Wall -Wextra -Wno-unused-function -Werror -I include -I "$tree/stock/common" \
            -fsyntax-only example.cpp
    done
done

mkdir c && cp module/CMakeLists.txt "$tree/tests/modules/MinimalPainter.c" c/
cmake -G Ninja -S c -B c/build -DVORTICADE_INCLUDE="$work/include" >log 2>&1 && cmake --build c/build >>log 2>&1 || cat log
expect "the template takes C" \
    [ "$(nm -D --defined-only c/build/PMSunflower.dll | sed 's/.* //' | LC_ALL=C sort)" = "$entry_points" ]

# A host with a sanitizer of its own does not take another one.
if ! nm "$bin/vorticade-render" | grep -qE '__(asan|tsan)_init'; then
    cmake -G Ninja -S module -B check -DVORTICADE_INCLUDE="$work/include" -DMODULE_SANITIZE=ON >log 2>&1 &&
        cmake --build check >>log 2>&1 || cat log
    cp -r stock checked && cp check/PMSunflower.dll checked/
    large='<Source>1</Source><Val>3</Val></Control0><Control1><Name>Shape.Seeds</Name><Source>1</Source><Val>9</Val></Control1>'
    sed -e "s|<Source>8</Source>|$large|; s/<NumControls>1/<NumControls>2/; /<Samples>/d; /<M[ai][nx]>/d; /^\t*<.Control0>/d" \
        module/Sunflower.VD >large.VD # its seeds reach over the edges of the picture
    for preset in module/Sunflower.VD large.VD; do
        for size in 128x128 1921x1081; do
            expect "no memory error at $size with $preset" env LD_PRELOAD="$(g++ -print-file-name=libasan.so)" \
                "$bin/vorticade-render" --data "$tree/data" --modules checked --size $size --fps 10 --frames 12 \
                --out check-%d.ppm "$preset"
        done
    done
fi

expect "without headers CMake says what to do" \
    eval '! cmake -G Ninja -S module -B build-none >log 2>&1 && grep -q VORTICADE_INCLUDE log'

# What follows asks whether the tests above could see a module that does nothing, and whether it hears.
expect "without the module the preset renders" render stock module/Sunflower.VD none --warmup 20 --frames 30
expect "and is black" [ "$(lit none 30)" = 0 ]
expect "and the reason is told" grep -q 'PMSunflower.dll is not installed' none.log
sed -e 's/DPainter/OPainter/g; s/NumDEffect>1/NumDEffect>0/; s/<Source>8/<Source>1/' module/Sunflower.VD >overlay.VD
tr '\0' '\200' </dev/zero | wave >silence.wav
yes '01~AzP' | tr -d '\n' | wave >noise.wav
expect "silence plays" render with overlay.VD silent --sound silence.wav --frames 90
expect "noise plays" render with overlay.VD loud --sound noise.wav --frames 90
expect "the seeds swell with the sound: $(lit silent 90), $(lit loud 90)" \
    [ "$(lit loud 90)" -gt "$(($(lit silent 90) * 13 / 10))" ]
render with module/Sunflower.VD again --warmup 20 --frames 30
expect "a film repeats" cmp frames again
exit $((failures > 0))
