# SPDX-License-Identifier: MIT
"""A stored file as a raw binary stream."""
import ctypes
import io
from typing import TYPE_CHECKING, Any

from .errors import Error, NotFoundError, file_error
from .generated import native

if TYPE_CHECKING:
    from .package import Package
    from .text import Text

_LARGEST = 1 << 30  # bytes of one call, whose length is a 32-bit number
_MODES = {"r": native.VLT_MODE_READ, "w": native.VLT_MODE_WRITE, "x": native.VLT_MODE_WRITE,
          "a": native.VLT_MODE_APPEND}


class StoredFile(io.RawIOBase):
    """A stored file, opened by Package.open.

    What is written is in the host file when `write` returns; the standard buffers (io.BufferedReader,
    io.BufferedWriter, io.BufferedRandom, io.TextIOWrapper) fit on top. A file ends where its last byte is: seeking
    beyond the end goes to the end, and it is made longer by writing alone.
    """

    def __init__(self, package: "Package", name: "Text", mode: str = "rb", exclusive: bool = False) -> None:
        self._handle = 0
        kind, extra = mode[:1], sorted(mode[1:])
        if kind not in _MODES or extra not in (["b"], ["+", "b"]):
            raise ValueError(f"mode {mode!r}: rb, wb, xb or ab, with + to read and write")
        self._package = package
        self._reads = kind == "r" or "+" in extra
        self._writes = kind != "r" or "+" in extra
        self._appends = kind == "a"
        self.name, self.mode = name, mode
        if kind == "x" and name in package:
            raise FileExistsError(f"{name!r} is stored already")
        if kind == "r" and name not in package:
            raise NotFoundError(f"{name!r}: there is no such file", native.VLT_FILE_NOT_FOUND)
        self._handle = self._open(native.VLT_MODE_WRITE if mode[:2] == "r+" or mode == "rb+" else _MODES[kind],
                                  exclusive, kind == "w")
        package._files.add(self)

    def _open(self, mode: int, exclusive: bool, truncate: bool) -> int:
        error = ctypes.c_uint32(0)
        handle = self._package._by_name("file_open", self.name, mode, exclusive, truncate, error)
        if not handle:
            raise file_error(error.value, self.name)
        return handle & 0xFFFFFFFF

    def _valid(self) -> int:
        if self.closed:
            raise ValueError("I/O operation on a closed file")
        return self._handle

    def readable(self) -> bool:
        return self._reads

    def writable(self) -> bool:
        return self._writes

    def seekable(self) -> bool:
        return True

    def readinto(self, buffer: Any) -> int:
        handle = self._valid()
        if not self._reads:
            raise io.UnsupportedOperation("not open for reading")
        view = memoryview(buffer).cast("B")
        length = min(len(view), _LARGEST)
        if length == 0:
            return 0
        count = native.vlt_file_read(handle, (ctypes.c_char * length).from_buffer(view), length)
        if count == 0 and native.vlt_file_is_eof(handle) != 1:
            raise Error(f"{self.name!r} cannot be read")
        return count

    def write(self, data: Any) -> int:
        handle = self._valid()
        if not self._writes:
            raise io.UnsupportedOperation("not open for writing")
        view = memoryview(data).cast("B")
        if self._appends:
            native.vlt_file_set_pos_eof(handle)
        for start in range(0, len(view), _LARGEST):
            piece = view[start:start + _LARGEST]
            source = bytes(piece) if piece.readonly else (ctypes.c_char * len(piece)).from_buffer(piece)
            if not native.vlt_file_write(handle, source, len(piece)):
                raise Error(f"{self.name!r} cannot be written; a part may be stored")
        return len(view)

    def seek(self, offset: int, whence: int = io.SEEK_SET) -> int:
        handle = self._valid()
        if whence == io.SEEK_CUR:
            offset += self.tell()
        elif whence == io.SEEK_END:
            native.vlt_file_set_pos_eof(handle)
            offset += self.tell()
        elif whence != io.SEEK_SET:
            raise ValueError(f"whence {whence}: 0, 1 or 2")
        if offset < 0:
            raise ValueError(f"negative position {offset}")
        native.vlt_file_set_pos(handle, offset)
        return self.tell()

    def tell(self) -> int:
        position = ctypes.c_int64(0)
        if not native.vlt_file_get_pos(self._valid(), position):
            raise Error(f"{self.name!r} has no position")
        return position.value

    def close(self) -> None:
        """Closes the file; once its package is closed it is closed too."""
        if not self.closed:
            super().close()
            if self._handle and not self._package.closed:
                native.vlt_file_close(self._handle)
