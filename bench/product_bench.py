#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Times vlt's verbs on a product of a million items and four million lines, as multiples of the load alone, beside a
recursive query of SQLite and a plain Python program on the same data: product_bench.py VLT FOLDER [quick]
FOLDER is made, and keeps the product."""
import decimal, pathlib, random, resource, sqlite3, subprocess, sys, time

LEVELS = 8


def write_product(folder, items, lines):
    """Eight levels; a line leads from an item to any of the next level."""
    rng = random.Random(1)
    band = items // LEVELS
    folder.mkdir()
    schema = "1, table, bitm\r\n1.1, field, NID\r\n1.1, field, CCODE\r\n1.1, field, CNAME\r\n1.1, field, CSRC\r\n" \
             "1, table, bbom\r\n1.1, field, NID\r\n1.1, field, NPID\r\n1.1, field, NCID\r\n1.1, field, FCOUNT\r\n" \
             "1, ini\r\n1.1, separator, TAB\r\n"
    (folder / "kdbmain.txt").write_bytes(schema.encode())
    with open(folder / "bitm.txt", "w", newline="\r\n") as file:
        file.writelines(f"{i}\tPart-{i * 2654435761 & 0xFFFFFFFF:08X}\tName of item {i}\tM\n"
                        for i in range(1, items + 1))
    with open(folder / "bbom.txt", "w", newline="\r\n") as file:
        for line in range(lines):
            parent = line * (items - band) // lines
            child = (parent // band + 1) * band + rng.randrange(band)
            file.write(f"{line + 1}\t{parent + 1}\t{child + 1}\t{rng.choice(('1', '2', '4', '0.25', '8'))}\n")


def processor_time(arguments):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run([sys.argv[1], *map(str, arguments)], stdout=subprocess.DEVNULL)
    assert done.returncode in (0, 1), arguments
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def times_beside_load(folder, *arguments, rounds=3):
    """The best of a verb and the best of the load, run in turn: what else the machine does meets both."""
    load = "db", "table", folder, "BITM", "--limit", 0
    pairs = [(processor_time(load), processor_time(arguments)) for _ in range(rounds)]
    return min(pair[0] for pair in pairs), min(pair[1] for pair in pairs)


def rows(path):
    with open(path, newline="") as file:
        for line in file: yield line.rstrip("\r\n").split("\t")


def sqlite_parts(folder):
    """Loads the tables, then which parts there are below the tops, without quantities."""
    db = sqlite3.connect(":memory:")
    db.execute("CREATE TABLE bitm(NID INTEGER PRIMARY KEY, CCODE, CNAME, CSRC)")
    db.execute("CREATE TABLE bbom(NID INTEGER PRIMARY KEY, NPID INTEGER, NCID INTEGER, FCOUNT)")
    for table in ("bitm", "bbom"):
        db.executemany(f"INSERT INTO {table} VALUES(?,?,?,?)", rows(folder / f"{table}.txt"))
    db.execute("CREATE INDEX parents ON bbom(NPID)")
    db.execute("CREATE INDEX children ON bbom(NCID)")
    start = time.process_time()
    db.execute("WITH RECURSIVE parts(nid) AS (SELECT NID FROM bitm WHERE NOT EXISTS (SELECT 1 FROM bbom b WHERE "
               "b.NCID = bitm.NID) UNION SELECT NCID FROM parts JOIN bbom ON NPID = parts.nid) "
               "SELECT count(*) FROM parts").fetchone()
    return time.process_time() - start


def python_flat(folder):
    """Parts with their quantities, as one writes it down."""
    start = time.process_time()
    children, uses, total = {}, {}, {}
    for nid, *_ in rows(folder / "bitm.txt"): uses[nid] = 0
    for _, parent, child, quantity in rows(folder / "bbom.txt"):
        children.setdefault(parent, []).append((child, decimal.Decimal(quantity)))
        uses[child] += 1
    ready = [nid for nid in uses if uses[nid] == 0]
    total = dict.fromkeys(uses, decimal.Decimal(0)) | dict.fromkeys(ready, decimal.Decimal(1))
    while ready:
        nid = ready.pop()
        for child, quantity in children.get(nid, ()):
            total[child] += total[nid] * quantity
            uses[child] -= 1
            if uses[child] == 0: ready.append(child)
    return time.process_time() - start


def main():
    items = 100_000 if "quick" in sys.argv else 1_000_000
    folder = pathlib.Path(sys.argv[2])
    write_product(folder, items, 4 * items)
    code = f"Part-{items * 2654435761 & 0xFFFFFFFF:08X}"
    print(f"{items} items, {4 * items} lines\n{'work':44} {'x load':>7} {'goal':>5}")
    for verb, arguments, loads in [("bom flat", (folder,), 1), ("bom where-used --all", (folder, code, "--all"), 1),
                                   ("db check", (folder,), 1), ("bom diff", (folder, folder), 2),
                                   ("bom flat --json", (folder, "--json"), 1)]:
        words = verb.split()
        load, taken = times_beside_load(folder, words[0], words[1], *arguments)
        print(f"{verb:44} {taken / load / loads:7.2f} {'1.50' if 'json' not in verb else '':>5}"
              + ("  of two loads" if loads > 1 else ""))
    print(f"{'SQLite: recursive query for the parts alone':44} {sqlite_parts(folder) / load:7.2f}")
    print(f"{'Python: read, and quantities':44} {python_flat(folder) / load:7.2f}")
    print(f"a load takes {load:.2f} s")


main()
