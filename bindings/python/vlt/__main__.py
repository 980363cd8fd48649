# SPDX-License-Identifier: MIT
"""python -m vlt ls PACKAGE: lists the stored files with sizes and times."""
import argparse
import sys

import vlt


def main() -> int:
    parser = argparse.ArgumentParser(prog="python -m vlt", description="Looks into packages.")
    verbs = parser.add_subparsers(dest="verb", required=True)
    listing = verbs.add_parser("ls", help="list the stored files")
    listing.add_argument("package")
    listing.add_argument("--word", default="", help="the credential that the package asks for")
    arguments = parser.parse_args()
    sys.stdout.reconfigure(errors="backslashreplace")
    try:
        with vlt.Package(arguments.package, "r", read_word=arguments.word, write_word=arguments.word) as package:
            for entry in package.entries():
                print(f"{entry.size:>12}  {str(entry.written or '-'):<19}  {entry.name}")
    except OSError as error:
        print(f"vlt: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
