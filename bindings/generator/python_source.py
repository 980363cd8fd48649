# SPDX-License-Identifier: MIT
"""Declarations for Python's ctypes."""
from generator.text import comment, noted, wrapped

TYPES = {"void": "None", "char": "c_char", "int32_t": "c_int32", "uint32_t": "c_uint32", "int64_t": "c_int64",
         "double": "c_double", "size_t": "c_size_t", "vlt_wchar": "c_uint16"}

START = '''\
# SPDX-License-Identifier: MIT
"""What the headers declare: {names}. Made by bindings/generate.py; not edited by hand.

Text arguments take `bytes` or None, never `str`; wide text is an array of 16-bit units.
"""
from ctypes import POINTER, Structure, c_char, c_char_p, c_double, c_int32, c_int64, c_size_t
from ctypes import c_uint16, c_uint32, c_void_p

from .._library import declare as _declare
'''


def type_name(kind, result=False):
    """The ctypes name of a C type."""
    if kind.pointers and kind.name == "void":
        return "c_void_p"
    if kind.pointers and kind.name == "char" and (kind.const or result):
        return "c_char_p"
    name = TYPES.get(kind.name, kind.name)
    for _ in range(kind.pointers):
        name = f"POINTER({name})"
    return f"{name} * {kind.length}" if kind.length else name


def docstring(text, indent):
    text = text.replace("\\", "\\\\")
    inner = f"\n{indent}".join(text.split("\n"))
    return '"""' + inner.replace("\n" + indent + "\n", "\n\n") + ('\n' + indent if "\n" in text else "") + '"""'


def constants(header):
    for group in header.constants:
        yield "\n" + comment("#", group.doc)
        for item in group.members:
            yield noted(f"{item.name} = {item.value}", "#", item.doc, "  ")


def records(header):
    for record in header.records:
        yield f"\n\nclass {record.name}(Structure):\n    {docstring(record.doc, '    ')}\n"
    for record in (record for record in header.records if record.fields):
        yield f"\n\n{record.name}._fields_ = [\n"
        for item in record.fields:
            yield noted(f'    ("{item.name}", {type_name(item.type)}),', "#", item.doc, "  ")
        yield "]\n"


def functions(header):
    for function in header.functions:
        types = [f'("{item.name}", {type_name(item.type)})' for item in function.parameters]
        head = f'{function.name} = _declare('
        yield "\n" + wrapped(head, [f'"{function.name}"', type_name(function.result, True), *types], ",", ",", "    ")
        yield f"    doc={docstring(function.doc, '    ')})\n"


def source(headers):
    """The text of the module."""
    parts = [START.format(names=", ".join(header.name for header in headers))]
    for kind in (constants, records, functions):
        for header in headers:
            parts += kind(header)
    return "".join(parts)
