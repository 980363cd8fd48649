#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the DLL for 32-bit Windows and runs its tests under Wine. Where Wine cannot be had, builds only, and says so.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"
not_run=build/windows-tests-not-run # for whoever calls this and sums up
rm -f "$not_run"

# A first start makes the prefix, which takes a while.
wine_works() {
    command -v wine >/dev/null && timeout 180 scripts/wine.sh cmd /c exit >/dev/null 2>&1 </dev/null
}

# 32-bit Wine needs 32-bit libraries; where newer 64-bit ones are installed, those of the release must come back.
install_wine() {
    can_install wine wine32:i386 || return 1
    say "Installing Wine"
    dpkg --add-architecture i386
    refresh_indexes
    apt install --no-install-recommends wine wine32:i386 ||
        apt install --no-install-recommends --allow-downgrades -t bookworm wine wine32:i386
}

build_only() {
    warn "WINE CANNOT BE HAD HERE: the DLL and its tests are built, but NOT RUN"
    for preset in windows-test windows-release; do
        say "$preset (build only)"
        cmake --preset "$preset"
        cmake --build --preset "$preset"
    done
    touch "$not_run"
    warn "The tests of the DLL were NOT RUN: there is no working Wine"
}

need_test_tools
need i686-w64-mingw32-g++-posix=g++-mingw-w64-i686-posix
# The import library for MSVC is made where the tool is there.
need llvm-dlltool=llvm || warn "no llvm-dlltool: vlt.lib is not built"

if ! wine_works; then
    install_wine || true
    wine_works || { build_only; exit 0; }
fi
for preset in windows-test windows-release; do
    say "$preset"
    cmake --workflow --preset "$preset"
done
say "All tests of the DLL passed"
