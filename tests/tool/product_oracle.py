#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares vlt bom with recursive queries of SQLite over the same products: product_oracle.py VLT SCRATCH [SEED]"""
import decimal, json, pathlib, random, shutil, sqlite3, subprocess, sys

decimal.getcontext().prec = 60
FIELDS = {"bitm": "NID CCODE CNAME WEIGHT", "bbom": "NID NPID NCID FCOUNT"}


class Product:
    """Items (code, weight) and lines (parent, child, quantity), numbered from 1, as a folder and in SQLite."""

    def __init__(self, folder, items, lines):
        self.folder, self.db = folder, sqlite3.connect(":memory:")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        rows = {"bitm": [(i, c, f"name of {c}", w) for i, (c, w) in enumerate(items, 1)],
                "bbom": [(i, *line) for i, line in enumerate(lines, 1)]}
        schema = "".join(f"1, table, {t}\r\n" + "".join(f"1.1, field, {f}\r\n" for f in fields.split())
                         for t, fields in FIELDS.items())
        (folder / "kdbmain.txt").write_bytes(f"{schema}1, ini\r\n1.1, separator, SEMICOLON\r\n".encode())
        for table, fields in FIELDS.items():
            text = "".join(";".join(map(str, row)) + "\r\n" for row in rows[table])
            (folder / f"{table}.txt").write_bytes(text.encode())
            self.db.execute(f"CREATE TABLE {table}({fields.replace(' ', ',')})")
            self.db.executemany(f"INSERT INTO {table} VALUES(?,?,?,?)", rows[table])
        self.db.create_function("mul", 2, lambda a, b: str(decimal.Decimal(a) * decimal.Decimal(b)))
        self.db.create_aggregate("total", 1, Total)

    def vlt(self, verb, *arguments, status=0):
        done = subprocess.run([VLT, "bom", verb, str(self.folder), *arguments], capture_output=True, text=True)
        assert done.returncode == status, (verb, arguments, done.returncode, done.stderr[:2000])
        return done.stdout

    def objects(self, verb, *arguments):
        return [json.loads(line) for line in self.vlt(verb, *arguments, "--json").splitlines()]

    def query(self, sql):
        return self.db.execute(
            "WITH RECURSIVE top(nid) AS (SELECT NID FROM bitm WHERE NID NOT IN (SELECT NCID FROM bbom)), "
            "tree(nid, level, quantity, path) AS (SELECT nid, 0, '1', '/' || nid FROM top UNION ALL "
            "SELECT NCID, level + 1, mul(quantity, FCOUNT), path || '/' || NCID "
            "FROM tree JOIN bbom ON NPID = tree.nid) "
            + sql).fetchall()


class Total:
    def __init__(self): self.sum = decimal.Decimal(0)
    def step(self, value): self.sum += decimal.Decimal(value)
    def finalize(self): return plain(self.sum)


def plain(number):
    text = f"{decimal.Decimal(number):f}"
    return (text.rstrip("0").rstrip(".") if "." in text else text) or "0"


def random_product(folder, rng):
    """Few levels, for the queries walk every path; shared parts, lines that occur twice, several tops."""
    items = [(f"P{i}", rng.choice(["1", "0.25", "-3.5", "12.004"])) for i in range(1, 41)]
    lines = []
    for _ in range(90):
        parent = rng.randrange(1, 33)
        first = (parent - 1) // 8 * 8 + 9
        lines.append((parent, rng.randrange(first, min(first + 12, 41)),
                      rng.choice(["1", "2", "0.5", "0.125", "1.10"])))
    return Product(folder, items, lines)


def compare(product):
    flat = {o["code"]: (o["quantity"], o["level"], o["uses"]) for o in product.objects("flat")}
    wanted = product.query("SELECT CCODE, total(quantity), min(level), "
                           "(SELECT count(*) FROM bbom WHERE NCID = tree.nid) "
                           "FROM tree JOIN bitm ON bitm.NID = tree.nid WHERE level > 0 GROUP BY tree.nid")
    assert flat == {r[0]: tuple(r[1:]) for r in wanted}, (product.folder, flat, wanted)
    for code in ("P33", "P40"):
        uses = sorted((plain(o["quantity"]), "/" + "/".join(p[1:] for p in o["path"]))
                      for o in product.objects("where-used", code, "--all"))
        paths = product.query(f"SELECT quantity, path FROM tree WHERE nid = {code[1:]} AND level > 0")
        assert uses == sorted((plain(q), p) for q, p in paths), (product.folder, code, uses, paths)
    sums = {o["code"]: o["value"] for o in product.objects("sum", "--field", "WEIGHT")}
    wanted = product.query("SELECT c.CCODE, total(mul(quantity, b.WEIGHT)) FROM tree JOIN bitm b ON b.NID = tree.nid "
                           "JOIN bitm c ON c.NID = substr(path, 2, instr(substr(path, 2) || '/', '/') - 1) "
                           "WHERE tree.nid NOT IN (SELECT NPID FROM bbom) GROUP BY c.NID")
    assert {code: sums[code] for code, _ in wanted} == dict(wanted), (product.folder, sums, wanted)
    rows = [(o["level"], o["total"]) for o in product.objects("tree", "--all")]
    assert sorted(rows) == sorted((l, plain(q)) for l, q in product.query("SELECT level, quantity FROM tree"))


def compare_cycles(folder, rng):
    """Every line that lies on a cycle stands in a path, every path is one of lines, and none stands twice."""
    names = [f"C{i}" for i in range(rng.randrange(2, 14))]
    pairs = [(rng.choice(names), rng.choice(names)) for _ in range(rng.randrange(1, 30))]
    product = Product(folder, [(name, "") for name in names],
                      [(names.index(a) + 1, names.index(b) + 1, "1") for a, b in pairs])
    reach = dict(product.db.execute("WITH RECURSIVE r(a, b) AS (SELECT NPID, NCID FROM bbom UNION "
                                    "SELECT a, NCID FROM r "
                                    "JOIN bbom ON NPID = b) SELECT a || '-' || b, 1 FROM r"))
    wanted = {(a, b) for a, b in pairs if f"{names.index(b) + 1}-{names.index(a) + 1}" in reach or a == b}
    done = subprocess.run([VLT, "db", "check", folder, "--json"], capture_output=True, text=True)
    paths = [o["text"].split(": ")[1].split(" > ") for o in map(json.loads, done.stdout.splitlines())
             if o["kind"] == "cycle"]
    named = {pair for path in paths for pair in zip(path, path[1:])}
    assert named == wanted and len({tuple(p) for p in paths}) == len(paths), (folder, pairs, paths)
    assert all(path[0] == path[-1] and len(set(path)) == len(path) - 1 for path in paths), paths


def check_extremes(scratch):
    depth, width = 10000, 100000
    deep = Product(scratch / "deep", [(f"D{i}", "1") for i in range(depth + 1)],
                   [(i, i + 1, "1") for i in range(1, depth + 1)])
    assert len(deep.vlt("tree").splitlines()) == depth + 2
    assert deep.objects("flat")[-1] == {"code": f"D{depth}", "name": f"name of D{depth}", "quantity": "1",
                                        "level": depth, "uses": 1}
    assert len(deep.objects("where-used", f"D{depth}", "--all")[0]["path"]) == depth + 1
    assert deep.objects("sum", "--field", "WEIGHT")[0]["value"] == "1"
    wide = Product(scratch / "wide", [("TOP", "")] + [(f"W{i}", "0.001") for i in range(width)],
                   [(1, i + 2, "2") for i in range(width)])
    assert wide.objects("sum", "--field", "WEIGHT")[0]["value"] == plain(width * decimal.Decimal("0.002"))
    assert len(wide.vlt("diff", str(deep.folder), status=1).splitlines()) == 2 * width + 2 * depth + 2


VLT, scratch = sys.argv[1], pathlib.Path(sys.argv[2])
seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
for n in range(seed, seed + 20):
    compare(random_product(scratch / f"random-{n}", random.Random(n)))
    compare_cycles(scratch / f"cycles-{n}", random.Random(n))
check_extremes(scratch)
