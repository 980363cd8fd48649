#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# exchange_bench.sh VLT DB: how long exports and an import take beside the load of the database, in processor time.
# The goals are 150 MB/s of CSV and of JSON lines behind the load, and an import of the CSV within 3 loads.
set -euo pipefail
vlt="$(realpath "$1")" db="$(realpath "$2")"
work="$(mktemp -d "${TMPDIR:-/tmp}/exchange-bench.XXXXXX")"
trap 'rm -rf "$work"' EXIT

# Seconds of user and system time of a command.
seconds() {
    local TIMEFORMAT='%U %S' times
    times="$({ time "$@" >/dev/null 2>"$work/errors"; } 2>&1)" || { cat "$work/errors" >&2; exit 1; }
    awk -v t="$times" 'BEGIN { split(t, part, " "); print part[1] + part[2] }'
}

row() {  # TITLE SECONDS BYTES
    awk -v title="$1" -v s="$2" -v load="$load" -v bytes="$3" 'BEGIN {
        printf "%-28s %7.2f s  %5.2f loads", title, s, s / load
        if (bytes > 0 && s > load) printf "  %6.0f MB/s behind the load", bytes / 1e6 / (s - load)
        print "" }'
}

load="$(seconds "$vlt" db info "$db")"
row "load" "$load" 0
csv="$(seconds "$vlt" db export "$db" --csv "$work/csv")"
row "export --csv" "$csv" "$(cat "$work"/csv/*.csv | wc -c)"
jsonl="$(seconds "$vlt" db export "$db" --jsonl -o "$work/lines")"
row "export --jsonl" "$jsonl" "$(wc -c <"$work/lines")"
row "import of the CSV" "$(seconds "$vlt" db import "$work/csv" "$work/made")" 0
