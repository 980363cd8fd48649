# SPDX-License-Identifier: MIT
"""A table of a database: a sequence of records, each a mapping from fields to texts."""
import ctypes
from collections.abc import MutableMapping, Sequence
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Optional, Union

from .generated import native
from .text import from_narrow, narrow

if TYPE_CHECKING:
    from .database import Database


class Table(Sequence):
    """One table. Fields are named without the table's name and whatever their letter case: "NID", "nid"."""

    def __init__(self, database: "Database", index: int) -> None:
        self._database, self._index = database, index

    @property
    def _native(self) -> Any:
        return ctypes.byref(self._database._valid().tables[self._index])

    def _text(self, value: object) -> bytes:
        return narrow(value if isinstance(value, (str, bytes)) else str(value), self._database.encoding)

    @property
    def name(self) -> str:
        """The table's name, such as "BITM"."""
        return native.KOfflineTable_GetTblName(self._native).decode("ascii", "replace")

    @property
    def fields(self) -> List[str]:
        """The names of the fields, in order."""
        table, name = self._native, ctypes.create_string_buffer(33)
        names = []
        for field in range(native.KOfflineTable_GetFldsCount(table)):
            native.KOfflineTable_GetFldName(table, field, name)
            names.append(from_narrow(name.value, self._database.encoding).partition(".")[2] or
                         from_narrow(name.value, self._database.encoding))
        return names

    def _field(self, name: str) -> int:
        number = native.KOfflineTable_GetFldIndex(self._native, self._text(name))
        if number < 0:
            raise KeyError(name)
        return number

    def add_field(self, name: str) -> None:
        """Adds a field, unless it is there; every record is without a value for it."""
        if native.KOfflineTable_AddFld(self._native, self._text(name)) < 0:
            raise self._database._error(f"{name!r} cannot be the name of a field")

    # ---- The sequence

    def __len__(self) -> int:
        return native.KOfflineTable_GetRecsCount(self._native)

    def __getitem__(self, number: Union[int, slice]) -> Any:
        if isinstance(number, slice):
            return [Record(self, at) for at in range(*number.indices(len(self)))]
        return Record(self, self._number(number))

    def _number(self, number: int) -> int:
        count = len(self)
        if not -count <= number < count:
            raise IndexError(f"record {number} of {count}")
        return number % count

    def __delitem__(self, number: int) -> None:
        native.KOfflineTable_DelRec(self._native, self._number(number))

    def search(self, field: str, value: object) -> "List[Record]":
        """The records whose field has this value, letter case of A to Z ignored; in their order."""
        number, key, table = self._field(field), self._text(value), self._native
        count = max(native.KOfflineTable_Search(table, number, key, None, 0), 0)
        found = (ctypes.c_int32 * max(count, 1))()
        native.KOfflineTable_Search(table, number, key, found, count)
        return [Record(self, at) for at in sorted(found[:count])]

    def add(self, **values: object) -> "Record":
        """Adds a record at the end; without NID it is given the next free one."""
        fields = {self._field(name): value for name, value in values.items()}
        separator = self._database._valid().separator or b","
        number = native.KOfflineTable_AddRec(self._native, b"", separator)
        if number < 0:
            raise self._database._error("the record cannot be added")
        try:
            for field, value in fields.items():
                self._set(number, field, value)
        except Exception:
            native.KOfflineTable_DelRec(self._native, number)
            raise
        return Record(self, number)

    def copy(self, number: int) -> "Record":
        """Adds a copy of a record at the end, with a NID of its own."""
        made = native.KOfflineTable_CopyRec(self._native, self._number(number))
        if made < 0:
            raise self._database._error("the record cannot be copied")
        return Record(self, made)

    def to_dicts(self) -> List[Dict[str, Optional[str]]]:
        """The records as dictionaries, as pandas.DataFrame takes them; None where a record has no value."""
        table, fields, encoding = self._native, list(enumerate(self.fields)), self._database.encoding
        value = native.KOfflineTable_GetFldValue
        rows = ({name: value(table, number, field) for field, name in fields} for number in range(len(self)))
        return [{name: None if text is None else from_narrow(text, encoding) for name, text in row.items()}
                for row in rows]

    def _set(self, number: int, field: int, value: object) -> None:
        text = None if value is None else self._text(value)
        if not native.KOfflineTable_SetFldValue(self._native, number, field, text):
            raise self._database._error(f"record {number} cannot hold the value")

    def __repr__(self) -> str:
        return f"<vlt.Table {self.name}, {len(self)} records>"

    __eq__ = object.__eq__
    __hash__ = object.__hash__


class Record(MutableMapping):
    """One record, by its place in the table; changing a value changes the database. A value is None where the record
    has none. Deleting a record moves those after it down by one place."""

    __slots__ = ("table", "number")

    def __init__(self, table: Table, number: int) -> None:
        self.table, self.number = table, number

    @property
    def nid(self) -> int:
        """The number that identifies the record; -1 when it has none."""
        return native.KOfflineTable_GetRecNID(self.table._native, self.number)

    def __getitem__(self, field: str) -> Optional[str]:
        text = native.KOfflineTable_GetFldValue(self.table._native, self.number, self.table._field(field))
        return None if text is None else from_narrow(text, self.table._database.encoding)

    def __setitem__(self, field: str, value: object) -> None:
        self.table._set(self.number, self.table._field(field), value)

    def __delitem__(self, field: str) -> None:
        """Empties the value: fields belong to the table."""
        self[field] = None

    def __iter__(self) -> Iterator[str]:
        return iter(self.table.fields)

    def __len__(self) -> int:
        return native.KOfflineTable_GetFldsCount(self.table._native)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Record) and (self.table, self.number) == (other.table, other.number)

    def __hash__(self) -> int:
        return hash((self.table, self.number))

    def __repr__(self) -> str:
        return f"<vlt.Record {self.table.name} {self.number}: {dict(self)}>"
