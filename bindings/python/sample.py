# SPDX-License-Identifier: MIT
"""sample.py FOLDER PACKAGE: packs the database of a folder, lists the package, prints the bill of material."""
import shutil
import sys
from pathlib import Path

import vlt

FILES = ["kdbmain.txt", "bitm.txt", "bbom.txt", "bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"]
folder, path = map(Path, sys.argv[1:])

with vlt.Package(path, "w", size_mb=1) as package:
    for name in FILES:
        with open(folder / name, "rb") as source, package.open(name, "wb") as target:
            shutil.copyfileobj(source, target)
    for entry in package.entries():
        print(entry.name, entry.size)

with vlt.Database(path) as db:
    for line in db.bom():
        print(f"{'  ' * line.level}{line.quantity} x {line.item['CCODE']} {line.item['CNAME']}")
