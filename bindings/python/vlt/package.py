# SPDX-License-Identifier: MIT
"""A package: a mapping from the names of its stored files to their contents."""
import ctypes
import os
import weakref
from collections.abc import MutableMapping
from datetime import datetime
from typing import Any, Iterator, List, NamedTuple, Optional

from .errors import AccessError, Error, NotFoundError, opening_error
from .generated import native
from .stored_file import StoredFile
from .text import Path, Text, default_encoding, from_narrow, from_stamp, from_wide, host_path, narrow, to_stamp, wide

_LARGEST_MB = 1048575


class Entry(NamedTuple):
    """One line of a package's directory. A time is None where the entry holds no valid one."""
    name: str
    size: int
    created: Optional[datetime]
    accessed: Optional[datetime]
    written: Optional[datetime]
    is_file: bool  # False: an entry of another maker, which cannot be opened


class _Facts:
    """Places for what the library reports on a stored file."""

    def __init__(self) -> None:
        self.kind, self.size = ctypes.c_uint32(), ctypes.c_int64()
        self.stamps = ctypes.c_double(), ctypes.c_double(), ctypes.c_double()

    def places(self) -> Any:
        return (self.kind, self.size, *self.stamps)

    def entry(self, name: str) -> Entry:
        created, accessed, written = (from_stamp(stamp.value) for stamp in self.stamps)
        return Entry(name, self.size.value, created, accessed, written, self.kind.value == native.VLT_ENTRY_FILE)


class Closing:
    """Closed at the end of a `with` block, and when nobody refers to it any more."""

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        self.close()


class Package(Closing, MutableMapping):
    """An open package.

        with vlt.Package("p.vlt", write_word="secret") as p:
            p["notes.txt"] = b"kept inside"
            for entry in p.entries():
                print(entry.name, entry.size, entry.written)
            with p.open("notes.txt", "r+b") as file:
                file.seek(5)

    Names may be `str` or `bytes`, whether the package stores narrow or wide names; what is listed is `str`.
    Closing the package closes the files that are still open.

    path        the host file
    mode        "r": to read; "r+": to read and write, as far as the words allow; "w": a new package, over one that is
                there; "x": a new package, where no file is
    read_word, write_word  the credentials, at most 16 bytes each; of a new package, those that it will ask for
    exclusive   nobody else may open the package while it is open
    offset      where in the host file the package begins
    wide_names  of a new package: its names are UTF-16 rather than bytes
    size_mb     of a new package: its size in mebibytes; it grows when it is full
    encoding    of narrow names; the system's where it is not given
    """

    def __init__(self, path: Path, mode: str = "r+", *, read_word: Text = "", write_word: Text = "",
                 exclusive: bool = False, offset: int = 0, wide_names: bool = False, size_mb: int = 0,
                 encoding: Optional[str] = None) -> None:
        self._handle, self._owned, self._files = 0, True, weakref.WeakSet()
        self.path, self.encoding = path, encoding or default_encoding()
        if mode not in ("r", "r+", "w", "x"):
            raise ValueError(f"mode {mode!r}: r, r+, w or x")
        if offset < 0:
            raise ValueError(f"negative offset {offset}")
        words = narrow(read_word, self.encoding), narrow(write_word, self.encoding)
        if mode in "wx":
            self._create(mode, wide_names, size_mb, words)
        self._open(mode == "r", offset, exclusive, words)

    def _create(self, mode: str, wide_names: bool, size_mb: int, words: Any) -> None:
        if size_mb > _LARGEST_MB:
            raise ValueError(f"a package has at most {_LARGEST_MB} MiB")
        if max(map(len, words)) > native.VLT_CREDENTIAL_MAX:
            raise ValueError(f"a word is longer than {native.VLT_CREDENTIAL_MAX} bytes")
        if mode == "x":
            with open(self.path, "xb"):
                pass
        if not native.vlt_package_create(host_path(self.path), wide_names, size_mb, *words):
            raise Error(f"{self.path!r}: the package cannot be made")

    def _open(self, read_only: bool, offset: int, exclusive: bool, words: Any) -> None:
        is_wide, error = ctypes.c_int32(0), ctypes.c_int32(0)
        self._handle = native.vlt_package_open_ex(host_path(self.path), read_only, offset & 0xFFFFFFFF, offset >> 32,
                                                  read_only, exclusive, *words, is_wide, error)
        if not self._handle:
            raise opening_error(error.value, self.path)
        self.wide_names = is_wide.value != 0

    @classmethod
    def _of_database(cls, handle: int, path: str, encoding: str) -> "Package":
        """The package that a database has open, and closes."""
        self = cls.__new__(cls)
        self._handle, self._owned, self._files = handle, False, weakref.WeakSet()
        self.path, self.encoding = path, encoding
        self.wide_names = native.vlt_package_is_unicode_files(handle) == 1
        return self

    # ---- Life

    @property
    def closed(self) -> bool:
        """Whether the package is closed."""
        return self._handle == 0

    def close(self) -> None:
        """Closes the files that are still open, then the package."""
        if self._handle:
            for file in list(self._files):
                file.close()
            handle, self._handle = self._handle, 0
            if self._owned:
                native.vlt_package_close(handle)

    def __enter__(self) -> "Package":
        self._valid()
        return self

    def __repr__(self) -> str:
        return f"<vlt.Package {self.path!r}{', closed' if self.closed else ''}>"

    __eq__ = object.__eq__
    __hash__ = object.__hash__

    def _valid(self) -> int:
        if not self._handle:
            raise ValueError("operation on a closed package")
        return self._handle

    def _by_name(self, function: str, name: Text, *arguments: Any) -> int:
        """Calls the narrow or wide twin of a function that takes a name."""
        handle = self._valid()
        if self.wide_names:
            return getattr(native, "vltw_" + function)(handle, wide(name, self.encoding), *arguments)
        return getattr(native, "vlt_" + function)(handle, narrow(name, self.encoding), *arguments)

    # ---- Stored files

    def open(self, name: Text, mode: str = "rb", *, exclusive: bool = False) -> StoredFile:
        """Opens a stored file: rb, r+b, wb, w+b, xb, ab as the built-in open does, unbuffered."""
        return StoredFile(self, name, mode, exclusive)

    def entries(self) -> List[Entry]:
        """The directory, in its order, with sizes and times."""
        handle, cursor, found = self._valid(), 0, []
        room = (ctypes.c_uint16 if self.wide_names else ctypes.c_char) * (native.VLT_NAME_MAX + 1)
        enumerate_files = native.vltw_package_enum if self.wide_names else native.vlt_package_enum
        name, facts = room(), _Facts()
        while True:
            cursor = enumerate_files(handle, cursor, name, *facts.places())
            if cursor == 0:
                return found
            text = from_wide(name) if self.wide_names else from_narrow(name.value, self.encoding)
            found.append(facts.entry(text))

    def info(self, name: Text) -> Entry:
        """Size and times of one stored file; NotFoundError when there is none."""
        facts = _Facts()
        if not self._by_name("file_get_info", name, *facts.places()):
            raise NotFoundError(f"{name!r}: there is no such file")
        return facts.entry(name if isinstance(name, str) else from_narrow(name, self.encoding))

    def set_times(self, name: Text, created: Optional[datetime], accessed: Optional[datetime],
                  written: Optional[datetime]) -> None:
        """Sets the three times of a stored file; None stands for no valid time."""
        if not self._by_name("file_set_time", name, to_stamp(created), to_stamp(accessed), to_stamp(written)):
            raise NotFoundError(f"{name!r}: there is no such file, or it cannot be written")

    # ---- The mapping

    def __contains__(self, name: object) -> bool:
        return isinstance(name, (str, bytes)) and bool(self._by_name("file_get_info", name, *_Facts().places()))

    def __iter__(self) -> Iterator[str]:
        return iter([entry.name for entry in self.entries() if entry.is_file])

    def __len__(self) -> int:
        return sum(entry.is_file for entry in self.entries())

    def __getitem__(self, name: Text) -> bytes:
        if name not in self:
            raise KeyError(name)
        with self.open(name) as file:
            return file.readall()

    def __setitem__(self, name: Text, content: bytes) -> None:
        with self.open(name, "wb") as file:
            file.write(content)

    def __delitem__(self, name: Text) -> None:
        if name not in self:
            raise KeyError(name)
        if not self._by_name("file_delete", name):
            raise AccessError(f"{name!r} is open, or the host file cannot be written")
