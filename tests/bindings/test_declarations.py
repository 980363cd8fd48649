# SPDX-License-Identifier: MIT
"""The generated declarations are what the generator makes, and every language lays the records out as C does."""
import ctypes
import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

from vlt.generated import native

BINDINGS = Path(__file__).resolve().parents[2] / "bindings"
ENVIRONMENT = {**os.environ, "LD_LIBRARY_PATH": str(Path(os.environ["VLT_LIBRARY"]).parent)}


def run(*command):
    return subprocess.run(list(map(str, command)), env=ENVIRONMENT, check=True, capture_output=True, text=True).stdout


def test_generated_files_are_what_the_headers_say():
    subprocess.run([sys.executable, BINDINGS / "generate.py", "--check"], check=True)


def narrowed(kind, known):
    """A ctypes type with every pointer replaced by 32 bits."""
    if issubclass(kind, (ctypes._Pointer, ctypes.c_void_p)):
        return ctypes.c_uint32
    if issubclass(kind, ctypes.Array):
        return narrowed(kind._type_, known) * kind._length_
    if not issubclass(kind, ctypes.Structure):
        return kind
    if kind not in known:
        fields = [(name, narrowed(item, known)) for name, item in kind._fields_]
        known[kind] = type(kind.__name__, (ctypes.Structure,), {"_fields_": fields})
    return known[kind]


def python_layouts(bits):
    for record in (native.KOfflineField, native.KOfflineTable, native.KOfflineDb):
        kind = record if bits == 64 else narrowed(record, {})
        yield f"{record.__name__} {ctypes.sizeof(kind)}\n"
        yield from (f"{record.__name__}.{item[0]} {getattr(kind, item[0]).offset}\n" for item in kind._fields_)


# Only 64-bit compilers are at hand: for 32 bits the sources are given 32-bit integers in the place of pointers.
def csharp_layouts(bits, folder):
    source = (BINDINGS / "csharp/generated/VltNative.cs").read_text()
    if bits == 32:
        source = source.replace("using Pointer = System.IntPtr", "using Pointer = System.UInt32")
    (folder / "VltNative.cs").write_text(source)
    program = folder / "layouts.exe"
    run("mcs", f"-out:{program}", folder / "VltNative.cs", BINDINGS / "csharp/generated/Layouts.cs")
    return run("mono", program)


def pascal_layouts(bits, folder):
    source = (BINDINGS / "pascal/generated/vltapi.pas").read_text()
    if bits == 32:
        fields = source.partition("= record end;")[2].partition("// Creates a package")[0]
        narrow = fields
        for name in ("PPKOfflineRecord", "PKOfflineField", "PKOfflineDb", "PInteger", "Pointer"):
            narrow = narrow.replace(f": {name};", ": Cardinal;")
        source = source.replace(fields, narrow)
    (folder / "vltapi.pas").write_text(source)
    shutil.copy(BINDINGS / "pascal/generated/layouts.pas", folder)
    run("fpc", "-v0", f"-FE{folder}", f"-k-L{ENVIRONMENT['LD_LIBRARY_PATH']}", folder / "layouts.pas")
    return run(folder / "layouts")


@pytest.mark.parametrize("bits", [32, 64])
def test_every_language_lays_records_out_as_c_does(bits, tmp_path):
    expected = (BINDINGS / f"generated/layouts_{bits}.txt").read_text()
    assert "".join(python_layouts(bits)) == expected
    assert csharp_layouts(bits, tmp_path) == expected
    assert pascal_layouts(bits, tmp_path) == expected
