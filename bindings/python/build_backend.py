#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes wheels, with nothing but the standard library. `pip install .` calls build_wheel, which leaves the shared
library to be found where it is installed. `build_backend.py FOLDER PLATFORM LIBRARY` makes a wheel that holds the
library: for linux_x86_64, win32 or win_amd64. The same files give the same bytes; their date is SOURCE_DATE_EPOCH."""
import base64
import hashlib
import os
import re
import sys
import time
import zipfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]

METADATA = """\
Metadata-Version: 2.1
Name: vlt
Version: {version}
Summary: Packages, which are small file systems inside one file, and offline product databases
License: MIT
Requires-Python: >=3.8
Classifier: Typing :: Typed
"""

WHEEL = """\
Wheel-Version: 1.0
Generator: vlt
Root-Is-Purelib: {pure}
Tag: {tag}
"""


def version():
    """The version of the whole project."""
    return re.search(r"project\(vlt VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


def metadata_files(tag):
    """What a wheel's .dist-info folder holds, its record apart."""
    info = f"vlt-{version()}.dist-info"
    return {
        f"{info}/METADATA": METADATA.format(version=version()).encode(),
        f"{info}/WHEEL": WHEEL.format(pure="true" if tag.endswith("-any") else "false", tag=tag).encode(),
        f"{info}/LICENSE": (ROOT / "LICENSE").read_bytes(),
    }


def record(files):
    """The wheel's list of files with their sums."""
    lines = []
    for name, content in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        lines.append(f"{name},sha256={digest},{len(content)}\n")
    name = f"vlt-{version()}.dist-info/RECORD"
    return name, "".join([*lines, f"{name},,\n"]).encode()


def write_wheel(folder, platform="any", library=None):
    """Writes a wheel, with the library inside if one is given, and returns its name."""
    tag = f"py3-none-{platform}"
    sources = sorted(path for path in (HERE / "vlt").rglob("*") if path.suffix in (".py", ".typed"))
    files = {path.relative_to(HERE).as_posix(): path.read_bytes() for path in sources}
    if library:
        files["vlt/vlt.dll" if platform.startswith("win") else "vlt/libvlt.so"] = Path(library).read_bytes()
    files.update(metadata_files(tag))
    name, listed = record(files)
    files[name] = listed
    date = time.gmtime(max(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())), 315532800))[:6]
    wheel = f"vlt-{version()}-{tag}.whl"
    with zipfile.ZipFile(Path(folder, wheel), "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in files.items():
            entry = zipfile.ZipInfo(name, date)
            entry.external_attr = 0o644 << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, content)
    return wheel


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """What pip asks for."""
    return write_wheel(wheel_directory)


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("the sources are those of the whole project")


if __name__ == "__main__":
    print(write_wheel(*sys.argv[1:4]))
