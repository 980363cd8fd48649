#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""across_targets.py BUILD BUILD ...: the sample of each build writes a package, the next build's `exchange` edits it.
What they print and the packages' bytes are the same in the end, and Python here reads what Windows wrote."""
import subprocess
import sys
import tempfile
from pathlib import Path

import vlt

ROOT = Path(__file__).resolve().parents[2]


def run(build, program, *arguments):
    """What a program of a build prints; a Windows program runs under Wine."""
    path = build / "tests/bindings" / program
    command = [path] if path.exists() else [ROOT / "scripts/wine.sh", build / f"{program}.exe"]
    done = subprocess.run([*command, *arguments], check=True, capture_output=True, stdin=subprocess.DEVNULL)
    return done.stdout.replace(b"\r\n", b"\n")


def main():
    builds = [Path(name).resolve() for name in sys.argv[1:]]
    results = {}
    with tempfile.TemporaryDirectory() as folder:
        for number, build in enumerate(builds):
            editor, package = builds[(number + 1) % len(builds)], Path(folder, f"{number}.vlt")
            printed = run(build, "sample", ROOT / "examples/bicycle", package) + run(editor, "exchange", package)
            with vlt.Database(package) as db:
                printed += f"{db.items.search('CCODE', 'eq-830')[0]['CNAME']}\n".encode()
            with vlt.Package(package) as files:
                for name in files:
                    files.set_times(name, None, None, None)
            results[f"{build.name}, edited by {editor.name}"] = printed, package.read_bytes()
    first = next(iter(results))
    for name, (printed, content) in results.items():
        if printed != results[first][0]:
            sys.exit(f"{name} prints otherwise than {first}:\n{printed.decode()}")
        if content != results[first][1]:
            places = [at for at, pair in enumerate(zip(content, results[first][1])) if pair[0] != pair[1]]
            sys.exit(f"{name} makes other bytes than {first}, from {places[:8]} on")
    print("The same bytes and the same lines:", "; ".join(results))


if __name__ == "__main__":
    main()
