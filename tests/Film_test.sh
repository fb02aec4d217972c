#!/usr/bin/env bash
# Film_test.sh -- makes films with scripts/film, reads them back, and breaks what can break
#
# Usage: Film_test.sh BIN, the folder of the programs
set -u

bin=$1
film=$(cd "$(dirname "$0")/.." && pwd)/scripts/film
command -v ffmpeg >/dev/null && command -v ffprobe >/dev/null || {
    echo "ffmpeg is missing: skipped"
    exit 77
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

expect() {
    local what=$1
    shift
    "$@" || {
        echo "FAILED: $what"
        failures=$((failures + 1))
    }
}

make_film() {
    "$film" --bin "$bin" --size 192x128 --fps 10 "$@" >log 2>&1
}

probe() {
    ffprobe -v error -select_streams "$2" -show_entries "stream=$3" -of csv=p=0 "$1"
}

# Mean difference between neighbouring frames from second $2 to second $3, in thousandths.
activity() {
    ffmpeg -v error -ss "$2" -to "$3" -i "$1" -vf "format=gray,tblend=all_mode=difference,signalstats,metadata=print:file=-" \
        -f null - | awk -F= '/YAVG/ { sum += $2; n++ } END { print (n > 0 ? int(1000 * sum / n) : -1) }'
}

# Three seconds of silence, three of a loud beat, three of silence.
beat='if(between(t,3,6),sin(1400*t)*(0.1+0.7*exp(-8*mod(t,0.5))),0)'
ffmpeg -v error -f lavfi -i "aevalsrc='$beat':s=44100:d=9" -ac 2 song.wav
ffmpeg -v error -i song.wav -c:a aac song.m4a

expect "a film is made" make_film default song.wav film.mp4
expect "the video has its size and every frame" [ "$(probe film.mp4 v codec_name,width,height,nb_frames)" = h264,192,128,90 ]
expect "the film has sound" [ "$(probe film.mp4 a codec_name)" = aac ]
expect "picture and sound are equally long" [ "$(probe film.mp4 v duration)" = 9.000000 ]
before=$(activity film.mp4 1 3)
during=$(activity film.mp4 3.3 6)
after=$(activity film.mp4 7.3 9)
expect "the picture moves with the song: $before, $during, $after" [ "$((during * 10))" -gt "$((before * 12))" ]
expect "its silence calms the picture: $before, $during, $after" [ "$((during * 10))" -gt "$((after * 13))" ]

expect "a song of another kind and odd sizes make a film too" \
    make_film --seconds 1.5 --size 161x129 default song.m4a "odd %d name.mkv" -- --seed 7
expect "it has even sides and the seconds wanted" [ "$(probe "odd %d name.mkv" v width,height)" = 162,130 ]

cp film.mp4 kept.mp4
head -c 400000 song.wav >cut.wav
expect "a song that was cut off is refused" eval '! make_film default cut.wav film.mp4'
expect "with advice that the script understands" grep -q -e "--seconds" log
expect "its beginning may do" make_film --seconds 1 "Dance - Neon Spokes.VD" cut.wav start.mkv
expect "a preset by its name alone does not begin in the dark" [ "$(ffmpeg -v error -i start.mkv -frames:v 1 -pix_fmt gray \
    -f rawvideo - | tr -d '\000-\030' | wc -c)" -gt 100 ]
head -c 3000 /dev/urandom >noise.wav
expect "noise is refused" eval '! make_film default noise.wav film.mp4'
expect "a missing preset is refused" eval '! make_film missing.VD song.wav film.mp4'
expect "a size out of range is refused" eval '! make_film --size 64x64 default song.wav film.mp4'
expect "a full disk is told" eval '! (ulimit -f 8 && make_film --seconds 2 default song.wav film.mp4)'
expect "the old film stays whole" cmp -s film.mp4 kept.mp4
for wrong in "default song.wav" "default song.wav film.avi" "--fps 0 default song.wav a.mp4" "--bogus default song.wav a.mp4"; do
    # shellcheck disable=SC2086
    make_film $wrong
    expect "wrong command line: $wrong" [ $? = 2 ]
done
expect "nothing is left behind" [ "$(find . -name '.film-*' -o -name 'a.mp4' | wc -l)" = 0 ]
exit $((failures > 0))
