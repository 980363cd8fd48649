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
    adding.send_signal(signal.SIGINT)
    said = adding.communicate()[1]
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


for trouble in (interrupted, killed, two_writers, full_disk):
    trouble()
    print(trouble.__name__, "passed")
