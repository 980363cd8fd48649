#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# demo.sh [folder]: packs a folder (this tree, if none is given) into a new package and takes it out again.
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
