# SPDX-License-Identifier: MIT
"""The Python layer, from creating a package to saving a database."""
import io
import shutil
import subprocess
import sys
import zipfile
from datetime import datetime
from pathlib import Path

import pytest

import vlt

BICYCLE = Path(__file__).resolve().parents[2] / "examples/bicycle"
LONG = bytes(range(256)) * 100


@pytest.mark.parametrize("wide", [False, True])
def test_a_package_is_made_filled_read_listed_and_emptied(tmp_path, wide):
    path, moment = tmp_path / "p.vlt", datetime(2005, 3, 21, 14, 7, 9)
    with vlt.Package(path, "x", write_word="secret", wide_names=wide) as package:
        package["Größe €.txt"] = LONG
        with package.open("Größe €.txt".encode(), "ab") as file:
            file.write(b"tail")
        with io.TextIOWrapper(package.open("lines", "wb")) as lines:
            lines.write("one\ntwo\n")
        with zipfile.ZipFile(package.open("a.zip", "w+b"), "w") as archive:
            archive.writestr("inner", LONG)
        package.set_times("lines", None, moment, moment)
    with vlt.Package(path, "r+", write_word="secret") as package:
        with package.open("Größe €.txt") as file:
            assert file.seek(-6, io.SEEK_END) == len(LONG) - 2 and file.read() == LONG[-2:] + b"tail"
            shutil.copyfileobj(file, io.BytesIO())
        assert zipfile.ZipFile(package.open("a.zip")).read("inner") == LONG
        entry = package.entries()[1]
        assert (entry.name, entry.size, entry.created, entry.written) == ("lines", 8, None, moment)
        del package["LINES"]
        assert list(package) == ["Größe €.txt", "a.zip"] and "lines" not in package
    for mode, word, error in (("r+", "wrong", vlt.AccessError), ("x", "", FileExistsError)):
        with pytest.raises(error):
            vlt.Package(path, mode, read_word=word, write_word=word)
    listed = subprocess.run([sys.executable, "-m", "vlt", "ls", path, "--word", "secret"], capture_output=True)
    assert listed.stdout.decode().split("\n")[0].endswith(".txt") and b"  20" in listed.stdout


def test_a_database_is_loaded_changed_saved_and_loaded_again(tmp_path):
    for file in BICYCLE.glob("*.txt"):
        shutil.copy(file, tmp_path)
    with vlt.Database(tmp_path) as db:
        basket = db.items.add(CCODE="EQ-830", CNAME="Basket")
        db.lines.add(NPID=db.item("bk-700").nid, NCID=basket.nid, FCOUNT=2)
        with pytest.raises(KeyError):
            db.items.add(NOFIELD=1)
        db.save()
    with vlt.Database(tmp_path) as db:
        assert [line.quantity for line in db.bom("BK-700") if line.item["ccode"] == "EQ-830"] == ["2"]
        assert db.parents("EQ-830") == [db.item("BK-700")] and db.item("EQ-830") in db.children("BK-700")
        assert db.items.to_dicts()[-1]["CNAME"] == "Basket" == db.items.search("CCODE", "eq-830")[0]["CNAME"]
        del db.items[-1]
        with pytest.raises(vlt.NotFoundError):
            db.item("EQ-830")
    with pytest.raises(vlt.DatabaseError, match="kdbmain"):
        vlt.Database(tmp_path / "nothing")
