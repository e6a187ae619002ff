#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Every check that needs no running program: layout, floors, sources, clang-tidy. All of them run, whatever the
# first one finds. Usage: scripts/lint.sh [FILE...]   (clang-tidy over these; default: all of the programs)
set -euo pipefail
cd "$(dirname "$0")/.."

# clang-tidy gets a build folder of its own, without the precompiled headers of another compiler.
mkdir -p build/tidy
cmake -S . -B build/tidy -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
    >build/tidy/configure.log || { cat build/tidy/configure.log; exit 1; }

tidy() {
    local files=("$@")
    if [[ ${#files[@]} -eq 0 ]]; then
        mapfile -t files < <(git -c safe.directory='*' ls-files --cached --others --exclude-standard -- '*.cpp' |
            grep -vE '^(tests|fuzz|bench)/' | while IFS= read -r file; do if [[ -f $file ]]; then echo "$file"; fi; done)
    fi
    # Findings come on the output; the error channel has the counts of what was suppressed.
    printf '%s\0' "${files[@]}" |
        xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/tidy --quiet 2>build/tidy/errors.log ||
        { grep -v 'warnings\? generated' build/tidy/errors.log >&2; return 1; }
    echo "tidy: ${#files[@]} files without findings"
}

failed=()
check() {
    "$@" || failed+=("$1")
}
check scripts/format-check.sh
check scripts/check-floors.py
check scripts/check-sources.py build/tidy/compile_commands.json
check tidy "$@"

if [[ ${#failed[@]} -gt 0 ]]; then
    echo "lint: FAILED: ${failed[*]}"
    exit 1
fi
echo "lint: clean"
