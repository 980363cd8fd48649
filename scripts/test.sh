#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds everything for this system and runs the tests: under the sanitizers, then the checks of the release build.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"

need_test_tools && need_languages && need_browser && need abidiff=abigail-tools
for preset in test tsan release; do
    say "$preset"
    cmake --workflow --preset "$preset"
done
say "All tests passed"
