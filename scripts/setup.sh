#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Installs what is missing on Debian 12. Usage: scripts/setup.sh [run|test|bench|lint|fuzz|all]   (default: run)
# When nothing is missing it asks nobody for anything: no network, no root.
set -euo pipefail

run=(g++ make cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-qpa-plugins libgl-dev
    libsndfile1-dev libsoxr-dev libpugixml-dev libutfcpp-dev libspdlog-dev libcli11-dev
    libfftw3-dev librtaudio-dev
    fonts-dejavu-core)
# A session without X11 needs Qt's Wayland plugin; every other one does without it.
[[ -n ${WAYLAND_DISPLAY:-} && -z ${DISPLAY:-} ]] && run+=(qt6-wayland)

# An X server without hardware and a hand on its mouse; alsa-utils brings recordings of a voice; PulseAudio plays into
# a sink that is nowhere.
test=("${run[@]}" libgtest-dev libgmock-dev xvfb xdotool alsa-utils pulseaudio pulseaudio-utils)
bench=("${test[@]}" hyperfine sox)
lint=("${test[@]}" clang-format clang-tidy python3 git)
fuzz=("${run[@]}" clang libclang-rt-14-dev)

wanted=${1:-run}
case $wanted in
    run | test | bench | lint | fuzz)
        declare -n packages=$wanted
        ;;
    all)
        packages=("${bench[@]}" "${lint[@]}" "${fuzz[@]}")
        ;;
    *)
        echo "usage: scripts/setup.sh [run|test|bench|lint|fuzz|all]" >&2
        exit 2
        ;;
esac

if ! command -v apt-get >/dev/null; then
    echo "setup: this is no Debian system; install by hand what stands for: ${packages[*]}" >&2
    exit 1
fi

installed() {
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

missing=()
for package in "${packages[@]}"; do
    installed "$package" || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

as_root=()
if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
        echo "setup: these packages are missing and only root can install them:" >&2
        echo "    apt-get install --no-install-recommends ${missing[*]}" >&2
        echo "Run that as root, or install sudo, and start again." >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
