#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A package as a file system: mount_test.py VLT SCRATCH. Ends with 77 where nothing can be mounted."""
import contextlib, ctypes, errno, filecmp, os, pathlib, random, shutil, signal, subprocess, sys, time

vlt, scratch = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve() / "mount"
SKIPPED, root = 77, pathlib.Path("root")


def why_not():
    """Mounts a file system that nobody answers for, without the program."""
    try:
        fuse = os.open("/dev/fuse", os.O_RDWR)
    except OSError as error:
        return str(error)
    if os.geteuid() != 0: return None if shutil.which("fusermount3") else "neither root nor fusermount3"
    libc, options = ctypes.CDLL(None, use_errno=True), f"fd={fuse},rootmode=40000,user_id=0,group_id=0".encode()
    failed = libc.mount(b"probe", bytes(root), b"fuse", 0, options) and os.strerror(ctypes.get_errno())
    libc.umount2(bytes(root), 2)
    os.close(fuse)
    return failed and f"mount: {failed}"


def run(*words, **more):
    return subprocess.run([vlt, *words], capture_output=True, **more)


def make(package, files):
    assert run("create", package).returncode == 0
    for name, data in files.items(): assert run("add", package, "-", "--as", name, input=data).returncode == 0


@contextlib.contextmanager
def mounted(*words, status=0, said="", end=lambda process: subprocess.run(["umount", root], check=True), limit=""):
    process = subprocess.Popen(["bash", "-c", f'{limit} exec "$@"', "bash", vlt, "mount", *words, root],
                               stderr=subprocess.PIPE, text=True)
    while not root.is_mount() and process.poll() is None: time.sleep(0.01)
    try:
        if process.poll() is None: yield process
    finally:
        if process.poll() is None: end(process)
        errors = process.communicate(timeout=60)[1]
    assert process.returncode == status and said in errors, (process.returncode, errors)
    assert not root.is_mount()


def error_of(call, *arguments):
    try:
        call(*arguments)
    except OSError as error:
        return errno.errorcode[error.errno]


def shows_what_can_be_a_path():
    odd = ["a//b", "/root", "tail/", "./dot", "x/../y", "both", "l" * 300]
    files = {"both/in": b"1", "Both/in2": b"2", "big": random.Random(1).randbytes(1000001), "d/e/f": b""}
    make("p.vlt", dict.fromkeys(odd, b"odd") | files | {"aa": b"first", "bb": b"twin"})
    assert run("touch", "-t", "2005-03-21T14:07:09", "p.vlt", "big").returncode == 0
    host = pathlib.Path("p.vlt")
    host.write_bytes(host.read_bytes().replace(b"bb\0", b"AA\0"))
    with mounted("p.vlt", status=1, said="x/../y: not shown: a part of its name is '..'\n") as process:
        found = {str(p.relative_to(root)): p.read_bytes() for p in root.rglob("*") if p.is_file()}
        assert found == files | {"aa": b"first"}, found.keys()
        assert time.localtime((root / "big").stat().st_mtime)[:6] == (2005, 3, 21, 14, 7, 9)
        assert error_of((root / "new").write_bytes, b"") == "EROFS"
        assert run("cat", "p.vlt", "aa").stdout == b"first"
        assert f"process {process.pid}" in run("rm", "p.vlt", "aa").stderr.decode()
    with mounted("p.vlt", status=1, said="AA: not shown: a file of the same name"): pass
    with mounted("p.vlt", status=1, end=lambda process: process.send_signal(signal.SIGINT)): pass


def change(folder, chance):
    """One random change, the same for the same `chance`; returns the error."""
    paths = ["a", "b", "c", "d/a", "d/b", "d/e/c"]
    one, other, size = folder / chance.choice(paths), folder / chance.choice(paths), chance.randrange(20000)
    def write():
        with open(one, "r+b") as file: file.seek(size), file.write(chance.randbytes(9000))
    def write_anew():
        one.write_bytes(chance.randbytes(size))
    def append():
        with open(one, "ab") as file: file.write(b"more")
    def replace_while_open():
        with open(other, "rb") as file: one.replace(other), file.read()
    changes = [write, write_anew, write_anew, append, replace_while_open, one.unlink, (folder / "d/e").rmdir,
               lambda: os.truncate(one, size), (folder / "d/e").mkdir,
               (folder / "d").mkdir, (folder / "d").rmdir, lambda: os.utime(one, (size, size))]
    return error_of(chance.choice(changes))


def differences(compared):
    yield from compared.left_only + compared.right_only
    yield from filecmp.cmpfiles(compared.left, compared.right, compared.common_files, shallow=False)[1]
    for below in compared.subdirs.values(): yield from differences(below)


def changes_like_a_folder():
    make("rw.vlt", {"kept": b"k" * 5000})
    assert run("seal", "rw.vlt").returncode == 0
    model = pathlib.Path("model")
    model.mkdir()
    (model / "kept").write_bytes(b"k" * 5000)
    for begin in range(0, 600, 300):
        with mounted("-o", "rw", "rw.vlt"):
            for seed in range(begin, begin + 300):
                errors = [change(folder, random.Random(seed)) for folder in (root, model)]
                wrong = [*differences(filecmp.dircmp(root, model))]
                assert errors[0] == errors[1] and not wrong, (seed, errors, wrong)
            (root / "Cased").write_bytes(b"")
            assert error_of((root / "cased").write_bytes, b"") == "EEXIST"
            assert error_of((root / "Cased").rename, root / "cased") == "EEXIST"
            assert error_of((root / ".vlt-sums").write_bytes, b"") == "EPERM"
            assert error_of((root / ("l" * 256)).mkdir) == "ENAMETOOLONG"
            (root / "Cased").unlink()
        assert run("check", "rw.vlt").stdout == b"sound\n"
        for folder in [*model.rglob("*")][::-1]:
            if folder.is_dir() and not [*folder.iterdir()]: folder.rmdir()  # a package has no empty ones
        shutil.rmtree("out", ignore_errors=True)
        assert run("extract", "rw.vlt", "-C", "out").returncode == 0
        assert not [*differences(filecmp.dircmp("out", model))]


def refusals():
    assert run("create", "--write-word", "w", "--read-word", "r", "words.vlt").returncode == 0
    for words, text in ((["--read-word", "r", "-o", "rw", "words.vlt"], "words.vlt: the word does not match"),
                        (["none.vlt"], "none.vlt: there is no such file")):
        refused = run("mount", *words, root)
        assert refused.returncode == 2 and text in refused.stderr.decode(), refused.stderr
    assert "not an empty folder" in run("mount", "words.vlt", ".").stderr.decode()
    os.mkdir("broken")
    pathlib.Path("broken", "libfuse3.so.3").touch()
    for words, status in (["ls"], 0), (["mount", "--read-word", "r"], 2):
        done = subprocess.run([vlt, *words, "words.vlt", *[root][:status]], capture_output=True,
                              env={**os.environ, "LD_LIBRARY_PATH": "broken", "VLT_READ_WORD": "r"})
        assert done.returncode == status and (status == 0) != (b"libfuse3 is needed" in done.stderr), done


def full_disk():
    """The limit on the size of a file stands for a disk without room."""
    make("full.vlt", {"kept": b"k" * 5000})
    with mounted("-o", "rw", "full.vlt", limit='ulimit -f 1024; trap "" XFSZ;', said="is the disk full?"):
        assert error_of((root / "large").write_bytes, bytes(3000000)) == "ENOSPC"
        assert (root / "kept").read_bytes() == b"k" * 5000 and (root / "large").unlink() is None
    assert run("check", "full.vlt").returncode == 0


shutil.rmtree(scratch, ignore_errors=True)
scratch.mkdir(parents=True)
os.chdir(scratch)
root.mkdir()
if reason := why_not():
    print("skipped: nothing can be mounted here:", reason)
    sys.exit(SKIPPED)
for test in (shows_what_can_be_a_path, changes_like_a_folder, refusals, full_disk):
    test()
    print(test.__name__, "passed")
