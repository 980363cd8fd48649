#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# bench.sh [quick]: prints what the library reaches beside raw calls, a plain loader and SQLite, with the goals.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"

need_build_tools
need /usr/include/sqlite3.h=libsqlite3-dev
say "Building"
cmake --preset release -B build/bench -DVLT_BUILD_GATES=OFF -DVLT_BUILD_BENCH=ON >/dev/null
cmake --build build/bench

say "The package store"
build/bench/bench/store_bench "$@"
say "The database"
graph=build/demo/debian
[ -e "$graph/kdbmain.txt" ] || graph=""
build/bench/bench/db_bench "$@" ${graph:+"$graph"}
say "Products"
products="$(mktemp -d "${TMPDIR:-/tmp}/product-bench.XXXXXX")"
trap 'rm -rf "$products"' EXIT
python3 bench/product_bench.py build/bench/bin/vlt "$products/product" "$@"
say "Data in and out"
bench/exchange_bench.sh build/bench/bin/vlt "$products/product"
say "The program"
need /usr/bin/time=time /usr/bin/zip=zip /usr/bin/unzip=unzip
bench/tool_bench.sh build/bench/bin/vlt "$@"
