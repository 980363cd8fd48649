#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tool_bench.sh [FOLDER...]: times `vlt add`, `extract` and `ls` beside tar and zip, same files, one run.
set -euo pipefail
vlt="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/release/bin/vlt"
[ $# -gt 0 ] || set -- /usr/share/doc /usr/include
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir "$work/files"
for folder in "$@"; do cp -rL --parents "$folder" "$work/files" 2>/dev/null || true; done
find "$work/files" -type l -delete
cd "$work"
printf '%d files, %s\n' "$(find files -type f | wc -l)" "$(du -sh files | cut -f1)"

# The best of three runs, each after the given preparation.
best() {
    local name="$1" before="$2" least='' seconds
    shift 2
    for _ in 1 2 3; do
        eval "$before"
        seconds="$({ TIMEFORMAT=%R; time "$@" >/dev/null 2>&1 || true; } 2>&1)"
        least="$(printf '%s\n' $least "$seconds" | sort -n | head -1)"
    done
    printf '%-16s %8.3f s\n' "$name" "$least"
}
best 'tar -cf' 'rm -f a.tar' tar -cf a.tar files
best 'vlt add' 'rm -f a.vlt; "$vlt" create a.vlt' "$vlt" add -q a.vlt files
command -v zip >/dev/null && best 'zip -0' 'rm -f a.zip' zip -q -0 -r a.zip files
best 'tar -xf' 'rm -rf x; mkdir x' tar -xf a.tar -C x
best 'vlt extract' 'rm -rf x' "$vlt" extract -q --native-names a.vlt -C x
command -v unzip >/dev/null && best 'unzip' 'rm -rf x' unzip -q a.zip -d x
mkdir many
(cd many && seq -f 'f%06.0f' 100000 | xargs touch)
"$vlt" create many.vlt
"$vlt" add -q many.vlt many
best 'ls of 100,000' true "$vlt" ls many.vlt
