#!/usr/bin/env bash
# Installs the Debian 12 packages the project needs (only those missing).
# Sourced by the other scripts; also runnable on its own.
set -euo pipefail

VOK_PACKAGES=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev fonts-dejavu-core
    libgmp-dev
    xvfb xauth
    # the simulators the export tests run every export through
    iverilog verilator ghdl ghdl-mcode
    # SVG pictures; pdfinfo checks the PDF pages in the tests
    qt6-svg-dev poppler-utils
    # the package test checks the menu entry with desktop-file-validate
    desktop-file-utils
    # the fuzz build: clang and its libFuzzer runtime
    clang libclang-rt-14-dev
)

vok_install_packages() {
    local missing=() p
    for p in "${VOK_PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    echo "Installing: ${missing[*]}"
    $sudo apt-get update -q
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Optional and small (3 MB): the WaveDrom renderer that the WaveJSON test
# draws the examples with; without it that check is skipped.
vok_install_wavedrom() {
    command -v npm >/dev/null || return 0
    [ -d "$(npm root -g)/wavedrom" ] && return 0
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo npm install -g --no-audit --no-fund wavedrom@3 >/dev/null 2>&1 \
        || echo "wavedrom not installed: the WaveJSON test will not draw the examples"
}

# vok_build DIR [cmake options...]: configure (once) and build into DIR.
vok_build() {
    local dir=$1; shift
    local root
    root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
    cmake -S "$root" -B "$root/$dir" -G Ninja "$@" >/dev/null
    cmake --build "$root/$dir" -j"$(nproc)"
}

if [ "${BASH_SOURCE[0]}" = "$0" ]; then
    vok_install_packages
    vok_build build/release -DCMAKE_BUILD_TYPE=Release
fi
