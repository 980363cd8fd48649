#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the DLL for 32-bit and for 64-bit Windows and runs its tests under Wine; then compares packages that this
# system and both DLLs write. Each target is built once, with its tests and its checks, in build/windows-release and
# build/windows64-release. Where Wine cannot be had, builds only, and says so.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"
not_run=build/windows-tests-not-run # for whoever calls this and sums up
rm -f "$not_run"

# Whether programs of both widths run. A first start makes the prefix, which takes a while.
wine_works() {
    local shell
    command -v wine >/dev/null || return
    for shell in 'C:\windows\system32\cmd.exe' 'C:\windows\syswow64\cmd.exe'; do
        timeout 180 scripts/wine.sh "$shell" /c exit >/dev/null 2>&1 </dev/null || return
    done
}

# 32-bit Wine needs 32-bit libraries of the very versions that the 64-bit ones have. Where only the 64-bit ones have
# been updated, those of the release must come back: a priority above 1000 lets them replace newer ones.
install_wine() {
    can_install wine wine64 wine32:i386 || return 1
    say "Installing Wine"
    dpkg --add-architecture i386
    refresh_indexes
    apt install --no-install-recommends wine wine64 wine32:i386 && return
    local release
    release="$(. /etc/os-release && echo "$VERSION_CODENAME")"
    mkdir -p build
    printf 'Package: *\nPin: release n=%s\nPin-Priority: 1001\n' "$release" >build/release.pref
    apt install --no-install-recommends --allow-downgrades -o "Dir::Etc::Preferences=$PWD/build/release.pref" \
        wine wine64 wine32:i386
}

# The program is tested for 32 bits; a release has it for both.
build() {
    say "$1"
    cmake --preset "$1" -DVLT_BUILD_TESTS=ON -DVLT_WERROR=ON "${@:2}"
    cmake --build --preset "$1"
}

# Of hundreds of programs that a run starts, Wine now and then lets one hang at its start or end; so a test that ran out
# of time, and that alone, is run once more. A test that fails has failed.
test_under_wine() {
    build "$@"
    ctest --preset "$1" --parallel 2 --repeat after-timeout:2
}

build_only() {
    warn "WINE CANNOT BE HAD HERE: the DLL and its tests are built, but NOT RUN"
    build windows-release
    build windows64-release -DVLT_BUILD_TOOL=OFF
    touch "$not_run"
    warn "The tests of the DLL were NOT RUN: there is no working Wine"
}

compare_targets() {
    say "Packages of every target"
    cmake --preset release >/dev/null
    cmake --build --preset release --target sample exchange
    VLT_LIBRARY=build/release/libvlt.so PYTHONPATH=bindings/python python3 -B tests/bindings/across_targets.py \
        build/release build/windows-release build/windows64-release
}

need_test_tools
need i686-w64-mingw32-g++-posix=g++-mingw-w64-i686-posix x86_64-w64-mingw32-g++-posix=g++-mingw-w64-x86-64-posix
# The import library for MSVC, and programs that are made as MSVC makes them.
need llvm-dlltool=llvm clang=clang lld-link=lld

if ! wine_works; then
    install_wine || true
    wine_works || { build_only; exit 0; }
fi
test_under_wine windows-release
test_under_wine windows64-release -DVLT_BUILD_TOOL=OFF
compare_targets
say "All tests of the DLL passed"
