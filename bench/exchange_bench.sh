#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# exchange_bench.sh VLT DB: how long exports and an import take beside the load of the database, in processor time:
# the best of three rounds, in which all take turns. The goals are 150 MB/s of CSV and of JSON lines behind the load,
# and an import of the CSV within 3 loads.
set -euo pipefail
vlt="$(realpath "$1")" db="$(realpath "$2")"
work="$(mktemp -d "${TMPDIR:-/tmp}/exchange-bench.XXXXXX")"
trap 'rm -rf "$work"' EXIT
declare -A best

# Keeps the least seconds of user and system time of a command, after removing what it makes.
measure() { # NAME MADE COMMAND...
    local TIMEFORMAT='%U %S' name="$1" times
    rm -rf "$2"
    shift 2
    times="$({ time "$@" >/dev/null 2>"$work/errors"; } 2>&1)" || { cat "$work/errors" >&2; exit 1; }
    best[$name]="$(awk -v t="$times" -v best="${best[$name]:-}" 'BEGIN {
        split(t, part, " "); s = part[1] + part[2]; print best == "" || s < best ? s : best }')"
}

row() { # NAME BYTES
    awk -v title="$1" -v s="${best[$1]}" -v load="${best[load]}" -v bytes="$2" 'BEGIN {
        printf "%-28s %7.2f s  %5.2f loads", title, s, s / load
        if (bytes > 0 && s > load) printf "  %6.0f MB/s behind the load", bytes / 1e6 / (s - load)
        print "" }'
}

for _ in 1 2 3; do
    measure load "$work/none" "$vlt" db table "$db" BITM --limit 0
    measure "export --csv" "$work/csv" "$vlt" db export "$db" --csv "$work/csv"
    measure "export --jsonl" "$work/lines" "$vlt" db export "$db" --jsonl -o "$work/lines"
    measure "import of the CSV" "$work/made" "$vlt" db import "$work/csv" "$work/made"
done
row load 0
row "export --csv" "$(cat "$work"/csv/*.csv | wc -c)"
row "export --jsonl" "$(wc -c <"$work/lines")"
row "import of the CSV" 0
