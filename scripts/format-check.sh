#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Fails when a source is not laid out as clang-format lays it out. With --fix it is laid out so.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run -Werror)
[[ ${1:-} == --fix ]] && mode=(-i)

git -c safe.directory='*' ls-files -z --cached --others --exclude-standard -- '*.cpp' '*.h' |
    while IFS= read -r -d '' file; do if [[ -f $file ]]; then printf '%s\0' "$file"; fi; done |
    xargs -0 -r -n 40 -P "$(nproc)" clang-format --style=file "${mode[@]}"
echo "format: done"
