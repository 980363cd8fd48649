#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Brings databases out of and into vlt in every form: round_trips.py VLT SCRATCH [-- WINE]

What comes back must be the same database byte for byte; SQLite's own module for Python reads the file of SQLite.
"""
import pathlib, re, shutil, sqlite3, subprocess, sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
TABLES = {"bitm": "NID CCODE CNAME CSRC", "bbom": "NID NPID NCID FCOUNT REF", "bdwg": "NID CCODE",
          "bitdwg": "NID NPID NCID", "bcapp": "NID CCODE", "bitcap": "NID NPID NCID"}
ESCAPES = {"\\": "\\\\", ",": "\\c", "\t": "\\t", "\r": "\\r", "\n": "\\n", "/": "\\/"}
# Every character that one of the forms treats specially, at every place of a value.
HOSTILE = ['"', '""', '"a"', "a,b", ",", "a\r\nb", "\n", "\t", "a\tb", "//", "a // b", "\\", "\\n", "'", "''; DROP",
           ";", "{}", "[1]", "null", "007", "1e5", "=1+1", "\x01\x1f\x7f", "é", "日本", "\U0001F6B2", "<b>&amp;", "a" * 3000]


def run(*words, status=0, data=b""):
    done = subprocess.run([*RUNNER, VLT, *map(str, words)], input=data, capture_output=True, cwd=SCRATCH, timeout=300)
    assert done.returncode == status, (words, done.returncode, done.stderr)
    return done.stdout


def write_hostile(folder, separator, name, values, encoding="utf-8", note=""):
    """As another program may have written it: records without NID, missing values, a comment, an unknown root."""
    folder.mkdir()
    schema = "".join(f"1, table, {t}\r\n" + "".join(f"1.1, field, {f}\r\n" for f in fields.split())
                     for t, fields in TABLES.items() if t not in ("bdwg", "bitdwg"))
    schema += "1.1, field, BITCAP.Überschrift \"x\"\r\n" if encoding == "utf-8" else ""
    schema += f"1, ini\r\n1.1, separator, {name}\r\n1.1, root, c1\r\n"
    (folder / "kdbmain.txt").write_bytes(schema.encode(encoding))
    lines = [note]
    for number, value in enumerate(values):
        escaped = "".join(ESCAPES.get(c, c) for c in value)
        nid = "" if number % 3 == 0 else str(number + 100)
        lines.append(separator.join([nid, f"C{number}", escaped, ""][: 3 + number % 2]))
    (folder / "bitm.txt").write_bytes("\r\n".join(lines).encode(encoding))
    (folder / "bbom.txt").write_bytes(separator.join(["1", "101", "999", "0.5"]).encode())


def files(folder):
    return {p.name: p.read_bytes() for p in folder.iterdir() if p.suffix == ".txt"}


def check_sqlite(path, saved, separator):
    db = sqlite3.connect(path)
    lines = saved["bitm.txt"].decode("utf-8").split("\r\n")[:-1]
    back = {v: k for k, v in ESCAPES.items()}
    for line, row in zip(lines, db.execute("SELECT * FROM bitm ORDER BY RECORD"), strict=True):
        for stored, value in zip(line.split(separator), row[1:]):
            plain = re.sub(r"\\.", lambda m: back[m[0]], stored)
            assert plain == (value or ""), (stored, value)
    assert db.execute("SELECT count(*) FROM bom").fetchone()[0] == saved["bbom.txt"].count(b"\r\n")
    assert db.execute("PRAGMA integrity_check").fetchone()[0] == "ok"


def round_trips(source, separator, *encoding):
    """`saved` is the database as the library saves it; each form must bring back just that."""
    name = source.name
    shutil.copytree(source, SCRATCH / "base")
    run("db", "export", "base", "--jsonl", "-o", "base.jsonl", *encoding)
    run("db", "edit", "base", "--add-field", "CNEW", *encoding)  # saves it
    run("db", "export", "base", "--csv", "csv", *encoding)
    run("db", "export", "base", "--json", "-o", "out.json", *encoding)
    lines = run("db", "export", "base", "--jsonl", *encoding)
    saved = files(SCRATCH / "base")
    run("db", "import", "csv", "of-csv", *encoding)
    run("db", "import", "out.json", "of-json", *encoding)
    run("db", "import", "-", "of-jsonl", *encoding, data=lines)
    made = ["of-csv", "of-json", "of-jsonl"]
    if not RUNNER:
        run("db", "export", "base", "--sqlite", "out.db", *encoding)
        run("db", "import", "out.db", "of-sqlite", *encoding)
        made.append("of-sqlite")
        if not encoding and name != "no-utf-8":
            check_sqlite(SCRATCH / "out.db", saved, separator)
            sqlite3.connect(":memory:").executescript(run("db", "export", "base", "--sql", "-").decode())
    for each in made:
        back = files(SCRATCH / each)
        assert back == saved, (name, each, [f for f in saved if back.get(f) != saved[f]])
    run("db", "pack", "base", "base.vlt", *encoding)
    run("db", "unpack", "base.vlt", "unpacked", *encoding)
    assert files(SCRATCH / "unpacked") == saved, name


def main():
    cases = {"bicycle": (ROOT / "examples" / "bicycle", ",", [])}
    for name, separator in {"COMMA": ",", "TAB": "\t", "|": "|", "SEMICOLON": ";"}.items():
        values = [v for v in HOSTILE if separator in ",\t" or separator not in v]
        folder = SOURCES / f"hostile-{len(cases)}"
        write_hostile(folder, separator, name, values, note="// a comment")
        cases[folder.name] = (folder, separator, [])
    for page, values in {"CP932": ["ソ", "表\\", "十,", "ｱ"], "CP1252": ["é", "“a”"]}.items():
        folder = SOURCES / f"page-{page}"
        write_hostile(folder, ",", "COMMA", values, page.lower())
        cases[folder.name] = (folder, ",", ["--encoding", page])
    folder = SOURCES / "no-utf-8"
    write_hostile(folder, ",", "COMMA", ["é\xff\x80", "plain"], "latin-1")
    cases[folder.name] = (folder, ",", [])
    for name, (folder, separator, encoding) in cases.items():
        shutil.rmtree(SCRATCH, ignore_errors=True)
        SCRATCH.mkdir(parents=True)
        round_trips(folder, separator, *encoding)
        print(name, "comes back as it was")


if __name__ == "__main__":
    VLT = str(pathlib.Path(sys.argv[1]).resolve())
    SCRATCH, SOURCES = pathlib.Path(sys.argv[2]).resolve() / "trip", pathlib.Path(sys.argv[2]).resolve() / "sources"
    RUNNER = sys.argv[4:]
    shutil.rmtree(SOURCES, ignore_errors=True)
    SOURCES.mkdir(parents=True)
    main()
