#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# lint.sh [deep]: fails where the tree is not formatted as .clang-format says, or where clang-tidy finds what
# .clang-tidy names in the sources that the `test` preset compiles. `deep` has the tests looked at too, and every path
# through each function followed, which takes ten times as long.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"

need_test_tools && need clang-format-14=clang-format-14 clang-tidy-14=clang-tidy-14

if [ "${1:-}" = deep ]; then
    quick_checks=() looked_at=() longest=3600
else
    quick_checks=(--checks=-clang-analyzer-\*) looked_at=(':!tests' ':!fuzz') longest=600
fi

say "Formatting"
git ls-files -z '*.c' '*.cpp' '*.h' ':!*/generated/*' | xargs -0 clang-format-14 --dry-run --Werror

say "clang-tidy"
cmake --preset test -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
git ls-files '*.cpp' "${looked_at[@]}" | while read -r source; do
    if grep -qF "\"$root/$source\"" build/test/compile_commands.json; then printf '%s\0' "$source"; fi
done | timeout "$longest" xargs -0 -n 4 -P "$(nproc)" \
    clang-tidy-14 -p build/test --quiet --warnings-as-errors='*' "${quick_checks[@]}" \
        2> >(grep -v 'warnings generated' >&2)
say "Nothing found"
