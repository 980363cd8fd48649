# SPDX-License-Identifier: MIT
"""Wheels install without a network, and what they install works."""
import os
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
LIBRARY = Path(os.environ["VLT_LIBRARY"])
PROGRAM = "import vlt; p = vlt.Package('p.vlt', 'w'); p['a'] = b'b'; print(vlt.__file__, list(p))"


def install(folder, *arguments):
    subprocess.run([sys.executable, "-m", "pip", "install", "-q", "--no-index", "--disable-pip-version-check",
                    "--root-user-action=ignore", "--target", folder / "installed", *arguments], check=True)


def make_wheel(folder, platform, library):
    script = ROOT / "bindings/python/build_backend.py"
    command = [sys.executable, script, folder, platform, library]
    return folder / subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


def runs(folder, **environment):
    printed = subprocess.run([sys.executable, "-c", PROGRAM], cwd=folder, check=True, capture_output=True, text=True,
                             env={"PATH": os.environ["PATH"], "PYTHONPATH": str(folder / "installed"), **environment})
    return printed.stdout == f"{folder}/installed/vlt/__init__.py ['a']\n"


def test_a_wheel_holds_the_library(tmp_path):
    install(tmp_path, make_wheel(tmp_path, "linux_x86_64", LIBRARY))
    assert runs(tmp_path)


def test_the_source_folder_installs_against_an_installed_library(tmp_path):
    install(tmp_path, ROOT / "bindings/python")
    assert runs(tmp_path, LD_LIBRARY_PATH=str(LIBRARY.parent))


@pytest.mark.parametrize("platform", ["win32", "win_amd64"])
def test_a_wheel_for_windows_is_one_to_pip(tmp_path, platform):
    install(tmp_path, "--platform", platform, "--only-binary=:all:", make_wheel(tmp_path, platform, LIBRARY))
    assert (tmp_path / "installed/vlt/vlt.dll").exists()
