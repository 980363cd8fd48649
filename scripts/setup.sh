# SPDX-License-Identifier: MIT
# Sourced by the other scripts: finds the root of the tree and installs the Debian packages that are missing.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

say() { printf '\n== %s\n' "$*"; }

warn() { printf '\n!! %s\n' "$*" >&2; }

# Prints the packages whose probe is not there. Arguments are pairs probe=package; a probe is a command or a path.
missing_packages() {
    local pair probe
    for pair in "$@"; do
        probe="${pair%%=*}"
        [ -e "$probe" ] || command -v "$probe" >/dev/null || printf '%s ' "${pair#*=}"
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

need_build_tools() { need cmake=cmake ninja=ninja-build g++=g++ pkg-config=pkg-config; }

need_test_tools() { need_build_tools && need /usr/src/googletest/CMakeLists.txt=googletest; }

# Clang with the libraries that its sanitizers, its fuzzer and its profiles are linked with.
need_clang() {
    need clang++-14=clang-14 llvm-profdata-14=llvm-14 \
        "/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux/libclang_rt.fuzzer-$(uname -m).a=libclang-rt-14-dev"
}
