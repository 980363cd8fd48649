#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# fuzz.sh [seconds [target ...]]: runs the fuzz targets (package, inspect, schema, table, escape, database) for that
# long each, 20 seconds if nothing is given, from a fixed seed. Inputs that reach something new are kept in
# build/fuzz/corpus and begin the next run; an input that breaks a property is kept in
# build/fuzz/findings, and the script ends non-zero.
# To run one input again: build/fuzz/fuzz/fuzz_TARGET FILE
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"
seconds="${1:-20}"
targets=("${@:2}")
[ ${#targets[@]} -gt 0 ] || targets=(package inspect schema table escape database)

need_build_tools && need_clang
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

# Short inputs where the work grows faster than they do.
longest() {
    case "$1" in
        table | package | inspect) echo 1024 ;;
        *) echo 8192 ;;
    esac
}

failed=()
mkdir -p build/fuzz/findings
for target in "${targets[@]}"; do
    say "Fuzzing $target for $seconds s"
    corpus="build/fuzz/corpus/$target"
    log="build/fuzz/findings/$target.log"
    mkdir -p "$corpus"
    build/fuzz/fuzz/fuzz_"$target" -seed=1 -max_total_time="$seconds" -timeout=30 -max_len="$(longest "$target")" \
        -dict=fuzz/fuzz.dict -artifact_prefix="build/fuzz/findings/$target-" -print_final_stats=1 \
        "$corpus" "build/fuzz/fuzz/seeds/$target" >"$log" 2>&1 || failed+=("$target")
    grep -E 'does not hold|ERROR|Test unit written|stat::number_of_executed_units' "$log" || true
done
[ ${#failed[@]} -eq 0 ] || { warn "findings: ${failed[*]}; see build/fuzz/findings"; exit 1; }
say "No findings"
