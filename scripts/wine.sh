#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a Windows program of 32 or 64 bits under Wine, in a prefix of the project's own. CTest starts every .exe
# through this.
set -euo pipefail
build="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build"
mkdir -p "$build"
export WINEPREFIX="${VLT_WINEPREFIX:-$build/wine-prefix}" WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=" # no offers to download components
exec wine "$@"
