# SPDX-License-Identifier: MIT
"""Names, paths and times between Python and the library."""
import ctypes
import os
import sys
from datetime import datetime
from typing import Any, Optional, Union

Text = Union[str, bytes]
Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


def default_encoding() -> str:
    """The multibyte character set that the library's narrow texts are in."""
    if sys.platform != "win32":
        return "utf-8"
    page = ctypes.windll.kernel32.GetACP()
    return "utf-8" if page == 65001 else f"cp{page}"


def narrow(text: Text, encoding: str) -> bytes:
    """A text as the library takes it; bytes that came from it as `str` go back as they were."""
    encoded = text.encode(encoding, "surrogateescape") if isinstance(text, str) else bytes(text)
    if b"\0" in encoded:
        raise ValueError("a text must not contain a zero byte")
    return encoded


def from_narrow(text: bytes, encoding: str) -> str:
    """A text of the library as `str`; bytes that the encoding lacks become lone surrogates."""
    return text.decode(encoding, "surrogateescape")


def wide(text: Text, encoding: str) -> Any:
    """A name as the zero-terminated array of 16-bit units that vltw_ functions take."""
    if not isinstance(text, str):
        text = from_narrow(bytes(text), encoding)
    if "\0" in text:
        raise ValueError("a text must not contain a zero character")
    encoded = text.encode("utf-16-le", "surrogatepass") + b"\0\0"
    return (ctypes.c_uint16 * (len(encoded) // 2)).from_buffer_copy(encoded)


def from_wide(units: Any) -> str:
    """The text before the first zero of an array of 16-bit units."""
    length = next((at for at, unit in enumerate(units) if unit == 0), len(units))
    return bytes(units)[:2 * length].decode("utf-16-le", "surrogatepass")


def host_path(path: Path) -> bytes:
    """The path of a host file."""
    return narrow(os.fspath(path), default_encoding())


def from_stamp(stamp: float) -> Optional[datetime]:
    """A time stamp as local time; None for what is no valid time."""
    date, time = int(stamp), round((stamp - int(stamp)) * 1000000)
    try:
        return datetime(date // 10000, date // 100 % 100, date % 100, time // 10000, time // 100 % 100, time % 100)
    except ValueError:
        return None


def to_stamp(moment: Optional[datetime]) -> float:
    """A local time as time stamp, in whole seconds; 0.0 for None."""
    if moment is None:
        return 0.0
    date = moment.year * 10000 + moment.month * 100 + moment.day
    return date + (moment.hour * 10000 + moment.minute * 100 + moment.second) / 1000000
