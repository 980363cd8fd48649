#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# release.sh [once]: makes everything that is given out into build/dist: zips for 32-bit and 64-bit Windows, Debian
# packages, tarballs, Python wheels, and their sums. It takes what is committed, builds it in two folders of different
# names and compares: the same commit gives the same bytes. Then it installs the Debian packages in a minimal Debian,
# for which it must be root. With `once` it builds once and stops there.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
cd "$root"

need_test_tools && need_languages
need i686-w64-mingw32-g++-posix=g++-mingw-w64-i686-posix x86_64-w64-mingw32-g++-posix=g++-mingw-w64-x86-64-posix \
    llvm-dlltool=llvm clang=clang lld-link=lld pandoc=pandoc zip=zip lintian=lintian dpkg-shlibdeps=dpkg-dev \
    fakeroot=fakeroot

version="$(sed -n 's/^project(vlt VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)"
commit="$(git rev-parse HEAD)"
SOURCE_DATE_EPOCH="$(git log -1 --format=%ct "$commit")"
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C.UTF-8

# What a preset installs, stripped, below "$1/prefix". Further arguments are for CMake.
install_preset() {
    local folder="$1" preset="$2"
    shift 2
    cmake --preset "$preset" -S "$source" -B "$folder" -DVLT_BUILD_GATES=OFF -DVLT_BUILD_EXAMPLES=OFF "$@" >/dev/null
    cmake --build "$folder" >"$folder.log" 2>&1 || { tail -30 "$folder.log" >&2; return 1; }
    cmake --install "$folder" --strip --prefix "$folder/prefix" >/dev/null
}

# The pages as HTML, their links among themselves kept.
make_pages() {
    local page name
    mkdir -p "$1/docs"
    cp "$source"/docs/*.png "$1/docs/"
    for page in README CHANGELOG CONTRIBUTING docs/*; do
        name="${page%.md}"
        [ -e "$source/$name.md" ] || continue
        sed -E 's/\]\(([a-zA-Z0-9_/.-]+)\.md(#[a-z-]*)?\)/](\1.html\2)/g' "$source/$name.md" |
            pandoc -s --metadata title="vlt: ${name##*/}" -f gfm -t html5 -o "$1/$name.html"
    done
}

# Everything that goes with the built files: bindings, pages, licence.
add_common() {
    mkdir -p "$1/bindings"
    cp -r "$source"/bindings/{c,csharp,pascal,python} "$1/bindings/"
    find "$1/bindings" -name __pycache__ -prune -exec rm -r {} +
    rm "$1"/bindings/python/{pyproject.toml,build_backend.py} # the wheels are at hand
    cp "$source/LICENSE" "$1/LICENSE.txt"
    rm -rf "$1/share/doc"
    make_pages "$1"
    (cd "$1" && find . -type f ! -name SHA256SUMS | sort | xargs sha256sum >SHA256SUMS)
    find "$1" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
}

make_zip() {
    local name="vlt-$version-$1" folder="$work/$2"
    install_preset "$folder" "$2"
    mv "$folder/prefix" "$folder/$name"
    add_common "$folder/$name"
    (cd "$folder" && find "$name" -type f | sort | zip -q -X -@ "$out/$name.zip")
}

make_tarball() {
    local name="vlt-$version-linux-x86_64" folder="$work/linux"
    install_preset "$folder" release
    mv "$folder/prefix" "$folder/$name"
    add_common "$folder/$name"
    tar -C "$folder" --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner -cf - "$name" |
        gzip -9n >"$out/$name.tar.gz"
}

# The build of the tarball once more, with Debian's folders.
make_debian_packages() {
    local folder="$work/linux"
    cmake "$folder" -DCMAKE_INSTALL_PREFIX=/usr -DVLT_DEBIAN_PACKAGES=ON -DCMAKE_SKIP_INSTALL_RPATH=ON \
        "-DCMAKE_INSTALL_LIBDIR=lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)" >/dev/null
    (cd "$folder" && cmake --build . && cpack) >"$folder.log" 2>&1 || { cat "$folder.log" >&2; return 1; }
    cp "$folder"/*.deb "$out/"
}

make_wheels() {
    local backend="$source/bindings/python/build_backend.py"
    /usr/bin/python3 -B "$backend" "$out" linux_x86_64 "$work/linux/vlt-$version-linux-x86_64/lib/libvlt.so.1"
    /usr/bin/python3 -B "$backend" "$out" win32 "$work/windows-release/vlt-$version-win32/bin/vlt.dll"
    /usr/bin/python3 -B "$backend" "$out" win_amd64 "$work/windows64-release/vlt-$version-win64/bin/vlt.dll"
}

# Makes everything in the folder "$1", whose name must not show in the results.
make_all() {
    work="$1" source="$1/source" out="$1/dist"
    rm -rf "$work"
    mkdir -p "$source" "$out"
    git archive "$commit" | tar -x -C "$source"
    export CFLAGS="-ffile-prefix-map=$work=." CXXFLAGS="-ffile-prefix-map=$work=."
    git archive --prefix="vlt-$version/" "$commit" | gzip -9n >"$out/vlt-$version.tar.gz"
    say "Linux" && make_tarball
    say "Debian packages" && make_debian_packages
    say "32-bit Windows" && make_zip win32 windows-release
    say "64-bit Windows" && make_zip win64 windows64-release
    say "Wheels" && make_wheels
    (cd "$out" && sha256sum -- * >SHA256SUMS)
}

# Lintian's complaints, but for those that are listed with a reason.
check_debian_packages() {
    local tags
    tags="$(grep -v '^#' "$root/scripts/lintian-exceptions" | cut -d' ' -f1 | paste -sd,)"
    say "lintian"
    lintian --allow-root --fail-on error,warning --suppress-tags "$tags" "$out"/*.deb
}

make_all "$root/build/release-one"
check_debian_packages
rm -rf build/dist
cp -r "$out" build/dist
say "In build/dist:" && ls -l build/dist
[ "${1:-}" != once ] || exit 0

make_all "$root/build/the-other-release"
diff build/dist/SHA256SUMS "$out/SHA256SUMS" || { warn "two folders gave different bytes"; exit 1; }
say "Two folders gave the same bytes"
VLT_FRESH_WITH=build/dist scripts/fresh.sh "scripts/test-packages.sh build/dist"
say "The release stands in build/dist"
