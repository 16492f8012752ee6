#!/usr/bin/env bash
# Builds the program and opens the bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/setup.sh
vok_install_packages
vok_build build/release -DCMAKE_BUILD_TYPE=Release
exec build/release/app/wdl dump "${1:-examples/counter.wdl}"
