#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A machine without any of our tools is told to install all of them, although the tree has folders of the same names.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/setup.sh"
cd "$root"

expect() {
    local what="$1" expected="$2" found="$3"
    [ "$found" = "$expected" ] || { warn "$what: expected '$expected', found '$found'"; exit 1; }
}

everywhere="$PATH"
PATH="" # commands that are built into the shell are all that is left
expect "missing tools" "cmake ninja-build g++ pkg-config " \
    "$(missing_packages cmake=cmake ninja=ninja-build g++=g++ pkg-config=pkg-config)"
expect "folders of this tree" "a b " "$(missing_packages tests=a docs=b ./tests=c)"
expect "paths" "missing " "$(missing_packages "$root/cmake=there" "$root/no such path=missing")"
expect "what is asked for" "cmake ninja-build g++ pkg-config" \
    "$(can_install() { printf '%s' "$*"; false; }; need_build_tools || true)"
PATH="$everywhere"
expect "a command that is there" "" "$(missing_packages bash=bash)"
