# SPDX-License-Identifier: MIT
# Sourced by the other scripts: finds the root of the tree and installs the Debian packages that are missing.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

say() { printf '\n== %s\n' "$*"; }

warn() { printf '\n!! %s\n' "$*" >&2; }

# Tells whether a probe is there: with a slash in it, a path; without one, a command and nothing else, because the
# tree has folders that are named like commands.
probe_found() {
    case "$1" in
        */*) [ -e "$1" ] ;;
        *) command -v "$1" >/dev/null ;;
    esac
}

# Prints the packages whose probe is not there. Arguments are pairs probe=package.
missing_packages() {
    local pair
    for pair in "$@"; do
        probe_found "${pair%%=*}" || printf '%s ' "${pair#*=}"
    done
}

# Tells whether packages can be installed here; if not, says why and what is missing.
can_install() {
    if ! command -v apt-get >/dev/null; then
        warn "this is not a Debian system; please install what these Debian packages hold: $*"
        return 1
    elif [ "$(id -u)" != 0 ]; then
        warn "not root, so nothing can be installed; please run: apt-get install $*"
        return 1
    fi
}

apt() { DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Use-Pty=0 "$@" </dev/null; }

# An index that cannot be read is no reason to stop: the package may be in another one, or known already.
refresh_indexes() { apt update || warn "a package index could not be read; going on with what is known"; }

# Installs what is missing of the pairs probe=package; fails when something is missing still.
need() {
    local missing
    missing="$(missing_packages "$@")"
    [ -z "$missing" ] && return 0
    can_install $missing || return 1
    say "Installing $missing"
    refresh_indexes
    apt install --no-install-recommends $missing || true
    missing="$(missing_packages "$@")"
    [ -z "$missing" ] || { warn "could not be installed: $missing"; return 1; }
}

# With the headers that the program vlt is built with.
need_build_tools() {
    need cmake=cmake ninja=ninja-build g++=g++ pkg-config=pkg-config \
        /usr/include/CLI/CLI.hpp=libcli11-dev /usr/include/nlohmann/json.hpp=nlohmann-json3-dev \
        /usr/include/fmt/format.h=libfmt-dev /usr/include/xxhash.h=libxxhash-dev \
        /usr/include/sqlite3.h=libsqlite3-dev /usr/include/fuse3/fuse.h=libfuse3-dev
}

need_test_tools() {
    need_build_tools && need /usr/src/googletest/CMakeLists.txt=googletest python3=python3 fusermount3=fuse3
}

# Clang with the libraries that its sanitizers, its fuzzer and its profiles are linked with.
need_clang() {
    need clang++-14=clang-14 llvm-profdata-14=llvm-14 \
        "/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux/libclang_rt.fuzzer-$(uname -m).a=libclang-rt-14-dev"
}

# A browser, and what drives it, for pages that are tested as they are used.
need_browser() {
    need /usr/bin/chromium=chromium /usr/bin/chromedriver=chromium-driver \
        /usr/lib/python3/dist-packages/selenium=python3-selenium
}

# The languages that bindings/ serves, and what its generator reads the headers with.
need_languages() {
    need mcs=mono-mcs mono=mono-runtime fpc=fp-compiler /usr/lib/python3/dist-packages/pycparser=python3-pycparser \
        /usr/lib/python3/dist-packages/pytest=python3-pytest \
        /usr/lib/python3/dist-packages/pip=python3-pip
}
