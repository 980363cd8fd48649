#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs tables of cases for the program vlt: run_cases.py VLT SCRATCH FILE... [--only WORDS] [-- WINE]

A file of cases holds, line by line:
    == TITLE [posix]     a case; it begins in an empty folder; [posix] or [windows]: for that system alone
    $ COMMAND            `vlt ...`, or one of the commands below; NAME=VALUE before it sets the environment
    < TEXT               what the command above finds on standard input; \\n and \\xHH stand for bytes
    ! TEXT               a line that it must print on stderr
    ? STATUS             its exit status, if not 0
    # TEXT               a comment
Any other line is one that it must print on stdout (\\ before a line that would be taken for one of the above).
`...` stands for any text, and alone on a line for any lines. A control character is printed as \\xHH.
"""
import concurrent.futures, os, pathlib, re, shlex, shutil, subprocess, sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def unescaped(text):
    return re.sub(rb"\\(n|x[0-9a-f]{2})",
                  lambda m: b"\n" if m[1] == b"n" else bytes.fromhex(m[1][1:].decode()), text.encode())


class Commands:
    """What a case may do besides calling vlt, alike on every system. Each returns what it prints."""

    def __init__(self, folder):
        self.folder = folder

    def at(self, name):
        return self.folder / name

    def write(self, name, text="", times="1"):
        self.at(name).parent.mkdir(parents=True, exist_ok=True)
        self.at(name).write_bytes(unescaped(text) * int(times))

    def mkdir(self, name):
        self.at(name).mkdir(parents=True)

    def link(self, target, name):
        self.at(name).symlink_to(target)

    def rm(self, name):
        shutil.rmtree(self.at(name)) if self.at(name).is_dir() else self.at(name).unlink()

    def cp(self, source, target):
        (shutil.copytree if self.at(source).is_dir() else shutil.copy)(self.at(source), self.at(target))

    def chmod(self, mode, name):
        self.at(name).chmod(int(mode, 8))

    def cat(self, name):
        return self.at(name).read_text(errors="backslashreplace")

    def tree(self, name="."):
        return "".join(f"{p.relative_to(self.at(name)).as_posix()}\n" for p in sorted(self.at(name).rglob("*")))

    def size(self, name):
        return f"{self.at(name).stat().st_size}\n"

    def same(self, one, other):
        same = self.at(one).read_bytes() == self.at(other).read_bytes()
        return "" if same else "they differ\n"

    def patch(self, name, offset, hexadecimal):
        with self.at(name).open("r+b") as file:
            file.seek(int(offset, 0))
            file.write(bytes.fromhex(hexadecimal))

    def cut(self, name, size):
        os.truncate(self.at(name), int(size, 0))

    def stamp(self, name, seconds):
        os.utime(self.at(name), (int(seconds), int(seconds)))

    def example(self, name):
        shutil.copytree(ROOT / "examples" / name, self.at(name))

    def product(self, folder, items, lines="", root=""):
        codes = [item.split("=")[0] for item in items.split()]
        nids = {code: len(codes) - i for i, code in enumerate(reversed(codes))}
        self.write(f"{folder}/kdbmain.txt", "".join(f"{line}\\x0d\\n" for line in [
            "1, table, bitm", *("1.1, field, " + f for f in ("NID", "CCODE", "CNAME", "WEIGHT")),
            "1, table, bbom", *("1.1, field, " + f for f in ("NID", "NPID", "NCID", "FCOUNT")),
            "1, ini", "1.1, separator, COMMA", f"1.1, root, {root}"]))
        self.write(f"{folder}/bitm.txt", "".join(
            f"{i},{item.split('=')[0]},name of {item.split('=')[0]},{item.partition('=')[2]}\\x0d\\n"
            for i, item in enumerate(items.split(), 1)))
        self.write(f"{folder}/bbom.txt", "".join(
            f"{i},{nids.get(line.split('>')[0], 99)},{nids.get(re.split('[>*]', line)[1], 99)},{line.partition('*')[2]}"
            "\\x0d\\n" for i, line in enumerate(lines.split(), 1)))

    def written(self, name):
        return f"{int(self.at(name).stat().st_mtime)}\n"


class Step:
    def __init__(self, line, number):
        self.line, self.number = line, number
        self.stdin, self.stdout, self.stderr, self.status = b"", [], [], 0

    def take(self, line):
        if line.startswith("< "): self.stdin += unescaped(line[2:])
        elif line.startswith("! "): self.stderr.append(line[2:])
        elif line.startswith("? "): self.status = int(line[2:])
        else: self.stdout.append(re.sub(r"^\\(?=[=$<!?#] )", "", line))


class Case:
    def __init__(self, file, title):
        self.file, self.title, self.steps = file, title, []


def read_cases(path):
    cases = []
    for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
        if line.startswith("== "): cases.append(Case(path, line[3:]))
        elif line.startswith("# ") or not line.strip(): continue
        elif line.startswith("$ "): cases[-1].steps.append(Step(line[2:], number))
        else: cases[-1].steps[-1].take(line)
    return cases


def matches(expected, printed):
    """Whether the lines printed are those expected, `...` standing for any."""
    parts = [".*\n" if line == "..." else "[^\n]*".join(map(re.escape, line.split("..."))) + "\n" for line in expected]
    parts = ["(.*\n)?" if part == ".*\n" else part for part in parts]
    return re.fullmatch("".join(parts), printed, re.DOTALL) is not None


def printable(data):
    text = data.decode("utf-8", errors="backslashreplace")
    text = "".join(c if c >= " " or c == "\n" else f"\\x{ord(c):02x}" for c in text)
    return text if not text or text.endswith("\n") else text + "\n"


class Runner:
    def __init__(self, program, scratch, runner):
        self.program, self.scratch, self.runner = program, scratch, runner
        self.system = "windows" if program.suffix == ".exe" else "posix"

    def applies(self, case):
        return not any(f"[{other}]" in case.title for other in {"posix", "windows"} - {self.system})

    def vlt(self, words, environment, step, folder):
        base = {k: v for k, v in os.environ.items() if not k.startswith("VLT_") or k == "VLT_WINEPREFIX"}
        done = subprocess.run([*self.runner, str(self.program), *words], input=step.stdin, capture_output=True,
                              cwd=folder, env={**base, "LC_ALL": "C.UTF-8", "TZ": "UTC", **environment}, timeout=300)
        return printable(done.stdout), printable(done.stderr.replace(b"\r", b"")), done.returncode

    def run_step(self, step, folder):
        lexer = shlex.shlex(step.line, posix=True, punctuation_chars=False)
        lexer.whitespace_split, lexer.escape, lexer.commenters = True, "", ""  # a backslash is one
        words = list(lexer)
        environment = {}
        while re.fullmatch(r"[A-Z_]+=.*", words[0]):
            name, value = words.pop(0).split("=", 1)
            environment[name] = value
        if words[0] == "vlt": return self.vlt(words[1:], environment, step, folder)
        return printable((getattr(Commands(folder), words[0])(*words[1:]) or "").encode()), "", 0

    def run_case(self, case, index):
        """Returns what is wrong, or nothing."""
        folder = self.scratch / f"{case.file.stem}-{index}"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        for step in case.steps:
            stdout, stderr, status = self.run_step(step, folder)
            good = matches(step.stdout, stdout) and matches(step.stderr, stderr) and status == step.status
            if not good:
                wanted = "\n".join([*step.stdout, *("! " + line for line in step.stderr)])
                return (f"{case.file.name}:{step.number}: {case.title}\n$ {step.line}\nexpected (status {step.status}):"
                        f"\n{wanted}\nstdout (status {status}):\n{stdout}stderr:\n{stderr}")
        shutil.rmtree(folder, ignore_errors=True)
        return None


def main(arguments):
    runner = arguments[arguments.index("--") + 1:] if "--" in arguments else []
    arguments = arguments[:arguments.index("--")] if "--" in arguments else arguments
    only = arguments[arguments.index("--only") + 1] if "--only" in arguments else ""
    arguments = arguments[:arguments.index("--only")] if only else arguments
    run = Runner(pathlib.Path(arguments[0]).resolve(), pathlib.Path(arguments[1]).resolve(), runner)
    cases = [c for f in arguments[2:] for c in read_cases(pathlib.Path(f)) if only in c.title and run.applies(c)]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        wrong = [text for text in pool.map(run.run_case, cases, range(len(cases))) if text]
    print(*wrong, f"{len(cases) - len(wrong)} of {len(cases)} cases passed", sep="\n\n" if wrong else "\n")
    return 1 if wrong or not cases else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
