# SPDX-License-Identifier: MIT
"""Packages, which are small file systems inside one file, and the offline product databases that live in them.

`Package` and `Database` are the natural way; `vlt.generated.native` holds the functions of the library as they are.
"""
from .database import BomLine, Database
from .errors import AccessError, DatabaseError, Error, NotAPackageError, NotFoundError
from .package import Entry, Package
from .stored_file import StoredFile
from .table import Record, Table

__all__ = ["AccessError", "BomLine", "Database", "DatabaseError", "Entry", "Error", "NotAPackageError",
           "NotFoundError", "Package", "Record", "StoredFile", "Table"]
