#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Starts the editor with a demo sound, or without a display takes the tour. Usage: scripts/run-demo.sh BIN_FOLDER
set -euo pipefail
editor=$1/ek-wave-editor
demo=build/demo.wav
tour=build/tour

[[ -f $demo ]] || "$editor" --make-demo "$demo"

if "$editor" --check-display 2>/dev/null; then
    exec "$editor" "$demo"
fi
echo "There is no display here that can be reached, so the editor takes a tour by itself."
"$editor" --tour "$tour" "$demo"
echo "What it saw and saved is in $tour:"
ls -l "$tour"
