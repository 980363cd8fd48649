#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# test-packages.sh FOLDER: installs the Debian packages of a folder, compiles the sample with them and runs it and the
# program, and removes them again. Meant for a Debian that may be spoilt: see scripts/fresh.sh.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"
packages=("$(realpath "$1")"/*.deb)

refresh_indexes
apt install --no-install-recommends "${packages[@]}" gcc libc6-dev pkg-config
work="$(mktemp -d)"
gcc -std=c99 bindings/c/sample.c $(pkg-config --cflags --libs vlt) -o "$work/sample"
"$work/sample" examples/bicycle "$work/bicycle.vlt" >"$work/lines"
grep -q '^  1 x FR-100 Frame set$' "$work/lines" || { warn "the sample prints something else"; exit 1; }
vlt --version
apt remove vlt libvlt-dev libvlt1
[ ! -e /usr/bin/vlt ] && ! ldconfig -p | grep libvlt || { warn "something is left behind"; exit 1; }
say "The packages install, work, and go away"
