#!/usr/bin/env bash
# Builds the program and opens the bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/setup.sh
vok_install_packages
vok_build build/release -DCMAKE_BUILD_TYPE=Release
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display found: start an X server (for example Xvfb :1 & export DISPLAY=:1) and run again." >&2
    exit 1
fi
exec build/release/app/waveform-editor "${1:-examples/counter.wdl}"
