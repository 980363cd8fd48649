#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Damages a sealed package again and again: damage_trial.py VLT SCRATCH RUNS [-- WINE]

Each run changes 20 random bytes of a package of 600 files; in every other run, half of them lie in the header and the
directory. `vlt check` must name exactly the files whose bytes changed, and `vlt salvage` must bring back every other
file as it was, under its name. Prints figures, and what went wrong. A run does the same damage each time.
"""
import json, pathlib, random, re, shutil, struct, subprocess, sys

FILES, BYTES, BLOCK, ENTRY = 600, 20, 4096, 550


class Package:
    """A package written by docs/package-format.md alone, every fifth file in pieces: `host` its bytes, `owner` the file
    that each byte belongs to, `own` the offsets of its map and of what its entries say."""

    def __init__(self, files, chance):
        needed = {name: -(-len(data) // BLOCK) for name, data in files.items()}
        directory = -(-(len(files) + 1) * ENTRY // BLOCK)
        count = 1 + directory + sum(needed.values())
        header = next(h for h in range(1, 99) if 101 + 4 * (count + h) <= h * BLOCK)
        self.words = [0] * (count + header)
        self.host = bytearray(len(self.words) * BLOCK)
        self.owner, self.own = [None] * len(self.host), []
        free = list(range(2, len(self.words)))
        head = self.chain([0, *(free.pop(0) for _ in range(header - 1))])
        listing = self.chain([1, *(free.pop(0) for _ in range(directory - 1))])
        entries, places = b"", self.offsets(listing, ENTRY * len(files))
        for index, (name, data) in enumerate(files.items()):
            blocks = [free.pop(0) for _ in range(needed[name])]
            if index % 5 == 0: chance.shuffle(blocks)
            for position, block in enumerate(self.chain(blocks)):
                piece = data[position * BLOCK:][:BLOCK]
                for to, what in (self.host, piece), (self.owner, [name] * len(piece)):
                    to[block * BLOCK:block * BLOCK + len(piece)] = what
            entry = struct.pack("<BIq3d", 1, blocks[0] + 1 if blocks else 0, len(data), *[20260102.030405] * 3)
            self.own += places[index * ENTRY:][:len(entry) + len(name) + 1]
            entries += (entry + name.encode()).ljust(ENTRY, b"\0")
        self.own += self.offsets(head, 101 + 4 * len(self.words))[101:]
        fields = b"vlt\0\1" + b"\xff" * 32 + bytes(64) + struct.pack(f"<{len(self.words)}I", *self.words)
        for at, byte in [*zip(self.offsets(head, len(fields)), fields), *zip(places, entries)]:
            self.host[at] = byte

    def chain(self, blocks):
        for block, after in zip(blocks, [*blocks[1:], -1]): self.words[block] = 0x80000000 | after + 1
        return blocks

    def offsets(self, blocks, count):
        return [blocks[i // BLOCK] * BLOCK + i % BLOCK for i in range(count)]


class Trial:
    def __init__(self, program, scratch, runner):
        self.command, self.scratch = [*runner, str(program)], scratch
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir(parents=True)
        chance = random.Random(1)
        sizes = [0, *(min(int(chance.expovariate(1e-4)), 99999) for _ in range(1, FILES))]
        self.files = {f"part {i % 7}/file{i}.bin": chance.randbytes(size) for i, size in enumerate(sizes)}
        self.package = Package(self.files, chance)
        (scratch / "good.vlt").write_bytes(self.package.host)
        self.vlt("seal", "good.vlt", statuses=[0])
        self.good = (scratch / "good.vlt").read_bytes()
        lines = self.vlt("sum", "good.vlt", statuses=[0]).split("\n")[:-1]
        self.sums = dict(reversed(line.split("  ", 1)) for line in lines)
        unlike = sorted(set(self.sums) ^ set(self.files))
        assert not unlike, f"{len(unlike)} names have no sum, or no file: {unlike[:5]}\n{self.said}"
        assert self.vlt("check", "good.vlt", statuses=[0]) == "sound\n", self.said
        self.own = set(self.package.own)
        self.figures = dict.fromkeys(["changed", "missed", "wrongly named", "undamaged", "not brought back",
                                      "own bytes hit"], 0)

    def vlt(self, *words, statuses=(0, 1)):
        """Returns what the program printed; `said` has what a failed trial should tell of it."""
        done = subprocess.run([*self.command, *words], cwd=self.scratch, capture_output=True, timeout=300)
        printed, errors = (text.decode("utf-8", "backslashreplace") for text in (done.stdout, done.stderr))
        self.said = "\n".join([f"vlt {' '.join(words)}: status {done.returncode}; stdout, {len(printed)} characters:",
                               *printed.splitlines()[:10], "stderr:", *errors.splitlines()[:10]])
        if done.returncode not in statuses: raise SystemExit(self.said)
        return printed

    def damage(self, number):
        """Writes bad.vlt; returns the names of the files whose bytes it changed."""
        chance, bad = random.Random(number), bytearray(self.good)
        places = [chance.randrange(len(bad)) for _ in range(BYTES)]
        if number % 2: places[BYTES // 2:] = chance.choices(self.package.own, k=BYTES // 2)
        for at in places: bad[at] ^= chance.randrange(1, 256)
        (self.scratch / "bad.vlt").write_bytes(bad)
        self.figures["own bytes hit"] += len(set(places) & self.own)
        hit = {at for at in places if at < len(self.package.owner) and bad[at] != self.good[at]}
        return {self.package.owner[at] for at in hit} - {None}

    def run(self, number):
        """Returns what went wrong."""
        changed = self.damage(number)
        findings = map(json.loads, self.vlt("check", "--json", "bad.vlt").splitlines())
        named = {f["file"] for f in findings if f["kind"] == "contents"} & set(self.files)
        (self.scratch / "new.vlt").unlink(missing_ok=True)
        self.vlt("salvage", "bad.vlt", "new.vlt")
        back = dict(reversed(line.split("  ", 1)) for line in self.vlt("sum", "new.vlt").split("\n")[:-1])
        lost = {name for name in set(self.files) - changed if back.get(name) != self.sums[name]}
        for figure, number in zip(self.figures, map(len, [changed, changed - named, named - changed,
                                                          set(self.files) - changed, lost])):
            self.figures[figure] += number
        return {"missed": changed - named, "wrongly named": named - changed, "not brought back": lost}


def main(arguments):
    runner = arguments[arguments.index("--") + 1:] if "--" in arguments else []
    trial = Trial(pathlib.Path(arguments[0]).resolve(), pathlib.Path(arguments[1]).resolve(), runner)
    runs, failed = int(arguments[2]), 0
    for number in range(runs):
        wrong = {what: sorted(names)[:5] for what, names in trial.run(number).items() if names}
        if wrong: print(f"run {number}: {wrong}")
        failed += bool(wrong)
    print(f"{runs} runs, {runs * FILES} files, {len(trial.good)} bytes:",
          ", ".join(f"{number} {figure}" for figure, number in trial.figures.items()))
    print(f"{runs - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
