# SPDX-License-Identifier: MIT
"""Sizes and offsets of the records, and a C program that prints those of its compiler in the same words."""

SIZES = {"char": 1, "int32_t": 4, "uint32_t": 4, "int64_t": 8, "double": 8}


def measure(kind, records, pointer):
    """Size and alignment of a type, natural alignment assumed."""
    if kind.pointers:
        size = alignment = pointer
    elif kind.name in records:
        size, alignment = records[kind.name]
    else:
        size = alignment = SIZES[kind.name]
    return size * max(kind.length, 1), alignment


def layout(headers, pointer):
    """The lines `record size` and `record.field offset` for pointers of that many bytes."""
    records, lines = {}, []
    for record in (record for header in headers for record in header.records if record.fields):
        offset, widest, fields = 0, 1, []
        for item in record.fields:
            size, alignment = measure(item.type, records, pointer)
            offset = -(-offset // alignment) * alignment
            fields.append(f"{record.name}.{item.name} {offset}")
            offset, widest = offset + size, max(widest, alignment)
        records[record.name] = (-(-offset // widest) * widest, widest)
        lines += [f"{record.name} {records[record.name][0]}", *fields]
    return "\n".join(lines) + "\n"


def c_program(headers):
    """A C program that prints what `layout` computes."""
    lines = []
    for record in (record for header in headers for record in header.records if record.fields):
        lines.append(f'    printf("{record.name} %d\\n", (int)sizeof({record.name}));')
        lines += [f'    printf("{record.name}.{item.name} %d\\n", (int)offsetof({record.name}, {item.name}));'
                  for item in record.fields]
    includes = "\n".join(f'#include "{header.name}"' for header in headers)
    return ("/* SPDX-License-Identifier: MIT */\n/* Made by bindings/generate.py from the public headers. */\n"
            f"#include <stdio.h>\n\n{includes}\n\nint main(void) {{\n" + "\n".join(lines) + "\n    return 0;\n}\n")
