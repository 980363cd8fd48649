#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tool_bench.sh VLT [quick]: the program beside tar and zip on the same files, in one run, and the memory of its verbs.
# The files are those of this system's documentation, headers and Python. Contenders take turns; of their rounds the
# one of the least wall time and the one of the least processor time count.
set -euo pipefail
vlt="$(realpath "$1")"
rounds=5 many=100000 big=1024 enough=20000
[ "${2:-}" != quick ] || { rounds=2 many=10000 big=64 enough=2000; }
work="$(mktemp -d "${TMPDIR:-/tmp}/tool-bench.XXXXXX")"
trap 'rm -rf "$work"' EXIT
cd "$work"
declare -A wall cpu

least() { printf '%s\n' $1 "$2" | sort -g | head -1; }

# Runs a command, and keeps the least of its times. Status 1 stands for files that were left out.
measure() { # NAME COMMAND...
    local TIMEFORMAT='%R %U %S' name="$1" times status
    shift
    times="$({ time { status=0; "$@" >out 2>errors || status=$?; echo "$status" >status; }; } 2>&1)"
    [ "$(cat status)" -le 1 ] || { cat errors >&2; exit 1; }
    wall[$name]="$(least "${wall[$name]:-}" "$(cut -d' ' -f1 <<<"$times")")"
    cpu[$name]="$(least "${cpu[$name]:-}" "$(awk '{ print $2 + $3 }' <<<"$times")")"
}

row() { # NAME REFERENCE
    awk -v name="$1" -v w="${wall[$1]}" -v c="${cpu[$1]}" -v rw="${wall[$2]}" -v rc="${cpu[$2]}" 'BEGIN {
        printf "| %s | %.2f s | %.2f s | %.2f x | %.2f x |\n",
            name, w, c, w / (rw > 0 ? rw : 0.01), c / (rc > 0 ? rc : 0.01) }'
}

peak() { # NAME COMMAND...
    local name="$1" status=0
    shift
    /usr/bin/time -q -o memory -f %M "$@" >out 2>errors || status=$?
    [ "$status" -le 1 ] || { cat errors >&2; exit 1; }
    printf '| %s | %d MiB |\n' "$name" "$(($(tail -1 memory) / 1024))"
}

gather_files() {
    local folder folders=(/usr/share/doc /usr/include /usr/lib/python3* /usr/share/perl /usr/share/locale)
    mkdir files
    for folder in "${folders[@]}"; do
        [ "$(find files -type f | wc -l)" -lt "$enough" ] || break
        cp -r --parents "$folder" files 2>/dev/null || true
    done
    find files -type l -delete
    printf '%d files, %s\n\n' "$(find files -type f | wc -l)" "$(du -sh --apparent-size files | cut -f1)"
}

real_files() {
    gather_files
    for ((round = 0; round < rounds; ++round)); do
        rm -f a.tar a.vlt a.zip
        "$vlt" create a.vlt
        measure 'tar -cf' tar -cf a.tar files
        measure 'vlt add' "$vlt" add -q a.vlt files
        measure 'zip -0' zip -q -0 -r a.zip files
        for folder in from-tar from-vlt from-zip; do rm -rf "$folder"; mkdir "$folder"; done
        measure 'tar -xf' tar -xf a.tar -C from-tar
        measure 'vlt extract' "$vlt" extract -q --native-names a.vlt -C from-vlt
        measure 'unzip' unzip -q a.zip -d from-zip
    done
    echo '| work | wall | processor | wall, of tar | processor, of tar |'
    for name in 'tar -cf' 'vlt add' 'zip -0'; do row "$name" 'tar -cf'; done
    for name in 'tar -xf' 'vlt extract' unzip; do row "$name" 'tar -xf'; done
    rm -rf files from-* a.*
}

many_files() {
    mkdir many
    (cd many && seq -f 'f%06.0f' "$many" | xargs touch)
    "$vlt" create many.vlt
    "$vlt" add -q many.vlt many
    for ((round = 0; round < rounds; ++round)); do measure 'ls' "$vlt" ls many.vlt; done
    printf '\nls of %d files: %s s (goal 0.3 for 100000)\n' "$many" "${wall[ls]}"
}

big_file() {
    head -c "${big}M" /dev/urandom >big
    "$vlt" create big.vlt
    "$vlt" add -q big.vlt big
    for ((round = 0; round < rounds; ++round)); do measure 'check' "$vlt" check -q big.vlt; done
    "$vlt" seal -q big.vlt
    for ((round = 0; round < rounds; ++round)); do
        measure 'cat' sh -c 'cat big.vlt >/dev/null'
        measure 'check, sealed' "$vlt" check -q big.vlt
    done
    printf 'check of %d MiB: %s s; sealed: %s s, beside %s s of cat to nowhere\n\n' "$big" "${wall[check]}" \
        "${wall[check, sealed]}" "${wall[cat]}"
}

memory_of() { # PACKAGE SOURCE NAME
    "$vlt" create new.vlt
    peak "$3: add" "$vlt" add -q new.vlt "$2"
    rm -rf new.vlt made
    for verb in ls 'ls -l' info check sum; do peak "$3: $verb" "$vlt" $verb "$1"; done
    peak "$3: cat" "$vlt" cat "$1" "$("$vlt" ls "$1" | sed -n 1p)"
    peak "$3: extract" "$vlt" extract -q "$1" -C made
    peak "$3: compact" "$vlt" compact -q "$1" compacted.vlt
    peak "$3: salvage" "$vlt" salvage -q "$1" salvaged.vlt
    peak "$3: diff" "$vlt" diff -q "$1" compacted.vlt
    peak "$3: seal" "$vlt" seal -q compacted.vlt
    peak "$3: check, sealed" "$vlt" check -q compacted.vlt
    rm -rf made compacted.vlt salvaged.vlt
}

real_files
many_files
big_file
echo '| memory at most | |'
memory_of big.vlt big "one file of $big MiB"
memory_of many.vlt many "$many files"
