#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Measures speed and memory against their bars, then whole commands beside those of others.
# Usage: scripts/run-bench.sh BIN_FOLDER
set -euo pipefail
bin=$1

# Nobody's settings decide how fast it is.
folder=$(mktemp -d build/bench.XXXXXX)
trap 'rm -rf "$folder"' EXIT
export XDG_CONFIG_HOME=$PWD/$folder/config XDG_STATE_HOME=$PWD/$folder/state

status=0
"$bin/ek_bench" || status=1
echo
QT_QPA_PLATFORM=offscreen "$bin/ek_bench_view" || status=1
echo

# Ten minutes of noise from a file to a file. Only ekbatch waits for the disk.
sox -n -r 44100 -c 2 -b 16 "$folder/sound.wav" synth 600 whitenoise vol 0.5
hyperfine --style basic --warmup 1 --runs 5 --prepare "rm -f '$folder'/copy*" \
    --command-name "cp" "cp '$folder/sound.wav' '$folder/copy.wav'" \
    --command-name "ekbatch open, save" \
    "$bin/ekbatch -e 'open \"$folder/sound.wav\"' -e 'save \"$folder/copy.wav\"'" \
    --command-name "ekbatch open, save as FLAC" \
    "$bin/ekbatch -e 'open \"$folder/sound.wav\"' -e 'save \"$folder/copy.flac\"'" \
    --command-name "sox" "sox '$folder/sound.wav' '$folder/copy.wav'" \
    --command-name "sox to FLAC" "sox '$folder/sound.wav' '$folder/copy.flac'"
exit $status
