#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# demo.sh [folder]: packs a folder (this tree, if none is given) into a new package and takes it out again; then
# shows a small product database in a package, and one of real size made from the Debian packages.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
folder="$(realpath -- "${1:-$root}")"
cd "$root"

need_build_tools
say "Building"
cmake --preset release -DVLT_BUILD_GATES=OFF >/dev/null
cmake --build --preset release

say "Packing a folder"
build/release/examples/pack_demo "$folder" build/demo "$root/build" "$root/.git"

say "A product database"
large=()
if command -v apt-cache >/dev/null && mkdir -p build/demo &&
    apt-cache dumpavail | build/release/examples/debian_db build/demo/debian apt; then
    large=(build/demo/debian)
else
    say "There is no Debian package index here: the database of real size is left out"
fi
build/release/examples/product_demo examples/bicycle build/demo/product "${large[@]}"
