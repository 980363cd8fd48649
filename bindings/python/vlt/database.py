# SPDX-License-Identifier: MIT
"""An offline database: six tables of text records, and the tree of items that two of them make."""
import ctypes
from typing import Any, Dict, Iterator, List, NamedTuple, Optional, Tuple, Union

from .errors import DatabaseError, NotFoundError, database_error
from .generated import native
from .package import Closing, Package
from .table import Record, Table
from .text import Path, default_encoding, from_narrow, host_path, narrow

Item = Union[Record, str, int]


class BomLine(NamedTuple):
    """One line of a bill of material. `loop` marks an item that is its own ancestor; what it holds is not repeated."""
    level: int
    quantity: str
    item: Record
    loop: bool


class Database(Closing):
    """A loaded database.

        with vlt.Database("product") as db:
            for line in db.bom("BK-700"):
                print("  " * line.level, line.quantity, line.item["CCODE"])
            db.items.add(CCODE="EQ-830", CNAME="Basket")
            db.save()

    path      a package file, which stays open for reading and writing, or a folder that holds the seven files
    encoding  of its texts; the system's multibyte character set where it is not given

    `items`, `lines`, `drawings`, `item_drawings`, `plans` and `item_plans` are its tables; db["BITM"] names one too.
    A database serves one thread at a time.
    """

    def __init__(self, path: Path, encoding: Optional[str] = None) -> None:
        self.encoding = encoding or default_encoding()
        self._record: Optional[native.KOfflineDb] = native.KOfflineDb()
        native.KOfflineDb_Constructor(self._record)
        if not native.KOfflineDb_Load(self._record, host_path(path)):
            error = self._error(f"{path!r} cannot be opened")
            self.close()
            raise error
        self._tables = {name: Table(self, index) for index, name in enumerate(
            ("BITM", "BBOM", "BDWG", "BITDWG", "BCAPP", "BITCAP"))}
        self.items, self.lines, self.drawings, self.item_drawings, self.plans, self.item_plans = self._tables.values()
        self._package: Optional[Package] = None

    # ---- Life

    def close(self) -> None:
        """Gives the database back and closes its package; what was not saved is lost."""
        if self._record is not None:
            record, self._record = self._record, None
            if getattr(self, "_package", None):
                self._package.close()
            native.KOfflineDb_Destructor(record)

    def __enter__(self) -> "Database":
        self._valid()
        return self

    def _valid(self) -> Any:
        if self._record is None:
            raise ValueError("operation on a closed database")
        return self._record

    def _error(self, otherwise: str) -> DatabaseError:
        record = self._valid()
        return database_error(record.error_code, from_narrow(record.error_text, self.encoding), otherwise)

    @property
    def path(self) -> str:
        """Where the database was loaded from or last saved to."""
        return from_narrow(self._valid().path, self.encoding)

    def save(self, folder: Optional[Path] = None) -> None:
        """Writes the database to where it came from, or into another folder, which must exist."""
        record = self._valid()
        done = native.KOfflineDb_SaveAs(record, host_path(folder)) if folder else native.KOfflineDb_Save(record)
        if not done:
            raise self._error("there is no place to save to")

    @property
    def package(self) -> Optional[Package]:
        """The package that the database lives in, with the documents beside it; None for one in a folder."""
        handle = native.KOfflineDb_GetPackageHandle(self._valid())
        if handle and not self._package:
            self._package = Package._of_database(handle, self.path, self.encoding)
        return self._package

    # ---- Tables

    def __getitem__(self, name: str) -> Table:
        return self._tables[name.upper()]

    def to_dicts(self) -> Dict[str, List[Dict[str, Optional[str]]]]:
        """Every table as a list of dictionaries."""
        return {name: table.to_dicts() for name, table in self._tables.items()}

    def item(self, code: str) -> Record:
        """The item with this code, letter case of A to Z ignored; NotFoundError when there is none."""
        nid = native.KOfflineDb_GetNIDByCCODE(self._valid(), narrow(code, self.encoding))
        found = self._item_of(nid) if nid > 0 else None
        if found is None:
            raise NotFoundError(f"there is no item {code!r}")
        return found

    # ---- The tree of items

    def _item_of(self, nid: int) -> Optional[Record]:
        number = native.KOfflineDb_GetRecByNID_BITM(self._valid(), nid) if 0 < nid <= 0x7FFFFFFF else -1
        return Record(self.items, number) if number >= 0 else None

    def _nid(self, item: Item) -> int:
        if isinstance(item, str):
            item = self.item(item)
        return item.nid if isinstance(item, Record) else item

    def _linked(self, item: Item, from_field: str, to_field: str) -> List[Tuple[str, Record]]:
        """Quantity and item at the other end of every bill-of-material line; lines to items that are not there are
        left out."""
        ends = []
        for line in self.lines.search(from_field, str(self._nid(item))):
            other = line[to_field] or ""
            found = self._item_of(int(other)) if other.isascii() and other.isdigit() else None
            if found is not None:
                ends.append((line.get("FCOUNT") or "", found))
        return ends

    def children(self, item: Item) -> List[Record]:
        """The items that an item consists of; an item is given as a record, by its code or by its NID."""
        return [child for _, child in self._linked(item, "NPID", "NCID")]

    def parents(self, item: Item) -> List[Record]:
        """The items that an item is part of."""
        return [parent for _, parent in self._linked(item, "NCID", "NPID")]

    @property
    def roots(self) -> List[Record]:
        """The tops of the tree: the root item, or the items that are part of none."""
        record = self._valid()
        count = native.KOfflineDb_GetRootNodes(record, None, 0)
        numbers = (ctypes.c_int32 * max(count, 1))()
        native.KOfflineDb_GetRootNodes(record, numbers, count)
        return [Record(self.items, number) for number in numbers[:count]]

    def set_root(self, item: Item) -> None:
        """Makes an item the top of the tree; the choice is saved with the database."""
        found = self._item_of(self._nid(item))
        if found is None or not native.KOfflineDb_SetRootNode(self._valid(), found.number):
            raise NotFoundError("there is no such item")

    def bom(self, item: Optional[Item] = None) -> Iterator[BomLine]:
        """The bill of material of an item, itself first, depth first; of every top where none is given."""
        for top in self.roots if item is None else [self._item_of(self._nid(item))]:
            if top is not None:
                yield from self._below(BomLine(0, "1", top, False), ())

    def _below(self, line: BomLine, ancestors: Tuple[int, ...]) -> Iterator[BomLine]:
        # A stack of our own: a deep tree must not end at the interpreter's limit of nested calls.
        waiting = [(line, ancestors)]
        while waiting:
            line, ancestors = waiting.pop()
            nid = line.item.nid
            line = line._replace(loop=nid in ancestors)
            yield line
            if not line.loop:
                inner = [(BomLine(line.level + 1, quantity, child, False), (*ancestors, nid))
                         for quantity, child in self._linked(line.item, "NPID", "NCID")]
                waiting += reversed(inner)
