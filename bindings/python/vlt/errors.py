# SPDX-License-Identifier: MIT
"""Failures of the library as exceptions, with texts in the place of codes."""
from .generated import native


class Error(OSError):
    """A call of the library failed. `code` is what the library stored, 0 where it tells nothing."""

    def __init__(self, text: str, code: int = 0) -> None:
        super().__init__(text)
        self.code = code


class NotAPackageError(Error):
    """The host file is not a package."""


class NotFoundError(Error, FileNotFoundError):
    """There is no such host file or stored file."""


class AccessError(Error, PermissionError):
    """A credential does not match, or somebody else has the file open in a way that excludes this use."""


class DatabaseError(Error):
    """A call on a database failed. `detail` holds the library's own text: a file's or a field's name."""

    def __init__(self, text: str, code: int = 0, detail: str = "") -> None:
        super().__init__(f"{text}: {detail}" if detail else text, code)
        self.detail = detail


_OPENING = {
    native.VLT_OPEN_NOT_A_PACKAGE: (NotAPackageError, "not a package"),
    native.VLT_OPEN_CREDENTIALS: (AccessError, "neither the read word nor the write word matches"),
    native.VLT_OPEN_NO_FILE: (NotFoundError, "the host file cannot be opened"),
    native.VLT_OPEN_ACCESS: (AccessError, "open exclusively elsewhere, or the host file may not be written"),
    native.VLT_OPEN_ARGUMENT: (Error, "no path, or a negative offset"),
}

_FILE = {
    native.VLT_FILE_NO_SLOT: (Error, "too many open files, or the file could not be emptied"),
    native.VLT_FILE_REQUEST: (Error, "the package is closed"),
    native.VLT_FILE_ACCESS: (AccessError, "the package is read-only, or the file is open elsewhere"),
    native.VLT_FILE_NOT_FOUND: (NotFoundError, "there is no such file, or it cannot be made"),
}

_DATABASE = {
    native.KOFFLINE_ERR_MEMORY: "no memory for a record, a field or a file",
    native.KOFFLINE_ERR_FILE: "a file cannot be opened, read or written",
    native.KOFFLINE_ERR_SEPARATOR: "the schema sets no separator",
    native.KOFFLINE_ERR_FIELD: "a field that a table must have is missing",
    native.KOFFLINE_ERR_INDEX: "there is no such field to index",
    native.KOFFLINE_ERR_RECORD: "a record cannot be given its NID, or cannot hold a value",
    native.KOFFLINE_ERR_SCHEMA_WRITE: "the schema cannot be composed",
    native.KOFFLINE_ERR_TABLE: "the schema does not declare a table that must exist",
}


def _coded(table, code: int, subject: object) -> Error:
    kind, text = table.get(code, (Error, "failed"))
    return kind(f"{subject!r}: {text}", code)


def opening_error(code: int, path: object) -> Error:
    """Why a package did not open."""
    return _coded(_OPENING, code, path)


def file_error(code: int, name: object) -> Error:
    """Why a stored file did not open."""
    return _coded(_FILE, code, name)


def database_error(code: int, detail: str, otherwise: str) -> DatabaseError:
    """The failure that a database has noted; `otherwise` where it noted none."""
    if code == native.KOFFLINE_ERR_NONE:
        return DatabaseError(otherwise)
    return DatabaseError(_DATABASE.get(code, "failed"), code, detail)
