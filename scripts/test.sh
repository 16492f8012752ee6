#!/usr/bin/env bash
# Builds everything with AddressSanitizer, LeakSanitizer and UBSan and runs
# every test. Exits non-zero when any test fails.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/setup.sh
vok_install_packages
vok_install_wavedrom
vok_build build/test -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVOK_SANITIZE=ON
cd build/test
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" "$@"
