#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Runs each fuzzer for some seconds, on the inputs in fuzz/corpus and what it found before.
# Usage: scripts/run-fuzz.sh BIN_FOLDER SECONDS
set -euo pipefail
bin=$1
seconds=$2

for fuzzer in "$bin"/fuzz_*; do
    name=$(basename "$fuzzer")
    found=build/fuzz/found/$name
    mkdir -p "$found"
    seeds=()
    [[ -d fuzz/corpus/$name ]] && seeds=("fuzz/corpus/$name")
    echo "== $name"
    "$fuzzer" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$found/" "$found" "${seeds[@]}"
done
