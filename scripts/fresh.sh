#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# fresh.sh [command ...]: makes a minimal Debian in a scratch folder, copies this tree into it, and runs there what the
# README begins with and scripts/test-windows.sh, or the commands given; ends non-zero when one of them fails. To be
# run before a release: a machine that has been worked on hides what a bare one lacks. Needs root, the network, 5 GB in
# $TMPDIR (or /var/tmp) and some 12 minutes. The scratch folder is removed in the end. VLT_FRESH_WITH names a folder of
# build/ that is copied too.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"
commands=("$@")
[ $# -gt 0 ] || commands=(scripts/demo.sh scripts/test.sh scripts/test-windows.sh)

[ "$(id -u)" = 0 ] || { warn "only root can make a Debian of its own"; exit 1; }
need debootstrap=debootstrap git=git
debian="$(mktemp -d "${TMPDIR:-/var/tmp}/vlt-fresh.XXXXXX")"
trap 'rm -rf --one-file-system "$debian"' EXIT
chmod 755 "$debian" # the root of its file system, for others than root too

# Runs a command in /tree of the new Debian. What it mounts and starts there ends with it.
in_debian() {
    unshare --mount --pid --fork --kill-child bash -c '
        mount -t proc proc "$1/proc" && mount -t tmpfs -o mode=1777 shared "$1/dev/shm"
        exec chroot "$1" env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin bash -c "cd /tree && $2"' \
        inside "$debian" "$1" </dev/null
}

say "Making a minimal Debian"
debootstrap --variant=minbase bookworm "$debian" >"$debian.log" || { cat "$debian.log"; exit 1; }
rm "$debian.log"
cp /etc/resolv.conf "$debian/etc/resolv.conf"
echo "127.0.0.1 localhost" >"$debian/etc/hosts" # which the installer writes on a machine
mkdir "$debian/tree"
git ls-files -z --cached --others --exclude-standard | tar --create --null --files-from - |
    tar --extract --directory "$debian/tree"

[ -z "${VLT_FRESH_WITH:-}" ] || (cd "$debian/tree" && mkdir -p build && cp -r "$root/$VLT_FRESH_WITH" build/)

failed=()
for command in "${commands[@]}"; do
    say "In the minimal Debian: $command"
    started=$SECONDS
    in_debian "$command" || failed+=("$command")
    say "$command took $((SECONDS - started)) s"
done
[ ${#failed[@]} -eq 0 ] || { warn "failed in a minimal Debian: ${failed[*]}"; exit 1; }
say "All of it works in a minimal Debian"
