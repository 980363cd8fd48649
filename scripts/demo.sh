#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# demo.sh [folder]: packs a folder (this tree, if none is given) into a package, damages and rescues it, extracts; then
# shows a small product database in a package, and one of real size made from the Debian packages.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
folder="$(realpath -- "${1:-$root}")"
cd "$root"

need_build_tools
say "Building"
cmake --preset release -DVLT_BUILD_GATES=OFF >/dev/null
cmake --build --preset release

# Prints a command and runs it; a status of 1 tells of findings, and the tour has some.
show() {
    printf '\n$ %s\n' "$*"
    "$@" || [ $? = 1 ]
}

say "Packing a folder"
rm -rf build/demo/pack build/demo/product # of an earlier run
mkdir -p build/demo/pack
PATH="$root/build/release/bin:$PATH"
pack=build/demo/pack
show vlt create "$pack/demo.vlt"
show vlt add -C "$folder" --exclude build --exclude .git "$pack/demo.vlt" .
vlt ls --sort size -r -l "$pack/demo.vlt" | sed -n '1,12p'
show vlt info "$pack/demo.vlt"
show vlt seal "$pack/demo.vlt"
show vlt check "$pack/demo.vlt"

say "Damaging a copy in 20 places, and rescuing what can be read"
cp "$pack/demo.vlt" "$pack/damaged.vlt"
blocks=$(($(stat -c %s "$pack/demo.vlt") / 4096))
for place in $(seq 20); do
    printf 'damage' | dd of="$pack/damaged.vlt" bs=1 conv=notrunc status=none \
        seek=$((place * (blocks / 21) * 4096 + 100))
done
show vlt check "$pack/damaged.vlt"
show vlt salvage "$pack/damaged.vlt" "$pack/rescued.vlt"
show vlt diff --ignore-times "$pack/demo.vlt" "$pack/rescued.vlt"

say "Extracting, and comparing with the folder"
show vlt extract "$pack/demo.vlt" -C "$pack/extracted" --native-names
show vlt diff "$pack/demo.vlt" "$pack/extracted"

say "A product in a package: print, search, change, take its documents out"
rm -rf build/demo/product build/demo/bicycle.html # of an earlier run
mkdir build/demo/product
product=build/demo/product/bicycle.vlt
show vlt db pack examples/bicycle "$product"
show vlt db info "$product"
show vlt bom tree "$product" WH-200
show vlt bom where-used "$product" CM-900 --all
show vlt bom sum "$product" --field WEIGHT --override
show vlt db edit "$product" --set 'ST-450:CMAT=steel' --set 'ST-450:WEIGHT=61' --line 'BK-700:ST-450=1'
show vlt bom diff examples/bicycle "$product"
show vlt db check "$product"
show vlt db unpack "$product" build/demo/product/unpacked
show diff -r examples/bicycle/docs build/demo/product/unpacked/docs
show vlt bom html "$product" -o build/demo/bicycle.html --title "City bicycle"

say "A product of real size"
rm -rf build/demo/debian.html
if command -v apt-cache >/dev/null &&
    apt-cache dumpavail | build/release/examples/debian_db build/demo/debian apt; then
    show vlt db info build/demo/debian
    show vlt bom tree build/demo/debian apt --depth 1
    show vlt bom html build/demo/debian -o build/demo/debian.html --title "Debian packages"
else
    say "There is no Debian package index here: it is left out"
fi
say "The product as a page: $(cd build/demo && echo *.html | sed 's/[^ ]*html/build\/demo\/&/g')"
