#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# coverage.sh: which branches of the library the tests and the inputs of the fuzz targets take: the seeds, and what
# scripts/fuzz.sh has kept in build/fuzz/corpus. Prints a table; build/coverage/missed.txt lists the branches not taken.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"

need_test_tools && need_clang
cmake --preset coverage >/dev/null
cmake --build --preset coverage

out=build/coverage
rm -rf $out/profiles && mkdir -p $out/profiles
export LLVM_PROFILE_FILE="$root/$out/profiles/%p-%m.profraw"
ctest --preset coverage || warn "a test fails; the table counts what was run"
for target in package inspect schema table escape database; do
    inputs=("$out/fuzz/seeds/$target")
    [ -d "build/fuzz/corpus/$target" ] && inputs+=("build/fuzz/corpus/$target")
    $out/fuzz/fuzz_$target -runs=0 "${inputs[@]}" >/dev/null 2>&1
done

llvm-profdata-14 merge -sparse $out/profiles/*.profraw -o $out/all.profdata
programs=()
for program in $out/libvlt.so $out/tests/*_tests $out/fuzz/fuzz_*; do
    [ -x "$program" ] && programs+=(-object "$program")
done
counted=(-instr-profile $out/all.profdata "${programs[@]:1}" base platform/posix vlt offline)
llvm-cov-14 report -show-branch-summary "${counted[@]}" | tee $out/report.txt
llvm-cov-14 show -show-branches=count -show-instantiations=false "${counted[@]}" |
    awk '/^\/.*:$/ { file = $0 } /^ +[0-9]+\|/ { source = $0 }
         /Branch \(.*: 0[],]/ { sub(/^[ |]+/, ""); print file " " $0 "  " source }' >$out/missed.txt
