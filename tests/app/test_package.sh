#!/bin/sh
# Installs the build into a scratch root, runs the installed programs, and
# builds the Debian package and checks what it carries and depends on.
# Usage: test_package.sh BUILD_DIR
set -eu
build=$(cd "$1" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$scratch/root" >/dev/null
"$scratch/root/bin/wdl" --version | grep -qx 'wdl [0-9.]*' || fail "wdl --version"
"$scratch/root/bin/waveform-editor" --version | grep -qx 'waveform-editor [0-9.]*' || fail "waveform-editor --version"
"$scratch/root/bin/waveform-editor" --help | grep -q -- '--hosted' || fail "waveform-editor --help lacks --hosted"
command -v man >/dev/null && for page in waveform-editor wdl; do
    man --warnings -l "$scratch/root/share/man/man1/$page.1" 2>&1 >/dev/null | grep . && fail "$page.1 has roff warnings"
done
if command -v desktop-file-validate >/dev/null; then
    desktop-file-validate "$scratch/root/share/applications/waveform-editor.desktop" || fail ".desktop file"
fi

command -v dpkg-deb >/dev/null && command -v dpkg-shlibdeps >/dev/null || { echo "SKIP: no dpkg-deb"; exit 77; }
(cd "$scratch" && cpack --config "$build/CPackConfig.cmake" -G DEB -B "$scratch/pkg" >/dev/null) || fail "cpack"
deb=$(ls "$scratch"/pkg/*.deb) || fail "no .deb written"
dpkg-deb -c "$deb" | awk '{print $6}' | sed 's|^\./|/|' > "$scratch/files"
for f in /usr/bin/waveform-editor /usr/bin/wdl \
         /usr/share/applications/waveform-editor.desktop \
         /usr/share/mime/packages/waveform-editor.xml \
         /usr/share/icons/hicolor/scalable/apps/waveform-editor.svg \
         /usr/share/icons/hicolor/scalable/mimetypes/application-x-waveform-document.svg \
         /usr/share/man/man1/waveform-editor.1 /usr/share/man/man1/wdl.1; do
    grep -qx "$f" "$scratch/files" || fail "$f missing from the package"
done
for size in 16 22 24 32 48 64 128 256; do
    for icon in apps/waveform-editor mimetypes/application-x-waveform-document; do
        grep -qx "/usr/share/icons/hicolor/${size}x${size}/$icon.png" "$scratch/files" \
            || fail "${size}px $icon missing from the package"
    done
done
depends=$(dpkg-deb -f "$deb" Depends)
# An optimised build inlines the C++ wrapper of GMP and needs only the library.
for lib in libqt6widgets6 libqt6printsupport6 libgmp10 libc6 qt6-qpa-plugins; do
    echo "$depends" | grep -q "$lib" || fail "Depends lacks $lib: $depends"
done
echo "package ok: $(basename "$deb")"
