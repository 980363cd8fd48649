# SPDX-License-Identifier: MIT
"""Finds and loads the shared library."""
import ctypes
import ctypes.util
import inspect
import os
import sys
from pathlib import Path
from typing import Any, Tuple

if sys.platform == "win32":
    _NAMES = ("vlt.dll",)
else:
    _NAMES = ("libvlt.so.1", "libvlt.so")


def _candidates():
    """Where the library may lie: where VLT_LIBRARY says, inside this package, where the system finds it."""
    if os.environ.get("VLT_LIBRARY"):
        yield os.path.abspath(os.environ["VLT_LIBRARY"])
        return
    for name in _NAMES:
        beside = Path(__file__).resolve().parent / name
        if beside.exists():
            yield str(beside)
    found = ctypes.util.find_library("vlt")
    if found:
        yield found
    yield from _NAMES


def _load():
    # PyDLL keeps the interpreter's lock through a call. Packages must not be opened or closed while another call is in
    # progress, and a garbage collector may close one at any moment: this way no two calls ever overlap.
    problem = None
    for name in _candidates():
        try:
            return ctypes.PyDLL(name)
        except OSError as error:
            problem = error
    raise ImportError(f"the library vlt cannot be loaded: {problem}; VLT_LIBRARY may name its file") from problem


_library = _load()


def declare(name: str, result: Any, *parameters: Tuple[str, Any], doc: str) -> Any:
    """The function `name` of the library, with its types and its description."""
    function = getattr(_library, name)
    function.restype = result
    function.argtypes = [kind for _, kind in parameters]
    function.__doc__ = f"{name}({', '.join(parameter for parameter, _ in parameters)})\n\n{inspect.cleandoc(doc)}"
    return function
