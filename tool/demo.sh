#!/bin/sh
# demo.sh TOOL FOLDER: the main job on a simulated 13-megapixel module, into FOLDER; ends by saying what to look at.
set -eu

tool=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
mkdir -p "$2"
folder=$2
cd "$folder"

# Shows a command as it would be typed, and runs it.
run() {
    printf '\n$ zerklsc'
    printf ' %s' "$@"
    printf '\n'
    "$tool" "$@"
}

run simulate -o flat.pgm
run measure flat.pgm

for isp in tvessa2:orvel vessal2:orvel-weights; do
    name=${isp%:*}
    run calibrate flat.pgm --algorithm "${isp#*:}" -o "tables-$name.json"
    run correct flat.pgm --tables "tables-$name.json" --isp "$name" -o "corrected-$name.pgm"
    run measure "corrected-$name.pgm" --limit 1
    run preview flat.pgm --tables "tables-$name.json" -o "preview-$name.png"
done

run compare flat.pgm
# The same calibration for a finer grid, and for a 1080p stream from the middle of the sensor.
run resample tables-tvessa2.json --step 32 -o tables-step32.json
run resample tables-tvessa2.json --crop 184,480,3840,2160 --size 1920,1080 --step 32 -o tables-1080p.json
run otp encode tables-tvessa2.json -o stream.bin --c-array stream.h
run otp check stream.bin --tables tables-tvessa2.json
run otp decode stream.bin --like tables-tvessa2.json -o tables-decoded.json

printf '\nLook at these pictures, relative illumination before and after, for each ISP:\n'
printf '    %s\n' "$folder/preview-tvessa2.png" "$folder/preview-vessal2.png"
printf 'The tables are in %s, the stream for the module in %s.\n' "$folder/tables-*.json" "$folder/stream.bin"
