#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Runs the tests of a build folder and closes with their count. Usage: scripts/run-tests.sh BUILD_FOLDER [CTEST OPTION...]
set -euo pipefail
build=$1
shift

# Tests meet no settings of the person who runs them and leave none behind.
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_STATE_HOME=$home/state
export XDG_CACHE_HOME=$home/cache XDG_RUNTIME_DIR=$home/runtime
mkdir -m 0700 "$XDG_RUNTIME_DIR"

export ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:strict_string_checks=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
# Qt and the codecs are not instrumented: what they do among themselves cannot be judged.
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:ignore_noninstrumented_modules=1

results=$PWD/$build/test-results
rm -rf "$results"
mkdir -p "$results"
export GTEST_OUTPUT=xml:$results/

status=0
ctest --test-dir "$build" --output-on-failure --no-tests=error -j "$(nproc)" "$@" </dev/null || status=$?

# Every program has left one file, in which one line counts its cases.
find "$results" -name 'test_*.xml' -exec grep -h -m 1 '<testsuites ' {} + | awk '
    { programs++; cases += count("tests"); failures += count("failures") }
    function count(name) { return match($0, " " name "=\"[0-9]+") ? substr($0, RSTART + length(name) + 3, RLENGTH) + 0 : 0 }
    END { printf "tests: %d cases in %d programs, %d of them failed\n", cases, programs, failures }'
exit $status
