#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What the program does when it is stopped in the middle, and when two want one package: trouble_test.py VLT SCRATCH"""
import os, pathlib, shutil, signal, subprocess, sys, time

vlt, scratch = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve() / "trouble"
shutil.rmtree(scratch, ignore_errors=True)
scratch.mkdir(parents=True)
os.chdir(scratch)


def run(*words):
    return subprocess.run([vlt, *words], capture_output=True, text=True)


def add_from_pipe(package):
    """Starts an `add` that waits for more after its first bytes were stored."""
    adding = subprocess.Popen([vlt, "add", package, "-", "--as", "endless"], stdin=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True)
    adding.stdin.write("x" * 1000000)
    adding.stdin.flush()
    while pathlib.Path(package).stat().st_size < 500000: time.sleep(0.01)
    return adding


def new_package(package):
    assert run("create", package).returncode == 0
    assert run("touch", package, "before").returncode == 0


def names(package):
    return run("ls", package).stdout.split()


def interrupted():
    new_package("ctrl-c.vlt")
    adding = add_from_pipe("ctrl-c.vlt")
    while adding.poll() is None:  # a signal just before a read does not end it
        adding.send_signal(signal.SIGINT)
        time.sleep(0.01)
    said = adding.stderr.read()
    assert adding.returncode == 130 and "endless: was stored in part and is removed again" in said, said
    assert names("ctrl-c.vlt") == ["before"] and run("check", "ctrl-c.vlt").returncode == 0


def killed():
    for moment in range(5):
        package = f"kill{moment}.vlt"
        new_package(package)
        adding = add_from_pipe(package)
        time.sleep(0.002 * moment)
        adding.kill()
        adding.communicate()
        checked = run("check", package)
        assert checked.returncode == 0, checked.stdout
        assert "before" in names(package)


def state(database):
    """What a database holds, once a change that was cut off is brought back."""
    if pathlib.Path(database, "vlt-old").exists():
        assert "a change was cut off" in run("db", "info", database).stderr
        assert run("db", "edit", database).returncode == 0
    exported = run("db", "export", database, "--jsonl")
    assert exported.returncode == 0, exported.stderr
    return exported.stdout


def edits_killed():
    """At moments from the start to the end, and as soon as files begin to be exchanged."""
    pathlib.Path("bill.csv").write_text("parent,code,name\n,A,top\n" + "".join(f"A,B{i},part\n" for i in range(5000)))
    for before, begins in (("before", "vlt-old"), ("before.vlt", ".vlt-*")):
        assert run("db", "import", "--bom", "bill.csv", before).returncode == 0
        states, (copy, shelf) = set(), (before.replace("before", "edited"), pathlib.Path("shelf"))
        for moment in range(30):
            shutil.rmtree(shelf, ignore_errors=True)
            shelf.mkdir()
            (shutil.copytree if pathlib.Path(before).is_dir() else shutil.copy)(before, shelf / copy)
            editing = subprocess.Popen([vlt, "db", "edit", shelf / copy, "--add", "N", "--line", "B1:N", "--add-field",
                                        "W", "--set", "A:W=1"], stdout=subprocess.DEVNULL)
            end = time.monotonic() + (0.004 * moment if moment < 20 else 10)
            while editing.poll() is None and time.monotonic() < end:
                if moment >= 20 and any((shelf / copy if begins == "vlt-old" else shelf).glob(begins)): break
            editing.kill()
            editing.wait()
            states.add(state(shelf / copy))
        edited = run("db", "edit", before, "--add", "N", "--line", "B1:N", "--add-field", "W", "--set", "A:W=1")
        assert edited.returncode == 0
        assert state(before) in states and len(states) <= 2, len(states)


def endless_paths():
    """A product with more paths than can be listed ends when asked to."""
    lines = "".join(f"P{i},P{i + 1},1\n" * 2 for i in range(100))
    pathlib.Path("paths.csv").write_text(f"parent,code,quantity\n,P0,\n{lines}")
    assert run("db", "import", "--bom", "paths.csv", "paths", "--accept").returncode in (0, 1)
    listing = subprocess.Popen([vlt, "bom", "where-used", "paths", "P100", "--all"], stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
    listing.stdout.read(1000000)
    listing.send_signal(signal.SIGINT)
    assert b"interrupted" in listing.communicate()[1] and listing.returncode == 130
    cut = run("bom", "where-used", "paths", "P100", "--all", "--limit", "5")
    assert cut.returncode == 1 and len(cut.stdout.splitlines()) == 6 and "the first 5 are shown" in cut.stderr, cut


def two_writers():
    new_package("two.vlt")
    adding = add_from_pipe("two.vlt")
    for words in (["rm", "two.vlt", "before"], ["ls", "two.vlt"]):
        refused = run(*words)
        assert refused.returncode == 2 and f"in use by vlt, process {adding.pid}" in refused.stderr, refused.stderr
    assert run("ls", "--no-lock", "two.vlt").returncode == 0
    adding.communicate()
    assert adding.returncode == 0 and names("two.vlt") == ["before", "endless"]


def full_disk():
    """The limit on the size of a file stands for a disk without room."""
    new_package("full.vlt")
    pathlib.Path("large").write_bytes(b"y" * 3000000)
    words = f'ulimit -f 1024; trap "" XFSZ; exec "{vlt}" add full.vlt large'
    adding = subprocess.run(["bash", "-c", words], capture_output=True, text=True)
    assert adding.returncode == 2 and "is the disk full?" in adding.stderr, adding.stderr
    assert names("full.vlt") == ["before"] and run("check", "full.vlt").returncode == 0
    assert run("create", "source.vlt").returncode == 0 and run("add", "source.vlt", "large").returncode == 0
    words = f'ulimit -f 1024; trap "" XFSZ; exec "{vlt}" extract source.vlt -C out'
    assert subprocess.run(["bash", "-c", words], capture_output=True).returncode == 2
    assert list(pathlib.Path("out").iterdir()) == []


def contents(folder):
    files = (path for path in pathlib.Path(folder).rglob("*") if path.is_file())
    return {str(path.relative_to(folder)): path.read_bytes() for path in files}


def read_ahead():
    """Files around the sizes in which they are read ahead, some of which are passed over; also where the system gives
    no thread, since its stack would take more memory than the process may have."""
    sizes = [0, 1, 524287, 524288, 524289, 5000000, 3, 0, 1048577, 7]
    os.mkdir("many")
    for number, size in enumerate(sizes): pathlib.Path("many", f"f{number}").write_bytes(os.urandom(size))
    pathlib.Path("many", "Bé").write_bytes(b"b")
    for number in range(2500): pathlib.Path("many", f"empty{number}").touch()  # take no room of what is read ahead
    for limits in ("", "ulimit -s 8000000 -v 4000000 && "):
        def ahead(*words):
            return subprocess.run(["bash", "-c", f'{limits}exec "$0" "$@"', vlt, *words], capture_output=True)
        shutil.rmtree("there", ignore_errors=True)
        package = f"ahead{len(limits)}.vlt"
        new_package(package)
        assert ahead("add", package, "many").returncode == 0
        assert ahead("extract", package, "-C", "there").returncode == 0
        assert contents("there/many") == contents("many")
        for number in (0, 5, 8): pathlib.Path("there", "many", f"f{number}").unlink()
        pathlib.Path("there", "many", "f4").write_bytes(b"mine")
        again = ahead("extract", package, "many", "-C", "there")
        there_already = 2500 + len(sizes) + 1 - 3
        assert again.returncode == 1 and again.stderr.count(b"it is there already") == there_already, again.stderr
        assert contents("there/many") == {**contents("many"), "f4": b"mine"}
        pathlib.Path("many", "f3").write_bytes(b"shorter")
        assert ahead("add", "--update", package, "many").returncode == 0
        assert run("cat", package, "many/f3").stdout == "shorter"


for trouble in (interrupted, killed, edits_killed, endless_paths, two_writers, full_disk, read_ahead):
    trouble()
    print(trouble.__name__, "passed")
