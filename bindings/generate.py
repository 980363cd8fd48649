#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Writes the low-level declarations of every language from the public headers. With --check, writes nothing and fails
when a file in the tree differs from what the headers say."""
import sys
from pathlib import Path

from generator import csharp_source, headers, layouts, pascal_source, python_source

ROOT = Path(__file__).resolve().parent
HEADERS = [ROOT.parent / "include" / name for name in ("vlt.h", "offline.h")]


def generated():
    """Every generated file with its text."""
    declared = headers.read_headers(HEADERS)
    return {
        "python/vlt/generated/native.py": python_source.source(declared),
        "csharp/generated/VltNative.cs": csharp_source.source(declared),
        "csharp/generated/Layouts.cs": csharp_source.layout_program(declared),
        "pascal/generated/vltapi.pas": pascal_source.source(declared),
        "pascal/generated/layouts.pas": pascal_source.layout_program(declared),
        "c/generated/layouts.c": layouts.c_program(declared),
        "generated/layouts_32.txt": layouts.layout(declared, 4),
        "generated/layouts_64.txt": layouts.layout(declared, 8),
    }


def main():
    different = []
    for name, text in generated().items():
        path = ROOT / name
        if path.exists() and path.read_text(encoding="utf-8") == text:
            continue
        different.append(name)
        if "--check" not in sys.argv[1:]:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
    if "--check" in sys.argv[1:] and different:
        sys.exit("not what bindings/generate.py makes of the headers (run it): " + ", ".join(different))


if __name__ == "__main__":
    main()
